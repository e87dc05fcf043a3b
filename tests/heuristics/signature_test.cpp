#include "heuristics/heuristicbits.h"
#include "heuristics/randomsets.h"
#include "search/hooks.h"
#include "support/chesstest.h"

#include <map>

namespace corvina
{
namespace
{

constexpr std::uint32_t EDGES = SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE;

TEST(Signature, KeepsRandomSetsOfOneMaskApart)
{
    std::mt19937 random(11);
    const TChessboard position = RandomPosition(random, 20);
    TSetPosition t(position);
    for (const std::uint32_t nMask : {ALL_HEURISTICS, EDGES | SH_SEASNAKE | SH_KEYDIAGONAL}) {
        std::map<std::uint32_t, THeuristicsParams> mapSeen;
        for (int i = 0; i < 4000; ++i) {
            THeuristicSet set = RandomSet(random, position);
            set.m_nHeuristics = nMask;
            t.Apply(set);
            const auto [pSeen, bNew] = mapSeen.emplace(t.board.m_nHeuristicsParams, set.m_params);
            ASSERT_TRUE(bNew || pSeen->second == set.m_params);
        }
    }
}

TEST(Signature, OfListsAndOfFlagsOnTheBoard)
{
    std::mt19937 random(13);
    TSetPosition t(RandomPosition(random, 20));
    EXPECT_EQ(ComputeHeurParams(t.board), 0U);
    t.board.m_nHeuristics = SH_KEEPKINGONTHEEDGE | SH_DONTLETFIGUREUNBLOCK;
    t.context.m_nUnblockFigures = 2;
    t.context.m_bUnblockListSet = true;
    t.context.m_unblockSquares[0] = 7;
    t.context.m_unblockSquares[1] = 30;
    const std::uint32_t nStrict = ComputeHeurParams(t.board);
    std::swap(t.context.m_unblockSquares[0], t.context.m_unblockSquares[1]);
    EXPECT_EQ(ComputeHeurParams(t.board), nStrict) << "the order of a list means nothing";

    // A strict form that has given way in a line is the plain one.
    t.board.m_boardFlags |= TChessboard::FLAG_EDGERELAXED;
    const std::uint32_t nRelaxed = ComputeHeurParams(t.board);
    t.context.m_bKingMustNotMove = false;
    EXPECT_NE(nRelaxed, nStrict);
    EXPECT_EQ(ComputeHeurParams(t.board), nRelaxed);

    t.board.m_boardFlags |= TChessboard::FLAG_EDGECHECKDEFERRED;
    const std::uint32_t nDeferred = ComputeHeurParams(t.board);
    t.context.m_nDeferDeadline = 300;
    EXPECT_NE(ComputeHeurParams(t.board), nDeferred);
}

} // namespace
} // namespace corvina
