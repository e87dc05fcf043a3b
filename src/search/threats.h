#ifndef CORVINA_SEARCH_THREATS_H
#define CORVINA_SEARCH_THREATS_H

#include "search/solverequest.h"

#include <vector>

namespace corvina
{

/// Moves of White that would mate, if Black passed after the key.
struct TThreats
{
    std::vector<TMove> m_vecMoves; ///< those of the shortest mate
    int m_nPlies = 0;              ///< half-moves of that mate
};

/// The moves that mate within so many half-moves (odd, at most two less than the task has) when
/// Black passes after the key, a legal move of the request's root. None when Black is in check, and
/// none that count after a stop of the run. No heuristics are used.
std::vector<TMove> GetThreats(TSolveRequest& request, const TMove& key, int nPlies);

/// The threats of the shortest mate, of five moves at the most, that the task has room for.
TThreats FindThreats(TSolveRequest& request, const TMove& key);

} // namespace corvina

#endif
