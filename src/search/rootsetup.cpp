#include "search/rootsetup.h"

#include "heuristics/blackmobility.h"
#include "heuristics/blockedfigures.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/seasnake.h"
#include "heuristics/triangles.h"
#include "search/hooks.h"

#include <bit>

namespace corvina
{
namespace
{

/// Half-moves: TThreadContext::m_nShortMateCap.
constexpr std::uint16_t SHORT_MATE_BEHIND_ZUGZWANG = 11;

/// What the heuristics of zugzwang need to know of the root beside what the set tells. Those for
/// which the position has nothing leave the mask.
void TakeUpZugzwang(TChessboard& root, THeuristicsParams& params)
{
    constexpr std::uint16_t FLAGS =
        TChessboard::POSITION_PAWNWALK | TChessboard::POSITION_PREFERREDMOVES;
    TSolveRequest& request = *root.m_pRequest;
    root.m_nPositionFlags &= static_cast<std::uint16_t>(~FLAGS);
    // Behind a zugzwang that the user knows a mate is seldom short, with the heuristic or without.
    root.m_boardFlags &= static_cast<std::uint16_t>(~TChessboard::FLAG_SHORTMATECAP);
    if (!request.m_zugzwangMap.empty())
        root.m_boardFlags |= TChessboard::FLAG_SHORTMATECAP;
    request.m_preferredMoves.Clear();
    if (!(root.m_nHeuristics & SH_SEASNAKE) || !params.m_bDynamicSeaSnake)
        request.m_vecSeaSnakeMoves.clear();
    if (request.m_zugzwangMap.empty())
        root.m_nHeuristics &= ~SH_ZUGZWANG;
    if (root.m_nHeuristics & SH_SEASNAKE) {
        CompleteSeaSnake(root, params);
        root.m_nPositionFlags |= PawnWalkFlag(root, params);
        PreferSeaSnakeTriangle(root, params);
    }
    if (root.m_nHeuristics & SH_ZUGZWANGTRIANGLES) {
        if (params.m_triangleOrigin == NO_KEY_SQUARE)
            DetectTriangles(root, params);
        PreferTriangle(root, params);
    }
}

} // namespace

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
    TakeUpZugzwang(root, params);
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
    context.m_forbiddenSquares = root.m_pRequest->m_forbiddenSquares;
    context.m_forbiddenTargets = root.m_pRequest->m_forbiddenTargets;
    context.m_nShortMateCap = SHORT_MATE_BEHIND_ZUGZWANG;
    context.m_bTryUnblock = root.m_nHeuristics != 0;
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
    // A reduced problem stays one.
    if (!(root.m_boardFlags & TChessboard::FLAG_BISHOPSHUTOUT))
        root.m_moveFilter &= static_cast<std::uint8_t>(~TChessboard::FILTER_MODE_MASK);
}

} // namespace corvina
