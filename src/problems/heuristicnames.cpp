#include "problems/heuristicnames.h"

#include "problems/lexer.h"

#include <bit>

namespace corvina
{
namespace
{

/// By the number of the bit; null: a bit without a name.
constexpr const char* g_aNames[32] = {
    "SH_AREKINGSNEAR",
    "SH_SWEEPINGWHITEROOK",
    "SH_KEEPKINGONTHEEDGE",
    "SH_ONECOLORPLAYPOSSIBLE",
    "SH_ZUGZWANGTRIANGLES",
    "SH_DONTLEAVEMAINDIAGONAL",
    "SH_KEEPKINGWITHINEXTEDGE",
    "SH_DONTLETFIGUREUNBLOCK",
    nullptr,
    "SH_FINDFORCEDMATE",
    "SH_DONTRECEDEBLACKKING",
    "SH_DONTLETPROMOTEDQUEENMOVE",
    "SH_KEYLINE",
    "SH_KEYDIAGONAL",
    "SH_SAVEQUEEN/ROOK",
    "SH_DONTLOSEANYFIGURES",
    "SH_DONTLETBLACKQUEENCHECKTWICE",
    "SH_USEBLOCKBLACKPAWNSLEVEL",
    "SH_KEYSQUARE",
    "SH_ASSERTBLACKKINGSURROUNDED",
    "SH_SINGLEQUEENMATE",
    "SH_3MOVESTOMATE",
    "SH_KEYWHITEFIGURE",
    "SH_CAPTUREKNIGHT",
    "SH_SKIPWORSTWHITEMOVES",
    "SH_DONTLETPROMOTEDFIGUREMOVE",
    "SH_KEEPKINGNEARCORNER",
    "SH_SEASNAKE",
    nullptr,
    nullptr,
    "SH_REDUCTIONTOGLOBREGPOS",
    "SH_ZUGZWANG",
};

} // namespace

const char* HeuristicName(std::uint32_t nHeuristic)
{
    return std::has_single_bit(nHeuristic) ? g_aNames[std::countr_zero(nHeuristic)] : nullptr;
}

std::uint32_t HeuristicFromName(std::string_view strName)
{
    const std::string strUpper = UpperCased(strName);
    for (int i = 0; i < 32; ++i) {
        if (g_aNames[i] && strUpper == g_aNames[i])
            return std::uint32_t{1} << i;
    }
    return 0;
}

} // namespace corvina
