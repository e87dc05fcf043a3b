#ifndef CORVINA_APP_REGRESSION_H
#define CORVINA_APP_REGRESSION_H

#include "app/options.h"
#include "problems/collection.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <string>

/// The regression run solves every problem of a collection, compares what it finds with the answers
/// of the file, and writes a line for each run to a log.

namespace corvina
{

/// A regression run is under way. Who wants to end it clears this, and stops the current solve.
extern std::atomic<bool> g_bRegressionTestRunning;

struct TRegressionSettings
{
    std::filesystem::path m_logPath;
    bool m_bMirrors = false;  ///< solve the mirror images too
    bool m_bQuick = false;    ///< with a limit of time for each run
    int m_nTimeLimitSec = 64; ///< of the quick form
    unsigned m_nThreads = 1;  ///< for problems that don't ask for a number
    TOptions m_options;

    /// Is precalculated data of a type of position at hand? Empty: there is none.
    std::function<bool(const std::string& strType)> m_hasPositionType;

    /// Does precalculated data cover the position? Empty: there is none.
    std::function<bool(const TChessboard& board)> m_isCovered;

    /// Does the online tablebase answer for the position? Empty: it doesn't.
    std::function<bool(const TChessboard& board)> m_hasTablebase;

    /// Told of each text as it is added to the log.
    std::function<void(const std::string& strText)> m_onLine;

    /// Told of what the user should see while a problem is solved all the same.
    std::function<void(const std::string& strText)> m_onMessage;

    /// Told of a problem that could not be solved, and why. There is no line for it in the log.
    std::function<void(const TProblem& problem, const std::string& strReason)> m_onError;
};

/// How the rounds ended: a problem has one, or two with its mirror image.
struct TRegressionCounts
{
    int m_nOk = 0;
    int m_nFailed = 0;
    int m_nUnchecked = 0; ///< there is nothing to compare with
    int m_nSkipped = 0;   ///< problems without a run: data is missing, a kind that isn't solved
};

/// Runs over the problems, which must be of TSolveRequest, in the order of their numbers, until the
/// end or until g_bRegressionTestRunning is cleared or the user interrupts the process. The
/// positions are afterwards what they were; a problem whose AllSolutionsRequires clause isn't
/// satisfied loses its AllSolutions option.
TRegressionCounts RunRegressionTest(TProblemCollection& collection,
                                    const TRegressionSettings& settings);

/// Renames the log of an earlier run to the same name + ".BAK". A failure is tried again three
/// times within 300 ms; after that new lines will follow the old ones.
void BackupRegressionLog(const std::filesystem::path& path);

/// Adds a text to the log, which is open for no longer than that. A log that can't be opened loses
/// it.
void AppendToRegressionLog(const std::filesystem::path& path, const std::string& strText);

/// Compares the order of White's first moves that the run has left with the expected one, as far as
/// that goes. False with *pOut saying where they differ.
bool CheckExpectedSortWhiteMoves(const TSolveRequest& request, std::string* pOut);

/// How a run was done, for the head of its lines: "AllSolutions, 2^3thrd(s)".
std::string GetRunDescription(std::uint8_t nSearchMode, std::size_t nThreads, std::size_t nLevels);

} // namespace corvina

#endif
