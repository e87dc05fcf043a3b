#include "chess/notation.h"
#include "cli/commands.h"
#include "cli/task.h"
#include "search/defence.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace corvina
{
namespace
{

struct TDefendOptions
{
    std::string m_strFen;
    int m_nMate = 0;
    bool m_bThorough = false;
    std::optional<double> m_dSeconds;
};

void PrintRanking(const TChessboard& board, const TDefenceOutcome& outcome)
{
    for (const TRankedDefence& defence : outcome.m_vecRanked) {
        std::printf("  %-8s", PrintMove(defence.m_move, board).c_str());
        if (defence.m_bRefutes)
            std::printf(" refutes");
        if (defence.m_nMatedIn)
            std::printf(" mate in %d", defence.m_nMatedIn / 2 + 1);
        std::printf("\n");
    }
}

int RunDefend(const TDefendOptions& options)
{
    TSolveRequest request;
    *request.m_pChessboard = BoardOfFen(options.m_strFen);
    // Black's reply comes on top of White's moves.
    request.m_nRequestedMoves = static_cast<std::uint16_t>(2 * options.m_nMate);
    const TTimeLimit limit(request, options.m_dSeconds);
    const TDefenceOutcome outcome = FindBestDefence(request, options.m_bThorough);
    std::printf("%s\n", outcome.m_strText.c_str());
    if (!outcome.m_bSettledAtOnce)
        PrintRanking(*request.m_pChessboard, outcome);
    if (outcome.m_bRepetition)
        std::printf("%s: %s\n", REPETITION_TITLE, REPETITION_NOTE);
    return outcome.m_bStopped ? EXIT_STOPPED : 0;
}

} // namespace

void AddDefendCommand(CLI::App& app, int& nExitCode)
{
    auto pOptions = std::make_shared<TDefendOptions>();
    CLI::App* pCommand = app.add_subcommand(
        "defend", "Find Black's best defence, Black being to move, against mate in n more moves.");
    pCommand->add_option("--fen", pOptions->m_strFen, "the position, whichever side it names")
        ->required();
    pCommand->add_option("--mate", pOptions->m_nMate, "number of moves that White has left")
        ->required()
        ->check(CLI::Range(1, MAX_MATE - 1));
    pCommand->add_flag("--thorough", pOptions->m_bThorough,
                       "analyse a single candidate too, and rank one ply deeper");
    pCommand->add_option("--time", pOptions->m_dSeconds, "give up after so many seconds")
        ->check(CLI::Range(0.0, 1e9));
    pCommand->callback([pOptions, &nExitCode] { nExitCode = RunDefend(*pOptions); });
}

} // namespace corvina
