#include "problems/problemfile.h"
#include "problems/problemwriter.h"
#include "support/chesstest.h"
#include "support/randomproblems.h"
#include "support/temporaryfolder.h"

namespace corvina
{
namespace
{

const TProblemFileSettings g_quiet{.m_pWarnings = nullptr, .m_pProgress = nullptr};

TEST(ProblemFile, WorkedExample)
{
    TProblemCollection collection;
    ReadProblems(
        "UTF-8\n//!default #5 AllSolutions\n//!default #2 allsolutions\r\n\n"
        "12 #3 NoMirror\n//#TAGS\n{\n\tDescription: An example: 1st Prize // https://a/*b\n"
        "\tFEN: 8/8/8/4k3/8/8/8/Q3K3\n\tAnswer: Qa1-a8\n}\n\n"
        "13 #2\n{\n\tDesc: Pieces by list\n\tWhite: Ke1, Qd1, a2\n\tBlack: Ke8\n}\n"
        "14 Sh_SaveQueen/Rook (x) GUICHECK 3 threads 4 GUICHECKBESTDEFENCE NoMirror\n"
        "{ w: Ke1, Wh1, a7 bl: Ke8 moves: a7-a8Q Ke8-d7 0-0 answer: 0-0, wh1-h2+ }"
        "15 s#4{FEN:4k3/8/8/8/8/8/8/4K3\nSWM:Ke1-e2}//!not a line of data",
        collection, g_quiet);
    ASSERT_EQ(collection.m_mapProblems.size(), 4u);
    const TProblem& first = *collection.Find(12);
    EXPECT_EQ(first.m_nRunOptions, RUN_NOMIRROR | RUN_ANSWERKNOWN);
    EXPECT_TRUE(first.m_setTags.empty());
    EXPECT_EQ(first.m_strDescription, L"An example: 1st Prize // https://a/*b");

    EXPECT_EQ(ProblemToText(*collection.Find(13), true),
              "13 #2 AllSolutions\n{\n\tDescription: Pieces by list\n"
              "\tFEN: 4k3/8/8/8/8/8/P7/3QK3\n}\n");
    const TProblem& line = *collection.Find(14);
    EXPECT_EQ(line.m_nRequestedMoves, 255);
    EXPECT_EQ(line.m_mapHeuristicOptions.at(0x4000), std::vector<std::string>{"x"});
    EXPECT_EQ(ProblemToText(line, true),
              "14  NoMirror GUICHECK 3 GUICHECKBESTDEFENCE 3 THREADS 4\n{\n"
              "\tFEN: 4k3/P7/8/8/8/8/8/4K2R\n   Moves:     a7-a8Q Ke8-d7 0-0\n"
              "\tAnswer:  0-0, Rh1-h2\n}\n");
    const TProblem& selfMate = *collection.Find(15);
    EXPECT_EQ(selfMate.m_nRequestedMoves, 9);
    EXPECT_EQ(selfMate.m_nRunOptions, RUN_SORTKNOWN);
    EXPECT_EQ(selfMate.m_vecExpectedSortWhiteMoves.size(), 1u);
    EXPECT_TRUE(ProblemToText(selfMate, true).starts_with("15 s#4\n{"));
}

/// The text of each fault and its place.
TEST(ProblemFile, Faults)
{
    const std::string strFen = "FEN: 4k3/8/8/8/8/8/8/4K2R ";
    const std::string strWhite = "White figures identifier expected (W, WH or WHITE).";
    const std::string strOpening =
        "Opening bracket expected { or unrecognized option encountered: ";
    const struct
    {
        std::string m_strText;
        std::string m_strFault;
        int m_nLine, m_nColumn;
    } aCases[] = {
        {"?", "Alphanumeric identifier expected. Found: ?", 1, 1},
        {"x #2", "Number expected. Found: x", 1, 1},
        {"2147483648 #2", "Number out of range: 2147483648", 1, 1},
        {"1", "Unexpected end of file.", 1, 2},
        {"1 /* {", "Unexpected end of file before comment closed.", 1, 3},
        {"1 #2 / {", "Unexpected lexem (slash).", 1, 6},
        {"1 #0 {", "Number out of range: 0", 1, 4},
        {"1 #32768 {", "Number out of range: 32768", 1, 4},
        {"1 #x {", "Number expected. Found: x", 1, 4},
        {"1 #2\nThreads 128", "Number out of range: 128", 2, 9},
        {"1 #2\nThreads 4^", "Number expected. Found: ", 2, 9},
        {"1 #2 GUICHECK 0 {", strOpening + "0", 1, 15},
        {"1 s 2 {", strOpening + "s", 1, 3},
        {"1 #2 NoSuch {", strOpening + "NoSuch", 1, 6},
        {"//!default #2 Foo\n1 #2 {", "Unrecognizable option: Foo", 2, 4},
        {"//!default #2\n", "Incorrect 'default' clause.", 1, 1},
        {" //!default #0 AllSolutions", "Error in 'default' clause.", 1, 2},
        {"//!default 2 AllSolutions", "Error in 'default' clause.", 1, 1},
        {"1 #2 SH_SEASNAKE on",
         "Unexpected lexem after SH_SEASNAKE on (expected opening bracket or OFF)", 1, 18},
        {"1 #2\n//!VARIANTS\n//!{żółw} Qa1-a8 1.Qa1 {", "Improper full description of move", 3, 18},
        {"1 #2\n//@SortIndications: Qa8 x\n{",
         "Move description too long (note that moves should be separated with a comma or "
         "semicolon)",
         2, 1},
        {"1 #2 { D x", "Colon ':' expected after description identifier.", 1, 10},
        {"1 #2 {\nD: ż\nFEN 8/8", "Colon ':' expected after FEN identifier.", 3, 5},
        {"1 #2 {\n\tFEN: 8/8 }", "Improper FEN code", 2, 7},
        {"1 #2 { FEN: ", "Improper FEN code", 1, 13},
        {"1 #2 { FEN: 8/8/8/8/8/8/8/8 }", "Illegal number of kings.", 1, 13},
        {"1 #2 { Black: Ke1 }", strWhite, 1, 8},
        {"1 #2 { W Ke1", "Colon ':' expected after white figures identifier.", 1, 10},
        {"1 #2 { W: Ki1", "White figure position is invalid: Ki1", 1, 11},
        {"1 #2 { W: Kaa1",
         "White figure specifi"
         "cation is invalid: Kaa1",
         1, 11},
        {"1 #2 { W: Ya1", "Unknown figure letter: Y", 1, 11},
        {"1 #2 { W: Ke1, qe1", "Square E1 already occupied.", 1, 16},
        {"1 #2 { W: Ke1 White", "Black figures identifier expected (B, BL or BLACK).", 1, 15},
        {"1 #2 { W: Ke1 B,", "Colon expected after black figures identifier.", 1, 16},
        {"1 #2 { W: Ke1 B: e9", "Black figure position is invalid: e9", 1, 18},
        {"1 #2 { W: Ke1 B: e",
         "Black figure specifi"
         "cation is invalid: e",
         1, 18},
        {"1 #2 { W: Ke1 B: }", "Illegal number of kings.", 1, 16},
        {"1 { " + strFen + "Moves e1", "Colon expected after Moves section start.", 1, 37},
        {"1 { " + strFen + "Moves: Ke9-e1", "Invalid 'from' position: Ke9", 1, 38},
        {"1 { " + strFen + "Moves: Ke1-e9", "Invalid 'to' position: e9", 1, 42},
        {"1 { " + strFen + "Moves: Ke1 e2", "Hyphen expected.", 1, 42},
        {"1 { " + strFen + "Moves: 0-1", "Incorrect castling symbol: 0", 1, 40},
        {"1 { " + strFen + "Moves: Ke1-e2, }", "Invalid lexem encountered: ,", 1, 44},
        {"1 { " + strFen + "Moves: Ke1-e3 }", "Illegal move", 1, 42},
        {"1 #2 { " + strFen + "A Rh1", "Colon expected after correct answer identifier.", 1, 36},
        {"1 #2 { " + strFen + "A: Rh9-h2", "Invalid correct answer ('from' element): Rh9", 1, 37},
        {"1 #2 { " + strFen + "A: Rh1-h9", "Invalid correct answer ('to' element): h9", 1, 41},
        {"1 #2 { " + strFen + "A: h7-h8K", "Invalid correct answer ('to' element): h8K", 1, 40},
        {"1 #2 { " + strFen + "A: h1-h1", "Invalid correct answer ('to' element): h1", 1, 40},
        {"1 #2 { " + strFen + "A: Rh1 h2", "Hyphen expected to separate correct answer elements", 1,
         41},
        {"1 #2 { " + strFen + "A: 0-0-1", "Invalid correct answer: 0", 1, 41},
        {"1 #2 { " + strFen + "A: 0-0 Rh1",
         "Comma should separate various solutions of the problem, but encountered: Rh1", 1, 41},
        {"1 #2 { " + strFen + "Foo", "Closing bracket expected.", 1, 34},
        {"1 #2 { " + strFen + "/* /* */ */ }", "Closing bracket expected.", 1, 43},
        {std::string("1 #2 {\0 ", 8), strWhite, 1, 7},
    };
    for (const auto& c : aCases) {
        TProblemCollection collection;
        const std::string strText = "UTF-8 7 { " + strFen + "}\n" + c.m_strText;
        const bool bDefaults = c.m_strText.find("default") != std::string::npos;
        try {
            ReadProblems(bDefaults ? "UTF-8\n" + c.m_strText : strText, collection, g_quiet);
            ADD_FAILURE() << "no fault in: " << c.m_strText;
        }
        catch (const TProblemFileException& error) {
            EXPECT_EQ(error.what(), c.m_strFault) << c.m_strText;
            EXPECT_EQ(error.m_nLine, c.m_nLine + 1) << c.m_strText;
            EXPECT_EQ(error.m_nColumn, c.m_nColumn) << c.m_strText;
        }
        EXPECT_EQ(collection.m_mapProblems.size(), bDefaults ? 0u : 1u) << c.m_strText;
    }
}

/// An entry with texts of letters in a code page.
std::string CodePageEntry(int nNumber)
{
    return std::to_string(nNumber) +
           " #2\n//#w\xB9\xBF morski\n//!VARIANTS\n//!{Wariant g\xB3\xF3wny} "
           "e2-e4[\xB6]\n//!ENDVARIANTS\n{\nD: G\xB3\xF3wka\x81\nFEN: 4k3/8/8/8/8/8/4P3/4K3 }\n";
}

TEST(ProblemFile, CodePagesLanguagesAndReplacedNumbers)
{
    TProblemFileSettings settings = g_quiet;
    settings.m_pWarnings = std::tmpfile();
    settings.m_language = ELanguage::Ukrainian;
    TProblemCollection collection, again;
    ReadProblems(CodePageEntry(1) + CodePageEntry(1), collection, settings);
    char aLine[100] = {};
    std::rewind(settings.m_pWarnings);
    EXPECT_TRUE(std::fgets(aLine, sizeof aLine, settings.m_pWarnings));
    EXPECT_STREQ(aLine, "WARINING: Problem id=1 redefinition - overwriting.\n");
    EXPECT_EQ(collection.m_setAllTags, std::set<std::wstring>{L"wąż morski"});
    EXPECT_TRUE(collection.Find(1)->m_mapVariants.contains(L"Основний варіант"));
    const std::string strWritten = ProblemsToText(collection, true);
    EXPECT_TRUE(strWritten.starts_with("UTF-8\r\n\r\n\r\n1 #2\r\n//#TAGS\r\n//#wąż morski\r\n"));
    EXPECT_NE(strWritten.find("//!{Main variant} e2-e4[¶]\r\n"), std::string::npos);
    // What the code page doesn't have as a character comes through as it is.
    EXPECT_NE(strWritten.find("Description: Główka\x81\r\n"), std::string::npos);
    ReadProblems("\xEF\xBB\xBF" + strWritten.substr(5), again, settings);
    EXPECT_EQ(Describe(*again.Find(1), true), Describe(*collection.Find(1), true));
    settings.m_strCodePage = "windows-1251";
    ReadProblems("2 #2 { D: \xAF\xE6\xE0\xEA\nFEN: 4k3/8/8/8/8/8/8/4K3 }", again, settings);
    EXPECT_EQ(again.Find(2)->m_strDescription, L"Їжак");
    std::fclose(settings.m_pWarnings);
}

TEST(ProblemFile, CommentCompatibilityMode)
{
    EXPECT_EQ(GetMirrorFileName("a.cp", true), "a.cpx");
    EXPECT_EQ(GetMirrorFileName("a.cpx", true), "a.cpx");
    EXPECT_EQ(GetMirrorFileName("a.cpx", false), "a.cp");
    const TTemporaryFolder folder;
    const std::string strFile = folder.File("a.cp");
    PutBytes(strFile, CodePageEntry(1));
    TProblemFileSettings settings = g_quiet;
    settings.m_bCommentCompatibilityMode = true;
    TProblemCollection collection;
    // Before the twin exists the plain file is what there is, and isn't taken for missing.
    LoadProblemFile(strFile, collection, true, settings);
    EXPECT_EQ(BytesOf(strFile), CodePageEntry(1));
    WriteProblemFile(strFile, collection, settings);
    EXPECT_NE(BytesOf(strFile + "x").find("e2-e4[¶]"), std::string::npos);
    EXPECT_NE(BytesOf(strFile).find("e2-e4\r\n"), std::string::npos);
    EXPECT_EQ(BytesOf(strFile + ".BAK"), CodePageEntry(1));
    TProblemCollection again;
    LoadProblemFile(strFile, again, false, settings);
    EXPECT_EQ(Describe(*again.Find(1), true), Describe(*collection.Find(1), true));
}

TEST(ProblemFile, NewFiles)
{
    const TTemporaryFolder folder;
    const std::string strFile = folder.File("new.cp");
    TProblemCollection collection;
    EXPECT_EQ(FailureText([&] { LoadProblemFile(strFile, collection, false, g_quiet); }),
              "Error opening file: " + strFile);
    LoadProblemFile(strFile, collection, true, g_quiet);
    ASSERT_TRUE(collection.Find(1));
    EXPECT_EQ(ProblemToText(*collection.Find(1), true),
              "1 #2\n{\n\tDescription: Click here to change problem description\n"
              "\tFEN: 4k3/8/8/8/8/8/8/4K3\n}\n");
    PutBytes(strFile, "mine");
    std::vector<std::string> vecQuestions;
    bool bAnswer = false;
    const TQuestion question = [&](const std::string&, const std::string& strText) {
        vecQuestions.push_back(strText);
        return bAnswer;
    };
    EXPECT_FALSE(CreateProblemFile(strFile, EAskMode::Refuse, question, g_quiet));
    EXPECT_FALSE(CreateProblemFile(strFile, EAskMode::Ask, question, g_quiet));
    EXPECT_EQ(BytesOf(strFile), "mine");
    bAnswer = true;
    EXPECT_TRUE(CreateProblemFile(strFile, EAskMode::Ask, question, g_quiet));
    EXPECT_EQ(vecQuestions,
              std::vector<std::string>(2, "File " + strFile +
                                              " already exists.\nDo you want to replace it with a "
                                              "new file?"));
    EXPECT_EQ(BytesOf(strFile).substr(0, 12), "UTF-8\r\n1 #2\r");
    EXPECT_FALSE(CreateProblemFile(folder.File("no/a.cp"), EAskMode::Ask, question, g_quiet));
    EXPECT_EQ(FailureText([&] { WriteProblemFile(folder.File("no/a.cp"), collection, g_quiet); }),
              "Error opening file: " + folder.File("no/a.cp"));
}

/// Sizes, cuts and bytes that no file should have: what is read stays, what isn't has a place.
TEST(ProblemFile, Robustness)
{
    const std::string strEntry = "{ FEN: 4k3/8/8/8/8/8/8/4K3 }\n";
    TProblemCollection large;
    const std::string strLong(10'000'000, 'x');
    std::string strText =
        "UTF-8\n1 #2\n//#" + strLong + "\n{ D: " + strLong + "\nFEN: 4k3/8/8/8/8/8/8/4K3 }";
    for (int i = 2; strText.size() < 50'000'000; ++i)
        strText += std::to_string(i) + " #2\n//" + std::string(1000, '/') + "\n" + strEntry;
    strText += std::string("9 #2 { D: a\0b\n", 14) + strEntry.substr(2) + strLong;
    EXPECT_EQ(FailureText([&] { ReadProblems(strText, large, g_quiet); }),
              "Number expected. Found: " + strLong);
    EXPECT_GT(large.m_mapProblems.size(), 25000u);
    EXPECT_EQ(large.Find(1)->m_strDescription.size(), strLong.size());
    EXPECT_EQ(large.Find(9)->m_strDescription, std::wstring(L"a\0b", 3));

    std::mt19937 random(3);
    std::string strThree = "UTF-8\n";
    for (int i = 1; i <= 3; ++i)
        strThree += TypedByHand(*RandomProblem(random, i), random);
    std::size_t nMost = 0;
    for (std::size_t nCut = 0; nCut < strThree.size(); ++nCut) {
        TProblemCollection cut;
        FailureText([&] { ReadProblems(strThree.substr(0, nCut), cut, g_quiet); });
        ASSERT_GE(cut.m_mapProblems.size(), nMost);
        nMost = cut.m_mapProblems.size();
    }
    EXPECT_GE(nMost, 2u);
}

/// Inputs that reach the corners of the readers.
TEST(ProblemFile, Corpus)
{
    int nFiles = 0;
    for (const auto& entry : std::filesystem::directory_iterator(CORVINA_CORPUS)) {
        const std::string strText = BytesOf(entry.path().string());
        TProblemCollection collection, again;
        FailureText([&] { ReadProblems(strText, collection, g_quiet); });
        const std::string strWritten = ProblemsToText(collection, true);
        ASSERT_NO_THROW(ReadProblems(strWritten, again, g_quiet)) << entry.path();
        EXPECT_EQ(ProblemsToText(again, true), strWritten) << entry.path();
        ++nFiles;
    }
    EXPECT_GT(nFiles, 20);
}

} // namespace
} // namespace corvina
