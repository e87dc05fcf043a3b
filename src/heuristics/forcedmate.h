#ifndef CORVINA_HEURISTICS_FORCEDMATE_H
#define CORVINA_HEURISTICS_FORCEDMATE_H

#include "chess/chessboard.h"
#include "heuristics/heuristicsparams.h"

namespace corvina
{

/// White has a move that checks: a search of forcing moves has something to begin with.
bool IsForcedMateType(const TChessboard& board);

/// An outweighed White has its figures at a Black king on the edge: forcing moves together with the
/// other heuristics suit the position. The numbers are those of SuggestFfmSettings.
bool IsForcedMateWithOther(const TChessboard& board, int nWhiteMaterial, int nBlackMaterial,
                           int nFreeSquares);

/// Sets up the forced mate search for such a position.
void ApplyFfmWithOther(const TChessboard& board, THeuristicsParams& params);

/// Decides whether the whole cycle of the forced mate search runs twice, first with all other
/// heuristics of the board.
void MakeForcedMateCustom(const TChessboard& board, THeuristicsParams& params);

/// A code for ApplyFfmSettings that suits the position, of which the material of both sides and
/// the free squares of the Black king are known; 0: the forced mate search doesn't suit it.
int SuggestFfmSettings(const TChessboard& board, int nWhiteMaterial, int nBlackMaterial,
                       int nFreeSquares);

/// Sets up the forced mate search from a code: how far its levels may be raised in the low byte,
/// by how much the first level is raised at once in the byte above.
void ApplyFfmSettings(const TChessboard& board, int nCode, THeuristicsParams& params);

/// Puts the set of a preliminary run in the place of the board's, which is kept in m_savedFfmMask
/// until the relaxation that ends the run. Nothing happens to a set without such a run. A second
/// call changes nothing.
void BeginPreliminaryRun(TChessboard& board, THeuristicsParams& params);

} // namespace corvina

#endif
