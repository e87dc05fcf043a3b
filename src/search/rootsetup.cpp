#include "search/rootsetup.h"

#include "heuristics/blackmobility.h"
#include "heuristics/blockedfigures.h"
#include "heuristics/kingsurroundings.h"
#include "search/hooks.h"

#include <bit>

namespace corvina
{

void TakeUpHeuristics(TChessboard& root)
{
    TSolveRequest& request = *root.m_pRequest;
    request.m_nRootWhiteFigures = static_cast<std::uint8_t>(WhiteFigures(root));
    request.m_nRootBlackFigures = static_cast<std::uint8_t>(BlackFigures(root));
    request.m_nRootWhitePawns = root.m_nWhitePawns;
    request.m_nRootBlackPawns = root.m_nBlackPawns;
    THeuristicsParams& params = request.m_heuristicSet.m_params;
    params.m_nRootWhiteMajors = static_cast<std::uint8_t>(WhiteMajors(root));
    params.m_nRootWhiteMinors = static_cast<std::uint8_t>(WhiteFigures(root) - WhiteMajors(root));
    params.m_nRootBlackMajors = static_cast<std::uint8_t>(BlackMajors(root));
    params.m_nMovableBlackFigures =
        static_cast<std::uint8_t>(std::popcount(FindBlackMobility(root).m_figures));
    params.m_nBlockedBlackFigures =
        static_cast<std::uint8_t>(FindBlockedFigures(root).CountFigures());
    params.m_bDlfuPawnsBreakFree = CanBlackPawnsWalkInVain(root);
    params.m_nPassIndex = 0;
    ApplyToRoot(request.m_heuristicSet, root);
    if (request.m_bPlain)
        root.m_nHeuristics = 0;
    // An empty set has nothing to relax.
    root.m_nPass = root.m_nHeuristics == 0 ? PASS_WITHOUT_HEURISTICS : PASS_WITH_HEURISTICS;
    request.m_bPassWithoutHeuristics = false;
    request.m_nPassCount = 0;
    request.m_passEndTick.Clear();
}

void PutOnThread(TChessboard& root, TThreadContext& context)
{
    context.m_pRootBoard = &root;
    root.m_pThread = &context;
    static_cast<THeuristicsParams&>(context) = root.m_pRequest->m_heuristicSet.m_params;
    root.m_nHeuristicsParams = root.m_nHeuristics ? ComputeHeurParams(root) : 0;
}

std::uint64_t PlannedPasses(TChessboard& root, const TThreadContext& context)
{
    if (root.m_nHeuristics == 0)
        return context.m_bRunPass2;
    const TRelaxationCount plan = ComputeRelaxationPlan(root, false);
    return context.m_bRunPass2 + 1 + plan.m_nRelaxations - plan.m_nTimeDependent;
}

void DropHeuristics(TChessboard& root)
{
    root.m_nHeuristics = root.m_nHeuristicsParams = 0;
    root.m_nPass = PASS_WITHOUT_HEURISTICS;
}

} // namespace corvina
