#ifndef CORVINA_SEARCH_SOLVE_H
#define CORVINA_SEARCH_SOLVE_H

#include "search/solverequest.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace corvina
{

/// What a phase of a brute force run has in the place of everything else that is said of it.
struct TRunOverrides
{
    std::optional<int> m_nThreads, m_nMultithreadingLevels, m_nSchedulerLevels;
    bool m_bSafeMode = true;
};

/// Values of the program's options that a run reads.
struct TRunSettings
{
    int m_nThreads = 1;
    int m_nMultithreadingLevels = 1; ///< 1: threads at the root only
    int m_nSchedulerLevels = 0;      ///< 0: off
    bool m_bCustomScheduler = true;  ///< TSolveRequest::m_bCustomScheduler, of a run with levels
    bool m_bSchedulerThreadPool = true;
    bool m_bStopAtFirstSolution = false;
    bool m_bQuickMode = true;
    /// Variants as sort indications: 0 none, 1 the main one, 2 all. A problem may ask for 1.
    std::uint8_t m_nMainVariantUse = 0;
    /// What is known of a composition is made use of. A problem may ask for it by itself.
    bool m_bUsePredefinedSettings = false;
    const TPredefinedTables* m_pPredefinedTables = nullptr; ///< null: Corvina's own
    std::optional<TRunOverrides> m_overrides;
};

struct TSolveOutcome
{
    /// 1: at least one solution, 0: none. 0 is a proof only without the two flags below.
    std::int8_t m_nResult = 0;
    std::vector<TMove> m_vecSolutions;
    bool m_bStopped = false;  ///< the run was ended before it was done
    bool m_bDoubtful = false; ///< first moves are left that no pass that was wanted has decided
    bool m_bInfluencedByHand = false; ///< a command by hand has changed the course of the run
    std::chrono::duration<double> m_elapsed{}; ///< seconds
};

/// Solves the problem of the request: finds the first moves of White that force mate within
/// m_nRequestedMoves half-moves, the first one or all, as m_nSearchMode, m_nForcedSearchMode, the
/// settings and m_nRunOptions say, in this order. A stop state set before the call is lifted.
/// Throws ChessException for a position that is no start position, and for a stipulation other
/// than a directmate.
TSolveOutcome Solve(TSolveRequest& request, const TRunSettings& settings);

} // namespace corvina

#endif
