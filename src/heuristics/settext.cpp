#include "search/hooks.h"

namespace corvina
{

std::string GetHeuristicsText(const TChessboard&, bool)
{
    return std::string();
}

} // namespace corvina
