#ifndef CORVINA_CLI_SOLVING_H
#define CORVINA_CLI_SOLVING_H

#include "app/options.h"
#include "cli/progressoutput.h"
#include "search/verify.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace corvina
{

/// What the user wants of each run.
struct TSolveOptions
{
    bool m_bFirst = false;            ///< the first solution will do
    std::optional<double> m_dSeconds; ///< for a problem
    bool m_bJson = false;
    bool m_bPlain = false;
    bool m_bNoRegister = false;
    std::optional<std::string> m_strHeuristics; ///< the set, in the place of the problem's
    bool m_bNoHeuristics = false;
    bool m_bNoScout = false;
    bool m_bNoRelax = false;    ///< one pass with heuristics
    bool m_bNoPass2 = false;    ///< no pass without
    bool m_bNoFallback = false; ///< no stricter set within a line of play
    bool m_bSafe = false;
    bool m_bVerify = false; ///< walk the proof of each key
    /// Sort indications, in the place of the problem's.
    std::optional<TSortIndications> m_indications;
    int m_nShortMate = 0; ///< moves of the short mate search; 0: by the position
    /// Threads, "N" or "N^L" with L levels of multithreading; empty: what the problem asks for, or
    /// one.
    std::string m_strThreads;
    EProgressForm m_progress = EProgressForm::Auto;
    bool m_bLogMoves = false; ///< as the option LogMoves
    bool m_bBruteForce = false, m_bHybrid = false;
    bool m_bThreats = false;      ///< tell what the key threatens
    bool m_bShowSettings = false; ///< tell the settings of a run
    std::string m_strLog;         ///< path of the log; empty: none
    bool m_bTellOutcome = false;  ///< on standard error: of a task that stands alone
    int m_nSchedulerLevels = -1;  ///< -1: what the problem asks for, or none
    TOptions m_programOptions;
};

/// The command line's options of a run.
void AddSolveOptions(CLI::App& command, TSolveOptions& options);

/// A run and what is told of it beside.
struct TSolvedTask : TSolveOutcome
{
    std::string m_strThreats; ///< of a single key, in words
    int m_nRunWord = 0;       ///< RUN_WORD_...
};

/// Solves a request, tells each pass with its set as it ends, and notes the passes; an interruption
/// by the user stops it as the time does. Throws ChessException as Solve does.
TSolvedTask SolveWithOptions(TSolveRequest& request, const TSolveOptions& options,
                             std::vector<TPassReport>& vecPasses);

/// 0 to 3, as the program exits after the run.
int ExitCodeOf(const TSolveOutcome& outcome);

/// The check of a key, in words.
struct TVerifiedKey
{
    std::string m_strKey;
    TVerification m_verification;
    std::vector<std::string> m_vecRefutation; ///< the line, in notation
};

/// Walks the proof of each solution, within the time of the options.
std::vector<TVerifiedKey> VerifySolutions(TSolveRequest& request, const TSolveOutcome& outcome,
                                          const TSolveOptions& options);

/// EXIT_WRONG_KEY when a proof has failed, EXIT_STOPPED when one is not done, else nExitCode.
int WithVerification(int nExitCode, const std::vector<TVerifiedKey>& vecKeys);

void PrintVerification(const std::vector<TVerifiedKey>& vecKeys);

/// The texts with the separator between them.
std::string Joined(const std::vector<std::string>& vecTexts, const char* pSeparator);

/// Moves of White in the position of a problem, in full notation.
std::vector<std::string> MoveTexts(const TProblem& problem, const std::vector<TMove>& vecMoves);

/// Of a run by brute force, for the user.
const char* RunName(int nRunWord);

/// "solved", "none", "stopped", or "doubtful" when the last pass has been switched off.
const char* ResultWord(const TSolveOutcome& outcome);

/// The members of a JSON object that a run gives: the result, its solutions, passes, time and
/// positions.
void AddResultTo(nlohmann::ordered_json& line, const TSolveRequest& request,
                 const TSolvedTask& outcome, const std::vector<TPassReport>& vecPasses,
                 const std::vector<TVerifiedKey>& vecKeys);

/// What keeps the outcome from being a proof; a line each.
void PrintNotes(const TSolveRequest& request, const TSolveOutcome& outcome,
                const TSolveOptions& options);

/// Prints a line for each solution and the start of a line that counts them.
void PrintSolutions(const TSolveRequest& request, const TSolvedTask& outcome);

} // namespace corvina

#endif
