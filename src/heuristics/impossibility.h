#ifndef CORVINA_HEURISTICS_IMPOSSIBILITY_H
#define CORVINA_HEURISTICS_IMPOSSIBILITY_H

#include "chess/chessboard.h"

namespace corvina
{

/// Why White's material can't mate in the time that is left; as a reason of doubt, the code itself.
enum EImpossibility : int
{
    POSSIBLE = 0,
    IMPOSSIBLE_ROOK_OR_PAWNS = -2,
    IMPOSSIBLE_ONE_MINOR = -3,
    DOUBTFUL_ONE_MINOR_FREE_KING = -4,
    DOUBTFUL_ONE_MINOR_NO_BLOCK = -5,
    IMPOSSIBLE_MINORS_OFF_EDGE = -6,
    IMPOSSIBLE_TWO_KNIGHTS = -7,
    IMPOSSIBLE_BISHOP_AND_KNIGHT = -10,
    DOUBTFUL_TWO_BISHOPS = -11,
    DOUBTFUL_TWO_MINORS_AGAINST_ROOK = -12,
    DOUBTFUL_QUEENS = -13
};

/// White is to move. Those called impossible are proofs: White has no mate within m_nMoves,
/// whatever Black plays.
EImpossibility FindImpossibility(TChessboard& board);

bool IsProof(EImpossibility impossibility);

} // namespace corvina

#endif
