#include "heuristics/paramitems.h"

#include "chess/exception.h"
#include "heuristics/heuristicsparams.h"
#include "heuristics/settext.h"
#include "problems/lexer.h"

#include <charconv>

namespace corvina
{

void Refuse(std::uint32_t nHeuristic, std::string_view strItem, const std::string& strAllowed)
{
    throw ChessException("Invalid parameter of " + GetHeuristicName(nHeuristic) + ": \"" +
                         std::string(strItem) + "\" (allowed: " + strAllowed + ")");
}

bool IsText(std::string_view strItem, std::string_view strText)
{
    return UpperCased(strItem) == UpperCased(strText);
}

std::vector<std::string_view> ItemsOf(std::string_view strText, char separator)
{
    std::vector<std::string_view> vecItems;
    if (TrimBlanks(strText).empty())
        return vecItems;
    for (;;) {
        const auto nEnd = strText.find(separator);
        vecItems.push_back(TrimBlanks(strText.substr(0, nEnd)));
        if (nEnd == std::string_view::npos)
            return vecItems;
        strText.remove_prefix(nEnd + 1);
    }
}

std::optional<int> NumberOf(std::string_view strText, int nMax)
{
    int nValue = -1;
    const char* pEnd = strText.data() + strText.size();
    const auto [pRead, error] = std::from_chars(strText.data(), pEnd, nValue);
    const bool bWhole = error == std::errc() && pRead == pEnd;
    return bWhole && nValue >= 0 && nValue <= nMax ? std::optional(nValue) : std::nullopt;
}

std::optional<TSquare> SquareOf(std::string_view strText)
{
    const std::string strUpper = UpperCased(strText);
    if (strUpper.size() != 2 || !IsOnBoard(strUpper[0] - 'A', strUpper[1] - '1'))
        return std::nullopt;
    return MakeSquare(strUpper[0] - 'A', strUpper[1] - '1');
}

std::uint8_t SquareOrNone(std::uint32_t nHeuristic, std::string_view strText)
{
    if (strText.empty())
        return NO_KEY_SQUARE;
    const auto square = SquareOf(strText);
    if (!square)
        Refuse(nHeuristic, strText, "a square such as C3");
    return *square;
}

} // namespace corvina
