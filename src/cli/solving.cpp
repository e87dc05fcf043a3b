#include "cli/solving.h"

#include "app/outcometext.h"
#include "chess/notation.h"
#include "cli/commands.h"
#include "cli/solverun.h"
#include "cli/task.h"
#include "heuristics/positionanalysis.h"
#include "heuristics/setreader.h"
#include "heuristics/settext.h"
#include "platform/signals.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <map>

namespace corvina
{

namespace
{

/// The options' set and switches come before those of the problem.
void ApplySetOptions(TSolveRequest& request, const TSolveOptions& options)
{
    THeuristicSet& set = request.m_heuristicSet;
    if (options.m_bNoHeuristics)
        set.m_nHeuristics = 0;
    if (options.m_strHeuristics)
        ReadHeuristicsText(*options.m_strHeuristics, set, request.m_pChessboard.get());
    const bool bGiven = set.m_nHeuristics != 0 || options.m_strHeuristics;
    request.m_bAnalyse = !options.m_bNoHeuristics && !bGiven;
    request.m_bProofSearch = !options.m_bNoHeuristics && !options.m_bNoScout;
    set.m_params.m_bLetRelax = !options.m_bNoRelax;
    set.m_params.m_bRunPass2 = !options.m_bNoPass2;
    set.m_params.m_bEnableFallback = !options.m_bNoFallback;
    if (options.m_bSafe)
        request.m_nRunOptions |= RUN_SAFEMODE;
    if (options.m_nShortMate)
        request.m_shLookForQuickerMateDepth =
            static_cast<std::int16_t>(HalfMovesOfMate(options.m_nShortMate));
}

/// Takes the number of threads and levels over. Throws ChessException.
void ApplyThreads(const TSolveOptions& options, TSolveRequest& request, TRunSettings& settings)
{
    constexpr unsigned MAX_THREADS = 64;
    if (!options.m_strThreads.empty()) {
        TOptionFields fields(options.m_programOptions, 1);
        fields.m_strThreads = options.m_strThreads;
        const int nLevels = request.m_nRequestedMultithreadingLevels >= 0
                                ? request.m_nRequestedMultithreadingLevels
                                : settings.m_nMultithreadingLevels;
        if (nLevels > 1 && options.m_strThreads.find('^') == std::string::npos)
            fields.m_strThreads += "^" + std::to_string(nLevels);
        const TOptionsOfFields result = ValidateOptions(options.m_programOptions, 1, fields);
        if (!result.m_options)
            throw ChessException("--threads: " + result.m_vecTexts.back());
        const std::string strRead =
            TOptionFields(*result.m_options, result.m_nThreads).m_strThreads;
        if (result.m_nThreads > MAX_THREADS ||
            (strRead != fields.m_strThreads && strRead + "^1" != fields.m_strThreads))
            throw ChessException("--threads: expected N or N^L with N from 1 to 64.");
        request.m_nForcedThreads = static_cast<std::uint8_t>(result.m_nThreads);
        // That many and not one more; of several the engine may make more.
        if (result.m_nThreads == 1)
            request.m_nRequestedThreads = 1;
        request.m_nRequestedMultithreadingLevels =
            static_cast<std::int8_t>(result.m_options->m_nMultithreadingLevels);
    }
    if (options.m_nSchedulerLevels >= 0)
        request.m_shRequestedSchedulerLevels =
            static_cast<std::int16_t>(options.m_nSchedulerLevels);
    settings.m_nSchedulerLevels = 0;
}

/// Reads the text of --indications. Throws ChessException that tells where the fault is.
TSortIndications ReadIndications(const std::string& strText)
{
    TSortIndications indications;
    std::size_t nPosition = 0;
    try {
        ParseSortIndications(indications, strText, &nPosition);
    }
    catch (const ChessException& error) {
        throw ChessException("--indications, at character " + std::to_string(nPosition + 1) + ": " +
                             error.what());
    }
    return indications;
}

/// Says which heuristics of the set don't cut anything.
void NoteWithoutEffect(const THeuristicSet& set, TProgressOutput& output)
{
    for (std::uint32_t nRest = set.m_nHeuristics & ~IMPLEMENTED_HEURISTICS; nRest;
         nRest &= nRest - 1)
        output.Print("Note: " + GetHeuristicName(nRest & -nRest) +
                     " has no test in this version and cuts nothing.");
}

std::string PassText(const TPassReport& report)
{
    char text[64];
    std::snprintf(text, sizeof text, "; %u first moves decided, %.3f s", report.m_nDecided,
                  report.m_dSeconds);
    return "Pass " + report.m_strName + ": " + report.m_strSet + text;
}

std::string AnalysisShare(double dAnalysis, double dRun)
{
    char text[64];
    std::snprintf(text, sizeof text, "Analysis: %.3f s, %.1f %% of the run", dAnalysis,
                  dRun > 0 ? 100 * dAnalysis / dRun : 0.0);
    return text;
}

} // namespace

void AddSolveOptions(CLI::App& command, TSolveOptions& options)
{
    command.add_option("--time", options.m_dSeconds, "give up after so many seconds a position")
        ->check(CLI::Range(0.0, 1e9));
    command
        .add_option("--threads", options.m_strThreads,
                    "threads that share the first moves, at most 64; N^L: L levels of "
                    "multithreading, N threads for each of White's first L moves; of 2 and more "
                    "the engine may make more (what the problem asks for, or 1; L also by the "
                    "option MultithreadingLevels)")
        ->type_name("N[^L]");
    command
        .add_option("--scheduler-levels", options.m_nSchedulerLevels,
                    "levels of White's moves behind those that are juggled: each move has a "
                    "thread, and they take turns; 0: none (what the problem asks for, or 0)")
        ->check(CLI::Range(0, 9));
    CLI::Option* pSet =
        command.add_option("--heuristics", options.m_strHeuristics,
                           "begin with this set, as in \"SH_KEEPKINGONTHEEDGE(C1f), "
                           "SH_DONTLOSEANYFIGURES\"; \"none\" (chosen by the position)");
    command
        .add_flag("--no-heuristics", options.m_bNoHeuristics,
                  "begin with the last pass, and leave out the scout")
        ->excludes(pSet);
    command.add_flag("--no-scout", options.m_bNoScout,
                     "leave out the proof-number search that goes beside the passes with --first");
    command.add_flag("--no-relax", options.m_bNoRelax,
                     "one pass with heuristics only, then the last pass");
    command.add_flag("--no-pass2", options.m_bNoPass2,
                     "leave out the last pass, the one without heuristics");
    command.add_flag("--no-fallback", options.m_bNoFallback,
                     "don't try a stricter set within a line of play");
    command.add_flag("--safe", options.m_bSafe,
                     "safe mode: a repetition of the position leaves no doubt behind");
    command
        .add_option("--short-mate", options.m_nShortMate,
                    "moves that the search for a short mate looks ahead (by the position)")
        ->check(CLI::Range(1, 16));
    command.add_option_function<std::string>(
        "--indications",
        [&options](const std::string& strText) {
            options.m_indications = ReadIndications(strText);
        },
        "moves of White to try early, or late with ~, as in \"1.Qa1-a8, R:d5+, ~2.Ke2\"; the form "
        "is that of problem files (those of the problem)");
    command
        .add_option("--progress", options.m_progress,
                    "what standard error shows of a run each second: auto: a live line on a "
                    "terminal; json: an object on a line; none")
        ->transform(CLI::CheckedTransformer(
            std::map<std::string, EProgressForm>{{"auto", EProgressForm::Auto},
                                                 {"json", EProgressForm::Json},
                                                 {"none", EProgressForm::None}},
            CLI::ignore_case))
        ->default_str("auto");
    command.add_flag("--log-moves", options.m_bLogMoves,
                     "each thread writes all that it analyses to MovesLogger_problem<number>_"
                     "thread<number>.log in the working folder (as the option LogMoves): slow, and "
                     "the files grow large");
    CLI::Option* pBrute = command.add_flag(
        "--brute-force", options.m_bBruteForce,
        "all solutions without heuristics, in groups of two threads: to show that there are none "
        "(--threads N^L in the place of half the processors on two levels)");
    command
        .add_flag("--hybrid", options.m_bHybrid,
                  "the first solution as usual, then brute force for further ones")
        ->excludes(pBrute);
    command.add_flag("--threats", options.m_bThreats,
                     "tell what White threatens after the key, if there is but one");
    command.add_flag("--show-settings", options.m_bShowSettings,
                     "tell on standard error the settings of a run as it begins");
    command.add_option("--log", options.m_strLog, "add a line for each run to this file");
    command.add_flag("--no-register", options.m_bNoRegister,
                     "search without memory of positions, for comparison");
    command.add_flag("--verify", options.m_bVerify,
                     "walk the proof of each key: every defence, down to the mate");
    command.add_flag("--plain", options.m_bPlain, "search by the plain recursion, for comparison");
}

TSolvedTask SolveWithOptions(TSolveRequest& request, const TSolveOptions& options,
                             std::vector<TPassReport>& vecPasses)
{
    // The note must not mix with a result that a program reads.
    request.m_pChessboard->CheckFigureLimits(nullptr, options.m_bJson ? stderr : stdout);
    TRunSettings settings = ApplyOptions(options.m_programOptions, request);
    settings.m_bStopAtFirstSolution = options.m_bFirst;
    TProgressOutput output(request, options.m_progress);
    ApplyThreads(options, request, settings);
    request.m_bLogMoves = options.m_bLogMoves || options.m_programOptions.m_bLogMoves;
    request.m_bPlain = options.m_bPlain;
    request.m_bUseRegister = !options.m_bNoRegister;
    if (options.m_indications)
        request.m_sortIndications = *options.m_indications;
    ApplySetOptions(request, options);
    NoteWithoutEffect(request.m_heuristicSet, output);
    request.OnPassEnd = [&](const TPassReport& report) {
        vecPasses.push_back(report);
        // A run of the last pass alone is nothing to tell.
        if (request.m_heuristicSet.m_nHeuristics != 0 && !options.m_bPlain)
            output.Print(PassText(report));
    };

    const TSolvedTask solved = RunControlled(request, settings, options, output);
    const TSolveOutcome& outcome = solved;
    if (request.m_analysisSeconds)
        output.Print(AnalysisShare(*request.m_analysisSeconds, outcome.m_elapsed.count()));
    if (request.m_bFoundByScout)
        output.Print("Scout: 1." + PrintMove(outcome.m_vecSolutions[0], *request.m_pChessboard) +
                     " proved, " + std::to_string(request.m_nScoutPositions) + " positions");
    return solved;
}

std::string Joined(const std::vector<std::string>& vecTexts, const char* pSeparator)
{
    std::string strText;
    for (const std::string& strPart : vecTexts)
        strText += (strText.empty() ? "" : pSeparator) + strPart;
    return strText;
}

std::vector<std::string> MoveTexts(const TProblem& problem, const std::vector<TMove>& vecMoves)
{
    std::vector<std::string> vecTexts;
    for (const TMove& move : vecMoves)
        vecTexts.push_back(PrintMove(move, *problem.m_pChessboard));
    return vecTexts;
}

const char* RunName(int nRunWord)
{
    return nRunWord == RUN_WORD_HYBRID ? "hybrid brute force" : "brute force";
}

const char* ResultWord(const TSolveOutcome& outcome)
{
    if (outcome.m_bStopped)
        return "stopped";
    if (outcome.m_nResult == 1)
        return "solved";
    return outcome.m_bDoubtful ? "doubtful" : "none";
}

int ExitCodeOf(const TSolveOutcome& outcome)
{
    if (outcome.m_bStopped)
        return EXIT_STOPPED;
    if (outcome.m_nResult == 1)
        return EXIT_SOLVED;
    return outcome.m_bDoubtful ? EXIT_STOPPED : EXIT_NO_SOLUTION;
}

namespace
{

std::vector<std::string> LineTexts(const TSolveRequest& request, const std::vector<TMove>& vecLine)
{
    std::vector<std::string> vecTexts;
    TLineContext line(request.m_pChessboard->m_nMoves);
    TChessboard root = *request.m_pChessboard;
    root.m_pThread = &line;
    TChessboard* pBoard = &root;
    for (TMove move : vecLine) {
        vecTexts.push_back(PrintMove(move, *pBoard));
        TChessboard& child = line.MakeChild(*pBoard);
        if (!(pBoard->IsWhiteToMove() ? child.MakeWhiteUserMove(&move)
                                      : child.MakeBlackUserMove(&move)))
            break;
        pBoard = &child;
    }
    return vecTexts;
}

} // namespace

std::vector<TVerifiedKey> VerifySolutions(TSolveRequest& request, const TSolveOutcome& outcome,
                                          const TSolveOptions& options)
{
    std::vector<TVerifiedKey> vecKeys;
    if (!options.m_bVerify || WasInterrupted())
        return vecKeys;
    request.ClearStopState();
    const TTimeLimit limit(request, options.m_dSeconds);
    for (const TMove& move : outcome.m_vecSolutions) {
        TVerifiedKey key{PrintMove(move, *request.m_pChessboard), VerifyKey(request, move), {}};
        key.m_vecRefutation = LineTexts(request, key.m_verification.m_vecRefutation);
        vecKeys.push_back(key);
    }
    return vecKeys;
}

int WithVerification(int nExitCode, const std::vector<TVerifiedKey>& vecKeys)
{
    for (const TVerifiedKey& key : vecKeys) {
        if (!key.m_verification.m_bHolds && !key.m_verification.m_bStopped)
            return EXIT_WRONG_KEY;
        if (!key.m_verification.m_bHolds)
            nExitCode = EXIT_STOPPED;
    }
    return nExitCode;
}

void PrintVerification(const std::vector<TVerifiedKey>& vecKeys)
{
    for (const TVerifiedKey& key : vecKeys) {
        const TVerification& verification = key.m_verification;
        if (verification.m_bHolds)
            std::printf("  1.%s verified: %llu positions with White to move, %llu mates\n",
                        key.m_strKey.c_str(),
                        static_cast<unsigned long long>(verification.m_nPositions),
                        static_cast<unsigned long long>(verification.m_nMates));
        else if (verification.m_bStopped)
            std::printf("  1.%s not verified: stopped after %llu positions\n", key.m_strKey.c_str(),
                        static_cast<unsigned long long>(verification.m_nPositions));
        else
            std::printf("  1.%s IS WRONG: White has no mate after %s\n", key.m_strKey.c_str(),
                        Joined(key.m_vecRefutation, " ").c_str());
    }
}

void AddResultTo(nlohmann::ordered_json& line, const TSolveRequest& request,
                 const TSolvedTask& outcome, const std::vector<TPassReport>& vecPasses,
                 const std::vector<TVerifiedKey>& vecKeys)
{
    line["result"] = ResultWord(outcome);
    line["solutions"] = MoveTexts(request, outcome.m_vecSolutions);
    if (!outcome.m_strThreats.empty())
        line["threats"] = outcome.m_strThreats;
    if (outcome.m_nRunWord >= RUN_WORD_BRUTE_FORCE)
        line["run"] = RunName(outcome.m_nRunWord);
    line["doubtful"] = outcome.m_bDoubtful;
    if (outcome.m_bInfluencedByHand)
        line["influencedByHand"] = true;
    for (const TVerifiedKey& key : vecKeys)
        line["verified"].push_back({{"key", key.m_strKey},
                                    {"holds", key.m_verification.m_bHolds},
                                    {"stopped", key.m_verification.m_bStopped},
                                    {"positions", key.m_verification.m_nPositions},
                                    {"refutation", key.m_vecRefutation}});
    if (request.m_analysisSeconds)
        line["analysisSeconds"] = *request.m_analysisSeconds;
    auto& passes = line["passes"] = nlohmann::ordered_json::array();
    for (const TPassReport& report : vecPasses)
        passes.push_back({{"pass", report.m_strName},
                          {"heuristics", report.m_strSet},
                          {"decided", report.m_nDecided},
                          {"seconds", report.m_dSeconds}});
    if (request.m_nScoutPositions)
        line["scout"] = {{"positions", request.m_nScoutPositions},
                         {"proved", request.m_bFoundByScout}};
    line["seconds"] = outcome.m_elapsed.count();
    line["positions"] = request.m_nPositions.load();
}

void PrintNotes(const TSolveRequest& request, const TSolveOutcome& outcome,
                const TSolveOptions& options)
{
    if (outcome.m_bInfluencedByHand)
        std::printf("\t* the run was influenced by hand: solutions may be missing\n");
    if (!outcome.m_bStopped)
        std::fputs(SkippedPassesText(request, outcome, options.m_bNoRelax).c_str(), stdout);
}

void PrintSolutions(const TSolveRequest& request, const TSolvedTask& outcome)
{
    for (const TMove& move : outcome.m_vecSolutions)
        std::printf("  1.%s%s\n", PrintMove(move, *request.m_pChessboard).c_str(),
                    outcome.m_strThreats.empty() ? "" : (" " + outcome.m_strThreats).c_str());
    const std::size_t nSolutions = outcome.m_vecSolutions.size();
    if (outcome.m_bStopped)
        std::printf("  stopped, %zu found so far", nSolutions);
    else if (nSolutions == 0)
        std::printf(outcome.m_bDoubtful ? "  no solution found" : "  no solution");
    else
        std::printf("  %zu solution%s%s", nSolutions, nSolutions == 1 ? "" : "s",
                    request.m_nSearchMode & SEARCH_FIRST ? " (the first)" : "");
    if (outcome.m_nRunWord >= RUN_WORD_BRUTE_FORCE)
        std::printf(", %s", RunName(outcome.m_nRunWord));
}

} // namespace corvina
