#ifndef CORVINA_CLI_COMMANDS_H
#define CORVINA_CLI_COMMANDS_H

namespace CLI
{
class App;
}

/// The subcommands of corvina-cli. Each function adds one to the program, with its options; when
/// the user has chosen it, it runs and stores the exit code.

namespace corvina
{

constexpr int EXIT_SOLVED = 0;
constexpr int EXIT_NO_SOLUTION = 1;
constexpr int EXIT_BAD_INPUT = 2;
constexpr int EXIT_STOPPED = 3;
constexpr int EXIT_WRONG_KEY = 4; ///< of --verify

void AddAnalyseCommand(CLI::App& app, int& nExitCode);
void AddSolveCommand(CLI::App& app, int& nExitCode);
void AddDefendCommand(CLI::App& app, int& nExitCode);
void AddPerftCommand(CLI::App& app, int& nExitCode);
void AddPlanCommand(CLI::App& app, int& nExitCode);
void AddIdCommand(CLI::App& app, int& nExitCode);
void AddBenchCommand(CLI::App& app, int& nExitCode);
void AddCheckCommand(CLI::App& app, int& nExitCode);
void AddConvertCommand(CLI::App& app, int& nExitCode);
void AddMergeCommands(CLI::App& app, int& nExitCode);
void AddOptionsCommand(CLI::App& app, int& nExitCode);
void AddRegressionCommand(CLI::App& app, int& nExitCode);

} // namespace corvina

#endif
