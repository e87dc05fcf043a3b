#ifndef CORVINA_SEARCH_GUIDES_MATEGRAPH_H
#define CORVINA_SEARCH_GUIDES_MATEGRAPH_H

#include "search/blocks.h"
#include "search/guides/keyplaces.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace corvina
{

/// Positions with White to move, and his moves there, of which only those that look good are
/// opened: given the positions behind Black's replies. A position stands in it once, however many
/// moves lead to it. The graph tells where the least seems to be missing to a mate of the root, and
/// finds the mates backwards from those in one.
///
/// What is missing is a cost: of an open position a constant and a share of the moves played to it;
/// of a move the largest of its replies and some more for each further one; of a position the least
/// of its moves. A mate that comes too late for the root costs by how much, so that a shorter one
/// is looked for.
///
/// Mates and costs are kept up to date: an update goes through what has changed and what hangs on
/// it, and through all only when what the graph is measured by has changed.
class TMateGraph
{
public:
    static constexpr std::uint32_t NONE = TKeyPlaces::NONE;

    /// Stands for a mate in one, which needs no move of the graph.
    static constexpr std::uint8_t MATE_IN_ONE = UINT8_MAX;

    /// For a mate of the first node, the root, in so many moves. Operations that add something
    /// throw std::bad_alloc.
    explicit TMateGraph(int nMaxMoves);

    /// The node of a position, made if need be: nodes are numbered from 0.
    std::uint32_t Add(std::uint64_t nKey);

    /// NONE: the position isn't in the graph.
    std::uint32_t Find(std::uint64_t nKey) const;

    void AddMateInOne(std::uint32_t nNode);

    /// Gives an open node its moves by AddMove, one directly after the other: with their index in
    /// the order of generation, and the number of Black's replies, or about that number.
    void BeginMoves(std::uint32_t nNode);
    void AddMove(std::uint8_t nIndex, int nReplies);

    /// Gives a move the nodes behind its replies. None: the move is of no use.
    void OpenMove(std::uint32_t nMove, std::span<const std::uint32_t> replies);

    /// Finds the shortest mates of the graph as it stands, and what is missing elsewhere: for a
    /// share of 2 / nDepthDivisor for each move played; 0: none. Another divisor than the last one
    /// takes longer. False: it has been stopped, and the answers are not to be used. The test for a
    /// stop is called now and then.
    bool Update(int nDepthDivisor, const std::function<bool()>& isStopped);

    /// What is to be given moves, and which moves are to be opened, about nWanted in all: those
    /// that decide what the root costs first. Nothing: the graph has no mate in it.
    struct TChoice
    {
        std::vector<std::uint32_t> m_vecNodes;
        std::vector<std::uint32_t> m_vecMoves;
        bool m_bAgain = false; ///< nothing yet: another update is to come first
    };
    TChoice Choose(std::size_t nWanted, const std::function<bool()>& isStopped);

    std::uint32_t NodeOfMove(std::uint32_t nMove) const { return m_moves[nMove].m_nNode; }
    std::uint8_t IndexOfMove(std::uint32_t nMove) const { return m_moves[nMove].m_nIndex; }
    bool IsOpened(std::uint32_t nMove) const { return m_moves[nMove].m_nFirstReply != NONE; }
    bool IsOpen(std::uint32_t nNode) const { return m_nodes[nNode].m_state == EState::Open; }

    std::uint32_t Size() const { return static_cast<std::uint32_t>(m_nodes.size()); }
    std::size_t Bytes() const;

    /// Moves played to it at the least, as of the last update.
    int LevelOf(std::uint32_t nNode) const { return m_nodes[nNode].m_nLevel; }

    /// Moves to the shortest mate that Update has found; 0: none.
    int MateOf(std::uint32_t nNode) const { return m_nodes[nNode].m_nMate; }

    /// The move that leads to it, or MATE_IN_ONE.
    std::uint8_t MoveOf(std::uint32_t nNode) const { return m_nodes[nNode].m_nMateIndex; }

    /// What is missing, as of the last update; NONE: the graph has no mate in it.
    std::uint32_t CostOf(std::uint32_t nNode) const { return m_nodes[nNode].m_nCost; }

private:
    enum class EState : std::uint8_t
    {
        Open,
        HasMoves,
        MateInOne
    };

    struct TNode
    {
        std::uint64_t m_nKey;
        std::uint32_t m_nFirstMove = NONE;
        std::uint32_t m_nFirstLink = NONE; ///< to the moves that a reply to leads here
        std::uint32_t m_nCost = NONE;
        std::uint32_t m_nDueCost = NONE; ///< by the costs of its moves as they stand
        std::uint32_t m_nExcess = NONE;  ///< by which the root would cost more on the way by it
        std::uint16_t m_nMoves = 0;
        std::uint16_t m_nLevel = 0;
        std::uint16_t m_nMate = 0;
        std::uint8_t m_nMateIndex = 0;
        EState m_state = EState::Open;
        bool m_bChanged = false; ///< it waits for an update
    };

    struct TWhiteMove
    {
        std::uint32_t m_nNode; ///< where it is made
        std::uint32_t m_nFirstReply = NONE;
        std::uint32_t m_nCost = NONE;
        std::uint16_t m_nReplies;
        std::uint8_t m_nIndex;
    };

    struct TLink
    {
        std::uint32_t m_nWhiteMove;
        std::uint32_t m_nNext;
    };

    /// Items by a number, to be gone through in its order.
    class TBuckets
    {
    public:
        void Clear();
        void Push(std::uint32_t nPlace, std::uint32_t nItem);
        std::size_t Size() const { return m_vecBuckets.size(); }
        std::vector<std::uint32_t>& operator[](std::size_t n) { return m_vecBuckets[n]; }

    private:
        std::vector<std::vector<std::uint32_t>> m_vecBuckets;
        std::size_t m_nUsed = 0; ///< those behind are empty
    };

    /// The test for a stop is called so seldom.
    static bool IsTimeToLook(std::size_t nStep) { return nStep % (1 << 15) == 0; }

    void NoteChange(std::uint32_t nNode);
    void NoteMate(std::uint32_t nNode, int nMate, std::uint8_t nIndex);
    void TryMateBy(std::uint32_t nMove);
    bool SpreadMates(const std::function<bool()>& isStopped);
    bool FindLevels(const std::function<bool()>& isStopped);
    bool IsSolvedInTime(const TNode& node) const;
    int DelayOf(const TNode& node) const;
    std::uint32_t CostOfMove(const TWhiteMove& move) const;
    std::uint32_t DueCost(const TNode& node) const;
    void CountMoves(std::uint32_t nNode);
    void Await(std::uint32_t nNode);
    void SpreadCost(std::uint32_t nNode);
    bool UpdateCosts(const std::function<bool()>& isStopped);
    void SpreadExcess(const TNode& node, std::uint32_t nExcess);

    const int m_nMaxMoves;
    TBlocks<TNode> m_nodes;
    TBlocks<TWhiteMove> m_moves;
    TBlocks<TLink> m_links;
    TBlocks<std::uint32_t> m_replies;  ///< nodes, of one move after the other
    TKeyPlaces m_places;               ///< of the nodes
    std::uint32_t m_nMovesOf = NONE;   ///< the node of AddMove
    std::uint32_t m_nLeveledSize = 0;  ///< nodes of the graph when the levels were found
    int m_nCaution = 0;                ///< moves by which levels are taken to be too low
    int m_nDepthDivisor = 0;           ///< of the last update
    bool m_bAllChanged = true;         ///< the next update counts every cost anew
    TBlocks<std::uint32_t> m_changed;  ///< nodes that wait for an update
    TBlocks<std::uint32_t> m_newMates; ///< nodes whose mates haven't been spread
    TBlocks<std::uint32_t> m_queue, m_reached;
    TBuckets m_costs, m_lazyMoves;
};

} // namespace corvina

#endif
