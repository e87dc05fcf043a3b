#ifndef CORVINA_HEURISTICS_UNBLOCK_H
#define CORVINA_HEURISTICS_UNBLOCK_H

#include "chess/chessboard.h"

namespace corvina
{

/// Adds the Black figure on the square to the list of SH_DONTLETFIGUREUNBLOCK for the subtree below
/// the record, and puts the heuristic into its mask. False, and nothing is changed: the list may
/// not be changed in the search, the figure stands on it or the list is full; or the list would
/// begin with a figure that is neither a pawn nor blocked.
bool ApplyUnblockDynamically(TChessboard& board, TSquare square);

} // namespace corvina

#endif
