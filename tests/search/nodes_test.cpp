#include "heuristics/randomsets.h"
#include "search/plainsearch.h"
#include "search/shortmate.h"
#include "search/solve.h"
#include "support/chesstest.h"

#include <atomic>
#include <cstring>

namespace corvina
{
namespace
{

/// A way to solve: what is switched on.
struct TWay
{
    const char* m_pName;
    bool m_bPlain;
    int m_nThreads;
    bool m_bMirrored;
    bool m_bRegister;
};

TMove Mirrored(TMove move)
{
    move.m_from ^= 7;
    move.m_to ^= 7;
    return move;
}

constexpr TWay PLAIN = {"plain", true, 1, false, false};
constexpr TWay ONE_THREAD = {"one thread", false, 1, false, true};
constexpr TWay FOUR_THREADS = {"four threads", false, 4, false, true};
constexpr TWay NO_REGISTER = {"no register", false, 1, false, false};
constexpr TWay MIRRORED = {"mirrored", false, 1, true, true};

/// The solutions; of a mirrored run they are mirrored back.
std::vector<TMove> SolveBy(const TChessboard& board, int nMate, const TWay& way)
{
    TSolveRequest request;
    *request.m_pChessboard = board;
    if (way.m_bMirrored)
        request.m_pChessboard->MirrorBoard();
    request.SetMateIn(nMate);
    request.m_bPlain = way.m_bPlain;
    request.m_bUseRegister = way.m_bRegister;
    request.m_nMinRegisterPlies = 0;
    std::vector<TMove> vecMoves =
        Solve(request, {.m_nThreads = way.m_nThreads, .m_overrides = {}}).m_vecSolutions;
    if (way.m_bMirrored)
        std::transform(vecMoves.begin(), vecMoves.end(), vecMoves.begin(), Mirrored);
    return vecMoves;
}

std::vector<std::string> Solutions(const TChessboard& board, int nMate, const TWay& way)
{
    return SortedTexts(SolveBy(board, nMate, way));
}

bool HasCastlingFigures(const TChessboard& board)
{
    return board.GetCastlingRights(true) || board.GetCastlingRights(false);
}

/// The yardstick is the plain recursion, which the second method of the tests has checked.
void ExpectTheSameFromEveryWay(const TChessboard& board, int nMate)
{
    const auto vecExpected = Solutions(board, nMate, PLAIN);
    for (const TWay& way : {ONE_THREAD, FOUR_THREADS, NO_REGISTER, MIRRORED}) {
        if (way.m_bMirrored && HasCastlingFigures(board))
            continue;
        EXPECT_EQ(Solutions(board, nMate, way), vecExpected)
            << way.m_pName << ": " << WriteFen(board, true) << " #" << nMate;
    }
}

TEST(Nodes, EveryWayFindsTheSolutionsOfThePlainRecursion)
{
    constexpr int aBatches[][3] = {{1, 1500, 24}, {2, 2500, 20}, {3, 1000, 9}, {4, 60, 5}};
    std::mt19937 random(99);
    for (const auto& [nMate, nPositions, nMaxFigures] : aBatches) {
        for (int i = 0; i < nPositions; ++i)
            ExpectTheSameFromEveryWay(RandomPosition(random, 3 + i % (nMaxFigures - 2)), nMate);
    }
    constexpr int aComposed[] = {0, 400, 1200, 300, 40}; // by the length of the mate
    for (int nMate = 1; nMate <= 4; ++nMate) {
        for (int i = 0; i < aComposed[nMate]; ++i)
            ExpectTheSameFromEveryWay(ComposedPosition(random), nMate);
    }
}

TEST(Nodes, AnswersOfTheDataFolder)
{
    if (!HasDataFolder())
        GTEST_SKIP() << "CORVINA_DATA is not set";
    constexpr int MAX_MATE_TESTED = 5;
    std::vector<TAnsweredTask> vecTasks = ReadAnsweredTasks("truth-dev.tsv");
    ASSERT_EQ(vecTasks.size(), 900u);
    for (const TAnsweredTask& task : ReadAnsweredTasks("mates-dev.tsv")) {
        if (task.m_nMate <= MAX_MATE_TESTED)
            vecTasks.push_back(task);
    }
    for (const TAnsweredTask& task : vecTasks) {
        for (const TWay& way : {PLAIN, ONE_THREAD, FOUR_THREADS, NO_REGISTER, MIRRORED}) {
            const TChessboard board = BoardOf(task.m_strFen);
            if (way.m_bMirrored && HasCastlingFigures(board))
                continue;
            EXPECT_EQ(SortedKeys(SolveBy(board, task.m_nMate, way), board), task.m_vecKeys)
                << way.m_pName << ": " << task.m_strFen << " #" << task.m_nMate;
        }
    }
}

struct TSweptRequest : TSolveRequest
{
    std::atomic<int> m_nSweeps{0};

    void BeforeSweep() override { ++m_nSweeps; }
};

TEST(Nodes, SweepsOfAFullRegisterChangeNoSolution)
{
    TSweptRequest request;
    *request.m_pChessboard = BoardOf("8/p7/3P1p2/5k1p/2NR4/5K2/8/8");
    request.SetMateIn(6);
    const auto solve = [&](int nThreads) {
        request.m_TemporaryRegister.Clear(TAggregatedTemporaryChessboardRegister::CLEAR_EVERYTHING,
                                          true);
        return SortedTexts(
            Solve(request, {.m_nThreads = nThreads, .m_overrides = {}}).m_vecSolutions);
    };
    const auto vecExpected = solve(1);
    EXPECT_EQ(vecExpected.size(), 4u);
    EXPECT_EQ(request.m_nSweeps, 0);
    request.m_TemporaryRegister.SetMemoryLimitMB(2);
    EXPECT_EQ(solve(1), vecExpected);
    EXPECT_EQ(solve(2), vecExpected);
    EXPECT_GT(request.m_nSweeps, 1);
}

TEST(Nodes, ShortMatesAgreeWithThePlainRecursion)
{
    using TTest = bool (*)(TChessboard&);
    constexpr TTest MATE_IN_TWO = [](TChessboard& board) { return IsMateInTwo(board); };
    struct TCase
    {
        TTest m_test;
        std::uint16_t m_nPlies;
        int m_nPositions, m_nMaxFigures;
    };
    const TCase aCases[] = {
        {IsMateInOne, 1, 20000, 30}, {MATE_IN_TWO, 3, 4000, 16}, {IsMateInThree, 5, 400, 7}};
    std::mt19937 random(5);
    for (const TCase& test : aCases) {
        int nMates = 0;
        for (int i = 0; i < test.m_nPositions; ++i) {
            TSetPosition position(RandomPosition(random, 3 + i % (test.m_nMaxFigures - 2)), 9);
            TChessboard& board = position.board;
            board.m_nMoves = board.m_nInitialMoves = test.m_nPlies;
            const bool bExpected = PlainSearchWhite(board) == 1;
            nMates += bExpected;
            board.m_nMoves = 7;
            const TChessboard before = board;
            ASSERT_EQ(test.m_test(board), bExpected)
                << WriteFen(board, true) << " in " << test.m_nPlies << " half-moves";
            ASSERT_EQ(std::memcmp(&board, &before, sizeof board), 0) << "the record has changed";
        }
        EXPECT_GT(nMates, test.m_nPositions / 100);
    }
}

} // namespace
} // namespace corvina
