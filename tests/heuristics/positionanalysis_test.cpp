#include "heuristics/positionanalysis.h"
#include "heuristics/setreader.h"
#include "search/hooks.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"

namespace corvina
{
namespace
{

TChessboard PositionOf(std::mt19937& random, int i)
{
    return i % 3 ? ComposedPosition(random) : RandomPosition(random, 4 + i % 14);
}

TPositionAnalysis AnalyseFen(const char* pFen, int nMate)
{
    const TRootTask task(BoardOf(pFen), nMate);
    return CheckPositionType(task.m_root);
}

/// What a search thread would find changed.
std::vector<std::uint8_t> BytesOf(const TRootTask& task, TThreadContext& context)
{
    std::vector<std::uint8_t> vecBytes;
    const auto add = [&](const void* p, std::size_t nSize) {
        const auto* pBytes = static_cast<const std::uint8_t*>(p);
        vecBytes.insert(vecBytes.end(), pBytes, pBytes + nSize);
    };
    add(&task.m_root, sizeof(TChessboard));
    for (int nMoves = 0; nMoves < task.m_root.m_nMoves; ++nMoves)
        add(&context.Slot(nMoves), sizeof(TChessboard));
    add(&static_cast<const THeuristicsParams&>(context), sizeof(THeuristicsParams));
    add(context.m_aBlackKillers.data(), context.m_aBlackKillers.size() * sizeof(TKiller));
    add(context.m_anRepeatDepth.data(), context.m_anRepeatDepth.size() * sizeof(std::uint16_t));
    add(context.m_anCuts.data(), sizeof context.m_anCuts);
    add(&context.m_nPositions, sizeof context.m_nPositions);
    vecBytes.push_back(task.m_request.m_bSafeMode);
    vecBytes.push_back(task.m_request.m_bUseRegister);
    vecBytes.push_back(task.m_request.OnPositionAnalysed != nullptr);
    return vecBytes;
}

bool IsSameTrial(const TTrial& a, const TTrial& b)
{
    return a.m_strSet == b.m_strSet && a.m_nDepth == b.m_nDepth && a.m_bPasses == b.m_bPasses &&
           a.m_nPositions == b.m_nPositions;
}

TEST(PositionAnalysis, LeavesNoTraceAndAnswersAlike)
{
    std::mt19937 random(21);
    std::size_t nTrials = 0;
    for (int i = 0; i < 300; ++i) {
        TRootTask task(PositionOf(random, i), 6 + i % 12);
        task.m_request.m_bSafeMode = i % 2;
        task.m_request.m_bUseRegister = i % 3;
        task.m_request.OnPositionAnalysed = [](const TChessboard*, const TThreadContext&) {
            FAIL();
        };
        TThreadContext context(task.m_root.m_nMoves);
        PutOnThread(task.m_root, context);
        const auto vecBefore = BytesOf(task, context);
        const TPositionAnalysis first = CheckPositionType(task.m_root);
        const TPositionAnalysis second = CheckPositionType(task.m_root);
        EXPECT_EQ(BytesOf(task, context), vecBefore);
        EXPECT_EQ(task.m_request.m_TemporaryRegister.GetElementsCount(), 0u);
        EXPECT_EQ(first.m_set.m_nHeuristics, second.m_set.m_nHeuristics);
        EXPECT_EQ(first.m_set.m_params, second.m_set.m_params);
        EXPECT_EQ(first.m_nPositionFlags, second.m_nPositionFlags);
        EXPECT_TRUE(std::equal(first.m_vecTrials.begin(), first.m_vecTrials.end(),
                               second.m_vecTrials.begin(), second.m_vecTrials.end(), IsSameTrial));
        EXPECT_LT(first.m_nPositions, 3000000u) << WriteFen(task.m_root, true);
        nTrials += first.m_vecTrials.size();
    }
    EXPECT_GT(nTrials, 200u);
}

/// The text of a set gives the level of the forced mate search, not how it goes on.
void CopyWhatNoTextTells(const THeuristicSet& from, THeuristicSet& to)
{
    to.m_params.m_nFfmWithOther = from.m_params.m_nFfmWithOther;
    to.m_params.m_bFfmAddCaptures = from.m_params.m_bFfmAddCaptures;
    to.m_params.m_nFfmRelaxations = from.m_params.m_nFfmRelaxations;
    to.m_params.m_bSaveFigureException = from.m_params.m_bSaveFigureException;
    to.m_params.m_bUnblockShrinkable = from.m_params.m_bUnblockShrinkable;
    to.m_params.m_nUnblockShrinkFigures = from.m_params.m_nUnblockShrinkFigures;
}

TEST(PositionAnalysis, SetsAreReadableAndRelaxToTheirEnd)
{
    // What random positions don't show: a knight to be caught, a pin for good, a cornered king
    // behind his bishop, an army that is shut in, a rook or a bishop in a cage of two squares,
    // bishops of opposite colours, a queen that nothing else helps.
    constexpr const char* aRare[] = {
        "8/8/8/3k4/8/2n5/8/R3K3",          "8/4p3/4p3/4P3/8/7K/6P1/2Q3bk",
        "7k/6b1/5p1p/5P1P/8/8/1K6/5B2",    "8/8/6p1/6P1/4N3/5p1p/5Ppr/4K1bk",
        "8/8/p5pp/rp4pk/1p4pp/p3K2P/P7/8", "2k5/1pPp4/1ppP4/p1rp4/PppP4/1PP5/8/1K6",
        "8/8/6pk/8/2b4p/8/6KB/8",          "7k/8/8/p7/P7/8/5K2/3Q4"};
    constexpr std::uint32_t NEVER_CHOSEN = SH_KEYLINE | SH_KEYDIAGONAL | SH_KEYSQUARE |
                                           SH_SKIPWORSTWHITEMOVES | SH_ZUGZWANG |
                                           SH_REDUCTIONTOGLOBREGPOS;
    std::mt19937 random(22);
    std::uint32_t nSeen = 0;
    for (int i = 0; i < 400; ++i) {
        const bool bRare = i < static_cast<int>(std::size(aRare));
        TRootTask task(bRare ? BoardOf(aRare[i]) : PositionOf(random, i), 6 + i % 30);
        TakeUpAnalysis(CheckPositionType(task.m_root), task.m_root);
        TakeUpHeuristics(task.m_root);
        EXPECT_EQ(task.m_root.m_nHeuristics & ~IMPLEMENTED_HEURISTICS, 0u);
        nSeen |= task.m_root.m_nHeuristics;
        if (task.m_root.m_nHeuristics == 0)
            continue;
        TThreadContext context(task.m_root.m_nMoves);
        PutOnThread(task.m_root, context);
        const std::string strSet = GetHeuristicsText(task.m_root, false);

        TRootTask again(task.m_root, 6 + i % 30);
        ReadHeuristicsText(strSet, again.m_request.m_heuristicSet, &again.m_root);
        CopyWhatNoTextTells(task.m_request.m_heuristicSet, again.m_request.m_heuristicSet);
        TakeUpHeuristics(again.m_root);
        PutOnThread(again.m_root, context);
        EXPECT_EQ(again.m_root.m_nHeuristicsParams, task.m_root.m_nHeuristicsParams) << strSet;
        EXPECT_EQ(GetHeuristicsText(again.m_root, false), strSet);

        int nLeft = 40;
        PutOnThread(task.m_root, context);
        while (TryRelaxSpecialHeuristics(task.m_root) != 0)
            ASSERT_GT(--nLeft, 0) << strSet;
    }
    EXPECT_EQ(nSeen | NEVER_CHOSEN, IMPLEMENTED_HEURISTICS);
}

TEST(PositionAnalysis, NotesWhatThePositionIs)
{
    struct TCase
    {
        const char* m_pFen;
        int m_nMate;
        std::uint16_t m_nFlags; ///< all of these are set
        std::uint16_t m_nClear; ///< and none of these
        bool m_bSafe;
    };
    using B = TChessboard;
    constexpr TCase CASES[] = {
        {"7k/8/4pK2/6P1/4B3/8/3P4/8", 12,
         B::POSITION_FEWFIGURES | B::POSITION_LONEBISHOP | B::POSITION_SMALLENDING,
         B::POSITION_BAREBLACKKING, false},
        {"8/8/8/3k4/8/8/4P3/4K3", 20,
         B::POSITION_FEWFIGURES | B::POSITION_BAREBLACKKING | B::POSITION_FREEKING,
         B::POSITION_LONEBISHOP | B::POSITION_BLACKBLOCKED, true},
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 8, B::POSITION_MANYFIGURES,
         B::POSITION_FEWFIGURES | B::POSITION_SMALLENDING | B::POSITION_BLACKBLOCKED, false},
        {"6bk/5ppp/8/8/3K4/8/Q7/7R", 6, B::POSITION_BLACKBLOCKED, B::POSITION_FREEKING, false},
        {"8/8/8/2k5/8/3p4/1PPP4/2KN4", 15, B::POSITION_FEWFIGURES,
         B::POSITION_BAREBLACKKING | B::POSITION_PAWNPLAY, false},
    };
    for (const TCase& c : CASES) {
        const TPositionAnalysis analysis = AnalyseFen(c.m_pFen, c.m_nMate);
        EXPECT_EQ(analysis.m_nPositionFlags & c.m_nFlags, c.m_nFlags) << c.m_pFen;
        EXPECT_EQ(analysis.m_nPositionFlags & c.m_nClear, 0) << c.m_pFen;
        EXPECT_EQ(analysis.m_bSafeMode, c.m_bSafe) << c.m_pFen;
    }
}

TEST(PositionAnalysis, AStopOfTheRunEndsIt)
{
    TRootTask task(BoardOf("2b5/n1Kp4/2pNp3/1p1kp3/4N3/p1P1P3/P3P3/8"), 12);
    EXPECT_FALSE(CheckPositionType(task.m_root).m_vecTrials.empty());
    task.m_request.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS);
    EXPECT_TRUE(CheckPositionType(task.m_root).m_vecTrials.empty());
}

TEST(PositionAnalysis, RunsHaveTheSameSolutions)
{
    std::mt19937 random(23);
    int nWithSet = 0, nSolved = 0;
    for (int i = 0; i < 30; ++i) {
        TTaskRequest request(RandomPosition(random, 3 + i % 3), 6);
        const auto vecExpected = SortedTexts(SolutionsOf(*request.m_pChessboard, 6));
        std::string strSet;
        request.m_bAnalyse = true;
        request.OnPassEnd = [&](const TPassReport& report) {
            if (report.m_strName == "1")
                strSet = report.m_strSet;
        };
        EXPECT_EQ(SortedTexts(Solve(request, {}).m_vecSolutions), vecExpected)
            << WriteFen(*request.m_pChessboard, true) << " " << strSet;
        nWithSet += !strSet.empty();
        nSolved += !vecExpected.empty();
    }
    EXPECT_GT(nWithSet, 12);
    EXPECT_GT(nSolved, 2);
}

} // namespace
} // namespace corvina
