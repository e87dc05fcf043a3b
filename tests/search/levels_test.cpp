#include "chess/fen.h"
#include "heuristics/differential.h"
#include "heuristics/setreader.h"
#include "platform/thread.h"
#include "search/forcethreads.h"
#include "search/levels.h"
#include "search/levelthread.h"
#include "search/rootsetup.h"
#include "search/scheduler.h"
#include "search/solve.h"
#include "support/positions.h"
#include "support/slowchess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <thread>

/// Threads below the root: groups, schedulers, and what disturbs them.

namespace corvina
{
namespace
{

constexpr std::uint16_t ALL = TStopBlock::ALL_THREADS;

/// N^L threads and K levels of the scheduler.
struct TForm
{
    int m_nThreads, m_nLevels, m_nSchedulerLevels;

    std::string Text() const
    {
        return std::to_string(m_nThreads) + "^" + std::to_string(m_nLevels) + " and " +
               std::to_string(m_nSchedulerLevels) + " scheduler levels";
    }
};

constexpr TForm FORMS[] = {{2, 1, 0}, {4, 1, 0}, {2, 2, 0}, {3, 2, 0},
                           {2, 3, 0}, {1, 1, 6}, {2, 1, 3}, {4, 2, 6}};

/// So many times as usual; CORVINA_SOAK in the environment asks for more.
int Rounds(int nUsual)
{
    const char* pSoak = std::getenv("CORVINA_SOAK");
    return nUsual * (pSoak ? std::max(1, std::atoi(pSoak)) : 1);
}

/// A request whose nodes share their moves near the leaves, and whose quanta are as short.
struct TSharingRequest : TSolveRequest
{
    TSharingRequest(const TChessboard& board, int nMate)
    {
        *m_pChessboard = board;
        SetMateIn(nMate);
        m_nMinRegisterPlies = 0;
        m_sharing.m_nMinLevelDepth = m_sharing.m_nMinLevelDepthOfMany = 5;
        m_sharing.m_nMinSchedulerDepth = m_sharing.m_nMinSchedulerDepthOfMany = 5;
        m_sharing.m_second = std::chrono::microseconds(20);
    }
};

TRunSettings SettingsOf(const TForm& form)
{
    TRunSettings settings;
    settings.m_nThreads = form.m_nThreads;
    settings.m_nMultithreadingLevels = form.m_nLevels;
    settings.m_nSchedulerLevels = form.m_nSchedulerLevels;
    return settings;
}

/// Threads and numbers that a run may have left behind.
class TLeftBehind
{
public:
    ~TLeftBehind()
    {
        EXPECT_EQ(CountThreads(), m_nThreads);
        EXPECT_EQ(g_nSchedulerThreads, 0);
        EXPECT_EQ(g_nRunningThreads, 0);
        EXPECT_EQ(g_nActiveRootThreads, 0);
        EXPECT_EQ(g_nExtraThreads, 0);
        EXPECT_EQ(g_nReservations, 0);
    }

private:
    const int m_nThreads = CountThreads();
};

struct TCounts
{
    std::uint64_t m_nGroups = 0, m_nSchedulers = 0, m_nSwitches = 0, m_nFailures = 0;

    void Add(const TSharingCounts& counts)
    {
        m_nGroups += counts.m_nGroups;
        m_nSchedulers += counts.m_nSchedulers;
        m_nSwitches += counts.m_nSwitches;
        m_nFailures += counts.m_nFailures;
    }
};

constexpr const char* SETS[] = {
    "none",
    "SH_KEEPKINGONTHEEDGE(C1f), SH_DONTLOSEANYFIGURES",
    "SH_KEEPKINGWITHINEXTEDGE, SH_AREKINGSNEAR",
    "SH_ASSERTBLACKKINGSURROUNDED",
    "SH_FINDFORCEDMATE(#1)",
};

/// Solves the task in the form, for all solutions and for the first one.
void CheckForm(const TTask& task, const TForm& form, const char* pSet, TCounts& counts)
{
    const TLeftBehind left;
    TSharingRequest request(task.m_board, task.m_nMate);
    ReadHeuristicsText(pSet, request.m_heuristicSet, &task.m_board);
    TRunSettings settings = SettingsOf(form);
    settings.m_bQuickMode = task.m_nMate % 2 == 0;
    const std::string strText = Describe(task, pSet) + ", " + form.Text();
    ASSERT_EQ(SortedTexts(Solve(request, settings).m_vecSolutions), task.m_vecSolutions) << strText;
    counts.Add(request.m_sharingCounts);

    TSharingRequest first(task.m_board, task.m_nMate);
    ReadHeuristicsText(pSet, first.m_heuristicSet, &task.m_board);
    settings.m_bStopAtFirstSolution = true;
    const auto vecFirst = SortedTexts(Solve(first, settings).m_vecSolutions);
    ASSERT_EQ(vecFirst.empty(), task.m_vecSolutions.empty()) << strText;
    ASSERT_TRUE(std::includes(task.m_vecSolutions.begin(), task.m_vecSolutions.end(),
                              vecFirst.begin(), vecFirst.end()))
        << strText;
}

TEST(Levels, GroupsAndSchedulersChangeNoSolution)
{
    const std::vector<TTask> vecTasks = RandomTasks(31, {0, 0, 16, 4});
    for (const TForm& form : FORMS) {
        TCounts counts;
        for (int nRound = 0; nRound < Rounds(1); ++nRound) {
            for (std::size_t i = 0; i < vecTasks.size() && !HasFatalFailure(); ++i)
                CheckForm(vecTasks[i], form, SETS[(i + static_cast<std::size_t>(nRound)) % 5],
                          counts);
        }
        EXPECT_EQ(counts.m_nGroups > 50, form.m_nLevels > 1) << form.Text();
        EXPECT_EQ(counts.m_nSchedulers > 20, form.m_nSchedulerLevels > 0) << form.Text();
        EXPECT_EQ(counts.m_nSwitches > 20, form.m_nSchedulerLevels > 0) << form.Text();
        EXPECT_EQ(counts.m_nFailures, 0u);
    }
}

} // namespace
} // namespace corvina
