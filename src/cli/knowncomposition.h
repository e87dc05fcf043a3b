#ifndef CORVINA_CLI_KNOWNCOMPOSITION_H
#define CORVINA_CLI_KNOWNCOMPOSITION_H

#include "app/options.h"
#include "chess/chessboard.h"

#include <optional>

namespace CLI
{
class App;
}

namespace corvina
{

/// Adds --predefined, which stands in the place of the program's option of that sense.
void AddPredefinedOption(CLI::App& command, std::optional<int>& value);

/// Brings a value that was given to the program's options.
void ApplyPredefinedOption(const std::optional<int>& value, TOptions& options);

/// The options ask for a mark, and the position is that of a composition that Corvina knows.
bool IsMarked(const TOptions& options, const TChessboard& board);

/// What the mark is in a text, with the given words in front of it; empty without one.
std::string MarkText(const TOptions& options, const TChessboard& board, const char* pInFront);

} // namespace corvina

#endif
