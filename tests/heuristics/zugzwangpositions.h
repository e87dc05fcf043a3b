#ifndef CORVINA_TESTS_HEURISTICS_ZUGZWANGPOSITIONS_H
#define CORVINA_TESTS_HEURISTICS_ZUGZWANGPOSITIONS_H

#include "chess/chessboard.h"

#include <random>

namespace corvina
{

/// A random position in which a Black figure stands in a cage of two squares, and the Black king
/// among his men; whether he can move, and what White has beside pawns, is left to chance. White
/// is to move.
TChessboard CagedPosition(std::mt19937& random);

} // namespace corvina

#endif
