#include "heuristics/kingsurroundings.h"
#include "heuristics/relaxpredicates.h"
#include "heuristics/relaxsteps.h"

#include <algorithm>
#include <vector>

namespace corvina
{
namespace
{

bool HasList(const TRelaxation& r)
{
    return r.Has(SH_DONTLETFIGUREUNBLOCK) || r.m_context.m_bDlfuDynamicActive;
}

void DropList(TRelaxation& r)
{
    r.Clear(SH_DONTLETFIGUREUNBLOCK);
    r.m_context.m_bCanApplyDlfuDynamically = false;
    r.m_context.m_bDlfuDynamicActive = false;
}

/// Takes the figure at nIndex off the list; the last one comes in its place.
void RemoveFromList(TRelaxation& r, int nIndex)
{
    THeuristicsParams& p = r.m_context;
    const int nLast = --p.m_nUnblockFigures;
    for (std::int8_t* pSquares :
         {p.m_unblockSquares, p.m_unblockSquaresAtRoot, r.m_board.m_trackedSquares})
    {
        pSquares[nIndex] = pSquares[nLast];
        pSquares[nLast] = -1;
    }
}

/// True when a figure was taken off and another one is left.
bool RemoveUnblockViolators(TRelaxation& r)
{
    THeuristicsParams& p = r.m_context;
    const std::int8_t nBefore = p.m_nUnblockFigures;
    for (int i = 0; i < p.m_nUnblockViolators; ++i) {
        std::int8_t* pEnd = p.m_unblockSquares + p.m_nUnblockFigures;
        std::int8_t* pFound = std::find(p.m_unblockSquares, pEnd, p.m_unblockViolators[i]);
        if (pFound == pEnd)
            continue;
        p.m_nUnblockFiguresBefore = nBefore;
        RemoveFromList(r, static_cast<int>(pFound - p.m_unblockSquares));
    }
    p.m_nUnblockViolators = 0;
    return p.m_nUnblockFigures != nBefore && p.m_nUnblockFigures > 0;
}

/// Leaves bishops and knights out of a list with a queen; false when that changes nothing.
bool ReduceUnblockToHeavyFigures(TRelaxation& r)
{
    THeuristicsParams& p = r.m_context;
    std::vector<std::int8_t> vecHeavy;
    bool bQueen = false;
    for (int i = 0; i < p.m_nUnblockFigures; ++i) {
        if (p.m_unblockSquares[i] < 0)
            continue;
        const TFigure figure = r.m_board.m_board[p.m_unblockSquares[i]];
        if (figure == BLACK_BISHOP || figure == BLACK_KNIGHT)
            continue;
        vecHeavy.push_back(p.m_unblockSquares[i]);
        bQueen |= figure == BLACK_QUEEN;
    }
    if (p.m_nUnblockFigures < 2 || !bQueen ||
        static_cast<int>(vecHeavy.size()) == p.m_nUnblockFigures)
        return false;
    std::sort(vecHeavy.begin(), vecHeavy.end());
    vecHeavy.resize(MAX_UNBLOCK_FIGURES, -1);
    p.m_nUnblockFigures = static_cast<std::int8_t>(std::find(vecHeavy.begin(), vecHeavy.end(), -1) -
                                                   vecHeavy.begin());
    for (std::int8_t* pSquares :
         {p.m_unblockSquares, p.m_unblockSquaresAtRoot, r.m_board.m_trackedSquares})
        std::copy(vecHeavy.begin(), vecHeavy.end(), pSquares);
    return true;
}

/// The king behind his two rings is shut in by pawns that can't move: the list can wait.
bool CanListWait(const TRelaxation& r)
{
    return r.Has(SH_KEEPKINGWITHINEXTEDGE) && !CanBlackFigureCheck(r.m_board) &&
           OnlyPawnsReachBlackKing(r.m_board) && !CanBlackPawnsMove(r.m_board);
}

} // namespace

TStepResult ShrinkUnblockList(TRelaxation& r)
{
    if (!r.m_context.m_bUnblockShrinkable || !HasList(r))
        return std::nullopt;
    if (!RemoveUnblockViolators(r)) {
        DropList(r);
        r.m_context.m_bFallbackRequested = r.m_context.m_bEnableFallback;
    }
    return r.Ended();
}

TStepResult ShrinkLongUnblockList(TRelaxation& r)
{
    constexpr int LONG_LIST = 3;
    return r.m_context.m_nUnblockShrinkFigures >= LONG_LIST ? ShrinkUnblockList(r) : std::nullopt;
}

TStepResult LetListedFiguresStep(TRelaxation& r)
{
    THeuristicsParams& p = r.m_context;
    if (!HasList(r) || p.m_nUnblockFigures == 0 || p.m_bUnblockOneSquare)
        return std::nullopt;
    p.m_bUnblockOneSquare = true;
    return r.Ended();
}

TStepResult RelaxUnblockList(TRelaxation& r)
{
    if (!HasList(r) || CanListWait(r))
        return std::nullopt;
    if (!ReduceUnblockToHeavyFigures(r))
        DropList(r);
    return r.Ended();
}

} // namespace corvina
