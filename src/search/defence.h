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
    bool m_bFromRegister = false;  ///< a register of solved positions had the answer
    bool m_bRepetition = false;    ///< every refutation leads only to a repetition of the position
    std::string m_strText;         ///< the outcome in words, with the best move and its equals
    std::vector<TRankedDefence> m_vecRanked; ///< replies, the best first
};

/// What to tell of an outcome with m_bRepetition.
constexpr const char* REPETITION_TITLE = "Position repetition";
constexpr const char* REPETITION_NOTE =
    "Program detected position repetition.\nFor performance reasons every position repetition is "
    "assumed to prevent possibility of mate within the required stipulation and program stops "
    "analysis in such case.";

/// Finds the best defence of Black, who is to move on the record that the request shows
/// (m_pCurrentBoard), against mate within its half-moves; they are m_nRequestedMoves (even) at the
/// root. With bThorough a single candidate is analysed too. Of the request's register only the
/// solved positions are used, and nothing is changed. The heuristics of the request are relaxed as
/// in a solve. Throws ChessException for a position that
/// is no start position, or one without a legal reply: "No valid move found".
TDefenceOutcome FindBestDefence(TSolveRequest& request, bool bThorough);

} // namespace corvina

#endif
