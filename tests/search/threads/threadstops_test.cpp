#include "chess/fen.h"
#include "heuristics/differential.h"
#include "heuristics/setreader.h"
#include "search/enginecommand.h"
#include "search/threads/sharing.h"
#include "support/slowbuild.h"
#include "support/slowchess.h"
#include "support/workingfolder.h"

#include <gtest/gtest.h>

#include <mutex>
#include <new>
#include <random>
#include <set>
#include <thread>

/// What disturbs the threads below the root: stops, pauses, commands, threads that aren't to be
/// had.

namespace corvina
{
namespace
{

constexpr std::uint16_t ALL = TStopBlock::ALL_THREADS;
constexpr TForm DISTURBED[] = {{2, 1, 0}, {4, 1, 0}, {2, 2, 0}, {3, 2, 0},       {2, 3, 0},
                               {1, 1, 6}, {2, 1, 3}, {4, 2, 6}, {2, 1, 0, true}, {3, 2, 0, true}};
constexpr const char* ENDLESS = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR";

TEST(ThreadStops, NumbersOfThreadsAreUniqueAndReturn)
{
    TStopBlock block;
    std::set<int> setIds;
    for (int i = 0; i < 1000; ++i)
        setIds.insert(*block.TakeThreadId(3));
    EXPECT_EQ(setIds.size(), 1000u);
    EXPECT_EQ(*setIds.begin(), 3);
    EXPECT_EQ(*setIds.rbegin(), 1002);
    block.StopThread(70);
    block.StopThread(500);
    EXPECT_TRUE(block.IsStopped(70));
    EXPECT_FALSE(block.IsStopped(71));
    block.GiveBackThreadId(70);
    EXPECT_FALSE(block.IsStopped(70)) << "the next thread of that number isn't stopped";
    EXPECT_TRUE(block.IsStopped(500));
    EXPECT_FALSE(block.IsAtRest());
    block.GiveBackThreadId(500);
    EXPECT_TRUE(block.IsAtRest());
    EXPECT_EQ(block.TakeThreadId(3), 70);
    EXPECT_EQ(block.TakeThreadId(3), 500);
    EXPECT_EQ(block.TakeThreadId(3), 1003);
    EXPECT_EQ(block.TakeThreadId(65534), 65534);
    EXPECT_EQ(block.TakeThreadId(65534), std::nullopt);
}

/// A run that takes for ever, ended after some time; returns how long that took.
std::chrono::milliseconds TimeToStop(const TForm& form, int nMilliseconds, bool bPaused,
                                     const char* pFen = ENDLESS, const char* pSet = "none",
                                     bool bScout = false, int nMate = 14)
{
    const TLeftBehind left;
    TChessboard board;
    EXPECT_TRUE(ReadFen(board, pFen));
    TSharingRequest request(board, nMate, form);
    request.m_sharing = {};
    request.m_sharing.m_nProcessors = 12;
    request.m_shLookForQuickerMateDepth = 1; // else it takes long to come to the nodes below
    request.m_sharing.m_second = std::chrono::microseconds(300);
    request.m_bProofSearch = bScout;
    ReadHeuristicsText(pSet, request.m_heuristicSet, &board);
    // Groups beyond the levels without a wait for the last first move.
    request.OnPassStart = [&](std::uint32_t) { request.m_bLastMoveStarted = form.m_bBruteForce; };
    const TSharingCounts& counts = request.m_sharingCounts;
    const auto hasBegun = [&] {
        return (counts.m_nGroups > 0 || !form.HasGroups()) &&
               (counts.m_nExtraGroups > 0 || !form.m_bBruteForce) &&
               (counts.m_nSchedulers > 0 || form.m_nSchedulerLevels == 0);
    };
    const bool bShares = pFen == ENDLESS && nMate == 14;
    std::chrono::steady_clock::time_point tStopped;
    std::jthread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(nMilliseconds));
        // A busy machine takes longer to come to the nodes that share their moves.
        for (int i = 0; bShares && !hasBegun() && i < 2000; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        if (bPaused) {
            request.SetStopState(TStopBlock::PAUSE, ALL);
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
        }
        tStopped = std::chrono::steady_clock::now();
        request.SetStopState(TStopBlock::STOP, ALL);
    });
    TRunSettings settings = SettingsOf(form);
    settings.m_bStopAtFirstSolution = bScout;
    EXPECT_TRUE(Solve(request, settings).m_bStopped);
    EXPECT_EQ(counts.m_nFailures, 0u);
    EXPECT_TRUE(!bShares || hasBegun()) << form.Text();
    EXPECT_TRUE(form.HasGroups() || counts.m_nGroups == 0);
    EXPECT_TRUE(form.m_nSchedulerLevels > 0 || counts.m_nSchedulers == 0);
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 tStopped);
}

TEST(ThreadStops, AStopEndsEveryRunSoonAndLeavesNothing)
{
    std::mt19937 random(8);
    for (int nRound = 0; nRound < Rounds(2); ++nRound) {
        for (const TForm& form : DISTURBED) {
            const bool bPaused = nRound % 2 != 0;
            const auto time = TimeToStop(form, 200 + static_cast<int>(random() % 200), bPaused);
            EXPECT_LT(time.count(), 200 * SLOWER) << form.Text() << (bPaused ? " paused" : "");
        }
        struct TOtherRun
        {
            TForm m_form;
            const char *m_pFen, *m_pSet;
            bool m_bScout;
            int m_nMate;
        };
        constexpr const char* SORTED = "SH_DONTLETPROMOTEDQUEENMOVE, SH_3MOVESTOMATE";
        constexpr const char* BISHOP = "8/8/1p1p1p2/1P1P1P1p/4b2P/k2p4/3P3B/2K5";
        for (const TOtherRun& run : {TOtherRun{{2, 1, 0}, ENDLESS, "none", true, 14},
                                     {{2, 1, 0}, ENDLESS, SORTED, false, 40},
                                     {{2, 2, 0}, ENDLESS, "SH_FINDFORCEDMATE(#1)", false, 14},
                                     {{1, 1, 0}, BISHOP, "SH_ONECOLORPLAYPOSSIBLE", false, 14},
                                     {{2, 1, 0}, BISHOP, "SH_ONECOLORPLAYPOSSIBLE", false, 14}})
        {
            const auto time = TimeToStop(run.m_form, 30 + static_cast<int>(random() % 200), false,
                                         run.m_pFen, run.m_pSet, run.m_bScout, run.m_nMate);
            EXPECT_LT(time.count(), 200 * SLOWER)
                << run.m_form.Text() << run.m_pSet << run.m_bScout;
        }
    }
}

/// What all threads of a run are told concerns a run within it, too, and one that begins later.
TEST(ThreadStops, ARunWithinARunHasItsStops)
{
    TStopBlock outer, inner;
    outer.SetStopState(TStopBlock::PAUSE, ALL);
    outer.PassOnTo(&inner);
    EXPECT_TRUE(inner.IsPaused(3));
    outer.SetStopState(TStopBlock::PAUSE, 5);
    EXPECT_FALSE(inner.IsPaused(3));
    outer.SetStopState(TStopBlock::STOP, ALL);
    EXPECT_TRUE(inner.IsStopped(3));
    inner.ClearStopState();
    outer.PassOnTo(&inner);
    EXPECT_TRUE(inner.IsStoppedForAll());
    outer.PassOnTo(nullptr);
    inner.ClearStopState();
    EXPECT_TRUE(inner.IsAtRest());
}

/// Memory that is short ends the run, not the process; the next one is as if nothing had been.
TEST(ThreadStops, WhatARootThreadThrowsComesOutOfTheRun)
{
    TChessboard board;
    ASSERT_TRUE(ReadFen(board, "7k/8/5K2/8/8/8/8/6R1"));
    const TTask task = MakeTask(board, 6); // its nodes of 9 half-moves report their lines
    for (const TForm& form : FORMS) {
        const TLeftBehind left;
        TSharingRequest request(task.m_board, task.m_nMate, form);
        request.m_shLookForQuickerMateDepth = 1; // else there are no such nodes
        const auto solve = [&] {
            return SortedTexts(Solve(request, SettingsOf(form)).m_vecSolutions);
        };
        request.OnPassStart = [&](std::uint32_t) { throw std::bad_alloc(); };
        EXPECT_THROW(solve(), std::bad_alloc) << form.Text();
        EXPECT_EQ(request.m_pFoundSolutions, nullptr);
        request.OnPassStart = {};
        request.OnPassEnd = [&](const TPassReport&) { throw std::bad_alloc(); };
        EXPECT_THROW(solve(), std::bad_alloc) << form.Text();
        request.OnPassEnd = {};
        request.m_TemporaryRegister.Clear(TAggregatedTemporaryChessboardRegister::CLEAR_EVERYTHING,
                                          true);
        std::atomic<int> nCalls{0};
        request.OnPositionAnalysed = [&](const TChessboard* pBoard, const TThreadContext&) {
            if (pBoard && ++nCalls == 1)
                throw std::bad_alloc();
        };
        // A thread below the root only leaves its first move undecided.
        bool bThrown = false, bUndecided = false;
        try {
            bUndecided = Solve(request, SettingsOf(form)).m_bDoubtful;
        }
        catch (const std::bad_alloc&) {
            bThrown = true;
        }
        EXPECT_TRUE(bThrown || bUndecided) << form.Text() << nCalls;
        EXPECT_EQ(solve(), task.m_vecSolutions) << form.Text();
    }
}

/// Disturbs a run at random until it has ended.
class TDisturber
{
public:
    TDisturber(TSolveRequest& request, unsigned nSeed, bool bStops)
        : m_request(request), m_random(nSeed), m_bStops(bStops), m_thread([this] { Disturb(); })
    {
    }
    ~TDisturber()
    {
        m_bEnd = true;
        m_thread.join();
    }

private:
    void Disturb()
    {
        while (!m_bEnd) {
            const auto nThread = static_cast<std::uint16_t>(m_random() % 12);
            switch (m_random() % 4) {
            case 0:
                m_request.SetStopState(TStopBlock::PAUSE, m_random() % 2 ? ALL : nThread);
                break;
            case 1: {
                TEngineCommand command;
                command.m_nCommandDepth = static_cast<std::uint16_t>(2 + m_random() % 8);
                command.m_nCommand = static_cast<std::uint8_t>(1 + m_random() % 2);
                m_request.PostCommand(nThread, command);
                break;
            }
            case 2:
                if (m_bStops)
                    m_request.SetStopState(TStopBlock::STOP, m_random() % 8 ? nThread : ALL);
                break;
            default:
                break;
            }
            std::this_thread::sleep_for(std::chrono::microseconds(m_random() % 2000));
            m_request.SetStopState(TStopBlock::RUN, ALL);
            std::this_thread::sleep_for(std::chrono::microseconds(m_random() % 2000));
        }
    }

    TSolveRequest& m_request;
    std::mt19937 m_random;
    const bool m_bStops;
    std::atomic<bool> m_bEnd{false};
    std::thread m_thread;
};

/// A stop of one thread leaves first moves undecided; nothing else changes a solution, and what the
/// register has kept misleads no later run.
TEST(ThreadStops, DisturbancesChangeNoSolution)
{
    const std::vector<TTask> vecTasks = RandomTasks(32, {0, 0, 4, 2});
    const TWorkingFolder folder; // of the logs
    int nUndecided = 0;
    unsigned nSeed = 0;
    for (int nRound = 0; nRound < Rounds(1); ++nRound) {
        for (const TForm& form : DISTURBED) {
            for (const TTask& task : vecTasks) {
                const TLeftBehind left;
                const bool bStops = ++nSeed % 2 != 0;
                TSharingRequest request(task.m_board, task.m_nMate, form);
                request.m_bLogMoves = form.m_nThreads == 3 && nSeed % 3 == 0;
                TSolveOutcome outcome;
                {
                    const TDisturber disturber(request, nSeed, bStops);
                    outcome = Solve(request, SettingsOf(form));
                }
                const auto vecFound = SortedTexts(outcome.m_vecSolutions);
                const std::string strText = Describe(task, form.Text());
                const bool bUndecided = outcome.m_bDoubtful || outcome.m_bStopped;
                nUndecided += bUndecided;
                ASSERT_TRUE(bStops || !bUndecided) << strText;
                ASSERT_TRUE(std::includes(task.m_vecSolutions.begin(), task.m_vecSolutions.end(),
                                          vecFound.begin(), vecFound.end()))
                    << strText;
                if (!bUndecided) {
                    ASSERT_EQ(vecFound, task.m_vecSolutions) << strText;
                }
                ASSERT_EQ(SortedTexts(Solve(request, SettingsOf(form)).m_vecSolutions),
                          task.m_vecSolutions)
                    << strText << ", after a disturbed run";
            }
        }
    }
    EXPECT_GT(nUndecided, 0) << "no stop has hit a thread";
}

TEST(ThreadStops, ThreadsThatArentToBeHadChangeNoSolution)
{
    static std::mutex g_csRandom;
    static std::mt19937 g_random(9);
    const std::vector<TTask> vecTasks = RandomTasks(33, {0, 0, 8, 2});
    TCounts counts;
    SetThreadFault([] {
        const std::lock_guard guard(g_csRandom);
        const auto nKind = g_random() % 6;
        if (nKind == 0)
            throw std::bad_alloc();
        return nKind == 1;
    });
    for (const TForm& form : DISTURBED) {
        for (const TTask& task : vecTasks) {
            const TLeftBehind left;
            TSharingRequest request(task.m_board, task.m_nMate, form);
            TRunSettings settings = SettingsOf(form);
            settings.m_bSchedulerThreadPool = counts.m_nFailures % 2 != 0;
            EXPECT_EQ(SortedTexts(Solve(request, settings).m_vecSolutions), task.m_vecSolutions)
                << Describe(task, form.Text());
            counts.Add(request.m_sharingCounts);
        }
    }
    // None at all but the first.
    SetThreadFault([] { return CountThreads() > 0; });
    for (const TTask& task : vecTasks) {
        const TLeftBehind left;
        TSharingRequest request(task.m_board, task.m_nMate);
        EXPECT_EQ(SortedTexts(Solve(request, SettingsOf({4, 2, 6})).m_vecSolutions),
                  task.m_vecSolutions);
        EXPECT_EQ(request.m_sharingCounts.m_nGroups, 0u);
        EXPECT_EQ(request.m_sharingCounts.m_nJuggledMoves, 0u);
    }
    SetThreadFault(nullptr);
    EXPECT_GT(counts.m_nFailures, 50u);
    EXPECT_GT(counts.m_nGroups, 50u);
    EXPECT_GT(counts.m_nSchedulers, 20u);
}

/// Commands to the node whose moves are juggled, and to those above and below.
TEST(ThreadStops, AJuggledNodeServesCommands)
{
    TChessboard board;
    ASSERT_TRUE(ReadFen(board, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR"));
    TSharingRequest request(board, 14);
    request.m_sharing = {};
    request.m_shLookForQuickerMateDepth = 1; // else it takes long to come to the nodes below
    request.m_bManualControl = true;
    struct TDialog : TEngineDialog
    {
        std::optional<TMove> ChooseMove(const TNodeMoves& node) override
        {
            m_nDepth = node.m_board.m_nMoves;
            m_nCurrent = node.m_nCurrent;
            m_nMoves = node.m_nMoves;
            return std::nullopt;
        }
        int m_nDepth = 0, m_nCurrent = -1, m_nMoves = 0;
    } dialog;
    const auto look = [&](int nDepth) {
        dialog.m_nDepth = 0;
        SendEngineCommand(request, dialog, static_cast<std::uint16_t>(nDepth), 0, ORDER_KEEP, 0);
        return dialog.m_nDepth;
    };
    TSolveOutcome outcome;
    std::jthread run([&] { outcome = Solve(request, SettingsOf({1, 1, 6})); });
    // The root thread waits at its first juggled node, White's second move, for the others.
    while (look(25) != 25)
        std::this_thread::yield();
    EXPECT_EQ(look(11), 25);
    for (const int nOrder : {ORDER_SWAP, ORDER_LAST}) {
        const int nBefore = (look(25), dialog.m_nCurrent);
        EXPECT_EQ(SendEngineCommand(request, dialog, 25, 0, nOrder, 1), ECommandSent::Sent);
        while (look(25) == 25 && dialog.m_nCurrent == nBefore)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_FALSE(request.m_bLastMoveStarted);
    EXPECT_EQ(SendEngineCommand(request, dialog, 25, 0, ORDER_KEEP, 1), ECommandSent::Sent);
    // All others are left out: the last move has its turn at once. A command that comes between two
    // moves changes nothing.
    const auto isAtLast = [&] {
        return look(25) == 25 && dialog.m_nCurrent + 1 == dialog.m_nMoves;
    };
    for (int i = 0; i < 5000 && !isAtLast(); ++i) {
        if (i % 20 == 0) {
            EXPECT_EQ(SendEngineCommand(request, dialog, 25, 0, ORDER_KEEP, 200),
                      ECommandSent::Sent);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_TRUE(isAtLast());
    EXPECT_EQ(SendEngineCommand(request, dialog, 27, 0, ORDER_LAST, 1), ECommandSent::Sent);
    while (look(25) != 25)
        std::this_thread::yield();
    request.SetStopState(TStopBlock::STOP, ALL);
    run.join();
    EXPECT_TRUE(outcome.m_bInfluencedByHand);

    // A node that a group works on has no use for a command.
    run = std::jthread([&] { outcome = Solve(request, SettingsOf({2, 2, 0})); });
    while (look(25) != 25)
        std::this_thread::yield();
    EXPECT_EQ(SendEngineCommand(request, dialog, 25, 0, ORDER_SWAP, 1), ECommandSent::Sent);
    EXPECT_EQ(look(25), 25);
    request.SetStopState(TStopBlock::STOP, ALL);
    run.join();
    EXPECT_FALSE(outcome.m_bInfluencedByHand);
}

} // namespace
} // namespace corvina
