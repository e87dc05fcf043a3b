#include "search/stopblock.h"

#include "search/enginecommand.h"

#include <chrono>
#include <mutex>
#include <thread>

namespace corvina
{
namespace
{

constexpr auto PAUSE_STEP = std::chrono::milliseconds(100);

constexpr std::uint64_t BitOf(std::uint16_t nThread)
{
    return nThread < TStopBlock::MAX_COMMANDED_THREADS ? std::uint64_t{1} << nThread : 0;
}

} // namespace

// All below are called with the lock.

bool TStopBlock::IsFor(std::uint16_t nThread) const
{
    return m_nStopThread == ALL_THREADS || m_nStopThread == nThread;
}

EStopCheck TStopBlock::Check(std::uint16_t nThread, std::uint16_t nDepth) const
{
    if (m_nStopState == STOP && IsFor(nThread))
        return EStopCheck::GiveUp;
    if (m_nStopState != COMMAND || m_nStopThread != nThread)
        return EStopCheck::GoOn;
    return nDepth < m_command.m_nCommandDepth ? EStopCheck::GiveUp : EStopCheck::Serve;
}

void TStopBlock::Restore()
{
    m_nStopThread = m_nSavedStopThread;
    m_nStopState = m_nSavedStopState;
    m_nSavedStopThread = ALL_THREADS;
    m_nSavedStopState = RUN;
}

// All below take it.

void TStopBlock::SetStopState(std::uint8_t nState, std::uint16_t nThread)
{
    const std::lock_guard guard(m_bStopLock);
    if (m_nStopState == STOP && m_nStopThread == ALL_THREADS)
        return;
    const bool bConcerns = nThread == ALL_THREADS || nThread == m_nStopThread;
    if (m_nStopState == COMMAND && !(nState == STOP && bConcerns)) {
        // The thread may be on its way back to the node that serves it.
        m_nSavedStopThread = nThread;
        m_nSavedStopState = nState;
        return;
    }
    m_nStopThread = nThread;
    m_nStopState = nState;
}

bool TStopBlock::StopThread(std::uint16_t nThread)
{
    const std::lock_guard guard(m_bStopLock);
    if (m_nStopState != RUN && !(m_nStopState == COMMAND && m_nStopThread == nThread))
        return false;
    m_nStopThread = nThread;
    m_nStopState = STOP;
    return true;
}

void TStopBlock::ResumeThread(std::uint16_t nThread)
{
    const std::lock_guard guard(m_bStopLock);
    if (m_nStopState == STOP && m_nStopThread == nThread)
        Restore();
}

void TStopBlock::ClearStopState()
{
    const std::lock_guard guard(m_bStopLock);
    m_nSavedStopState = RUN;
    m_nSavedStopThread = ALL_THREADS;
    Restore();
}

bool TStopBlock::IsStopFor(std::uint16_t nThread) const
{
    const std::lock_guard guard(m_bStopLock);
    return m_nStopState == STOP && IsFor(nThread);
}

EStopCheck TStopBlock::LookAtStop(std::uint16_t nThread, std::uint16_t nDepth) const
{
    while (true) {
        {
            const std::lock_guard guard(m_bStopLock);
            if (m_nStopState != PAUSE || !IsFor(nThread))
                return Check(nThread, nDepth);
        }
        std::this_thread::sleep_for(PAUSE_STEP);
    }
}

bool TStopBlock::IsGivenUpAfterAll(std::uint16_t nThread, std::uint16_t nDepth) const
{
    const std::lock_guard guard(m_bStopLock);
    return Check(nThread, nDepth) == EStopCheck::GiveUp;
}

void TStopBlock::TakeCommands(std::uint16_t nThread, bool bNote)
{
    const std::lock_guard guard(m_bStopLock);
    m_bNotesCommands = bNote;
    m_nCommandedThreads |= BitOf(nThread);
}

void TStopBlock::TakeNoMoreCommands(std::uint16_t nThread)
{
    const std::lock_guard guard(m_bStopLock);
    m_nCommandedThreads &= ~BitOf(nThread);
    if (m_nStopState == COMMAND && m_nStopThread == nThread)
        Restore();
}

TStopBlock::EPost TStopBlock::PostCommand(std::uint16_t nThread, const TEngineCommand& command)
{
    const std::lock_guard guard(m_bStopLock);
    if (!(m_nCommandedThreads & BitOf(nThread)) || (m_nStopState == STOP && IsFor(nThread)))
        return EPost::NoThread;
    // A stop of another thread must stay where that thread sees it.
    if (m_nStopState == COMMAND || m_nStopState == STOP)
        return EPost::NotYet;
    m_nSavedStopState = m_nStopState;
    m_nSavedStopThread = m_nStopThread;
    m_command = command;
    if (m_bNotesCommands && !command.m_pReport)
        m_bInfluencedByHand = true;
    m_nStopThread = nThread;
    m_nStopState = COMMAND;
    return EPost::Posted;
}

bool TStopBlock::IsReportWaiting(const TNodeMoves* pReport) const
{
    const std::lock_guard guard(m_bStopLock);
    return m_nStopState == COMMAND && m_command.m_pReport == pReport;
}

TEngineCommand TStopBlock::GetCommand() const
{
    const std::lock_guard guard(m_bStopLock);
    return m_command;
}

bool TStopBlock::FinishCommand(std::uint16_t nThread, const TNodeMoves* pReport)
{
    const std::lock_guard guard(m_bStopLock);
    if (m_nStopState == STOP && IsFor(nThread))
        return false;
    if (m_nStopState != COMMAND || m_nStopThread != nThread)
        return true;
    if (pReport && m_command.m_pReport)
        *m_command.m_pReport = *pReport;
    Restore();
    return m_nStopState != STOP || !IsFor(nThread);
}

} // namespace corvina
