#ifndef CORVINA_SEARCH_ORDERING_H
#define CORVINA_SEARCH_ORDERING_H

#include "search/result.h"
#include "search/threadcontext.h"

namespace corvina
{

/// The order of moves changes time, never the result.

/// White's moves of a node far from the leaves: the move that mated last at this depth, then
/// checks, captures and moves towards the Black king. Moves that are illegal are taken out. Returns
/// the number that is left.
int SortWhiteMovesCheap(TChessboard& board, TMove* pMoves, int nMoves);

/// Black's replies: the latest refutation at this depth, then captures of the figure that has just
/// moved, other captures, moves of the king, the rest. Illegal moves are taken out, and those that
/// the register knows to lose. Returns the number that is left, or a search result below 0:
/// RESULT_REFUTED or RESULT_DOUBTFUL when the register knows a reply that refutes. *pbHasReply is
/// set when there is a legal reply.
int SortBlackMoves(TChessboard& board, TMove* pMoves, int nMoves, bool* pbHasReply);

/// Puts the move that decided the last node of this depth at the head of the list.
void BringKillerToFront(const TChessboard& board, const TKiller& killer, TMove* pMoves, int nMoves);

} // namespace corvina

#endif
