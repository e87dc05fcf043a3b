#include "chess/boardid.h"
#include "heuristics/differential.h"
#include "heuristics/setreader.h"
#include "search/movelog.h"
#include "search/threads/sharing.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"
#include "support/workingfolder.h"

#include <filesystem>
#include <regex>
#include <set>

namespace corvina
{
namespace
{

std::vector<std::string> LogsIn(const TWorkingFolder& folder)
{
    std::vector<std::string> vecPaths;
    for (const auto& entry : std::filesystem::directory_iterator(folder.m_folder.m_path))
        vecPaths.push_back(entry.path().string());
    return vecPaths;
}

constexpr const char* LOG_OF_RUN = "MovesLogger_problem12_thread0.log";

/// Follows the log of one thread: every move is legal where the log has come to, leads to the
/// position that the line says, and is closed once.
class TLogReader
{
public:
    explicit TLogReader(const TTask& task) : m_line(2 * task.m_nMate), m_root(task.m_board)
    {
        m_root.m_nMoves = m_root.m_nInitialMoves = static_cast<std::uint16_t>(2 * task.m_nMate - 1);
        m_root.m_pThread = &m_line;
        m_root.m_pParent = nullptr;
    }

    void Read(const std::string& strLog)
    {
        std::istringstream input(strLog);
        std::string strLine;
        std::getline(input, strLine);
        ASSERT_EQ(strLine, std::string(52, '-'));
        while (std::getline(input, strLine) && !testing::Test::HasFatalFailure())
            ReadLine(strLine);
        EXPECT_EQ(m_vecOpen.size(), 0u);
    }

    int m_nMoves = 0, m_nRepetitions = 0, m_nDoubtful = 0;
    std::vector<TMove> m_vecKeys;
    std::set<std::string> m_setPasses;

private:
    void ReadLine(const std::string& strLine)
    {
        static const std::regex s_move(R"((\d+)(\.| \.\.\. )([^ ]+) ([0-9a-zA-Z()]+)( Pass .*)?)");
        static const std::regex s_cut(R"((\d+)(\.| \.\.\. )[a-h][1-8]-[a-h][1-8])");
        static const std::regex s_result(
            R"((\d+)(\.| \.\.\.)(mate|no mate|position repetition|end of FindForcedMate depth|)"
            R"(doubtful \(SH_[A-Z0-9]+\)|)"
            R"(doubtful \((0|-1) \(temp\.reg\.\)\)|)"
            R"(doubtful/impossible \(-[0-9]+\)))");
        const std::size_t nTabs = strLine.find_first_not_of('\t');
        const std::string strText = strLine.substr(nTabs);
        const std::string strNumber = std::to_string((nTabs - 1) / 2 + 1);
        std::smatch match;
        if (strText == "Mate found (pos.in temp.reg.)") {
            ASSERT_EQ(nTabs, m_vecOpen.size()) << strLine;
        }
        else if (std::regex_match(strText, match, s_cut)) {
            ASSERT_EQ(nTabs, m_vecOpen.size() + 1) << strLine;
            m_bCut = true;
        }
        else if (std::regex_match(strText, match, s_result)) {
            ASSERT_EQ(match[1].str(), strNumber);
            ASSERT_EQ(nTabs, m_vecOpen.size() + m_bCut) << strLine;
            Close(match[3].str());
        }
        else {
            ASSERT_TRUE(std::regex_match(strText, match, s_move)) << strLine;
            ASSERT_EQ(match[1].str(), strNumber);
            ASSERT_EQ(match[2].str() == ".", nTabs % 2 == 1);
            ASSERT_EQ(nTabs, m_vecOpen.size() + 1) << strLine;
            ASSERT_EQ(match[5].matched, nTabs == 1) << strLine;
            m_setPasses.insert(match[5].str().substr(0, 8));
            Open(match[3].str(), match[4].str());
        }
    }

    void Open(const std::string& strMove, const std::string& strId)
    {
        ++m_nMoves;
        TChessboard* const pChild =
            MakeMove(m_vecOpen.empty() ? m_root : *m_vecOpen.back(), strMove);
        ASSERT_NE(pChild, nullptr) << strMove;
        ASSERT_EQ(TChessboardId(pChild->m_board).ToAlphanum6(), strId) << strMove;
        m_vecOpen.push_back(pChild);
    }

    void Close(const std::string& strResult)
    {
        m_nRepetitions += strResult == "position repetition";
        m_nDoubtful += strResult.starts_with("doubtful");
        if (m_bCut) {
            ASSERT_TRUE(strResult.starts_with("doubtful"));
            m_bCut = false;
            return;
        }
        if (m_vecOpen.size() == 1 && strResult == "mate")
            m_vecKeys.push_back(m_vecOpen[0]->m_LastMove);
        m_vecOpen.pop_back();
    }

    TLineContext m_line;
    TChessboard m_root;
    std::vector<TChessboard*> m_vecOpen; ///< the line that the log has come to
    bool m_bCut = false;                 ///< the last line is a move that wasn't made
};

/// The solutions of a run, and the moves that it has made.
std::pair<std::vector<std::string>, std::uint64_t> SolveLogged(const TTask& task, const char* pSet,
                                                               const TForm& form, bool bLog)
{
    TSharingRequest request(task.m_board, task.m_nMate);
    request.m_nProblemNumber = 12;
    request.m_bLogMoves = bLog;
    ReadHeuristicsText(pSet, request.m_heuristicSet, &task.m_board);
    const auto vecSolutions = SortedTexts(Solve(request, SettingsOf(form)).m_vecSolutions);
    return {vecSolutions, request.m_nPositions};
}

TEST(MoveLog, TellsEveryMoveAndWhatBecameOfIt)
{
    int nRepetitions = 0, nDoubtful = 0;
    for (const TTask& task : RandomTasks(7, {0, 4, 8, 2})) {
        for (const char* pSet :
             {"none", "SH_KEEPKINGONTHEEDGE, SH_DONTLOSEANYFIGURES", "SH_FINDFORCEDMATE(#1)"})
        {
            SCOPED_TRACE(Describe(task, pSet));
            const TWorkingFolder folder;
            const auto quiet = SolveLogged(task, pSet, {1, 1, 0}, false);
            ASSERT_TRUE(LogsIn(folder).empty());
            ASSERT_EQ(SolveLogged(task, pSet, {1, 1, 0}, true), quiet);
            TLogReader reader(task);
            reader.Read(BytesOf(LOG_OF_RUN));
            ASSERT_FALSE(HasFatalFailure());
            EXPECT_EQ(SortedTexts(reader.m_vecKeys), task.m_vecSolutions);
            EXPECT_TRUE(reader.m_setPasses.contains(" Pass 2") ||
                        reader.m_setPasses.contains(" Pass 1a"));
            EXPECT_GT(reader.m_nMoves, 0);
            nRepetitions += reader.m_nRepetitions;
            nDoubtful += reader.m_nDoubtful;
        }
    }
    EXPECT_GT(nDoubtful, 0);
    EXPECT_GT(nRepetitions, 0);
}

TEST(MoveLog, EachThreadHasAFileAndAppends)
{
    const TTask task = RandomTasks(7, {0, 0, 0, 1})[0];
    const TWorkingFolder folder;
    for (int i = 0; i < 2; ++i)
        ASSERT_EQ(SolveLogged(task, "none", {2, 2, 3}, true).first, task.m_vecSolutions);
    bool bGroup = false;
    std::string strRoots;
    for (const std::string& strPath : LogsIn(folder)) {
        const std::string strLog = BytesOf(strPath);
        EXPECT_TRUE(strLog.starts_with(std::string(52, '-') + "\n")) << strPath;
        bGroup |= strLog.find("\nNextMultithreadingLevel analysis...\n") != std::string::npos;
        if (strPath.ends_with("_thread0.log") || strPath.ends_with("_thread1.log"))
            strRoots += strLog;
    }
    EXPECT_TRUE(bGroup);
    EXPECT_GT(LogsIn(folder).size(), 2u);
    const std::string strRule = std::string(52, '-') + "\n";
    std::size_t nRules = 0;
    for (std::size_t i = 0; (i = strRoots.find(strRule, i)) != std::string::npos; ++i)
        ++nRules;
    EXPECT_EQ(nRules, 4u);
}

TEST(MoveLog, OddResultsDepthsAndFolders)
{
    TTaskRequest request(BoardOf("7k/8/5K2/8/8/8/8/6R1"), 2);
    request.m_nProblemNumber = 12;
    std::vector<std::string> vecMessages;
    request.OnMessage = [&](const std::string& strText) { vecMessages.push_back(strText); };
    TChessboard& root = *request.m_pChessboard;
    TThreadContext context(root.m_nInitialMoves);
    context.m_bLogging = true;
    root.m_pRequest = &request;
    PutOnThread(root, context);
    TChessboard& child = context.MakeChild(root);
    TMove move = ParseMove(root, "Kf6-f7");
    ASSERT_TRUE(child.MakeWhiteMove(&move));
    const TWorkingFolder folder;
    for (const int nResult : {-2, -4, 1})
        LogResult(child, nResult);
    context.m_nDoubtReason = static_cast<std::uint32_t>(-7);
    LogResult(child, -1);
    context.m_nQuickerMateNesting = 1;
    LogResult(child, 1);
    context.m_nQuickerMateNesting = 0;
    {
        const TLogOff off(context);
        LogMove(child, nullptr, true);
    }
    child.m_nInitialMoves = static_cast<std::uint16_t>(child.m_nMoves + 601);
    LogResult(child, 1);
    context.m_pLog.Take(nullptr);
    EXPECT_EQ(BytesOf(LOG_OF_RUN),
              std::string(52, '-') + "\n"
                                     "\t1.result error\n\t1.end of FindForcedMate depth\n\t1.mate\n"
                                     "\t1.doubtful/impossible (-7)\n");

    child.m_nInitialMoves = root.m_nInitialMoves;
    std::filesystem::remove(LOG_OF_RUN);
    std::filesystem::create_directory(LOG_OF_RUN);
    LogResult(child, 1);
    LogResult(child, 1);
    EXPECT_EQ(vecMessages, std::vector<std::string>{std::string("Cannot write ") + LOG_OF_RUN});
}

} // namespace
} // namespace corvina
