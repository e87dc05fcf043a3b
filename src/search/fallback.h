#ifndef CORVINA_SEARCH_FALLBACK_H
#define CORVINA_SEARCH_FALLBACK_H

#include "search/threadcontext.h"

namespace corvina
{

/// The opposite of a relaxation: where the Black king has come to the edge and looks held there,
/// his defence is first analysed as if he had to stay where he is.

/// Is that worth a try after White's move? Only far from the leaves, a few moves into the line, in
/// pass 1, and not while the strict form is in force anyway.
bool MayFallBack(const TChessboard& child);

/// Puts the strict form of the edge heuristic on a record and its thread, for the life of the
/// object.
class TStricterSet
{
public:
    explicit TStricterSet(TChessboard& board);
    ~TStricterSet();
    TStricterSet(const TStricterSet&) = delete;
    TStricterSet& operator=(const TStricterSet&) = delete;

private:
    TChessboard& m_board;
    const std::uint32_t m_nHeuristics;
    const std::uint32_t m_nHeuristicsParams;
    const bool m_bKingMustNotMove;
};

} // namespace corvina

#endif
