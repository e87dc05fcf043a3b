#ifndef CORVINA_HEURISTICS_RELAXPLAN_H
#define CORVINA_HEURISTICS_RELAXPLAN_H

#include "chess/chessboard.h"

#include <string>

namespace corvina
{

/// The passes that a run with the board's set would go through if each ended soon, for the user:
/// "Pass 1: " and the set, and a paragraph for each relaxation. Board and context are left as they
/// were. For an empty set "No heuristics selected.".
std::string ComposeRelaxationPlan(TChessboard& board);

} // namespace corvina

#endif
