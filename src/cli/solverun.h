#ifndef CORVINA_CLI_SOLVERUN_H
#define CORVINA_CLI_SOLVERUN_H

#include "cli/solving.h"

namespace corvina
{

/// Runs a request that has its settings, under control of the clock and of the signals of the
/// process: an interruption ends the run, a suspension pauses it, and a user who asks is told how
/// it stands. Throws as Solve does.
TSolvedTask RunControlled(TSolveRequest& request, const TRunSettings& settings,
                          const TSolveOptions& options, TProgressOutput& output);

} // namespace corvina

#endif
