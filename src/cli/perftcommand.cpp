#include "chess/linecontext.h"
#include "chess/notation.h"
#include "chess/perft.h"
#include "cli/commands.h"
#include "cli/task.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdio>

namespace corvina
{
namespace
{

struct TPerftOptions
{
    std::string m_strFen;
    int m_nDepth = 0;
    bool m_bDivide = false;
};

/// The second field of a FEN; White without one.
bool IsWhiteToMoveIn(const std::string& strFen)
{
    const auto blank = strFen.find(' ');
    const auto field = blank == std::string::npos ? blank : strFen.find_first_not_of(' ', blank);
    return field == std::string::npos || strFen[field] != 'b';
}

int RunPerft(const TPerftOptions& options)
{
    TChessboard board = BoardOfFen(options.m_strFen);
    const bool bWhite = IsWhiteToMoveIn(options.m_strFen);
    // The parity of the half-moves left tells the side to move.
    const int nHalfMoves = options.m_nDepth + ((options.m_nDepth % 2 == 1) != bWhite);
    board.CheckStartPosition(static_cast<std::uint16_t>(nHalfMoves), true);
    TLineContext context(nHalfMoves);
    context.m_pRootBoard = &board;
    board.m_pThread = &context;

    const auto start = std::chrono::steady_clock::now();
    std::uint64_t nLines = 0;
    if (options.m_bDivide) {
        for (const auto& [move, nMoveLines] : PerftDivide(board, options.m_nDepth)) {
            std::printf("%s: %llu\n", PrintMove(move, board).c_str(),
                        static_cast<unsigned long long>(nMoveLines));
            nLines += nMoveLines;
        }
    }
    else {
        nLines = Perft(board, options.m_nDepth);
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    std::printf("%llu lines of %d half-moves, %.3f s\n", static_cast<unsigned long long>(nLines),
                options.m_nDepth, elapsed.count());
    return 0;
}

} // namespace

void AddPerftCommand(CLI::App& app, int& nExitCode)
{
    auto pOptions = std::make_shared<TPerftOptions>();
    CLI::App* pCommand = app.add_subcommand("perft", "Count the lines of legal moves of a length.");
    pCommand->add_option("--fen", pOptions->m_strFen, "the position, with its side to move")
        ->required();
    pCommand->add_option("--depth", pOptions->m_nDepth, "length of the lines in half-moves")
        ->required()
        ->check(CLI::Range(1, 20));
    pCommand->add_flag("--divide", pOptions->m_bDivide, "count for each first move");
    pCommand->callback([pOptions, &nExitCode] { nExitCode = RunPerft(*pOptions); });
}

} // namespace corvina
