#ifndef CORVINA_HEURISTICS_NARROWEDLISTS_H
#define CORVINA_HEURISTICS_NARROWEDLISTS_H

#include "heuristics/heuristicbits.h"
#include "search/hooks.h"
#include "search/threadcontext.h"

namespace corvina
{

/// Heuristics that put a list of their own in the place of White's moves.
constexpr std::uint32_t NARROWING_MASK = SH_ZUGZWANGTRIANGLES | SH_SEASNAKE | SH_ZUGZWANG;

/// White's moves as such a heuristic sees them.
struct TNarrowedList
{
    int m_nMoves = 0;            ///< 0: all of White's moves are to be tried
    std::uint32_t m_nReason = 0; ///< the heuristic that has left out the others
    bool m_bMate = false;        ///< no list: it was proved that White mates in time
};

/// The first list that the set of the record asks for and that has a move; they are all legal. A
/// heuristic whose pattern has gone leaves the record's mask, and so the subtree. Uses the slot of
/// the record's children.
TNarrowedList ListNarrowedMoves(TChessboard& board, TMove* pMoves);

/// Takes a heuristic off the record, and so off its subtree.
inline void DropForSubtree(TChessboard& board, std::uint32_t nHeuristic)
{
    board.m_nHeuristics &= ~nHeuristic;
    board.m_nHeuristicsParams = ComputeHeurParams(board);
}

/// The move can be made on the record, whose children's slot it uses.
inline bool IsPlayable(TChessboard& board, TMove move)
{
    return ContextOf(board).MakeChild(board).MakeWhiteMove(&move);
}

} // namespace corvina

#endif
