#include "app/bruteforce.h"

#include "chess/moveset.h"
#include "platform/machine.h"

#include <algorithm>

namespace corvina
{
namespace
{

// Values of m_nHybridBruteForcePhase.
constexpr std::uint8_t PHASE_NONE = 0;
constexpr std::uint8_t PHASE_HEURISTICS = 1;
constexpr std::uint8_t PHASE_BRUTE_FORCE = 2;

constexpr std::int16_t SHORT_MATE_PLIES = 2 * 2 - 1;

/// Gives the request back what the phases change in it.
class TRequestHold
{
public:
    explicit TRequestHold(TSolveRequest& request)
        : m_request(request), m_nSearchMode(request.m_nSearchMode),
          m_bBruteForce(request.m_bBruteForce), m_bAnalyse(request.m_bAnalyse),
          m_bProofSearch(request.m_bProofSearch), m_bClearRegister(request.m_bClearRegister)
    {
    }
    ~TRequestHold()
    {
        m_request.m_nSearchMode = m_nSearchMode;
        m_request.m_bBruteForce = m_bBruteForce;
        m_request.m_bAnalyse = m_bAnalyse;
        m_request.m_bProofSearch = m_bProofSearch;
        m_request.m_bClearRegister = m_bClearRegister;
    }
    TRequestHold(const TRequestHold&) = delete;
    TRequestHold& operator=(const TRequestHold&) = delete;

private:
    TSolveRequest& m_request;
    const std::uint8_t m_nSearchMode;
    const bool m_bBruteForce, m_bAnalyse, m_bProofSearch, m_bClearRegister;
};

/// The set and the depths that belong to heuristics, out of the way of a run without any.
class TNoHeuristics
{
public:
    explicit TNoHeuristics(TSolveRequest& request)
        : m_request(request), m_set(request.m_heuristicSet),
          m_analysisSeconds(request.m_analysisSeconds),
          m_shShortMate(request.m_shLookForQuickerMateDepth),
          m_bPredefinedDepth(request.m_bPredefinedDepth)
    {
        request.m_heuristicSet.m_nHeuristics = 0;
        request.m_heuristicSet.m_params.m_bRunPass2 = true;
        request.m_bAnalyse = request.m_bProofSearch = false;
        request.m_shLookForQuickerMateDepth = SHORT_MATE_PLIES;
        request.m_bPredefinedDepth = false;
    }
    ~TNoHeuristics()
    {
        m_request.m_heuristicSet = m_set;
        m_request.m_analysisSeconds = m_analysisSeconds;
        m_request.m_shLookForQuickerMateDepth = m_shShortMate;
        m_request.m_bPredefinedDepth = m_bPredefinedDepth;
    }
    TNoHeuristics(const TNoHeuristics&) = delete;
    TNoHeuristics& operator=(const TNoHeuristics&) = delete;

private:
    TSolveRequest& m_request;
    const THeuristicSet m_set;
    const std::optional<double> m_analysisSeconds;
    const std::int16_t m_shShortMate;
    const bool m_bPredefinedDepth;
};

TSolveOutcome FirstPhase(TSolveRequest& request, TRunSettings settings)
{
    request.m_nSearchMode = SEARCH_FIRST | SEARCH_THREADS | SEARCH_FIXED;
    settings.m_overrides.emplace();
    TSolveOutcome outcome = Solve(request, settings);
    // A stop that nobody asked for: the solution that was wanted ends the phase too.
    outcome.m_bStopped |= request.m_bStoppedByUser;
    // Doubts of a set are of no use without it.
    request.m_TemporaryRegister.Clear(TAggregatedTemporaryChessboardRegister::CLEAR_DOUBTFUL, true);
    return outcome;
}

TSolveOutcome SecondPhase(TSolveRequest& request, TRunSettings settings,
                          const TRunOverrides& overrides)
{
    const TNoHeuristics none(request);
    request.m_bBruteForce = request.m_bBruteForceOverrides = true;
    request.m_nSearchMode = SEARCH_ALL | SEARCH_THREADS | SEARCH_FIXED;
    settings.m_overrides = overrides;
    return Solve(request, settings);
}

/// Adds what the first phase has found.
void Join(const TSolveOutcome& first, TSolveOutcome& outcome)
{
    for (const TMove& move : first.m_vecSolutions) {
        if (!ContainsMove(outcome.m_vecSolutions, move))
            outcome.m_vecSolutions.push_back(move);
    }
    outcome.m_nResult = !outcome.m_vecSolutions.empty();
    outcome.m_bInfluencedByHand |= first.m_bInfluencedByHand;
    outcome.m_elapsed += first.m_elapsed;
}

} // namespace

TRunOverrides BruteForceOverrides()
{
    constexpr int MAX_THREADS = 255, LEVELS = 2;
    TRunOverrides overrides;
    overrides.m_nThreads = std::clamp(static_cast<int>(GetLogicalProcessors() / 2), 1, MAX_THREADS);
    overrides.m_nMultithreadingLevels = LEVELS;
    overrides.m_nSchedulerLevels = 0;
    return overrides;
}

TSolveOutcome BruteForceRun(TSolveRequest& request, const TRunSettings& settings, bool bHybrid,
                            const TRunOverrides& overrides,
                            const std::function<void(const std::string& strText)>& onPhase)
{
    const TRequestHold hold(request);
    request.m_nHybridBruteForcePhase = bHybrid ? PHASE_HEURISTICS : PHASE_NONE;
    TSolveOutcome first;
    std::uint64_t nPositions = 0;
    if (bHybrid) {
        onPhase("Search for the first solution...");
        first = FirstPhase(request, settings);
        if (first.m_bStopped)
            return first;
        nPositions = request.m_nPositions;
        request.m_nHybridBruteForcePhase = PHASE_BRUTE_FORCE;
        request.m_bClearRegister = false;
    }
    onPhase(bHybrid ? "Brute force search for further solutions..." : "Brute force search...");
    TSolveOutcome outcome = SecondPhase(request, settings, overrides);
    Join(first, outcome);
    request.m_vecSolutions = outcome.m_vecSolutions;
    request.m_nPositions += nPositions;
    return outcome;
}

} // namespace corvina
