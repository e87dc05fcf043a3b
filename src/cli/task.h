#ifndef CORVINA_CLI_TASK_H
#define CORVINA_CLI_TASK_H

#include "chess/chessboard.h"

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

} // namespace corvina

#endif
