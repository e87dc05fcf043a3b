#include "chess/moveset.h"
#include "search/guides/graphsearch.h"
#include "search/guides/toursearch.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"

#include <array>
#include <set>

namespace corvina
{
namespace
{

constexpr std::uint64_t ENOUGH = 20'000'000;

bool GoesOn()
{
    return false;
}

/// Moves of random nodes, kept to be looked through by plain repetition.
struct TPlainGraph
{
    struct TMoveOfNode
    {
        std::uint32_t m_nNode;
        std::vector<std::uint32_t> m_vecReplies;
    };

    explicit TPlainGraph(std::size_t nNodes) : m_anMate(nNodes, 0) {}

    void Solve()
    {
        for (int nMate = 2; nMate <= static_cast<int>(m_anMate.size()) + 1; ++nMate) {
            for (const TMoveOfNode& move : m_vecMoves) {
                const bool bMates = std::all_of(
                    move.m_vecReplies.begin(), move.m_vecReplies.end(), [&](std::uint32_t nReply) {
                        return m_anMate[nReply] != 0 && m_anMate[nReply] < nMate;
                    });
                if (bMates && m_anMate[move.m_nNode] == 0)
                    m_anMate[move.m_nNode] = nMate;
            }
        }
    }

    std::vector<TMoveOfNode> m_vecMoves;
    std::vector<int> m_anMate;
};

/// Up to so many different nodes.
std::vector<std::uint32_t> RandomReplies(std::mt19937& random, std::size_t nNodes,
                                         std::size_t nReplies)
{
    std::set<std::uint32_t> setReplies;
    for (; nReplies > 0; --nReplies)
        setReplies.insert(static_cast<std::uint32_t>(random() % nNodes));
    return {setReplies.begin(), setReplies.end()};
}

TPlainGraph::TMoveOfNode RandomMove(std::mt19937& random, std::size_t nNodes)
{
    const auto nNode = static_cast<std::uint32_t>(random() % nNodes);
    return {nNode, RandomReplies(random, nNodes, 1 + random() % 3)};
}

TEST(TourGraph, FindsTheShortestMates)
{
    std::mt19937 random(51);
    int nLongest = 0;
    for (int nRound = 0; nRound < 300; ++nRound) {
        const unsigned nNodes = 2 + random() % 60;
        TTourGraph graph(nNodes);
        TPlainGraph plain(nNodes);
        // Keys that share their low bits stand in each other's places.
        for (unsigned i = 0; i < nNodes; ++i)
            ASSERT_EQ(graph.Add((std::uint64_t{i} << 40) + i % 7, 3), i);
        for (unsigned i = 0; i < 3 * nNodes; ++i) {
            const TPlainGraph::TMoveOfNode move = RandomMove(random, nNodes);
            graph.AddMove(move.m_nNode, static_cast<std::uint8_t>(i % 200), move.m_vecReplies);
            plain.m_vecMoves.push_back(move);
            if (i % nNodes == 0) {
                const auto nMated = static_cast<std::uint32_t>(random() % nNodes);
                graph.AddMateInOne(nMated);
                plain.m_anMate[nMated] = 1;
            }
            if (i == nNodes) {
                ASSERT_TRUE(graph.Solve(GoesOn)); // what it leaves behind must not count
            }
        }
        ASSERT_TRUE(graph.Solve(GoesOn));
        plain.Solve();
        for (unsigned i = 0; i < nNodes; ++i) {
            ASSERT_EQ(graph.MateOf(i), plain.m_anMate[i]) << nRound << ": " << i;
            nLongest = std::max(nLongest, plain.m_anMate[i]);
            ASSERT_EQ(graph.Find((std::uint64_t{i} << 40) + i % 7), i);
        }
        EXPECT_EQ(graph.Find(0x123456), TTourGraph::NO_NODE);
    }
    EXPECT_GT(nLongest, 6);
}

/// Grows a graph as its choices tell, with the moves of the plain one, until the root has a mate in
/// nMaxMoves or nothing is left. The mate; 0: none.
int GrowToMate(TMateGraph& graph, const TPlainGraph& plain, const std::vector<bool>& vecMateInOne,
               int nMaxMoves, int* pnOpened)
{
    std::vector<std::uint32_t> vecPlainOf; // plain nodes by the graph's numbers
    const auto add = [&](std::uint32_t nPlain) {
        const std::uint32_t nNode = graph.Add(std::uint64_t{nPlain} << 40 | nPlain % 7);
        if (nNode == vecPlainOf.size())
            vecPlainOf.push_back(nPlain);
        return nNode;
    };
    add(0);
    for (;;) {
        if (!graph.Update(4, GoesOn))
            return -1;
        if (graph.MateOf(0) && graph.MateOf(0) <= nMaxMoves)
            return graph.MateOf(0);
        const TMateGraph::TChoice choice = graph.Choose(3, GoesOn);
        if (choice.m_vecNodes.empty() && choice.m_vecMoves.empty() && !choice.m_bAgain)
            return 0;
        for (const std::uint32_t nNode : choice.m_vecNodes) {
            const std::uint32_t nPlain = vecPlainOf[nNode];
            if (vecMateInOne[nPlain]) {
                graph.AddMateInOne(nNode);
                continue;
            }
            graph.BeginMoves(nNode);
            for (std::size_t i = 0; i < plain.m_vecMoves.size(); ++i) {
                if (plain.m_vecMoves[i].m_nNode == nPlain)
                    graph.AddMove(static_cast<std::uint8_t>(i),
                                  static_cast<int>(plain.m_vecMoves[i].m_vecReplies.size()));
            }
        }
        for (const std::uint32_t nMove : choice.m_vecMoves) {
            std::vector<std::uint32_t> vecReplies;
            for (const std::uint32_t nReply :
                 plain.m_vecMoves[graph.IndexOfMove(nMove)].m_vecReplies)
                vecReplies.push_back(add(nReply));
            graph.OpenMove(nMove, vecReplies);
            ++*pnOpened;
        }
    }
}

/// It may leave moves unopened, but never misses a mate that comes in time, nor finds one that
/// isn't there.
TEST(MateGraph, GrowsToAMateIfThereIsOne)
{
    std::mt19937 random(53);
    int nMates = 0, nTooLong = 0, nOpened = 0, nMoves = 0;
    for (int nRound = 0; nRound < 600; ++nRound) {
        const unsigned nNodes = 2 + random() % 60;
        TPlainGraph plain(nNodes);
        std::vector<bool> vecMateInOne(nNodes, false);
        for (unsigned i = 0; i < std::min(250u, 3 * nNodes); ++i)
            plain.m_vecMoves.push_back(RandomMove(random, nNodes));
        for (unsigned i = 0; i <= nNodes / 10; ++i) {
            const auto nMated = static_cast<std::uint32_t>(1 + random() % (nNodes - 1));
            vecMateInOne[nMated] = true;
            plain.m_anMate[nMated] = 1;
        }
        plain.Solve();
        const int nMaxMoves = 1 + static_cast<int>(random() % 12), nShortest = plain.m_anMate[0];
        TMateGraph graph(nMaxMoves);
        const int nMate = GrowToMate(graph, plain, vecMateInOne, nMaxMoves, &nOpened);
        nMoves += static_cast<int>(plain.m_vecMoves.size());
        if (nShortest && nShortest <= nMaxMoves) {
            EXPECT_GE(nMate, nShortest) << nRound;
            ++nMates;
        }
        else {
            EXPECT_EQ(nMate, 0) << nRound;
            nTooLong += nShortest != 0;
        }
    }
    EXPECT_GT(nMates, 100);
    EXPECT_GT(nTooLong, 20);
    EXPECT_LT(nOpened, nMoves);
}

/// The same operations, counted now and then or once at the end.
TEST(MateGraph, KeepsCostsAndMatesUpToDate)
{
    constexpr int NO_LIMIT = 1000;
    std::mt19937 random(57);
    int nKnown = 0, nMates = 0;
    for (int nRound = 0; nRound < 400; ++nRound) {
        TMateGraph kept(NO_LIMIT), counted(NO_LIMIT);
        std::array graphs = {&kept, &counted};
        std::vector<std::uint32_t> vecUnopened;
        std::uint32_t nMoves = 0;
        const auto add = [&](std::uint32_t nPlain) {
            const std::uint32_t nNode = kept.Add(nPlain);
            EXPECT_EQ(counted.Add(nPlain), nNode);
            return nNode;
        };
        add(0);
        for (int nStep = 0; nStep < 150; ++nStep) {
            const auto nNode = static_cast<std::uint32_t>(random() % kept.Size());
            if (!vecUnopened.empty() && random() % 3) {
                std::swap(vecUnopened[random() % vecUnopened.size()], vecUnopened.back());
                std::vector<std::uint32_t> vecReplies = RandomReplies(random, 40, random() % 4);
                std::transform(vecReplies.begin(), vecReplies.end(), vecReplies.begin(), add);
                for (TMateGraph* pGraph : graphs)
                    pGraph->OpenMove(vecUnopened.back(), vecReplies);
                vecUnopened.pop_back();
            }
            else if (kept.IsOpen(nNode)) {
                const unsigned nOfNode = random() % 4;
                std::array<int, 3> anReplies{};
                std::generate(anReplies.begin(), anReplies.end(),
                              [&] { return 1 + static_cast<int>(random() % 5); });
                for (TMateGraph* pGraph : graphs) {
                    if (nOfNode == 0 && nNode != 0) {
                        pGraph->AddMateInOne(nNode);
                        continue;
                    }
                    pGraph->BeginMoves(nNode);
                    for (unsigned i = 0; i < nOfNode; ++i)
                        pGraph->AddMove(static_cast<std::uint8_t>(i), anReplies[i]);
                }
                for (unsigned i = 0; i < nOfNode; ++i)
                    vecUnopened.push_back(nMoves++);
            }
            if (random() % 4 == 0) {
                ASSERT_TRUE(kept.Update(0, GoesOn));
            }
            if (random() % 8 == 0)
                kept.Choose(3, GoesOn);
        }
        ASSERT_TRUE(kept.Update(0, GoesOn) && counted.Update(0, GoesOn));
        for (std::uint32_t i = 0; i < kept.Size(); ++i) {
            ASSERT_EQ(kept.CostOf(i), counted.CostOf(i)) << nRound << ": " << i;
            ASSERT_EQ(kept.MateOf(i), counted.MateOf(i)) << nRound << ": " << i;
            nKnown += kept.CostOf(i) != TMateGraph::NONE && kept.CostOf(i) != 0;
            nMates += kept.MateOf(i) > 1;
        }
    }
    EXPECT_GT(nKnown, 1000);
    EXPECT_GT(nMates, 200);
}

/// What a graph claims is among the solutions of the main search. Against a bare king it leaves
/// nothing out, so that it finds each mate, and none where there is none.
template <class TSearch>
void CompareWithMainSearch(const TChessboard& board, int nMate, bool bComplete, int* pnMates)
{
    TRootTask task(board, nMate);
    ASSERT_TRUE(TSideSearch::CanSearch(task.m_root));
    TSearch tours(task.m_root, 0);
    const auto answer = tours.Search(bComplete ? ENOUGH : ENOUGH / 50);
    const std::string strTask = WriteFen(board, true) + " #" + std::to_string(nMate);
    const auto vecSolutions = SolutionsOf(board, nMate);
    if (bComplete) {
        EXPECT_EQ(answer,
                  vecSolutions.empty() ? TSideSearch::EAnswer::GivenUp : TSideSearch::EAnswer::Mate)
            << strTask;
    }
    if (answer != TSideSearch::EAnswer::Mate)
        return;
    ++*pnMates;
    const auto key = tours.Confirm();
    ASSERT_TRUE(key.has_value()) << strTask;
    EXPECT_TRUE(ContainsMove(vecSolutions, *key)) << strTask;
}

template <class TSearch>
class SideSearch : public testing::Test
{
};
using TSideSearches = testing::Types<TTourSearch, TGraphSearch>;
TYPED_TEST_SUITE(SideSearch, TSideSearches);

TYPED_TEST(SideSearch, AgreesWithTheMainSearch)
{
    std::mt19937 random(52);
    int nMates = 0, nTasks = 0;
    while (nTasks < 75) {
        const TChessboard board = ComposedPosition(random);
        if (board.GetCastlingRights(true) || board.GetCastlingRights(false) ||
            !SolutionsOf(board, 1).empty())
            continue;
        CompareWithMainSearch<TypeParam>(board, 3, false, &nMates);
        ++nTasks;
    }
    EXPECT_GT(nMates, 5);
    nMates = 0;
    int nBare = 0;
    for (const char* pFen :
         {"8/8/8/8/8/3K4/4Q3/k7", "8/8/8/8/8/5K2/6R1/7k", "8/8/8/8/2Q5/8/1K6/6k1",
          "8/8/8/8/8/3K4/R7/4k3", "8/2P5/8/8/8/2K5/8/1k6", "7k/8/5K2/8/8/8/8/R7",
          "8/8/8/8/5R2/8/3K4/k7"})
    {
        for (int nMate = 3; nMate <= 4; ++nMate)
            CompareWithMainSearch<TypeParam>(BoardOf(pFen), nMate, true, &nMates), ++nBare;
    }
    EXPECT_GT(nMates, 3);
    EXPECT_LT(nMates, nBare);
}

/// No mate with a rook takes more than 16 moves.
TYPED_TEST(SideSearch, StopsAndGoesOn)
{
    TRootTask task(BoardOf("8/8/8/8/8/2k5/R7/K7"), 16);
    TypeParam tours(task.m_root, 3);
    EXPECT_EQ(tours.Search(5'000), TSideSearch::EAnswer::Open);
    task.m_request.StopThread(3);
    const std::uint64_t nPositions = tours.Positions();
    EXPECT_EQ(tours.Search(ENOUGH), TSideSearch::EAnswer::Open);
    EXPECT_EQ(tours.Positions(), nPositions);
    task.m_request.ResumeThread(3);
    EXPECT_EQ(tours.Search(ENOUGH), TSideSearch::EAnswer::Mate);
    EXPECT_TRUE(tours.Confirm().has_value());

    // Rights to castle aren't in the graphs.
    EXPECT_FALSE(TSideSearch::CanSearch(TRootTask(BoardOf("4k3/8/8/8/8/8/8/R3K3"), 16).m_root));
}

/// Mates of 40 and more moves that nothing else finds in this time.
TYPED_TEST(SideSearch, FindsMatesOfTheDataFolder)
{
    if (!HasDataFolder())
        GTEST_SKIP() << "CORVINA_DATA is not set";
    constexpr int ENOUGH_MATES = 2;
    int nMates = 0;
    for (const TAnsweredTask& row : ReadLongTasks("mates-dev.tsv", 40)) {
        if (nMates == ENOUGH_MATES)
            break;
        TRootTask task(BoardOf(row.m_strFen), row.m_nMate);
        if (!TSideSearch::CanSearch(task.m_root))
            continue;
        TypeParam tours(task.m_root, 0);
        if (tours.Search(2'000'000) == TSideSearch::EAnswer::Mate) {
            ++nMates;
            EXPECT_TRUE(tours.Confirm().has_value()) << row.m_strFen;
        }
    }
    EXPECT_EQ(nMates, ENOUGH_MATES);
}

} // namespace
} // namespace corvina
