#ifndef CORVINA_HEURISTICS_FORCINGTESTS_H
#define CORVINA_HEURISTICS_FORCINGTESTS_H

#include "search/threadcontext.h"

namespace corvina
{

/// Tests of a move of White for the list of forcing moves. The child is the position after the
/// move, on the thread's stack, Black to move with at least 4 half-moves left.

/// The checking figure stands where the Black king takes it for nothing.
bool CanKingTakeChecker(const TChessboard& child);

/// If Black passed, White would mate in at most nMoves moves, and has the time to. Black must not
/// be in check.
bool ThreatensMate(TChessboard& child, int nMoves);

/// White has more than Black, who has one or two replies in all: those of his king, nFree squares,
/// and a few others.
bool KeepsStalemateNet(const TChessboard& child, int nFree);

/// A reply of Black allows mate in one.
bool AllowsMateInOne(TChessboard& child);

} // namespace corvina

#endif
