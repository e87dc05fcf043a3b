#ifndef CORVINA_CLI_TASK_H
#define CORVINA_CLI_TASK_H

#include "chess/chessboard.h"
#include "platform/watchdog.h"

#include <memory>
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
/// long as the object lives.
std::unique_ptr<TWatchdog> StopAfter(TSolveRequest& request, std::optional<double> dSeconds);

} // namespace corvina

#endif
