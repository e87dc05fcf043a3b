#include "search/guides/mategraph.h"

#include <algorithm>
#include <utility>

namespace corvina
{
namespace
{

constexpr std::uint32_t UNKNOWN = TMateGraph::NONE;

/// What an open position costs, a move, each further reply to it, and a move by which a mate is too
/// late. A high price of replies leads along forcing lines, which reach a mate or an end soon.
constexpr std::uint32_t OPEN_COST = 8;
constexpr std::uint32_t MOVE_COST = 2;
constexpr std::uint32_t REPLY_COST = 16;
constexpr std::uint32_t DELAY_COST = 8;

/// Beyond it nothing is worth a look.
constexpr std::uint32_t MAX_COST = 1 << 16;

} // namespace

void TMateGraph::TBuckets::Clear()
{
    for (std::size_t i = 0; i < m_nUsed; ++i)
        m_vecBuckets[i].clear();
    m_nUsed = 0;
}

void TMateGraph::TBuckets::Push(std::uint32_t nPlace, std::uint32_t nItem)
{
    if (nPlace > MAX_COST)
        return;
    if (nPlace >= m_vecBuckets.size())
        m_vecBuckets.resize(nPlace + 1);
    m_vecBuckets[nPlace].push_back(nItem);
    m_nUsed = std::max<std::size_t>(m_nUsed, nPlace + 1);
}

/// Moves by which a mate behind the node comes too late for the root, less than 0: it doesn't.
int TMateGraph::DelayOf(const TNode& node) const
{
    return node.m_nLevel + node.m_nMate + m_nCaution - m_nMaxMoves;
}

bool TMateGraph::IsSolvedInTime(const TNode& node) const
{
    return node.m_nMate != 0 && DelayOf(node) <= 0;
}

std::uint32_t TMateGraph::CostOfMove(const TWhiteMove& move) const
{
    if (move.m_nFirstReply == NONE) {
        if (IsSolvedInTime(m_nodes[move.m_nNode]))
            return UNKNOWN;
        return OPEN_COST + MOVE_COST + REPLY_COST * static_cast<std::uint32_t>(move.m_nReplies - 1);
    }
    std::uint32_t nLargest = 0, nUnsolved = 0;
    for (std::uint32_t i = 0; i < move.m_nReplies; ++i) {
        const std::uint32_t nCost = m_nodes[m_replies[move.m_nFirstReply + i]].m_nCost;
        if (nCost == UNKNOWN)
            return UNKNOWN;
        nLargest = std::max(nLargest, nCost);
        nUnsolved += nCost > 0;
    }
    if (move.m_nReplies == 0)
        return UNKNOWN;
    return nLargest + MOVE_COST + REPLY_COST * (std::max<std::uint32_t>(nUnsolved, 1) - 1);
}

std::uint32_t TMateGraph::DueCost(const TNode& node) const
{
    std::uint32_t nCost = UNKNOWN;
    if (node.m_nMate)
        nCost = DELAY_COST * static_cast<std::uint32_t>(std::max(DelayOf(node), 0));
    else if (node.m_state == EState::Open && node.m_nLevel < m_nMaxMoves)
        nCost = OPEN_COST + (m_nDepthDivisor ? 2 * node.m_nLevel / m_nDepthDivisor : 0);
    for (std::uint32_t i = 0; i < node.m_nMoves; ++i)
        nCost = std::min(nCost, m_moves[node.m_nFirstMove + i].m_nCost);
    return nCost > MAX_COST ? UNKNOWN : nCost;
}

/// Puts a node whose cost isn't the one due where its turn comes: at the lesser of the two.
void TMateGraph::Await(std::uint32_t nNode)
{
    const TNode& node = m_nodes[nNode];
    if (node.m_nCost != node.m_nDueCost)
        m_costs.Push(std::min(node.m_nCost, node.m_nDueCost), nNode);
}

void TMateGraph::CountMoves(std::uint32_t nNode)
{
    TNode& node = m_nodes[nNode];
    for (std::uint32_t i = 0; i < node.m_nMoves; ++i) {
        TWhiteMove& move = m_moves[node.m_nFirstMove + i];
        move.m_nCost = CostOfMove(move);
    }
    node.m_nDueCost = DueCost(node);
    Await(nNode);
}

/// Counts the moves anew to which a reply leads to the node.
void TMateGraph::SpreadCost(std::uint32_t nNode)
{
    for (auto nLink = m_nodes[nNode].m_nFirstLink; nLink != NONE; nLink = m_links[nLink].m_nNext) {
        TWhiteMove& move = m_moves[m_links[nLink].m_nWhiteMove];
        const std::uint32_t nOld = std::exchange(move.m_nCost, CostOfMove(move));
        if (move.m_nCost == nOld)
            continue;
        TNode& node = m_nodes[move.m_nNode];
        if (move.m_nCost <= std::min(node.m_nDueCost, MAX_COST))
            node.m_nDueCost = move.m_nCost;
        else if (nOld == node.m_nDueCost)
            node.m_nDueCost = DueCost(node);
        else
            continue;
        Await(move.m_nNode);
    }
}

/// Shortest ways from what has changed, in the manner of Ramalingam and Reps (An incremental
/// algorithm for a generalization of the shortest-path problem, 1996): nodes come by the lesser of
/// their costs, old and due; one that gets dearer loses its cost first, so that no circle of nodes
/// goes on believing in itself.
bool TMateGraph::UpdateCosts(const std::function<bool()>& isStopped)
{
    std::size_t nSteps = 0;
    for (std::uint32_t nCost = 0; nCost < m_costs.Size(); ++nCost) {
        // The buckets may move.
        for (std::size_t i = 0; i < m_costs[nCost].size(); ++i) {
            if (IsTimeToLook(++nSteps) && isStopped())
                return false;
            const std::uint32_t nNode = m_costs[nCost][i];
            TNode& node = m_nodes[nNode];
            if (node.m_nCost == node.m_nDueCost || std::min(node.m_nCost, node.m_nDueCost) != nCost)
                continue;
            if (node.m_nDueCost < node.m_nCost) {
                node.m_nCost = node.m_nDueCost;
                SpreadCost(nNode);
            }
            else {
                node.m_nCost = UNKNOWN;
                SpreadCost(nNode);
                Await(nNode);
            }
        }
    }
    m_costs.Clear();
    return true;
}

bool TMateGraph::Update(int nDepthDivisor, const std::function<bool()>& isStopped)
{
    m_bAllChanged |= std::exchange(m_nDepthDivisor, nDepthDivisor) != nDepthDivisor;
    if (!SpreadMates(isStopped) || !FindLevels(isStopped))
        return false;
    // What a stop or a choice has left there.
    m_costs.Clear();
    if (m_bAllChanged) {
        for (TWhiteMove& move : m_moves)
            move.m_nCost = UNKNOWN;
        for (TNode& node : m_nodes) {
            node.m_nCost = node.m_nDueCost = UNKNOWN;
            node.m_bChanged = false;
        }
        m_changed.clear();
        for (std::uint32_t i = 0; i < Size(); ++i) {
            if (IsTimeToLook(i) && isStopped())
                return false;
            CountMoves(i);
        }
    }
    for (const std::uint32_t nNode : m_changed) {
        m_nodes[nNode].m_bChanged = false;
        CountMoves(nNode);
    }
    m_changed.clear();
    m_bAllChanged = true;
    if (!UpdateCosts(isStopped))
        return false;
    m_bAllChanged = false;
    return true;
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
            if (child.m_nExcess == UNKNOWN)
                m_reached.push_back(nChild);
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
    for (const std::uint32_t nNode : m_reached)
        m_nodes[nNode].m_nExcess = UNKNOWN;
    m_reached.clear();
    m_costs.Clear();
    m_lazyMoves.Clear();
    m_nodes[0].m_nExcess = 0;
    m_reached.push_back(0);
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
        m_bAllChanged = true;
        choice.m_bAgain = true;
    }
    return choice;
}

} // namespace corvina
