#include "cli/solving.h"

#include "chess/notation.h"
#include "cli/task.h"

#include <cstdio>

namespace corvina
{

TSolveOutcome SolveWithOptions(TSolveRequest& request, const TSolveOptions& options)
{
    // The note must not mix with a result that a program reads.
    request.m_pChessboard->CheckFigureLimits(nullptr, options.m_bJson ? stderr : stdout);
    TRunSettings settings = ApplyOptions(options.m_programOptions, request);
    settings.m_bStopAtFirstSolution = options.m_bFirst;
    request.m_nForcedThreads = static_cast<std::uint8_t>(options.m_nThreads);
    request.m_bPlain = options.m_bPlain;
    request.m_bUseRegister = !options.m_bNoRegister;

    const auto pWatchdog = StopAfter(request, options.m_dSeconds);
    return Solve(request, settings);
}

std::vector<std::string> MoveTexts(const TProblem& problem, const std::vector<TMove>& vecMoves)
{
    std::vector<std::string> vecTexts;
    for (const TMove& move : vecMoves)
        vecTexts.push_back(PrintMove(move, *problem.m_pChessboard));
    return vecTexts;
}

const char* ResultWord(const TSolveOutcome& outcome)
{
    if (outcome.m_bStopped)
        return "stopped";
    return outcome.m_nResult == 1 ? "solved" : "none";
}

void PrintSolutions(const TSolveRequest& request, const TSolveOutcome& outcome)
{
    for (const std::string& strMove : MoveTexts(request, outcome.m_vecSolutions))
        std::printf("  1.%s\n", strMove.c_str());
    const std::size_t nSolutions = outcome.m_vecSolutions.size();
    if (outcome.m_bStopped)
        std::printf("  stopped, %zu found so far", nSolutions);
    else if (nSolutions == 0)
        std::printf("  no solution");
    else
        std::printf("  %zu solution%s%s", nSolutions, nSolutions == 1 ? "" : "s",
                    request.m_nSearchMode & SEARCH_FIRST ? " (the first)" : "");
}

} // namespace corvina
