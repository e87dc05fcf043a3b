#include "heuristics/setreader.h"
#include "search/quickrefutation.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"

#include <array>
#include <cstring>

namespace corvina
{
namespace
{

/// A task with a register that has seen some of its positions, as that of a run would have.
struct TSeenTask
{
    TSeenTask(const TChessboard& position, int nMate, const char* pSet, bool bSafeMode)
        : m_request(position, nMate)
    {
        m_request.m_nMinRegisterPlies = 0;
        ReadHeuristicsText(pSet, m_request.m_heuristicSet, &position);
        Solve(m_request, {.m_bQuickMode = !bSafeMode, .m_overrides = {}});
        m_request.ClearStopState();
        m_root.m_pParent = nullptr;
        TakeUpHeuristics(m_root);
        m_context.ReserveLevels(m_root.m_nMoves);
        PutOnThread(m_root, m_context);
    }
    ~TSeenTask() { m_root.m_pThread = nullptr; }

    TTaskRequest m_request;
    TThreadContext m_context{0};
    TChessboard& m_root = *m_request.m_pChessboard;
};

/// The answers seen, by their number.
using TAnswers = std::array<int, 4>;

/// Asks about the root and about the positions after each pair of moves; "no mate" must be true.
void ExpectTrueAnswers(const TChessboard& position, int nMate, const char* pSet, bool bSafeMode,
                       TAnswers& anAnswers)
{
    TSeenTask task(position, nMate, pSet, bSafeMode);
    const auto ask = [&](TChessboard& board) {
        const TChessboard before = board;
        const int nAnswer = QuickRefutationSearch(board, 2, 4, false);
        ++anAnswers[static_cast<std::size_t>(nAnswer)];
        ASSERT_EQ(std::memcmp(&before, &board, sizeof before), 0);
        ASSERT_EQ(task.m_context.m_nRefutationNesting, 0);
        if (nAnswer == QUICK_UNKNOWN || (nAnswer != QUICK_NO_MATE && board.m_nHeuristics != 0))
            return;
        const int nMovesLeft = (board.m_nMoves + 1) / 2;
        ASSERT_TRUE(SolutionsOf(board, nMovesLeft, true).empty())
            << WriteFen(board, true) << " #" << nMovesLeft << " with " << pSet;
    };
    ask(task.m_root);
    for (TMove move : LegalMoves(task.m_root)) {
        TChessboard& child = task.m_context.MakeChild(task.m_root);
        if (!child.MakeWhiteMove(&move))
            continue;
        for (TMove reply : LegalMoves(child)) {
            TChessboard& after = task.m_context.MakeChild(child);
            ASSERT_TRUE(after.MakeBlackMove(&reply));
            ask(after);
            if (testing::Test::HasFatalFailure())
                return;
        }
    }
}

TEST(QuickRefutation, NoMateIsTrueInTheFullDepth)
{
    constexpr const char* aSets[] = {"none", "SH_KEEPKINGONTHEEDGE", "SH_AREKINGSNEAR",
                                     "SH_DONTLETKINGMOVE, SH_DONTRECEDEBLACKKING",
                                     "SH_ASSERTBLACKKINGSURROUNDED(strict)"};
    std::mt19937 random(41);
    TAnswers anAnswers{};
    for (int i = 0; i < 300; ++i) {
        // The walk of a longer task ends where a mate of three moves may still be to come.
        const bool bLonger = i % 10 == 0;
        const TChessboard board = bLonger || i % 3 == 0
                                      ? RandomPosition(random, 3 + i % (bLonger ? 3 : 6))
                                      : ComposedPosition(random);
        ExpectTrueAnswers(board, bLonger ? 4 : 2 + i % 2,
                          aSets[static_cast<std::size_t>(i) % std::size(aSets)], i % 4 < 2,
                          anAnswers);
        if (HasFatalFailure())
            return;
    }
    EXPECT_GT(anAnswers[QUICK_UNKNOWN], 100);
    EXPECT_GT(anAnswers[QUICK_DOUBTFUL], 100);
    EXPECT_GT(anAnswers[QUICK_NO_MATE], 100);
}

/// A position after a reply of Black.
struct TAfterReply : TThreadPosition
{
    TAfterReply(const char* pFen, int nTask, int nLeft)
        : TThreadPosition(BoardOf(pFen), nTask, nLeft)
    {
        request.m_bUseRegister = false;
    }

    int DepthOfWalk()
    {
        context.m_nSortProbeDepth = 0;
        QuickRefutation(board);
        return context.m_nSortProbeDepth;
    }
};

TEST(QuickRefutation, IsDeeperNearTheRootOfALongTask)
{
    constexpr const char* pFen = "8/8/8/3k4/8/8/4K3/R6R";
    constexpr int aCases[][3] = {{11, 11, 0}, {13, 9, 0},  {13, 11, 2},   {15, 13, 4}, {19, 13, 2},
                                 {25, 15, 4}, {25, 13, 2}, {31, 29, 8},   {31, 27, 6}, {31, 25, 6},
                                 {31, 23, 4}, {31, 11, 2}, {129, 127, 8}, {129, 25, 2}};
    for (const auto& [nTask, nLeft, nDepth] : aCases)
        EXPECT_EQ(TAfterReply(pFen, nTask, nLeft).DepthOfWalk(), nDepth) << nTask << ' ' << nLeft;
}

TEST(QuickRefutation, IsNotTriedBesideAMateOrAnotherSearch)
{
    TAfterReply mate("k7/8/1K6/8/8/8/8/7R", 21, 15);
    EXPECT_EQ(mate.DepthOfWalk(), 0);
    TAfterReply position("8/8/8/3k4/8/8/4K3/R6R", 21, 15);
    EXPECT_GT(position.DepthOfWalk(), 0);
    position.context.m_nQuickerMateNesting = 1;
    EXPECT_EQ(position.DepthOfWalk(), 0);
    position.context.m_nQuickerMateNesting = 0;
    position.context.m_nRefutationNesting = 1;
    EXPECT_EQ(position.DepthOfWalk(), 0);
}

TEST(QuickRefutation, AStalematedWhiteDoesNotMate)
{
    TAfterReply stalemate("8/8/8/4b3/8/8/5k2/7K", 21, 15);
    for (const bool bMateInOneFirst : {false, true})
        EXPECT_EQ(QuickRefutationSearch(stalemate.board, 2, 2, bMateInOneFirst), QUICK_NO_MATE);
}

} // namespace
} // namespace corvina
