#ifndef CORVINA_HEURISTICS_FORCEDMATE_H
#define CORVINA_HEURISTICS_FORCEDMATE_H

#include "chess/chessboard.h"
#include "heuristics/heuristicsparams.h"

namespace corvina
{

/// A code for ApplyFfmSettings that suits the position, of which the material of both sides and
/// the free squares of the Black king are known; 0: the forced mate search doesn't suit it.
int SuggestFfmSettings(const TChessboard& board, int nWhiteMaterial, int nBlackMaterial,
                       int nFreeSquares);

/// Sets up the forced mate search from a code: how far its levels may be raised in the low byte,
/// by how much the first level is raised at once in the byte above.
void ApplyFfmSettings(const TChessboard& board, int nCode, THeuristicsParams& params);

/// Puts the set of a preliminary run in the place of the board's, which is kept in m_savedFfmMask
/// until the relaxation that ends the run. Nothing happens to a set without such a run. A second
/// call changes nothing.
void BeginPreliminaryRun(TChessboard& board, THeuristicsParams& params);

} // namespace corvina

#endif
