#include "heuristics/settext.h"

#include "heuristics/heuristicbits.h"
#include "problems/heuristicnames.h"
#include "search/hooks.h"
#include "search/solverequest.h"
#include "search/threadcontext.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// Items with commas between them.
class TItems
{
public:
    explicit TItems(std::string_view strSeparator = ",") : m_strSeparator(strSeparator) {}

    void Add(std::string_view strItem)
    {
        if (strItem.empty())
            return;
        if (!m_strText.empty())
            m_strText += m_strSeparator;
        m_strText += strItem;
    }
    void AddIf(bool bAdd, std::string_view strItem)
    {
        if (bAdd)
            Add(strItem);
    }
    const std::string& Text() const { return m_strText; }

private:
    std::string_view m_strSeparator;
    std::string m_strText;
};

/// In capitals; nothing for a value that is no square.
std::string SquareText(int square)
{
    if (square < 0 || square > 63)
        return std::string();
    return {static_cast<char>('A' + FileOf(square)), static_cast<char>('1' + RowOf(square))};
}

std::string IfStrict(bool bStrict)
{
    return std::string(bStrict ? TEXT_STRICT : "");
}

std::string WithParams(const std::string& strName, const std::string& strParams)
{
    return strParams.empty() ? strName : strName + "(" + strParams + ")";
}

/// When the two edge heuristics give way within a line.
void AddEdgeRelaxation(TItems& items, const THeuristicsParams& p)
{
    if (p.m_nEdgeRelaxCaptures)
        items.Add("C" + std::to_string(p.m_nEdgeRelaxCaptures) +
                  (p.m_bEdgeRelaxCountPawns ? "" : "f"));
    items.AddIf(p.m_bEdgeRelaxOnPawn, "A");
    if (p.m_nDeferMoves)
        items.Add("D" + std::to_string(p.m_nDeferMoves) + ",M" +
                  std::to_string(p.m_nDeferDeadline));
}

std::string EdgeText(const THeuristicsParams& p)
{
    TItems items;
    items.AddIf(p.m_bKingMustNotMove,
                p.m_bKingMoveExceptions ? TEXT_ALMOST_STRICT_KING : TEXT_STRICT_KING);
    items.AddIf(p.m_bInclCorner, TEXT_INCL_CORNER);
    if (!p.m_bEdgeRelaxExtOnly)
        AddEdgeRelaxation(items, p);
    return items.Text();
}

std::string ExtEdgeText(const THeuristicsParams& p)
{
    TItems items;
    AddEdgeRelaxation(items, p);
    items.AddIf(p.m_bInclCorner, TEXT_INCL_CORNER);
    items.AddIf(p.m_bExtEdgeMoveOnly, TEXT_STRICT);
    return items.Text();
}

std::string FilterText(const TChessboard& board)
{
    const int nMode = board.m_moveFilter & TChessboard::FILTER_MODE_MASK;
    return std::string(nMode ? g_aFilterTexts[nMode - 1] : "");
}

std::string UnblockText(const THeuristicsParams& p)
{
    TItems items;
    items.AddIf(p.m_bUnblockOneSquare, TEXT_ONE_SQUARE);
    for (int i = 0; i < std::min<int>(p.m_nUnblockFigures, MAX_UNBLOCK_FIGURES); ++i)
        items.Add(SquareText(p.m_unblockSquares[i]));
    return items.Text();
}

std::string ForcedMateText(const THeuristicsParams& p)
{
    std::string strText;
    if (p.m_nFfmLevel >= FFM_CHECK_ONLY && p.m_nFfmLevel <= FFM_THREAT_5)
        strText = g_aFfmLevelTexts[p.m_nFfmLevel - FFM_CHECK_ONLY];
    if (p.m_nFfmWithOther > 0)
        strText += TEXT_FFM_WITH_OTHER;
    if (p.m_bFfmPreliminary)
        strText += TEXT_FFM_PRELIMINARY;
    if (p.m_bFfmCustom)
        strText += TEXT_FFM_CUSTOM;
    return strText;
}

std::string CornerText(int nDistance)
{
    return std::to_string(Abs(nDistance)) + (nDistance > 0 ? "S" : "M");
}

std::string LoseFiguresText(int nMode)
{
    if (nMode == LOSE_NO_FIGURES)
        return std::string();
    return std::string(nMode == LOSE_NO_PAWNS ? TEXT_INCL_PAWNS : TEXT_INCL_PAWNS_BEFORE_PROMOTION);
}

std::string SeaSnakeText(const THeuristicsParams& p)
{
    std::string strText = SquareText(p.m_approachSquare) + "," + SquareText(p.m_turnBackSquare);
    if (p.m_nSeaSnakeOnlyAfter > 0)
        strText += "," + std::to_string(p.m_nSeaSnakeOnlyAfter);
    return strText;
}

/// The strict forms of the edge heuristic go by a name of their own, which stands for the first of
/// the parameters; the others stay.
std::string KingMustNotMoveText(const THeuristicsParams& p)
{
    const std::string strParams = EdgeText(p);
    const auto nComma = strParams.find(',');
    TItems items;
    items.AddIf(p.m_bKingMoveExceptions, TEXT_EXCEPTIONS);
    if (nComma != std::string::npos)
        items.Add(strParams.substr(nComma + 1));
    return WithParams(std::string(TEXT_KING_MUST_NOT_MOVE), items.Text());
}

std::string HeuristicText(std::uint32_t nHeuristic, const TChessboard& board)
{
    const THeuristicsParams& p = ContextOf(board);
    if (nHeuristic == SH_KEEPKINGONTHEEDGE && p.m_bKingMustNotMove)
        return KingMustNotMoveText(p);
    return WithParams(GetHeuristicName(nHeuristic), GetHeuristicParamText(nHeuristic, board));
}

bool RunsInQuickMode(const TChessboard& board)
{
    return board.m_nPass < 2 && board.m_pRequest && !board.m_pRequest->m_bSafeMode;
}

} // namespace

std::string GetHeuristicName(std::uint32_t nHeuristic)
{
    const char* pName = HeuristicName(nHeuristic);
    return pName ? pName : "...";
}

std::string GetHeuristicParamText(std::uint32_t nHeuristic, const TChessboard& board)
{
    const THeuristicsParams& p = ContextOf(board);
    switch (nHeuristic) {
    case SH_KEEPKINGONTHEEDGE:
        return EdgeText(p);
    case SH_KEEPKINGWITHINEXTEDGE:
        return ExtEdgeText(p);
    case SH_ONECOLORPLAYPOSSIBLE:
        return FilterText(board);
    case SH_DONTLEAVEMAINDIAGONAL:
        return SquareText(p.m_diagonalFigureSquare);
    case SH_DONTLETFIGUREUNBLOCK:
        return UnblockText(p);
    case SH_FINDFORCEDMATE:
        return ForcedMateText(p);
    case SH_DONTLETPROMOTEDQUEENMOVE:
    case SH_DONTLETPROMOTEDFIGUREMOVE:
        return IfStrict(p.m_bPromotedStrict);
    case SH_KEYLINE:
        return {static_cast<char>('A' + (p.m_keyLine & 7))};
    case SH_KEYDIAGONAL:
        return SquareText(p.m_keyDiagonal[0]) + "-" + SquareText(p.m_keyDiagonal[1]);
    case SH_DONTLOSEANYFIGURES:
        return LoseFiguresText(p.m_nLoseFiguresMode);
    case SH_KEYSQUARE:
        return SquareText(p.m_keySquare);
    case SH_KEYWHITEFIGURE:
        return SquareText(p.m_keyFigureSquare);
    case SH_ASSERTBLACKKINGSURROUNDED:
        return IfStrict(p.m_bSurroundedStrict);
    case SH_KEEPKINGNEARCORNER:
        return CornerText(p.m_nCornerDistance);
    case SH_SEASNAKE:
        return SeaSnakeText(p);
    case SH_ZUGZWANG:
        return board.m_pRequest ? ZugzwangMovesText(board.m_pRequest->m_zugzwangMap) : "";
    default:
        return std::string();
    }
}

std::string GetHeuristicsText(const TChessboard& board, bool bQuickMode)
{
    if (board.m_nHeuristics == 0)
        return std::string(TEXT_NONE);
    TItems items(", ");
    for (std::uint32_t nLeft = board.m_nHeuristics; nLeft; nLeft &= nLeft - 1)
        items.Add(HeuristicText(nLeft & (0 - nLeft), board));
    items.AddIf(bQuickMode && RunsInQuickMode(board), TEXT_QUICK_MODE);
    const bool bDynamic = ContextOf(board).m_bCanApplyDlfuDynamically;
    return items.Text() + (bDynamic ? "" : " " + std::string(TEXT_NOT_DYNAMIC));
}

} // namespace corvina
