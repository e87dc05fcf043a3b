#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/ioctl.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <pty.h>
#include <regex>
#include <sstream>
#include <string>
#include <unistd.h>

namespace
{

struct TRun
{
    int m_nExitCode;
    std::string m_strOutput; ///< standard output and standard error, in the order of arrival
};

TRun RunCli(const std::string& strArguments)
{
    const std::string strCommand = CORVINA_CLI " 2>&1 " + strArguments;
    std::FILE* pPipe = popen(strCommand.c_str(), "r");
    TRun run;
    std::array<char, 4096> buffer;
    for (std::size_t n; (n = fread(buffer.data(), 1, buffer.size(), pPipe)) > 0;)
        run.m_strOutput.append(buffer.data(), n);
    run.m_nExitCode = WEXITSTATUS(pclose(pPipe));
    return run;
}

TEST(Cli, SolveExitCodesAndMessages)
{
    struct TCase
    {
        const char* m_pArguments;
        int m_nExitCode;
        const char* m_pText; ///< part of the output
    };
    const TCase aCases[] = {
        {"solve --fen 7k/8/5K2/8/8/8/8/6R1 --mate 2", 0, "1 solution"},
        {"solve --fen 8/8/8/8/8/k1K5/8/1Q6 --mate 2 --first", 0, "1 solution (the first)"},
        {"solve --fen 7k/8/8/8/8/8/8/K5R1 --mate 2", 1, "no solution"},
        {"solve --fen rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR --mate 9 --time 0.1", 3,
         "stopped, 0 found so far"},
        {"solve --fen 7k/8 --mate 2", 2, "Improper FEN code\n"},
        {"solve --fen 7X/8/8/8/8/8/8/K5R1 --mate 2", 2, "Improper FEN code\n"},
        {"solve --fen 8/8/8/8/8/8/8/K5R1 --mate 2", 2, "Illegal number of kings.\n"},
        {"solve --fen k6R/8/8/8/8/8/8/K6r --mate 2", 2, "Both kings attacked.\n"},
        {"solve --fen P6k/8/8/8/8/8/8/K7 --mate 2", 2,
         "Pawns cannot occupy 1st nor 8th line of the chessboard.\n"},
        {"solve --fen 7k/8/8/8/8/8/8/K6R --mate 2", 2,
         "Black king cannot be checked in the mate task starting postition.\n"},
        {"solve --fen 7k/8/8/8/8/8/8/K5R1", 2, "--fen needs --mate."},
        {"solve --fen 7k/8/8/8/8/8/8/K5R1 --mate 0", 2, "--mate"},
        {"solve --fen 8/8/8/8/8/k1K5/8/1Q6 --mate 2 --threads 2^2 --scheduler-levels 6", 0,
         "9 solutions"},
        {"solve --fen 7k/8/8/8/3K4/8/8/QR1RR3 --mate 8 --threads 2 --first", 0,
         "Engine wants to force a different number of threads (4): accepted.\n"},
        {"solve --fen 7k/8/5K2/8/8/8/8/6R1 --mate 2 --threads 60^3", 2,
         "--threads: Too many threads and/or multithreading levels.\n"},
        {"solve --fen 7k/8/5K2/8/8/8/8/6R1 --mate 2 --threads 2^x", 2,
         "--threads: expected N or N^L with N from 1 to 64.\n"},
        {"solve --fen 7k/8/5K2/8/8/8/8/6R1 --mate 2 --threads 65", 2,
         "--threads: expected N or N^L with N from 1 to 64.\n"},
        {"solve --fen 7k/8/5K2/8/8/8/8/6R1 --mate 2 --scheduler-levels 10", 2,
         "--scheduler-levels"},
        {"solve", 2, "Give either a file or --fen."},
        {"solve no-such-file", 2, "Cannot read no-such-file"},

        {"solve --fen 7k/8/8/8/PPPPPPPP/8/8/K4QQ1 --mate 1", 1,
         "Note: There are more than 9 queens and pawns of the same color."},
        {"perft --fen 'rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b - - 0 1' --depth 3", 0,
         "8902"},
        {"perft --fen 8/8/8/8/8/8/6k1/K7 --depth 2 --divide", 0, "Ka1-b2: "},
        {"solve --fen 7k/8/5K2/8/8/8/8/6R1 --mate 2 --indications '1.Kf7, ~Rg8+'", 0, "1.Kf6-f7\n"},
        {"solve --fen 7k/8/5K2/8/8/8/8/6R1 --mate 2 --indications 'Kf7,  Rg9'", 2,
         "--indications, at character 7: Invalid description of SortIndication: Rg9\n"},
        {"solve --fen 8/2B5/4K2p/1k6/6Qp/1p6/2B5/8 --mate 3 --threats", 0,
         "1.Ke6-d5 threat: 2.Bc2-d3, Qg4-c4\n"},
        {"solve --fen 8/2B5/4K2p/1k6/6Qp/1p6/2B5/8 --mate 3 --hybrid --show-settings", 0,
         "* Custom depth of search for short mate: #2\n"},
        {"solve --fen 8/2B5/4K2p/1k6/6Qp/1p6/2B5/8 --mate 3 --hybrid", 0,
         "Search for the first solution...\nBrute force search for further solutions...\n"},
        {"solve --fen 8/8/8/8/8/k1K5/8/1Q6 --mate 2", 0, "More than one solution found: 9 ("},
        {"solve --fen 7k/8/8/8/8/8/8/K5R1 --mate 2", 1, "Not found any solutions for #2 (0"},
        {"solve --fen 8/2B5/4K2p/1k6/6Qp/1p6/2B5/8 --mate 3 --hybrid --log /dev/stderr", 0,
         ": Engine has completed: 1 solution(s) found of the problem 0\n"},
        {"solve --fen 8/8/8/8/8/k1K5/8/1Q6 --mate 2 --brute-force", 0,
         "9 solutions, brute force, "},
        {"solve --fen 8/8/8/8/8/k1K5/8/1Q6 --mate 2 --brute-force --first", 2, "--brute-force"},
        {"solve --help", 0, "--indications"},
        {"solve --help", 0, "--json"},
        {"--help", 0, "perft"},
        {"perft --version", 0, "corvina-cli "},
        {"plan --fen k7/8/8/8/8/8/8/1R1K4 --mate 20 --heuristics "
         "'SH_AREKINGSNEAR,SH_ZUGZWANG(Kd1-d2)'",
         0, "Pass 1: SH_AREKINGSNEAR, SH_ZUGZWANG(Kd1-d2)\n\nPass 1b: SH_AREKINGSNEAR\n"},
        {"plan --fen k7/8/8/8/8/8/8/1R1K4 --mate 20 --heuristics none", 0,
         "No heuristics selected.\n"},
        {"plan --fen k7/8/8/8/8/8/8/1R1K4 --mate 20 --heuristics SH_KEYLINE", 2,
         "Invalid field Key line\n"},
        {"nonsense", 2, "A subcommand is required"},
    };
    for (const TCase& test : aCases) {
        const TRun run = RunCli(test.m_pArguments);
        EXPECT_EQ(run.m_nExitCode, test.m_nExitCode) << test.m_pArguments << "\n"
                                                     << run.m_strOutput;
        EXPECT_NE(run.m_strOutput.find(test.m_pText), std::string::npos)
            << test.m_pArguments << "\n"
            << run.m_strOutput;
    }
}

TEST(Cli, LinesGiveOneJsonObjectEachAndBadOnesAreNamed)
{
    const TRun run = RunCli("solve --fen - --json <<'END'\n"
                            "# a comment\n"
                            "\n"
                            "7k/8/5K2/8/8/8/8/6R1;2\r\n"
                            "rubbish;2\n"
                            "7k/8/8/8/8/8/8/K5R1 w - - 0 1 ; 1\n"
                            "7k/8/8/8/8/8/8/K5R1;x\n"
                            "END\n");
    EXPECT_EQ(run.m_nExitCode, 2);
    std::istringstream lines(run.m_strOutput);
    std::vector<nlohmann::json> vecObjects;
    std::vector<std::string> vecErrors;
    for (std::string strLine; std::getline(lines, strLine);) {
        if (strLine.starts_with("{"))
            vecObjects.push_back(nlohmann::json::parse(strLine));
        else
            vecErrors.push_back(strLine);
    }
    ASSERT_EQ(vecObjects.size(), 2u) << run.m_strOutput;
    EXPECT_EQ(vecObjects[0]["fen"], "7k/8/5K2/8/8/8/8/6R1");
    EXPECT_EQ(vecObjects[0]["mate"], 2);
    EXPECT_EQ(vecObjects[0]["result"], "solved");
    EXPECT_EQ(vecObjects[0]["solutions"].size(), 1u);
    EXPECT_GT(vecObjects[0]["positions"], 10);
    EXPECT_GE(vecObjects[0]["seconds"], 0.0);
    EXPECT_EQ(vecObjects[1]["result"], "none");
    EXPECT_EQ(vecErrors, (std::vector<std::string>{
                             "standard input:4: Improper FEN code",
                             "standard input:6: Expected a number of moves from 1 to 300: x"}));
}

TEST(Cli, OptionsAndRegressionInAFolderOfTheirOwn)
{
    const corvina::TTemporaryFolder folder;
    setenv("CORVINA_HOME", folder.m_path.c_str(), 1);
    corvina::PutBytes(folder.File("options.ini"), "; mine\n[chess]\nLogMoves=1\nExtra=1\n");
    corvina::PutBytes(folder.File("a.cp"), "1 #2 { FEN: 7k/8/5K2/8/8/8/8/6R1\n Answer: Kf6-f7 }\n"
                                           "2 #2 REQUIRES Q { FEN: 7k/8/5K2/8/8/8/8/6R1\n}\n");
    struct TCase
    {
        const char* m_pArguments;
        int m_nExitCode;
        const char* m_pText; ///< part of the output
    };
    const TCase aCases[] = {
        {"options", 0, "AutoSaveMB=256\n"},
        {"options --set schedulerlevels=0 --set PrecalcPath=/data", 0, "PrecalcPath=/data\n"},
        {"options", 0, "SchedulerLevels=0\n"},
        {"options --set SchedulerLevels=9", 2, "Invalid number of scheduler levels"},
        {"options --set MultithreadingLevels=0", 0, "value truncated/adjusted"},
        {"options --set LogMoves=2", 2, "LogMoves: a number from 0 to 1 is expected."},
        {"options --set LogMoves=0 --set LanguageId=2147483648", 2, "LanguageId: a number"},
        {"options --set Nothing=1", 2, "There is no option Nothing."},
        {"options --set LogMoves", 2, "--set needs KEY=VALUE: LogMoves"},
    };
    for (const TCase& test : aCases) {
        const TRun run = RunCli(test.m_pArguments);
        EXPECT_EQ(run.m_nExitCode, test.m_nExitCode) << test.m_pArguments << run.m_strOutput;
        EXPECT_NE(run.m_strOutput.find(test.m_pText), std::string::npos)
            << test.m_pArguments << "\n"
            << run.m_strOutput;
    }
    const std::string strFile = corvina::BytesOf(folder.File("options.ini"));
    EXPECT_TRUE(strFile.starts_with("; mine\n[chess]\nLogMoves=1\nExtra=1\n")) << strFile;

    const std::string strCommand = "regression " + folder.File("a.cp") + " --quick 2>/dev/null";
    const TRun good = RunCli(strCommand);
    EXPECT_EQ(good.m_nExitCode, 0);
    EXPECT_TRUE(good.m_strOutput.ends_with("1 ok, 0 failed, 0 unchecked, 1 skipped\n"));
    EXPECT_TRUE(good.m_strOutput.starts_with(corvina::BytesOf(folder.File("RegressionTest.log"))));
    corvina::PutBytes(folder.File("a.cp"), "1 #1 { FEN: 7k/8/5K2/8/8/8/8/6R1\n Answer: Kf6-f7 }");
    const TRun bad = RunCli(strCommand + " --log " + folder.File("other.log"));
    EXPECT_EQ(bad.m_nExitCode, 1) << bad.m_strOutput;
    EXPECT_NE(corvina::BytesOf(folder.File("other.log")).find("failed:"), std::string::npos);
    unsetenv("CORVINA_HOME");
}

TEST(Cli, SamplesSolveAndIdRoundTrips)
{
    const TRun samples = RunCli("solve " CORVINA_SAMPLES "/sample_positions.txt --json");
    std::istringstream lines(samples.m_strOutput);
    int nLines = 0;
    for (std::string strLine; std::getline(lines, strLine); ++nLines)
        EXPECT_NE(nlohmann::json::parse(strLine)["result"], "stopped") << strLine;
    EXPECT_GE(nLines, 12) << samples.m_strOutput;

    const TRun id = RunCli("id --fen 'r3k2r/8/8/8/8/8/8/R3K2R b - e3 0 1'");
    EXPECT_EQ(id.m_nExitCode, 0);
    EXPECT_NE(id.m_strOutput.find("short FEN: r3k2r/8/8/8/8/8/8/R3K2R\n"), std::string::npos);
    EXPECT_NE(id.m_strOutput.find("FEN:       r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1\n"),
              std::string::npos);
    EXPECT_NE(id.m_strOutput.find("may castle"), std::string::npos);
    EXPECT_NE(id.m_strOutput.find("en passant"), std::string::npos);
}

/// Each sample is solved as its answer says.
TEST(Cli, SampleProblems)
{
    const TRun run = RunCli("solve " CORVINA_SAMPLES "/sample_problems.cp --json 2>/dev/null");
    EXPECT_EQ(run.m_nExitCode, 0);
    std::istringstream lines(run.m_strOutput);
    int nCompared = 0, nSkipped = 0;
    for (std::string strLine; std::getline(lines, strLine);) {
        const nlohmann::json line = nlohmann::json::parse(strLine);
        EXPECT_TRUE(line.value("asAnswer", true)) << strLine;
        nCompared += line.contains("asAnswer");
        nSkipped += line["result"] == "skipped";
    }
    EXPECT_GE(nCompared, 40);
    EXPECT_EQ(nSkipped, 3);
}

TEST(Cli, PassesOfARun)
{
    const std::string strTask =
        "solve --fen 8/2N5/8/8/8/1p6/1p6/1k1K3R --mate 6 --heuristics \"SH_DONTLETKINGMOVE\" ";
    const auto line = nlohmann::json::parse(RunCli(strTask + "--json 2>/dev/null").m_strOutput);
    EXPECT_EQ(line["solutions"].dump(), "[\"Rh1-h8\"]");
    ASSERT_GT(line["passes"].size(), 2u);
    EXPECT_EQ(line["passes"][0]["pass"], "1");
    EXPECT_EQ(line["passes"][1]["pass"], "1b");
    EXPECT_EQ(line["passes"].back()["heuristics"], "none");

    const TRun cut = RunCli("solve --fen 8/8/8/4k3/8/4K3/Q7/8 --mate 3 --no-pass2 --no-relax "
                            "--heuristics \"SH_KEEPKINGNEARCORNER(1M)\"");
    EXPECT_EQ(cut.m_nExitCode, 3);
    EXPECT_NE(cut.m_strOutput.find("no solution found"), std::string::npos) << cut.m_strOutput;
    EXPECT_NE(cut.m_strOutput.find("has been skipped (on user's request)"), std::string::npos);
    EXPECT_EQ(RunCli("solve --fen 8/8/8/4k3/8/4K3/Q7/8 --mate 2 --heuristics SH_NONE").m_nExitCode,
              2);
}

TEST(Cli, ProgressOfARun)
{
    const std::string strTask = "solve --fen 2b1r1k1/r4ppp/p7/2pNP3/4Q3/q6P/2P2PP1/3RR1K1 "
                                "--mate 13 --time 2.5 --threads 2^2 ";
    std::istringstream output(RunCli(strTask + "--progress json >/dev/null").m_strOutput);
    std::vector<nlohmann::json> vecSeconds;
    for (std::string strLine; std::getline(output, strLine);) {
        const auto object = nlohmann::json::parse(strLine);
        if (!object.contains("message"))
            vecSeconds.push_back(object);
    }
    ASSERT_EQ(vecSeconds.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(vecSeconds[i]["seconds"], i + 1);
        EXPECT_GT(vecSeconds[i]["positions"], i == 0 ? 0 : vecSeconds[0]["positions"].get<int>());
        EXPECT_EQ(vecSeconds[i]["pass"].get<std::string>().front(), '1');
        EXPECT_GT(vecSeconds[i]["line"].size(), 0u);
    }
    EXPECT_EQ(RunCli(strTask + "--progress no").m_nExitCode, 2);

    // The seconds are those of both phases.
    output = std::istringstream(
        RunCli("solve --fen rnbqkbnr/ppppp2p/5p2/6p1/8/4P3/PPPP1PPP/RNBQKBNR --mate 9 --hybrid "
               "--time 2.5 --progress json >/dev/null")
            .m_strOutput);
    std::vector<int> vecSeen;
    for (std::string strLine; std::getline(output, strLine);) {
        if (const auto object = nlohmann::json::parse(strLine); object.contains("seconds")) {
            vecSeen.push_back(object["seconds"]);
            EXPECT_EQ(object["phase"], 2);
        }
    }
    EXPECT_EQ(vecSeen, (std::vector<int>{1, 2}));
}

/// What a run writes to a terminal that is its standard error, or to a pipe.
std::string ErrorOutputOf(bool bTerminal)
{
    int aEnds[2] = {};
    if (bTerminal) {
        winsize size{24, 120, 0, 0};
        EXPECT_EQ(openpty(&aEnds[0], &aEnds[1], nullptr, nullptr, &size), 0);
    }
    else {
        EXPECT_EQ(pipe(aEnds), 0);
    }
    const pid_t nProcess = fork();
    if (nProcess == 0) {
        dup2(aEnds[1], STDERR_FILENO);
        close(aEnds[0]);
        close(aEnds[1]);
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        execl(CORVINA_CLI, CORVINA_CLI, "solve", "--fen",
              "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", "--mate", "12", "--threads", "2",
              "--time", "2.3", nullptr);
        _exit(127);
    }
    close(aEnds[1]);
    std::string strOutput;
    char buffer[4096];
    for (ssize_t n; (n = read(aEnds[0], buffer, sizeof buffer)) > 0;)
        strOutput.append(buffer, static_cast<std::size_t>(n));
    close(aEnds[0]);
    waitpid(nProcess, nullptr, 0);
    return strOutput;
}

TEST(Cli, ATerminalHasALiveLine)
{
    const std::string strLive = ErrorOutputOf(true);
    const std::regex line("\rPass [12][a-z]?, (SH:[0-9a-f]+h)?(,TR:\\d+\\(\\d+\\), )?"
                          "1\\. [^\r]*, \\d+\\.\\d% \\d+ *\r");
    EXPECT_EQ(std::distance(std::sregex_iterator(strLive.begin(), strLive.end(), line), {}), 2)
        << strLive;
    EXPECT_NE(strLive.find("\r     "), std::string::npos) << "it is gone at the end";
    EXPECT_EQ(ErrorOutputOf(false).find('\r'), std::string::npos);
}

TEST(Cli, ChosenHeuristics)
{
    const std::string strTask = " --fen 8/2N5/8/8/8/1p6/1p6/1k1K3R --mate 6 ";
    const TRun shown = RunCli("analyse" + strTask);
    EXPECT_EQ(shown.m_nExitCode, 0);
    const auto analysis = nlohmann::json::parse(RunCli("analyse" + strTask + "--json").m_strOutput);
    const std::string strSet = analysis["heuristics"];
    EXPECT_NE(strSet, "none");
    EXPECT_NE(shown.m_strOutput.find("Heuristics: " + strSet + "\n"), std::string::npos);
    EXPECT_EQ(analysis["facts"]["men"], 6);
    EXPECT_FALSE(analysis["trials"].empty());
    EXPECT_TRUE(analysis["plan"].get<std::string>().starts_with("Pass 1: " + strSet));

    const auto passesOf = [&](const std::string& strOptions) {
        const TRun run = RunCli("solve" + strTask + strOptions + " --json 2>/dev/null");
        return nlohmann::json::parse(run.m_strOutput)["passes"];
    };
    EXPECT_TRUE(passesOf("")[0]["heuristics"].get<std::string>().starts_with(strSet));
    EXPECT_EQ(passesOf("--no-heuristics")[0]["heuristics"], "none");
    EXPECT_EQ(RunCli("solve" + strTask + "--no-heuristics --heuristics none").m_nExitCode, 2);
}

TEST(Cli, KnownCompositions)
{
    const corvina::TTemporaryFolder folder;
    setenv("CORVINA_HOME", folder.m_path.c_str(), 1);
    const std::string strFen = "7k/4KR2/5Pq1/8/3B4/5B2/8/8", strMark = "known composition";
    const std::string strFile = folder.File("a.cp");
    corvina::PutBytes(strFile, "1 #2 { FEN: " + strFen +
                                   "\n}\n2 #2 { FEN: 7k/8/5K2/8/8/8/8/6R1 }\n" +
                                   "3 #6 USEPREDEFINEDSETTINGS { FEN: " + strFen + "\n}\n");
    const std::string strSolve = "solve --fen " + strFen + " --mate 6 --first";
    const auto outputOf = [](const std::string& strArguments) {
        const TRun run = RunCli(strArguments);
        EXPECT_LT(run.m_nExitCode, 2) << strArguments << run.m_strOutput;
        return run.m_strOutput;
    };
    const auto marks = [&](const std::string& strArguments) {
        const std::string strOutput = outputOf(strArguments);
        int nMarks = 0;
        for (auto n = strOutput.find(strMark); n != std::string::npos;
             n = strOutput.find(strMark, n + 1))
            ++nMarks;
        return nMarks;
    };
    const auto usesSettings = [&](const std::string& strArguments) {
        return outputOf(strArguments).find("Pass 1: SH_ASSERTBLACKKINGSURROUNDED,") !=
               std::string::npos;
    };
    // The settings of this composition want the plain form where the analysis takes the strict one.
    EXPECT_FALSE(usesSettings(strSolve));
    EXPECT_TRUE(usesSettings(strSolve + " --predefined 1"));
    EXPECT_FALSE(usesSettings("solve --time 20 " + strFile + " --problem 1"));
    EXPECT_TRUE(usesSettings("solve --time 20 " + strFile + " --problem 3"));

    EXPECT_EQ(marks(strSolve + " --predefined 1"), 0);
    EXPECT_EQ(marks(strSolve + " --predefined 2"), 1);
    EXPECT_EQ(marks("check " + strFile), 0);
    EXPECT_EQ(marks("solve --time 20 --problem 1 2 --predefined 2 " + strFile), 1);
    EXPECT_NE(outputOf(strSolve + " --json --predefined 2").find("\"knownComposition\":true,"),
              std::string::npos);
    corvina::PutBytes(folder.File("options.ini"), "[chess]\nUsePredefinedIndications=2\n");
    EXPECT_EQ(marks("check " + strFile), 2) << "the option of the program";
    EXPECT_TRUE(usesSettings(strSolve));
    EXPECT_FALSE(usesSettings(strSolve + " --predefined 0"));
    unsetenv("CORVINA_HOME");
    EXPECT_EQ(RunCli(strSolve + " --predefined 3").m_nExitCode, 2);
}

TEST(Cli, ProblemFiles)
{
    const corvina::TTemporaryFolder folder;
    const auto run = [&](const std::string& strArguments) {
        const TRun result = RunCli(strArguments);
        return std::to_string(result.m_nExitCode) + ": " + result.m_strOutput;
    };
    const std::string a = folder.File("a.cp"), b = folder.File("b.cp");
    const std::string strDual = " { FEN: 5R2/4K3/8/8/5R2/8/8/6k1 A: Rf4-g4";
    corvina::PutBytes(
        a, "1 #2 { FEN: 7k/8/5K2/8/8/8/8/6R1 Answer: Kf6-f7 }\n"
           "2 #2 { FEN: 7k/8/5K2/8/8/8/8/6R1 Answer: Rg1-g2 }\n"
           "3 #2 AllSolutions" +
               strDual + "}\n4 #2" + strDual +
               ",Rf8-g8}\n"
               "5 #301 { FEN: 7k/8/5K2/8/8/8/8/6R1 }\n6 s#2 { FEN: 7k/8/5K2/8/8/8/8/6R1 }\n"
               "7 #9 { FEN: rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR A: }\n"
               "8 #2 {\n FEN: x }");
    const std::pair<std::string, std::vector<std::string>> aCases[] = {
        {"solve --time 0.1 " + a,
         {"2: ", a + ":9:7: Error parsing problem 8: Improper FEN code\n",
          "1. 7k/8/5K2/8/8/8/8/6R1  #2", "  1 solution, as in the answer, ",
          "  1 solution, but the answer is Rg1-g2, ", "  2 solutions, but the answer is Rf4-g4, ",
          "  2 solutions, as in the answer, ", "skipped: The longest stipulation is #300.",
          "skipped: Only mate problems (type=1) supported currently.", "stopped, 0 found so far, ",
          "2 as in the answer, 2 not, 1 without comparison, 2 skipped\n"}},
        {"solve --first " + a + " --problem 3 4",
         {"2: ", "1 solution (the first), as in the answer", "2 solutions, but the answer is"}},
        {"solve " + a + " --problem 99", {"2: ", " has no problem 99."}},
        {"solve --fen 7k/8/5K2/8/8/8/8/6R1 --mate 2 --problem 1", {"2: ", "needs a problem file"}},
        {"check " + a,
         {"2: ", "\n7 problems read\n", "7. rnbqkbnr", "an answer without a solution"}},
        {"convert " + a + " " + b, {"2: ", "Improper FEN code"}},
        {"convert " CORVINA_SAMPLES "/sample_problems.cp " + b, {"0: "}},
        {"merge " + b + " " + b, {"0: Appended problems: 0\n"}},
        {"subtract --dry-run " + b + " " + b, {"0: Removed problems: ", "reject them) No\n"}},
        {"check --code-page nonsense " + a, {"2: Unknown text encoding: nonsense\n"}},
        {"check " + folder.File("none.cp"), {"2: Error opening file: "}},
    };
    for (const auto& [strArguments, vecParts] : aCases) {
        const std::string strOutput = run(strArguments);
        for (const std::string& strPart : vecParts)
            EXPECT_NE(strOutput.find(strPart), std::string::npos) << strPart << "\n" << strOutput;
    }
    EXPECT_FALSE(std::filesystem::exists(b + ".BAK")) << "nothing was to be saved";
    // The written form of the samples is solved as the samples are.
    const std::string strSolved = run("solve " + b);
    EXPECT_NE(strSolved.find("48 as in the answer, 0 not, 1 without"), std::string::npos);
}

} // namespace
