#ifndef CORVINA_SEARCH_FINDMATE_H
#define CORVINA_SEARCH_FINDMATE_H

#include "search/solverequest.h"

#include <cstdint>
#include <vector>

namespace corvina
{

/// Decides White's first moves, with m_nEffectiveThreads root threads, and puts those that force
/// mate within the root's m_nMoves half-moves (odd) into vecResult, once each, ordered by their
/// squares. The root is the request's board, checked as a start position. Returns 1 with at least
/// one solution, else 0. A stop of the run ends it early with what has been proved so far, and sets
/// m_bCutShort. The stop block must be clear at the start.
std::int8_t FindMate(TChessboard& root, std::vector<TMove>& vecResult);

} // namespace corvina

#endif
