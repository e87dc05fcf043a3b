#include "registers/aggregatedregister.h"
#include "registers/answers.h"
#include "registers/registerhost.h"
#include "support/boards.h"
#include "support/chesstest.h"

#include <map>
#include <thread>

namespace corvina
{
namespace
{

constexpr std::uint32_t HEUR = 0x88, PARAMS = 0x1001;

/// Longer than the time in which the register refuses to be swept again.
constexpr auto SWEEP_INTERVAL = std::chrono::milliseconds(70);

struct TTestHost : TRegisterHost
{
    bool m_bAbandoned = false, m_bExact = false;
    int m_nSweeps = 0;
    std::string m_strError;

    bool IsAbandoned() const override { return m_bAbandoned; }
    bool IsExactMode() const override { return m_bExact; }
    void BeforeSweep() override { ++m_nSweeps; }
    void ShowError(const std::string& strTitle, const std::string& strText) override
    {
        m_strError = strTitle + "|" + strText;
    }
};

class AggregatedRegister : public testing::Test
{
protected:
    AggregatedRegister()
    {
        TAggregatedTemporaryChessboardRegister::ResetSweepDepth();
        m_register.SetHost(&m_host);
        m_register.SetBuckets(256, false);
    }

    std::uint8_t Find(int nMoves) { return Find(nMoves, m_line.board.m_board); }
    std::uint8_t Find(int nMoves, const std::uint8_t* pBoard)
    {
        return m_register.FindPosition(static_cast<std::uint16_t>(nMoves), pBoard, HEUR, PARAMS);
    }
    bool Insert(int nMoves, bool bMate, std::uint8_t nPass = 1)
    {
        m_line.board.m_nPass = nPass;
        return m_register.Insert(static_cast<std::uint16_t>(nMoves), m_line.board, bMate);
    }
    /// Certain results of one depth for boards with the numbers from nFirst on.
    void Fill(int nMoves, std::uint32_t nFirst, std::uint32_t nCount)
    {
        for (std::uint32_t i = nFirst; i < nFirst + nCount; ++i)
            m_register.InsertFromFile(static_cast<std::uint16_t>(nMoves), NumberedBoard(i).data(),
                                      i % 2);
    }
    /// The number of elements that a sweep leaves.
    std::uint32_t Sweep(bool bOutOfMemory)
    {
        std::this_thread::sleep_for(SWEEP_INTERVAL);
        EXPECT_TRUE(m_register.EmptySomeDataWhenRegisterFull(bOutOfMemory));
        return m_register.GetElementsCount();
    }

    TTestHost m_host;
    TTestLine m_line{"8/2B5/4K2p/1k6/6Qp/1p6/2B5/8", 9};
    TAggregatedTemporaryChessboardRegister m_register;
};

TEST_F(AggregatedRegister, CertainAnswers)
{
    EXPECT_EQ(Find(5), REGISTER_UNKNOWN);
    EXPECT_TRUE(Insert(5, true));
    EXPECT_FALSE(Insert(7, true));
    EXPECT_FALSE(Insert(3, false));
    EXPECT_FALSE(Insert(1, false));
    const std::uint8_t aExpected[] = {0, 0, 0, 0, REGISTER_UNKNOWN, 1, 1, 1};
    for (int nMoves = 0; nMoves < 8; ++nMoves)
        EXPECT_EQ(Find(nMoves), aExpected[nMoves]) << nMoves;
    const std::uint8_t* pBoard = m_line.board.m_board;
    EXPECT_EQ(m_register.FindPositionAdditional(4, 5, pBoard, HEUR, PARAMS),
              REGISTER_MATE_ADDITIONAL);
    EXPECT_EQ(m_register.FindPositionAdditional(3, 5, pBoard, HEUR, PARAMS), REGISTER_NO_MATE);
    m_register.InsertFromFile(301, NumberedBoard(2).data(), true);
    EXPECT_EQ(m_register.FindPositionAdditional(7, 299, NumberedBoard(2).data(), HEUR, PARAMS),
              REGISTER_UNKNOWN);
    EXPECT_EQ(m_register.FindShortestMate(9, pBoard, HEUR, PARAMS), 5);
    EXPECT_EQ(m_register.FindShortestMate(3, pBoard, HEUR, PARAMS), 0);
    EXPECT_EQ(m_register.FindShortestMate(305, NumberedBoard(2).data(), HEUR, PARAMS), 301);
}

TEST_F(AggregatedRegister, Coherence)
{
    Insert(5, true);
    Insert(5, false); // pass 1: the mate wins
    EXPECT_EQ(Find(5), REGISTER_MATE);
    EXPECT_EQ(Find(4), REGISTER_UNKNOWN);
    EXPECT_EQ(Find(3), REGISTER_NO_MATE);
    Insert(1, true);
    Insert(1, false);
    EXPECT_EQ(Find(1), REGISTER_MATE);
    EXPECT_TRUE(m_host.m_strError.empty());

    const std::string strText = "Error|" + WriteFen(m_line.board, false) +
                                "\n\nnMoves=7, bThereIsMate=0\nMovesMate=1, MovesNoMate=7";
    Insert(7, false, 2);
    EXPECT_EQ(m_host.m_strError, strText);
    EXPECT_EQ(Find(7), REGISTER_NO_MATE); // nothing is repaired
    m_host.m_strError.clear();
    m_host.m_bExact = true;
    Insert(7, false, 1);
    EXPECT_EQ(m_host.m_strError, strText);
    m_register.InsertFromFile(9, m_line.board.m_board, true);
    EXPECT_EQ(Find(7), REGISTER_MATE);
}

TEST_F(AggregatedRegister, DoubtfulAnswersBelongToTheirSetting)
{
    const TBoardBytes board = NumberedBoard(9);
    const auto findDoubtful = [&](int nMoves, int nMin, std::uint32_t nParams) {
        return m_register.FindDoubtful(static_cast<std::uint16_t>(nMoves),
                                       static_cast<std::uint16_t>(nMin), board.data(), HEUR,
                                       nParams);
    };
    EXPECT_EQ(findDoubtful(7, 7, PARAMS), REGISTER_NO_MATE_HERE);
    m_register.InsertDoubtful(7, board.data(), HEUR, PARAMS, false);
    m_register.InsertDoubtful(5, board.data(), HEUR, PARAMS, false);
    EXPECT_EQ(findDoubtful(3, 7, PARAMS), 1);
    EXPECT_EQ(findDoubtful(3, 9, PARAMS), 0);
    EXPECT_EQ(findDoubtful(3, 7, PARAMS + 1), REGISTER_NO_MATE_HERE);
    EXPECT_EQ(Find(5, board.data()), REGISTER_UNKNOWN);
    m_register.InsertDoubtful(5, board.data(), HEUR, PARAMS, true);
    m_register.InsertDoubtful(5, board.data(), HEUR, PARAMS + 1, true);
    EXPECT_EQ(findDoubtful(5, 7, PARAMS), 0);
    EXPECT_EQ(findDoubtful(7, 7, PARAMS), 1);
    EXPECT_EQ(Find(5, board.data()), REGISTER_NO_MATE_HERE);
    EXPECT_EQ(m_register.GetDoubtfulCount(), 2U);
    // A sweep keeps what is doubtful beyond it, and what is free of doubt from its depth on.
    EXPECT_EQ(m_register.RemoveNMovers(6), 0U);
    EXPECT_EQ(m_register.RemoveNMovers(7), 2U);
    EXPECT_EQ(m_register.GetElementsCount(), 0U);
}

/// Facts that are true of made-up boards, given in any order, with the register taken through what
/// a solve does to it: answers follow from the facts given, and from nothing else.
TEST_F(AggregatedRegister, RandomFactsAgainstTheirMeaning)
{
    struct TFacts
    {
        std::vector<int> m_vecMate, m_vecNoMate, m_avecHere[2];
    };
    std::map<std::uint32_t, TFacts> mapFacts;
    std::mt19937 random(3);
    TAggregatedTemporaryChessboardRegister other;
    for (int i = 0; i < 60000; ++i) {
        const std::uint32_t nNumber = random() % 3000;
        const TBoardBytes board = NumberedBoard(nNumber);
        const auto nMoves = static_cast<std::uint16_t>(random() % 10 * 2 + 1);
        const bool bMate = nMoves >= nNumber % 13 * 2;
        const unsigned nSetting = random() % 2;
        TFacts& facts = mapFacts[nNumber];
        if (random() % 3) {
            const auto any = [](const std::vector<int>& vecFacts, auto test) {
                return std::any_of(vecFacts.begin(), vecFacts.end(), test);
            };
            const auto notMore = [&](int n) { return n <= nMoves; };
            const auto notLess = [&](int n) { return n >= nMoves; };
            std::uint8_t nExpected = REGISTER_UNKNOWN;
            if (any(facts.m_vecNoMate, notLess))
                nExpected = REGISTER_NO_MATE;
            else if (any(facts.m_vecMate, notMore))
                nExpected = REGISTER_MATE;
            else if (any(facts.m_avecHere[nSetting], notLess))
                nExpected = REGISTER_NO_MATE_HERE;
            ASSERT_EQ(m_register.FindPosition(nMoves, board.data(), HEUR, nSetting), nExpected);
        }
        else if (bMate || random() % 2) {
            m_register.InsertFromFile(nMoves, board.data(), bMate);
            (bMate ? facts.m_vecMate : facts.m_vecNoMate).push_back(nMoves);
        }
        else {
            m_register.InsertDoubtful(nMoves, board.data(), HEUR, nSetting, true);
            facts.m_avecHere[nSetting].push_back(nMoves);
        }
        if (i % 5000 == 4999) {
            m_register.SetBuckets(64U << random() % 6, true);
            m_register.RemoveDoubtful(HEUR, nSetting);
            for (auto& [nKey, known] : mapFacts)
                known.m_avecHere[nSetting].clear();
        }
        else if (i % 7000 == 6999) {
            m_register.Swap(other);
            EXPECT_EQ(m_register.GetElementsCount(), 0U);
            EXPECT_EQ(Find(nMoves, board.data()), REGISTER_UNKNOWN);
            m_register.Swap(other);
        }
    }
    m_register.Clear(TAggregatedTemporaryChessboardRegister::CLEAR_DOUBTFUL, true);
    EXPECT_EQ(m_register.GetDoubtfulCount(), 0U);
    m_register.Clear(TAggregatedTemporaryChessboardRegister::CLEAR_CERTAIN, true);
    EXPECT_EQ(m_register.GetElementsCount(), 0U);
}

TEST_F(AggregatedRegister, KeepDoubtfulPutsOffRemoveDoubtful)
{
    m_register.InsertDoubtful(9, NumberedBoard(1).data(), HEUR, PARAMS, true);
    m_register.InsertDoubtful(9, NumberedBoard(1).data(), HEUR, PARAMS + 1, true);
    m_register.KeepDoubtful(HEUR, PARAMS);
    m_register.KeepDoubtful(HEUR, PARAMS);
    EXPECT_EQ(m_register.RemoveUnusedDoubtful(), 0U);
    for (const std::uint32_t nRemoved : {0U, 0U, 1U, 0U})
        EXPECT_EQ(m_register.RemoveDoubtful(HEUR, PARAMS), nRemoved);
    m_register.InsertDoubtful(9, NumberedBoard(1).data(), HEUR, PARAMS, true);
    EXPECT_EQ(m_register.RemoveUnusedDoubtful(), 1U); // the other setting was never named
    EXPECT_EQ(m_register.GetDoubtfulCount(), 1U);
}

TEST_F(AggregatedRegister, SweepGoesAsDeepAsItMust)
{
    Fill(3, 0, 1000);
    Fill(7, 1000, 1000);
    Fill(9, 2000, 6000);
    Fill(11, 8000, 15921);
    m_register.SetMemoryLimitMB(3);
    ASSERT_EQ(m_register.GetMaxElements(), 23920U);
    std::this_thread::sleep_for(SWEEP_INTERVAL);
    Fill(11, 8000, 1); // finds the register full
    EXPECT_EQ(m_host.m_nSweeps, 1);
    // 1000 two-movers are less than a third: no more of them. A fifth is free after depth 9.
    EXPECT_EQ(m_register.GetElementsCount(), 15921U);
    Fill(3, 0, 1);
    EXPECT_EQ(m_register.GetElementsCount(), 15921U);
    Fill(4, 0, 1);
    EXPECT_EQ(m_register.GetElementsCount(), 15922U);

    Fill(5, 100000, 2000);
    Fill(9, 110000, 3000);
    EXPECT_EQ(Sweep(true), 18921U);  // less than a quarter was free; it began at depth 7 again
    EXPECT_EQ(Sweep(false), 15921U); // goes on until something is removed
    Fill(7, 200000, 1000);
    EXPECT_EQ(Sweep(true), 16921U); // more than a quarter is free
    m_host.m_bAbandoned = true;
    EXPECT_EQ(Sweep(false), 16921U);
    m_host.m_bAbandoned = false;
    EXPECT_EQ(Sweep(false), 15921U);
}

TEST_F(AggregatedRegister, NoRoomAtAll)
{
    m_register.SetMemoryLimitMB(0);
    m_register.InsertDoubtful(9, NumberedBoard(1).data(), HEUR, PARAMS, true);
    EXPECT_EQ(m_register.GetElementsCount(), 0U);
    EXPECT_TRUE(Insert(9, true));
    EXPECT_EQ(m_host.m_nSweeps, 1);
    std::this_thread::sleep_for(SWEEP_INTERVAL);
    EXPECT_TRUE(Insert(7, false)); // the sweep took the other result
    EXPECT_EQ(m_host.m_nSweeps, 2);
    const auto tStart = std::chrono::steady_clock::now();
    Insert(7, false);
    if (std::chrono::steady_clock::now() - tStart < std::chrono::milliseconds(32)) {
        EXPECT_EQ(m_host.m_nSweeps, 2); // too early for another one
    }
}

TEST_F(AggregatedRegister, FailedAllocationLosesOneEntry)
{
    Fill(9, 0, 2000);
    m_host.m_bAbandoned = true; // the sweep that follows a failure ends at once
    for (std::uint32_t i = 2000; i < 2300; ++i) {
        m_register.InsertDoubtful(9, NumberedBoard(0).data(), HEUR, PARAMS, true);
        const std::uint32_t nBefore = m_register.GetElementsCount();
        const TAllocationFault fault(0, 1000000);
        m_register.InsertDoubtful(9, NumberedBoard(i).data(), HEUR, i, true); // needs a table
        m_register.InsertFromFile(9, NumberedBoard(i).data(), i % 2);
        const bool bStored = Find(9, NumberedBoard(i).data()) == i % 2;
        EXPECT_EQ(m_register.GetElementsCount() - nBefore, bStored);
    }
    EXPECT_EQ(m_register.GetDoubtfulCount(), 1U);
    const TAllocationFault fault(0, 1000000);
    m_register.SetBuckets(512, true);
    for (std::uint32_t i = 0; i < 2000; ++i)
        ASSERT_EQ(Find(9, NumberedBoard(i).data()), i % 2);
}

} // namespace
} // namespace corvina
