#ifndef CORVINA_SEARCH_FINDMATE_H
#define CORVINA_SEARCH_FINDMATE_H

#include "search/solverequest.h"

#include <cstdint>
#include <vector>

namespace corvina
{

/// Searches the first moves of White one by one, in the order of generation, and appends those that
/// force mate within nHalfMoves half-moves (odd) to vecResult, once each. The root is the request's
/// board, checked as a start position. Returns 1 with at least one solution, else 0. A stop of the
/// run ends it early with what has been proved so far.
std::int8_t FindMate(TChessboard& root, std::uint16_t nHalfMoves, std::vector<TMove>& vecResult);

} // namespace corvina

#endif
