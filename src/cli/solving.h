#ifndef CORVINA_CLI_SOLVING_H
#define CORVINA_CLI_SOLVING_H

#include "app/options.h"

#include <optional>
#include <string>
#include <vector>

namespace corvina
{

/// What the user wants of each run.
struct TSolveOptions
{
    bool m_bFirst = false;            ///< the first solution will do
    std::optional<double> m_dSeconds; ///< for a problem
    bool m_bJson = false;
    bool m_bPlain = false;
    bool m_bNoRegister = false;
    int m_nThreads = 0; ///< 0: what the problem asks for, or one
    TOptions m_programOptions;
};

/// Solves a request; an interruption by the user stops it as the time does. Throws ChessException
/// as Solve does.
TSolveOutcome SolveWithOptions(TSolveRequest& request, const TSolveOptions& options);

/// Moves of White in the position of a problem, in full notation.
std::vector<std::string> MoveTexts(const TProblem& problem, const std::vector<TMove>& vecMoves);

/// "solved", "none" or "stopped".
const char* ResultWord(const TSolveOutcome& outcome);

/// Prints a line for each solution and the start of a line that counts them.
void PrintSolutions(const TSolveRequest& request, const TSolveOutcome& outcome);

} // namespace corvina

#endif
