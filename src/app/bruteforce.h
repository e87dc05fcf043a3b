#ifndef CORVINA_APP_BRUTEFORCE_H
#define CORVINA_APP_BRUTEFORCE_H

#include "search/solve.h"

#include <functional>
#include <string>

namespace corvina
{

/// What a search by brute force has in the place of the options: safe mode, half the logical
/// processors, groups below the root on two levels, no scheduler.
TRunOverrides BruteForceOverrides();

/// A run that shows that no other solutions exist: without heuristics, in groups of two threads,
/// with short mates of two moves. A hybrid run looks for the first solution as usual before that.
/// The outcome is that of both phases, with their time added up; a stop in the first one ends the
/// run. onPhase is called with a text as a phase begins. The request keeps its settings,
/// but for m_bBruteForceOverrides. Throws as Solve does.
TSolveOutcome BruteForceRun(TSolveRequest& request, const TRunSettings& settings, bool bHybrid,
                            const TRunOverrides& overrides,
                            const std::function<void(const std::string& strText)>& onPhase);

} // namespace corvina

#endif
