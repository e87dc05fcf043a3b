#include "heuristics/paramreader.h"

#include "chess/exception.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/paramitems.h"
#include "heuristics/settext.h"
#include "problems/lexer.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace corvina
{
namespace
{

constexpr const char* INVALID_CORNER = "Invalid maximum distance from corner in the parameter of "
                                       "heuristics 'Keep king near corner'";

/// Nothing, or the one word.
bool ReadWord(std::uint32_t nHeuristic, std::string_view strParams, std::string_view strWord)
{
    if (strParams.empty())
        return false;
    if (!IsText(strParams, strWord))
        Refuse(nHeuristic, strParams, std::string(strWord));
    return true;
}

std::uint8_t ReadFilterMode(std::string_view strParams)
{
    if (strParams.empty())
        return 0;
    for (std::uint8_t i = 0; i < std::size(g_aFilterTexts); ++i) {
        if (IsText(strParams, g_aFilterTexts[i]))
            return i + 1;
    }
    Refuse(SH_ONECOLORPLAYPOSSIBLE, strParams,
           "WhiteSquaresOnly, BlackSquaresOnly, SeparatedBlackBishop");
}

std::int8_t ReadKeyLine(std::string_view strParams)
{
    const std::string strUpper = UpperCased(strParams);
    if (strUpper.size() != 1 || !IsOnBoard(strUpper[0] - 'A', 0))
        throw ChessException("Invalid field Key line");
    return static_cast<std::int8_t>(strUpper[0] - 'A');
}

std::int8_t ReadCornerDistance(std::string_view strParams)
{
    const std::string strUpper = UpperCased(strParams);
    if (strUpper.size() < 2)
        throw ChessException(INVALID_CORNER);
    const bool bSquares = strUpper.back() == 'S';
    const auto nDistance = NumberOf(std::string_view(strUpper).substr(0, strUpper.size() - 1),
                                    bSquares ? MAX_CORNER_SQUARES : MAX_CORNER_MOVES);
    if ((!bSquares && strUpper.back() != 'M') || nDistance.value_or(0) == 0)
        throw ChessException(INVALID_CORNER);
    return static_cast<std::int8_t>(bSquares ? *nDistance : -*nDistance);
}

} // namespace

void TParamReader::Read(std::uint32_t nHeuristic, std::string_view strText)
{
    const std::string_view strParams = TrimBlanks(strText);
    THeuristicsParams& p = m_set.m_params;
    switch (nHeuristic) {
    case SH_KEEPKINGONTHEEDGE:
        return ReadEdge(strParams);
    case SH_KEEPKINGWITHINEXTEDGE:
        return ReadExtEdge(strParams);
    case SH_ONECOLORPLAYPOSSIBLE:
        m_set.m_nFilterMode = ReadFilterMode(strParams);
        return;
    case SH_DONTLEAVEMAINDIAGONAL:
        return ReadDiagonal(strParams);
    case SH_DONTLETFIGUREUNBLOCK:
        return ReadUnblockList(strParams);
    case SH_FINDFORCEDMATE:
        return ReadForcedMate(strParams);
    case SH_DONTLETPROMOTEDQUEENMOVE:
    case SH_DONTLETPROMOTEDFIGUREMOVE:
        p.m_bPromotedStrict |= ReadWord(nHeuristic, strParams, TEXT_STRICT);
        return;
    case SH_KEYLINE:
        p.m_keyLine = ReadKeyLine(strParams);
        return;
    case SH_KEYDIAGONAL:
        return ReadKeyDiagonal(strParams);
    case SH_DONTLOSEANYFIGURES:
        return ReadLoseFigures(strParams);
    case SH_KEYSQUARE:
        p.m_keySquare = SquareOrNone(nHeuristic, strParams);
        return;
    case SH_KEYWHITEFIGURE:
        return ReadKeyFigure(strParams);
    case SH_ASSERTBLACKKINGSURROUNDED:
        p.m_bSurroundedStrict = ReadWord(nHeuristic, strParams, TEXT_STRICT);
        return;
    case SH_KEEPKINGNEARCORNER:
        p.m_nCornerDistance = ReadCornerDistance(strParams);
        return;
    case SH_SEASNAKE:
        return ReadSeaSnake(strParams);
    case SH_ZUGZWANGTRIANGLES:
        return ReadTriangle(strParams);
    case SH_ZUGZWANG:
        return ReadZugzwang(strParams);
    default:
        if (!strParams.empty())
            Refuse(nHeuristic, strParams, "nothing");
    }
}

void TParamReader::ReadForcedMate(std::string_view strParams)
{
    THeuristicsParams& p = m_set.m_params;
    const auto refuse = [](std::string_view strItem) {
        Refuse(
            SH_FINDFORCEDMATE, strItem,
            "CheckOnly, #1, #1+, #2, #2+, #3, #4 or #5, then -WithOtherHeuristics, -Preliminary, "
            "-Custom");
    };
    const std::vector<std::string_view> vecItems = ItemsOf(strParams, '-');
    for (std::size_t i = 0; i < vecItems.size(); ++i) {
        const auto isWord = [&](std::string_view strText) {
            return i > 0 && IsText(vecItems[i], strText.substr(1));
        };
        const auto pLevel =
            std::find_if(std::begin(g_aFfmLevelTexts), std::end(g_aFfmLevelTexts),
                         [&](std::string_view strText) { return IsText(vecItems[i], strText); });
        if (i == 0 && pLevel != std::end(g_aFfmLevelTexts))
            p.m_nFfmLevel = static_cast<std::uint8_t>(FFM_CHECK_ONLY + (pLevel - g_aFfmLevelTexts));
        else if (isWord(TEXT_FFM_WITH_OTHER))
            p.m_nFfmWithOther = FFM_OTHERS_APPLY;
        else if (isWord(TEXT_FFM_PRELIMINARY))
            p.m_bFfmPreliminary = true;
        else if (isWord(TEXT_FFM_CUSTOM))
            p.m_bFfmCustom = true;
        else if (i > 0 || !vecItems[i].empty())
            refuse(vecItems[i]);
    }
    // A preliminary run is one of the heuristics that apply near the end.
    if (p.m_bFfmPreliminary && p.m_nFfmWithOther == FFM_OTHERS_OFF)
        p.m_nFfmWithOther = FFM_OTHERS_NEAR_THE_END;
    p.m_nFfmFirstLevel = p.m_nFfmLevel;
}

void TParamReader::ReadKeyDiagonal(std::string_view strParams)
{
    const std::vector<std::string_view> vecItems = ItemsOf(strParams, '-');
    for (std::size_t i = 0; i < 2; ++i) {
        const auto square = i < vecItems.size() ? SquareOf(vecItems[i]) : std::nullopt;
        if (vecItems.size() != 2 || (!square && !vecItems[i].empty()))
            throw ChessException("Invalid field Key diagonal");
        m_set.m_params.m_keyDiagonal[i] = square.value_or(NO_KEY_SQUARE);
    }
}

void TParamReader::ReadLoseFigures(std::string_view strParams)
{
    std::uint8_t& nMode = m_set.m_params.m_nLoseFiguresMode;
    for (const std::string_view strItem : ItemsOf(strParams)) {
        if (nMode != LOSE_NO_FIGURES)
            throw ChessException("Only one of additional options of Don't lose any figures (incl. "
                                 "pawns + incl.promotable pawns) can be selected.");
        if (IsText(strItem, TEXT_INCL_PAWNS))
            nMode = LOSE_NO_PAWNS;
        else if (IsText(strItem, TEXT_INCL_PAWNS_BEFORE_PROMOTION))
            nMode = LOSE_NO_PAWNS_BEFORE_PROMOTION;
        else
            Refuse(SH_DONTLOSEANYFIGURES, strItem, "incl.pawns, incl.pawnsBeforePromo");
    }
}

} // namespace corvina
