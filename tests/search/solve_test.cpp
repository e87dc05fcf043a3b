#include "support/chesstest.h"
#include "support/taskrequest.h"

namespace corvina
{
namespace
{

/// Mate in nMate moves by the second method.
bool SlowMates(const TSlowPosition& position, const TMove& move, int nMate)
{
    const TSlowPosition after = position.After(move);
    const std::vector<TMove> vecReplies = after.LegalMoves();
    if (vecReplies.empty() || nMate == 1)
        return after.IsMate();
    return std::all_of(vecReplies.begin(), vecReplies.end(), [&](const TMove& reply) {
        const TSlowPosition next = after.After(reply);
        const std::vector<TMove> vecMoves = next.LegalMoves();
        return std::any_of(vecMoves.begin(), vecMoves.end(),
                           [&](const TMove& again) { return SlowMates(next, again, nMate - 1); });
    });
}

TEST(Solve, PlainRecursionAgreesWithTheSecondMethod)
{
    std::mt19937 random(7);
    int nSolved = 0;
    for (int i = 0; i < 600; ++i) {
        const int nMate = i % 6 == 0 ? 2 : 1;
        const TChessboard board = RandomPosition(random, 4 + i % 12);
        const TSlowPosition slow(board.m_board, EColour::White);
        std::vector<TMove> vecExpected = slow.LegalMoves();
        std::erase_if(vecExpected,
                      [&](const TMove& move) { return !SlowMates(slow, move, nMate); });
        ASSERT_EQ(SortedTexts(SolutionsOf(board, nMate, true)), SortedTexts(vecExpected))
            << WriteFen(board, true) << " #" << nMate;
        nSolved += !vecExpected.empty();
    }
    EXPECT_GT(nSolved, 40) << "the generator makes too few positions with a mate";
}

TEST(Solve, FirstSolutionAllSolutionsAndLimits)
{
    constexpr const char* MANY = "8/8/8/8/8/k1K5/8/1Q6";
    TRunSettings first;
    first.m_bStopAtFirstSolution = true;
    TTaskRequest request(BoardOf(MANY), 2);
    const TSolveOutcome all = Solve(request, {});
    ASSERT_GT(all.m_vecSolutions.size(), 4u);
    EXPECT_EQ(Solve(request, first).m_vecSolutions.size(), 1u);
    request.m_nForcedSearchMode = SEARCH_ALL;
    EXPECT_EQ(Solve(request, first).m_vecSolutions.size(), all.m_vecSolutions.size());
    request.m_nForcedSearchMode = 0;
    request.m_nRunOptions = RUN_ALLSOLUTIONS;
    EXPECT_EQ(Solve(request, first).m_vecSolutions.size(), all.m_vecSolutions.size());
    request.m_nRequestedThreads = 3;
    Solve(request, first);
    EXPECT_EQ(request.m_nEffectiveThreads, 3);
    request.m_nForcedThreads = 2;
    Solve(request, first);
    EXPECT_EQ(request.m_nEffectiveThreads, 2);
    for (const auto& [nOption, nLimit] : {std::pair{RUN_STOPON2SOLUTIONS, 2u},
                                          {RUN_STOPON3SOLUTIONS, 3u},
                                          {RUN_STOPON4SOLUTIONS, 4u}})
    {
        request.m_nRunOptions = nOption;
        const TSolveOutcome outcome = Solve(request, {});
        EXPECT_EQ(outcome.m_vecSolutions.size(), nLimit);
        EXPECT_FALSE(outcome.m_bStopped);
    }
}

TEST(Solve, ReportsEachSolutionAndTheEnd)
{
    TTaskRequest request(BoardOf("8/8/8/8/8/k1K5/8/1Q6"), 2);
    request.m_nProblemNumber = 17;
    std::vector<std::string> vecTexts;
    request.OnSolutionFound = [&](const TMove&, const std::string& strText, int nNumber) {
        EXPECT_EQ(nNumber, 17);
        vecTexts.push_back(strText);
    };
    const TSolveOutcome outcome = Solve(request, {});
    ASSERT_EQ(vecTexts.size(), outcome.m_vecSolutions.size() + 1);
    EXPECT_EQ(vecTexts.back(), "");
    vecTexts.pop_back();
    std::sort(vecTexts.begin(), vecTexts.end());
    EXPECT_EQ(vecTexts, SortedKeys(outcome.m_vecSolutions, *request.m_pChessboard));
}

TEST(Solve, RefusesWhatIsNoTask)
{
    const auto message = [](const char* pFen, int nHalfMoves, std::uint8_t nType) {
        TTaskRequest request(BoardOf(pFen), 2);
        request.m_nRequestedMoves = static_cast<std::uint16_t>(nHalfMoves);
        request.m_nProblemType = nType;
        return FailureText([&] { Solve(request, {}); });
    };
    EXPECT_EQ(message("7k/8/8/8/8/8/8/K6R", 3, PROBLEM_DIRECTMATE),
              "Black king cannot be checked in the mate task starting postition.");
    EXPECT_EQ(message("7k/8/8/8/8/8/8/K5R1", 3, PROBLEM_SELFMATE),
              "Only mate problems (type=1) supported currently.");
    EXPECT_EQ(message("7k/8/8/8/8/8/8/K5R1", 3, PROBLEM_DIRECTMATE), "");
}

TEST(FoundSolutions, FourSlotsForTheProcess)
{
    const TFoundSolutionsHold a, b, c;
    {
        const TFoundSolutionsHold d, e;
        EXPECT_NE(d.get(), nullptr);
        EXPECT_EQ(e.get(), nullptr);
        d.get()->Publish(TMove{12, 28, 0, 0});
        EXPECT_TRUE(d.get()->Contains(TMove{12, 28, TMove::MARK, 1}));
        EXPECT_FALSE(d.get()->Contains(TMove{12, 28, KIND_QUEEN, 0}));
    }
    const TFoundSolutionsHold again;
    ASSERT_NE(again.get(), nullptr);
    EXPECT_FALSE(again.get()->Contains(TMove{12, 28, 0, 0})) << "a slot must start empty";
}

} // namespace
} // namespace corvina
