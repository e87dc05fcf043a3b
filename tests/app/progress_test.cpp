#include "app/progress.h"
#include "heuristics/differential.h"
#include "heuristics/setreader.h"
#include "search/threads/sharing.h"
#include "support/chesstest.h"

#include <atomic>
#include <thread>

namespace corvina
{
namespace
{

TProgressLine LineOfMoves(int nMoves, int nPlies)
{
    TProgressLine line;
    line.m_nPlies = static_cast<std::uint16_t>(nPlies);
    line.m_nPass = 1;
    for (int i = 0; i < nMoves; ++i)
        line.m_vecMoves.push_back({i % 2 ? "Kh8-g8" : "Ka1-a2"});
    return line;
}

TEST(Progress, LineOfTheConsole)
{
    const std::string strEnd = "             \r";
    TProgressLine line = LineOfMoves(3, 11);
    line.m_fPercent = 12.34f;
    line.m_nPositions = 123'456'789'012;
    EXPECT_EQ(GetProgressLine(line),
              "Pass 1, 1. Ka1-a2, Kh8-g8, 2. Ka1-a2, 12.3% 123456789012" + strEnd);
    line.m_nPassIndex = 2;
    line.m_nHeuristics = 0x1280800;
    line.m_nRegistered = 100;
    line.m_nDoubtful = 30;
    EXPECT_EQ(GetProgressLine(line), "Pass 1c, SH:1280800h,TR:100(70), 1. Ka1-a2, Kh8-g8, "
                                     "2. Ka1-a2, 12.3% 123456789012" +
                                         strEnd);
    // No longer than it may be, with a whole number of moves.
    for (int nColumns = 60; nColumns < 90; ++nColumns) {
        const std::string strCut = GetProgressLine(line, nColumns);
        EXPECT_LE(strCut.size() - strEnd.size(), static_cast<std::size_t>(nColumns));
        EXPECT_TRUE(strCut.ends_with(", 12.3% 123456789012" + strEnd)) << strCut;
    }
    line.m_nPass = 2;
    line.m_nHeuristics = line.m_nRegistered = 0;
    EXPECT_TRUE(GetProgressLine(line).starts_with("Pass 2, 1. "));

    // Half-moves shown by the length of the task.
    const int aLimits[][2] = {{39, 24},  {40, 24},   {41, 48},   {79, 48},
                              {81, 144}, {139, 144}, {141, 288}, {999, 288}};
    for (const auto& [nPlies, nShown] : aLimits) {
        const std::string strLine = GetProgressLine(LineOfMoves(300, nPlies));
        EXPECT_EQ(std::count(strLine.begin(), strLine.end(), ',') - 1, nShown) << nPlies;
    }
    EXPECT_EQ(GetProgressTitle(12, 0, false, 3.254f), "Searching for #12: 3.25%");
    EXPECT_EQ(GetProgressTitle(12, 9, true, 100),
              "Searching for #12 (b) (of at least #9) : 100.00%");
}

TEST(Progress, PercentCountsFirstMovesOfAllPasses)
{
    TSolveRequest request;
    request.m_nFirstMovesTotal = 3;
    request.m_nPlannedPasses = 2;
    for (const float fWanted :
         {100 / 6.0f, 200 / 6.0f, 50.0f, 400 / 6.0f, 500 / 6.0f, 100.0f, 700 / 6.0f})
    {
        UpdatePercent(request);
        EXPECT_FLOAT_EQ(request.m_fPercent, fWanted);
    }
    request.m_bRegisterConfirm = true;
    UpdatePercent(request);
    EXPECT_EQ(request.m_nFirstMovesDone, 7u);
}

/// Each line that is published while the run goes on can be played from its root, and none is left
/// when it has ended.
TEST(Progress, LinesOfARunCanBePlayed)
{
    int nLines = 0;
    std::set<std::uint16_t> setThreads;
    for (const TForm form : {TForm{1, 1, 0}, TForm{2, 1, 0}, TForm{2, 2, 0}, TForm{2, 1, 3}}) {
        TSharingRequest request(BoardOf("2b1r1k1/r4ppp/p7/2pNP3/4Q3/q6P/2P2PP1/3RR1K1"), 8);
        ReadHeuristicsText("SH_ASSERTBLACKKINGSURROUNDED", request.m_heuristicSet,
                           request.m_pChessboard.get());
        TProgress progress;
        progress.Watch(request);
        progress.PeekAt(0);
        std::thread watcher([&] {
            TLineContext stack(2 * 8);
            std::uint64_t nPositions = 0;
            for (int i = 0; i < 1000 && !progress.Latest(); ++i) // a slow build begins late
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            for (int i = 0; i < 40; ++i) {
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
                const auto line = i % 2 ? progress.LineOf(0) : progress.Latest();
                if (!line)
                    continue;
                ++nLines;
                setThreads.insert(line->m_nThread);
                TChessboard root = *request.m_pChessboard;
                root.m_pThread = &stack;
                std::string strMoves;
                for (const TProgressMove& move : line->m_vecMoves) {
                    strMoves += move.m_strMove + " ";
                    EXPECT_LE(move.m_nIndex, move.m_nCount);
                }
                EXPECT_NE(PlayMoves(root, strMoves), nullptr) << strMoves;
                EXPECT_GE(request.m_nPositions, nPositions);
                nPositions = request.m_nPositions;
                EXPECT_LE(line->m_nDoubtful, line->m_nRegistered);
            }
            request.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS);
        });
        Solve(request, SettingsOf(form));
        watcher.join();
        EXPECT_FALSE(progress.Latest() || progress.LineOf(0)) << form.Text();
    }
    EXPECT_GT(nLines, 100);
    EXPECT_GT(setThreads.size(), 1u);
}

/// What the threads publish is what they count in the end, and percent ends where all is decided.
TEST(Progress, CountsAreThoseOfTheRun)
{
    for (const TTask& task : RandomTasks(11, {0, 0, 2, 2})) {
        for (const TForm& form : FORMS) {
            TSharingRequest request(task.m_board, task.m_nMate);
            std::atomic<std::uint64_t> nCounted{0};
            request.OnPositionAnalysed = [&](const TChessboard* pBoard,
                                             const TThreadContext& context) {
                if (!pBoard && !context.m_pOwner)
                    nCounted += context.m_nPositions;
            };
            Solve(request, SettingsOf(form));
            EXPECT_EQ(request.m_nPlannedPasses, 1u);
            EXPECT_FLOAT_EQ(request.m_fPercent, 100) << form.Text();
            EXPECT_EQ(request.m_nPositions, nCounted) << form.Text();
        }
    }
}

} // namespace
} // namespace corvina
