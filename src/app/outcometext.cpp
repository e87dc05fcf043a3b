#include "app/outcometext.h"

#include "chess/notation.h"
#include "heuristics/heuristicsparams.h"
#include "search/hooks.h"
#include "search/rootsetup.h"

#include <cstdio>

namespace corvina
{
namespace
{

int MovesOf(int nPlies)
{
    return (nPlies + 1) / 2;
}

/// The moves of a list, separated by commas.
std::string JoinedMoves(const std::vector<TMove>& vecMoves, const TChessboard& board)
{
    std::string strText;
    for (const TMove& move : vecMoves)
        strText += (strText.empty() ? "" : ", ") + PrintMove(move, board);
    return strText;
}

std::chrono::milliseconds ElapsedOf(const TSolveOutcome& outcome)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(outcome.m_elapsed);
}

/// At how many solutions the run was told to end; empty without such a limit.
std::string LimitText(std::uint32_t nRunOptions)
{
    constexpr const char* STOPPED = "Search for solutions has been stopped after ";
    if (nRunOptions & RUN_STOPON2SOLUTIONS)
        return std::string(STOPPED) + "detection of dual.";
    if (nRunOptions & RUN_STOPON3SOLUTIONS)
        return std::string(STOPPED) + "finding 3 solutions";
    return nRunOptions & RUN_STOPON4SOLUTIONS ? std::string(STOPPED) + "finding 4 solutions" : "";
}

std::string KindText(const TSolveRequest& request)
{
    constexpr std::uint8_t HEURISTIC_PHASE = 1;
    if (request.m_nHybridBruteForcePhase) {
        std::string strText = "* Hybrid brute force - first heuristical search for single "
                              "solution, then brute force search for dual(s)\n";
        if (request.m_nHybridBruteForcePhase == HEURISTIC_PHASE)
            strText += "  - now running the first (heuristical) phase of hybrid brute force (no "
                       "solution found yet)\n";
        return strText;
    }
    if (request.m_nSearchMode & SEARCH_FIRST)
        return "* Search for single solution\n";
    const std::pair<std::uint32_t, int> aLimits[] = {
        {RUN_STOPON2SOLUTIONS, 2}, {RUN_STOPON3SOLUTIONS, 3}, {RUN_STOPON4SOLUTIONS, 4}};
    for (const auto& [nOption, nLimit] : aLimits) {
        if (request.m_nRunOptions & nOption)
            return "* Search for no more than " + std::to_string(nLimit) + " solutions\n";
    }
    return "* Search for all solutions\n";
}

std::string ShortMateText(int nPlies)
{
    return nPlies < 0 ? "* Default depth of search for short mate (typically #7, sometimes #6 or "
                        "#8)\n"
                      : "* Custom depth of search for short mate: #" +
                            std::to_string(MovesOf(nPlies)) + "\n";
}

std::string ThreadsText(const TSolveRequest& request)
{
    constexpr int BRUTE_FORCE_GROUP = 2;
    std::string strText = "* Threads = " + std::to_string(request.m_nThreads);
    if (request.m_nEffectiveThreads > request.m_nThreads)
        strText += " (but forced by engine to " + std::to_string(request.m_nEffectiveThreads) + ")";
    strText += "\n";
    if (request.m_nThreads < 2)
        return strText;
    const int nLevels = request.m_nMultithreadingLevels;
    strText += "* Multithreading levels = " + std::to_string(nLevels) + "\n";
    if (nLevels < 2)
        return strText;
    // Levels may be as many as the threads allow: the product is for the eye.
    double dThreads = request.m_nEffectiveThreads;
    for (int i = 1; i < nLevels; ++i)
        dThreads *= request.m_bBruteForce ? BRUTE_FORCE_GROUP : request.m_nThreads;
    char text[64];
    std::snprintf(text, sizeof text, "* Effective number of main threads = %.0f\n", dThreads);
    return strText + text;
}

std::string SchedulerText(const TSolveRequest& request)
{
    const int nLevels = request.m_nSchedulerLevels, nFirst = request.m_nMultithreadingLevels + 1;
    std::string strText = "* Scheduler is off\n";
    if (nLevels)
        strText = "* Scheduler is on: moves from " + std::to_string(nFirst) + " to " +
                  std::to_string(nFirst + nLevels - 1) + " are 'juggled' by scheduler\n";
    return strText + (request.m_bCustomScheduler ? "* Custom scheduler is on\n"
                                                 : "* Custom scheduler is off\n");
}

/// The set with its parameters, some of which a root, a thread and a request have.
std::string SetText(const TSolveRequest& request)
{
    const THeuristicSet& set = request.m_heuristicSet;
    if (set.m_nHeuristics == 0)
        return "none";
    TSolveRequest shown;
    TChessboard& root = *shown.m_pChessboard;
    TThreadContext context(request.m_nRequestedMoves);
    root = *request.m_pChessboard;
    root.m_pRequest = &shown;
    root.m_nPass = PASS_WITH_HEURISTICS;
    ApplyToRoot(set, root);
    static_cast<THeuristicsParams&>(context) = set.m_params;
    root.m_pThread = &context;
    return GetHeuristicsText(root, !request.m_bSafeMode);
}

} // namespace

std::string ElapsedText(std::chrono::milliseconds elapsed)
{
    const long long nSeconds = elapsed.count() / 1000;
    int nFraction = static_cast<int>(elapsed.count() % 1000), nDigits = 3;
    for (const int nLimit : {1, 60, 600}) {
        if (nSeconds < nLimit)
            break;
        nFraction /= 10;
        --nDigits;
    }
    char text[64];
    if (nFraction == 0)
        std::snprintf(text, sizeof text, "(%lld sec.)", nSeconds);
    else
        std::snprintf(text, sizeof text, "(%lld.%0*d sec.)", nSeconds, nDigits, nFraction);
    return text;
}

std::string ThreatsText(const TSolveRequest& request, const TMove& key, const TThreats& threats)
{
    if (threats.m_vecMoves.empty())
        return {};
    TChessboard root = *request.m_pChessboard;
    TLineContext line(root.m_nInitialMoves);
    root.m_pThread = &line;
    TMove move = key;
    TChessboard& child = line.MakeChild(root);
    child.MakeWhiteUserMove(&move);
    return "threat: 2." + JoinedMoves(threats.m_vecMoves, child);
}

std::string SolutionsText(const TSolveRequest& request, const std::vector<TMove>& vecSolutions,
                          const TThreats& threats)
{
    std::string strText;
    for (const TMove& move : vecSolutions)
        strText += (strText.empty() ? "1." : ", 1.") + PrintMove(move, *request.m_pChessboard);
    if (vecSolutions.size() == 1 && !threats.m_vecMoves.empty())
        strText += " " + ThreatsText(request, vecSolutions.front(), threats);
    return strText;
}

int RunWord(const TSolveRequest& request, EBruteForceKind kind, bool bAllSolutions)
{
    if (kind == EBruteForceKind::Hybrid || (request.m_nRunOptions & RUN_HYBRIDBRUTEFORCE))
        return RUN_WORD_HYBRID;
    if (kind == EBruteForceKind::BruteForce || (request.m_nRunOptions & RUN_BRUTEFORCE))
        return RUN_WORD_BRUTE_FORCE;
    return bAllSolutions;
}

std::string StatusText(const TSolveRequest& request, const TSolveOutcome& outcome,
                       const TThreats& threats)
{
    std::string strText = SolutionsText(request, outcome.m_vecSolutions, threats);
    if (strText.empty())
        strText = "Not found any solutions for #" + std::to_string(request.GetStipulation());
    return strText + " " + ElapsedText(ElapsedOf(outcome));
}

std::string OutcomeMessage(const TSolveRequest& request, const TSolveOutcome& outcome,
                           bool bOnePass)
{
    const std::size_t nSolutions = outcome.m_vecSolutions.size();
    if (nSolutions >= 2) {
        const std::string strLimit = LimitText(request.m_nRunOptions);
        return strLimit.empty() ? "More than one solution found: " + std::to_string(nSolutions)
                                : strLimit;
    }
    if (nSolutions != 0 || outcome.m_bStopped)
        return {};
    const std::string strSkipped = SkippedPassesText(request, outcome, bOnePass);
    return "Not found any solutions for #" + std::to_string(request.GetStipulation()) +
           (strSkipped.empty() ? "" : "\n\nNote:\n" + strSkipped);
}

std::string SkippedPassesText(const TSolveRequest& request, const TSolveOutcome& outcome,
                              bool bOnePass)
{
    const THeuristicSet& set = request.m_heuristicSet;
    std::string strText;
    if (set.m_nHeuristics != 0 && bOnePass)
        strText += "\t* there was only one pass with heuristcs (relaxation of heuristics was "
                   "switched off by user's request)\n";
    if (set.m_nHeuristics != 0 && outcome.m_bDoubtful && !set.m_params.m_bRunPass2)
        strText += "\t* pass without heuristics has been skipped (on user's request)\n";
    return strText;
}

std::string LogText(const TSolveRequest& request, const TSolveOutcome& outcome, bool bStopped,
                    const std::string& strStatus)
{
    if (bStopped)
        return "Engine stopped: " + strStatus + "\n";
    const std::size_t nSolutions = outcome.m_vecSolutions.size();
    const std::string strCount =
        nSolutions == 0 ? "No solution found of the problem "
                        : std::to_string(nSolutions) + " solution(s) found of the problem ";
    return "Engine has completed: " + strCount + std::to_string(request.m_nProblemNumber) + "\n";
}

std::string RunSettingsText(const TSolveRequest& request, bool bSettled)
{
    return KindText(request) +
           (request.m_bSafeMode ? "* Safe mode is on (implicit quick mode heuristics is off)\n"
                                : "* Safe mode is off (implicit quick mode heuristics is on)\n") +
           ShortMateText(request.m_shLookForQuickerMateDepth) + ThreadsText(request) +
           SchedulerText(request) +
           "* Initial set of heuristics: " + (bSettled ? SetText(request) : "not chosen yet") +
           "\n";
}

} // namespace corvina
