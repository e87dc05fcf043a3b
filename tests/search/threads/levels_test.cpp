#include "chess/fen.h"
#include "chess/notation.h"
#include "heuristics/differential.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/positionanalysis.h"
#include "heuristics/setreader.h"
#include "heuristics/themedpositions.h"
#include "search/line.h"
#include "search/rootsetup.h"
#include "search/threads/forcethreads.h"
#include "search/threads/levels.h"
#include "search/threads/levelthread.h"
#include "search/threads/sharing.h"
#include "search/verify.h"
#include "support/data.h"
#include "support/positions.h"
#include "support/slowchess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <thread>

namespace corvina
{
namespace
{

constexpr const char* CHOSEN = "the set that the analysis chooses";
constexpr const char* SETS[] = {
    "none",
    "SH_KEEPKINGONTHEEDGE(C1f), SH_DONTLOSEANYFIGURES",
    "SH_KEEPKINGWITHINEXTEDGE, SH_AREKINGSNEAR",
    "SH_ASSERTBLACKKINGSURROUNDED",
    "SH_FINDFORCEDMATE(#1)",
    CHOSEN,
};

void TakeSet(const char* pSet, TSolveRequest& request)
{
    TChessboard& root = *request.m_pChessboard;
    if (pSet != CHOSEN) {
        ReadHeuristicsText(pSet, request.m_heuristicSet, &root);
        return;
    }
    TSolveRequest analysed;
    *analysed.m_pChessboard = root;
    analysed.SetMateIn(request.GetStipulation());
    analysed.m_pChessboard->m_pRequest = &analysed;
    analysed.m_pChessboard->CheckStartPosition(analysed.m_nRequestedMoves, true);
    TakeUpAnalysis(CheckPositionType(*analysed.m_pChessboard), *analysed.m_pChessboard);
    request.m_heuristicSet = analysed.m_heuristicSet;
    request.m_zugzwangMap = analysed.m_zugzwangMap;
    request.m_vecSeaSnakeMoves = analysed.m_vecSeaSnakeMoves;
}

/// Solves the task in the form, for all solutions and for the first one.
void CheckForm(const TTask& task, const TForm& form, const char* pSet, TCounts& counts)
{
    const TLeftBehind left;
    TSharingRequest request(task.m_board, task.m_nMate, form);
    TakeSet(pSet, request);
    TRunSettings settings = SettingsOf(form);
    settings.m_bQuickMode = task.m_nMate % 2 == 0;
    const std::string strText = Describe(task, pSet) + ", " + form.Text();
    ASSERT_EQ(SortedTexts(Solve(request, settings).m_vecSolutions), task.m_vecSolutions) << strText;
    counts.Add(request.m_sharingCounts);

    TSharingRequest first(task.m_board, task.m_nMate, form);
    TakeSet(pSet, first);
    settings.m_bStopAtFirstSolution = true;
    const auto vecFirst = SortedTexts(Solve(first, settings).m_vecSolutions);
    ASSERT_EQ(vecFirst.empty(), task.m_vecSolutions.empty()) << strText;
    ASSERT_LE(vecFirst.size(), 1u) << strText;
    ASSERT_TRUE(std::includes(task.m_vecSolutions.begin(), task.m_vecSolutions.end(),
                              vecFirst.begin(), vecFirst.end()))
        << strText;
    counts.Add(first.m_sharingCounts);
}

/// nForms forms with the task from the nFirst one on, with nSets sets from there on; in a soak
/// every form again and again without heuristics and with one of the sets after the other.
void CheckForms(const TTask& task, std::size_t nFirst, std::size_t nSets, std::size_t nForms,
                TCounts (&aCounts)[std::size(FORMS)])
{
    const int nRounds = Rounds(1);
    for (std::size_t i = 0; i < (nRounds > 1 ? std::size(FORMS) : nForms); ++i) {
        const std::size_t nForm = (nFirst + i) % std::size(FORMS);
        const auto check = [&](std::size_t nSet) {
            if (!testing::Test::HasFatalFailure())
                CheckForm(task, FORMS[nForm], SETS[nSet], aCounts[nForm]);
        };
        if (nRounds == 1) {
            for (std::size_t k = 0; k < nSets; ++k)
                check((nFirst + k) % std::size(SETS));
            continue;
        }
        for (int nRound = 0; nRound < nRounds; ++nRound) {
            check(0);
            check(1 + (nFirst + i + nRound) % (std::size(SETS) - 1));
        }
    }
}

TEST(Levels, GroupsAndSchedulersChangeNoSolution)
{
    TCounts aCounts[std::size(FORMS)];
    const std::vector<TTask> vecTasks = RandomTasks(31, {0, 0, 16, 4});
    for (std::size_t i = 0; i < vecTasks.size(); ++i)
        CheckForms(vecTasks[i], i, 2, std::size(FORMS), aCounts);
    for (std::size_t i = 0; i < std::size(FORMS); ++i) {
        const TForm& form = FORMS[i];
        const TCounts& counts = aCounts[i];
        const auto expect = [&](const char* pWhat, std::uint64_t nCount, std::uint64_t nMin,
                                bool bHas) {
            EXPECT_TRUE(bHas ? nCount > nMin : nCount == 0)
                << nCount << " " << pWhat << ", " << form.Text();
        };
        expect("groups", counts.m_nGroups, 50, form.HasGroups());
        expect("schedulers", counts.m_nSchedulers, 20, form.m_nSchedulerLevels > 0);
        expect("switches", counts.m_nSwitches, 20, form.m_nSchedulerLevels > 0);
        expect("groups beyond the levels", counts.m_nExtraGroups, 20, form.m_bBruteForce);
        // Without levels the last thread of a group beyond them may have one too, now and then.
        if (!form.m_bBruteForce || form.m_nLevels > 1)
            expect("groups of the last thread of one", counts.m_nRespawns, 5, form.m_bBruteForce);
        EXPECT_EQ(counts.m_nFailures, 0u);
    }
}

/// A row of the data folder that is soon solved as it says.
std::optional<TTask> SolvedRow(const TAnsweredTask& row)
{
    constexpr int MAX_MATE_TESTED = 5;
    constexpr std::uint64_t MAX_POSITIONS = 1'000'000;
    if (row.m_nMate > MAX_MATE_TESTED)
        return std::nullopt;
    TSolveRequest request;
    EXPECT_TRUE(ReadFen(*request.m_pChessboard, row.m_strFen));
    const TTask task{*request.m_pChessboard, row.m_nMate, {}};
    request.SetMateIn(row.m_nMate);
    request.m_nMinRegisterPlies = 0;
    const std::vector<TMove> vecSolutions = Solve(request, {}).m_vecSolutions;
    std::vector<std::string> vecKeys;
    for (const TMove& move : vecSolutions)
        vecKeys.push_back(PrintMove(move, task.m_board));
    std::sort(vecKeys.begin(), vecKeys.end());
    EXPECT_EQ(vecKeys, row.m_vecKeys) << row.m_strFen;
    if (request.m_nPositions > MAX_POSITIONS)
        return std::nullopt;
    return TTask{task.m_board, row.m_nMate, SortedTexts(vecSolutions)};
}

TEST(Levels, AnswersOfTheDataFolder)
{
    if (!HasDataFolder())
        GTEST_SKIP() << "CORVINA_DATA is not set";
    TCounts aCounts[std::size(FORMS)];
    std::vector<TAnsweredTask> vecRows = ReadAnsweredTasks("mates-dev.tsv");
    const std::vector<TAnsweredTask> vecTruth = ReadAnsweredTasks("truth-dev.tsv");
    const std::size_t nStep = Rounds(1) > 1 ? 1 : 10;
    for (std::size_t i = 0; i < vecTruth.size(); i += nStep)
        vecRows.push_back(vecTruth[i]);
    for (std::size_t i = 0; i < vecRows.size(); ++i) {
        if (const auto task = SolvedRow(vecRows[i]))
            CheckForms(*task, i, 1, 3, aCounts);
    }
}

/// Solutions that come in at once, of several threads or of a search ahead of them.
TEST(Levels, AFirstSolutionIsTheOnlyOne)
{
    TSolveRequest request;
    request.m_nSearchMode = SEARCH_FIRST;
    const TAddedSolution one = AddSolution(request, TMove{4, 5, 0, 0});
    const TAddedSolution two = AddSolution(request, TMove{4, 6, 0, 0});
    EXPECT_TRUE(one.m_bTaken && one.m_bEnough && !two.m_bTaken && two.m_bEnough);
    EXPECT_TRUE(request.IsStoppedForAll());
    EXPECT_EQ(request.m_vecSolutions.size(), 1u);
    std::mt19937 random(72);
    TThemed themed(random);
    int nDuals = 0;
    for (int i = 0; i < 400; ++i) {
        const TTask task = MakeTask(themed.Make(ETheme::Bishops), 2);
        TSharingRequest first(task.m_board, task.m_nMate);
        TakeSet("SH_ONECOLORPLAYPOSSIBLE", first);
        TRunSettings settings = SettingsOf({1 + i % 2, 1, 0});
        settings.m_bStopAtFirstSolution = true;
        ASSERT_EQ(Solve(first, settings).m_vecSolutions.size(), !task.m_vecSolutions.empty());
        nDuals += first.m_nOneColourMates > 0 && task.m_vecSolutions.size() > 1;
    }
    EXPECT_GT(nDuals, 10);
}

/// Long enough for groups and schedulers where a run has them by itself.
TEST(Levels, LongTasksAtTheUsualDepths)
{
    struct TLongTask
    {
        const char* m_pFen;
        int m_nMate;
        TForm m_form;
    };
    constexpr TLongTask LONG_TASKS[] = {
        {"8/8/8/8/2k5/8/3K4/3Q4", 8, {2, 2, 0}},
        {"8/8/8/8/2k5/8/3K4/3Q4", 10, {2, 2, 6}},
        {"7k/1p5P/4p2K/8/4np1p/8/p5bp/4R3", 10, {2, 1, 6}},
        {"7k/1p5P/4p2K/8/4np1p/8/p5bp/4R3", 10, {3, 2, 6}},
    };
    TCounts counts;
    for (const TLongTask& task : LONG_TASKS) {
        const TLeftBehind left;
        TSolveRequest request;
        ASSERT_TRUE(ReadFen(*request.m_pChessboard, task.m_pFen));
        request.SetMateIn(task.m_nMate);
        TRunSettings settings = SettingsOf(task.m_form);
        settings.m_bStopAtFirstSolution = true;
        const TSolveOutcome outcome = Solve(request, settings);
        counts.Add(request.m_sharingCounts);
        ASSERT_FALSE(outcome.m_vecSolutions.empty()) << task.m_pFen;
        request.ClearStopState();
        EXPECT_TRUE(VerifyKey(request, outcome.m_vecSolutions[0]).m_bHolds) << task.m_pFen;
    }
    EXPECT_GT(counts.m_nGroups, 3u);
    EXPECT_GT(counts.m_nSchedulers, 3u);
}

/// Two moves that the user asks for are juggled behind the last level, too, where the rest of the
/// list has short looks.
TEST(Levels, GoodMovesAreJuggledBehindTheLevels)
{
    constexpr const char* POSITION = "k7/p1K3p1/PB6/8/8/7N/6p1/7b";
    const auto run = [&](bool bCustom, const char* pItems, int nLevels) {
        TSharingRequest request(TChessboard(), 7);
        EXPECT_TRUE(ReadFen(*request.m_pChessboard, POSITION));
        ParseSortIndications(request.m_sortIndications, pItems);
        // In the last pass nodes as near to the leaves aren't sorted by them.
        ReadHeuristicsText("SH_DONTLOSEANYFIGURES", request.m_heuristicSet,
                           request.m_pChessboard.get());
        TRunSettings settings = SettingsOf({1, 1, nLevels});
        settings.m_bCustomScheduler = bCustom;
        const auto vecSolutions = SortedTexts(Solve(request, settings).m_vecSolutions);
        EXPECT_EQ(vecSolutions, std::vector<std::string>{"b6g1"}) << pItems;
        return request.m_sharingCounts.m_nSchedulers.load();
    };
    constexpr const char* WANTED = "g1, f4, c5, d4, b6, b5, f1, g5";
    const auto nUsual = run(false, WANTED, 1);
    EXPECT_GT(nUsual, 0u);
    EXPECT_GT(run(true, WANTED, 1), nUsual + nUsual / 3);
    EXPECT_EQ(run(true, WANTED, 0), 0u);
}

/// A run with one thread has no groups; a list of two moves gives a group of two; a width of 100 is
/// too much for one group.
TEST(Levels, SizeOfAGroup)
{
    TSolveRequest request;
    TThreadContext context(19);
    TChessboard& root = *request.m_pChessboard;
    ASSERT_TRUE(ReadFen(root, "8/8/8/8/2k5/8/3K4/3Q4"));
    request.SetMateIn(9);
    root.m_pRequest = &request;
    root.CheckStartPosition(request.m_nRequestedMoves, true);
    PutOnThread(root, context);
    request.m_nThreads = request.m_nEffectiveThreads = 100;
    request.m_nMultithreadingLevels = 2;
    context.m_nSpawnWidth = 4;
    TChessboard& child = context.MakeChild(root);
    --child.m_nMoves;
    TChessboard& node = context.MakeChild(child);
    --node.m_nMoves;
    const auto bSpawns = [&](int nMoves) { return bool{TSpawnLeave(node, nMoves)}; };
    EXPECT_EQ(GroupSize(node, 2), 2);
    EXPECT_EQ(GroupSize(node, 20), 4);
    context.m_nSpawnWidth = 100;
    EXPECT_EQ(GroupSize(node, 200), 64);
    request.m_nEffectiveThreads = 3;
    EXPECT_EQ(GroupSize(node, 200), 3);
    EXPECT_TRUE(bSpawns(2));
    EXPECT_FALSE(bSpawns(1));
    EXPECT_FALSE(bSpawns(MAX_SHARED_MOVES + 1));
    EXPECT_FALSE(bool{TSpawnLeave(root, 20)}) << "the root has its own table";

    // Brute force: groups of two, and beyond the levels while processors are idle.
    request.m_bBruteForce = true;
    EXPECT_EQ(GroupSize(node, 200), 2);
    request.m_nMultithreadingLevels = 1;
    EXPECT_FALSE(bSpawns(20));
    request.m_bLastMoveStarted = true;
    request.m_sharing.m_nProcessors = 2;
    {
        const TSpawnLeave leave(node, 20), second(node, 20);
        EXPECT_TRUE(bool{leave});
        EXPECT_TRUE(bool{second});
        EXPECT_EQ(g_nExtraThreads, 2);
        EXPECT_FALSE(bSpawns(20)) << "no processor is left";
    }
    g_nActiveRootThreads = 1; // which counts as two
    EXPECT_FALSE(bSpawns(20));
    g_nActiveRootThreads = 0;
    EXPECT_EQ(g_nExtraThreads, 0);
    EXPECT_EQ(g_nReservations, 0);
}

TEST(Levels, AThreadsLineIsItsOwnAndTheSame)
{
    constexpr const char* FEN = "r3k2r/8/8/8/8/8/P6P/R3K2R";
    std::mt19937 random(3);
    for (int i = 0; i < 50; ++i) {
        TSolveRequest request;
        TChessboard& root = *request.m_pChessboard;
        ASSERT_TRUE(ReadFen(root, FEN));
        request.SetMateIn(12);
        root.m_pRequest = &request;
        root.CheckStartPosition(request.m_nRequestedMoves, true);
        TThreadContext context(root.m_nMoves);
        PutOnThread(root, context);
        TChessboard* p = &root;
        for (int nPly = 0; nPly < 14; ++nPly) {
            const std::vector<TMove> vecMoves = LegalMoves(*p);
            if (vecMoves.empty())
                break;
            p = &PlayMove(*p, vecMoves[random() % vecMoves.size()]);
        }
        ASSERT_TRUE(IsLineWhole(*p));
        TChessboard* pCopy = nullptr;
        TThreadContext copied(context, *p, &pCopy);
        EXPECT_EQ(IsRegisterable(*pCopy), IsRegisterable(*p));
        EXPECT_EQ(pCopy->GetCastlingRights(true), p->GetCastlingRights(true));
        EXPECT_EQ(pCopy->FindEarlierOccurrence() != nullptr, p->FindEarlierOccurrence() != nullptr);
        EXPECT_TRUE(IsLineWhole(*pCopy));
        const TChessboard* q = pCopy;
        for (; p; p = p->m_pParent, q = q->m_pParent) {
            ASSERT_NE(q, nullptr);
            EXPECT_NE(q, p);
            EXPECT_EQ(q->m_pThread, &copied);
            EXPECT_EQ(WriteFen(*q, true), WriteFen(*p, true));
        }
        EXPECT_EQ(q, nullptr);
    }
}

TEST(Levels, ResultsOfAGroupAreJoined)
{
    const auto outcome = [](TSearchResult nResult, int nDoubtful, int nRepetition, int nDepth) {
        TLevelOutcome o;
        o.m_nResult = nResult;
        o.m_mate.m_from = static_cast<std::uint8_t>(nDepth);
        o.m_nDoubtful = nDoubtful;
        o.m_nRepetition = nRepetition;
        o.m_nRepeatDepth = static_cast<std::uint16_t>(nDepth);
        return o;
    };
    TLevelOutcome joined;
    for (const int nDepth : {5, 21, 13})
        joined.Add(outcome(RESULT_NO_MATE, 2, 1, nDepth));
    EXPECT_EQ(std::tuple(joined.m_nResult, joined.m_nDoubtful, joined.m_nRepetition,
                         joined.m_nRepeatDepth),
              std::tuple(RESULT_NO_MATE, 6, 3, 21));
    TLevelOutcome left;
    left.m_bGivenUp = true;
    joined.Add(left);
    joined.Add(outcome(RESULT_MATE, 0, 0, 9));
    joined.Add(outcome(RESULT_MATE, 0, 0, 10));
    EXPECT_EQ(joined.m_nResult, RESULT_MATE);
    EXPECT_EQ(joined.m_mate.m_from, 9);
    EXPECT_TRUE(joined.m_bGivenUp);

    constexpr int MOVES = 248, THREADS = 4;
    TLevelMoves shared;
    shared.m_nCount = MOVES;
    std::array<std::vector<int>, THREADS> avecTaken;
    {
        std::vector<std::jthread> vecThreads;
        for (auto& vecTaken : avecTaken)
            vecThreads.emplace_back([&] {
                for (int i = TakeNextMove(shared); i < MOVES; i = TakeNextMove(shared))
                    vecTaken.push_back(i);
            });
    }
    std::multiset<int> setTaken;
    for (const auto& vecTaken : avecTaken)
        setTaken.insert(vecTaken.begin(), vecTaken.end());
    EXPECT_EQ(setTaken.size(), static_cast<std::size_t>(MOVES));
    EXPECT_EQ(std::set<int>(setTaken.begin(), setTaken.end()).size(), setTaken.size());
    EXPECT_EQ(TakeNextMove(shared), MOVES);
}

TEST(Levels, TheEngineForcesAnotherNumberOfThreads)
{
    const auto decision = [](const char* pFen, int nMate, int nThreads) {
        TSolveRequest request;
        TChessboard& root = *request.m_pChessboard;
        EXPECT_TRUE(ReadFen(root, pFen));
        request.SetMateIn(nMate);
        root.m_pRequest = &request;
        root.CheckStartPosition(request.m_nRequestedMoves, true);
        request.m_nThreads = request.m_nEffectiveThreads = static_cast<std::uint8_t>(nThreads);
        TThreadContext context(root.m_nMoves);
        PutOnThread(root, context);
        return ForceThreadsDecision(root, LegalMoves(root));
    };
    constexpr const char* CHECKS = "7k/8/8/8/3K4/8/8/QR1RR3"; // the king opens a line
    constexpr const char* QUIET = "7k/6p1/6P1/8/8/8/8/K1N1N1N1";
    EXPECT_EQ(decision(CHECKS, 8, 2), -4);
    EXPECT_EQ(decision(CHECKS, 8, 3), -6);
    EXPECT_EQ(decision(CHECKS, 7, 2), 0) << "a short task";
    EXPECT_EQ(decision(CHECKS, 8, 1), 0);
    EXPECT_EQ(decision(CHECKS, 8, 60), 0) << "fewer moves than that are worth a thread";
    EXPECT_EQ(decision(QUIET, 8, 3), 0);
    EXPECT_EQ(decision("7k/8/8/8/8/8/N7/KN1N1N1N", 8, 2), -3)
        << "many moves and none that promises anything";

    for (const bool bAccept : {false, true}) {
        TSolveRequest request;
        ASSERT_TRUE(ReadFen(*request.m_pChessboard, CHECKS));
        request.SetMateIn(8);
        int nAsked = 0;
        request.OnForceThreads = [&](int nThreads) {
            nAsked += nThreads;
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            return bAccept;
        };
        TRunSettings settings = SettingsOf({2, 1, 0});
        settings.m_bStopAtFirstSolution = true;
        const TSolveOutcome outcome = Solve(request, settings);
        EXPECT_EQ(outcome.m_nResult, 1);
        EXPECT_EQ(nAsked, 4);
        EXPECT_EQ(request.m_nThreads, 2);
        EXPECT_EQ(request.m_nEffectiveThreads, bAccept ? 4 : 2);
        EXPECT_LT(outcome.m_elapsed.count(), 0.3) << "the time of the question isn't the run's";
        request.m_nRequestedThreads = 2;
        Solve(request, settings);
        EXPECT_EQ(nAsked, 4) << "the problem has said how many it wants";
    }

    EXPECT_EQ(decision("7k/8/8/8/Q7/Q7/Q7/1QQQQQQK", 8, 60), -64) << "the most";
    // A single thread becomes four where it is known that many moves mate.
    TSolveRequest request;
    ASSERT_TRUE(ReadFen(*request.m_pChessboard, "7k/8/8/8/3KN1N1/1B3B2/NB3B1N/QR1RR3"));
    request.SetMateIn(7);
    request.m_bAnalyse = true;
    int nAsked = 0;
    request.OnForceThreads = [&](int nThreads) {
        nAsked += nThreads;
        return false;
    };
    Solve(request, {});
    EXPECT_EQ(nAsked, 0);
    Solve(request, {});
    EXPECT_EQ(nAsked, 4);
    request.m_nRequestedThreads = 1;
    Solve(request, {});
    EXPECT_EQ(nAsked, 4);
}

} // namespace
} // namespace corvina
