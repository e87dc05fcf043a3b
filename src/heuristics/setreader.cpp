#include "heuristics/setreader.h"

#include "chess/exception.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/paramitems.h"
#include "heuristics/paramreader.h"
#include "heuristics/settext.h"
#include "problems/heuristicnames.h"
#include "problems/lexer.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// A name and what stands in the brackets behind it.
struct TItem
{
    std::string_view m_strName;
    std::string_view m_strParams;
};

/// Takes the first item off the text, up to a comma outside of brackets.
TItem TakeItem(std::string_view& strText)
{
    const auto nOpen = strText.find('(');
    auto nEnd = strText.find(',');
    TItem item{};
    if (nOpen < nEnd) {
        const auto nClose = strText.find(')', nOpen);
        nEnd = strText.find(',', nClose);
        if (nClose == std::string_view::npos ||
            !TrimBlanks(strText.substr(nClose + 1, nEnd - nClose - 1)).empty())
            throw ChessException("Comma expected behind the closing bracket of " +
                                 std::string(TrimBlanks(strText)));
        item.m_strParams = TrimBlanks(strText.substr(nOpen + 1, nClose - nOpen - 1));
    }
    item.m_strName = TrimBlanks(strText.substr(0, std::min(nOpen, nEnd)));
    strText = nEnd == std::string_view::npos ? std::string_view() : strText.substr(nEnd + 1);
    if (nEnd != std::string_view::npos && TrimBlanks(strText).empty())
        throw ChessException("Heuristic expected behind the last comma.");
    return item;
}

/// Takes the mark off the end of the text; false when it isn't there.
bool TakeNotDynamic(std::string_view& strText)
{
    strText = TrimBlanks(strText);
    const std::size_t nLength = TEXT_NOT_DYNAMIC.size();
    if (strText.size() < nLength ||
        !IsText(strText.substr(strText.size() - nLength), TEXT_NOT_DYNAMIC))
        return false;
    strText = TrimBlanks(strText.substr(0, strText.size() - nLength));
    return true;
}

[[noreturn]] void RefuseKingConflict()
{
    throw ChessException("Conflict of heuristics (\"Don't let black king move\" and \"Don't let "
                         "black king out of the edge and/or ext.edge\") ");
}

bool HoldsKingStill(const THeuristicSet& set)
{
    return (set.m_nHeuristics & SH_KEEPKINGONTHEEDGE) && set.m_params.m_bKingMustNotMove;
}

void CheckConflicts(const THeuristicSet& set)
{
    if (HoldsKingStill(set) && (set.m_nHeuristics & SH_KEEPKINGWITHINEXTEDGE))
        RefuseKingConflict();
    if ((set.m_nHeuristics & SH_FINDFORCEDMATE) && (set.m_nHeuristics & SH_SEASNAKE))
        throw ChessException("FindForcedMate cannot be used together with SeaSnake.");
}

/// "(excptns,...)" behind the name of the strict forms, as parameters of the edge heuristic.
std::string ParamsOfStrictForm(std::string_view strParams)
{
    const std::string_view strFirst = TrimBlanks(strParams.substr(0, strParams.find(',')));
    if (!IsText(strFirst, TEXT_EXCEPTIONS))
        return std::string(TEXT_STRICT_KING) + "," + std::string(strParams);
    const std::string_view strRest = strParams.substr(strParams.find(strFirst) + strFirst.size());
    return std::string(TEXT_ALMOST_STRICT_KING) + std::string(strRest);
}

/// Brings one item of a text to the set.
void ReadItem(const TItem& item, THeuristicSet& set, TParamReader& reader)
{
    if (IsText(item.m_strName, TEXT_QUICK_MODE)) {
        set.m_bQuickMode = true;
        return;
    }
    const bool bStrictForm = IsText(item.m_strName, TEXT_KING_MUST_NOT_MOVE);
    const std::uint32_t nHeuristic =
        bStrictForm ? SH_KEEPKINGONTHEEDGE : HeuristicFromName(item.m_strName);
    if (nHeuristic == 0)
        throw ChessException("Unknown heuristic: \"" + std::string(item.m_strName) +
                             "\" (allowed: none, or names such as SH_KEEPKINGONTHEEDGE with commas "
                             "between them)");
    if (set.m_nHeuristics & nHeuristic) {
        if (nHeuristic == SH_KEEPKINGONTHEEDGE && bStrictForm != set.m_params.m_bKingMustNotMove)
            RefuseKingConflict();
        throw ChessException(std::string(item.m_strName) + " is named twice.");
    }
    set.m_nHeuristics |= nHeuristic;
    if (!bStrictForm)
        reader.Read(nHeuristic, item.m_strParams);
    else
        reader.Read(nHeuristic, item.m_strParams.empty() ? std::string(TEXT_STRICT_KING)
                                                         : ParamsOfStrictForm(item.m_strParams));
}

bool IsOff(const std::vector<std::string>& vecLexems)
{
    return vecLexems.size() == 1 && IsText(vecLexems.front(), "OFF");
}

/// The heuristics that the options put into a set, with their parameters.
THeuristicSet
ReadForcedHeuristics(const std::map<std::uint32_t, std::vector<std::string>>& mapOptions,
                     const TChessboard* pBoard)
{
    THeuristicSet forced;
    TParamReader reader(forced, pBoard);
    for (const auto& [nHeuristic, vecLexems] : mapOptions) {
        if (IsOff(vecLexems))
            continue;
        forced.m_nHeuristics |= nHeuristic;
        std::string strParams;
        for (const std::string& strLexem : vecLexems)
            strParams += strLexem;
        reader.Read(nHeuristic, strParams);
    }
    reader.Finish();
    CheckConflicts(forced);
    return forced;
}

/// Heuristics that can't stay in a set beside those that are put into it.
std::uint32_t ExcludedBy(const THeuristicSet& forced, const THeuristicSet& set)
{
    std::uint32_t nExcluded = 0;
    if (HoldsKingStill(forced))
        nExcluded |= SH_KEEPKINGWITHINEXTEDGE;
    if ((forced.m_nHeuristics & SH_KEEPKINGWITHINEXTEDGE) && HoldsKingStill(set))
        nExcluded |= SH_KEEPKINGONTHEEDGE;
    if (forced.m_nHeuristics & SH_FINDFORCEDMATE)
        nExcluded |= SH_SEASNAKE;
    if (forced.m_nHeuristics & SH_SEASNAKE)
        nExcluded |= SH_FINDFORCEDMATE;
    return nExcluded & ~forced.m_nHeuristics;
}

} // namespace

void ReadHeuristicsText(std::string_view strText, THeuristicSet& set, const TChessboard* pBoard)
{
    THeuristicSet read;
    TParamReader reader(read, pBoard);
    read.m_params.m_bCanApplyDlfuDynamically = !TakeNotDynamic(strText);
    if (strText.empty())
        throw ChessException("No heuristics given (none for an empty set).");
    if (!IsText(strText, TEXT_NONE)) {
        while (!strText.empty())
            ReadItem(TakeItem(strText), read, reader);
    }
    reader.Finish();
    CheckConflicts(read);
    set = read;
}

void ApplyHeuristicOptions(const std::map<std::uint32_t, std::vector<std::string>>& mapOptions,
                           THeuristicSet& set, const TChessboard* pBoard)
{
    const THeuristicSet forced = ReadForcedHeuristics(mapOptions, pBoard);
    set.m_nHeuristics &= ~ExcludedBy(forced, set);
    for (const auto& [nHeuristic, vecLexems] : mapOptions) {
        if (IsOff(vecLexems)) {
            set.m_nHeuristics &= ~nHeuristic;
            continue;
        }
        set.m_nHeuristics |= nHeuristic;
        CopyParams(nHeuristic, forced, set);
    }
    if (!(set.m_nHeuristics & SH_ONECOLORPLAYPOSSIBLE))
        set.m_nFilterMode = 0;
}

} // namespace corvina
