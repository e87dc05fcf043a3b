#include "search/mategraph.h"

#include <algorithm>

namespace corvina
{
namespace
{

constexpr std::uint32_t UNKNOWN = UINT32_MAX;
constexpr std::uint16_t NO_LEVEL = UINT16_MAX;
constexpr std::size_t FIRST_PLACES = 1 << 12;

/// Steps between two looks at the stop.
constexpr std::uint32_t STOP_PERIOD = 1 << 15;

/// What an open position costs, a move, each further reply to it, and a move by which a mate is too
/// late. A high price of replies leads along forcing lines, which reach a mate or an end soon.
constexpr std::uint32_t OPEN_COST = 8;
constexpr std::uint32_t MOVE_COST = 2;
constexpr std::uint32_t REPLY_COST = 8;
constexpr std::uint32_t DELAY_COST = 8;

/// Beyond it nothing is worth a look.
constexpr std::uint32_t MAX_COST = 1 << 16;

/// The levels are found anew when the graph has grown by a third.
constexpr std::uint32_t LEVEL_GROWTH = 3;

bool IsTimeToLook(std::size_t nStep)
{
    return nStep % STOP_PERIOD == 0;
}

} // namespace

void TMateGraph::TBuckets::Clear()
{
    for (auto& vecBucket : m_vecBuckets)
        vecBucket.clear();
}

void TMateGraph::TBuckets::Push(std::uint32_t nPlace, std::uint32_t nItem)
{
    if (nPlace > MAX_COST)
        return;
    if (nPlace >= m_vecBuckets.size())
        m_vecBuckets.resize(nPlace + 1);
    m_vecBuckets[nPlace].push_back(nItem);
}

TMateGraph::TMateGraph(int nMaxMoves) : m_nMaxMoves(nMaxMoves), m_vecPlaces(FIRST_PLACES, NONE) {}

/// Place of the key's node, or the free one where it belongs.
std::size_t TMateGraph::PlaceOf(std::uint64_t nKey) const
{
    const std::size_t nMask = m_vecPlaces.size() - 1;
    std::size_t nPlace = nKey & nMask;
    while (m_vecPlaces[nPlace] != NONE && m_nodes[m_vecPlaces[nPlace]].m_nKey != nKey)
        nPlace = (nPlace + 1) & nMask;
    return nPlace;
}

void TMateGraph::Rehash()
{
    m_vecPlaces.assign(2 * m_vecPlaces.size(), NONE);
    for (std::uint32_t i = 0; i < Size(); ++i)
        m_vecPlaces[PlaceOf(m_nodes[i].m_nKey)] = i;
}

std::uint32_t TMateGraph::Add(std::uint64_t nKey)
{
    std::size_t nPlace = PlaceOf(nKey);
    if (m_vecPlaces[nPlace] != NONE)
        return m_vecPlaces[nPlace];
    if (2 * m_nodes.size() >= m_vecPlaces.size()) {
        Rehash();
        nPlace = PlaceOf(nKey);
    }
    m_nodes.push_back({.m_nKey = nKey});
    return m_vecPlaces[nPlace] = Size() - 1;
}

std::uint32_t TMateGraph::Find(std::uint64_t nKey) const
{
    return m_vecPlaces[PlaceOf(nKey)];
}

void TMateGraph::AddMateInOne(std::uint32_t nNode)
{
    m_nodes[nNode].m_state = EState::MateInOne;
    m_nodes[nNode].m_nMateIndex = MATE_IN_ONE;
}

void TMateGraph::BeginMoves(std::uint32_t nNode)
{
    m_nodes[nNode].m_state = EState::HasMoves;
    m_nodes[nNode].m_nFirstMove = static_cast<std::uint32_t>(m_moves.size());
    m_nMovesOf = nNode;
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
        if (node.m_nFirstLink == NONE && nReply != 0)
            node.m_nLevel = nLevel;
        node.m_nLevel = std::min(node.m_nLevel, nLevel);
        node.m_nFirstLink = static_cast<std::uint32_t>(m_links.size() - 1);
    }
}

/// Moves that aren't opened, or are of no use, have no links to them.
bool TMateGraph::FindMates(const std::function<bool()>& isStopped)
{
    for (std::size_t i = 0; i < m_moves.size(); ++i) {
        m_moves[i].m_nLeft = m_moves[i].m_nReplies;
        if (IsTimeToLook(i) && isStopped())
            return false;
    }
    m_queue.clear();
    for (std::uint32_t i = 0; i < Size(); ++i) {
        TNode& node = m_nodes[i];
        node.m_nMate = node.m_state == EState::MateInOne;
        if (node.m_nMate)
            m_queue.push_back(i);
    }
    // The nodes come in the order of their mates, so the last reply to be mated is the best one.
    for (std::size_t i = 0; i < m_queue.size(); ++i) {
        if (IsTimeToLook(i) && isStopped())
            return false;
        const TNode& mated = m_nodes[m_queue[i]];
        for (auto nLink = mated.m_nFirstLink; nLink != NONE; nLink = m_links[nLink].m_nNext) {
            TWhiteMove& move = m_moves[m_links[nLink].m_nWhiteMove];
            TNode& node = m_nodes[move.m_nNode];
            if (--move.m_nLeft != 0 || node.m_nMate != 0)
                continue;
            node.m_nMate = static_cast<std::uint16_t>(mated.m_nMate + 1);
            node.m_nMateIndex = move.m_nIndex;
            m_queue.push_back(move.m_nNode);
        }
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
    return true;
}

bool TMateGraph::IsSolvedInTime(const TNode& node) const
{
    return node.m_nMate != 0 && node.m_nLevel + node.m_nMate + m_nCaution <= m_nMaxMoves;
}

/// The moves whose last reply gets its cost now get theirs: it is the largest.
void TMateGraph::SpreadCost(std::uint32_t nNode, std::uint32_t nCost)
{
    m_nodes[nNode].m_nCost = nCost;
    for (auto nLink = m_nodes[nNode].m_nFirstLink; nLink != NONE; nLink = m_links[nLink].m_nNext) {
        TWhiteMove& move = m_moves[m_links[nLink].m_nWhiteMove];
        move.m_nUnsolved = static_cast<std::uint16_t>(move.m_nUnsolved + (nCost > 0));
        if (--move.m_nLeft != 0)
            continue;
        const std::uint32_t nFurther = std::max<std::uint32_t>(move.m_nUnsolved, 1) - 1;
        move.m_nCost = nCost + MOVE_COST + REPLY_COST * nFurther;
        if (move.m_nCost < m_nodes[move.m_nNode].m_nCost)
            m_costs.Push(move.m_nCost, move.m_nNode);
    }
}

bool TMateGraph::FindCosts(int nDepthDivisor, const std::function<bool()>& isStopped)
{
    m_costs.Clear();
    for (std::uint32_t i = 0; i < Size(); ++i) {
        TNode& node = m_nodes[i];
        node.m_nCost = UNKNOWN;
        const int nDelay = node.m_nLevel + node.m_nMate + m_nCaution - m_nMaxMoves;
        if (node.m_nMate)
            m_costs.Push(DELAY_COST * static_cast<std::uint32_t>(std::max(nDelay, 0)), i);
        else if (node.m_state == EState::Open && node.m_nLevel < m_nMaxMoves)
            m_costs.Push(OPEN_COST + (nDepthDivisor ? 2 * node.m_nLevel / nDepthDivisor : 0), i);
    }
    for (std::uint32_t i = 0; i < m_moves.size(); ++i) {
        if (IsTimeToLook(i) && isStopped())
            return false;
        TWhiteMove& move = m_moves[i];
        move.m_nLeft = move.m_nReplies;
        move.m_nUnsolved = 0;
        move.m_nCost = UNKNOWN;
        if (move.m_nFirstReply != NONE || IsSolvedInTime(m_nodes[move.m_nNode]))
            continue;
        move.m_nCost =
            OPEN_COST + MOVE_COST + REPLY_COST * static_cast<std::uint32_t>(move.m_nReplies - 1);
        m_costs.Push(move.m_nCost, move.m_nNode);
    }
    std::size_t nSteps = 0;
    for (std::uint32_t nCost = 0; nCost < m_costs.Size(); ++nCost) {
        // A free move adds to the bucket at work; the buckets may move.
        for (std::size_t i = 0; i < m_costs[nCost].size(); ++i) {
            if (IsTimeToLook(++nSteps) && isStopped())
                return false;
            const std::uint32_t nNode = m_costs[nCost][i];
            if (nCost < m_nodes[nNode].m_nCost)
                SpreadCost(nNode, nCost);
        }
    }
    return true;
}

bool TMateGraph::Update(int nDepthDivisor, const std::function<bool()>& isStopped)
{
    return FindMates(isStopped) && FindLevels(isStopped) && FindCosts(nDepthDivisor, isStopped);
}

void TMateGraph::SpreadExcess(const TNode& node, std::uint32_t nExcess)
{
    for (std::uint32_t i = node.m_nFirstMove; i < node.m_nFirstMove + node.m_nMoves; ++i) {
        const TWhiteMove& move = m_moves[i];
        if (move.m_nCost == UNKNOWN)
            continue;
        const std::uint32_t nBehind = nExcess + (move.m_nCost - node.m_nCost);
        if (move.m_nFirstReply == NONE) {
            m_lazyMoves.Push(nBehind, i);
            continue;
        }
        for (std::uint32_t nReply = 0; nReply < move.m_nReplies; ++nReply) {
            const std::uint32_t nChild = m_replies[move.m_nFirstReply + nReply];
            TNode& child = m_nodes[nChild];
            if (child.m_nCost == 0 || child.m_nExcess <= nBehind)
                continue;
            child.m_nExcess = nBehind;
            m_costs.Push(nBehind, nChild);
        }
    }
}

TMateGraph::TChoice TMateGraph::Choose(std::size_t nWanted, const std::function<bool()>& isStopped)
{
    TChoice choice;
    if (m_nodes[0].m_nCost == UNKNOWN)
        return choice;
    for (TNode& node : m_nodes)
        node.m_nExcess = UNKNOWN;
    m_costs.Clear();
    m_lazyMoves.Clear();
    m_nodes[0].m_nExcess = 0;
    m_costs.Push(0, 0);
    std::size_t nSteps = 0;
    const std::size_t nMost = 4 * nWanted;
    for (std::uint32_t nExcess = 0; nExcess < std::max(m_costs.Size(), m_lazyMoves.Size()) &&
                                    choice.m_vecNodes.size() + choice.m_vecMoves.size() < nWanted;
         ++nExcess)
    {
        for (std::size_t i = 0; nExcess < m_costs.Size() && i < m_costs[nExcess].size(); ++i) {
            if (IsTimeToLook(++nSteps) && isStopped())
                return choice;
            const std::uint32_t nNode = m_costs[nExcess][i];
            const TNode& node = m_nodes[nNode];
            if (node.m_nExcess != nExcess || choice.m_vecNodes.size() >= nMost)
                continue;
            if (node.m_state == EState::Open)
                choice.m_vecNodes.push_back(nNode);
            else if (node.m_state == EState::HasMoves)
                SpreadExcess(node, nExcess);
        }
        if (nExcess < m_lazyMoves.Size()) {
            const auto& vecLazy = m_lazyMoves[nExcess];
            choice.m_vecMoves.insert(choice.m_vecMoves.end(), vecLazy.begin(), vecLazy.end());
        }
    }
    // All that is missing hangs on levels that are too low for the lines which matter.
    if (choice.m_vecNodes.empty() && choice.m_vecMoves.empty() && m_nodes[0].m_nMate != 0 &&
        m_nCaution < m_nMaxMoves)
    {
        ++m_nCaution;
        choice.m_bAgain = true;
    }
    return choice;
}

std::size_t TMateGraph::Bytes() const
{
    return m_nodes.size() * sizeof(TNode) + m_moves.size() * sizeof(TWhiteMove) +
           m_links.size() * sizeof(TLink) +
           (m_replies.size() + m_vecPlaces.size() + m_queue.size() + 2 * m_moves.size()) *
               sizeof(std::uint32_t);
}

} // namespace corvina
