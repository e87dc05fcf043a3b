#ifndef CORVINA_HEURISTICS_OTHERANALYSES_H
#define CORVINA_HEURISTICS_OTHERANALYSES_H

#include "chess/chessboard.h"

namespace corvina
{

/// Looks at the root position for patterns whose heuristics have no test of their own in the
/// search. Each answers that there is nothing to be found; an analysis without them leaves these
/// heuristics out.

/// SH_REDUCTIONTOGLOBREGPOS: a position with fewer men that the endgame tables know.
inline bool HasReducedPosition(const TChessboard&)
{
    return false;
}

/// SH_SINGLEQUEENMATE: nothing but the White queen and the Black king can move.
inline bool IsSingleQueenMate(const TChessboard&)
{
    return false;
}

/// SH_KEEPKINGNEARCORNER: the Black king stands in a corner region of such a queen's mate.
inline bool IsCornerPattern(const TChessboard&)
{
    return false;
}

/// SH_SAVEQUEENROOK with its exception: White's chances hang on a single figure.
inline bool IsWhiteMaterialShort(const TChessboard&)
{
    return false;
}

} // namespace corvina

#endif
