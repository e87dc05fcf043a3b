#ifndef CORVINA_TESTS_SEARCH_THREADS_SHARING_H
#define CORVINA_TESTS_SEARCH_THREADS_SHARING_H

#include "platform/thread.h"
#include "search/solve.h"
#include "search/threads/levels.h"
#include "search/threads/scheduler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>

/// Runs whose nodes below the root share their moves among threads.

namespace corvina
{

/// N^L threads and K levels of the scheduler; by brute force in groups of two, beyond the levels
/// too.
struct TForm
{
    int m_nThreads, m_nLevels, m_nSchedulerLevels;
    bool m_bBruteForce = false;

    std::string Text() const
    {
        return std::to_string(m_nThreads) + "^" + std::to_string(m_nLevels) + " and " +
               std::to_string(m_nSchedulerLevels) + " scheduler levels" +
               (m_bBruteForce ? ", brute force" : "");
    }
    bool HasGroups() const { return m_nLevels > 1 || m_bBruteForce; }
};

constexpr TForm FORMS[] = {{1, 1, 0}, {2, 1, 0},       {4, 1, 0},      {2, 2, 0},
                           {3, 2, 0}, {2, 3, 0},       {1, 1, 6},      {2, 1, 3},
                           {4, 2, 6}, {2, 1, 0, true}, {3, 2, 0, true}};

/// So many times as usual; CORVINA_SOAK in the environment asks for more.
inline int Rounds(int nUsual)
{
    const char* pSoak = std::getenv("CORVINA_SOAK");
    return nUsual * (pSoak ? std::max(1, std::atoi(pSoak)) : 1);
}

/// A request whose nodes share their moves near the leaves, and whose quanta are as short.
struct TSharingRequest : TSolveRequest
{
    TSharingRequest(const TChessboard& board, int nMate, const TForm& form = {})
    {
        m_bBruteForce = form.m_bBruteForce;
        *m_pChessboard = board;
        SetMateIn(nMate);
        m_nMinRegisterPlies = 0;
        m_sharing.m_nMinLevelDepth = m_sharing.m_nMinLevelDepthOfMany = 5;
        m_sharing.m_nMinSchedulerDepth = m_sharing.m_nMinSchedulerDepthOfMany = 5;
        m_sharing.m_nMinRespawnDepth = 5;
        m_sharing.m_nMinExtraDepth = m_sharing.m_nMinExtraDepthOfHeavy = 5;
        m_sharing.m_nProcessors = 12;
        m_sharing.m_second = std::chrono::microseconds(20);
    }
};

inline TRunSettings SettingsOf(const TForm& form)
{
    TRunSettings settings;
    settings.m_nThreads = form.m_nThreads;
    settings.m_nMultithreadingLevels = form.m_nLevels;
    settings.m_nSchedulerLevels = form.m_nSchedulerLevels;
    return settings;
}

/// Entries of a folder of the system that tells about the process; 0 where there is none.
inline std::ptrdiff_t CountEntries(const char* pFolder)
{
    std::error_code error;
    return std::distance(std::filesystem::directory_iterator(pFolder, error), {});
}

/// Threads, open files and numbers that a run may have left behind.
class TLeftBehind
{
public:
    ~TLeftBehind()
    {
        EXPECT_EQ(CountThreads(), m_nThreads);
        EXPECT_EQ(CountEntries(FILES), m_nFiles);
        // The system may list a thread for a moment that has been joined.
        for (int i = 0; i < 1000 && CountEntries(TASKS) != m_nTasks; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(CountEntries(TASKS), m_nTasks);
        EXPECT_EQ(g_nSchedulerThreads, 0);
        EXPECT_EQ(g_nRunningThreads, 0);
        EXPECT_EQ(g_nActiveRootThreads, 0);
        EXPECT_EQ(g_nExtraThreads, 0);
        EXPECT_EQ(g_nReservations, 0);
    }

private:
    static constexpr const char *TASKS = "/proc/self/task", *FILES = "/proc/self/fd";
    /// Makes the first thread of the process before it counts: a sanitizer begins a thread of its
    /// own with that one, which stays.
    static std::ptrdiff_t CountTasks()
    {
        static std::once_flag once;
        std::call_once(once, [] { std::thread([] {}).join(); });
        return CountEntries(TASKS);
    }

    const int m_nThreads = CountThreads();
    const std::ptrdiff_t m_nTasks = CountTasks(), m_nFiles = CountEntries(FILES);
};

struct TCounts
{
    std::uint64_t m_nGroups = 0, m_nSchedulers = 0, m_nSwitches = 0, m_nFailures = 0;
    std::uint64_t m_nRespawns = 0, m_nExtraGroups = 0;

    void Add(const TSharingCounts& counts)
    {
        m_nGroups += counts.m_nGroups;
        m_nSchedulers += counts.m_nSchedulers;
        m_nSwitches += counts.m_nSwitches;
        m_nFailures += counts.m_nFailures;
        m_nRespawns += counts.m_nRespawns;
        m_nExtraGroups += counts.m_nExtraGroups;
    }
};

} // namespace corvina

#endif
