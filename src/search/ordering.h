#ifndef CORVINA_SEARCH_ORDERING_H
#define CORVINA_SEARCH_ORDERING_H

#include "chess/chessboard.h"

namespace corvina
{

/// The order of moves changes time, never the result.

/// White's moves of a node far from the leaves: the move that mated last at this depth, then
/// checks, captures and moves towards the Black king. Moves that are illegal are taken out. Returns
/// the number that is left.
int SortWhiteMovesCheap(TChessboard& board, TMove* pMoves, int nMoves);

/// Black's replies: the latest refutation at this depth, then captures of the figure that gives
/// check or has just moved, other captures, moves of the king, the rest. Illegal moves are taken
/// out. Returns the number that is left.
int SortBlackMoves(TChessboard& board, TMove* pMoves, int nMoves);

} // namespace corvina

#endif
