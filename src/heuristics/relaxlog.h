#ifndef CORVINA_HEURISTICS_RELAXLOG_H
#define CORVINA_HEURISTICS_RELAXLOG_H

#include "chess/chessboard.h"

namespace corvina
{

/// Switches the log of all relaxations of the program on or off; at the start it is off.
void SetRelaxationLog(bool bOn);

/// Appends a line to "TryRelaxSpecialHeuristics.log" in the program's folder, if the log is on: the
/// time, "BEFORE" or "AFTER ", the thread and its set. Any thread may call it.
void LogRelaxation(const char* pWhen, const TChessboard& board);

} // namespace corvina

#endif
