#include "heuristics/heuristicbits.h"
#include "heuristics/randomsets.h"
#include "search/hooks.h"
#include "support/data.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

namespace corvina
{
namespace
{

/// A parameter, and the heuristics that it matters to.
struct TParameter
{
    const char* m_pName;
    std::uint32_t m_nHeuristics;
    std::function<void(TSetPosition&)> m_change;
};

constexpr std::uint32_t EDGES = SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE;

const TParameter g_aParameters[] = {
    {"one square", SH_DONTLETFIGUREUNBLOCK,
     [](TSetPosition& t) { t.context.m_bUnblockOneSquare ^= 1; }},
    {"list", SH_DONTLETFIGUREUNBLOCK,
     [](TSetPosition& t) {
         t.context.m_nUnblockFigures += t.context.m_nUnblockFigures < 8 ? 1 : -1;
     }},
    {"listed square", SH_DONTLETFIGUREUNBLOCK,
     [](TSetPosition& t) {
         t.context.m_nUnblockFigures = std::max<std::int8_t>(t.context.m_nUnblockFigures, 1);
         t.context.m_unblockSquares[0] ^= 32;
     }},
    {"dynamic", ALL_HEURISTICS, [](TSetPosition& t) { t.context.m_bCanApplyDlfuDynamically ^= 1; }},
    {"strict", SH_KEEPKINGONTHEEDGE, [](TSetPosition& t) { t.context.m_bKingMustNotMove ^= 1; }},
    {"exceptions", SH_KEEPKINGONTHEEDGE,
     [](TSetPosition& t) { t.context.m_bKingMoveExceptions ^= 1; }},
    {"corner squares", EDGES, [](TSetPosition& t) { t.context.m_bInclCorner ^= 1; }},
    {"captures", EDGES, [](TSetPosition& t) { t.context.m_nEdgeRelaxCaptures += 16; }},
    {"pawns", EDGES, [](TSetPosition& t) { t.context.m_bEdgeRelaxCountPawns ^= 1; }},
    {"ext only", SH_KEEPKINGONTHEEDGE, [](TSetPosition& t) { t.context.m_bEdgeRelaxExtOnly ^= 1; }},
    {"on pawn", EDGES, [](TSetPosition& t) { t.context.m_bEdgeRelaxOnPawn ^= 1; }},
    {"skip", EDGES, [](TSetPosition& t) { t.context.m_bSkipDeferIfNoChange ^= 1; }},
    {"defer", EDGES, [](TSetPosition& t) { t.context.m_nDeferMoves += 256; }},
    {"deferred", EDGES,
     [](TSetPosition& t) { t.board.m_boardFlags ^= TChessboard::FLAG_EDGECHECKDEFERRED; }},
    {"deadline without a deferred check", 0,
     [](TSetPosition& t) { t.context.m_nDeferDeadline += 1; }},
    {"filter", SH_ONECOLORPLAYPOSSIBLE, [](TSetPosition& t) { t.board.m_moveFilter ^= 1; }},
    {"triangle 1", SH_ZUGZWANGTRIANGLES,
     [](TSetPosition& t) { t.context.m_aTriangleFields[0] ^= 32; }},
    {"triangle 2", SH_ZUGZWANGTRIANGLES,
     [](TSetPosition& t) { t.context.m_aTriangleFields[1] ^= 1; }},
    {"diagonal", SH_DONTLEAVEMAINDIAGONAL,
     [](TSetPosition& t) { t.context.m_diagonalFigureSquare ^= 9; }},
    {"ext edge moves", SH_KEEPKINGWITHINEXTEDGE,
     [](TSetPosition& t) { t.context.m_bExtEdgeMoveOnly ^= 1; }},
    {"level", SH_FINDFORCEDMATE, [](TSetPosition& t) { t.context.m_nFfmLevel ^= 1; }},
    {"others", SH_FINDFORCEDMATE, [](TSetPosition& t) { t.context.m_nFfmWithOther -= 1; }},
    {"custom", SH_FINDFORCEDMATE, [](TSetPosition& t) { t.context.m_bFfmCustom ^= 1; }},
    {"preliminary", SH_FINDFORCEDMATE, [](TSetPosition& t) { t.context.m_bFfmPreliminary ^= 1; }},
    {"add captures", SH_FINDFORCEDMATE, [](TSetPosition& t) { t.context.m_bFfmAddCaptures ^= 1; }},
    {"promoted", SH_DONTLETPROMOTEDQUEENMOVE | SH_DONTLETPROMOTEDFIGUREMOVE,
     [](TSetPosition& t) { t.context.m_bPromotedStrict ^= 1; }},
    {"key line", SH_KEYLINE, [](TSetPosition& t) { t.context.m_keyLine ^= 4; }},
    {"key diagonal", SH_KEYDIAGONAL, [](TSetPosition& t) { t.context.m_keyDiagonal[1] ^= 1; }},
    {"save figure", SH_SAVEQUEENROOK,
     [](TSetPosition& t) { t.context.m_bSaveFigureException ^= 1; }},
    {"save pending", SH_SAVEQUEENROOK,
     [](TSetPosition& t) { t.board.m_boardFlags ^= TChessboard::FLAG_SAVEFIGUREPENDING; }},
    {"lose mode", SH_DONTLOSEANYFIGURES,
     [](TSetPosition& t) { t.context.m_nLoseFiguresMode ^= 1; }},
    {"key square", SH_KEYSQUARE, [](TSetPosition& t) { t.context.m_keySquare ^= 8; }},
    {"surrounded", SH_ASSERTBLACKKINGSURROUNDED,
     [](TSetPosition& t) { t.context.m_bSurroundedStrict ^= 1; }},
    {"custom data", SH_SINGLEQUEENMATE, [](TSetPosition& t) { t.context.m_nCustomDataLevel ^= 1; }},
    {"key figure", SH_KEYWHITEFIGURE, [](TSetPosition& t) { t.context.m_keyFigureSquare ^= 7; }},
    {"pinned", SH_KEYWHITEFIGURE, [](TSetPosition& t) { t.context.m_pinnedFigureSquare ^= 7; }},
    {"knight", SH_CAPTUREKNIGHT, [](TSetPosition& t) { t.context.m_bCaptureKnightFlag ^= 1; }},
    {"corner", SH_KEEPKINGNEARCORNER,
     [](TSetPosition& t) { t.context.m_nCornerDistance = -t.context.m_nCornerDistance; }},
    {"approach", SH_SEASNAKE, [](TSetPosition& t) { t.context.m_approachSquare ^= 1; }},
    {"pendulum", SH_SEASNAKE, [](TSetPosition& t) { t.context.m_pendulumSquare2 ^= 1; }},
    {"only after", SH_SEASNAKE, [](TSetPosition& t) { t.context.m_nSeaSnakeOnlyAfter ^= 1; }},
    {"pass", 0, [](TSetPosition& t) { t.context.m_nPassIndex += 1; }},
};

TEST(Signature, ChangesWithWhatMattersAndWithNothingElse)
{
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        TSetPosition t(RandomPosition(random, 14));
        const THeuristicSet set = RandomSet(random, t.board);
        t.Apply(set);
        const std::uint32_t nBefore = t.board.m_nHeuristicsParams;
        for (const TParameter& parameter : g_aParameters) {
            const std::uint16_t nFlags = t.board.m_boardFlags;
            parameter.m_change(t);
            const bool bMatters = (parameter.m_nHeuristics & set.m_nHeuristics) != 0;
            ASSERT_EQ(ComputeHeurParams(t.board) != nBefore, bMatters)
                << parameter.m_pName << std::hex << " " << set.m_nHeuristics;
            t.board.m_boardFlags = nFlags;
            t.Apply(set);
        }
    }
}

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
