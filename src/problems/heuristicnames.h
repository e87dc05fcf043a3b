#ifndef CORVINA_PROBLEMS_HEURISTICNAMES_H
#define CORVINA_PROBLEMS_HEURISTICNAMES_H

#include <cstdint>
#include <string_view>

namespace corvina
{

/// The name of a heuristic by its bit in a mask, as in "SH_KEEPKINGONTHEEDGE"; null for a bit
/// without a name and for a value that isn't a single bit.
const char* HeuristicName(std::uint32_t nHeuristic);

/// The bit of a heuristic by its name, letter case apart; 0 for another text.
std::uint32_t HeuristicFromName(std::string_view strName);

} // namespace corvina

#endif
