#include "platform/event.h"
#include "platform/thread.h"
#include "platform/threadpool.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <random>
#include <set>
#include <system_error>
#include <thread>

namespace corvina
{
namespace
{

constexpr std::size_t STACK = std::size_t{1} << 20;

TEST(Thread, PriorityAndItsScale)
{
    EXPECT_EQ(LowerPriority(PRIORITY_NORMAL, 2), -2);
    EXPECT_EQ(LowerPriority(1, 2), -1);
    EXPECT_EQ(LowerPriority(-2, 2), -15);
    EXPECT_EQ(LowerPriority(15, 1), 2);
    const int nOwn = getpriority(PRIO_PROCESS, 0);
    int nNice = nOwn;
    {
        const TThread thread(
            STACK, [&] { nNice = getpriority(PRIO_PROCESS, 0); }, -2);
    }
    EXPECT_EQ(nNice, 10);
    EXPECT_EQ(getpriority(PRIO_PROCESS, 0), nOwn) << "the thread's priority is the thread's alone";
}

TEST(Thread, AnEventWakesAndStays)
{
    TEvent event;
    EXPECT_FALSE(event.WaitFor(std::chrono::milliseconds(1)));
    const TThread setter(STACK, [&] { event.Set(); });
    EXPECT_TRUE(event.WaitFor(std::chrono::seconds(60)));
    EXPECT_TRUE(event.WaitFor(std::chrono::seconds(60)));
    event.Reset();
    EXPECT_FALSE(event.WaitFor(std::chrono::milliseconds(1)));
}

/// Runs tasks one after the other; returns how many threads have done them.
std::size_t RunInTurn(TThreadPool& pool, int nTasks)
{
    std::set<std::thread::id> setThreads;
    for (int i = 0; i < nTasks; ++i) {
        TEvent done;
        pool.Run(STACK, PRIORITY_NORMAL, [&] {
            setThreads.insert(std::this_thread::get_id());
            done.Set();
        });
        EXPECT_TRUE(done.WaitFor(std::chrono::seconds(60)));
        std::this_thread::sleep_for(std::chrono::milliseconds(2)); // it parks
    }
    return setThreads.size();
}

TEST(ThreadPool, ThreadsParkAndNoneIsLeft)
{
    const int nBefore = CountThreads();
    {
        TThreadPool pool(4);
        EXPECT_LT(RunInTurn(pool, 40), 20u);
        EXPECT_GE(CountThreads(), nBefore + 1);
    }
    EXPECT_EQ(CountThreads(), nBefore);
    {
        TThreadPool pool(0);
        RunInTurn(pool, 40);
        EXPECT_LE(CountThreads(), nBefore + 2) << "threads that have ended are joined on the way";
    }
    EXPECT_EQ(CountThreads(), nBefore);
}

TEST(ThreadPool, ManyTasksFromManyThreadsWithFailures)
{
    constexpr int THREADS = 4, TASKS = 300;
    static std::mutex g_csRandom;
    static std::mt19937 g_random(5);
    SetThreadFault([] {
        const std::lock_guard guard(g_csRandom);
        return g_random() % 3 == 0;
    });
    const int nBefore = CountThreads();
    std::atomic<int> nDone{0}, nBegun{0}, nFailed{0};
    {
        TThreadPool pool(8);
        std::vector<std::jthread> vecThreads;
        for (int n = 0; n < THREADS; ++n)
            vecThreads.emplace_back([&] {
                for (int i = 0; i < TASKS; ++i) {
                    try {
                        pool.Run(STACK * (1 + static_cast<std::size_t>(i) % 2), -(i % 3),
                                 [&] { ++nDone; });
                        ++nBegun;
                    }
                    catch (const std::system_error&) {
                        ++nFailed;
                    }
                }
            });
        vecThreads.clear();
    }
    SetThreadFault(nullptr);
    EXPECT_EQ(nDone, nBegun);
    EXPECT_EQ(nBegun + nFailed, THREADS * TASKS);
    EXPECT_GT(nFailed, 0);
    EXPECT_EQ(CountThreads(), nBefore);
}

} // namespace
} // namespace corvina
