#ifndef CORVINA_HEURISTICS_SWEEPINGROOK_H
#define CORVINA_HEURISTICS_SWEEPINGROOK_H

#include "chess/chessboard.h"

namespace corvina
{

/// A White rook sweeps along the first row, into which Black's pawns must run, while nothing else
/// moves.
bool IsSweepingRookType(const TChessboard& board);

} // namespace corvina

#endif
