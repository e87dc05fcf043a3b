#include "chess/fen.h"
#include "heuristics/differential.h"
#include "heuristics/positionanalysis.h"
#include "heuristics/relaxplan.h"
#include "heuristics/setreader.h"
#include "heuristics/settext.h"
#include "search/hooks.h"
#include "search/rootsetup.h"
#include "search/solve.h"
#include "support/data.h"
#include "support/positions.h"
#include "support/slowchess.h"

#include <gtest/gtest.h>

#include <bit>

namespace corvina
{
namespace
{

/// Each heuristic about the kings, and the forced mate search, in each form of its parameters.
constexpr const char* g_aForms[] = {
    "SH_AREKINGSNEAR",
    "SH_DONTRECEDEBLACKKING",
    "SH_KEEPKINGNEARCORNER(1S)",
    "SH_KEEPKINGNEARCORNER(2S)",
    "SH_KEEPKINGNEARCORNER(3S)",
    "SH_KEEPKINGNEARCORNER(4S)",
    "SH_KEEPKINGNEARCORNER(5S)",
    "SH_KEEPKINGNEARCORNER(1M)",
    "SH_KEEPKINGNEARCORNER(2M)",
    "SH_KEEPKINGONTHEEDGE",
    "SH_KEEPKINGONTHEEDGE(incl.corner)",
    "SH_KEEPKINGONTHEEDGE(C1)",
    "SH_KEEPKINGONTHEEDGE(C2f)",
    "SH_KEEPKINGONTHEEDGE(A)",
    "SH_KEEPKINGONTHEEDGE(C1,D1,M1)",
    "SH_KEEPKINGONTHEEDGE(C1,A,D1,M1)",
    "SH_KEEPKINGONTHEEDGE, SH_KEEPKINGWITHINEXTEDGE(C1f)",
    "SH_DONTLETKINGMOVE",
    "SH_DONTLETKINGMOVE(incl.corner,A)",
    "SH_DONTLETKINGMOVE(C1,D1,M1)",
    "SH_DONTLETKINGMOVE(excptns)",
    "SH_DONTLETKINGMOVE(excptns,C1f)",
    "SH_KEEPKINGWITHINEXTEDGE",
    "SH_KEEPKINGWITHINEXTEDGE(incl.corner)",
    "SH_KEEPKINGWITHINEXTEDGE(C1f)",
    "SH_KEEPKINGWITHINEXTEDGE(C1,D1,M1)",
    "SH_KEEPKINGWITHINEXTEDGE(A)",
    "SH_KEEPKINGWITHINEXTEDGE(strict)",
    "SH_ASSERTBLACKKINGSURROUNDED",
    "SH_ASSERTBLACKKINGSURROUNDED(strict)",
    "SH_FINDFORCEDMATE(CheckOnly)",
    "SH_FINDFORCEDMATE(#1)",
    "SH_FINDFORCEDMATE(#1+)",
    "SH_FINDFORCEDMATE(#2)",
    "SH_FINDFORCEDMATE(#2+)",
    "SH_FINDFORCEDMATE(#3)",
    "SH_FINDFORCEDMATE(#4)",
    "SH_FINDFORCEDMATE(#5)",
    "SH_FINDFORCEDMATE(#1-WithOtherHeuristics)",
    "SH_FINDFORCEDMATE(#1-Custom)",
    "SH_FINDFORCEDMATE(#1-Preliminary)",
};

/// Those of the data folder, if there is one, that are soon solved.
void AddDataTasks(std::vector<TTask>& vecTasks)
{
    constexpr int MAX_MATE_TESTED = 4;
    if (!HasDataFolder())
        return;
    for (const TAnsweredTask& answered : ReadAnsweredTasks("mates-dev.tsv")) {
        if (answered.m_nMate > MAX_MATE_TESTED)
            continue;
        TTask task{{}, answered.m_nMate, {}};
        EXPECT_TRUE(ReadFen(task.m_board, answered.m_strFen));
        task.m_vecSolutions = SolveWith(task.m_board, task.m_nMate, "none").m_vecSolutions;
        EXPECT_EQ(task.m_vecSolutions.size(), answered.m_vecKeys.size());
        vecTasks.push_back(task);
    }
}

/// Every second run knows no steps between the form and the last pass: what it cuts, the form cuts.
TEST(HeuristicsTruth, EachFormCutsAndChangesNoSolution)
{
    constexpr int MIN_POSITIONS = 10;
    constexpr std::size_t MAX_TASKS = 2000;
    constexpr std::uint32_t CUT_AFTER_WHITE =
        SH_DONTRECEDEBLACKKING | SH_ASSERTBLACKKINGSURROUNDED | SH_FINDFORCEDMATE;
    // A deferred check falls due in the fifth move at the earliest.
    std::mt19937 random(3);
    std::vector<TTask> vecTasks = RandomTasks(3, {400, 300, 40, 12});
    AddDataTasks(vecTasks);
    const std::size_t nTasks = vecTasks.size();
    for (const char* pForm : g_aForms) {
        THeuristicSet set;
        ReadHeuristicsText(pForm, set);
        const int nBit = std::countr_zero(set.m_nHeuristics);
        int nCutting = 0, nCuttingWhite = 0;
        for (std::size_t i = 0; i < nTasks || (nCutting < MIN_POSITIONS && i < MAX_TASKS); ++i) {
            if (i == vecTasks.size())
                vecTasks.push_back(MakeTask(RandomPosition(random, 4 + i % 4), 5));
            const TTask& task = vecTasks[i];
            set.m_params.m_bLetRelax = i < nTasks && i % 2;
            const TRunOf run = SolveWith(task.m_board, task.m_nMate, set);
            ASSERT_EQ(run.m_vecSolutions, task.m_vecSolutions) << Describe(task, pForm);
            if (set.m_params.m_bLetRelax)
                continue;
            nCutting += run.m_anCuts[nBit] != 0;
            nCuttingWhite += run.m_anWhiteCuts[nBit] != 0;
        }
        EXPECT_GE(nCutting, MIN_POSITIONS) << pForm;
        if (set.m_nHeuristics & CUT_AFTER_WHITE) {
            EXPECT_GE(nCuttingWhite, MIN_POSITIONS) << pForm;
        }
    }
}

/// Two or three forms of different heuristics, none of which excludes another.
std::string RandomForms(std::mt19937& random)
{
    for (;;) {
        std::string strSet;
        const unsigned nForms = 2 + random() % 2;
        for (unsigned i = 0; i < nForms; ++i)
            strSet += (i ? ", " : "") + std::string(g_aForms[random() % std::size(g_aForms)]);
        THeuristicSet set;
        try {
            ReadHeuristicsText(strSet, set);
        }
        catch (const ChessException&) {
            continue;
        }
        if (std::popcount(set.m_nHeuristics) > 1)
            return strSet;
    }
}

TEST(HeuristicsTruth, RandomSetsChangeNoSolution)
{
    std::mt19937 random(11);
    for (const TTask& task : RandomTasks(4, {300, 200, 20})) {
        for (int i = 0; i < 4; ++i) {
            const std::string strSet = RandomForms(random);
            const int nThreads = 1 + i % 2 * 3;
            ASSERT_EQ(SolveWith(task.m_board, task.m_nMate, strSet, nThreads).m_vecSolutions,
                      task.m_vecSolutions)
                << Describe(task, strSet);
        }
    }
}

/// The forced mate search in a form that no text tells: from any level on, with so many raises,
/// with the other heuristics always, never or near the end, the cycle twice, a run with the edge
/// first.
THeuristicSet RandomForcedMateSet(std::mt19937& random)
{
    constexpr std::uint32_t aOthers[] = {0, SH_KEEPKINGONTHEEDGE, SH_ASSERTBLACKKINGSURROUNDED,
                                         SH_AREKINGSNEAR | SH_KEEPKINGWITHINEXTEDGE};
    constexpr std::int8_t aWithOther[] = {FFM_OTHERS_APPLY, FFM_OTHERS_OFF,
                                          FFM_OTHERS_NEAR_THE_END};
    THeuristicSet set;
    THeuristicsParams& p = set.m_params;
    set.m_nHeuristics = SH_FINDFORCEDMATE | aOthers[random() % std::size(aOthers)];
    p.m_bKingMustNotMove = random() % 2;
    p.m_nFfmLevel = p.m_nFfmFirstLevel =
        static_cast<std::uint8_t>(FFM_CHECK_ONLY + random() % (FFM_THREAT_5 - FFM_CHECK_ONLY + 1));
    p.m_nFfmRelaxations = static_cast<std::uint8_t>(random() % (FFM_THREAT_5 - p.m_nFfmLevel + 1));
    p.m_bFfmAddCaptures = random() % 2;
    p.m_nFfmWithOther = aWithOther[random() % std::size(aWithOther)];
    p.m_bFfmCustom = random() % 3 == 0;
    p.m_nFfmCustomRelaxations = static_cast<std::uint8_t>(random() % 2);
    if (random() % 3 == 0) {
        p.m_bFfmPreliminary = true;
        p.m_savedFfmMask = set.m_nHeuristics;
        set.m_nHeuristics |= SH_KEEPKINGONTHEEDGE;
    }
    return set;
}

TEST(HeuristicsTruth, ForcedMateInEveryFormChangesNoSolution)
{
    std::mt19937 random(14);
    std::array<int, FFM_THREAT_5 + 1> anRuns{};
    std::size_t nMostPasses = 0;
    for (const TTask& task : RandomTasks(8, {200, 150, 15})) {
        for (int i = 0; i < 3; ++i) {
            const THeuristicSet set = RandomForcedMateSet(random);
            const TRunOf run = SolveWith(task.m_board, task.m_nMate, set, 1 + i % 2);
            ASSERT_EQ(run.m_vecSolutions, task.m_vecSolutions)
                << Describe(task, "level " + std::to_string(set.m_params.m_nFfmLevel));
            ++anRuns[set.m_params.m_nFfmLevel];
            nMostPasses = std::max(nMostPasses, run.m_vecPasses.size());
        }
    }
    for (int nLevel = FFM_CHECK_ONLY; nLevel <= FFM_THREAT_5; ++nLevel)
        EXPECT_GT(anRuns[nLevel], 50) << nLevel;
    EXPECT_GT(nMostPasses, 8u);
}

/// What the program itself chooses for the task, were it a longer one.
std::string ChosenSet(const TChessboard& board)
{
    TSolveRequest request;
    TChessboard& root = *request.m_pChessboard;
    root = board;
    request.SetMateIn(MIN_ANALYSED_PLIES / 2 + 1);
    root.m_pRequest = &request;
    root.CheckStartPosition(request.m_nRequestedMoves, true);
    TakeUpAnalysis(CheckPositionType(root), root);
    TakeUpHeuristics(root);
    TThreadContext context(root.m_nMoves);
    PutOnThread(root, context);
    return root.m_nHeuristics ? GetHeuristicsText(root, false) : std::string(TEXT_NONE);
}

TEST(HeuristicsTruth, ChosenSetsChangeNoSolution)
{
    int nSets = 0;
    for (const TTask& task : RandomTasks(6, {200, 150, 20})) {
        const std::string strSet = ChosenSet(task.m_board);
        nSets += strSet != TEXT_NONE;
        ASSERT_EQ(SolveWith(task.m_board, task.m_nMate, strSet).m_vecSolutions, task.m_vecSolutions)
            << Describe(task, strSet);
    }
    EXPECT_GT(nSets, 150);
}

TEST(HeuristicsTruth, WithoutTheLastPassOnlyDoubtsAreLeft)
{
    std::mt19937 random(12);
    int nDoubtful = 0;
    for (const TTask& task : RandomTasks(5, {300, 100})) {
        const std::string strSet = RandomForms(random);
        const TRunOf run = SolveWith(task.m_board, task.m_nMate, strSet, 1, false);
        nDoubtful += run.m_bDoubtful;
        EXPECT_TRUE(std::includes(task.m_vecSolutions.begin(), task.m_vecSolutions.end(),
                                  run.m_vecSolutions.begin(), run.m_vecSolutions.end()))
            << Describe(task, strSet);
        if (!run.m_bDoubtful) {
            EXPECT_EQ(run.m_vecSolutions, task.m_vecSolutions) << Describe(task, strSet);
        }
    }
    EXPECT_GT(nDoubtful, 10);
}

/// Without the item that tells of Quick mode.
std::string PlainText(std::string strSet)
{
    const auto position = strSet.find(", " + std::string(TEXT_QUICK_MODE));
    return position == std::string::npos ? strSet : strSet.substr(0, position);
}

/// The sets of the passes by the plan, that of the last pass included.
std::vector<std::string> PlannedSets(TSolveRequest& request)
{
    TChessboard& root = *request.m_pChessboard;
    root.m_pRequest = &request;
    root.CheckStartPosition(request.m_nRequestedMoves, true);
    TakeUpHeuristics(root);
    TThreadContext context(root.m_nInitialMoves);
    PutOnThread(root, context);
    std::vector<std::string> vecSets;
    for (const std::string& strLine : Split(ComposeRelaxationPlan(root), '\n')) {
        if (strLine.starts_with("Pass "))
            vecSets.push_back(PlainText(strLine.substr(strLine.find(": ") + 2)));
    }
    vecSets.push_back("none");
    return vecSets;
}

TEST(HeuristicsTruth, PassesGoTheWayOfThePlan)
{
    std::mt19937 random(13);
    int nWhole = 0;
    for (int i = 0; i < 300; ++i) {
        const TChessboard board = ComposedPosition(random);
        const std::string strSet = RandomForms(random);
        const TRunOf run = SolveWith(board, 3, strSet), again = SolveWith(board, 3, strSet);
        ASSERT_EQ(run.m_vecPasses.size(), again.m_vecPasses.size());
        TSolveRequest request;
        *request.m_pChessboard = board;
        request.SetMateIn(3);
        ReadHeuristicsText(strSet, request.m_heuristicSet, &board);
        const std::vector<std::string> vecPlan = PlannedSets(request);
        ASSERT_LE(run.m_vecPasses.size(), vecPlan.size());
        for (std::size_t k = 0; k < run.m_vecPasses.size(); ++k) {
            EXPECT_EQ(PlainText(run.m_vecPasses[k].m_strSet), vecPlan[k])
                << WriteFen(board, true) << strSet;
            EXPECT_EQ(run.m_vecPasses[k].m_nDecided, again.m_vecPasses[k].m_nDecided);
        }
        nWhole += run.m_vecPasses.size() == vecPlan.size();
    }
    EXPECT_GT(nWhole, 60);
}

} // namespace
} // namespace corvina
