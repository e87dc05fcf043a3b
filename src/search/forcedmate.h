#ifndef CORVINA_SEARCH_FORCEDMATE_H
#define CORVINA_SEARCH_FORCEDMATE_H

#include "search/nodes.h"
#include "search/threadcontext.h"

namespace corvina
{

/// The forced mate search: the nodes of the main search, but White tries only moves that check or
/// threaten (heuristics/forcingmoves.h). Answers as of the main search; as most nodes leave moves
/// out, "no mate" is most often doubtful. In pass 1 only, with SH_FINDFORCEDMATE in the mask.

/// Bounds in half-moves of the short mate search at the Black nodes; it stays two below them.
constexpr int FFM_BOUND_NARROW = 9;
constexpr int FFM_BOUND_WIDE = 11;         ///< at the levels from FFM_THREAT_3
constexpr int FFM_BOUND_AUTOMATIC = 32767; ///< the nodes choose

/// What a run of the search is told once, at its first move.
struct TForcedMateSettings
{
    int m_nLevel = FFM_CHECK_ONLY; ///< FFM_CHECK_ONLY to FFM_THREAT_5
    int m_nBound = FFM_BOUND_AUTOMATIC;
    int m_nWithOther = FFM_OTHERS_OFF; ///< when the other heuristics of the mask apply
};

/// Those of the board's thread and request.
TForcedMateSettings GetForcedMateSettings(const TChessboard& board);

/// The search against every reply of Black, who is to move with at least 2 half-moves left. Throws
/// std::invalid_argument for settings that no search exists for.
TSearchResult FindForcedMate(TChessboard& child);
TSearchResult FindForcedMate(TChessboard& child, const TForcedMateSettings& settings);

/// White has a knight, and each of his last nMoves moves was a check, as far as none was answered
/// by a capture and hardly one of them was one. White is to move.
bool IsLongCheckSeries(const TChessboard& board, int nMoves);

} // namespace corvina

#endif
