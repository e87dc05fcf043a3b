#include "app/mirror.h"
#include "app/solvecontrol.h"
#include "chess/fen.h"
#include "chess/notation.h"
#include "heuristics/differential.h"
#include "heuristics/heuristicbits.h"
#include "search/threads/sharing.h"
#include "support/slowchess.h"

#include <gtest/gtest.h>

#include <random>
#include <thread>

namespace corvina
{
namespace
{

using namespace std::chrono_literals;

constexpr const char* THREE_MOVER = "8/2B5/4K2p/1k6/6Qp/1p6/2B5/8"; // 1.Kd5
constexpr const char* ENDLESS = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR";

struct TFakeWindow : TSolveWindow
{
    void SetStatusText(const std::string& strText) override { Note(m_vecStatus, strText); }
    void RefreshProgress() override {}
    void SetProgressTimer(bool bOn) override { m_bTimer = bOn; }
    bool ShowMessage(const std::string& strText, const std::string& strTitle, EMessageKind) override
    {
        Note(m_vecBoxes, strTitle + "|" + strText);
        return true;
    }
    void ShowSolutionOnBoard(const TMove* pMove) override { m_bHighlight = pMove; }
    void ShowVariantMove(const TMove& move) override
    {
        EXPECT_TRUE(m_bHighlight);
        const std::lock_guard guard(m_mutex);
        m_vecMoves.push_back(move);
    }
    void EnableMenuForSolve(bool bRunning) override { m_bRunning = bRunning; }
    bool PumpMessages() override
    {
        std::this_thread::sleep_for(1ms);
        return !m_bQuit;
    }
    void WaitForPaint() override {}
    void WriteLog(const std::string& strLine) override { Note(m_vecLog, strLine); }

    void Note(std::vector<std::string>& vecTexts, const std::string& strText)
    {
        const std::lock_guard guard(m_mutex);
        vecTexts.push_back(strText);
    }
    bool HasStatus(const std::string& strText)
    {
        const std::lock_guard guard(m_mutex);
        return std::find(m_vecStatus.begin(), m_vecStatus.end(), strText) != m_vecStatus.end();
    }

    std::mutex m_mutex;
    std::vector<std::string> m_vecStatus, m_vecBoxes, m_vecLog;
    std::vector<TMove> m_vecMoves;
    std::atomic<bool> m_bTimer{false}, m_bRunning{false}, m_bHighlight{false}, m_bQuit{false};
};

/// A problem with its control and its window.
struct TOpenProblem
{
    TOpenProblem(const std::string& strFen, int nMate, TSolveControlSettings settings = {})
        : m_request(BoardOf(strFen), nMate), m_settings(std::move(settings)),
          m_control(m_request, m_window, WithoutWaiting(m_settings))
    {
        m_request.m_sharing = {};
        m_request.m_nProblemNumber = 7;
        m_request.m_bAnalyse = true;
    }

    static TChessboard BoardOf(const std::string& strFen)
    {
        TChessboard board;
        EXPECT_TRUE(ReadFen(board, strFen));
        return board;
    }
    static TSolveControlSettings WithoutWaiting(TSolveControlSettings settings)
    {
        if (settings.m_highlightTime == TSolveControlSettings().m_highlightTime)
            settings.m_highlightTime = 0ms;
        return settings;
    }

    TSharingRequest m_request;
    TSolveControlSettings m_settings;
    TFakeWindow m_window;
    CSolveControl m_control;
};

TEST(Outcome, ElapsedTimeHasFewerDigitsTheLongerItIs)
{
    const std::pair<int, const char*> aTimes[] = {
        {0, "(0 sec.)"},           {7, "(0.007 sec.)"},    {999, "(0.999 sec.)"},
        {1000, "(1 sec.)"},        {1009, "(1 sec.)"},     {1070, "(1.07 sec.)"},
        {59996, "(59.99 sec.)"},   {60049, "(60 sec.)"},   {60999, "(60.9 sec.)"},
        {599999, "(599.9 sec.)"},  {600000, "(600 sec.)"}, {600999, "(600 sec.)"},
        {90000500, "(90000 sec.)"}};
    for (const auto& [nMilliseconds, pText] : aTimes)
        EXPECT_EQ(ElapsedText(std::chrono::milliseconds(nMilliseconds)), pText);
}

TEST(Outcome, TextsTellWhatKeepsItFromBeingAProof)
{
    TSharingRequest request(TOpenProblem::BoardOf(THREE_MOVER), 3);
    TSolveOutcome outcome;
    EXPECT_EQ(OutcomeMessage(request, outcome, true), "Not found any solutions for #3");
    request.m_heuristicSet.m_nHeuristics = SH_KEEPKINGONTHEEDGE;
    request.m_heuristicSet.m_params.m_bRunPass2 = false;
    outcome.m_bDoubtful = true;
    EXPECT_EQ(OutcomeMessage(request, outcome, true),
              "Not found any solutions for #3\n\nNote:\n\t* there was only one pass with heuristcs "
              "(relaxation of heuristics was switched off by user's request)\n\t* pass without "
              "heuristics has been skipped (on user's request)\n");
    outcome.m_bStopped = true;
    EXPECT_EQ(OutcomeMessage(request, outcome, true), "");
    outcome.m_vecSolutions.resize(3);
    EXPECT_EQ(OutcomeMessage(request, outcome, false), "More than one solution found: 3");
    request.m_nRunOptions = RUN_STOPON4SOLUTIONS | RUN_STOPON3SOLUTIONS;
    EXPECT_EQ(OutcomeMessage(request, outcome, false),
              "Search for solutions has been stopped after finding 3 solutions");
    request.m_nRunOptions |= RUN_STOPON2SOLUTIONS;
    EXPECT_EQ(OutcomeMessage(request, outcome, false),
              "Search for solutions has been stopped after detection of dual.");
}

TEST(Outcome, SettingsNameWhatIsInForce)
{
    TSharingRequest request(TOpenProblem::BoardOf(THREE_MOVER), 3);
    request.m_nSearchMode = SEARCH_ALL;
    request.m_nRunOptions = RUN_STOPON3SOLUTIONS;
    request.m_shLookForQuickerMateDepth = 7;
    request.m_nThreads = 4;
    request.m_nEffectiveThreads = 6;
    request.m_nMultithreadingLevels = 3;
    request.m_nSchedulerLevels = 5;
    request.m_bCustomScheduler = true;
    request.m_heuristicSet.m_nHeuristics = SH_AREKINGSNEAR;
    EXPECT_EQ(RunSettingsText(request),
              "* Search for no more than 3 solutions\n"
              "* Safe mode is off (implicit quick mode heuristics is on)\n"
              "* Custom depth of search for short mate: #4\n"
              "* Threads = 4 (but forced by engine to 6)\n"
              "* Multithreading levels = 3\n"
              "* Effective number of main threads = 96\n"
              "* Scheduler is on: moves from 4 to 8 are 'juggled' by scheduler\n"
              "* Custom scheduler is on\n"
              "* Initial set of heuristics: SH_AREKINGSNEAR, QuickMode\n");
    request.m_bBruteForce = true;
    EXPECT_NE(RunSettingsText(request).find("main threads = 24\n"), std::string::npos);
}

/// The mates of the position with White to move after the key, as a task of its own.
std::vector<std::string> MatesOfTask(const TSolveRequest& request, const TMove& key, int nMate)
{
    TChessboard root = *request.m_pChessboard;
    TLineContext line(root.m_nMoves);
    root.m_pThread = &line;
    TMove move = key;
    TChessboard& child = line.MakeChild(root);
    EXPECT_TRUE(child.MakeWhiteUserMove(&move));
    TChessboard board;
    EXPECT_TRUE(ReadFen(board, WriteFen(child, true)));
    return SolveWith(board, nMate, "none").m_vecSolutions;
}

TEST(Threats, AreTheMatesOfTheTaskWithoutBlacksMove)
{
    int nThreats = 0;
    for (const TTask& task : RandomTasks(51, {0, 40, 10})) {
        if (IsCastlingPossible(task.m_board))
            continue;
        TSharingRequest request(task.m_board, task.m_nMate);
        TRunSettings settings;
        const TSolveOutcome outcome = Solve(request, settings);
        for (const TMove& key : outcome.m_vecSolutions) {
            const TThreats threats = FindThreats(request, key);
            for (int n = 1; 2 * n - 1 <= 2 * task.m_nMate - 3; ++n) {
                const auto vecFound = SortedTexts(GetThreats(request, key, 2 * n - 1));
                if (threats.m_nPlies && 2 * n - 1 > threats.m_nPlies)
                    break;
                nThreats += !vecFound.empty();
                EXPECT_EQ(vecFound.empty(), threats.m_nPlies != 2 * n - 1);
                if (!vecFound.empty()) {
                    EXPECT_EQ(vecFound, MatesOfTask(request, key, n)) << Describe(task, "");
                }
            }
        }
    }
    EXPECT_GT(nThreats, 10);
}

TEST(SolveControl, ARunEndsWithItsWords)
{
    TOpenProblem problem(THREE_MOVER, 3);
    EXPECT_EQ(problem.m_control.State(), ESolveState::Idle);
    problem.m_control.StopSolve();
    EXPECT_TRUE(problem.m_control.StartSolve(true, EBruteForceKind::None));
    problem.m_control.Wait();
    EXPECT_EQ(problem.m_control.State(), ESolveState::Finished);
    const std::string strText = problem.m_control.Report().m_strStatus;
    EXPECT_TRUE(strText.starts_with("1.Ke6-d5 threat: 2.")) << strText;
    EXPECT_TRUE(strText.ends_with(" sec.)")) << strText;
    ASSERT_EQ(problem.m_window.m_vecLog.size(), 1u);
    EXPECT_EQ(problem.m_window.m_vecLog[0],
              "Engine has completed: 1 solution(s) found of the problem 7\n");
    EXPECT_TRUE(problem.m_window.m_vecBoxes.empty());
    EXPECT_FALSE(problem.m_window.m_bTimer);
    EXPECT_FALSE(problem.m_window.m_bRunning);
    // What has ended isn't changed by a stop.
    problem.m_control.StopSolve();
    EXPECT_EQ(problem.m_control.State(), ESolveState::Finished);
    EXPECT_FALSE(problem.m_request.m_bStoppedByUser);

    TOpenProblem none("7k/8/8/8/8/8/8/K5R1", 3), impossible("7k/8/8/8/8/8/8/K6R", 3);
    EXPECT_TRUE(none.m_control.StartSolve(true, EBruteForceKind::Hybrid));
    EXPECT_TRUE(impossible.m_control.StartSolve(true, EBruteForceKind::None));
    none.m_control.Wait();
    impossible.m_control.Wait();
    ASSERT_EQ(none.m_window.m_vecBoxes.size(), 1u);
    EXPECT_EQ(none.m_window.m_vecBoxes[0], "Mate search result|Not found any solutions for #3");
    EXPECT_EQ(none.m_control.Report().m_nRunWord, RUN_WORD_HYBRID);
    EXPECT_EQ(impossible.m_control.Report().m_strStatus,
              "Thread solving problem 7 completed with error.");
    ASSERT_EQ(impossible.m_window.m_vecBoxes.size(), 1u);
    EXPECT_TRUE(impossible.m_window.m_vecBoxes[0].ends_with(
        "\" completed with error:\n\nBlack king cannot be checked in the mate task starting "
        "postition."));

    // What a thread of the run throws, and a run that finds no slot for its solutions.
    TOpenProblem broken(THREE_MOVER, 3), fifth(THREE_MOVER, 3);
    broken.m_request.OnPassStart = [](std::uint32_t) { throw std::bad_alloc(); };
    EXPECT_TRUE(broken.m_control.StartSolve(true, EBruteForceKind::None));
    broken.m_control.Wait();
    EXPECT_EQ(broken.m_control.Report().m_strStatus,
              "Thread solving problem 7 completed with error.");
    const TFoundSolutionsHold aHolds[4];
    for (const bool bAll : {false, true}) {
        EXPECT_TRUE(fifth.m_control.StartSolve(bAll, EBruteForceKind::None));
        fifth.m_control.Wait();
        EXPECT_EQ(fifth.m_control.Report().m_outcome.m_vecSolutions.size(), 1u);
        EXPECT_EQ(fifth.m_window.m_vecBoxes.size(), bAll ? 1u : 0u);
    }
    EXPECT_EQ(fifth.m_window.m_vecBoxes.at(0),
              "Warning|Too many problems being solved at the same time.");
}

/// Runs of every kind, each to be stopped by the user.
constexpr TForm STOPPED[] = {{1, 1, 0}, {2, 2, 0}, {2, 3, 0}, {1, 1, 6}, {4, 2, 6}};

TEST(SolveControl, StopsSoonFromEveryStateAndLeavesNothing)
{
    for (const TForm& form : STOPPED) {
        for (const EBruteForceKind kind : {EBruteForceKind::None, EBruteForceKind::BruteForce}) {
            for (const bool bPaused : {false, true}) {
                const TLeftBehind left;
                TSolveControlSettings settings;
                settings.m_run = SettingsOf(form);
                settings.m_bruteForce.m_nThreads = form.m_nThreads;
                settings.m_bruteForce.m_nMultithreadingLevels = form.m_nLevels;
                TOpenProblem problem(ENDLESS, 14, settings);
                problem.m_request.m_shLookForQuickerMateDepth = 1;
                problem.m_control.StartSolve(true, kind);
                std::this_thread::sleep_for(150ms);
                EXPECT_EQ(problem.m_control.State(), ESolveState::Solving);
                if (bPaused) {
                    problem.m_control.PauseSolve(false);
                    EXPECT_EQ(problem.m_control.State(), ESolveState::PausedForAll);
                    EXPECT_FALSE(problem.m_window.m_bTimer);
                }
                const auto tStop = std::chrono::steady_clock::now();
                problem.m_control.StopSolve();
                EXPECT_LT(std::chrono::steady_clock::now() - tStop, 200ms) << form.Text();
                problem.m_control.Wait();
                EXPECT_TRUE(problem.m_control.Report().m_outcome.m_bStopped);
                ASSERT_EQ(problem.m_window.m_vecLog.size(), 1u);
                EXPECT_TRUE(problem.m_window.m_vecLog[0].starts_with("Engine stopped: "));
            }
        }
    }
}

TEST(SolveControl, APauseHoldsAllAndIsNoTimeOfTheRun)
{
    TSolveControlSettings settings;
    settings.m_run.m_nThreads = 2;
    TOpenProblem problem(ENDLESS, 9, settings);
    problem.m_request.m_bProofSearch = true;
    TOpenProblem other(THREE_MOVER, 3);
    const auto tStart = std::chrono::steady_clock::now();
    problem.m_control.StartSolve(false, EBruteForceKind::None);
    EXPECT_FALSE(problem.m_control.StartSolve(false, EBruteForceKind::None));
    EXPECT_EQ(problem.m_window.m_vecBoxes.at(0),
              "|Search for solution of the current problem is pending");
    std::this_thread::sleep_for(200ms);
    problem.m_control.PauseSolve(false);
    const auto tPause = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(200ms);
    const auto tPaused = problem.m_request.Now();
    const std::uint64_t nPositions = problem.m_request.m_nPositions;
    // Another problem isn't held.
    other.m_control.StartSolve(true, EBruteForceKind::None);
    other.m_control.Wait();
    EXPECT_EQ(other.m_control.Report().m_outcome.m_vecSolutions.size(), 1u);
    std::this_thread::sleep_for(500ms);
    EXPECT_EQ(problem.m_request.Now(), tPaused);
    EXPECT_EQ(problem.m_request.m_nPositions, nPositions);
    const auto paused = std::chrono::steady_clock::now() - tPause;
    problem.m_control.ResumeSolve();
    EXPECT_EQ(problem.m_control.State(), ESolveState::Solving);
    EXPECT_TRUE(problem.m_window.m_bTimer);
    for (int i = 0; i < 500 && problem.m_request.m_nPositions == nPositions; ++i)
        std::this_thread::sleep_for(10ms);
    EXPECT_GT(problem.m_request.m_nPositions, nPositions);
    // A pause for one thread leaves the timer on; a stop is for all.
    problem.m_control.m_nThreadToPeek = 1;
    problem.m_control.PauseSolve(true);
    EXPECT_EQ(problem.m_control.State(), ESolveState::PausedForOne);
    EXPECT_TRUE(problem.m_window.m_bTimer);
    problem.m_control.StopSolve();
    problem.m_control.Wait();
    const std::chrono::duration<double> atWork = std::chrono::steady_clock::now() - tStart - paused;
    EXPECT_LT(problem.m_control.Report().m_outcome.m_elapsed, atWork);
}

TEST(SolveControl, BruteForceFindsWhatThePassesFind)
{
    const std::vector<TTask> vecTasks = RandomTasks(52, {4, 8, 10, 2});
    std::mt19937 random(53);
    std::uint64_t nGroups = 0;
    int nStopped = 0;
    for (const int nThreads : {1, 2, 4}) {
        for (const TTask& task : vecTasks) {
            for (const EBruteForceKind kind :
                 {EBruteForceKind::BruteForce, EBruteForceKind::Hybrid}) {
                const TLeftBehind left;
                TSharingRequest request(task.m_board, task.m_nMate);
                TFakeWindow window;
                TSolveControlSettings settings;
                settings.m_bBatch = true;
                settings.m_run.m_nThreads = nThreads;
                settings.m_bruteForce.m_nThreads = nThreads;
                CSolveControl control(request, window, settings);
                const auto run = [&](bool bStop) {
                    control.StartSolve(true, kind);
                    if (bStop) {
                        std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
                        control.StopSolve();
                    }
                    control.Wait();
                    nGroups += request.m_sharingCounts.m_nGroups;
                    return SortedTexts(control.Report().m_outcome.m_vecSolutions);
                };
                const auto vecFound = run(true);
                ASSERT_TRUE(std::includes(task.m_vecSolutions.begin(), task.m_vecSolutions.end(),
                                          vecFound.begin(), vecFound.end()))
                    << Describe(task, "stopped");
                if (control.Report().m_outcome.m_bStopped)
                    ++nStopped;
                else
                    ASSERT_EQ(vecFound, task.m_vecSolutions) << Describe(task, "");
                ASSERT_EQ(run(false), task.m_vecSolutions) << Describe(task, "") << nThreads;
                EXPECT_FALSE(request.m_bBruteForce);
                EXPECT_TRUE(request.m_bBruteForceOverrides);
            }
        }
    }
    EXPECT_GT(nGroups, 20u);
    EXPECT_GT(nStopped, 5);
}

TEST(SolveControl, TheMainVariantIsPlayedToTheMate)
{
    TOpenProblem problem(THREE_MOVER, 3);
    problem.m_control.StartMainVariant();
    problem.m_control.Wait();
    EXPECT_EQ(problem.m_control.Report().m_strStatus, "A thread has completed.");
    EXPECT_TRUE(problem.m_window.HasStatus("Move made on chessboard of problem no 7"));
    EXPECT_TRUE(problem.m_window.HasStatus("...wait..."));
    EXPECT_FALSE(problem.m_window.m_bHighlight);
    ASSERT_EQ(problem.m_window.m_vecMoves.size(), 5u) << "Black holds out as long as he can";
    TProblem& document = problem.m_request;
    for (const TMove& move : problem.m_window.m_vecMoves)
        document.PlayMove(move);
    EXPECT_NE(document.m_pCurrentBoard->m_blackChecker, NO_CHECK);
    EXPECT_FALSE(document.m_pCurrentBoard->CanBlackEscapeCheck());
    EXPECT_FALSE(problem.m_control.StartSolve(false, EBruteForceKind::None)) << "no move is left";
}

/// A pause holds the highlight of a move, and the question that would come next.
TEST(SolveControl, APauseHoldsTheMainVariant)
{
    TSolveControlSettings settings;
    settings.m_highlightTime = 40ms;
    TOpenProblem problem(THREE_MOVER, 3, settings);
    const auto moves = [&] {
        const std::lock_guard guard(problem.m_window.m_mutex);
        return problem.m_window.m_vecMoves.size();
    };
    problem.m_control.StartMainVariant();
    for (std::size_t nShown = 1; nShown < 4; ++nShown) {
        while (moves() < nShown)
            std::this_thread::yield();
        problem.m_control.PauseSolve(false);
        const std::size_t nPaused = moves();
        EXPECT_LT(nPaused, 5u);
        std::this_thread::sleep_for(150ms);
        EXPECT_EQ(moves(), nPaused);
        EXPECT_EQ(problem.m_control.State(), ESolveState::PausedForAll);
        problem.m_control.ResumeSolve();
    }
    problem.m_control.Wait();
    EXPECT_EQ(moves(), 5u);
}

TEST(SolveControl, ThePositionShownDecidesWhatIsLookedFor)
{
    TOpenProblem problem(THREE_MOVER, 3);
    problem.m_control.StartMainVariant();
    problem.m_control.Wait();
    const std::vector<TMove> vecLine = problem.m_window.m_vecMoves;
    ASSERT_EQ(vecLine.size(), 5u);
    problem.m_request.PlayMove(vecLine[0]);
    problem.m_control.StartSolve(false, EBruteForceKind::None);
    problem.m_control.Wait();
    EXPECT_TRUE(problem.m_control.Report().m_defence.m_bMateFollows);
    EXPECT_EQ(problem.m_control.Report().m_strStatus.find(
                  "Not found any defence against mate. The best looks: "),
              0u);
    problem.m_request.PlayMove(vecLine[1]);
    problem.m_control.StartSolve(true, EBruteForceKind::None);
    problem.m_control.Wait();
    EXPECT_TRUE(problem.m_window.HasStatus(">> #2"));
    const auto vecFound = SortedTexts(problem.m_control.Report().m_outcome.m_vecSolutions);
    EXPECT_TRUE(std::find(vecFound.begin(), vecFound.end(), SortedTexts({vecLine[2]}).front()) !=
                vecFound.end());

    // What the solve has learnt answers for a position of its own.
    TOpenProblem known("8/8/8/8/2k5/8/3K4/3Q4", 8);
    known.m_control.StartSolve(true, EBruteForceKind::None);
    known.m_control.Wait();
    known.m_request.PlayMove(known.m_control.Report().m_outcome.m_vecSolutions.at(0));
    known.m_control.StartSolve(false, EBruteForceKind::None);
    known.m_control.Wait();
    known.m_request.PlayMove(known.m_control.Report().m_defence.m_vecRanked.at(0).m_move);
    known.m_control.StartSolve(false, EBruteForceKind::None);
    known.m_control.Wait();
    const TSolveReport& report = known.m_control.Report();
    EXPECT_TRUE(report.m_strStatus.starts_with(">> #7 (from register) 1.")) << report.m_strStatus;
    const std::vector<TMove> vecAnswer = report.m_outcome.m_vecSolutions;
    known.m_control.StartSolve(true, EBruteForceKind::None);
    known.m_control.Wait();
    const auto vecAll = SortedTexts(report.m_outcome.m_vecSolutions);
    EXPECT_TRUE(std::binary_search(vecAll.begin(), vecAll.end(), SortedTexts(vecAnswer).at(0)));

    TOpenProblem endless(ENDLESS, 14);
    endless.m_request.PlayMove({12, 28, 0, 0});
    endless.m_request.PlayMove({52, 36, 0, 0});
    endless.m_control.StartSolve(false, EBruteForceKind::None);
    std::this_thread::sleep_for(100ms);
    endless.m_control.StopSolve();
    endless.m_control.Wait();
    EXPECT_TRUE(endless.m_control.Report().m_strStatus.starts_with("No solution found ("));
    EXPECT_TRUE(endless.m_window.m_vecBoxes.empty());
}

} // namespace
} // namespace corvina
