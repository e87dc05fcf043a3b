#ifndef CORVINA_CLI_FILEOPTIONS_H
#define CORVINA_CLI_FILEOPTIONS_H

#include "app/options.h"
#include "problems/problemfile.h"

#include <string>

namespace CLI
{
class App;
}

namespace corvina
{

/// Adds the options of a command that concern problem files. The settings, which must outlive the
/// command, get no progress lines; warnings go to standard error.
void AddFileOptions(CLI::App& command, TProblemFileSettings& settings);

/// Reads the program's options, with warnings on standard error, and brings them to the settings of
/// problem files.
TOptions ReadProgramOptions(TProblemFileSettings& settings);

/// Prints where and what is wrong in a problem file, as one line on standard error.
void ReportError(const std::string& strPath, const TProblemFileException& error);

} // namespace corvina

#endif
