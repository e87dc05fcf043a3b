#ifndef CORVINA_HEURISTICS_EDGERELAXATION_H
#define CORVINA_HEURISTICS_EDGERELAXATION_H

#include "heuristics/kingblocks.h"

/// What the two edge heuristics share: they are given up in a line in which White has won material,
/// and a violation may wait for that.

namespace corvina
{

/// By how much White's balance of figures is better than in the root position, with pawns when the
/// parameter says so. A figure that has just been promoted and will fall doesn't count for Black.
int BalanceGain(const TBlackMove& move);

/// White has won the balance that the set asks for.
bool IsBalanceWon(const TBlackMove& move, int nGain);

/// A violation waits: it isn't cut before the deadline. False when the set has no deferral.
bool CanDefer(const TBlackMove& move);

/// The end of a violation that may wait: doubtful when the balance can't change any more, else the
/// move is marked and its deadline noted.
EVerdict Defer(const TBlackMove& move);

/// A violation further up the line waits: doubtful once its deadline is over.
EVerdict TestDeferred(const TBlackMove& move);

/// The balance of figures alone is better for White than in the root position.
bool IsFigureBalanceBetter(const TBlackMove& move);

} // namespace corvina

#endif
