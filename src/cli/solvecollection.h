#ifndef CORVINA_CLI_SOLVECOLLECTION_H
#define CORVINA_CLI_SOLVECOLLECTION_H

#include "cli/solving.h"
#include "problems/problemfile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace corvina
{

/// Solves the problems of a file with the options stored in them, those of the numbers given or
/// all, prints them and compares them with their answers. What can't be solved is reported and
/// passed over. Returns the exit code: 0 when each problem has a solution, or the one that its
/// answer gives. Throws ChessException.
int SolveCollection(const std::string& strPath, const std::vector<std::int32_t>& vecNumbers,
                    const TSolveOptions& options, const TProblemFileSettings& settings);

} // namespace corvina

#endif
