#include "search/solverequest.h"

#include "chess/moveset.h"
#include "chess/notation.h"

#include <algorithm>
#include <mutex>

namespace corvina
{
namespace
{

std::mutex g_csSolutions;

/// The number of solutions at which the run ends; 0 for none.
std::size_t SolutionLimit(const TSolveRequest& request)
{
    const std::uint32_t nRunOptions = request.m_nRunOptions;
    if (request.m_nSearchMode & SEARCH_FIRST)
        return 1;
    if (nRunOptions & RUN_STOPON2SOLUTIONS)
        return 2;
    if (nRunOptions & RUN_STOPON3SOLUTIONS)
        return 3;
    return nRunOptions & RUN_STOPON4SOLUTIONS ? 4 : 0;
}

} // namespace

void TSolveRequest::SetMateIn(int nMoves)
{
    SetStipulation(PROBLEM_DIRECTMATE, HalfMovesOfMate(std::clamp(nMoves, 1, MAX_MATE)));
}

bool HasEnoughSolutions(const TSolveRequest& request)
{
    const std::size_t nLimit = SolutionLimit(request);
    return nLimit && request.m_vecSolutions.size() >= nLimit;
}

TAddedSolution AddSolution(TSolveRequest& request, const TMove& move)
{
    const std::lock_guard guard(g_csSolutions);
    auto& vecSolutions = request.m_vecSolutions;
    if (ContainsMove(vecSolutions, move) || HasEnoughSolutions(request))
        return {false, HasEnoughSolutions(request)};
    if (request.m_pFoundSolutions)
        request.m_pFoundSolutions->Publish(move);
    vecSolutions.push_back(move);
    const bool bEnough = HasEnoughSolutions(request);
    if (bEnough)
        request.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS);
    if (request.OnSolutionFound)
        request.OnSolutionFound(move, PrintMove(move, *request.m_pChessboard),
                                request.m_nProblemNumber);
    return {true, bEnough};
}

} // namespace corvina
