#include "chess/fen.h"
#include "chess/notation.h"
#include "search/solve.h"
#include "support/data.h"
#include "support/slowchess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace corvina
{
namespace
{

std::vector<std::string> SortedKeys(const TSolveRequest& request,
                                    const std::vector<TMove>& vecMoves)
{
    std::vector<std::string> vecKeys;
    for (const TMove& move : vecMoves)
        vecKeys.push_back(PrintMove(move, *request.m_pChessboard));
    std::sort(vecKeys.begin(), vecKeys.end());
    return vecKeys;
}

void SetProblem(TSolveRequest& request, const std::string& strFen, int nMate)
{
    ASSERT_TRUE(ReadFen(*request.m_pChessboard, strFen)) << strFen;
    request.SetMateIn(nMate);
}

std::vector<std::string> Keys(const std::string& strFen, int nMate)
{
    TSolveRequest request;
    SetProblem(request, strFen, nMate);
    return SortedKeys(request, Solve(request, {}).m_vecSolutions);
}

/// Mate in nMate moves by the second method.
bool SlowMates(const TSlowPosition& position, const TMove& move, int nMate)
{
    TSlowPosition after = position;
    after.Play(move);
    const std::vector<TMove> vecReplies = after.LegalMoves();
    if (vecReplies.empty())
        return after.InCheck(EColour::Black);
    if (nMate == 1)
        return false;
    return std::all_of(vecReplies.begin(), vecReplies.end(), [&](const TMove& reply) {
        TSlowPosition next = after;
        next.Play(reply);
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
        TSolveRequest request;
        *request.m_pChessboard = RandomPosition(random, 4 + i % 12);
        const TSlowPosition slow(request.m_pChessboard->m_board, EColour::White);
        request.SetMateIn(nMate);
        request.m_bPlain = true;
        std::vector<TMove> vecExpected;
        for (const TMove& move : slow.LegalMoves()) {
            if (SlowMates(slow, move, nMate))
                vecExpected.push_back(move);
        }
        const TSolveOutcome outcome = Solve(request, {});
        ASSERT_EQ(SortedTexts(outcome.m_vecSolutions), SortedTexts(vecExpected))
            << WriteFen(*request.m_pChessboard, true) << " #" << nMate;
        nSolved += !vecExpected.empty();
    }
    EXPECT_GT(nSolved, 40) << "the generator makes too few positions with a mate";
}

TEST(Solve, SpecialMovesDecide)
{
    using TKeys = std::vector<std::string>;
    EXPECT_EQ(Keys("8/8/8/8/8/8/5Q2/R3K2k", 1), (TKeys{"0-0-0", "Ke1-d2", "Ke1-e2"}));
    // The rook on d8 forbids the castling and meets the other checks.
    EXPECT_EQ(Keys("3r4/8/8/8/8/8/5Q2/R3K2k", 1), TKeys{});
    EXPECT_EQ(Keys("3B4/8/R7/7k/8/7K/6P1/8", 1), (TKeys{"g2-g4"}));
    // The same pawn can be captured en passant.
    EXPECT_EQ(Keys("3B4/8/R7/7k/5p2/7K/6P1/8", 1), TKeys{});
    // A queen stalemates, a rook mates in two.
    EXPECT_EQ(Keys("8/5P1k/5K2/8/8/8/8/8", 2), (TKeys{"f7-f8R"}));
}

TEST(Solve, FirstSolutionAllSolutionsAndLimits)
{
    constexpr const char* MANY = "8/8/8/8/8/k1K5/8/1Q6";
    TRunSettings first;
    first.m_bStopAtFirstSolution = true;
    TSolveRequest request;
    SetProblem(request, MANY, 2);
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
    TSolveRequest request;
    SetProblem(request, "8/8/8/8/8/k1K5/8/1Q6", 2);
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
    EXPECT_EQ(vecTexts, SortedKeys(request, outcome.m_vecSolutions));
}

TEST(Solve, AStopEndsTheRunSoon)
{
    TSolveRequest request;
    SetProblem(request, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", 9);
    std::chrono::steady_clock::time_point stopped;
    std::thread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        stopped = std::chrono::steady_clock::now();
        request.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS);
    });
    const TSolveOutcome outcome = Solve(request, {});
    stopper.join();
    EXPECT_LT(std::chrono::steady_clock::now() - stopped, std::chrono::milliseconds(100));
    EXPECT_TRUE(outcome.m_bStopped);
    EXPECT_EQ(outcome.m_nResult, 0);
}

TEST(Solve, RefusesWhatIsNoTask)
{
    const auto message = [](const char* pFen, int nHalfMoves, std::uint8_t nType) {
        TSolveRequest request;
        SetProblem(request, pFen, 2);
        request.m_nRequestedMoves = static_cast<std::uint16_t>(nHalfMoves);
        request.m_nProblemType = nType;
        try {
            Solve(request, {});
        }
        catch (const ChessException& error) {
            return std::string(error.what());
        }
        return std::string();
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
