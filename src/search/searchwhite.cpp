#include "search/fallback.h"
#include "search/nodes.h"
#include "search/ordering.h"
#include "search/whitecuts.h"
#include "search/whitenode.h"

namespace corvina
{
namespace
{

/// Below this depth the list is generated figure by figure and not sorted.
constexpr int MIN_SORTED_DEPTH = 5;

/// The nodes of the main search: every move of White.
template <int nKind>
struct TAllMoves
{
    static int ListMoves(TChessboard& board, TMove* pMoves)
    {
        const int nMoves = board.GenerateWhiteMoves(pMoves);
        return board.m_nMoves >= MIN_SORTED_DEPTH ? SortWhiteMovesCheap(board, pMoves, nMoves)
                                                  : nMoves;
    }

    static constexpr int ListMoreMoves(TChessboard&, TMove*, int, int*) { return 0; }

    static bool IsCut(const TChessboard& board, const TMove& move)
    {
        return RecedesFromBlackKing(board, move);
    }

    static bool IsCutAfterMove(TChessboard& child) { return IsCutAfterWhiteMove(child); }

    static TSearchResult SearchReplies(TChessboard& child)
    {
        if (MayFallBack(child)) {
            const TStricterSet stricter(child);
            if (SearchBlack<nKind>(child) == RESULT_MATE)
                return RESULT_MATE;
        }
        return SearchBlack<nKind>(child);
    }
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
