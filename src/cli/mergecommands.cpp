#include "cli/commands.h"
#include "cli/fileoptions.h"
#include "problems/merge.h"

#include <CLI/CLI.hpp>

namespace corvina
{
namespace
{

struct TMergeArguments
{
    std::string m_strFile;
    std::string m_strOther;
    bool m_bDryRun = false;
    TProblemFileSettings m_settings;
};

/// Either of the two commands on a document and the name of another file.
using TMerge = bool (*)(TProblemDocument& document, const std::string& strPath,
                        const TDocumentHost& host, const TProblemFileSettings& settings);

int RunMerge(TMerge merge, const TMergeArguments& arguments)
{
    TDocumentHost host;
    host.m_question = [&](const std::string&, const std::string& strText) {
        std::printf("%s %s\n", strText.c_str(), arguments.m_bDryRun ? "No" : "Yes");
        return !arguments.m_bDryRun;
    };
    host.m_inform = [](const std::string&, const std::string& strText) {
        std::printf("%s\n", strText.c_str());
    };
    TProblemDocument document;
    document.m_strPath = arguments.m_strFile;
    // The file that is being read when an error comes up.
    const std::string* pPath = &arguments.m_strFile;
    try {
        LoadProblemFile(*pPath, document.m_collection, false, arguments.m_settings);
        pPath = &arguments.m_strOther;
        merge(document, *pPath, host, arguments.m_settings);
    }
    catch (const TProblemFileException& error) {
        ReportError(*pPath, error);
        return EXIT_BAD_INPUT;
    }
    return 0;
}

void AddCommand(CLI::App& app, int& nExitCode, const char* pName, const char* pDescription,
                TMerge merge)
{
    auto pArguments = std::make_shared<TMergeArguments>();
    CLI::App* pCommand = app.add_subcommand(pName, pDescription);
    pCommand->add_option("file", pArguments->m_strFile, "the problem file to change")->required();
    pCommand->add_option("other", pArguments->m_strOther, "the other problem file, which stays")
        ->required();
    pCommand->add_flag("--dry-run", pArguments->m_bDryRun, "report, but change nothing");
    AddFileOptions(*pCommand, pArguments->m_settings);
    pCommand->callback(
        [pArguments, merge, &nExitCode] { nExitCode = RunMerge(merge, *pArguments); });
}

} // namespace

void AddMergeCommands(CLI::App& app, int& nExitCode)
{
    AddCommand(app, nExitCode, "merge",
               "Append the problems of another file whose positions aren't in the file yet.",
               AppendProblemsFromFile);
    AddCommand(app, nExitCode, "subtract",
               "Remove the problems whose positions occur in another file.", RemoveProblemsOfFile);
}

} // namespace corvina
