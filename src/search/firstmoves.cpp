#include "search/firstmoves.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace corvina
{

TFirstMoveTable::TFirstMoveTable(std::vector<TMove> vecMoves)
    : m_vecFirstMoves(std::move(vecMoves)), m_vecOrder(m_vecFirstMoves.size()),
      m_vecLeftOut(m_vecFirstMoves.size()), m_vecResult(m_vecFirstMoves.size(), NOT_ANALYSED),
      m_vecInProgress(m_vecFirstMoves.size()), m_vecRound(m_vecFirstMoves.size())
{
    std::iota(m_vecOrder.begin(), m_vecOrder.end(), std::size_t{0});
}

std::optional<TFirstMoveTable::TPick> TFirstMoveTable::Pick(std::uint8_t nRound, bool bMayShare)
{
    const std::lock_guard guard(m_csTable);
    std::optional<std::size_t> best;
    for (const std::size_t i : m_vecOrder) {
        if (m_vecResult[i] >= 0 || m_vecRound[i] < nRound || m_vecLeftOut[i] ||
            (m_vecInProgress[i] && !bMayShare))
            continue;
        if (!best || m_vecRound[i] < m_vecRound[*best])
            best = i;
        if (m_vecRound[*best] == 0)
            break;
    }
    if (!best)
        return std::nullopt;
    const TPick pick{*best, m_vecRound[*best], m_vecInProgress[*best] > 0};
    ++m_vecRound[*best];
    ++m_vecInProgress[*best];
    return pick;
}

void TFirstMoveTable::GiveBack(std::size_t nIndex)
{
    const std::lock_guard guard(m_csTable);
    --m_vecRound[nIndex];
    --m_vecInProgress[nIndex];
}

bool TFirstMoveTable::Record(std::size_t nIndex, TSearchResult nResult)
{
    const std::lock_guard guard(m_csTable);
    --m_vecInProgress[nIndex];
    if (m_vecResult[nIndex] >= 0)
        return false;
    m_vecResult[nIndex] = nResult;
    return nResult >= 0;
}

std::vector<std::size_t> TFirstMoveTable::PlacesFrom(std::size_t nIndex, std::uint8_t nRound) const
{
    std::vector<std::size_t> vecPlaces;
    for (std::size_t k = 0; k < m_vecOrder.size(); ++k) {
        const std::size_t i = m_vecOrder[k];
        const bool bWaits = !vecPlaces.empty() && m_vecResult[i] < 0 && m_vecRound[i] == nRound &&
                            m_vecInProgress[i] == 0 && !m_vecLeftOut[i];
        if (i == nIndex || bWaits)
            vecPlaces.push_back(k);
    }
    return vecPlaces;
}

void TFirstMoveTable::Rearrange(std::size_t nIndex, std::uint8_t nRound, bool bForGood,
                                const TRearrange& rearrange)
{
    const std::lock_guard guard(m_csTable);
    --m_vecRound[nIndex];
    --m_vecInProgress[nIndex];
    const std::vector<std::size_t> vecPlaces = PlacesFrom(nIndex, nRound);
    std::vector<TMove> vecMoves;
    std::vector<std::size_t> vecIndices;
    for (const std::size_t k : vecPlaces) {
        vecIndices.push_back(m_vecOrder[k]);
        vecMoves.push_back(m_vecFirstMoves[m_vecOrder[k]]);
    }
    const int nLeftOut = rearrange(vecMoves.data(), static_cast<int>(vecMoves.size()));
    for (std::size_t n = 0; n < vecMoves.size(); ++n) {
        const std::size_t i =
            *std::find_if(vecIndices.begin(), vecIndices.end(), [&](std::size_t nCandidate) {
                return IsSameMove(m_vecFirstMoves[nCandidate], vecMoves[n]);
            });
        m_vecOrder[vecPlaces[n]] = i;
        if (static_cast<int>(n) < nLeftOut) {
            ++m_vecRound[i];
            m_vecLeftOut[i] = bForGood;
        }
    }
}

void TFirstMoveTable::LeaveOpen(std::size_t nIndex)
{
    const std::lock_guard guard(m_csTable);
    --m_vecInProgress[nIndex];
    m_vecLeftOut[nIndex] = true;
}

std::vector<TMove> TFirstMoveTable::MovesFrom(std::size_t nIndex, std::uint8_t nRound)
{
    const std::lock_guard guard(m_csTable);
    std::vector<TMove> vecMoves;
    for (const std::size_t k : PlacesFrom(nIndex, nRound))
        vecMoves.push_back(m_vecFirstMoves[m_vecOrder[k]]);
    return vecMoves;
}

bool TFirstMoveTable::RecordMate(const TMove& move)
{
    const std::lock_guard guard(m_csTable);
    const auto place = std::find_if(m_vecFirstMoves.begin(), m_vecFirstMoves.end(),
                                    [&](const TMove& other) { return IsSameMove(move, other); });
    if (place == m_vecFirstMoves.end())
        return false;
    TSearchResult& nResult = m_vecResult[static_cast<std::size_t>(place - m_vecFirstMoves.begin())];
    if (nResult >= 0)
        return false;
    nResult = 1;
    return true;
}

bool TFirstMoveTable::HasOpenMoves()
{
    const std::lock_guard guard(m_csTable);
    return std::any_of(m_vecResult.begin(), m_vecResult.end(),
                       [](TSearchResult nResult) { return nResult < 0; });
}

} // namespace corvina
