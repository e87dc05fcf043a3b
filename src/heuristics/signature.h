#ifndef CORVINA_HEURISTICS_SIGNATURE_H
#define CORVINA_HEURISTICS_SIGNATURE_H

#include "chess/chessboard.h"
#include "heuristics/heuristicsparams.h"

#include <cstdint>

namespace corvina
{

/// The signature of the board's mask with these parameters; 0 for an empty mask. What
/// ComputeHeurParams answers with the parameters of the board's thread.
std::uint32_t SignatureOf(const TChessboard& board, const THeuristicsParams& params);

} // namespace corvina

#endif
