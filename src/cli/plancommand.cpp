#include "cli/commands.h"
#include "cli/task.h"
#include "heuristics/relaxplan.h"
#include "heuristics/setreader.h"
#include "search/rootsetup.h"
#include "search/solverequest.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace corvina
{
namespace
{

struct TPlanArguments
{
    TTask m_task;
    std::string m_strHeuristics;
    bool m_bNoRelax = false;
};

int RunPlan(const TPlanArguments& arguments)
{
    TSolveRequest request;
    TChessboard& root = *request.m_pChessboard;
    root = BoardOfFen(arguments.m_task.m_strFen);
    request.SetMateIn(arguments.m_task.m_nMate);
    root.m_pRequest = &request;
    root.CheckStartPosition(request.m_nRequestedMoves, true);

    THeuristicSet& set = request.m_heuristicSet;
    ReadHeuristicsText(arguments.m_strHeuristics, set, &root);
    set.m_params.m_bLetRelax = !arguments.m_bNoRelax;
    TakeUpHeuristics(root);
    TThreadContext context(request.m_nRequestedMoves);
    PutOnThread(root, context);
    std::printf("%s\n", ComposeRelaxationPlan(root).c_str());
    return 0;
}

} // namespace

void AddPlanCommand(CLI::App& app, int& nExitCode)
{
    auto pArguments = std::make_shared<TPlanArguments>();
    CLI::App* pCommand =
        app.add_subcommand("plan", "Show the passes of a run that begins with given heuristics.");
    pCommand->add_option("--fen", pArguments->m_task.m_strFen, "the position")->required();
    pCommand->add_option("--mate", pArguments->m_task.m_nMate, "number of moves, n of \"#n\"")
        ->required()
        ->check(CLI::Range(1, MAX_MATE));
    pCommand
        ->add_option(
            "--heuristics", pArguments->m_strHeuristics,
            "the set, as in \"SH_KEEPKINGONTHEEDGE(incl.corner), SH_AREKINGSNEAR\", or none")
        ->required();
    pCommand->add_flag("--no-relax", pArguments->m_bNoRelax,
                       "as if the relaxation of heuristics were switched off");
    pCommand->callback([pArguments, &nExitCode] { nExitCode = RunPlan(*pArguments); });
}

} // namespace corvina
