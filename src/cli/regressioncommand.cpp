#include "app/regression.h"
#include "cli/commands.h"
#include "cli/fileoptions.h"
#include "cli/knowncomposition.h"
#include "platform/appfolder.h"
#include "platform/signals.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace corvina
{
namespace
{

struct TRegressionArguments
{
    std::string m_strFile;
    std::string m_strLog;
    std::optional<int> m_predefined;
    TProblemFileSettings m_fileSettings;
    TRegressionSettings m_settings;
};

int RunRegression(TRegressionArguments& arguments)
{
    TRegressionSettings& settings = arguments.m_settings;
    settings.m_options = ReadProgramOptions(arguments.m_fileSettings);
    ApplyPredefinedOption(arguments.m_predefined, settings.m_options);
    settings.m_logPath = arguments.m_strLog.empty() ? GetAppFolder() / "RegressionTest.log"
                                                    : std::filesystem::path(arguments.m_strLog);
    settings.m_onLine = [](const std::string& strText) {
        std::fputs(strText.c_str(), stdout);
        std::fflush(stdout);
    };
    settings.m_onMessage = [](const std::string& strText) {
        std::fprintf(stderr, "%s\n", strText.c_str());
    };
    settings.m_onError = [](const TProblem& problem, const std::string& strReason) {
        std::fprintf(stderr, "Problem %d: %s\n", problem.m_nProblemNumber, strReason.c_str());
    };
    TProblemCollection collection;
    bool bWholeFile = true;
    try {
        LoadProblemFile(arguments.m_strFile, collection, false, arguments.m_fileSettings);
    }
    catch (const TProblemFileException& error) {
        // What comes in front of the fault is tested all the same.
        ReportError(arguments.m_strFile, error);
        bWholeFile = false;
    }
    const TRegressionCounts counts = RunRegressionTest(collection, settings);
    std::printf("%d ok, %d failed, %d unchecked, %d skipped\n", counts.m_nOk, counts.m_nFailed,
                counts.m_nUnchecked, counts.m_nSkipped);
    if (!bWholeFile)
        return EXIT_BAD_INPUT;
    if (counts.m_nFailed != 0)
        return EXIT_NO_SOLUTION;
    return WasInterrupted() ? EXIT_STOPPED : 0;
}

} // namespace

void AddRegressionCommand(CLI::App& app, int& nExitCode)
{
    auto pArguments = std::make_shared<TRegressionArguments>();
    TRegressionSettings& settings = pArguments->m_settings;
    CLI::App* pCommand = app.add_subcommand(
        "regression", "Solve all problems of a file, compare with their answers and keep a log.");
    pCommand->add_option("file", pArguments->m_strFile, "the problem file (.cp)")->required();
    pCommand->add_flag("--quick", settings.m_bQuick, "64 seconds for a problem at most");
    pCommand->add_flag("--mirror", settings.m_bMirrors,
                       "solve the mirror images too, except where castling is possible");
    pCommand->add_option("--log", pArguments->m_strLog,
                         "the log (RegressionTest.log in the program's folder)");
    pCommand
        ->add_option("--threads", settings.m_nThreads,
                     "threads for problems that don't ask for a number (1)")
        ->check(CLI::Range(1, 64));
    AddPredefinedOption(*pCommand, pArguments->m_predefined);
    AddFileOptions(*pCommand, pArguments->m_fileSettings);
    pCommand->callback([pArguments, &nExitCode] { nExitCode = RunRegression(*pArguments); });
}

} // namespace corvina
