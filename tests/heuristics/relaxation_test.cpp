#include "heuristics/forcedmate.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/randomsets.h"
#include "heuristics/relaxlog.h"
#include "heuristics/relaxplan.h"
#include "platform/appfolder.h"
#include "search/hooks.h"
#include "support/chesstest.h"
#include "support/temporaryfolder.h"

#include <cstring>

namespace corvina
{
namespace
{

/// The sets of a run that ends each pass at once, by their signatures.
std::vector<std::pair<int, std::uint32_t>> RelaxToTheEnd(TSetPosition& t)
{
    constexpr int TOO_MANY = 80;
    t.request.m_tStart = std::chrono::steady_clock::now();
    t.request.m_passEndTick.Clear();
    std::vector<std::pair<int, std::uint32_t>> vecSteps;
    while (vecSteps.size() < TOO_MANY) {
        const int nResult = TryRelaxSpecialHeuristics(t.board);
        if (nResult == 0)
            return vecSteps;
        EXPECT_NE(t.board.m_nHeuristics, 0U);
        EXPECT_EQ(t.board.m_nHeuristicsParams, ComputeHeurParams(t.board));
        EXPECT_EQ(std::memcmp(t.board.m_trackedSquares, t.context.m_unblockSquares,
                              sizeof t.board.m_trackedSquares),
                  0);
        vecSteps.emplace_back(nResult, t.board.m_nHeuristicsParams);
    }
    ADD_FAILURE() << "no end";
    return vecSteps;
}

TEST(Relaxation, OfAnySetEndsAsPlanned)
{
    std::mt19937 random(5);
    std::size_t nLongest = 0;
    int nTimeDependent = 0;
    for (int i = 0; i < 4000; ++i) {
        TSetPosition t(RandomPosition(random, 4 + i % 20)), again(t.board);
        t.board.m_nPositionFlags = again.board.m_nPositionFlags =
            random() & (TChessboard::POSITION_FREEKING | TChessboard::POSITION_BAREBLACKKING |
                        TChessboard::POSITION_MANYFIGURES);
        THeuristicSet set = RandomSet(random, t.board);
        t.Apply(set);
        BeginPreliminaryRun(t.board, t.context);
        set.m_nHeuristics = t.board.m_nHeuristics;
        set.m_params = t.context;
        t.Apply(set);
        again.Apply(set);

        const TChessboard before = t.board;
        const TRelaxationCount plan = ComputeRelaxationPlan(t.board, false);
        const TRelaxationCount toEdgeEnd = ComputeRelaxationPlan(t.board, true);
        ASSERT_EQ(std::memcmp(&before, &t.board, sizeof before), 0);
        ASSERT_TRUE(t.context == set.m_params);
        ASSERT_FALSE(t.request.m_bSafeMode);

        const auto vecSteps = RelaxToTheEnd(t);
        ASSERT_EQ(RelaxToTheEnd(again), vecSteps);
        ASSERT_EQ(t.board.m_nHeuristics, 0U);
        ASSERT_EQ(t.board.m_nHeuristicsParams, 0U);
        nLongest = std::max(nLongest, vecSteps.size());
        ASSERT_EQ(plan.m_nRelaxations, static_cast<int>(vecSteps.size()));
        ASSERT_EQ(plan.m_nTimeDependent,
                  std::count_if(vecSteps.begin(), vecSteps.end(),
                                [](const auto& step) { return step.first < 0; }));
        ASSERT_LE(toEdgeEnd.m_nRelaxations, plan.m_nRelaxations);
        nTimeDependent += plan.m_nTimeDependent;
    }
    EXPECT_GT(nLongest, 10U);
    EXPECT_LT(nLongest, 50U);
    EXPECT_GT(nTimeDependent, 50);
}

/// The sets as the passes have them: "*" in front behind time; "-": what the pass before has,
/// without this text.
struct TPlanCase
{
    const char* m_pFen;
    std::vector<std::string> m_vecSets;
    void (*m_prepare)(TSetPosition&) = [](TSetPosition&) {};
    int m_nHalfMoves = 41;
};

const char* LONE_ROOK = "k7/8/8/8/8/8/5bnr/1R1K4";
const char* THREE_FIGURES = "8/8/2k5/8/8/8/8/1K1RBN2";

const auto g_bareKing = [](TSetPosition& t) {
    t.board.m_nPositionFlags |= TChessboard::POSITION_BAREBLACKKING;
};

const TPlanCase g_aPlans[] = {
    {LONE_ROOK, {"SH_3MOVESTOMATE"}},
    {LONE_ROOK, {"SH_AREKINGSNEAR, SH_3MOVESTOMATE", "-SH_AREKINGSNEAR, "}},
    // One after the other, and what no step knows goes with the last.
    {LONE_ROOK,
     {"SH_AREKINGSNEAR, SH_SWEEPINGWHITEROOK, SH_DONTRECEDEBLACKKING, SH_SAVEQUEEN/ROOK, "
      "SH_DONTLOSEANYFIGURES, SH_DONTLETBLACKQUEENCHECKTWICE, "
      "SH_ASSERTBLACKKINGSURROUNDED(strict), "
      "SH_SINGLEQUEENMATE, SH_KEEPKINGNEARCORNER(3S), SH_ZUGZWANG",
      "-SH_SWEEPINGWHITEROOK, ", "-, SH_ZUGZWANG", "-, SH_KEEPKINGNEARCORNER(3S)",
      "-, SH_SINGLEQUEENMATE", "-(strict)", "-, SH_ASSERTBLACKKINGSURROUNDED",
      "-SH_DONTLOSEANYFIGURES, ", "-, SH_DONTLETBLACKQUEENCHECKTWICE", "-, SH_SAVEQUEEN/ROOK",
      "-SH_AREKINGSNEAR, "}},
    // The list is off for one pass and comes back; the edge becomes the two outer rings, and with
    // one free square the surround heuristic follows.
    {LONE_ROOK,
     {"SH_DONTLETKINGMOVE, SH_DONTLETFIGUREUNBLOCK(F2,G2,H2)",
      "-, SH_DONTLETFIGUREUNBLOCK(F2,G2,H2)",
      "SH_KEEPKINGONTHEEDGE, SH_DONTLETFIGUREUNBLOCK(F2,G2,H2)",
      "SH_KEEPKINGONTHEEDGE, SH_DONTLETFIGUREUNBLOCK(EFF,F2,G2,H2)",
      "SH_KEEPKINGWITHINEXTEDGE, SH_DONTLETFIGUREUNBLOCK(EFF,F2,G2,H2)",
      "SH_KEEPKINGWITHINEXTEDGE (CannotApplyDLFUDynamically)",
      "SH_ASSERTBLACKKINGSURROUNDED (CannotApplyDLFUDynamically)"}},
    // Figures that broke the list leave it before it goes as a whole.
    {LONE_ROOK,
     {"SH_AREKINGSNEAR, SH_DONTLETFIGUREUNBLOCK(F2,G2,H2)",
      "SH_AREKINGSNEAR, SH_DONTLETFIGUREUNBLOCK(H2,G2)",
      "SH_AREKINGSNEAR (CannotApplyDLFUDynamically)"},
     [](TSetPosition& t) {
         t.context.m_bUnblockShrinkable = true;
         t.context.m_nUnblockViolators = 1;
         t.context.m_unblockViolators[0] = MakeSquare(5, 1);
     }},
    {"k7/8/8/8/8/8/5nqp/1R1K4",
     {"SH_DONTLETFIGUREUNBLOCK(EFF,F2,H2,G2), SH_KEYSQUARE",
      "SH_DONTLETFIGUREUNBLOCK(EFF,G2,H2), SH_KEYSQUARE",
      "SH_KEYSQUARE (CannotApplyDLFUDynamically)"}},
    // The key figure and the list take turns.
    {"6rk/6pp/8/8/8/8/8/K2N3R",
     {"SH_DONTLETKINGMOVE, SH_DONTLETFIGUREUNBLOCK(G8), SH_KEYWHITEFIGURE", "-, SH_KEYWHITEFIGURE",
      "SH_DONTLETKINGMOVE, SH_KEYWHITEFIGURE", "SH_KEEPKINGONTHEEDGE, SH_DONTLETFIGUREUNBLOCK(G8)",
      "SH_KEEPKINGONTHEEDGE, SH_DONTLETFIGUREUNBLOCK(EFF,G8)",
      "SH_KEEPKINGWITHINEXTEDGE, SH_DONTLETFIGUREUNBLOCK(EFF,G8)",
      "SH_KEEPKINGWITHINEXTEDGE (CannotApplyDLFUDynamically)",
      "SH_ASSERTBLACKKINGSURROUNDED (CannotApplyDLFUDynamically)"}},
    // All squares but one are Black's own: the king may move under exceptions first.
    {"6rk/6p1/8/8/8/8/8/K1RN4",
     {"SH_DONTLETKINGMOVE", "SH_DONTLETKINGMOVE(excptns)", "SH_ASSERTBLACKKINGSURROUNDED"},
     [](TSetPosition& t) { t.context.m_bSurroundAfterExceptions = true; }},
    {"k7/8/8/8/8/8/7Q/K5N1",
     {"SH_DONTLETKINGMOVE", "SH_KEEPKINGONTHEEDGE(incl.corner)", "SH_ASSERTBLACKKINGSURROUNDED"},
     [](TSetPosition& t) { t.context.m_nMovableBlackFigures = 2; }},
    // In the middle of the board nothing comes in the place of the edge.
    {"8/8/8/3k4/8/8/8/K6R", {"SH_KEEPKINGONTHEEDGE"}},
    {"8/8/8/3k4/8/8/8/K6R", {"SH_DONTLETKINGMOVE", "SH_ASSERTBLACKKINGSURROUNDED"}},
    // Against a bare king lost figures come first, unless a few minor figures need one another.
    {THREE_FIGURES,
     {"SH_DONTLOSEANYFIGURES, SH_ASSERTBLACKKINGSURROUNDED", "-SH_DONTLOSEANYFIGURES, "},
     g_bareKing},
    {"8/8/3k4/8/8/8/8/1KB1BN2",
     {"SH_DONTLOSEANYFIGURES, SH_ASSERTBLACKKINGSURROUNDED", "SH_DONTLOSEANYFIGURES"},
     g_bareKing},
    // The cycle of the forced mate search.
    {"8/8/2k5/8/8/8/8/1K1RB3",
     {"SH_AREKINGSNEAR, SH_FINDFORCEDMATE(#1)", "SH_AREKINGSNEAR, SH_FINDFORCEDMATE(#1+)",
      "SH_AREKINGSNEAR, SH_FINDFORCEDMATE(#2)", "SH_AREKINGSNEAR"},
     [](TSetPosition& t) { t.context.m_nFfmRelaxations = 2; }},
    {"8/8/2k5/8/8/8/8/1K1RB3",
     {"SH_FINDFORCEDMATE(#2)", "SH_FINDFORCEDMATE(#2+)"},
     [](TSetPosition&) {},
     21},
    {"8/8/2k5/8/8/8/8/1K1Q4",
     {"SH_FINDFORCEDMATE(#1)", "SH_FINDFORCEDMATE(#2)"},
     [](TSetPosition& t) { t.context.m_nFfmRelaxations = 1; }},
    {THREE_FIGURES,
     {"SH_AREKINGSNEAR, SH_FINDFORCEDMATE(CheckOnly)", "*SH_AREKINGSNEAR, SH_FINDFORCEDMATE(#1+)",
      "*SH_AREKINGSNEAR, SH_FINDFORCEDMATE(#2+)", "SH_AREKINGSNEAR"}},
    {THREE_FIGURES,
     {"SH_FINDFORCEDMATE(#2-Preliminary-Custom)", "SH_FINDFORCEDMATE(#2-Custom)",
      "*SH_FINDFORCEDMATE(#2+-Custom)", "SH_FINDFORCEDMATE(#2)", "*SH_FINDFORCEDMATE(#2+)"}},
};

TEST(Relaxation, PlansInWords)
{
    for (const TPlanCase& test : g_aPlans) {
        TSetPosition t(BoardOf(test.m_pFen), test.m_nHalfMoves);
        t.Apply(test.m_vecSets[0]);
        test.m_prepare(t);
        std::string strExpected, strSet;
        for (std::size_t i = 0; i < test.m_vecSets.size(); ++i) {
            const bool bTime = test.m_vecSets[i][0] == '*';
            const std::string strText = test.m_vecSets[i].substr(bTime);
            if (strText[0] == '-')
                strSet.erase(strSet.find(strText.substr(1)), strText.size() - 1);
            else
                strSet = strText;
            strExpected += i == 0 ? "Pass 1: " : "\n\nPass 1" + std::string(1, char('a' + i));
            strExpected += i == 0 ? "" : bTime ? "*: " : ": ";
            strExpected += strSet;
        }
        if (strExpected.find('*') != std::string::npos)
            strExpected +=
                "\n\n* time-dependent relaxation (non-deterministic) - possible, but "
                "actually occurs only if all previous passes are completed in a short time";
        EXPECT_EQ(ComposeRelaxationPlan(t.board), strExpected);
    }
}

TEST(Relaxation, SwitchedOffOrBesideTheSet)
{
    TSetPosition t(BoardOf(LONE_ROOK));
    const std::string strSet =
        "SH_SEASNAKE, SH_AREKINGSNEAR, SH_ONECOLORPLAYPOSSIBLE(WhiteSquaresOnly)";
    t.Apply(strSet);
    t.context.m_bFallbackRequested = true;
    EXPECT_EQ(TryRelaxSpecialHeuristics(t.board), 1);
    EXPECT_TRUE(t.request.m_bSafeMode);
    EXPECT_FALSE(t.context.m_bFallbackRequested);
    EXPECT_EQ(t.context.m_nPassIndex, 1);
    EXPECT_EQ(TryRelaxSpecialHeuristics(t.board), 1);
    EXPECT_EQ(t.board.m_moveFilter & TChessboard::FILTER_MODE_MASK, 0);
    EXPECT_EQ(t.board.m_nHeuristics, SH_AREKINGSNEAR);

    t.Apply(strSet);
    t.context.m_bLetRelax = false;
    EXPECT_EQ(TryRelaxSpecialHeuristics(t.board), 0);
    EXPECT_EQ(t.board.m_nHeuristics, 0U);
    EXPECT_EQ(t.board.m_nHeuristicsParams, 0U);
    EXPECT_EQ(ComposeRelaxationPlan(t.board), "No heuristics selected.");
}

TEST(Relaxation, WithBlackToMoveFollowsTheParent)
{
    TSetPosition t(BoardOf(LONE_ROOK));
    t.Apply("SH_AREKINGSNEAR, SH_ZUGZWANG");
    TChessboard child = PlayMove(t.board, LegalMoves(t.board)[0]);
    const TChessboard childBefore = child, rootBefore = t.board;
    EXPECT_EQ(ComputeRelaxationPlan(child, false).m_nRelaxations, 1);
    EXPECT_EQ(std::memcmp(&child, &childBefore, sizeof child), 0);
    EXPECT_EQ(std::memcmp(&t.board, &rootBefore, sizeof child), 0);

    EXPECT_EQ(TryRelaxSpecialHeuristics(child), 1);
    EXPECT_EQ(child.m_nHeuristics, SH_AREKINGSNEAR);
    EXPECT_EQ(child.m_nHeuristicsParams, ComputeHeurParams(child));
    EXPECT_EQ(t.board.m_nHeuristics, SH_AREKINGSNEAR);
    child.m_nHeuristics = childBefore.m_nHeuristics;
    child.m_nHeuristicsParams = childBefore.m_nHeuristicsParams;
    EXPECT_EQ(std::memcmp(&child, &childBefore, sizeof child), 0);
    EXPECT_EQ(TryRelaxSpecialHeuristics(child), 0);
    EXPECT_EQ(child.m_nHeuristics, 0U);

    child.m_nHeuristics = SH_ZUGZWANG;
    child.m_pParent = nullptr;
    EXPECT_EQ(TryRelaxSpecialHeuristics(child), 0);
    EXPECT_EQ(child.m_nHeuristics, 0U);
}

TEST(Relaxation, TimeDecidesOncePerPass)
{
    struct TCase
    {
        int m_nMilliseconds; ///< since the start of the run
        int m_nResult;
        const char* m_pNote; ///< how the line of the log ends; null: none
    };
    const TCase aCases[] = {{100, -1, nullptr},
                            {900, -1, "limit=1000 msec. (additional relaxation accepted)"},
                            {1100, 1, "limit=1000 msec. (additional relaxation refused)"},
                            {5000, 1, nullptr}};
    for (const TCase& test : aCases) {
        TSetPosition t(BoardOf(THREE_FIGURES));
        std::string strNotes;
        t.request.OnLogLine = [&](const std::string& strLine) { strNotes += strLine; };
        const auto now = std::chrono::steady_clock::now();
        t.request.m_tStart = now - std::chrono::milliseconds(test.m_nMilliseconds);
        t.Apply("SH_FINDFORCEDMATE, SH_AREKINGSNEAR");
        EXPECT_EQ(TryRelaxSpecialHeuristics(t.board), test.m_nResult);
        EXPECT_EQ(strNotes.empty(), !test.m_pNote) << strNotes;
        EXPECT_TRUE(!test.m_pNote ||
                    (strNotes.starts_with("Time dependent relaxation near the limit: calcTime=") &&
                     strNotes.ends_with(test.m_pNote)))
            << strNotes;
        // Another thread that ends the same pass later gets the same answer.
        t.Apply("SH_FINDFORCEDMATE, SH_AREKINGSNEAR");
        t.request.m_passEndTick.NoteEnd(1, now + std::chrono::hours(1));
        EXPECT_EQ(TryRelaxSpecialHeuristics(t.board), test.m_nResult);
    }
}

TEST(Relaxation, Log)
{
    const std::string strPath = (GetAppFolder() / "TryRelaxSpecialHeuristics.log").string();
    std::filesystem::remove(strPath);
    TSetPosition t(BoardOf(LONE_ROOK));
    t.board.m_nHeuristics = SH_AREKINGSNEAR | SH_ZUGZWANG;
    t.context.m_nThreadId = 3;
    SetRelaxationLog(true);
    TryRelaxSpecialHeuristics(t.board);
    ComposeRelaxationPlan(t.board);
    SetRelaxationLog(false);
    TryRelaxSpecialHeuristics(t.board);
    const std::vector<std::string> vecLines = Split(BytesOf(strPath), '\n');
    std::filesystem::remove(strPath);
    ASSERT_GE(vecLines.size(), 2U);
    EXPECT_EQ(vecLines[0].substr(19), " BEFORE th=3 SH_AREKINGSNEAR, SH_ZUGZWANG, QuickMode");
    EXPECT_EQ(vecLines[1].substr(19), " AFTER  th=3 SH_AREKINGSNEAR, QuickMode");
    EXPECT_TRUE(vecLines.size() == 2 || vecLines[2].empty());
}

TEST(Relaxation, EdgeFallback)
{
    struct TCase
    {
        const char* m_pFen;
        const char* m_pMoves; ///< from White's on
        bool m_bApplies;
    };
    const TCase aCases[] = {
        // The White king comes in front of the pawn and takes the opposition.
        {"8/8/8/8/8/1k6/2p5/4K3", "Kd2 Ka3 Kc1", true},
        {"8/8/8/8/8/k7/2p5/4K3", "Kd2 Ka2 Kc1", false},
        // Two knights take all squares of a king with a knight.
        {"8/1k6/2N5/8/8/3N4/8/4K2n", "Nc5 Ka8", true},
        {"8/1k6/2N5/8/8/3N4/8/4K1bn", "Nc5 Ka8", false},
        {"8/1k6/2N5/8/8/3N4/8/4KR1n", "Nc5 Ka8", false},
        {"8/1k6/2N5/8/8/3N4/8/4K2n", "Nc5 Kb6", false},
        {"8/1k6/8/8/8/3N4/8/4K1Nn", "Nc5 Ka8", false},
    };
    for (const TCase& test : aCases) {
        TSetPosition t(BoardOf(test.m_pFen));
        EXPECT_EQ(CanApplyEdgeHeuristicDynamically(*PlayMoves(t.board, test.m_pMoves)),
                  test.m_bApplies)
            << test.m_pFen;
    }
}

} // namespace
} // namespace corvina
