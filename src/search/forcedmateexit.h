#ifndef CORVINA_SEARCH_FORCEDMATEEXIT_H
#define CORVINA_SEARCH_FORCEDMATEEXIT_H

#include "search/nodes.h"
#include "search/threadcontext.h"

namespace corvina
{

/// The way from a branch of the forced mate search back to the main search: where White has won
/// what could disturb him, quiet moves are as good as checks.

/// Is that so after White's last move? Black is to move on the child.
bool LeavesForcedMate(const TChessboard& child);

/// The main search on the child, without SH_FINDFORCEDMATE; where the Black king's place counts
/// among the heuristics, once more without those. Mask, signature and parameters are put back.
TSearchResult SearchAfterForcedMate(TChessboard& child);

/// Puts back the set of a record and its thread: mask, signature and parameters.
class TSetGuard
{
public:
    explicit TSetGuard(TChessboard& board);
    ~TSetGuard();
    TSetGuard(const TSetGuard&) = delete;
    TSetGuard& operator=(const TSetGuard&) = delete;

private:
    TChessboard& m_board;
    const std::uint32_t m_nHeuristics, m_nHeuristicsParams;
    const THeuristicsParams m_params;
};

} // namespace corvina

#endif
