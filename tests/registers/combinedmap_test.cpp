#include "registers/combinedmap.h"
#include "support/boards.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <random>
#include <thread>

namespace corvina
{
namespace
{

using TModel = std::map<TBoardBytes, TRegisterDepths>;

void Add(TRegisterCombinedMap& map, const TBoardBytes& board, TRegisterDepths depths)
{
    TRegisterCombinedMap::TBucket(map, GetHash(board.data())).Add(board.data(), depths);
}

bool Has(TRegisterCombinedMap& map, const TBoardBytes& board, TRegisterDepths depths)
{
    TRegisterCombinedMap::TBucket bucket(map, GetHash(board.data()));
    const TRegisterDepths* pDepths = bucket.Find(board.data());
    return pDepths && *pDepths == depths;
}

/// The map holds exactly what the model holds.
void ExpectEqual(TRegisterCombinedMap& map, const TModel& model, int nStep = 0)
{
    ASSERT_EQ(map.CountEntries(), model.size()) << nStep;
    for (const auto& [board, depths] : model)
        ASSERT_TRUE(Has(map, board, depths)) << nStep;
}

void Fill(TRegisterCombinedMap& map, TModel& model, std::uint32_t nFirst, std::uint32_t nCount)
{
    for (std::uint32_t i = nFirst; i < nFirst + nCount; ++i) {
        const TRegisterDepths depths{static_cast<std::uint16_t>(i % 8), 3};
        model[NumberedBoard(i)] = depths;
        Add(map, NumberedBoard(i), depths);
    }
}

/// Takes all bodies out of the pools, so that every body is allocated.
class TDrainedPools
{
public:
    TDrainedPools()
    {
        while (TBodyPool<TSmallBucket>::Get().GetCount())
            m_vecSmall.push_back(TBodyPool<TSmallBucket>::Get().Take());
        while (TBodyPool<TFlatBucket>::Get().GetCount())
            m_vecFlat.push_back(TBodyPool<TFlatBucket>::Get().Take());
    }
    ~TDrainedPools()
    {
        for (TSmallBucket* pBody : m_vecSmall)
            TBodyPool<TSmallBucket>::Get().GiveBack(pBody);
        for (TFlatBucket* pBody : m_vecFlat)
            TBodyPool<TFlatBucket>::Get().GiveBack(pBody);
    }

private:
    std::vector<TSmallBucket*> m_vecSmall;
    std::vector<TFlatBucket*> m_vecFlat;
};

TEST(PositionKey, HashAndOrder)
{
    std::mt19937 random(5);
    for (int i = 0; i < 200; ++i) {
        TBoardBytes board1, board2;
        std::uint32_t nHash = 0;
        for (std::uint32_t j = 0; j < 64; ++j) {
            board1[j] = static_cast<std::uint8_t>(random());
            board2[j] = random() % 64 ? board1[j] : static_cast<std::uint8_t>(random());
            nHash += board1[j] * (j + 1) * (j + 1);
        }
        EXPECT_EQ(GetHash(board1.data()), nHash);
        // The order of words is that of the bytes read from the last to the first in each word.
        auto turned1 = board1, turned2 = board2;
        for (int j = 0; j < 64; j += 8) {
            std::reverse(turned1.begin() + j, turned1.begin() + j + 8);
            std::reverse(turned2.begin() + j, turned2.begin() + j + 8);
        }
        EXPECT_EQ(IsKeyLess(board1.data(), board2.data()), turned1 < turned2);
        EXPECT_EQ(AreKeysEqual(board1.data(), board2.data()), board1 == board2);
    }
}

TEST(CombinedMap, BucketTurnsFlatAndStaysFlat)
{
    TRegisterCombinedMap map;
    TModel model;
    EXPECT_FALSE(map.HasTable());
    ASSERT_TRUE(map.Resize(1, false));
    TFlatCapacities capacities;
    Fill(map, model, 0, 8);
    map.AddFlatCapacities(capacities);
    EXPECT_TRUE(capacities.empty());
    Fill(map, model, 8, 1);
    ExpectEqual(map, model);
    map.AddFlatCapacities(capacities);
    ASSERT_EQ(capacities.size(), 1U);
    EXPECT_GE(capacities.begin()->first, TFlatBucket::INITIAL_CAPACITY);

    EXPECT_EQ(map.RemoveByDepth(6, 3), 8U);
    model = {{NumberedBoard(7), {7, 3}}};
    ExpectEqual(map, model);
    TFlatCapacities after;
    map.AddFlatCapacities(after);
    EXPECT_EQ(after.size(), 1U);
    map.Clear(true, nullptr, nullptr, true, RELEASE_NOTHING);
    ExpectEqual(map, {}); // takes the flag of the bucket again
}

TEST(CombinedMap, RandomOperationsAgainstMap)
{
    std::mt19937 random(11);
    TRegisterCombinedMap map;
    TModel model;
    ASSERT_TRUE(map.Resize(64, false));
    for (int nStep = 0; nStep < 300; ++nStep) {
        for (int i = 0; i < 60; ++i) {
            const TBoardBytes board = NumberedBoard(random() % 4000);
            const TRegisterDepths depths{static_cast<std::uint16_t>(random() % 20),
                                         static_cast<std::uint16_t>(random() % 20)};
            TRegisterCombinedMap::TBucket bucket(map, GetHash(board.data()));
            TRegisterDepths* pDepths = bucket.Find(board.data());
            ASSERT_EQ(pDepths != nullptr, model.contains(board));
            if (pDepths)
                *pDepths = depths;
            else
                bucket.Add(board.data(), depths);
            model[board] = depths;
        }
        const unsigned nChoice = random() % 16;
        const auto nMax = static_cast<std::uint16_t>(random() % 20);
        if (nChoice < 3) {
            EXPECT_EQ(map.RemoveByDepth(nMax, 12), std::erase_if(model, [&](const auto& entry) {
                          return entry.second.m_nMovesMate <= nMax &&
                                 entry.second.m_nMovesNoMate <= 12;
                      }));
        }
        else if (nChoice == 3) {
            ASSERT_TRUE(map.Resize(16U << random() % 6, true));
        }
        else if (nChoice == 4 && nMax < 6) {
            ASSERT_TRUE(map.Resize(64, false));
            model.clear();
        }
        else if (nChoice == 5 && nMax < 6) {
            std::atomic<std::uint32_t> nCounter{map.CountEntries() + 7};
            map.Clear(true, &nCounter, nullptr, true, 20);
            EXPECT_EQ(nCounter, 7U);
            model.clear();
        }
        ExpectEqual(map, model, nStep);
    }
}

TEST(CombinedMap, FailedInsertionLosesOnlyTheEntry)
{
    for (int nSkip = 0; nSkip < 12; ++nSkip) {
        for (const int nFailures : {1, 2, 3, 1000}) {
            const TDrainedPools drained;
            TRegisterCombinedMap map;
            ASSERT_TRUE(map.Resize(2, false));
            TModel model;
            int nFailed = 0;
            const TAllocationFault fault(nSkip, nFailures);
            for (std::uint32_t i = 0; i < 40; ++i) {
                try {
                    Add(map, NumberedBoard(i), {5, 3});
                    model[NumberedBoard(i)] = {5, 3};
                }
                catch (const std::bad_alloc&) {
                    ++nFailed;
                }
            }
            ExpectEqual(map, model, nSkip);
            EXPECT_LE(nFailed, nFailures);
        }
    }
}

TEST(CombinedMap, FailedConversionIsTriedOnceMore)
{
    const TDrainedPools drained;
    TRegisterCombinedMap map;
    TModel model;
    ASSERT_TRUE(map.Resize(1, false));
    Fill(map, model, 0, 8);
    {
        const TAllocationFault fault(0, 2);
        EXPECT_THROW(Add(map, NumberedBoard(8), {1, 1}), std::bad_alloc);
    }
    const TAllocationFault fault(0, 1);
    Fill(map, model, 8, 1);
    ExpectEqual(map, model);
}

TEST(CombinedMap, FailedRehashAndSweepLoseNothing)
{
    int nFailedRehashes = 0;
    for (int nSkip = 0; nSkip < 40; ++nSkip) {
        for (const int nFailures : {1, 5}) {
            const TDrainedPools drained;
            TRegisterCombinedMap map;
            TModel model;
            ASSERT_TRUE(map.Resize(4, false));
            Fill(map, model, 0, 300);
            const TAllocationFault fault(nSkip, nFailures);
            nFailedRehashes += !map.Resize(32, true);
            ExpectEqual(map, model, nSkip);
        }
    }
    EXPECT_GT(nFailedRehashes, 10);

    TRegisterCombinedMap map;
    TModel model;
    ASSERT_TRUE(map.Resize(1, false));
    Fill(map, model, 0, 5000); // no storage of a former sweep has room for what stays
    const TAllocationFault fault(0, 1000);
    EXPECT_EQ(map.RemoveByDepth(3, 3), std::erase_if(model, [](const auto& entry) {
                  return entry.second.m_nMovesMate <= 3;
              }));
    EXPECT_GT(fault.GetCount(), 0);
    ExpectEqual(map, model);
    EXPECT_FALSE(map.Resize(8, true));
    EXPECT_FALSE(TRegisterCombinedMap().Resize(8, false));
    ExpectEqual(map, model);
}

TEST(BodyPool, FillersStartLateAndEndWithTheProcess)
{
    using namespace std::chrono;
    const TDrainedPools drained;
    TBodyPool<TFlatBucket>& pool = TBodyPool<TFlatBucket>::Get();
    const auto tStart = steady_clock::now();
    StartRegisterPools(false);
    StartRegisterPools(true);
    EXPECT_EQ(pool.GetCount(), 0U);
    EXPECT_LT(steady_clock::now() - tStart, milliseconds(500));
    while (pool.GetCount() == 0 && steady_clock::now() - tStart < seconds(20))
        std::this_thread::sleep_for(milliseconds(10));
    ASSERT_GT(pool.GetCount(), 0U);
    TFlatBucket* pBody = pool.Take();
    EXPECT_EQ(pBody->m_map.capacity(), TFlatBucket::INITIAL_CAPACITY);
    pool.GiveBack(pBody);
}

} // namespace
} // namespace corvina
