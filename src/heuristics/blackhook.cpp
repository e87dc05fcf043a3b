#include "heuristics/kingblocks.h"
#include "heuristics/materialblocks.h"
#include "search/hooks.h"

#include <bit>

namespace corvina
{
namespace
{

/// A heuristic and its test.
struct TBlock
{
    std::uint32_t m_nHeuristic;
    EVerdict (*m_test)(TBlackMove&);
};

/// In the order in which they run: the first that cuts, or shows that nothing is to be cut, ends
/// the hook.
constexpr TBlock g_aBlocks[] = {
    {SH_SAVEQUEENROOK, TestSaveQueenRook},
    {SH_DONTLETFIGUREUNBLOCK, TestUnblockedFigure},
    {SH_DONTLETPROMOTEDQUEENMOVE, TestPromotedQueenMove},
    {SH_DONTLETPROMOTEDFIGUREMOVE, TestPromotedFigureMove},
    {SH_KEYLINE, TestKeyLine},
    {SH_KEYDIAGONAL, TestKeyDiagonal},
    {SH_DONTLETBLACKQUEENCHECKTWICE, TestQueenChecks},
    {SH_DONTLOSEANYFIGURES, TestLostFigure},
    {SH_AREKINGSNEAR, TestKingsNear},
    {SH_KEEPKINGNEARCORNER, TestKingNearCorner},
    {SH_KEEPKINGONTHEEDGE, TestKingOnTheEdge},
    {SH_KEEPKINGWITHINEXTEDGE, TestKingWithinExtEdge},
    {SH_ASSERTBLACKKINGSURROUNDED, TestKingSurrounded},
    {SH_CAPTUREKNIGHT, TestCaptureKnight},
    {SH_KEYWHITEFIGURE, TestKeyWhiteFigure},
    {SH_REDUCTIONTOGLOBREGPOS, TestReducedPosition},
    {SH_ZUGZWANGTRIANGLES, TestZugzwangTriangle},
    {SH_DONTLEAVEMAINDIAGONAL, TestMainDiagonal},
    {SH_SEASNAKE, TestSeaSnake},
    {SH_SWEEPINGWHITEROOK, TestSweepingRook},
    {SH_ONECOLORPLAYPOSSIBLE, TestOneColourPlay},
};

/// Shorter tasks are searched out sooner than White's material is looked at.
constexpr int MAX_PLIES_WITHOUT_IMPOSSIBILITY = 5;

/// Counts the hooks that are open.
class TNestingGuard
{
public:
    explicit TNestingGuard(TThreadContext& context) : m_context(context)
    {
        ++m_context.m_nHookNesting;
    }
    ~TNestingGuard() { --m_context.m_nHookNesting; }
    TNestingGuard(const TNestingGuard&) = delete;
    TNestingGuard& operator=(const TNestingGuard&) = delete;

private:
    TThreadContext& m_context;
};

/// A verdict with the reason behind it.
struct TReasonedVerdict
{
    EVerdict m_verdict = EVerdict::Passes;
    std::uint32_t m_nReason = 0;
};

TReasonedVerdict RunBlock(const TBlock& block, TBlackMove& move)
{
    if (!move.Has(block.m_nHeuristic))
        return {};
    return {block.m_test(move), block.m_nHeuristic};
}

TReasonedVerdict RunBlocks(TBlackMove& move)
{
    constexpr TBlock FIRST = {SH_3MOVESTOMATE, TestThreeMovesToMate};
    TReasonedVerdict result = RunBlock(FIRST, move);
    if (move.m_board.m_nMoves != 0) {
        for (const TBlock& block : g_aBlocks) {
            if (result.m_verdict != EVerdict::Passes)
                return result;
            result = RunBlock(block, move);
        }
    }
    if (result.m_verdict == EVerdict::Passes &&
        (move.m_board.m_nHeuristics ||
         move.m_board.m_nInitialMoves > MAX_PLIES_WITHOUT_IMPOSSIBILITY))
        result.m_verdict = TestImpossibility(move, &result.m_nReason);
    return result;
}

/// The answer of the hook; what made a move doubtful is noted and counted here for all blocks.
int Conclude(const TBlackMove& move, const TReasonedVerdict& result)
{
    switch (result.m_verdict) {
    case EVerdict::Passes:
        return move.m_bUndecided ? HOOK_UNDECIDED : HOOK_PASSES;
    case EVerdict::EndsHook:
        return HOOK_PASSES;
    default:
        break;
    }
    move.m_context.m_nDoubtReason = result.m_nReason;
    if (std::has_single_bit(result.m_nReason))
        ++move.m_context.m_anCuts[static_cast<std::size_t>(std::countr_zero(result.m_nReason))];
    return result.m_verdict == EVerdict::Doubtful ? HOOK_DOUBTFUL : HOOK_IMPOSSIBLE;
}

} // namespace

int IsBlackMoveDoubtful(TChessboard& board, TMove* pMove)
{
    const TNestingGuard guard(ContextOf(board));
    TBlackMove move(board, pMove);
    return Conclude(move, RunBlocks(move));
}

} // namespace corvina
