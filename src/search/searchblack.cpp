#include "search/blacknode.h"
#include "search/nodes.h"
#include "search/shortmate.h"

namespace corvina
{
namespace
{

/// The nodes of the main search, which lets White answer with any move.
template <int nKind>
struct TAnyMove
{
    static bool WalksAllReplies(const TChessboard& board)
    {
        return nKind == NODE_DEFENCE && board.m_nMoves == ContextOf(board).m_nDefenceDepth;
    }

    static constexpr EBlackSort FormOfSort(const TChessboard&)
    {
        return nKind == NODE_DEFENCE_DEEPER ? EBlackSort::Light : EBlackSort::Full;
    }

    static constexpr bool VerifiesHeuristics(const TChessboard&) { return true; }

    static bool HasShortMate(TChessboard& child)
    {
        return child.m_nPass == 1 ? LookForQuickerMate(child) : LookForQuickerMateInLastPass(child);
    }

    static TSearchResult SearchWhite(TChessboard& child)
    {
        constexpr int CHILD_KIND = nKind == NODE_MAIN ? NODE_MAIN : NODE_DEFENCE_DEEPER;
        return corvina::SearchWhite<CHILD_KIND>(child, false);
    }
};

} // namespace

template <int nKind>
TSearchResult SearchBlack(TChessboard& board)
{
    if (board.m_nMoves == 0)
        return ResultOfLeaf(board);
    if (board.m_nMoves == 2 && !TAnyMove<nKind>::WalksAllReplies(board))
        return SearchLastReplies(board);
    return TBlackNode<TAnyMove<nKind>>(board).Search();
}

template TSearchResult SearchBlack<NODE_MAIN>(TChessboard&);
template TSearchResult SearchBlack<NODE_DEFENCE>(TChessboard&);
template TSearchResult SearchBlack<NODE_DEFENCE_DEEPER>(TChessboard&);

} // namespace corvina
