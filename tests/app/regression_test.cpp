#include "app/mirror.h"
#include "app/regression.h"
#include "problems/problemfile.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"
#include "support/temporaryfolder.h"

#include <array>
#include <regex>

namespace corvina
{
namespace
{

/// A regression run over the text of a problem file, with its log in a folder of its own.
struct TRegressionRun
{
    explicit TRegressionRun(const std::string& strText)
    {
        TProblemFileSettings fileSettings;
        fileSettings.m_pWarnings = fileSettings.m_pProgress = nullptr;
        ReadProblems("UTF-8\n" + strText, m_collection, fileSettings);
        m_settings.m_logPath = m_folder.File("RegressionTest.log");
        m_settings.m_onLine = [this](const std::string& strLine) {
            m_bLoggedAtOnce = m_bLoggedAtOnce && BytesOf(LogPath()).ends_with(strLine);
        };
        m_settings.m_onError = [this](const TProblem& problem, const std::string&) {
            m_vecErrors.push_back(problem.m_nProblemNumber);
        };
    }

    /// The log, with "T" for times.
    std::string Run()
    {
        m_counts = RunRegressionTest(m_collection, m_settings);
        EXPECT_TRUE(m_bLoggedAtOnce);
        EXPECT_FALSE(g_bRegressionTestRunning);
        return std::regex_replace(BytesOf(LogPath()), std::regex("\\(\\d+ msec\\)"), "(T)");
    }

    std::string LogPath() const { return m_settings.m_logPath.string(); }

    TProblem& Problem(std::int32_t nNumber) { return *m_collection.m_mapProblems.at(nNumber); }

    void ExpectCounts(int nOk, int nFailed, int nUnchecked, int nSkipped) const
    {
        const TRegressionCounts& counts = m_counts;
        EXPECT_EQ(
            (std::array{counts.m_nOk, counts.m_nFailed, counts.m_nUnchecked, counts.m_nSkipped}),
            (std::array{nOk, nFailed, nUnchecked, nSkipped}));
    }

    TTemporaryFolder m_folder;
    TProblemCollection m_collection;
    TRegressionSettings m_settings;
    TRegressionCounts m_counts;
    std::vector<int> m_vecErrors;
    bool m_bLoggedAtOnce = true;
};

constexpr const char* ONE_KEY = " FEN: 7k/8/5K2/8/8/8/8/6R1\n"; // #2: Kf6-f7
constexpr const char* ONE_KEY_ANSWER = " Answer: Kf6-f7 }\n";

std::string OneKey(const std::string& strHead)
{
    return strHead + " {" + ONE_KEY + ONE_KEY_ANSWER;
}

TEST(Regression, ALineForEachOutcome)
{
    TRegressionRun run(OneKey("1 #2 AllSolutions") + "2 #2 AllSolutions {" + ONE_KEY +
                       " Answer: Kf6-f7, Rg1-g2 }\n"
                       "3 #2 {" +
                       ONE_KEY +
                       "}\n"
                       "4 #2 { FEN: 7k/8/8/8/8/8/8/K5R1\n}\n" +
                       OneKey("5 #2 AllSolutions REQUIRES QR") +
                       OneKey("6 #2 AllSolutions AllSolutionsRequires QR") +
                       OneKey("7 #2 REQUIRESSYZYGY") +
                       OneKey("8 #2 AllSolutions ALLSOLUTIONSREQUIRESSYZYGY") +
                       // Eight men: no tablebase can be asked for.
                       "9 #2 REQUIRESSYZYGY { FEN: 7k/8/5K2/8/8/ppppp3/8/6R1\n Answer: Kf6-f7 }\n" +
                       OneKey("10 s#2") + OneKey("11 #2 THREADS 2"));
    PutBytes(run.LogPath(), "old\n");
    PutBytes(run.LogPath() + ".BAK", "older\n");
    EXPECT_EQ(run.Run(), "[AllSolutions, 1thrd(s)] Test #1 M2 ok (T).\n"
                         "[AllSolutions, 1thrd(s)] Test #2 M2 failed:\n\tfound:\n1. Kf6-f7\n"
                         "\tshould be:\n1. Kf6-f7\n2. Rg1-g2\n"
                         "[SnglSolution, 1thrd(s)] Prob.#3 M1 Kf6-f7 (T).\n"
                         "[SnglSolution, 1thrd(s)] Prob.#4 M1 No solution (T).\n"
                         "Requires clause not satisfied\n"
                         "AllSolutionsRequires clause not satisfied\n"
                         "[SnglSolution, 1thrd(s)] Test #6 M1 ok (T).\n"
                         "RequiresSyzygy not satisfied\n"
                         "AllSolutionsRequiresSyzygy not satisfied\n"
                         "[SnglSolution, 1thrd(s)] Test #8 M1 ok (T).\n"
                         "[SnglSolution, 1thrd(s)] Test #9 M1 ok (T).\n"
                         "[SnglSolution, 2thrd(s)] Test #11 M5 ok (T).\n");
    run.ExpectCounts(5, 1, 2, 3);
    EXPECT_EQ(run.m_vecErrors, std::vector<int>{10});
    EXPECT_EQ(BytesOf(run.LogPath() + ".BAK"), "old\n");
    EXPECT_FALSE(run.Problem(6).m_nRunOptions & RUN_ALLSOLUTIONS);

    // With the data at hand the clauses are satisfied.
    TRegressionRun with(OneKey("1 #2 AllSolutions REQUIRES QR AllSolutionsRequires R") +
                        OneKey("2 #2 REQUIRES Q") + OneKey("3 #2 REQUIRESSYZYGY"));
    with.m_settings.m_hasPositionType = [](const std::string& strType) { return strType != "Q"; };
    with.m_settings.m_hasTablebase = [](const TChessboard& board) { return board.m_nWhiteRooks; };
    EXPECT_EQ(with.Run(), "[AllSolutions, 1thrd(s)] Test #1 M2 ok (T).\n"
                          "Requires clause not satisfied\n"
                          "[SnglSolution, 1thrd(s)] Test #3 M1 ok (T).\n");
}

TEST(Regression, OrderOfFirstMoves)
{
    const std::string strSort = " ExpectedSortWhiteMoves: Kf6-f7 }\n";
    const std::string strOnly = " ExpectedSortWhiteMovesOnly: Kf6-f7 }\n";
    TRegressionRun run(std::string("1 #2 {") + ONE_KEY + strSort + "2 #2 {" + ONE_KEY + strOnly);
    // The order is a permutation of the legal moves; it is what an author would copy.
    TTaskRequest request(BoardOf("7k/8/5K2/8/8/8/8/6R1"), 2);
    Solve(request, {});
    const std::vector<TMove> vecOrder = request.m_vecFirstMoves;
    EXPECT_EQ(vecOrder.size(), 7u + 14u);
    for (const int nNumber : {1, 2})
        run.Problem(nNumber).m_vecExpectedSortWhiteMoves = vecOrder;
    EXPECT_EQ(run.Run(), "[SnglSolution, 1thrd(s)] Prob.#1 M1 Kf6-f7 (T).\n"
                         "[SnglSolution, 1thrd(s)] Test #2 M1 ok (T) - "
                         "ExpectedSortWhiteMovesOnly.\n");
    std::swap(run.Problem(1).m_vecExpectedSortWhiteMoves[2],
              run.Problem(1).m_vecExpectedSortWhiteMoves[3]);
    run.Problem(2).m_vecExpectedSortWhiteMoves.push_back(vecOrder[0]);
    EXPECT_EQ(
        run.Run(),
        "[SnglSolution, 1thrd(s)] Test #1 M1 failed: ExpectedSortWhiteMoves failed: move 3\n"
        "[SnglSolution, 1thrd(s)] Test #2 M1 failed: ExpectedSortWhiteMoves failed: move 22\n");
    run.ExpectCounts(0, 2, 0, 0);
}

TEST(Regression, MirrorImages)
{
    const std::string strCastling = " { FEN: 8/8/8/7P/6Pn/3p3p/3Q2p1/R3K1k1\n Answer: 0-0-0 }\n";
    const std::string strImage = " { FEN: 8/8/8/P7/nP6/p3p3/1p2Q3/1k1K3R\n}\n";
    TRegressionRun run(OneKey("1 #2") + OneKey("2 #2 NoMirror") + OneKey("3 #2 MirrorOnly") +
                       "4 #2" + strCastling + "5 #2" + strImage + "6 #2 {" + ONE_KEY + "}\n");
    run.m_settings.m_bMirrors = true;
    const std::string strWith = run.Run();
    const auto countOf = [&](const std::string& strPart) {
        const std::regex regex(strPart);
        return std::distance(std::sregex_iterator(strWith.begin(), strWith.end(), regex), {});
    };
    EXPECT_EQ(countOf("Test #1 M1 ok"), 2);
    for (const char* pOnce : {"Test #2 M1 ok", "Test #3 M1 ok", "Test #4 M1 ok", "Prob.#5",
                              "Prob.#6 M1 Kf6-f7", "Prob.#6 M1 Kc6-c7"})
        EXPECT_EQ(countOf(pOnce), 1) << pOnce;
    EXPECT_EQ(WriteFen(*run.Problem(1).m_pChessboard, true), "7k/8/5K2/8/8/8/8/6R1");

    run.m_settings.m_bMirrors = false;
    run.Run();
    run.ExpectCounts(3, 0, 2, 1); // nothing is left to do for the third one
}

TEST(Regression, MirroringTwiceChangesNothing)
{
    TRegressionRun run("1 #3 GUICHECK 2\n//!VARIANTS\n"
                       "//!{Main variant} b7-b8Q Kc5-c6 Bb2-a3 Kc6-d7 Qa2-d5\n//!ENDVARIANTS\n"
                       "//@SortIndications: 1. Na8-c7, 2. R>g5\n"
                       "{ FEN: N5K1/1Pp5/8/2k5/8/8/QB6/8\n Answer: b7-b8Q }\n");
    TSortIndication& item = run.Problem(1).m_sortIndications.m_mapItems[1][0];
    item.m_strPattern = "5k2//8/3p4";
    item.m_pVariant =
        std::make_shared<TVariant>(TVariant{L"", {{ParseFullMove("Qd1-d2", true), "Qd1-d2", L""}}});
    const auto textOf = [&] {
        std::string strText = WriteFen(*run.Problem(1).m_pChessboard, true) + " " +
                              SortIndicationsToText(run.Problem(1).m_sortIndications);
        for (const auto& move : run.Problem(1).m_mapVariants.begin()->second.m_vecMoves)
            strText += " " + move.m_strText + SquareToString(move.m_move.m_to);
        return strText + SquareToString(run.Problem(1).m_vecExpectedSolutions[0].m_from) + " " +
               item.m_strPattern + " " + item.m_pVariant->m_vecMoves[0].m_strText;
    };
    const std::string strBefore = textOf();
    MirrorProblem(run.Problem(1));
    EXPECT_EQ(textOf(), "1K5N/5pP1/8/5k2/8/8/6BQ/8 1.Nh8-f7; 2.R>b5 g7-g8QG8 Kf5-f6F6 Bg2-h3H3 "
                        "Kf6-e7E7 Qh2-e5E5G7 2k5//8/4p3 Qe1-e2");
    MirrorProblem(run.Problem(1));
    EXPECT_EQ(textOf(), strBefore);
}

TEST(Regression, MainVariantIsWhatTheEnginePlays)
{
    struct TCase
    {
        const char* m_pOption;
        const char* m_pVariant;
        const char* m_pFault; ///< the start of what follows the line of the solve
    };
    const std::string strKey = "b7-b8Q ";
    const TCase aCases[] = {
        {"GUICHECKBESTDEFENCE", "Kc5-c6 Bb2-a3", ""},
        {"GUICHECKBESTDEFENCE", "Kc5-d6 Bb2-a3",
         "Error in best defence:\n\nexpected Kc5-d6\nfound "},
        {"", "Kc5-d6 Bb2-a3", ""},
        {"GUICHECKBESTDEFENCE", "Kc5-c6 Kg8-h8", ""},
        {"GUICHECK", "Kc5-c6 Kg8-h8", "Error in auxMate:\n\nexpected Kg8-h8\nfound "},
        {"GUICHECK", "Kc5-c6 Bb2-a3 Kc6-d7 Qa2-d5", ""},
        {"GUICHECK 2", "Kc5-c6 Bb2-a3 Kc6-d7 Kg8-h8", "Error in auxMate:\n\nexpected Kg8-h8\n"},
        {"GUICHECK", "Kc5-c6 Bb2-a3 Kc6-d7 Kg8-h8", ""}, // out of reach
        {"GUICHECK", "", ""},
    };
    for (const TCase& test : aCases) {
        TRegressionRun run(std::string("1 #3 ") + test.m_pOption +
                           "\n//!VARIANTS\n//!{Main variant} " + strKey + test.m_pVariant +
                           "\n//!ENDVARIANTS\n{ FEN: N5K1/1Pp5/8/2k5/8/8/QB6/8\n"
                           " Answer: b7-b8Q }\n");
        run.m_settings.m_bMirrors = true;
        const std::string strLog = run.Run();
        const std::string strHead = "[SnglSolution, 1thrd(s)] Test #1 M1 ok (T).\n";
        const bool bFault = *test.m_pFault != 0;
        EXPECT_TRUE(bFault ? strLog.starts_with(strHead + test.m_pFault)
                           : strLog == strHead + strHead)
            << test.m_pOption << " " << test.m_pVariant << "\n"
            << strLog;
        run.ExpectCounts(bFault ? 0 : 2, bFault ? 2 : 0, 0, 0);
    }
}

TEST(Regression, TimeAndStop)
{
    const std::string strLong = " #9 { FEN: rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR\n}\n";
    TRegressionRun run("1" + strLong + OneKey("2 #2"));
    run.m_settings.m_bQuick = true;
    run.m_settings.m_nTimeLimitSec = 1;
    EXPECT_EQ(run.Run(), "[SnglSolution, 1thrd(s)] Prob.#1 M1 No solution (T).\n"
                         "[SnglSolution, 1thrd(s)] Test #2 M1 ok (T).\n");
    run.ExpectCounts(1, 0, 1, 0);

    TRegressionRun stopped(OneKey("1 #2") + OneKey("2 #2"));
    stopped.m_settings.m_onLine = [](const std::string&) { g_bRegressionTestRunning = false; };
    EXPECT_EQ(stopped.Run(), "[SnglSolution, 1thrd(s)] Test #1 M1 ok (T).\n");

    EXPECT_EQ(GetRunDescription(SEARCH_ALL | SEARCH_THREADS, 12, 3), "AllSolutions,12^3thrd(s)");
    EXPECT_EQ(GetRunDescription(0, 1, 1), " 1thrd(s)");
}

TEST(Regression, KnownCompositions)
{
    std::string aLogs[2];
    for (const std::uint8_t nUse : {0, 1}) {
        TRegressionRun run("1 #6 ALLSOLUTIONS { FEN: 8/8/8/8/6R1/2B2p1K/5b2/7k\n Answer: }\n"
                           "2 #6 { FEN: 7k/4KR2/5Pq1/8/3B4/5B2/8/8\n Answer: }\n" +
                           OneKey("3 #2 USEPREDEFINEDSETTINGS"));
        run.m_settings.m_bMirrors = true;
        run.m_settings.m_options.m_nUsePredefinedIndications = nUse;
        aLogs[nUse] = run.Run();
        run.ExpectCounts(6, 0, 0, 0);
    }
    EXPECT_EQ(aLogs[0], aLogs[1]);
}

} // namespace
} // namespace corvina
