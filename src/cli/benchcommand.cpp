#include "cli/commands.h"
#include "cli/task.h"
#include "search/solve.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace corvina
{
namespace
{

/// Short tasks of many kinds: castling, promotion, en passant, a board full of figures and a bare
/// one, mates and positions without.
constexpr const char* g_aTasks[] = {
    "r1bq2r1/b4pk1/p1pp1p2/1p2pP2/1P2P1PB/3P4/1PPQ2P1/R3K2R;3",
    "4k3/8/8/8/8/8/8/4K2R;5",
    "5rk1/5ppp/8/8/8/8/5PPP/3RR1K1;3",
    "r3k2r/8/8/4P3/1b1q1B2/2N5/PPPQ1PPP/R3KB1R;3",
    "7k/P1P3pp/8/8/8/8/5PPP/6K1;4",
    "3k4/3P4/3K4/8/8/8/8/7R;4",
    "8/8/1k1K4/8/8/8/7Q/8;5",
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR;3",
    "7R/3b4/k1p1r2P/8/8/5QP1/2K5/7R;4",
    "1r3Q2/r1R5/k7/8/5K2/3p4/8/8;4",
    "8/p7/3P1p2/5k1p/2NR4/5K2/8/8;5",
    "B1Q5/1p1KPk2/2p5/4b2p/2r5/8/8/8;5",
    "7R/8/5P2/5k2/3P1N2/8/3K4/8;5",
    "3r1rk1/pp2qppp/2n1b3/3pP3/3N1B2/2P3Q1/P4PPP/3RR1K1;3",
};

int RunBench()
{
    std::uint64_t nTotal = 0;
    std::chrono::duration<double> total{};
    for (const char* pTask : g_aTasks) {
        const TTask task = ReadTaskLine(pTask);
        TSolveRequest request;
        *request.m_pChessboard = BoardOfFen(task.m_strFen);
        request.SetMateIn(task.m_nMate);
        const TSolveOutcome outcome = Solve(request, {});
        std::printf("%-64s #%d %3zu solutions %10llu positions %8.3f s\n", task.m_strFen.c_str(),
                    task.m_nMate, outcome.m_vecSolutions.size(),
                    static_cast<unsigned long long>(request.m_nPositions),
                    outcome.m_elapsed.count());
        nTotal += request.m_nPositions;
        total += outcome.m_elapsed;
    }
    std::printf("Seconds: %.3f\n", total.count());
    std::printf("Positions a second: %.0f\n", static_cast<double>(nTotal) / total.count());
    std::printf("Bench: %llu\n", static_cast<unsigned long long>(nTotal));
    return 0;
}

} // namespace

void AddBenchCommand(CLI::App& app, int& nExitCode)
{
    CLI::App* pCommand = app.add_subcommand(
        "bench", "Solve a fixed list of positions in one thread; the last line counts the "
                 "positions searched and is the signature of the search.");
    pCommand->callback([&nExitCode] { nExitCode = RunBench(); });
}

} // namespace corvina
