#include "search/threads/schedulerbook.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <vector>

namespace corvina
{
namespace
{

constexpr int NONE = TSchedulerBook::NONE;

TEST(SchedulerBook, QuantaFollowLevelAndPlace)
{
    const struct
    {
        int m_nLevel, m_nLevels;
        double m_dFirst, m_dNext, m_dFavoured;
    } aCases[] = {
        {6, 6, 3, 0.1, 1},  {5, 6, 5, 0.3, 2}, {4, 6, 11, 1, 3},  {1, 6, 25, 5, 10},
        {1, 9, 83, 21, 42}, {1, 1, 3, 0.1, 1}, {7, 6, 6, 0.1, 2},
    };
    for (const auto& c : aCases) {
        TSchedulerBook book(c.m_nLevel, c.m_nLevels);
        book.Start(0, false);
        EXPECT_EQ(book.QuantumOf(0).m_dSeconds, c.m_dFirst);
        book.Start(1, false);
        EXPECT_EQ(book.QuantumOf(0).m_dSeconds, c.m_dFirst) << "the first of the list";
        EXPECT_EQ(book.QuantumOf(1).m_dSeconds, c.m_dNext) << c.m_nLevel << " of " << c.m_nLevels;
        book.SetGoodMoves(2);
        EXPECT_EQ(book.QuantumOf(1).m_dSeconds, c.m_dFavoured);
        book.Finish(0);
        EXPECT_EQ(book.QuantumOf(1).m_dSeconds, c.m_dFirst) << "nothing before it is open";
    }
    // A row of forcing moves at the head of the list is favoured; a gap ends it.
    TSchedulerBook book(4, 6);
    for (const bool bForcing : {true, true, false, true})
        book.Start(book.CountStarted(), bForcing);
    EXPECT_EQ(book.QuantumOf(1).m_dSeconds, 3);
    EXPECT_EQ(book.QuantumOf(3).m_dSeconds, 1);
}

TEST(SchedulerBook, WhatIsFinishedComesFirstAndOnce)
{
    TSchedulerBook book(1, 6);
    EXPECT_EQ(book.ChooseNext(true), NONE);
    EXPECT_EQ(book.ChooseNext(false), NONE);
    EXPECT_EQ(book.FirstFree(), NONE);
    for (int i = 0; i < 4; ++i)
        book.Start(i, false);
    book.Finish(3);
    book.Finish(1);
    EXPECT_EQ(book.ChooseNext(true), 1);
    book.Collect(3);
    EXPECT_EQ(book.ChooseNext(false), 0) << "3 has been collected already";
    book.Finish(0);
    EXPECT_EQ(book.FirstFree(), 2);
    EXPECT_EQ(book.ChooseNext(false), 0);
    EXPECT_EQ(book.ChooseNext(false), 2);
    book.Finish(2);
    EXPECT_EQ(book.ChooseNext(true), 2);
    EXPECT_EQ(book.ChooseNext(true), NONE);
    EXPECT_EQ(book.ChooseNext(false), NONE);
}

/// Lets moves that never end have their quanta; the share of the time of each.
std::vector<double> Shares(TSchedulerBook& book, int nMoves, int nTurns, std::vector<int>* pOrder)
{
    std::vector<double> vecSeconds(static_cast<std::size_t>(nMoves));
    for (int i = 0; i < nTurns; ++i) {
        int nMove = book.ChooseNext(book.CountStarted() < nMoves);
        if (nMove == NONE) {
            nMove = book.CountStarted();
            book.Start(nMove, false);
            pOrder->push_back(nMove);
        }
        const auto quantum = book.QuantumOf(nMove);
        book.Charge(nMove, quantum.m_nCredit);
        vecSeconds[static_cast<std::size_t>(nMove)] += quantum.m_dSeconds;
    }
    const double dAll = std::accumulate(vecSeconds.begin(), vecSeconds.end(), 0.0);
    for (double& dSeconds : vecSeconds)
        dSeconds /= dAll;
    return vecSeconds;
}

TEST(SchedulerBook, EveryMoveHasItsTurnAndEarlierOnesMoreOfIt)
{
    constexpr int MOVES = 5;
    for (int nLevel = 1; nLevel <= 7; ++nLevel) {
        TSchedulerBook book(nLevel, 6);
        std::vector<int> vecOrder;
        const auto vecShares = Shares(book, MOVES, 200'000, &vecOrder);
        EXPECT_EQ(vecOrder, (std::vector<int>{0, 1, 2, 3, 4})) << "started in the list's order";
        for (std::size_t i = 1; i < MOVES; ++i)
            EXPECT_GT(vecShares[i - 1], vecShares[i]) << nLevel;
        EXPECT_NEAR(vecShares[0] / vecShares[1], 5, 0.5) << nLevel;
        EXPECT_GT(vecShares[MOVES - 1], 0) << nLevel;
    }
}

TEST(SchedulerBook, AFullListHasRoom)
{
    TSchedulerBook book(6, 6);
    for (int i = 0; i < MAX_SHARED_MOVES; ++i)
        book.Start(i, false);
    for (int i = MAX_SHARED_MOVES - 1; i >= 0; --i)
        book.Finish(i);
    for (int i = 0; i < MAX_SHARED_MOVES; ++i)
        EXPECT_EQ(book.ChooseNext(true), i);
    EXPECT_EQ(book.ChooseNext(false), NONE);
}

} // namespace
} // namespace corvina
