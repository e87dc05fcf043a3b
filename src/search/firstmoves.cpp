#include "search/firstmoves.h"

#include <algorithm>
#include <utility>

namespace corvina
{

TFirstMoveTable::TFirstMoveTable(std::vector<TMove> vecMoves)
    : m_vecFirstMoves(std::move(vecMoves)), m_vecResult(m_vecFirstMoves.size(), NOT_ANALYSED),
      m_vecInProgress(m_vecFirstMoves.size()), m_vecRound(m_vecFirstMoves.size())
{
}

std::optional<TFirstMoveTable::TPick> TFirstMoveTable::Pick(std::uint8_t nRound, bool bMayShare)
{
    const std::lock_guard guard(m_csTable);
    std::optional<std::size_t> best;
    for (std::size_t i = 0; i < m_vecFirstMoves.size(); ++i) {
        if (m_vecResult[i] >= 0 || m_vecRound[i] < nRound || (m_vecInProgress[i] && !bMayShare))
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
