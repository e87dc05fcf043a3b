#include "chess/fen.h"
#include "cli/commands.h"
#include "cli/fileoptions.h"
#include "cli/knowncomposition.h"

#include <CLI/CLI.hpp>

namespace corvina
{
namespace
{

struct TCheckArguments
{
    std::string m_strFile;
    std::optional<int> m_predefined;
    TProblemFileSettings m_settings;
};

std::string Counted(std::size_t nCount, const std::string& strWhat)
{
    if (nCount == 0)
        return {};
    return ", " + std::to_string(nCount) + " " + strWhat + (nCount == 1 ? "" : "s");
}

std::string StipulationText(const TProblem& problem)
{
    if (problem.m_nProblemType == PROBLEM_LINE)
        return "no stipulation" + Counted(problem.GetPlayedLine().size(), "played half-move");
    return (problem.m_nProblemType == PROBLEM_SELFMATE ? "s#" : "#") +
           std::to_string(problem.GetStipulation());
}

/// "12. 8/8/8/4k3/8/8/8/Q3K3, #3, 1 solution in the answer, 2 tags".
void PrintProblem(const TProblem& problem, const TOptions& options)
{
    std::size_t nHints = 0;
    for (const auto& [nMoveNumber, vecItems] : problem.m_sortIndications.m_mapItems)
        nHints += vecItems.size();
    std::string strLine = std::to_string(problem.m_nProblemNumber) + ". " +
                          WriteFen(*problem.m_pChessboard, true) + ", " + StipulationText(problem);
    if (problem.m_nRunOptions & RUN_ANSWERKNOWN)
        strLine += problem.m_vecExpectedSolutions.empty()
                       ? ", an answer without a solution"
                       : Counted(problem.m_vecExpectedSolutions.size(), "answer");
    strLine += Counted(problem.m_setTags.size(), "tag") +
               Counted(problem.m_mapVariants.size(), "variant") +
               Counted(nHints, "sort indication") + MarkText(options, *problem.m_pChessboard, ", ");
    std::printf("%s\n", strLine.c_str());
}

int RunCheck(TCheckArguments& arguments)
{
    TOptions options = ReadProgramOptions(arguments.m_settings);
    ApplyPredefinedOption(arguments.m_predefined, options);
    TProblemCollection collection;
    int nExitCode = 0;
    try {
        LoadProblemFile(arguments.m_strFile, collection, false, arguments.m_settings);
    }
    catch (const TProblemFileException& error) {
        ReportError(arguments.m_strFile, error);
        nExitCode = EXIT_BAD_INPUT;
    }
    for (const auto& [nNumber, pProblem] : collection.m_mapProblems)
        PrintProblem(*pProblem, options);
    std::printf("%zu problem%s read\n", collection.m_mapProblems.size(),
                collection.m_mapProblems.size() == 1 ? "" : "s");
    return nExitCode;
}

} // namespace

void AddCheckCommand(CLI::App& app, int& nExitCode)
{
    auto pArguments = std::make_shared<TCheckArguments>();
    CLI::App* pCommand = app.add_subcommand(
        "check",
        "Read a problem file and list its problems; what is wrong is told with its place.");
    pCommand->add_option("file", pArguments->m_strFile, "the problem file")->required();
    AddPredefinedOption(*pCommand, pArguments->m_predefined);
    AddFileOptions(*pCommand, pArguments->m_settings);
    pCommand->callback([pArguments, &nExitCode] { nExitCode = RunCheck(*pArguments); });
}

} // namespace corvina
