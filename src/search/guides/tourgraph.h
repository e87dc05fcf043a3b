#ifndef CORVINA_SEARCH_GUIDES_TOURGRAPH_H
#define CORVINA_SEARCH_GUIDES_TOURGRAPH_H

#include "search/blocks.h"
#include "search/guides/keyplaces.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace corvina
{

/// Positions with White to move, each with some of his moves and the positions behind all of
/// Black's replies to them. The shortest mates within the graph are found from the mates back to
/// the root, however often lines come together or run in a circle.
class TTourGraph
{
public:
    static constexpr std::uint32_t NO_NODE = TKeyPlaces::NONE;

    /// Stands for a mate in one, which needs no move of the graph.
    static constexpr std::uint8_t MATE_IN_ONE = UINT8_MAX;

    /// Room for the hash of so many nodes; a graph has no more. Throws std::bad_alloc, as do the
    /// operations that add something.
    explicit TTourGraph(std::uint32_t nMaxNodes);

    /// The node of a position; a new one stands nLevel moves behind the root at the least. Nodes
    /// are numbered from 0 in the order of their making.
    std::uint32_t Add(std::uint64_t nKey, int nLevel);

    /// NO_NODE: the position isn't in the graph.
    std::uint32_t Find(std::uint64_t nKey) const;

    /// White's move of this index in the order of generation, and the nodes behind the replies.
    void AddMove(std::uint32_t nNode, std::uint8_t nMove, std::span<const std::uint32_t> replies);

    void AddMateInOne(std::uint32_t nNode);

    /// Finds the shortest mates of the graph as it stands. False: it has been stopped, and the
    /// mates are not to be used. The test for a stop is called now and then.
    bool Solve(const std::function<bool()>& isStopped);

    std::uint32_t Size() const { return static_cast<std::uint32_t>(m_nodes.size()); }
    std::size_t Bytes() const;
    int LevelOf(std::uint32_t nNode) const { return m_nodes[nNode].m_nLevel; }

    /// Moves to the shortest mate that Solve has found; 0: none.
    int MateOf(std::uint32_t nNode) const { return m_nodes[nNode].m_nMate; }

    /// The move that leads to it, or MATE_IN_ONE.
    std::uint8_t MoveOf(std::uint32_t nNode) const { return m_nodes[nNode].m_nMove; }

private:
    struct TNode
    {
        std::uint64_t m_nKey;
        std::uint32_t m_nFirstLink; ///< to the moves that a reply to leads here
        std::uint16_t m_nLevel;
        std::uint16_t m_nMate;
        std::uint8_t m_nMove;
    };

    struct TWhiteMove
    {
        std::uint32_t m_nNode; ///< where it is made
        std::uint16_t m_nReplies;
        std::uint8_t m_nMove;
    };

    struct TLink
    {
        std::uint32_t m_nWhiteMove;
        std::uint32_t m_nNext;
    };

    void ClearMates();

    TBlocks<TNode> m_nodes;
    TBlocks<TWhiteMove> m_moves;
    TBlocks<TLink> m_links;
    TKeyPlaces m_places;            ///< of the nodes
    TBlocks<std::uint16_t> m_left;  ///< replies of each move that aren't mated, for Solve
    TBlocks<std::uint32_t> m_mated; ///< nodes in the order of their mates, for Solve
};

} // namespace corvina

#endif
