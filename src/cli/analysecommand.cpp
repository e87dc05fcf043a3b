#include "cli/commands.h"
#include "cli/task.h"
#include "heuristics/positionanalysis.h"
#include "heuristics/relaxplan.h"
#include "heuristics/settext.h"
#include "search/hooks.h"
#include "search/rootsetup.h"
#include "search/solverequest.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <bit>
#include <cstdio>

namespace corvina
{
namespace
{

struct TAnalyseArguments
{
    TTask m_task;
    bool m_bSafe = false;
    bool m_bJson = false;
};

struct TFlagName
{
    std::uint16_t m_nFlag;
    const char* m_pName;
};

constexpr TFlagName g_aFlagNames[] = {
    {TChessboard::POSITION_FEWFIGURES, "few figures"},
    {TChessboard::POSITION_FREEKING, "free king"},
    {TChessboard::POSITION_PAWNPLAY, "pawn play"},
    {TChessboard::POSITION_OPPOSITEBISHOPS, "opposite bishops"},
    {TChessboard::POSITION_MANYFIGURES, "many figures"},
    {TChessboard::POSITION_LONEBISHOP, "lone bishop"},
    {TChessboard::POSITION_SMALLENDING, "small ending"},
    {TChessboard::POSITION_BAREBLACKKING, "bare Black king"},
    {TChessboard::POSITION_GLOBALREGISTER, "endgame tables"},
    {TChessboard::POSITION_WRONGBISHOP, "wrong bishop"},
    {TChessboard::POSITION_BLACKBLOCKED, "Black blocked"},
};

std::vector<std::string> FlagTexts(std::uint16_t nFlags)
{
    std::vector<std::string> vecNames;
    for (const TFlagName& flag : g_aFlagNames) {
        if (nFlags & flag.m_nFlag)
            vecNames.push_back(flag.m_pName);
    }
    return vecNames;
}

/// Heuristics that suit the position and have no test in the search.
std::vector<std::string> LeftOut(const TPositionAnalysis& analysis)
{
    std::vector<std::string> vecNames;
    for (std::uint32_t nRest = analysis.m_nWished & ~IMPLEMENTED_HEURISTICS; nRest;
         nRest &= nRest - 1)
        vecNames.push_back(GetHeuristicName(nRest & (0 - nRest)));
    return vecNames;
}

nlohmann::ordered_json FactsOf(const TPositionFacts& f)
{
    return {{"men", f.m_nMen},
            {"White's material", f.m_nWhiteMaterial},
            {"Black's material", f.m_nBlackMaterial},
            {"White's figures", f.m_nWhiteFigures},
            {"White's queens and rooks", f.m_nWhiteMajors},
            {"Black's figures", f.m_nBlackFigures},
            {"Black's queens and rooks", f.m_nBlackMajors},
            {"Black figures that can move", f.m_nMovableFigures},
            {"Black's moves", f.m_mobility.m_nMoves},
            {"free squares of the Black king", f.m_nFreeSquares},
            {"White figures that guard them", f.m_nGuards},
            {"distance of the kings", f.m_nKingDistance},
            {"White queen unsafe", f.m_bUnsafeQueen},
            {"White pawn promotes", f.m_bPawnPromotes},
            {"Black hopes for stalemate", f.m_bStallEscape}};
}

nlohmann::ordered_json TrialsOf(const TPositionAnalysis& analysis)
{
    auto trials = nlohmann::ordered_json::array();
    for (const TTrial& trial : analysis.m_vecTrials)
        trials.push_back({{"heuristics", trial.m_strSet},
                          {"depth", trial.m_nDepth},
                          {"passes", trial.m_bPasses},
                          {"positions", trial.m_nPositions}});
    return trials;
}

std::string Joined(const std::vector<std::string>& vecTexts)
{
    std::string strAll;
    for (const std::string& strText : vecTexts)
        strAll += (strAll.empty() ? "" : ", ") + strText;
    return strAll.empty() ? "none" : strAll;
}

void PrintText(const TPositionAnalysis& analysis, const std::string& strSet, bool bSafe,
               const std::string& strPlan)
{
    std::printf("Heuristics: %s\n", strSet.c_str());
    std::printf("Left out: %s\n", Joined(LeftOut(analysis)).c_str());
    std::printf("Position: %s\n", Joined(FlagTexts(analysis.m_nPositionFlags)).c_str());
    std::printf("Mode: %s%s\n", bSafe ? "safe" : "quick", analysis.m_bSafeMode ? " (forced)" : "");
    std::printf("Facts:\n");
    const auto facts = FactsOf(analysis.m_facts);
    for (const auto& [strName, value] : facts.items())
        std::printf("  %s: %s\n", strName.c_str(), value.dump().c_str());
    std::printf("Trials:\n");
    for (const TTrial& trial : analysis.m_vecTrials)
        std::printf("  %s, %d half-moves: %s, %llu positions\n", trial.m_strSet.c_str(),
                    trial.m_nDepth, trial.m_bPasses ? "passes" : "fails",
                    static_cast<unsigned long long>(trial.m_nPositions));
    std::printf("Time: %.3f s, %llu positions\n\n%s\n", analysis.m_dSeconds,
                static_cast<unsigned long long>(analysis.m_nPositions), strPlan.c_str());
}

int RunAnalyse(const TAnalyseArguments& arguments)
{
    TSolveRequest request;
    TChessboard& root = *request.m_pChessboard;
    root = BoardOfFen(arguments.m_task.m_strFen);
    request.SetMateIn(arguments.m_task.m_nMate);
    request.m_bSafeMode = arguments.m_bSafe;
    root.m_pRequest = &request;
    root.CheckStartPosition(request.m_nRequestedMoves, true);
    const TPositionAnalysis analysis = CheckPositionType(root);
    TakeUpAnalysis(analysis, root);
    TakeUpHeuristics(root);
    TThreadContext context(request.m_nRequestedMoves);
    PutOnThread(root, context);
    const std::string strSet =
        root.m_nHeuristics ? GetHeuristicsText(root, false) : std::string(TEXT_NONE);
    const std::string strPlan = ComposeRelaxationPlan(root);
    if (!arguments.m_bJson) {
        PrintText(analysis, strSet, request.m_bSafeMode, strPlan);
        return 0;
    }
    nlohmann::ordered_json line;
    line["fen"] = arguments.m_task.m_strFen;
    line["mate"] = arguments.m_task.m_nMate;
    line["heuristics"] = strSet;
    line["leftOut"] = LeftOut(analysis);
    line["position"] = FlagTexts(analysis.m_nPositionFlags);
    line["safeMode"] = request.m_bSafeMode.load();
    line["safeModeForced"] = analysis.m_bSafeMode;
    line["facts"] = FactsOf(analysis.m_facts);
    line["trials"] = TrialsOf(analysis);
    line["seconds"] = analysis.m_dSeconds;
    line["positions"] = analysis.m_nPositions;
    line["plan"] = strPlan;
    std::printf("%s\n", line.dump().c_str());
    return 0;
}

} // namespace

void AddAnalyseCommand(CLI::App& app, int& nExitCode)
{
    auto pArguments = std::make_shared<TAnalyseArguments>();
    CLI::App* pCommand = app.add_subcommand(
        "analyse", "Show the heuristics that the program chooses for a position, and why.");
    pCommand->add_option("--fen", pArguments->m_task.m_strFen, "the position")->required();
    pCommand->add_option("--mate", pArguments->m_task.m_nMate, "number of moves, n of \"#n\"")
        ->required()
        ->check(CLI::Range(1, MAX_MATE));
    pCommand->add_flag("--safe", pArguments->m_bSafe, "the run is to be in safe mode anyway");
    pCommand->add_flag("--json", pArguments->m_bJson, "print a JSON object");
    pCommand->callback([pArguments, &nExitCode] { nExitCode = RunAnalyse(*pArguments); });
}

} // namespace corvina
