#include "chess/exception.h"
#include "cli/commands.h"
#include "platform/signals.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

namespace
{

/// CLI11's own exit codes for a wrong call, brought to ours; a request for help is no error.
int ExitOnParse(const CLI::App& app, const CLI::ParseError& error)
{
    return app.exit(error) == 0 ? 0 : corvina::EXIT_BAD_INPUT;
}

} // namespace

int main(int argc, char** argv)
{
    const corvina::TSignalThread signals;
    CLI::App app("Corvina: finds every first move of White that forces mate in n moves.",
                 "corvina-cli");
    app.set_version_flag("--version", "corvina-cli " CORVINA_VERSION);
    app.require_subcommand(1);
    app.footer("Exit codes: 0 solved (or done), 1 no solution, 2 bad input, 3 stopped before an "
               "answer, 4 a key that --verify has refuted.");
    int nExitCode = 0;
    corvina::AddSolveCommand(app, nExitCode);
    corvina::AddDefendCommand(app, nExitCode);
    corvina::AddPerftCommand(app, nExitCode);
    corvina::AddAnalyseCommand(app, nExitCode);
    corvina::AddPlanCommand(app, nExitCode);
    corvina::AddIdCommand(app, nExitCode);
    corvina::AddBenchCommand(app, nExitCode);
    corvina::AddCheckCommand(app, nExitCode);
    corvina::AddConvertCommand(app, nExitCode);
    corvina::AddMergeCommands(app, nExitCode);
    corvina::AddOptionsCommand(app, nExitCode);
    corvina::AddRegressionCommand(app, nExitCode);
    for (CLI::App* pCommand : app.get_subcommands({}))
        pCommand->set_version_flag("--version", "corvina-cli " CORVINA_VERSION);
    try {
        app.parse(argc, argv);
    }
    catch (const CLI::ParseError& error) {
        return ExitOnParse(app, error);
    }
    catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return corvina::EXIT_BAD_INPUT;
    }
    return nExitCode;
}
