#include "heuristics/blockedfigures.h"
#include "heuristics/differential.h"
#include "heuristics/reduction.h"
#include "heuristics/rootunder.h"
#include "heuristics/singlequeen.h"
#include "heuristics/themedpositions.h"
#include "search/nodes.h"
#include "search/pinnedrook.h"
#include "search/tryunblock.h"

namespace corvina
{
namespace
{

/// Searches that go ahead of the passes or of a node: they may only add mates that are there.
TEST(AheadSearches, PinnedRooksAreSolvedAndChangeNoSolution)
{
    std::mt19937 random(81);
    TThemed themed(random);
    int nSolved = 0, nReached = 0, nMates = 0;
    std::uint64_t nRefused = 0;
    for (int i = 0; i < 20000; ++i) {
        TRootUnder root(themed.Make(ETheme::PinnedRook), "SH_3MOVESTOMATE", 7);
        root.t.request.m_nMinPinnedRookPlies = 5;
        TChessboard& board = root.t.board;
        if (!HasPinnedRook(board))
            continue;
        if (const auto mate = SolveByPinnedRook(board)) {
            ++nSolved;
            EXPECT_FALSE(SolveWith(board, (*mate + 1) / 2, "none").m_vecSolutions.empty())
                << WriteFen(board, true);
        }
        if (i % 8)
            continue;
        const TTask task = MakeTask(board, 3 + (i % 64 == 0));
        const TRunOf run = SolveWith(board, task.m_nMate, "SH_3MOVESTOMATE", 1 + i / 8 % 2);
        ASSERT_EQ(run.m_vecSolutions, task.m_vecSolutions) << Describe(task, "3MOVESTOMATE");
        nReached += run.m_nPinnedRookSearches > 0;
        nMates += run.m_nPinnedRookMates > 0;
        nRefused += run.m_anCuts[std::countr_zero(SH_USEBLOCKBLACKPAWNSLEVEL)];
    }
    EXPECT_GT(nSolved, 10);
    EXPECT_GT(nReached, 100);
    EXPECT_GT(nMates, 10);
    EXPECT_GT(nRefused, 100u);
}

TEST(AheadSearches, SingleQueensMateAndChangeNoSolution)
{
    std::mt19937 random(82);
    TThemed themed(random);
    int nDetected = 0, nMates = 0;
    for (int i = 0; i < 1500; ++i) {
        const TTask task = MakeTask(themed.Make(ETheme::SingleQueen), 2 + i % 10 / 5);
        const TRunOf run = SolveWith(task.m_board, task.m_nMate, "SH_SINGLEQUEENMATE");
        ASSERT_EQ(run.m_vecSolutions, task.m_vecSolutions) << Describe(task, "SH_SINGLEQUEENMATE");
        nDetected += IsSingleQueenMate(task.m_board);
        nMates += run.m_nSingleQueenMates;
    }
    EXPECT_GT(nDetected, 30);
    EXPECT_GT(nMates, 30);
}

TEST(AheadSearches, SingleQueensAreToldApart)
{
    EXPECT_TRUE(IsSingleQueenMate(BoardOf("8/8/8/p7/P6k/8/5K2/3Q4")));
    EXPECT_FALSE(IsSingleQueenMate(BoardOf("8/8/p7/8/P6k/8/5K2/3Q4"))); // free pawns
    EXPECT_FALSE(IsSingleQueenMate(BoardOf("8/8/8/p7/Q6k/8/5K2/8")));   // the queen holds
    EXPECT_FALSE(IsSingleQueenMate(BoardOf("8/8/8/p7/P6k/8/5K2/3QB3")));
    EXPECT_TRUE(IsCornerPattern(BoardOf("7k/8/8/p7/P7/8/5K2/3Q4")));
    EXPECT_FALSE(IsCornerPattern(BoardOf("8/8/8/p2k4/P7/8/5K2/3Q4")));
    EXPECT_TRUE(IsWhiteMaterialShort(BoardOf("7k/8/r7/P7/8/2P5/5K2/3R4")));
    EXPECT_FALSE(IsWhiteMaterialShort(BoardOf("7k/8/8/P7/8/2P5/5K2/3R4")));
}

/// A list that the search begins for a subtree finds no mate that isn't there, and goes again.
TEST(AheadSearches, FiguresThatCameToBeBlockedAreListedForASubtree)
{
    std::mt19937 random(83);
    TThemed themed(random);
    int nMates = 0;
    std::uint64_t nTries = 0;
    for (int i = 0; i < 30000; ++i) {
        TRootUnder root(themed.Make(ETheme::Blocked), "SH_3MOVESTOMATE", 5);
        TChessboard& board = root.t.board;
        if (!CanTryUnblock(board))
            continue;
        const THeuristicsParams before = root.t.context;
        const auto search = [](TChessboard& child) { return SearchWhite<NODE_MAIN>(child, true); };
        const bool bMate = SearchWithBlockedFigures(board, search) == RESULT_MATE;
        EXPECT_TRUE(before == static_cast<const THeuristicsParams&>(root.t.context));
        EXPECT_EQ(board.m_nHeuristics, SH_3MOVESTOMATE);
        nMates += bMate;
        nTries = root.t.context.m_nUnblockTries + nTries;
        if (bMate) {
            EXPECT_FALSE(SolveWith(board, 3, "none").m_vecSolutions.empty())
                << WriteFen(board, true);
        }
    }
    EXPECT_GT(nMates, 20);
    EXPECT_GT(nTries, 100u);
}

/// The same within runs.
TEST(AheadSearches, TriesWithBlockedFiguresChangeNoSolution)
{
    std::mt19937 random(84);
    TThemed themed(random);
    int nTrying = 0, nSolved = 0;
    for (int i = 0; i < 20000; ++i) {
        const TChessboard board = themed.Make(ETheme::Blocked);
        if (FindBlockedFigures(board).CountFigures() < 2)
            continue;
        const TTask task = MakeTask(board, 3 + (i % 30 == 0));
        const TRunOf run = SolveWith(task.m_board, task.m_nMate, "SH_3MOVESTOMATE", 1 + i % 2);
        ASSERT_EQ(run.m_vecSolutions, task.m_vecSolutions) << Describe(task, "3MOVESTOMATE");
        nTrying += run.m_nUnblockTries > 0;
        nSolved += run.m_nUnblockTries > 0 && !run.m_vecSolutions.empty();
    }
    EXPECT_GE(nTrying, 10);
    EXPECT_GE(nSolved, 10);
}

TEST(AheadSearches, FarPawnsAndTheFiguresThatHoldThemAreTakenOff)
{
    const auto reduced = [](const char* pFen, int nMoves) -> std::string {
        TChessboard board = BoardOf(pFen);
        board.m_nMoves = static_cast<std::uint16_t>(nMoves);
        return ReducePosition(board) ? WriteFen(board, true) : "";
    };
    EXPECT_EQ(reduced("7k/8/8/p7/8/8/3Q1K2/8", 19), "7k/8/8/8/8/8/3Q1K2/8");
    EXPECT_EQ(reduced("7k/8/8/p7/B7/8/3Q1K2/8", 19), "7k/8/8/8/8/8/3Q1K2/8");
    EXPECT_EQ(reduced("7k/8/8/p7/8/8/3Q1K2/8", 17), "");
    EXPECT_EQ(reduced("7k/6p1/8/p7/8/8/3Q1K2/8", 19), ""); // a pawn next to the king
    EXPECT_EQ(reduced("7k/8/8/p7/Q7/8/5K2/8", 19), "");    // nothing left to mate with
    EXPECT_FALSE(HasReducedPosition(BoardOf("7k/8/8/p7/8/8/3Q1K2/8")));
}

} // namespace
} // namespace corvina
