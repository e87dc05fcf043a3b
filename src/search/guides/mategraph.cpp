#include "search/guides/mategraph.h"

#include <algorithm>
#include <utility>

namespace corvina
{
namespace
{

constexpr std::uint16_t NO_LEVEL = UINT16_MAX;
constexpr std::size_t FIRST_PLACES = 1 << 11;

/// The levels are found anew when the graph has grown by a third.
constexpr std::uint32_t LEVEL_GROWTH = 3;

} // namespace

TMateGraph::TMateGraph(int nMaxMoves) : m_nMaxMoves(nMaxMoves), m_places(FIRST_PLACES) {}

void TMateGraph::NoteChange(std::uint32_t nNode)
{
    if (std::exchange(m_nodes[nNode].m_bChanged, true))
        return;
    m_changed.push_back(nNode);
}

std::uint32_t TMateGraph::Add(std::uint64_t nKey)
{
    const std::uint32_t nNode =
        m_places.FindOrAdd(nKey, Size(), [this](std::uint32_t n) { return m_nodes[n].m_nKey; });
    if (nNode == Size()) {
        m_nodes.push_back({.m_nKey = nKey});
        NoteChange(nNode);
    }
    return nNode;
}

std::uint32_t TMateGraph::Find(std::uint64_t nKey) const
{
    return m_places.Find(nKey, [this](std::uint32_t n) { return m_nodes[n].m_nKey; });
}

/// A mate that is spread later, when it is the shortest yet.
void TMateGraph::NoteMate(std::uint32_t nNode, int nMate, std::uint8_t nIndex)
{
    TNode& node = m_nodes[nNode];
    if (node.m_nMate != 0 && node.m_nMate <= nMate)
        return;
    node.m_nMate = static_cast<std::uint16_t>(nMate);
    node.m_nMateIndex = nIndex;
    m_newMates.push_back(nNode);
    NoteChange(nNode);
}

void TMateGraph::AddMateInOne(std::uint32_t nNode)
{
    m_nodes[nNode].m_state = EState::MateInOne;
    NoteMate(nNode, 1, MATE_IN_ONE);
}

void TMateGraph::BeginMoves(std::uint32_t nNode)
{
    m_nodes[nNode].m_state = EState::HasMoves;
    m_nodes[nNode].m_nFirstMove = static_cast<std::uint32_t>(m_moves.size());
    m_nMovesOf = nNode;
    NoteChange(nNode);
}

void TMateGraph::AddMove(std::uint8_t nIndex, int nReplies)
{
    m_moves.push_back({.m_nNode = m_nMovesOf,
                       .m_nReplies = static_cast<std::uint16_t>(nReplies),
                       .m_nIndex = nIndex});
    ++m_nodes[m_nMovesOf].m_nMoves;
}

void TMateGraph::OpenMove(std::uint32_t nMove, std::span<const std::uint32_t> replies)
{
    TWhiteMove& move = m_moves[nMove];
    move.m_nFirstReply = static_cast<std::uint32_t>(m_replies.size());
    move.m_nReplies = static_cast<std::uint16_t>(replies.size());
    const auto nLevel = static_cast<std::uint16_t>(m_nodes[move.m_nNode].m_nLevel + 1);
    for (const std::uint32_t nReply : replies) {
        TNode& node = m_nodes[nReply];
        m_replies.push_back(nReply);
        m_links.push_back({nMove, node.m_nFirstLink});
        if ((node.m_nFirstLink == NONE && nReply != 0) || nLevel < node.m_nLevel) {
            node.m_nLevel = nLevel;
            NoteChange(nReply);
        }
        node.m_nFirstLink = static_cast<std::uint32_t>(m_links.size() - 1);
    }
    NoteChange(move.m_nNode);
    TryMateBy(nMove);
}

/// The move mates when each of its replies is mated.
void TMateGraph::TryMateBy(std::uint32_t nMove)
{
    const TWhiteMove& move = m_moves[nMove];
    int nLongest = 0;
    for (std::uint32_t i = 0; i < move.m_nReplies; ++i) {
        const int nMate = m_nodes[m_replies[move.m_nFirstReply + i]].m_nMate;
        if (nMate == 0)
            return;
        nLongest = std::max(nLongest, nMate);
    }
    if (nLongest != 0)
        NoteMate(move.m_nNode, nLongest + 1, move.m_nIndex);
}

/// Mates only get shorter: a node comes up again when its mate does.
bool TMateGraph::SpreadMates(const std::function<bool()>& isStopped)
{
    for (std::size_t i = 0; !m_newMates.empty(); ++i) {
        if (IsTimeToLook(i) && isStopped())
            return false;
        const std::uint32_t nMated = m_newMates.front();
        m_newMates.pop_front();
        for (auto nLink = m_nodes[nMated].m_nFirstLink; nLink != NONE;
             nLink = m_links[nLink].m_nNext)
            TryMateBy(m_links[nLink].m_nWhiteMove);
    }
    return true;
}

bool TMateGraph::FindLevels(const std::function<bool()>& isStopped)
{
    if (Size() < m_nLeveledSize + m_nLeveledSize / LEVEL_GROWTH)
        return true;
    for (TNode& node : m_nodes)
        node.m_nLevel = NO_LEVEL;
    m_nodes[0].m_nLevel = 0;
    m_queue.assign(1, 0);
    for (std::size_t i = 0; i < m_queue.size(); ++i) {
        if (IsTimeToLook(i) && isStopped())
            return false;
        const TNode& node = m_nodes[m_queue[i]];
        for (std::uint32_t nMove = 0; nMove < node.m_nMoves; ++nMove) {
            const TWhiteMove& move = m_moves[node.m_nFirstMove + nMove];
            if (move.m_nFirstReply == NONE)
                continue;
            for (std::uint32_t nReply = 0; nReply < move.m_nReplies; ++nReply) {
                const std::uint32_t nChild = m_replies[move.m_nFirstReply + nReply];
                if (m_nodes[nChild].m_nLevel != NO_LEVEL)
                    continue;
                m_nodes[nChild].m_nLevel = static_cast<std::uint16_t>(node.m_nLevel + 1);
                m_queue.push_back(nChild);
            }
        }
    }
    m_nLeveledSize = Size();
    m_bAllChanged = true;
    return true;
}

std::size_t TMateGraph::Bytes() const
{
    return m_nodes.size() * sizeof(TNode) + m_moves.size() * sizeof(TWhiteMove) +
           m_links.size() * sizeof(TLink) + m_places.Bytes() +
           (m_replies.size() + m_queue.size() + m_reached.size() + 2 * m_moves.size()) *
               sizeof(std::uint32_t);
}

} // namespace corvina
