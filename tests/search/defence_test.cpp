#include "search/defence.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"

#include <bit>

namespace corvina
{
namespace
{

TDefenceOutcome Defend(const char* pFen, int nMate, bool bThorough = false)
{
    TSolveRequest request;
    EXPECT_TRUE(ReadFen(*request.m_pChessboard, pFen));
    request.m_nRequestedMoves = static_cast<std::uint16_t>(2 * nMate);
    return FindBestDefence(request, bThorough);
}

TEST(Defence, EachOutcomeHasItsWords)
{
    struct TCase
    {
        const char* m_pFen;
        int m_nMate;
        bool m_bThorough;
        const char* m_pText;
    };
    const TCase aCases[] = {
        {"7k/8/6K1/8/8/8/8/R7", 1, false, "The only reply (not a defence against mate) : Kh8-g8"},
        {"7k/8/6K1/8/8/8/8/R7", 1, true, "The only reply (not a defence against mate) : Kh8-g8"},
        {"7k/5K2/8/8/8/8/8/B7", 1, false, "The only reply: Kh8-h7"},
        {"4k3/8/4K3/8/8/8/8/R7", 1, false,
         "Mate in the requested stipulation was refuted with: Ke8-d8\nEquivalent moves: Ke8-f8"},
        {"4k3/8/4K3/8/8/8/8/R7", 5, false,
         "Not found any defence against mate. The best looks: Ke8-d8\nEquivalent moves: Ke8-f8"},
        {"7R/3b4/k1p1r2P/8/8/5QP1/2K5/1R6", 3, false,
         "The only reply that prevents short mate: Re6-e2"},
        {"7R/3b4/k1p1r2P/8/8/5QP1/2K5/1R6", 3, true,
         "The only reply that prevents short mate (not a defence against mate) : Re6-e2"},
        {"7R/3b4/k1p1r2P/8/8/5QP1/2K5/1R6", 2, true,
         "Mate in the requested stipulation was refuted with: Re6-e2"},
    };
    for (const TCase& test : aCases)
        EXPECT_EQ(Defend(test.m_pFen, test.m_nMate, test.m_bThorough).m_strText, test.m_pText)
            << test.m_pFen << " in " << test.m_nMate;
}

TEST(Defence, RepliesRankByTheLengthOfTheMate)
{
    const TDefenceOutcome outcome = Defend("6k1/8/6K1/8/8/8/8/R6B", 3);
    EXPECT_TRUE(outcome.m_bMateFollows);
    ASSERT_EQ(outcome.m_vecRanked.size(), 2u);
    EXPECT_EQ(outcome.m_vecRanked[0].m_nMatedIn, 3);
    EXPECT_EQ(outcome.m_vecRanked[1].m_nMatedIn, 1);
    EXPECT_FALSE(outcome.m_vecRanked[0].m_bRefutes);
}

TEST(Defence, ASolvedPositionNeedsNoSearch)
{
    TSolveRequest request;
    ASSERT_TRUE(ReadFen(*request.m_pChessboard, "4k3/8/4K3/8/8/8/8/R7"));
    request.m_nRequestedMoves = 12;
    const TMove reply = {60, 61, 0, 0};
    const auto nMove = std::bit_cast<std::uint32_t>(reply);
    request.m_TemporaryRegister.InsertDefence(12, request.m_pChessboard->m_board, false, &nMove,
                                              false);
    const TDefenceOutcome outcome = FindBestDefence(request, false);
    EXPECT_TRUE(outcome.m_bMateFollows);
    EXPECT_EQ(outcome.m_strText,
              "Not found any defence against mate. The best looks: Ke8-f8 (from register)");
}

TEST(Defence, RepetitionsAreTold)
{
    TTaskRequest request(BoardOf("4k3/8/4K3/8/8/8/8/R7"), 6);
    for (const TMove move :
         {TMove{0, 8, 0, 0}, {60, 59, 0, 0}, {8, 0, 0, 0}, {59, 60, 0, 0}, {0, 8, 0, 0}})
        request.PlayMove(move);
    EXPECT_EQ(FindBestDefence(request, false).m_strText.substr(0, 37),
              "Program detected position repetition\n");

    // Black can only go to and fro.
    const TDefenceOutcome outcome = Defend("7k/5p1p/5P1P/8/1B6/8/8/K7", 9, true);
    EXPECT_FALSE(outcome.m_bMateFollows);
    EXPECT_TRUE(outcome.m_bRepetition);
}

TEST(Defence, RefusesWhatIsNoTask)
{
    const auto message = [](const char* pFen) { return FailureText([&] { Defend(pFen, 2); }); };
    EXPECT_EQ(message("7k/5Q2/6K1/8/8/8/8/8"), "No valid move found");
    EXPECT_EQ(message("6rk/8/8/8/8/8/8/6K1"),
              "White king cannot be checked in the mate-defence task starting postition.");
}

TEST(Defence, AStopLeavesWhatIsKnown)
{
    TSolveRequest request;
    ASSERT_TRUE(ReadFen(*request.m_pChessboard, "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR"));
    request.m_nRequestedMoves = 6;
    request.OnDefenceFound = [&](const TMove&, const std::string&, int) {
        request.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS);
    };
    const TDefenceOutcome outcome = FindBestDefence(request, false);
    EXPECT_TRUE(outcome.m_bStopped);
    EXPECT_EQ(outcome.m_vecRanked.size(), 1u);
    EXPECT_NE(outcome.m_strText.find(" (stopped by user)"), std::string::npos);
}

} // namespace
} // namespace corvina
