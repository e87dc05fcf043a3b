#ifndef CORVINA_SEARCH_ORDERING_H
#define CORVINA_SEARCH_ORDERING_H

#include "search/threadcontext.h"

namespace corvina
{

/// The order of moves changes time, never the result. The full sorts are in whitesort.h and
/// blacksort.h.

/// White's moves where a wrong order costs little: the move that mated last at this depth, then
/// checks, captures and moves towards the Black king. Moves that are illegal are taken out. Returns
/// the number that is left.
int SortWhiteMovesCheap(TChessboard& board, TMove* pMoves, int nMoves);

/// Puts the move that decided the last node of this depth at the head of the list.
void BringKillerToFront(const TChessboard& board, const TKiller& killer, TMove* pMoves, int nMoves);

/// The move decided the last node of this depth.
inline bool IsKiller(const TKiller& killer, const TChessboard& board, const TMove& move)
{
    return killer.m_figure == board.m_board[move.m_from] && IsSameMove(killer.m_move, move);
}

} // namespace corvina

#endif
