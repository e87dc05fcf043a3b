#include "search/findmate.h"

#include "search/plainsearch.h"

namespace corvina
{
namespace
{

/// The pass that cuts nothing.
constexpr std::uint8_t PASS_WITHOUT_HEURISTICS = 2;

/// The analysis of one first move; 1 when it forces mate.
std::int8_t AnalyseFirstMove(TChessboard& root, TMove move)
{
    TThreadContext& context = ContextOf(root);
    TChessboard& child = context.MakeChild(root);
    if (!child.MakeWhiteMove(&move))
        return 0;
    ++context.m_nPositions;
    return PlainSearchBlack(child);
}

/// Goes through the first moves until the mode asks for no more. False when a stop leaves some of
/// them undecided.
bool DecideFirstMoves(TChessboard& root, const TMoveList& moves, int nMoves)
{
    TSolveRequest& request = *root.m_pRequest;
    for (int i = 0; i < nMoves; ++i) {
        const std::int8_t nResult = AnalyseFirstMove(root, moves[i]);
        if (nResult != 1 && request.IsStoppedForAll())
            return false;
        if (nResult != 1)
            continue;
        AddSolution(request, moves[i]);
        if ((request.m_nSearchMode & SEARCH_FIRST) || HasEnoughSolutions(request))
            return true;
    }
    return true;
}

} // namespace

std::int8_t FindMate(TChessboard& root, std::uint16_t nHalfMoves, std::vector<TMove>& vecResult)
{
    TSolveRequest& request = *root.m_pRequest;
    TThreadContext context(nHalfMoves);
    context.m_pRootBoard = &root;
    root.m_pThread = &context;
    root.m_nPass = PASS_WITHOUT_HEURISTICS;
    request.ClearStopState();
    request.m_vecSolutions.clear();

    TMoveList moves;
    const int nMoves = root.GenerateWhiteMoves(moves.data());
    request.m_nFirstMovesTotal = static_cast<std::uint32_t>(nMoves);
    request.m_bPassWithoutHeuristics = true;
    ++request.m_nPassCount;
    if (request.OnPassStart)
        request.OnPassStart(request.m_nPassCount);
    request.m_bCutShort = !DecideFirstMoves(root, moves, nMoves);
    vecResult = request.m_vecSolutions;
    request.m_nPositions = context.m_nPositions;
    root.m_pThread = nullptr;
    if (request.OnSolutionFound)
        request.OnSolutionFound(TMove{}, std::string(), request.m_nProblemNumber);
    return !vecResult.empty();
}

} // namespace corvina
