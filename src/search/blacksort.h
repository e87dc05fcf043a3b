#ifndef CORVINA_SEARCH_BLACKSORT_H
#define CORVINA_SEARCH_BLACKSORT_H

#include "search/result.h"
#include "search/threadcontext.h"

namespace corvina
{

/// How much a sort of Black's replies decides by itself.
enum class EBlackSort
{
    KeepsAll, ///< nothing but what the register knows: every reply is to be walked
    Light,    ///< no quick refutation
    Full
};

/// Sorts Black's replies, those likely to refute first. Illegal moves are taken out, and those that
/// the register knows to lose. Returns the number of replies that are left, or a result below 0
/// when the node is decided:
///
/// - RESULT_REFUTED: the register knows a reply that refutes, or a reply mates White, or a quick
///   refutation has shown that there is no mate
/// - RESULT_DOUBTFUL: the same with a doubt
/// - RESULT_REPETITION: a reply brings back a position further up the line; element m_nMoves of
///   m_anRepeatDepth tells which, as after the search of the reply
///
/// *pbHasReply is set when there is a legal reply.
int SortBlackMoves(TChessboard& board, TMove* pMoves, int nMoves, bool* pbHasReply,
                   EBlackSort form);

} // namespace corvina

#endif
