#include "search/stopblock.h"

#include <mutex>

namespace corvina
{

void TStopBlock::SetStopState(std::uint8_t nState, std::uint16_t nThread)
{
    const std::lock_guard guard(m_bStopLock);
    if (m_nStopState == STOP && m_nStopThread == ALL_THREADS)
        return;
    m_nStopThread = nThread;
    m_nStopState = nState;
}

bool TStopBlock::StopThread(std::uint16_t nThread)
{
    const std::lock_guard guard(m_bStopLock);
    if (m_nStopState != RUN)
        return false;
    m_nStopThread = nThread;
    m_nStopState = STOP;
    return true;
}

void TStopBlock::ResumeThread(std::uint16_t nThread)
{
    const std::lock_guard guard(m_bStopLock);
    if (m_nStopState != STOP || m_nStopThread != nThread)
        return;
    m_nStopState = RUN;
    m_nStopThread = ALL_THREADS;
}

void TStopBlock::ClearStopState()
{
    const std::lock_guard guard(m_bStopLock);
    m_nStopState = m_nSavedStopState = RUN;
    m_nStopThread = m_nSavedStopThread = ALL_THREADS;
}

bool TStopBlock::IsStopFor(std::uint16_t nThread) const
{
    const std::lock_guard guard(m_bStopLock);
    return m_nStopState == STOP && (m_nStopThread == ALL_THREADS || m_nStopThread == nThread);
}

} // namespace corvina
