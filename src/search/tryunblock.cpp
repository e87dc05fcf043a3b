#include "search/tryunblock.h"

#include "chess/squaresets.h"
#include "heuristics/blackmobility.h"
#include "heuristics/blockedfigures.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/unblock.h"
#include "search/movelog.h"

#include <bit>

namespace corvina
{

bool CanTryUnblock(const TChessboard& child)
{
    constexpr int MAX_PLAYED = 7, MIN_BLOCKED = 2, MAX_MOVABLE = 1;
    const TThreadContext& context = ContextOf(child);
    if (child.m_nPass != 1 || (child.m_nHeuristics & SH_DONTLETFIGUREUNBLOCK) ||
        child.m_nInitialMoves - child.m_nMoves >= MAX_PLAYED ||
        !context.m_bCanApplyDlfuDynamically || context.m_nUnblockFigures != 0 ||
        context.m_nQuickerMateNesting != 0)
        return false;
    return FindBlockedFigures(child).CountFigures() >= MIN_BLOCKED &&
           std::popcount(FindBlackMobility(child).m_figures) <= MAX_MOVABLE;
}

TSearchResult SearchWithBlockedFigures(TChessboard& child,
                                       TSearchResult (*pSearchWhite)(TChessboard& child))
{
    TThreadContext& context = ContextOf(child);
    const THeuristicsParams params = context;
    const TLogOff logOff(context);
    TChessboard tried = child;
    TSquareSet figures = FindBlockedFigures(child).Figures();
    while (figures)
        ApplyUnblockDynamically(tried, PopLowestSquare(figures));
    TSearchResult nResult = RESULT_DOUBTFUL;
    if (tried.m_nHeuristics & SH_DONTLETFIGUREUNBLOCK) {
        ++context.m_nUnblockTries;
        nResult = pSearchWhite(tried);
    }
    static_cast<THeuristicsParams&>(context) = params;
    return nResult;
}

} // namespace corvina
