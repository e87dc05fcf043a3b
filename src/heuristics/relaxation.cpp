#include "heuristics/kingsurroundings.h"
#include "heuristics/relaxlog.h"
#include "heuristics/relaxpredicates.h"
#include "heuristics/relaxsteps.h"
#include "search/hooks.h"
#include "search/solverequest.h"

namespace corvina
{
namespace
{

template <std::uint32_t nHeuristic>
TStepResult DropIfOn(TRelaxation& r)
{
    return r.Has(nHeuristic) ? TStepResult(r.Drop(nHeuristic)) : std::nullopt;
}

/// The list of figures and the key figure take turns: first the one, then the other.
TStepResult SwapListAndKeyFigure(TRelaxation& r)
{
    if (!r.m_context.m_bAlternateKeyAndUnblock)
        return std::nullopt;
    if (r.Has(SH_DONTLETFIGUREUNBLOCK)) {
        r.Replace(SH_DONTLETFIGUREUNBLOCK, SH_KEYWHITEFIGURE);
        return r.Ended();
    }
    r.Replace(SH_KEYWHITEFIGURE, SH_DONTLETFIGUREUNBLOCK);
    r.m_context.m_bAlternateKeyAndUnblock = false;
    return std::nullopt;
}

TStepResult StepOfForcedMate(TRelaxation& r)
{
    return r.Has(SH_FINDFORCEDMATE) ? TStepResult(RelaxForcedMate(r)) : std::nullopt;
}

/// Repetitions mean something again once the sea snake is over.
TStepResult DropSeaSnake(TRelaxation& r)
{
    if (!r.Has(SH_SEASNAKE))
        return std::nullopt;
    if (!r.m_context.m_bSeaSnakeQuickMode && !r.m_bPlan && r.m_pRequest)
        r.m_pRequest->m_bSafeMode = true;
    return r.Drop(SH_SEASNAKE);
}

TStepResult DropOneColourPlay(TRelaxation& r)
{
    if (!r.Has(SH_ONECOLORPLAYPOSSIBLE))
        return std::nullopt;
    r.m_board.m_moveFilter &= static_cast<std::uint8_t>(~TChessboard::FILTER_MODE_MASK);
    return r.Drop(SH_ONECOLORPLAYPOSSIBLE);
}

bool HoldsKingStill(const TRelaxation& r)
{
    return r.Has(SH_KEEPKINGONTHEEDGE) && r.m_context.m_bKingMustNotMove;
}

TStepResult SurroundAfterExceptions(TRelaxation& r)
{
    if (!HoldsKingStill(r) || !r.m_context.m_bKingMoveExceptions ||
        !r.m_context.m_bSurroundAfterExceptions)
        return std::nullopt;
    r.Replace(SH_KEEPKINGONTHEEDGE, SH_ASSERTBLACKKINGSURROUNDED);
    return r.Ended();
}

TStepResult DropKeyFigure(TRelaxation& r)
{
    if (!r.Has(SH_KEYWHITEFIGURE))
        return std::nullopt;
    if (HoldsKingStill(r) && r.Has(SH_DONTLETFIGUREUNBLOCK))
        r.m_context.m_bAlternateKeyAndUnblock = true;
    return r.Drop(SH_KEYWHITEFIGURE);
}

TStepResult DropKeyFigureAtWalledCorner(TRelaxation& r)
{
    const bool bApplies = WhiteFigures(r.m_board) >= 2 && IsBlackKingOnCorner(r.m_board) &&
                          IsBlackKingWalledIn(r.m_board);
    return bApplies ? DropKeyFigure(r) : std::nullopt;
}

TStepResult DropQueenChecksEarly(TRelaxation& r)
{
    return r.m_context.m_bDropQueenCheckEarly ? DropIfOn<SH_DONTLETBLACKQUEENCHECKTWICE>(r)
                                              : std::nullopt;
}

TStepResult DropPromotedEarly(TRelaxation& r)
{
    return r.m_context.m_bDropPromotedEarly ? DropIfOn<SH_DONTLETPROMOTEDQUEENMOVE>(r)
                                            : std::nullopt;
}

/// Against a bare king a figure may be lost, unless a few minor figures have to hold him.
TStepResult DropLostFiguresAgainstBareKing(TRelaxation& r)
{
    const TChessboard& b = r.m_board;
    const bool bNeedsAll = !HasFreeWhitePawn(b) && r.Has(SH_ASSERTBLACKKINGSURROUNDED) &&
                           WhiteMajors(b) == 0 && WhiteFigures(b) <= 3;
    if (!(b.m_nPositionFlags & TChessboard::POSITION_BAREBLACKKING) || bNeedsAll)
        return std::nullopt;
    return DropIfOn<SH_DONTLOSEANYFIGURES>(r);
}

TStepResult RelaxSurround(TRelaxation& r)
{
    if (!r.Has(SH_ASSERTBLACKKINGSURROUNDED))
        return std::nullopt;
    if (!r.m_context.m_bSurroundedStrict)
        return r.Drop(SH_ASSERTBLACKKINGSURROUNDED);
    r.m_context.m_bSurroundedStrict = false;
    return r.Ended();
}

/// The last ones go one by one, and what is left without a step of its own goes with them.
int RelaxTheRest(TRelaxation& r)
{
    for (const std::uint32_t nHeuristic : {SH_DONTLETBLACKQUEENCHECKTWICE, SH_SKIPWORSTWHITEMOVES,
                                           SH_SAVEQUEENROOK, SH_AREKINGSNEAR})
    {
        if (r.Has(nHeuristic))
            return r.Drop(nHeuristic);
    }
    return r.Drop(r.m_board.m_nHeuristics);
}

TStepResult RelaxWithoutEdge(TRelaxation& r)
{
    if (r.Has(SH_KEEPKINGONTHEEDGE))
        return std::nullopt;
    TStepResult result = RelaxUnblockList(r);
    if (!result)
        result = RelaxExtEdge(r);
    return result ? result : RelaxTheRest(r);
}

constexpr TStepResult (*g_aSteps[])(TRelaxation&) = {
    SwapListAndKeyFigure,
    StepOfForcedMate,
    DropIfOn<SH_SWEEPINGWHITEROOK>,
    DropIfOn<SH_ZUGZWANG>,
    DropSeaSnake,
    DropOneColourPlay,
    DropIfOn<SH_KEEPKINGNEARCORNER>,
    SurroundAfterExceptions,
    ShrinkLongUnblockList,
    DropIfOn<SH_DONTLEAVEMAINDIAGONAL>,
    DropKeyFigureAtWalledCorner,
    RelaxStrictKing,
    ShrinkUnblockList,
    DropKeyFigure,
    DropQueenChecksEarly,
    DropPromotedEarly,
    LetListedFiguresStep,
    DropIfOn<SH_SINGLEQUEENMATE>,
    DropLostFiguresAgainstBareKing,
    RelaxSurround,
    DropIfOn<SH_DONTLOSEANYFIGURES>,
    RelaxWithoutEdge,
};

int EndWithoutSet(TRelaxation& r)
{
    r.m_board.m_nHeuristics = r.m_board.m_nHeuristicsParams = 0;
    return NOTHING_LEFT;
}

/// With Black to move the set is that of the position before: the parent is relaxed, and the board
/// follows it.
int RelaxWithParent(TRelaxation& r)
{
    if (!r.m_board.m_pParent)
        return EndWithoutSet(r);
    const TChessboard saved = r.m_board;
    TRelaxation parent{*r.m_board.m_pParent, r.m_context, r.m_pRequest, r.m_bPlan};
    const int nResult = Relax(parent);
    r.m_board = saved;
    r.m_board.m_nHeuristics = nResult == NOTHING_LEFT ? 0 : parent.m_board.m_nHeuristics;
    r.m_board.m_nHeuristicsParams = SignatureOf(r.m_board, r.m_context);
    return nResult;
}

void RestoreSuspendedList(TRelaxation& r)
{
    r.m_bListIsBack = r.m_context.m_bUnblockSuspended;
    r.m_context.m_bUnblockSuspended = false;
    if (r.m_bListIsBack)
        r.Set(SH_DONTLETFIGUREUNBLOCK);
}

} // namespace

int Relax(TRelaxation& r)
{
    r.m_context.m_bFallbackRequested = false;
    if (!r.m_context.m_bLetRelax)
        return EndWithoutSet(r);
    if (!r.m_board.IsWhiteToMove())
        return RelaxWithParent(r);
    ++r.m_context.m_nPassIndex;
    RestoreSuspendedList(r);
    for (const auto step : g_aSteps) {
        if (const TStepResult result = step(r))
            return *result;
    }
    return RelaxPlainEdge(r);
}

int TryRelaxSpecialHeuristics(TChessboard& board)
{
    LogRelaxation("BEFORE", board);
    TRelaxation r{board, ContextOf(board), board.m_pRequest, false};
    const int nResult = Relax(r);
    LogRelaxation("AFTER ", board);
    return nResult;
}

} // namespace corvina
