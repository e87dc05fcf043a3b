#include "cli/knowncomposition.h"

#include "heuristics/predefined.h"

#include <CLI/CLI.hpp>

namespace corvina
{

void AddPredefinedOption(CLI::App& command, std::optional<int>& value)
{
    command
        .add_option("--predefined", value,
                    "what is known of some compositions beforehand: 0 leave it out, 1 use it, 2 "
                    "use it and mark them (UsePredefinedIndications of the program's options)")
        ->check(CLI::Range(0, 2));
}

void ApplyPredefinedOption(const std::optional<int>& value, TOptions& options)
{
    if (value)
        options.m_nUsePredefinedIndications = static_cast<std::uint8_t>(*value);
}

bool IsMarked(const TOptions& options, const TChessboard& board)
{
    constexpr int USE_AND_MARK = 2;
    return options.m_nUsePredefinedIndications == USE_AND_MARK && PredefinedTables().Has(board);
}

std::string MarkText(const TOptions& options, const TChessboard& board, const char* pInFront)
{
    return IsMarked(options, board) ? std::string(pInFront) + "known composition" : std::string();
}

} // namespace corvina
