#ifndef CORVINA_APP_OUTCOMETEXT_H
#define CORVINA_APP_OUTCOMETEXT_H

#include "search/solve.h"
#include "search/threats.h"

#include <chrono>
#include <string>

/// The outcome of a run in words.

namespace corvina
{

/// A user's choice of the way in which a run goes.
enum class EBruteForceKind : std::uint8_t
{
    None,
    BruteForce, ///< without heuristics, in groups of two threads
    Hybrid      ///< for the first solution as usual, then by brute force for further ones
};

/// "(1.07 sec.)": the fewer digits of the fraction the longer it is; from ten minutes on seconds.
std::string ElapsedText(std::chrono::milliseconds elapsed);

/// "1.Ka1-b2 threat: 2.Qc3-c7, Qc3-d4", the solutions separated by commas.
std::string SolutionsText(const TSolveRequest& request, const std::vector<TMove>& vecSolutions,
                          const TThreats& threats);

/// "threat: 2.Qc3-c7, Qc3-d4"; empty without threats.
std::string ThreatsText(const TSolveRequest& request, const TMove& key, const TThreats& threats);

/// The word for the kind of a run; all solutions and the first one are 1 and 0.
constexpr int RUN_WORD_BRUTE_FORCE = 2;
constexpr int RUN_WORD_HYBRID = 3;

/// Which of them; a run option tells as much as the kind.
int RunWord(const TSolveRequest& request, EBruteForceKind kind, bool bAllSolutions);

/// The status line of a run that has ended.
std::string StatusText(const TSolveRequest& request, const TSolveOutcome& outcome,
                       const TThreats& threats);

/// What the user is told beside the status line; empty: nothing.
std::string OutcomeMessage(const TSolveRequest& request, const TSolveOutcome& outcome,
                           bool bOnePass);

/// Which passes were left out: a line for each reason, with a tab and "* " in front and a line feed
/// behind. bOnePass: the user wants no relaxation. Empty: none was.
std::string SkippedPassesText(const TSolveRequest& request, const TSolveOutcome& outcome,
                              bool bOnePass);

/// The line of the engine for the log, with a line feed.
std::string LogText(const TSolveRequest& request, const TSolveOutcome& outcome, bool bStopped,
                    const std::string& strStatus);

/// The settings of the run, a line each, as they are in force. bSettled: the run has got as far as
/// its first pass; before, the set isn't known.
std::string RunSettingsText(const TSolveRequest& request, bool bSettled = true);

} // namespace corvina

#endif
