#include "chess/fen.h"
#include "chess/notation.h"
#include "cli/commands.h"
#include "cli/task.h"
#include "search/solve.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <optional>

namespace corvina
{
namespace
{

struct TSolveOptions
{
    std::string m_strFile;
    std::string m_strFen;
    int m_nMate = 0;
    bool m_bFirst = false;
    bool m_bAll = false;
    std::optional<double> m_dSeconds;
    bool m_bJson = false;
    bool m_bPlain = false;
    bool m_bNoRegister = false;
    int m_nThreads = 1;
};

std::vector<std::string> SolutionTexts(const TSolveRequest& request, const TSolveOutcome& outcome)
{
    std::vector<std::string> vecTexts;
    for (const TMove& move : outcome.m_vecSolutions)
        vecTexts.push_back(PrintMove(move, *request.m_pChessboard));
    return vecTexts;
}

const char* ResultWord(const TSolveOutcome& outcome)
{
    if (outcome.m_bStopped)
        return "stopped";
    return outcome.m_nResult == 1 ? "solved" : "none";
}

void PrintJson(const TTask& task, const TSolveRequest& request, const TSolveOutcome& outcome)
{
    nlohmann::ordered_json line;
    line["fen"] = task.m_strFen;
    line["mate"] = task.m_nMate;
    line["result"] = ResultWord(outcome);
    line["solutions"] = SolutionTexts(request, outcome);
    line["seconds"] = outcome.m_elapsed.count();
    line["positions"] = request.m_nPositions;
    std::printf("%s\n", line.dump().c_str());
}

void PrintText(const TTask& task, const TSolveRequest& request, const TSolveOutcome& outcome)
{
    std::printf("%s  #%d\n", task.m_strFen.c_str(), task.m_nMate);
    for (const std::string& strMove : SolutionTexts(request, outcome))
        std::printf("  1.%s\n", strMove.c_str());
    const std::size_t nSolutions = outcome.m_vecSolutions.size();
    if (outcome.m_bStopped)
        std::printf("  stopped, %zu found so far", nSolutions);
    else if (nSolutions == 0)
        std::printf("  no solution");
    else
        std::printf("  %zu solution%s%s", nSolutions, nSolutions == 1 ? "" : "s",
                    request.m_nSearchMode & SEARCH_FIRST ? " (the first)" : "");
    std::printf(", %.3f s, %llu positions\n", outcome.m_elapsed.count(),
                static_cast<unsigned long long>(request.m_nPositions));
}

/// Solves one task and prints it. Throws ChessException.
int SolveTask(const TTask& task, const TSolveOptions& options)
{
    TSolveRequest request;
    *request.m_pChessboard = BoardOfFen(task.m_strFen);
    request.SetMateIn(task.m_nMate);
    // The note must not mix with a result that a program reads.
    request.m_pChessboard->CheckFigureLimits(nullptr, options.m_bJson ? stderr : stdout);
    TRunSettings settings;
    settings.m_bStopAtFirstSolution = options.m_bFirst;
    settings.m_nThreads = options.m_nThreads;
    request.m_bPlain = options.m_bPlain;
    request.m_bUseRegister = !options.m_bNoRegister;

    const auto pWatchdog = StopAfter(request, options.m_dSeconds);
    const TSolveOutcome outcome = Solve(request, settings);
    (options.m_bJson ? PrintJson : PrintText)(task, request, outcome);
    std::fflush(stdout);
    if (outcome.m_bStopped)
        return EXIT_STOPPED;
    return outcome.m_nResult == 1 ? EXIT_SOLVED : EXIT_NO_SOLUTION;
}

/// The exit code of a list: bad input outweighs a stop, a stop a solution, and "no solution" stands
/// only when no position has one.
int JoinedExitCode(int a, int b)
{
    constexpr int aRank[] = {1, 0, 3, 2};
    return aRank[a] >= aRank[b] ? a : b;
}

/// Solves the tasks of a text, one a line; empty lines and those that begin with "#" are passed
/// over. A bad line is reported and the rest is solved all the same.
int SolveLines(std::istream& input, const std::string& strName, const TSolveOptions& options)
{
    int nExitCode = EXIT_NO_SOLUTION;
    std::string strLine;
    for (int nLine = 1; std::getline(input, strLine) && !TWatchdog::WasInterrupted(); ++nLine) {
        const auto first = strLine.find_first_not_of(" \t\r");
        if (first == std::string::npos || strLine[first] == '#')
            continue;
        try {
            nExitCode = JoinedExitCode(nExitCode, SolveTask(ReadTaskLine(strLine), options));
        }
        catch (const ChessException& error) {
            std::fprintf(stderr, "%s:%d: %s\n", strName.c_str(), nLine, error.what());
            nExitCode = EXIT_BAD_INPUT;
        }
    }
    return nExitCode;
}

int RunSolve(const TSolveOptions& options)
{
    if (options.m_strFile.empty() == options.m_strFen.empty())
        throw ChessException("Give either a file or --fen.");
    if (!options.m_strFile.empty()) {
        std::ifstream input(options.m_strFile);
        if (!input)
            throw ChessException("Cannot read " + options.m_strFile);
        return SolveLines(input, options.m_strFile, options);
    }
    if (options.m_strFen == "-")
        return SolveLines(std::cin, "standard input", options);
    if (options.m_nMate == 0)
        throw ChessException("--fen needs --mate.");
    return SolveTask({options.m_strFen, options.m_nMate}, options);
}

} // namespace

void AddSolveCommand(CLI::App& app, int& nExitCode)
{
    auto pOptions = std::make_shared<TSolveOptions>();
    CLI::App* pCommand =
        app.add_subcommand("solve", "Find the first moves of White that force mate in n moves.");
    pCommand->add_option("file", pOptions->m_strFile,
                         "a file of positions, one a line: \"FEN;N\"; # begins a comment line");
    pCommand->add_option("--fen", pOptions->m_strFen,
                         "the position; - reads lines \"FEN;N\" from standard input");
    pCommand->add_option("--mate", pOptions->m_nMate, "number of moves, n of \"#n\"")
        ->check(CLI::Range(1, MAX_MATE));
    CLI::Option* pFirst =
        pCommand->add_flag("--first", pOptions->m_bFirst, "stop at the first solution");
    pCommand->add_flag("--all", pOptions->m_bAll, "find all solutions (the default)")
        ->excludes(pFirst);
    pCommand->add_option("--time", pOptions->m_dSeconds, "give up after so many seconds a position")
        ->check(CLI::Range(0.0, 1e9));
    pCommand->add_flag("--json", pOptions->m_bJson, "print one JSON object a position");
    pCommand
        ->add_option("--threads", pOptions->m_nThreads, "threads that share the first moves (1)")
        ->check(CLI::Range(1, 64));
    pCommand->add_flag("--no-register", pOptions->m_bNoRegister,
                       "search without memory of positions, for comparison");
    pCommand->add_flag("--plain", pOptions->m_bPlain,
                       "search by the plain recursion, for comparison");
    pCommand->callback([pOptions, &nExitCode] { nExitCode = RunSolve(*pOptions); });
}

} // namespace corvina
