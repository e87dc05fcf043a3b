#ifndef CORVINA_HEURISTICS_SEASNAKE_H
#define CORVINA_HEURISTICS_SEASNAKE_H

#include "heuristics/narrowedlists.h"
#include "heuristics/zugzwangmap.h"

/// SH_SEASNAKE (heuristics/seasnakerecord.h): its detection at the root and White's moves under it.

namespace corvina
{

/// Looks for the pattern at a root with White to move. True: `params` tells of it, and `moves`
/// holds White's moves after a first one that sets it up, or nothing. False: the record holds no
/// pendulum. With a map the first move must be on it. The root is left as it was.
bool DetectSeaSnake(const TChessboard& root, THeuristicsParams& params, std::vector<TMove>& moves,
                    const TZugzwangMap& map);

/// Fills in what a user hasn't told of a sea snake, and the moves that its request keeps with it,
/// as far as the root shows it. A record that stays without a pendulum or a walk narrows nothing.
void CompleteSeaSnake(TChessboard& root, THeuristicsParams& params);

/// The walk's dependence on Black's pawns: POSITION_PAWNWALK for the root, or 0.
std::uint16_t PawnWalkFlag(const TChessboard& root, const TSeaSnake& snake);

/// The triangle of the walk becomes the run's preferred moves.
void PreferSeaSnakeTriangle(TChessboard& root, const TSeaSnake& snake);

/// The figure of the pendulum stands on one of its squares.
bool IsPendulumInPlace(const TChessboard& board, const TSeaSnake& snake);

/// White's moves: on the walk until he stands on the approach square. White is to move.
TNarrowedList GenerateSeaSnakeMoves(TChessboard& board, TMove* pMoves);

} // namespace corvina

#endif
