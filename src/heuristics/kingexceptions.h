#ifndef CORVINA_HEURISTICS_KINGEXCEPTIONS_H
#define CORVINA_HEURISTICS_KINGEXCEPTIONS_H

#include "heuristics/blackmove.h"

/// Exceptions that several of the king heuristics make.

namespace corvina
{

/// White's last move took something, and not a pawn that had stood there for two full moves.
bool CapturedMoreThanStandingPawn(const TBlackMove& move);

/// Enough queens and rooks stand around the Black king to hold it near the edge. Also asks for a
/// queen among them.
bool AreMajorsHolding(const TBlackMove& move);

/// Black shut a check of White by a figure that it will lose: the net only got tighter.
bool IsCheckShutInVain(const TBlackMove& move);

} // namespace corvina

#endif
