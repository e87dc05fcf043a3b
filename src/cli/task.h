#ifndef CORVINA_CLI_TASK_H
#define CORVINA_CLI_TASK_H

#include "chess/chessboard.h"
#include "platform/signals.h"
#include "platform/watchdog.h"

#include <optional>
#include <string>

namespace corvina
{

/// A position and its stipulation as the command line takes them.
struct TTask
{
    std::string m_strFen;
    int m_nMate = 0; ///< moves
};

/// Reads a line "FEN;N". Throws ChessException.
TTask ReadTaskLine(const std::string& strLine);

/// The position of a FEN. Throws ChessException "Improper FEN code" for a text that is none, and
/// the board's own errors.
TChessboard BoardOfFen(const std::string& strFen);

/// Stops the run of the request after so many seconds, and when the user interrupts the program, as
/// long as the object lives. The time for which the process is stopped doesn't count.
class TTimeLimit
{
public:
    TTimeLimit(TSolveRequest& request, std::optional<double> dSeconds);

private:
    TSignalHandlersHold m_handlers;
    TWatchdog m_watchdog;
};

/// The time as watchdogs take it.
std::optional<TWatchdog::TClock::duration> TimeLimitOf(std::optional<double> dSeconds);

} // namespace corvina

#endif
