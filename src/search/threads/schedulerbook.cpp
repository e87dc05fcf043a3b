#include "search/threads/schedulerbook.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// Seconds by the level minus the number of levels, from -8 to 0: the moves near the root, which
/// take longest, are changed least.
struct TLevelQuanta
{
    int m_nFirst;
    int m_nNext; ///< FRACTION, TENTH: shorter than a second
    int m_nFactor;
};

constexpr int FRACTION = 0;
constexpr int TENTH = -1;

constexpr TLevelQuanta g_aQuanta[] = {{83, 21, 2}, {55, 13, 2}, {35, 8, 2}, {25, 5, 2}, {21, 3, 2},
                                      {17, 2, 2},  {11, 1, 3},  {5, 0, 7},  {3, -1, 10}};

/// Behind the levels, of good moves; the others have a TENTH.
constexpr TLevelQuanta QUANTA_BEYOND = {6, 2, 1};

constexpr int CREDIT_OF_SECOND = 10;

const TLevelQuanta& QuantaOf(int nLevel, int nLevels)
{
    constexpr int LAST = static_cast<int>(std::size(g_aQuanta)) - 1;
    if (nLevel > nLevels)
        return QUANTA_BEYOND;
    return g_aQuanta[std::max(LAST + nLevel - nLevels, 0)];
}

TSchedulerBook::TQuantum QuantumOfSeconds(int nSeconds)
{
    switch (nSeconds) {
    case FRACTION:
        return {0.3, 3};
    case TENTH:
        return {0.1, 1};
    default:
        return {static_cast<double>(nSeconds), CREDIT_OF_SECOND * nSeconds};
    }
}

} // namespace

void TSchedulerBook::Start(int nIndex, bool bForcing)
{
    m_aMoves[Place(nIndex)].m_bStarted = true;
    ++m_nStarted;
    m_nForcingMoves += bForcing && nIndex == m_nForcingMoves;
}

void TSchedulerBook::Finish(int nIndex)
{
    m_aMoves[Place(nIndex)].m_bFinished = true;
    m_setDoneMoves.insert(nIndex);
}

int TSchedulerBook::FirstFree() const
{
    for (int i = 0; i < MAX_SHARED_MOVES; ++i) {
        if (IsUnfinished(i))
            return i;
    }
    return NONE;
}

TSchedulerBook::TQuantum TSchedulerBook::QuantumOf(int nIndex) const
{
    const TLevelQuanta& quanta = QuantaOf(m_nLevel, m_nLevels);
    const int nFirstFree = FirstFree();
    if (m_nStarted == 1 || nIndex == 0 || nFirstFree == NONE || nFirstFree >= nIndex)
        return QuantumOfSeconds(quanta.m_nFirst);
    if (m_nLevel > m_nLevels && nIndex >= m_nGoodMoves)
        return QuantumOfSeconds(IsFavoured(nIndex) ? 1 : TENTH);
    if (!IsFavoured(nIndex))
        return QuantumOfSeconds(quanta.m_nNext);
    if (quanta.m_nNext == FRACTION)
        return QuantumOfSeconds(2);
    return QuantumOfSeconds(quanta.m_nNext == TENTH ? 1 : quanta.m_nFactor * quanta.m_nNext);
}

int TSchedulerBook::FirstQuantum() const
{
    return CREDIT_OF_SECOND * QuantaOf(m_nLevel, m_nLevels).m_nFirst;
}

int TSchedulerBook::ChooseNext(bool bMayStartNew)
{
    if (!m_setDoneMoves.empty()) {
        const int nIndex = *m_setDoneMoves.begin();
        m_setDoneMoves.erase(m_setDoneMoves.begin());
        return nIndex;
    }
    const int nChosen = ChooseByCredit();
    if (nChosen == NONE || !bMayStartNew)
        return nChosen;
    // A new move once even the least served one has had its first quantum.
    const bool bServed =
        std::all_of(m_aMoves.begin(), m_aMoves.end(), [this](const TJuggledMove& move) {
            return !move.m_bStarted || move.m_bFinished || move.m_nCredit >= FirstQuantum();
        });
    return bServed ? NONE : nChosen;
}

/// An earlier move goes on until it has had several times as much as the one behind it.
int TSchedulerBook::ChooseByCredit() const
{
    constexpr int WEIGHT_FAVOURED = 2, WEIGHT = 4;
    int nChosen = FirstFree();
    if (nChosen == NONE)
        return NONE;
    for (int i = nChosen + 1; i < MAX_SHARED_MOVES; ++i) {
        if (!IsUnfinished(i))
            continue;
        const int nWeight = i - nChosen + (IsFavoured(i) ? WEIGHT_FAVOURED : WEIGHT);
        if (m_aMoves[Place(nChosen)].m_nCredit <= m_aMoves[Place(i)].m_nCredit * nWeight)
            break;
        nChosen = i;
    }
    return nChosen;
}

} // namespace corvina
