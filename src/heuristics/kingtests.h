#ifndef CORVINA_HEURISTICS_KINGTESTS_H
#define CORVINA_HEURISTICS_KINGTESTS_H

#include "chess/sides.h"

/// Tests that the blocks of the hook of Black's moves share. The board is that after Black's move,
/// White to move; nothing of it is changed.

namespace corvina
{

/// The last move, of side C, was neither a king's nor a capture, and the other side can take the
/// figure that it moved, which C doesn't guard.
template <EColour C>
bool IsLastMoveEnPrise(const TChessboard& board);

/// The figure on the square is attacked by White and not guarded by Black.
bool IsLoose(const TChessboard& board, int square);

/// The last move takes back the one that the same side made before it.
bool IsMoveReversal(const TChessboard& board);

/// The last move began or ended on the square of the Black king in the root position.
bool MovedToOrFromRootKing(const TChessboard& board);

bool IsKingOnRootSquare(const TChessboard& board);

/// Black has two figures, or one that has not just been promoted.
bool BlackKeepsFigure(const TChessboard& board);

/// A Black pawn or knight attacks the square.
bool IsGuardedByBlackPawnOrKnight(const TChessboard& board, int square);

/// The answer of a bounded search for a mate.
enum class EMateTest
{
    No,
    Mate,
    Undecided ///< the run was stopped
};

/// White mates within so many half-moves, an odd number, or within those that the position has
/// left. A proof: the search runs without heuristics, on a copy. Leaves the thread's context as it
/// was, but for the count of positions and the hints on the order of moves.
EMateTest IsMateWithin(TChessboard& board, int nPlies);

/// The last test before a king that leaves its place counts as a violation: up to 9 half-moves.
EMateTest QuickMateAfterEdge(TChessboard& board);

} // namespace corvina

#endif
