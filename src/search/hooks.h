#ifndef CORVINA_SEARCH_HOOKS_H
#define CORVINA_SEARCH_HOOKS_H

#include "chess/chessboard.h"
#include "search/result.h"

/// What the nodes ask of the heuristics and of the endgame tables, in the place in the order of the
/// node at which they ask. Every operation is behind a test of the mask or of a flag, so that a
/// search without them costs no call.

namespace corvina
{

/// White's last move breaks a heuristic of the mask: the move is doubtful. Only in pass 1.
inline bool IsWhiteMoveDoubtful(TChessboard&)
{
    return false;
}

/// Black's last move shows that a heuristic of the mask is broken. Only in pass 1.
inline bool IsBlackMoveDoubtful(TChessboard&)
{
    return false;
}

/// Half-moves to mate by the endgame tables; 0: no mate, UNKNOWN: no answer.
constexpr int GLOBAL_REGISTER_UNKNOWN = 65535;

inline int AskGlobalRegister(const TChessboard&)
{
    return GLOBAL_REGISTER_UNKNOWN;
}

/// A run has come to the end of a pass: relaxes the heuristics for the next one. 0: nothing is left
/// to relax.
inline int TryRelaxSpecialHeuristics(TChessboard&)
{
    return 0;
}

} // namespace corvina

#endif
