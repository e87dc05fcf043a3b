#include "cli/commands.h"
#include "cli/fileoptions.h"
#include "cli/knowncomposition.h"
#include "cli/solvecollection.h"
#include "cli/solving.h"
#include "cli/task.h"
#include "platform/signals.h"
#include "problems/lexer.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <fstream>
#include <iostream>

namespace corvina
{
namespace
{

struct TSolveArguments
{
    std::string m_strFile;
    std::string m_strFen;
    int m_nMate = 0;
    std::vector<std::int32_t> m_vecProblems;
    bool m_bAll = false;
    std::optional<int> m_predefined;
    TSolveOptions m_options;
    TProblemFileSettings m_fileSettings;
};

void PrintJson(const TTask& task, const TSolveRequest& request, const TSolvedTask& outcome,
               const std::vector<TPassReport>& vecPasses, const std::vector<TVerifiedKey>& vecKeys,
               const TSolveOptions& options)
{
    nlohmann::ordered_json line;
    line["fen"] = task.m_strFen;
    line["mate"] = task.m_nMate;
    if (IsMarked(options.m_programOptions, *request.m_pChessboard))
        line["knownComposition"] = true;
    AddResultTo(line, request, outcome, vecPasses, vecKeys);
    std::printf("%s\n", line.dump().c_str());
}

void PrintText(const TTask& task, const TSolveRequest& request, const TSolvedTask& outcome,
               const std::vector<TVerifiedKey>& vecKeys, const TSolveOptions& options)
{
    std::printf("%s  #%d%s\n", task.m_strFen.c_str(), task.m_nMate,
                MarkText(options.m_programOptions, *request.m_pChessboard, "  * ").c_str());
    PrintSolutions(request, outcome);
    std::printf(", %.3f s, %llu positions\n", outcome.m_elapsed.count(),
                static_cast<unsigned long long>(request.m_nPositions));
    PrintNotes(request, outcome, options);
    PrintVerification(vecKeys);
}

/// Solves one task and prints it. Throws ChessException.
int SolveTask(const TTask& task, const TSolveOptions& options)
{
    TSolveRequest request;
    *request.m_pChessboard = BoardOfFen(task.m_strFen);
    request.SetMateIn(task.m_nMate);
    std::vector<TPassReport> vecPasses;
    const TSolvedTask outcome = SolveWithOptions(request, options, vecPasses);
    const auto vecKeys = VerifySolutions(request, outcome, options);
    if (options.m_bJson)
        PrintJson(task, request, outcome, vecPasses, vecKeys, options);
    else
        PrintText(task, request, outcome, vecKeys, options);
    std::fflush(stdout);
    return WithVerification(ExitCodeOf(outcome), vecKeys);
}

/// The exit code of a list: a wrong key outweighs bad input, bad input a stop, a stop a solution,
/// and "no solution" stands only when no position has one.
int JoinedExitCode(int a, int b)
{
    constexpr int aRank[] = {1, 0, 3, 2, 4};
    return aRank[a] >= aRank[b] ? a : b;
}

/// Solves the tasks of a text, one a line; empty lines and those that begin with "#" are passed
/// over. A bad line is reported and the rest is solved all the same.
int SolveLines(std::istream& input, const std::string& strName, const TSolveOptions& options)
{
    int nExitCode = EXIT_NO_SOLUTION;
    std::string strLine;
    for (int nLine = 1; std::getline(input, strLine) && !WasInterrupted(); ++nLine) {
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

bool IsCollection(const std::string& strFile)
{
    const std::string strUpper = UpperCased(strFile);
    return strUpper.ends_with(".CP") || strUpper.ends_with(".CPX");
}

int RunSolve(TSolveArguments& arguments)
{
    arguments.m_options.m_programOptions = ReadProgramOptions(arguments.m_fileSettings);
    ApplyPredefinedOption(arguments.m_predefined, arguments.m_options.m_programOptions);
    if (arguments.m_strFile.empty() == arguments.m_strFen.empty())
        throw ChessException("Give either a file or --fen.");
    arguments.m_options.m_bTellOutcome = arguments.m_vecProblems.size() == 1 ||
                                         (!arguments.m_strFen.empty() && arguments.m_strFen != "-");
    if (IsCollection(arguments.m_strFile))
        return SolveCollection(arguments.m_strFile, arguments.m_vecProblems, arguments.m_options,
                               arguments.m_fileSettings);
    if (!arguments.m_vecProblems.empty())
        throw ChessException("--problem needs a problem file.");
    if (!arguments.m_strFile.empty()) {
        std::ifstream input(arguments.m_strFile);
        if (!input)
            throw ChessException("Cannot read " + arguments.m_strFile);
        return SolveLines(input, arguments.m_strFile, arguments.m_options);
    }
    if (arguments.m_strFen == "-")
        return SolveLines(std::cin, "standard input", arguments.m_options);
    if (arguments.m_nMate == 0)
        throw ChessException("--fen needs --mate.");
    return SolveTask({arguments.m_strFen, arguments.m_nMate}, arguments.m_options);
}

} // namespace

void AddSolveCommand(CLI::App& app, int& nExitCode)
{
    auto pArguments = std::make_shared<TSolveArguments>();
    TSolveOptions& options = pArguments->m_options;
    CLI::App* pCommand =
        app.add_subcommand("solve", "Find the first moves of White that force mate in n moves.");
    pCommand->add_option("file", pArguments->m_strFile,
                         "a problem file (.cp), or a file of positions, one a line: \"FEN;N\"; # "
                         "begins a comment line");
    pCommand->add_option("--problem", pArguments->m_vecProblems,
                         "solve only the problems of these numbers");
    pCommand->add_option("--fen", pArguments->m_strFen,
                         "the position; - reads lines \"FEN;N\" from standard input");
    pCommand->add_option("--mate", pArguments->m_nMate, "number of moves, n of \"#n\"")
        ->check(CLI::Range(1, MAX_MATE));
    CLI::Option* pFirst =
        pCommand->add_flag("--first", options.m_bFirst, "stop at the first solution");
    pCommand->add_flag("--all", pArguments->m_bAll, "find all solutions (the default)")
        ->excludes(pFirst);
    pCommand->add_flag("--json", options.m_bJson, "print one JSON object a position");
    AddSolveOptions(*pCommand, options);
    for (const char* pName : {"--brute-force", "--hybrid"})
        pCommand->get_option(pName)->excludes(pFirst);
    AddPredefinedOption(*pCommand, pArguments->m_predefined);
    AddFileOptions(*pCommand, pArguments->m_fileSettings);
    pCommand->callback([pArguments, &nExitCode] { nExitCode = RunSolve(*pArguments); });
}

} // namespace corvina
