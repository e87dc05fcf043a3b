#ifndef CORVINA_SEARCH_DEFENCE_H
#define CORVINA_SEARCH_DEFENCE_H

#include "search/solverequest.h"

#include <string>
#include <vector>

namespace corvina
{

/// A reply of Black with its standing.
struct TRankedDefence
{
    TMove m_move;
    bool m_bRefutes; ///< no mate within the half-moves left
    int m_nMatedIn;  ///< half-moves of White's shortest mate against it; 0: none was found
};

/// What the search for Black's best defence has found.
struct TDefenceOutcome
{
    bool m_bStopped = false;       ///< ended before it was done, with nothing to show
    bool m_bMateFollows = false;   ///< every reply loses within the half-moves left
    bool m_bSettledAtOnce = false; ///< there was but one reply to consider: nothing was searched
    std::string m_strText;         ///< the outcome in words, with the best move and its equals
    std::vector<TRankedDefence> m_vecRanked; ///< replies, the best first
};

/// Finds the best defence of Black, who is to move on the request's board, against mate within its
/// m_nRequestedMoves half-moves (even). With bThorough a single candidate is analysed too. What the
/// request's register knows is neither used nor changed. Throws ChessException for a position that
/// is no start position, or one without a legal reply: "No valid move found".
TDefenceOutcome FindBestDefence(TSolveRequest& request, bool bThorough);

} // namespace corvina

#endif
