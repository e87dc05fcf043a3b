#ifndef CORVINA_HEURISTICS_REDUCTION_H
#define CORVINA_HEURISTICS_REDUCTION_H

#include "chess/chessboard.h"

namespace corvina
{

/// SH_REDUCTIONTOGLOBREGPOS: takes off Black's pawns far from their king, and with each the White
/// figure that holds it up by standing before it, which can't help elsewhere. White needs a figure
/// that is no knight afterwards. False, with the record in any state: the position is none to be
/// reduced, or there is nothing to take off.
bool ReducePosition(TChessboard& board);

/// There is a reduced position, and the endgame tables know it.
bool HasReducedPosition(const TChessboard& board);

} // namespace corvina

#endif
