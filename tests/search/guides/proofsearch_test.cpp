#include "chess/moveset.h"
#include "search/guides/proofsearch.h"
#include "search/guides/scout.h"
#include "search/verify.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"

#include <thread>

namespace corvina
{
namespace
{

constexpr std::uint64_t ENOUGH = 5'000'000; ///< positions to settle a short task

/// A task and all its solutions.
struct TSolvedTask
{
    TSolvedTask(const TChessboard& board, int nMate)
        : m_request(board, nMate), m_vecSolutions(Solve(m_request, {}).m_vecSolutions)
    {
    }

    const TChessboard& Root() const { return *m_request.m_pChessboard; }
    std::string Fen() const { return WriteFen(Root(), true); }
    bool IsSolution(const TMove& move) const { return ContainsMove(m_vecSolutions, move); }

    TTaskRequest m_request;
    std::vector<TMove> m_vecSolutions;
};

/// Any moves to try early or late, of the first two moves or in general.
std::string RandomIndications(std::mt19937& random, const TChessboard& root)
{
    TMoveList moves;
    const int nMoves = root.GenerateWhiteMoves(moves.data());
    std::string strItems;
    for (int i = 0; i < 3 && nMoves > 0; ++i) {
        const TMove& move = moves[random() % nMoves];
        constexpr const char* aNumbers[] = {"1.", "2.", ""};
        strItems += std::string(i ? ", " : "") + (random() % 4 ? "" : "~") +
                    aNumbers[random() % 3] + SquareToString(move.m_from) + "-" +
                    SquareToString(move.m_to);
    }
    return strItems;
}

/// Half of the tasks of three moves have indications, which change no answer.
TEST(ProofSearch, AgreesWithTheMainSearch)
{
    std::mt19937 random(31);
    int anMates[2] = {}, nRefuted = 0;
    for (int i = 0; i < 625; ++i) {
        const bool bIndications = i < 300;
        TSolvedTask task(i % 3 ? ComposedPosition(random) : RandomPosition(random, 4 + i % 6),
                         i < 600 ? 3 : 4);
        const std::string strItems = bIndications ? RandomIndications(random, task.Root()) : "";
        if (!strItems.empty())
            ParseSortIndications(task.m_request.m_mapSortIndications, strItems);
        TProofTable table;
        TProofSearch search(task.Root(), table, 0);
        const auto answer = search.Search(ENOUGH);
        const bool bMate = !task.m_vecSolutions.empty();
        EXPECT_EQ(answer, bMate ? TProofSearch::EAnswer::Mate : TProofSearch::EAnswer::NoMate)
            << task.Fen() << " " << strItems;
        ++(bMate ? anMates[bIndications] : nRefuted);
        if (answer != TProofSearch::EAnswer::Mate)
            continue;
        const auto key = search.Confirm();
        EXPECT_TRUE(key && task.IsSolution(*key)) << task.Fen() << " " << strItems;
    }
    EXPECT_GT(anMates[false], 30);
    EXPECT_GT(anMates[true], 20);
    EXPECT_GT(nRefuted, 50);
}

/// White mates in two and is asked for four: the root comes up again below itself.
TEST(ProofSearch, ConfirmsAShorterMate)
{
    const TSolvedTask task(BoardOf("8/2R4p/7P/8/k7/8/1K6/3R4"), 4);
    TProofTable table;
    TProofSearch search(task.Root(), table, 0);
    ASSERT_EQ(search.Search(ENOUGH), TProofSearch::EAnswer::Mate);
    const auto key = search.Confirm();
    EXPECT_TRUE(key && task.IsSolution(*key));
}

/// Positions that the proof takes with these indications.
std::uint64_t PositionsToProve(const char* pFen, int nMate, const char* pItems)
{
    TTaskRequest request(BoardOf(pFen), nMate);
    request.m_pChessboard->m_pRequest = &request;
    if (*pItems)
        ParseSortIndications(request.m_mapSortIndications, pItems);
    TProofTable table;
    TProofSearch search(*request.m_pChessboard, table, 0);
    while (search.Positions() < ENOUGH && search.Search(1000) == TProofSearch::EAnswer::Open) {
    }
    return search.Positions();
}

TEST(ProofSearch, IndicationsLeadTheWay)
{
    constexpr const char* POSITION = "8/8/8/8/7R/7P/6p1/2B1K1kb"; // #12 by Bc1-a3
    const std::uint64_t nWithout = PositionsToProve(POSITION, 12, "");
    EXPECT_LT(2 * PositionsToProve(POSITION, 12, "1.Bc1-a3"), nWithout);
    // What is to be tried late only, and a number that isn't that of the move, lead nowhere.
    EXPECT_EQ(PositionsToProve(POSITION, 12, "~1.Bc1-a3, 40.Bc1-a3"), nWithout);
    // A wrong one costs time.
    const std::uint64_t nWrong = PositionsToProve(POSITION, 12, "1.Rh4-a4");
    EXPECT_GT(nWrong, nWithout);
    EXPECT_LT(nWrong, ENOUGH);
}

TEST(ProofSearch, BelievesNoTable)
{
    std::mt19937 random(32);
    int nLies = 0;
    for (int i = 0; i < 40; ++i) {
        const TSolvedTask task(ComposedPosition(random), 3);
        TMoveList moves;
        const int nMoves = task.Root().GenerateWhiteMoves(moves.data());
        for (int k = 0; k < nMoves; ++k) {
            if (task.IsSolution(moves[k]))
                continue;
            TProofTable table;
            TProofSearch search(task.Root(), table, 0);
            table.StoreMate(TProofTable::KeyOf(task.Root()), task.Root().m_nMoves, k);
            EXPECT_EQ(search.Search(1), TProofSearch::EAnswer::Mate);
            EXPECT_FALSE(search.Confirm().has_value()) << task.Fen();
            ++nLies;
            break;
        }
    }
    EXPECT_GT(nLies, 20);
}

TEST(ProofSearch, ThreadsShareATable)
{
    std::mt19937 random(33);
    for (int i = 0; i < 12; ++i) {
        const TSolvedTask task(ComposedPosition(random), 4);
        TProofTable table;
        TProofSearch one(task.Root(), table, 0), two(task.Root(), table, 1);
        TProofSearch::EAnswer aAnswers[2];
        std::thread other([&] { aAnswers[1] = two.Search(ENOUGH); });
        aAnswers[0] = one.Search(ENOUGH);
        other.join();
        for (const auto answer : aAnswers) {
            EXPECT_EQ(answer, task.m_vecSolutions.empty() ? TProofSearch::EAnswer::NoMate
                                                          : TProofSearch::EAnswer::Mate)
                << task.Fen();
        }
        if (!task.m_vecSolutions.empty()) {
            const auto key = two.Confirm();
            EXPECT_TRUE(key && task.IsSolution(*key)) << task.Fen();
        }
    }
}

/// No mate with a rook takes more than 16 moves, none with a queen more than 10.
TEST(Scout, FindsLongMatesThatHold)
{
    struct TCase
    {
        const char* m_pFen;
        int m_nMate, m_nThreads;
    };
    for (const TCase& test :
         {TCase{"8/8/8/3k4/8/8/8/KQ6", 10, 1}, TCase{"8/8/8/8/8/1K6/3k4/R7", 12, 3}})
    {
        TTaskRequest request(BoardOf(test.m_pFen), test.m_nMate);
        request.m_bProofSearch = true;
        const TRunSettings settings{
            .m_nThreads = test.m_nThreads, .m_bStopAtFirstSolution = true, .m_overrides = {}};
        const TSolveOutcome outcome = Solve(request, settings);
        ASSERT_EQ(outcome.m_vecSolutions.size(), 1u) << test.m_pFen;
        EXPECT_FALSE(outcome.m_bStopped);
        EXPECT_TRUE(request.m_bFoundByScout) << test.m_pFen;
        EXPECT_GT(request.m_nScoutPositions, 0u);
        EXPECT_LE(request.m_nScoutPositions, request.m_nPositions);
        request.ClearStopState();
        EXPECT_TRUE(VerifyKey(request, outcome.m_vecSolutions[0]).m_bHolds) << test.m_pFen;
    }
}

TEST(ProofTable, BoundsAndNumbers)
{
    TProofTable table;
    TProofNumbers numbers{};
    constexpr std::uint64_t KEY = 0x123456789ABCDEF1;
    EXPECT_FALSE(table.Find(KEY, 9, &numbers));
    table.Store(KEY, 9, {4, 7});
    ASSERT_TRUE(table.Find(KEY, 9, &numbers));
    EXPECT_EQ(numbers.m_nProof, 4u);
    EXPECT_EQ(numbers.m_nDisproof, 7u);
    EXPECT_FALSE(table.Find(KEY, 11, &numbers));
    EXPECT_FALSE(table.Find(KEY + 1, 9, &numbers));

    table.StoreNoMate(KEY, 7);
    table.StoreNoMate(KEY, 5);
    table.StoreMate(KEY, 13, 3);
    table.StoreMate(KEY, 15, 4); // a longer one tells nothing
    for (int nPlies = 5; nPlies <= 15; nPlies += 2) {
        const bool bKnown = table.Find(KEY, nPlies, &numbers);
        EXPECT_EQ(bKnown && numbers.IsNoMate(), nPlies <= 7) << nPlies;
        EXPECT_EQ(bKnown && numbers.IsMate(), nPlies >= 13) << nPlies;
    }
    EXPECT_EQ(table.FindMatingMove(KEY, 11), -1);
    EXPECT_EQ(table.FindMatingMove(KEY, 15), 3);

    // However many entries crowd in, what took most work stays.
    std::mt19937_64 random(34);
    for (int i = 0; i < 4'000'000; ++i)
        table.Store(random(), 5, {1, 1});
    EXPECT_EQ(table.FindMatingMove(KEY, 13), 3);
    table.NotePositions(std::uint64_t{1} << 30);
    table.NotePositions(1);
    table.StoreMate(KEY, 13, 5);
    EXPECT_EQ(table.FindMatingMove(KEY, 13), 5);
}

TEST(ProofTable, KeysTellRightsApart)
{
    const auto keyOf = [](const char* pFen) {
        const TTestLine line(pFen, 5);
        return TProofTable::KeyOf(line.board);
    };
    EXPECT_NE(keyOf("4k3/8/8/8/8/8/8/R3K3"), keyOf("4k3/8/8/8/8/8/8/1R2K3"));
    EXPECT_NE(keyOf("4k3/8/8/8/8/8/8/R3K3"), keyOf("4k3/8/8/8/8/8/R7/4K3"));

    // The rook has been away and is back: the squares are the same, the right is gone.
    TTestLine line("4k3/8/8/8/8/8/8/R3K3", 9);
    const TChessboard* pBack = PlayMoves(line.board, "Rb1 Kd8 Ra1 Ke8");
    EXPECT_NE(TProofTable::KeyOf(*pBack), TProofTable::KeyOf(line.board));
}

} // namespace
} // namespace corvina
