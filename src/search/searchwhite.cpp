#include "heuristics/keyfigure.h"
#include "heuristics/narrowedlists.h"
#include "heuristics/onecolour.h"
#include "heuristics/triangles.h"
#include "search/fallback.h"
#include "search/nodes.h"
#include "search/ordering.h"
#include "search/whitecuts.h"
#include "search/whitenode.h"
#include "search/whitesort.h"

namespace corvina
{
namespace
{

/// Below this depth the list stays as it is generated, below the next two it is sorted cheaply: a
/// better order costs more there than it saves.
constexpr int MIN_SORTED_DEPTH = 5;
constexpr int MIN_FULLY_SORTED_DEPTH = 9;
constexpr int MIN_FULLY_SORTED_IN_LAST_PASS = 17;

bool IsFullySorted(const TChessboard& board)
{
    return board.m_nMoves >=
           (board.m_nPass < 2 ? MIN_FULLY_SORTED_DEPTH : MIN_FULLY_SORTED_IN_LAST_PASS);
}

/// The nodes of the main search: every move of White.
template <int nKind>
class TAllMoves
{
public:
    static constexpr bool JUGGLED = nKind == NODE_MAIN;

    int ListMoves(TChessboard& board, TMove* pMoves)
    {
        if ((board.m_moveFilter & TChessboard::FILTER_MODE_MASK) && OneColourReplay(board))
            return LIST_MATES;
        const TNarrowedList narrowed = ListFewMoves(board, pMoves);
        if (narrowed.m_bMate)
            return LIST_MATES;
        int nMoves = narrowed.m_nMoves;
        if (nMoves != 0)
            m_nNarrowedBy = narrowed.m_nReason;
        else
            nMoves = board.GenerateWhiteMoves(pMoves);
        if (board.m_nMoves < MIN_SORTED_DEPTH)
            return nMoves;
        if (!IsFullySorted(board))
            return SortWhiteMovesCheap(board, pMoves, nMoves);
        nMoves = SortWhiteMoves(board, pMoves, nMoves, &m_sorted);
        if (ContextOf(board).m_triangleOrigin != NO_KEY_SQUARE && FitsTriangle(board))
            MoveTriangleMovesFirst(board, nMoves, pMoves);
        return nMoves;
    }

    /// None; but those that have been left out make the node doubtful.
    int ListMoreMoves(TChessboard& board, TMove*, int, int* pnDoubtful)
    {
        if (m_sorted.m_nLeftOut == 0 && m_nNarrowedBy == 0)
            return 0;
        *pnDoubtful += m_sorted.m_nLeftOut + (m_nNarrowedBy != 0);
        ContextOf(board).NoteWhiteCut(m_nNarrowedBy ? m_nNarrowedBy : SH_SKIPWORSTWHITEMOVES);
        return 0;
    }

    static bool IsCut(const TChessboard& board, const TMove& move)
    {
        return IsWhiteMoveCut(board, move);
    }

    static bool IsCutAfterMove(TChessboard& child) { return IsCutAfterWhiteMove(child); }

    int CountGoodMoves() const { return m_sorted.m_nGoodMoves; }

    static TSearchResult SearchReplies(TChessboard& child)
    {
        if (MayFallBack(child)) {
            const TStricterSet stricter(child);
            if (SearchBlack<nKind>(child) == RESULT_MATE)
                return RESULT_MATE;
        }
        return SearchBlack<nKind>(child);
    }

private:
    /// The moves of the first heuristic that has some of its own; none: all are to be tried.
    static TNarrowedList ListFewMoves(TChessboard& board, TMove* pMoves)
    {
        if ((board.m_nHeuristics & NARROWING_MASK) && board.m_nPass == 1) {
            const TNarrowedList narrowed = ListNarrowedMoves(board, pMoves);
            if (narrowed.m_bMate || narrowed.m_nMoves != 0)
                return narrowed;
        }
        return {ListKeyFigureMoves(board, pMoves), SH_KEYWHITEFIGURE, false};
    }

    /// What White waits with while his pinning figure holds Black, where the set asks for it; else
    /// none.
    static int ListKeyFigureMoves(const TChessboard& board, TMove* pMoves)
    {
        constexpr int MIN_DEPTH = 8;
        const bool bAsked = (board.m_nHeuristics & SH_KEYWHITEFIGURE) && board.m_nPass == 1 &&
                            board.m_nMoves >= MIN_DEPTH && board.m_whiteChecker == NO_CHECK;
        return bAsked ? GetKeyFigureMove(board, pMoves) : 0;
    }

    TSortNotes m_sorted;
    std::uint32_t m_nNarrowedBy = 0; ///< the heuristic that has left the others out
};

} // namespace

template <int nKind>
TSearchResult SearchWhite(TChessboard& board, bool bProbeRegister)
{
    if (board.m_nMoves == 3 && !(board.m_nPositionFlags & TChessboard::POSITION_GLOBALREGISTER))
        return IsMateInTwo(board, bProbeRegister) ? RESULT_MATE : RESULT_NO_MATE;
    return TWhiteNode<TAllMoves<nKind>>(board).Search(bProbeRegister);
}

template TSearchResult SearchWhite<NODE_MAIN>(TChessboard&, bool);
template TSearchResult SearchWhite<NODE_DEFENCE_DEEPER>(TChessboard&, bool);

} // namespace corvina
