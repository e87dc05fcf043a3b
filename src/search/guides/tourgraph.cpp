#include "search/guides/tourgraph.h"

namespace corvina
{
namespace
{

constexpr std::uint32_t END = UINT32_MAX;

/// Steps between two looks at the stop.
constexpr std::size_t STOP_PERIOD = 1 << 16;

} // namespace

TTourGraph::TTourGraph(std::uint32_t nMaxNodes) : m_places(nMaxNodes) {}

std::uint32_t TTourGraph::Add(std::uint64_t nKey, int nLevel)
{
    const std::uint32_t nNode =
        m_places.FindOrAdd(nKey, Size(), [this](std::uint32_t n) { return m_nodes[n].m_nKey; });
    if (nNode == Size())
        m_nodes.push_back({nKey, END, static_cast<std::uint16_t>(nLevel), 0, 0});
    return nNode;
}

std::uint32_t TTourGraph::Find(std::uint64_t nKey) const
{
    return m_places.Find(nKey, [this](std::uint32_t n) { return m_nodes[n].m_nKey; });
}

void TTourGraph::AddMove(std::uint32_t nNode, std::uint8_t nMove,
                         std::span<const std::uint32_t> replies)
{
    const auto nWhiteMove = static_cast<std::uint32_t>(m_moves.size());
    m_moves.push_back({nNode, static_cast<std::uint16_t>(replies.size()), nMove});
    for (const std::uint32_t nReply : replies) {
        std::uint32_t& nFirst = m_nodes[nReply].m_nFirstLink;
        m_links.push_back({nWhiteMove, nFirst});
        nFirst = static_cast<std::uint32_t>(m_links.size() - 1);
    }
}

void TTourGraph::AddMateInOne(std::uint32_t nNode)
{
    m_nodes[nNode].m_nMate = 1;
    m_nodes[nNode].m_nMove = MATE_IN_ONE;
}

void TTourGraph::ClearMates()
{
    m_mated.clear();
    for (std::uint32_t i = 0; i < Size(); ++i) {
        TNode& node = m_nodes[i];
        if (node.m_nMove == MATE_IN_ONE)
            m_mated.push_back(i);
        else
            node.m_nMate = 0;
    }
    m_left.resize(m_moves.size());
    for (std::size_t i = 0; i < m_moves.size(); ++i)
        m_left[i] = m_moves[i].m_nReplies;
}

bool TTourGraph::Solve(const std::function<bool()>& isStopped)
{
    ClearMates();
    // The nodes come in the order of their mates, so the last reply to be mated is the best one.
    for (std::size_t i = 0; i < m_mated.size(); ++i) {
        if (i % STOP_PERIOD == 0 && isStopped())
            return false;
        const TNode& mated = m_nodes[m_mated[i]];
        for (std::uint32_t nLink = mated.m_nFirstLink; nLink != END; nLink = m_links[nLink].m_nNext)
        {
            const std::uint32_t nMove = m_links[nLink].m_nWhiteMove;
            if (--m_left[nMove] != 0)
                continue;
            TNode& node = m_nodes[m_moves[nMove].m_nNode];
            if (node.m_nMate != 0)
                continue;
            node.m_nMate = static_cast<std::uint16_t>(mated.m_nMate + 1);
            node.m_nMove = m_moves[nMove].m_nMove;
            m_mated.push_back(m_moves[nMove].m_nNode);
        }
    }
    return true;
}

std::size_t TTourGraph::Bytes() const
{
    return m_nodes.size() * sizeof(TNode) + m_moves.size() * sizeof(TWhiteMove) +
           m_links.size() * sizeof(TLink) + m_places.Bytes() +
           m_mated.size() * sizeof(std::uint32_t) + m_left.size() * sizeof(std::uint16_t);
}

} // namespace corvina
