#ifndef CORVINA_HEURISTICS_TRIANGLES_H
#define CORVINA_HEURISTICS_TRIANGLES_H

#include "heuristics/heuristicsparams.h"
#include "heuristics/narrowedlists.h"

#include <array>

/// SH_ZUGZWANGTRIANGLES: a White figure comes back to its square in three moves, along a triangle,
/// so that the position is the same with Black to move. Who begins such a walk has to end it.

namespace corvina
{

/// Looks for a triangle at a root; fills the fields of the triangle when there is one. Black must
/// be all but shut in, and stay so on the whole walk.
bool DetectTriangles(const TChessboard& root, THeuristicsParams& params);

/// The next move of the triangle that White's last moves have begun, or nothing: when no walk is
/// under way, or something has happened on the board meanwhile.
int GenerateTriangleMoves(TChessboard& board, TMove* pMoves);

/// The figure stands on a square of the triangle, and White's other men as they did at the root.
bool FitsTriangle(const TChessboard& board);

/// Moves of the triangle come to the head of the list, which keeps its order otherwise.
void MoveTriangleMovesFirst(const TChessboard& board, int nMoves, TMove* pMoves);

/// Makes the walk, in the sense in which it was found, the run's preferred moves.
void PreferTriangle(TChessboard& root, const THeuristicsParams& params);

/// The same of any three squares, walked one after the other by the figure.
void PreferRound(TChessboard& root, const std::array<TSquare, 3>& aWalk, TFigure figure);

} // namespace corvina

#endif
