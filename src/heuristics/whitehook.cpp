#include "heuristics/kingblocks.h"
#include "heuristics/materialblocks.h"
#include "search/hooks.h"

namespace corvina
{
namespace
{

struct TWhiteBlock
{
    std::uint32_t m_nHeuristic;
    bool (*m_isDoubtful)(const TChessboard& child);
};

/// In the order in which they run.
constexpr TWhiteBlock g_aWhiteBlocks[] = {
    {SH_SWEEPINGWHITEROOK, IsSweepGivenUp},
    {SH_ASSERTBLACKKINGSURROUNDED, IsSurroundLostByWhite},
    {SH_DONTLEAVEMAINDIAGONAL, IsMainDiagonalLeft},
    {SH_DONTLETPROMOTEDQUEENMOVE, IsPromotedQueenFree},
    {SH_DONTLETPROMOTEDFIGUREMOVE, IsPromotedFigureFree},
    {SH_DONTLETFIGUREUNBLOCK, IsFigureUnblocked},
};

} // namespace

const std::uint32_t WHITE_HOOK_MASK = SH_SWEEPINGWHITEROOK | SH_KEEPKINGONTHEEDGE |
                                      SH_DONTLEAVEMAINDIAGONAL | SH_DONTLETFIGUREUNBLOCK |
                                      SH_DONTLETPROMOTEDQUEENMOVE | SH_ASSERTBLACKKINGSURROUNDED |
                                      SH_DONTLETPROMOTEDFIGUREMOVE;

bool IsWhiteMoveDoubtful(TChessboard& child)
{
    for (const TWhiteBlock& block : g_aWhiteBlocks) {
        if (!(child.m_nHeuristics & block.m_nHeuristic) || !block.m_isDoubtful(child))
            continue;
        ContextOf(child).NoteWhiteCut(block.m_nHeuristic);
        return true;
    }
    return false;
}

} // namespace corvina
