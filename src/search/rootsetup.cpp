#include "search/rootsetup.h"

#include "chess/sides.h"
#include "heuristics/kingsurroundings.h"
#include "search/hooks.h"

#include <algorithm>

namespace corvina
{

namespace
{

/// Black figures, pawns and king left out, that could move if it were Black's turn.
std::uint8_t CountMovableBlackFigures(TChessboard& root)
{
    TLineContext line(root.m_nMoves + 1);
    TChessboard passed = root;
    passed.m_pParent = &root;
    passed.m_pThread = &line;
    if (root.IsWhiteToMove())
        passed.MakeWhiteNullMove();
    passed.m_nMoves = 2; // Black to move, whatever is left
    TSquareSet figures = TSide<EColour::Black>::Figures(passed.m_board) &
                         ~TSets::Equal(passed.m_board, BLACK_PAWN) & ~Bit(passed.BlackKing());
    std::uint8_t nMovable = 0;
    while (figures) {
        TMoveList moves;
        const int nMoves = passed.GenerateBlackFigureMoves(PopLowestSquare(figures), moves.data());
        nMovable += std::any_of(moves.data(), moves.data() + nMoves, [&](TMove move) {
            TChessboard child = passed;
            child.m_pParent = &passed;
            return child.MakeBlackUserMove(&move);
        });
    }
    return nMovable;
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
    params.m_nMovableBlackFigures = CountMovableBlackFigures(root);
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
