#ifndef CORVINA_HEURISTICS_KINGBLOCKS_H
#define CORVINA_HEURISTICS_KINGBLOCKS_H

#include "heuristics/blackmove.h"

/// The king heuristics: has the Black king left the region, or the state, that the type of the
/// problem suggests? The frame calls a block when its bit is on.

namespace corvina
{

/// SH_AREKINGSNEAR: the White king can't come near the Black one in time for the mate.
EVerdict TestKingsNear(TBlackMove& move);

/// SH_KEEPKINGNEARCORNER: the Black king is farther from the nearest corner than allowed.
EVerdict TestKingNearCorner(TBlackMove& move);

/// SH_KEEPKINGONTHEEDGE: the Black king has left the edge, or in the strict form its square.
EVerdict TestKingOnTheEdge(TBlackMove& move);
EVerdict TestPlainEdge(TBlackMove& move);
EVerdict TestKingStays(TBlackMove& move);

/// SH_KEEPKINGWITHINEXTEDGE: the Black king has left the two outer rings; in the other form, it has
/// moved and not to the edge.
EVerdict TestKingWithinExtEdge(TBlackMove& move);

/// SH_ASSERTBLACKKINGSURROUNDED: the Black king has too many free squares around it.
EVerdict TestKingSurrounded(TBlackMove& move);

/// The same after White's move: true for doubtful. Black is to move on the child.
bool IsSurroundLostByWhite(const TChessboard& child);

} // namespace corvina

#endif
