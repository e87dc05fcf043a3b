#ifndef CORVINA_SEARCH_QUICKREFUTATION_H
#define CORVINA_SEARCH_QUICKREFUTATION_H

#include "chess/chessboard.h"
#include "search/result.h"

namespace corvina
{

/// A quick look for the reason why a reply of Black stops the mate: within a few moves Black
/// reaches a position that is known or shown to hold no mate, or leaves what the heuristics allow,
/// whatever White plays. White is to move; the record is on the stack of its thread. Its half-moves
/// left stay those of the task: what is answered holds for all of them, however few are walked.

/// Answers. Above 0: the search result of the same number below 0 that a Black node gives at once.
constexpr int QUICK_UNKNOWN = 0;
constexpr int QUICK_DOUBTFUL = 1;   ///< the reply refutes as far as the heuristics are right
constexpr int QUICK_NO_MATE = 2;    ///< certain
constexpr int QUICK_REPETITION = 3; ///< leans on a position further up; m_anRepeatDepth tells which

/// The answer for a result of a reply: RESULT_MATE shows nothing.
constexpr int QuickAnswerOf(TSearchResult nResult)
{
    return nResult == RESULT_MATE      ? QUICK_UNKNOWN
           : nResult == RESULT_NO_MATE ? QUICK_NO_MATE
                                       : QUICK_DOUBTFUL;
}

/// With a depth that suits the position. QUICK_UNKNOWN where it isn't worth the time: White mates
/// in one, the task is short, few half-moves are left, or another short search is open.
int QuickRefutation(TChessboard& child);

/// Walks down nFrom half-moves (even), nFrom + 2 ... nTo, up to the first answer. bMateInOneFirst:
/// a mate in one ends it before.
int QuickRefutationSearch(TChessboard& child, int nFrom, int nTo, bool bMateInOneFirst);

/// A promotion or the capture of a figure above a pawn is at most nine half-moves ago.
bool HasRecentGain(const TChessboard& board);

} // namespace corvina

#endif
