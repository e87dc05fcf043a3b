#ifndef CORVINA_SEARCH_RESULT_H
#define CORVINA_SEARCH_RESULT_H

#include <cstdint>

namespace corvina
{

/// The answer of a node: a value above 0 is a proof of mate within the half-moves left.
using TSearchResult = std::int8_t;

constexpr TSearchResult RESULT_MATE = 1;
constexpr TSearchResult RESULT_NO_MATE = 0;   ///< nothing heuristic was involved
constexpr TSearchResult RESULT_DOUBTFUL = -1; ///< no mate found, but something was cut
constexpr TSearchResult RESULT_REFUTED = -2;  ///< of a sort: Black refutes the node at once
constexpr TSearchResult RESULT_REPETITION =
    -3; ///< no mate; rests on a position further up the line
constexpr TSearchResult RESULT_END_OF_FORCED_MATE = -4; ///< treated like a repetition

/// The word for a result in a log.
constexpr const char* ResultText(TSearchResult nResult)
{
    switch (nResult) {
    case RESULT_MATE:
        return "mate";
    case RESULT_NO_MATE:
        return "no mate";
    case RESULT_DOUBTFUL:
        return "doubtful";
    case RESULT_REPETITION:
        return "position repetition";
    case RESULT_END_OF_FORCED_MATE:
        return "end of FindForcedMate depth";
    default:
        return "result error";
    }
}

} // namespace corvina

#endif
