#ifndef CORVINA_SEARCH_WHITESORT_H
#define CORVINA_SEARCH_WHITESORT_H

#include "search/threadcontext.h"

namespace corvina
{

/// What a sort tells beside the order.
struct TSortNotes
{
    int m_nLeftOut = 0;   ///< moves that SH_SKIPWORSTWHITEMOVES leaves out: doubtful at best
    int m_nGoodMoves = 0; ///< at the head of the list, that a sort indication asks for
};

/// The full sort of White's moves, for nodes far enough from the leaves. Illegal moves go to the
/// end with SCORE_ILLEGAL. Returns the number of moves to try; *pNotes, if not null, tells more. A
/// stop of the run leaves the list as it stands.
int SortWhiteMoves(TChessboard& board, TMove* pMoves, int nMoves, TSortNotes* pNotes = nullptr);

/// The sort of the first moves of a run, under which no heuristic has a say. The caller's order
/// stands where a sort can't help. Returns the number of legal moves.
int SortFirstMoves(TChessboard& root, TMove* pMoves, int nMoves);

/// Moves that SH_SKIPWORSTWHITEMOVES leaves of so many.
constexpr int MovesKept(int nMoves)
{
    constexpr int FEW = 25;
    return nMoves < FEW ? nMoves : nMoves * 4 / 5 > FEW ? nMoves * 4 / 5 : FEW;
}

/// What the registers know of Black's replies.
constexpr int REPLIES_UNKNOWN = -1;
constexpr int REPLIES_SAVE = 0;  ///< one is known to save Black
constexpr int REPLIES_MATED = 1; ///< all are known to be mated

/// Flags of the look at the replies.
constexpr int PROBE_ALL = 0;
constexpr int PROBE_UP_TO_UNKNOWN = 1; ///< the first reply that isn't known ends it

/// Looks up every legal reply; Black is to move. A doubtful answer of a register is none.
int ProbeBlackReplies(TChessboard& child, int nFlags);

} // namespace corvina

#endif
