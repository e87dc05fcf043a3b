#include "chess/exception.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/paramitems.h"
#include "heuristics/paramreader.h"
#include "heuristics/settext.h"
#include "problems/lexer.h"

/// Where the two heuristics on the Black king's edge are read.

namespace corvina
{

bool TParamReader::ReadEdgeRelaxation(std::string_view strItem, TEdgeRelaxation& relaxation)
{
    const std::string strUpper = UpperCased(strItem);
    if (strUpper == "A") {
        relaxation.m_bOnPawn = true;
        return true;
    }
    std::string_view strNumber = std::string_view(strUpper).substr(strUpper.empty() ? 0 : 1);
    const auto number = [&](int nMax, const char* pRefusal) {
        const auto nValue = NumberOf(strNumber, nMax);
        if (!nValue || (*nValue == 0 && strNumber != "0"))
            throw ChessException(pRefusal);
        return *nValue;
    };
    if (strUpper.starts_with('C')) {
        relaxation.m_bCountPawns = !strNumber.ends_with('F');
        strNumber.remove_suffix(relaxation.m_bCountPawns ? 0 : 1);
        relaxation.m_nCaptures = static_cast<std::uint8_t>(
            number(UINT8_MAX, "Invalid number of figures to capture for relaxation of edge "
                              "heuristics"));
        return true;
    }
    if (strUpper.starts_with('D') || strUpper.starts_with('M')) {
        auto& nTarget = strUpper[0] == 'D' ? relaxation.m_nDeferMoves : relaxation.m_nDeadline;
        nTarget =
            static_cast<std::uint16_t>(number(UINT16_MAX, "Invalid number of moves to defer"));
        return true;
    }
    return false;
}

void TParamReader::ReadEdge(std::string_view strParams)
{
    THeuristicsParams& p = m_set.m_params;
    p.m_bKingMustNotMove = false;
    m_ofEdge.emplace();
    for (const std::string_view strItem : ItemsOf(strParams)) {
        if (IsText(strItem, TEXT_STRICT_KING))
            p.m_bKingMustNotMove = true;
        else if (IsText(strItem, TEXT_ALMOST_STRICT_KING))
            p.m_bKingMustNotMove = p.m_bKingMoveExceptions = true;
        else if (IsText(strItem, TEXT_EXCEPTIONS))
            p.m_bKingMoveExceptions = true;
        else if (IsText(strItem, TEXT_INCL_CORNER))
            p.m_bInclCorner = true;
        else if (!ReadEdgeRelaxation(strItem, *m_ofEdge))
            Refuse(SH_KEEPKINGONTHEEDGE, strItem,
                   "STRICT, ALMOST_STRICT, incl.corner, C and a number, C and a number and f, A, D "
                   "and a number, M and a number");
    }
    if (p.m_bKingMoveExceptions && !p.m_bKingMustNotMove)
        throw ChessException("Heuristics 'Don't let black king move' is off, while 'allow exc' is "
                             "on.\nIt requires correction.");
}

void TParamReader::ReadExtEdge(std::string_view strParams)
{
    m_ofExtEdge.emplace();
    for (const std::string_view strItem : ItemsOf(strParams)) {
        if (IsText(strItem, TEXT_STRICT))
            m_set.m_params.m_bExtEdgeMoveOnly = true;
        else if (IsText(strItem, TEXT_INCL_CORNER))
            m_set.m_params.m_bInclCorner = true;
        else if (!ReadEdgeRelaxation(strItem, *m_ofExtEdge))
            Refuse(
                SH_KEEPKINGWITHINEXTEDGE, strItem,
                "strict, incl.corner, C and a number, C and a number and f, A, D and a number, M "
                "and a number");
    }
}

void TParamReader::Finish()
{
    THeuristicsParams& p = m_set.m_params;
    const TEdgeRelaxation none;
    TEdgeRelaxation relaxation = m_ofExtEdge.value_or(none);
    if (m_ofEdge && *m_ofEdge != none) {
        if (relaxation != none && relaxation != *m_ofEdge)
            throw ChessException("The dynamic relaxation (C, A, D) of SH_KEEPKINGONTHEEDGE and "
                                 "SH_KEEPKINGWITHINEXTEDGE must be the same.");
        relaxation = *m_ofEdge;
    }
    if (relaxation.m_nDeferMoves && !relaxation.m_nCaptures && !relaxation.m_bOnPawn)
        throw ChessException("Defer check is meaningful only when 'on advanced pawn' or 'on figure "
                             "captured' selected.");
    p.m_bEdgeRelaxExtOnly = m_ofEdge && *m_ofEdge == none && relaxation != none;
    p.m_nEdgeRelaxCaptures = relaxation.m_nCaptures;
    p.m_bEdgeRelaxCountPawns = relaxation.m_bCountPawns;
    p.m_bEdgeRelaxOnPawn = relaxation.m_bOnPawn;
    p.m_nDeferMoves = relaxation.m_nDeferMoves;
    p.m_nDeferDeadline = relaxation.m_nDeadline;
}

} // namespace corvina
