#include "heuristics/narrowedlists.h"

#include "heuristics/seasnake.h"
#include "heuristics/triangles.h"

namespace corvina
{
namespace
{

TNarrowedList ListTriangle(TChessboard& board, TMove* pMoves)
{
    return {GenerateTriangleMoves(board, pMoves), SH_ZUGZWANGTRIANGLES, false};
}

TNarrowedList ListZugzwang(TChessboard& board, TMove* pMoves)
{
    const int nMoves = GenerateZugzwangMoves(board, pMoves);
    if (nMoves == 0 && board.m_nMoves < MIN_ZUGZWANG_RETURN)
        DropForSubtree(board, SH_ZUGZWANG);
    return {nMoves, SH_ZUGZWANG, false};
}

} // namespace

TNarrowedList ListNarrowedMoves(TChessboard& board, TMove* pMoves)
{
    constexpr struct
    {
        std::uint32_t m_nHeuristic;
        TNarrowedList (*m_list)(TChessboard&, TMove*);
    } aLists[] = {{SH_ZUGZWANGTRIANGLES, ListTriangle},
                  {SH_SEASNAKE, GenerateSeaSnakeMoves},
                  {SH_ZUGZWANG, ListZugzwang}};
    for (const auto& list : aLists) {
        if (!(board.m_nHeuristics & list.m_nHeuristic))
            continue;
        const TNarrowedList narrowed = list.m_list(board, pMoves);
        if (narrowed.m_bMate || narrowed.m_nMoves != 0)
            return narrowed;
    }
    return {};
}

} // namespace corvina
