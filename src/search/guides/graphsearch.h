#ifndef CORVINA_SEARCH_GUIDES_GRAPHSEARCH_H
#define CORVINA_SEARCH_GUIDES_GRAPHSEARCH_H

#include "search/guides/mategraph.h"
#include "search/guides/packedboard.h"
#include "search/guides/sidesearch.h"

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace corvina
{

/// Finds long mates in a graph of positions that grows where the least seems to be missing: along
/// White's moves with few replies. Lines that come together, with more or fewer moves played, are
/// searched once, and tempo moves that lead round in a circle cost nothing. Where a mate has been
/// found that is too long, the graph grows on where it may be made shorter.
class TGraphSearch : public TSideSearch
{
public:
    /// Of the root's task; the root must outlive the object. Throws std::bad_alloc.
    TGraphSearch(const TChessboard& root, std::uint16_t nThreadId);

    EAnswer Search(std::uint64_t nPositions) override;

private:
    int DepthDivisor() const;
    EAnswer BeginRound();
    bool GrowByOne();
    TChessboard BoardOf(std::uint32_t nNode) const;
    void Expand(std::uint32_t nNode);
    void Open(std::uint32_t nMove);
    int CountReplies(TChessboard& board);
    TKnownMate FindMate(const TChessboard& board) const override;

    TMateGraph m_graph;
    TBlocks<TPackedBoard> m_boards; ///< of the nodes
    /// The last moves to the nodes that allow a capture en passant.
    std::unordered_map<std::uint32_t, TMove> m_mapLastMoves;
    TMateGraph::TChoice m_choice; ///< of this round
    std::size_t m_nDone = 0;      ///< of the choice, its nodes first
    std::size_t m_nGrown = 0;     ///< nodes that have been given moves, in all
    int m_nRound = 0;
    bool m_bTooLong = false; ///< a mate of the root is known that takes too many moves
    std::vector<std::uint32_t> m_vecReplyNodes;
};

} // namespace corvina

#endif
