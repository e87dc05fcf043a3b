#include "problems/merge.h"
#include "support/chesstest.h"
#include "support/temporaryfolder.h"

namespace corvina
{
namespace
{

const TProblemFileSettings g_quiet{.m_pWarnings = nullptr, .m_pProgress = nullptr};

constexpr const char* HERE = "UTF-8\n"
                             "3 #2 { FEN: 7k/8/8/8/8/8/8/KQ6 }\n"
                             "4 #3 { D: twice\nFEN: 7k/8/8/8/8/8/8/KQ6 }\n"
                             "9 #4 { FEN: 7k/8/8/8/8/8/8/KR6 }\n";
constexpr const char* THERE = "UTF-8\n"
                              "1 #2 //!x\n//#new\n{ FEN: 7k/8/8/8/8/8/8/KB6 }\n"
                              "2 #5 { FEN: 7k/8/8/8/8/8/8/KR6 }\n"
                              "3 #3 { FEN: 7k/8/8/8/8/8/8/KB6 }\n"
                              "4 #2 { FEN: 7k/8/8/8/8/8/8/KQ6 }\n"
                              "5 #2 { FEN: 7k/8/8/8/8/8/8/KN6 }\n";

/// A document in a file, another file, and a user who gives the answers in turn.
class Merge : public testing::Test
{
protected:
    Merge()
    {
        m_document.m_strPath = m_folder.File("here.cp");
        PutBytes(m_document.m_strPath, HERE);
        PutBytes(m_strOther, THERE);
        LoadProblemFile(m_document.m_strPath, m_document.m_collection, false, g_quiet);
        m_host.m_question = [this](const std::string&, const std::string& strText) {
            m_vecTexts.push_back(strText);
            const bool bAnswer = m_vecAnswers.at(0);
            m_vecAnswers.erase(m_vecAnswers.begin());
            return bAnswer;
        };
        m_host.m_inform = [this](const std::string& strTitle, const std::string& strText) {
            m_vecTexts.push_back(strTitle + ": " + strText);
        };
    }

    std::string Numbers() const
    {
        std::string strNumbers;
        for (const auto& [nNumber, pProblem] : m_document.m_collection.m_mapProblems)
            strNumbers += std::to_string(nNumber) + " ";
        return strNumbers;
    }

    bool IsSaved() const { return BytesOf(m_document.m_strPath) != HERE; }

    TTemporaryFolder m_folder;
    TProblemDocument m_document;
    std::string m_strOther = m_folder.File("there.cp");
    TDocumentHost m_host;
    std::vector<bool> m_vecAnswers;
    std::vector<std::string> m_vecTexts;
};

constexpr const char* APPENDED =
    "Appended problems: 2\nMoreover some problems differ only by stipulation (#n): \n#4 vs. #5\n"
    "#2 vs. #3\n\n\nDo you want to save changes? (select 'No' to reject them)";

TEST_F(Merge, Append)
{
    m_vecAnswers = {false, true};
    EXPECT_FALSE(AppendProblemsFromFile(m_document, m_strOther, m_host, g_quiet));
    EXPECT_EQ(Numbers(), "3 4 9 ");
    EXPECT_TRUE(m_document.m_collection.m_setAllTags.empty());
    EXPECT_FALSE(IsSaved());
    EXPECT_TRUE(AppendProblemsFromFile(m_document, m_strOther, m_host, g_quiet));
    EXPECT_EQ(m_vecTexts, std::vector<std::string>(2, APPENDED));
    EXPECT_EQ(Numbers(), "3 4 9 10 11 ");
    TProblemCollection saved;
    LoadProblemFile(m_document.m_strPath, saved, false, g_quiet);
    EXPECT_EQ(saved.m_setAllTags, std::set<std::wstring>{L"new"});
    // With itself nothing is new.
    EXPECT_FALSE(AppendProblemsFromFile(m_document, m_document.m_strPath, m_host, g_quiet));
    EXPECT_EQ(m_vecTexts.back(), "Information: Appended problems: 0\nMoreover some problems differ "
                                 "only by stipulation (#n): \n#2 vs. #3\n");
}

TEST_F(Merge, Remove)
{
    m_document.m_nCurrentProblem = 9;
    const std::string strReport =
        "Removed problems: 1\nWarning: the current problem cannot be removed.\n\nDo you want to "
        "save changes? (select 'No' to reject them)";
    m_vecAnswers = {false, true};
    EXPECT_FALSE(RemoveProblemsOfFile(m_document, m_strOther, m_host, g_quiet));
    EXPECT_EQ(Numbers(), "3 4 9 ");
    EXPECT_FALSE(IsSaved());
    EXPECT_TRUE(RemoveProblemsOfFile(m_document, m_strOther, m_host, g_quiet));
    EXPECT_EQ(m_vecTexts, std::vector<std::string>(2, strReport));
    EXPECT_EQ(Numbers(), "4 9 ");
    EXPECT_TRUE(IsSaved());
    PutBytes(m_strOther, "1 #2 { FEN: 7k/8/8/8/8/8/8/KN6 }");
    EXPECT_FALSE(RemoveProblemsOfFile(m_document, m_strOther, m_host, g_quiet));
    EXPECT_EQ(m_vecTexts.back(), "Information: Removed problems: 0");
}

/// What can't be read or written leaves the problems as they were.
TEST_F(Merge, Failures)
{
    m_vecAnswers = {true, true};
    m_document.m_strPath = m_folder.File("none/here.cp");
    EXPECT_THROW(AppendProblemsFromFile(m_document, m_strOther, m_host, g_quiet), ChessException);
    EXPECT_THROW(RemoveProblemsOfFile(m_document, m_strOther, m_host, g_quiet), ChessException);
    PutBytes(m_strOther, "UTF-8 1 #2 {");
    EXPECT_THROW(AppendProblemsFromFile(m_document, m_strOther, m_host, g_quiet), ChessException);
    EXPECT_EQ(Numbers(), "3 4 9 ");
}

TEST_F(Merge, PendingWork)
{
    int nStops = 0;
    m_host.m_stopSearches = [&] { ++nStops; };
    m_vecAnswers = {false};
    EXPECT_FALSE(AppendProblemsFromFile(m_document, m_strOther, m_host, g_quiet));
    EXPECT_EQ(nStops, 0);
    m_document.m_bProblemChanged = true;
    m_document.m_nCurrentProblem = 4;
    // Stop, save; but not with the position twice.
    m_vecAnswers = {true, true, false};
    EXPECT_FALSE(AppendProblemsFromFile(m_document, m_strOther, m_host, g_quiet));
    EXPECT_EQ(nStops, 1);
    EXPECT_EQ(m_vecTexts.back(), "The same position already exists in this file as the following "
                                 "problem:\n3. #2 \n\nDo you want to save changes anyway?");
    EXPECT_FALSE(IsSaved());
    m_vecAnswers = {true, false, false};
    EXPECT_FALSE(AppendProblemsFromFile(m_document, m_strOther, m_host, g_quiet));
    EXPECT_EQ(m_vecTexts.back(), APPENDED);
}

TEST_F(Merge, Save)
{
    m_document.m_bChanged = true;
    m_document.m_nCurrentProblem = 9;
    EXPECT_EQ(SaveProblemFile(m_document, m_host, g_quiet), ESaveResult::Saved);
    EXPECT_TRUE(IsSaved() && !m_document.m_bChanged && m_vecTexts.empty());
    EXPECT_EQ(CheckDuplicatePosition(m_document.m_collection, 3), "4. #3 twice");
    EXPECT_EQ(CheckDuplicatePosition(m_document.m_collection, 9), "");
    m_document.m_strPath.clear();
    EXPECT_EQ(SaveProblemFile(m_document, m_host, g_quiet), ESaveResult::NeedsName);
}

} // namespace
} // namespace corvina
