#include "search/foundsolutions.h"

namespace corvina
{
namespace
{

constexpr int SLOTS = 4;
TFoundSolutions g_aSlots[SLOTS];

TFoundSolutions* TakeSlot()
{
    for (TFoundSolutions& slot : g_aSlots) {
        if (slot.m_bInUse.exchange(1) != 0)
            continue;
        slot.m_nReserved = 0;
        slot.m_nPublished = 0;
        return &slot;
    }
    return nullptr;
}

} // namespace

void TFoundSolutions::Publish(const TMove& move)
{
    if (m_nReserved.load() == CAPACITY)
        return;
    m_aMoves[m_nReserved.fetch_add(1)] = move;
    m_nPublished.fetch_add(1, std::memory_order_release);
}

bool TFoundSolutions::Contains(const TMove& move) const
{
    const int nMoves = m_nPublished.load(std::memory_order_acquire);
    for (int i = 0; i < nMoves; ++i) {
        if (IsSameMove(m_aMoves[i], move))
            return true;
    }
    return false;
}

TFoundSolutionsHold::TFoundSolutionsHold() : m_pSlot(TakeSlot()) {}

TFoundSolutionsHold::~TFoundSolutionsHold()
{
    if (m_pSlot)
        m_pSlot->m_bInUse = 0;
}

} // namespace corvina
