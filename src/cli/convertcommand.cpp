#include "cli/commands.h"
#include "cli/fileoptions.h"

#include <CLI/CLI.hpp>

namespace corvina
{
namespace
{

struct TConvertArguments
{
    std::string m_strIn;
    std::string m_strOut;
    TProblemFileSettings m_settings;
};

int RunConvert(const TConvertArguments& arguments)
{
    TProblemCollection collection;
    try {
        LoadProblemFile(arguments.m_strIn, collection, false, arguments.m_settings);
    }
    catch (const TProblemFileException& error) {
        ReportError(arguments.m_strIn, error);
        return EXIT_BAD_INPUT;
    }
    WriteProblemFile(arguments.m_strOut, collection, arguments.m_settings);
    return 0;
}

} // namespace

void AddConvertCommand(CLI::App& app, int& nExitCode)
{
    auto pArguments = std::make_shared<TConvertArguments>();
    CLI::App* pCommand = app.add_subcommand(
        "convert", "Read a problem file and write it in the form that Corvina gives to all files.");
    pCommand->add_option("in", pArguments->m_strIn, "the file to read")->required();
    pCommand
        ->add_option("out", pArguments->m_strOut,
                     "the file to write; one that is there becomes the .BAK")
        ->required();
    AddFileOptions(*pCommand, pArguments->m_settings);
    pCommand->callback([pArguments, &nExitCode] { nExitCode = RunConvert(*pArguments); });
}

} // namespace corvina
