#include "search/solve.h"

#include "heuristics/predefined.h"
#include "search/findmate.h"
#include "search/indications.h"
#include "search/predefinedlines.h"

#include <algorithm>
#include <utility>

namespace corvina
{
namespace
{

std::uint8_t SearchModeOf(const TSolveRequest& request, const TRunSettings& settings)
{
    if (request.m_nSearchMode & SEARCH_FIXED)
        return request.m_nSearchMode;
    std::uint8_t nMode = request.m_nForcedSearchMode;
    if (nMode == 0)
        nMode = static_cast<std::uint8_t>(
            (settings.m_bStopAtFirstSolution ? SEARCH_FIRST : SEARCH_ALL) |
            (request.m_nThreads > 1 ? SEARCH_THREADS : 0));
    if ((request.m_nRunOptions & RUN_ALLSOLUTIONS) && (nMode & SEARCH_FIRST))
        nMode = static_cast<std::uint8_t>((nMode & ~SEARCH_FIRST) | SEARCH_ALL);
    return nMode;
}

constexpr int MAX_THREADS = 255;

/// The number of threads that overrides all others, else the command's, else the problem's, else
/// that of the settings.
std::uint8_t ThreadsOf(const TSolveRequest& request, const TRunSettings& settings)
{
    int nThreads = settings.m_nThreads;
    if (settings.m_overrides && settings.m_overrides->m_nThreads)
        nThreads = *settings.m_overrides->m_nThreads;
    else if (request.m_nForcedThreads)
        nThreads = request.m_nForcedThreads;
    else if (request.m_nRequestedThreads > 0)
        nThreads = request.m_nRequestedThreads;
    return static_cast<std::uint8_t>(std::clamp(nThreads, 1, MAX_THREADS));
}

/// The problem's levels of multithreading, else those of the settings.
std::uint8_t LevelsOf(const TSolveRequest& request, const TRunSettings& settings)
{
    constexpr int MAX_LEVELS = 64;
    int nLevels = settings.m_nMultithreadingLevels;
    if (settings.m_overrides && settings.m_overrides->m_nMultithreadingLevels)
        nLevels = *settings.m_overrides->m_nMultithreadingLevels;
    else if (request.m_nRequestedMultithreadingLevels >= 0)
        nLevels = request.m_nRequestedMultithreadingLevels;
    return static_cast<std::uint8_t>(std::clamp(nLevels, 1, MAX_LEVELS));
}

std::uint8_t SchedulerLevelsOf(const TSolveRequest& request, const TRunSettings& settings)
{
    constexpr int MAX_LEVELS = 9;
    int nLevels = settings.m_nSchedulerLevels;
    if (settings.m_overrides && settings.m_overrides->m_nSchedulerLevels)
        nLevels = *settings.m_overrides->m_nSchedulerLevels;
    else if (request.m_shRequestedSchedulerLevels >= 0)
        nLevels = request.m_shRequestedSchedulerLevels;
    return static_cast<std::uint8_t>(std::clamp(nLevels, 0, MAX_LEVELS));
}

/// Resolves what the run takes from the options.
void PrepareRun(TSolveRequest& request, const TRunSettings& settings)
{
    request.m_bThreadsForced = false;
    request.m_bSolutionFound = false;
    request.m_bPassWithoutHeuristics = false;
    request.m_bInfluencedByHand = false;
    request.m_nPassCount = 0;
    request.m_nPositions = 0;
    request.m_bSafeMode = !settings.m_bQuickMode || (request.m_nRunOptions & RUN_SAFEMODE) ||
                          (settings.m_overrides && settings.m_overrides->m_bSafeMode);
    request.m_nMainVariantUse = settings.m_nMainVariantUse;
    if (request.m_nMainVariantUse == 0 && (request.m_nRunOptions & RUN_MAINVARIANTSORTS))
        request.m_nMainVariantUse = 1;
    request.m_nThreads = ThreadsOf(request, settings);
    request.m_nEffectiveThreads = request.m_nThreads;
    request.m_nSearchMode = SearchModeOf(request, settings);
    request.m_nMultithreadingLevels =
        request.m_nThreads > 1 ? LevelsOf(request, settings) : std::uint8_t{1};
    request.m_nSchedulerLevels = SchedulerLevelsOf(request, settings);
    request.m_bCustomScheduler = settings.m_bCustomScheduler && request.m_nSchedulerLevels != 0;
    request.m_bSchedulerThreadPool = settings.m_bSchedulerThreadPool;
    request.m_sharingCounts.Clear();
    request.m_bLastMoveStarted = false;
    request.m_nRunningThreads = 0;
    request.m_nShortestRepetitionDepth = request.m_nRequestedMoves;
}

/// What is known beforehand: the lines; the settings are for the analysis to apply.
void LookUpComposition(TSolveRequest& request, const TRunSettings& settings)
{
    const bool bUse = settings.m_bUsePredefinedSettings || request.m_bUsePredefinedSettings;
    const TPredefinedTables* pTables = settings.m_pPredefinedTables;
    if (bUse && !pTables)
        pTables = &PredefinedTables();
    request.m_pPredefinedTables = bUse ? pTables : nullptr;
    request.m_vecPreferredMoves.clear();
    // The request may have been run before, on its mirror image or with other options.
    if (std::exchange(request.m_bPredefinedDepth, false))
        request.m_shLookForQuickerMateDepth = -1;
    if (!bUse)
        return;
    try {
        ApplyPredefinedLines(request);
    }
    catch (const ChessException&) {
        if (request.OnMessage)
            request.OnMessage("Error in predefined sort indications.");
    }
}

/// The slot of a run for all solutions. When none is free its threads don't see what others prove.
class TFoundSolutionsOf
{
public:
    explicit TFoundSolutionsOf(TSolveRequest& request) : m_request(request)
    {
        if (!(request.m_nSearchMode & SEARCH_ALL))
            return;
        m_hold.emplace();
        request.m_pFoundSolutions = m_hold->get();
        if (!request.m_pFoundSolutions && request.OnMessage)
            request.OnMessage("Too many problems being solved at the same time.");
    }
    ~TFoundSolutionsOf() { m_request.m_pFoundSolutions = nullptr; }
    TFoundSolutionsOf(const TFoundSolutionsOf&) = delete;
    TFoundSolutionsOf& operator=(const TFoundSolutionsOf&) = delete;

private:
    TSolveRequest& m_request;
    std::optional<TFoundSolutionsHold> m_hold;
};

} // namespace

TSolveOutcome Solve(TSolveRequest& request, const TRunSettings& settings)
{
    if (request.m_nProblemType != PROBLEM_DIRECTMATE || request.m_nRequestedMoves % 2 == 0)
        throw ChessException("Only mate problems (type=1) supported currently.");
    request.ClearStopState();
    PrepareRun(request, settings);
    TChessboard& root = *request.m_pChessboard;
    root.m_pRequest = &request;
    root.CheckStartPosition(request.m_nRequestedMoves, true);
    // Solved positions of another problem are of no use here.
    request.m_TemporaryRegister.SetPosition(root.m_board);
    LoadSortIndications(request);
    LookUpComposition(request, settings);

    const TFoundSolutionsOf found(request);
    request.m_tStart = request.m_tFirstMoveStart = request.Now();
    TSolveOutcome outcome;
    outcome.m_nResult = FindMate(root, outcome.m_vecSolutions);
    outcome.m_elapsed = request.Now() - request.m_tStart;
    outcome.m_bStopped = request.m_bCutShort;
    outcome.m_bDoubtful = request.m_bDoubtful;
    outcome.m_bInfluencedByHand = request.m_bInfluencedByHand;
    return outcome;
}

} // namespace corvina
