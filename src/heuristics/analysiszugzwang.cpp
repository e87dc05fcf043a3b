#include "heuristics/analysis.h"
#include "heuristics/seasnake.h"
#include "heuristics/triangles.h"
#include "search/solverequest.h"

namespace corvina
{
namespace
{

/// A pattern that a first move of White has to set up needs time for it.
constexpr int MIN_DYNAMIC_PLIES = 17;
constexpr int MIN_TRIANGLE_PLIES = 16;

} // namespace

void DetectZugzwangPatterns(TAnalysis& a)
{
    const TZugzwangMap map =
        MakeZugzwangMap(a.m_request.m_heuristicSet.m_vecZugzwangMoves, a.m_board);
    const bool bSeaSnake = DetectSeaSnake(a.m_board, a.m_params, a.m_vecSeaSnakeMoves, map);
    if (bSeaSnake && (!a.m_params.m_bDynamicSeaSnake || a.m_board.m_nMoves >= MIN_DYNAMIC_PLIES))
        a.Set(SH_SEASNAKE);
    else if (a.m_board.m_nMoves >= MIN_TRIANGLE_PLIES && DetectTriangles(a.m_board, a.m_params))
        a.Set(SH_ZUGZWANGTRIANGLES);
    if (!map.empty()) {
        a.Set(SH_ZUGZWANG);
        a.m_params.m_nZugzwangKey =
            KeyOfZugzwangMoves(a.m_request.m_heuristicSet.m_vecZugzwangMoves);
    }
}

/// White waits: he neither checks nor threatens, and a king who has no flight is to be mated where
/// he stands.
void RefineByZugzwang(TAnalysis& a)
{
    if (!a.Has(SH_SEASNAKE | SH_ZUGZWANGTRIANGLES))
        return;
    a.Clear(SH_FINDFORCEDMATE);
    const bool bExceptions = a.HasStrictKing() && a.m_params.m_bKingMoveExceptions;
    if (a.m_facts.m_nFreeSquares != 0 ||
        !(a.Has(SH_KEEPKINGWITHINEXTEDGE | SH_ASSERTBLACKKINGSURROUNDED) || bExceptions))
        return;
    a.Clear(SH_KEEPKINGWITHINEXTEDGE | SH_ASSERTBLACKKINGSURROUNDED);
    a.m_params.m_bSurroundedStrict = false;
    a.SetStrictKing(false);
}

void DropEdgeFormsOfSeaSnake(TAnalysis& a)
{
    if (a.Has(SH_SEASNAKE) && a.m_params.m_bEdgeFormsOff)
        a.Clear(SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE);
}

} // namespace corvina
