#include "registers/aggregatedregister.h"
#include "registers/answers.h"
#include "support/boards.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <random>
#include <thread>
#include <vector>

namespace corvina
{
namespace
{

/// Runs work(thread number) on each of so many threads.
template <class F>
void RunThreads(int nThreads, F work)
{
    std::vector<std::jthread> vecThreads;
    for (int i = 0; i < nThreads; ++i)
        vecThreads.emplace_back(work, i);
}

TEST(RegisterLock, WritersExcludeEverybody)
{
    constexpr int THREADS = 6, ROUNDS = 80000;
    TRegisterLock lock;
    long long nValue = 0, nCopy = 0; // equal whenever nobody writes
    RunThreads(THREADS, [&](int nThread) {
        for (int i = 0; i < ROUNDS; ++i) {
            if ((i + nThread) % 8 == 0) {
                const TRegisterLock::TWriteGuard guard(lock);
                ++nValue;
                {
                    const TRegisterLock::TReadGuard inner(lock);  // an owner may read,
                    const TRegisterLock::TWriteGuard again(lock); // and write again,
                    const TRegisterLock::TWriteGuard once(lock);
                }
                ++nCopy; // and is still alone
            }
            else {
                const TRegisterLock::TReadGuard guard(lock);
                ASSERT_EQ(nValue, nCopy);
            }
        }
    });
    EXPECT_EQ(nValue, THREADS * ROUNDS / 8);
}

TEST(RegisterLock, ReadersShareAndWritersWaitForThem)
{
    TRegisterLock lock;
    std::atomic<int> nInside{0}, nWritten{0};
    std::jthread writer;
    RunThreads(2, [&](int nThread) {
        TRegisterLock::TReadGuard guard(lock);
        ++nInside;
        while (nInside < 2)
            std::this_thread::yield(); // ends only when both are inside at once
        if (nThread == 0)
            writer = std::jthread([&] {
                const TRegisterLock::TWriteGuard inner(lock);
                ++nWritten;
            });
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        EXPECT_EQ(nWritten, 0);
    });
    writer.join();
    EXPECT_EQ(nWritten, 1);
}

/// Some threads store and ask while others sweep, clear, resize and swap. Each board has a true
/// length of mate and only true facts are given, so that every answer but "unknown" can be judged.
TEST(RegisterThreads, AnswersStayTrueInATurmoil)
{
    constexpr auto TIME = std::chrono::milliseconds(2500);
    constexpr std::uint32_t HEUR = 7, BOARDS = 60000;
    TAggregatedTemporaryChessboardRegister reg, other;
    reg.SetMemoryLimitMB(2); // 15946 elements: sweeps all the time
    other.SetMemoryLimitMB(2);
    reg.SetBuckets(1024, false);
    other.SetBuckets(1024, false);
    std::atomic<int> nKnown{0}, nSwept{0}, nWrong{0};
    const auto tEnd = std::chrono::steady_clock::now() + TIME;

    const auto storeAndAsk = [&](int nThread) {
        std::mt19937 random(static_cast<unsigned>(nThread));
        while (std::chrono::steady_clock::now() < tEnd) {
            for (int i = 0; i < 100; ++i) {
                const std::uint32_t nNumber = random() % BOARDS;
                const TBoardBytes board = NumberedBoard(nNumber);
                const auto nMoves = static_cast<std::uint16_t>(random() % 10 * 2 + 1);
                const bool bMate = nMoves >= nNumber % 13 * 2;
                const std::uint32_t nSetting = random() % 3;
                const std::uint8_t nAnswer = reg.FindPosition(nMoves, board.data(), HEUR, nSetting);
                nKnown += nAnswer != REGISTER_UNKNOWN;
                nWrong += nAnswer == (bMate ? REGISTER_NO_MATE : REGISTER_MATE) ||
                          (bMate && nAnswer == REGISTER_NO_MATE_HERE);
                if (random() % 4)
                    reg.InsertFromFile(nMoves, board.data(), bMate);
                else
                    reg.InsertDoubtful(nMoves, board.data(), HEUR, nSetting, !bMate);
            }
        }
    };
    const auto upset = [&](int) {
        std::mt19937 random(99);
        const std::function<void()> aUpsets[] = {
            [&] { reg.SetBuckets(256U << random() % 4, random() % 8 != 0); },
            [&] { reg.KeepDoubtful(HEUR, random() % 3); },
            [&] { reg.RemoveDoubtful(HEUR, random() % 3); },
            [&] { nSwept += static_cast<int>(reg.RemoveNMovers(random() % 4 * 2 + 1)); },
            [&] { reg.Swap(other); },
            [&] { reg.EmptySomeDataWhenRegisterFull(true); },
            [&] { reg.Statistics(); },
            [&] {
                reg.Clear(static_cast<int>(random() % 3) - 1, true);
                reg.SetBuckets(1024, true);
            },
        };
        while (std::chrono::steady_clock::now() < tEnd) {
            aUpsets[random() % std::size(aUpsets)]();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    };
    RunThreads(5, [&](int nThread) { nThread == 0 ? upset(nThread) : storeAndAsk(nThread); });

    EXPECT_EQ(nWrong, 0);
    EXPECT_GT(nKnown, 1000);
    EXPECT_GT(nSwept, 100);
    for (TAggregatedTemporaryChessboardRegister* pRegister : {&reg, &other}) {
        std::uint32_t nEntries = 0;
        pRegister->ForEachEntry([&](const TPositionKey&, TRegisterDepths) { ++nEntries; });
        EXPECT_EQ(pRegister->GetMapCount(), nEntries);
        pRegister->RemoveNMovers(22);
        EXPECT_EQ(pRegister->GetElementsCount(), 0U); // the counts have followed everything
    }
}

} // namespace
} // namespace corvina
