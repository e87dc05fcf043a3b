#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

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
        {"solve", 2, "Give either a file or --fen."},
        {"solve no-such-file", 2, "Cannot read no-such-file"},

        {"solve --fen 7k/8/8/8/PPPPPPPP/8/8/K4QQ1 --mate 1", 1,
         "Note: There are more than 9 queens and pawns of the same color."},
        {"perft --fen 'rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b - - 0 1' --depth 3", 0,
         "8902"},
        {"perft --fen 8/8/8/8/8/8/6k1/K7 --depth 2 --divide", 0, "Ka1-b2: "},
        {"solve --help", 0, "--json"},
        {"--help", 0, "perft"},
        {"perft --version", 0, "corvina-cli "},
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

} // namespace
