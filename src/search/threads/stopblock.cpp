#include "search/threads/stopblock.h"

#include "search/enginecommand.h"

#include <chrono>
#include <mutex>
#include <thread>

namespace corvina
{
namespace
{

constexpr auto PAUSE_STEP = std::chrono::milliseconds(100);

} // namespace

// All below are called with the lock.

void TStopBlock::SetState(std::uint8_t nState, std::uint16_t nThread)
{
    NotePause(nState == PAUSE && nThread == ALL_THREADS);
    m_nStopThread = nThread;
    m_nStopState = nState;
    m_bAtRest = nState == RUN && m_stoppedThreads.empty();
    if (m_pInner)
        m_pInner->SetStopState(nThread == ALL_THREADS ? nState : RUN, ALL_THREADS);
}

/// A command has come to its end, and may have changed something.
void TStopBlock::NoteInfluence()
{
    if (m_bNotesCommands && m_nStopState == COMMAND && !m_command.m_pReport)
        m_bInfluencedByHand = true;
}

void TStopBlock::NotePause(bool bPaused)
{
    if (bPaused == m_tPaused.has_value())
        return;
    const TClock::time_point now = TClock::now();
    if (!bPaused)
        m_nPausedTicks += (now - *m_tPaused).count();
    m_tPaused = bPaused ? std::optional(now) : std::nullopt;
}

bool TStopBlock::IsToStop(std::uint16_t nThread) const
{
    return (m_nStopState == STOP && IsFor(nThread)) || m_stoppedThreads.Contains(nThread);
}

bool TStopBlock::IsFor(std::uint16_t nThread) const
{
    return m_nStopThread == ALL_THREADS || m_nStopThread == nThread;
}

EStopCheck TStopBlock::Check(std::uint16_t nThread, std::uint16_t nDepth) const
{
    if (IsToStop(nThread))
        return EStopCheck::GiveUp;
    if (m_nStopState != COMMAND || m_nStopThread != nThread)
        return EStopCheck::GoOn;
    return nDepth < m_command.m_nCommandDepth ? EStopCheck::GiveUp : EStopCheck::Serve;
}

void TStopBlock::Restore()
{
    SetState(m_nSavedStopState, m_nSavedStopThread);
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
    NoteInfluence();
    SetState(nState, nThread);
}

void TStopBlock::StopThread(std::uint16_t nThread)
{
    const std::lock_guard guard(m_bStopLock);
    m_stoppedThreads.Insert(nThread);
    m_bAtRest = false;
    if (m_nStopState == COMMAND && m_nStopThread == nThread) {
        NoteInfluence();
        Restore();
    }
}

void TStopBlock::ResumeThread(std::uint16_t nThread)
{
    const std::lock_guard guard(m_bStopLock);
    m_stoppedThreads.Erase(nThread);
    if (m_nStopState == STOP && m_nStopThread == nThread)
        Restore();
    else
        SetState(m_nStopState, m_nStopThread);
}

std::optional<std::uint16_t> TStopBlock::TakeThreadId(int nRootThreads)
{
    const std::lock_guard guard(m_bStopLock);
    const auto nThread = m_threadIds.FirstMissing(static_cast<std::uint16_t>(nRootThreads));
    if (nThread)
        m_threadIds.Insert(*nThread);
    return nThread;
}

void TStopBlock::GiveBackThreadId(std::uint16_t nThread)
{
    ResumeThread(nThread);
    const std::lock_guard guard(m_bStopLock);
    m_threadIds.Erase(nThread);
}

void TStopBlock::ClearStopState()
{
    const std::lock_guard guard(m_bStopLock);
    m_nSavedStopState = RUN;
    m_nSavedStopThread = ALL_THREADS;
    m_stoppedThreads.Clear();
    Restore();
}

void TStopBlock::PassOnTo(TStopBlock* pInner)
{
    const std::lock_guard guard(m_bStopLock);
    m_pInner = pInner;
    SetState(m_nStopState, m_nStopThread);
}

bool TStopBlock::IsStopFor(std::uint16_t nThread) const
{
    while (true) {
        {
            const std::lock_guard guard(m_bStopLock);
            const bool bStop = IsToStop(nThread);
            if (bStop || nThread == ALL_THREADS || m_nStopState != PAUSE || !IsFor(nThread))
                return bStop;
        }
        std::this_thread::sleep_for(PAUSE_STEP);
    }
}

TStopBlock::TClock::time_point TStopBlock::Now() const
{
    if (m_bAtRest)
        return TClock::now() - TClock::duration(m_nPausedTicks);
    const std::lock_guard guard(m_bStopLock);
    return m_tPaused.value_or(TClock::now()) - TClock::duration(m_nPausedTicks);
}

bool TStopBlock::IsPauseFor(std::uint16_t nThread) const
{
    const std::lock_guard guard(m_bStopLock);
    return m_nStopState == PAUSE && IsFor(nThread);
}

EStopCheck TStopBlock::LookAtStop(std::uint16_t nThread, std::uint16_t nDepth) const
{
    while (true) {
        {
            const std::lock_guard guard(m_bStopLock);
            if (m_nStopState != PAUSE || !IsFor(nThread) || m_stoppedThreads.Contains(nThread))
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
    m_commandedThreads.Insert(nThread);
}

void TStopBlock::TakeNoMoreCommands(std::uint16_t nThread)
{
    const std::lock_guard guard(m_bStopLock);
    m_commandedThreads.Erase(nThread);
    if (m_nStopState == COMMAND && m_nStopThread == nThread) {
        NoteInfluence();
        Restore();
    }
}

TStopBlock::EPost TStopBlock::PostCommand(std::uint16_t nThread, const TEngineCommand& command)
{
    const std::lock_guard guard(m_bStopLock);
    if (!m_commandedThreads.Contains(nThread) || IsToStop(nThread))
        return EPost::NoThread;
    // A stop of another thread must stay where that thread sees it.
    if (m_nStopState == COMMAND || m_nStopState == STOP)
        return EPost::NotYet;
    m_nSavedStopState = m_nStopState;
    m_nSavedStopThread = m_nStopThread;
    m_command = command;
    SetState(COMMAND, nThread);
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

bool TStopBlock::FinishCommand(std::uint16_t nThread, const TNodeMoves* pReport, bool bEffect)
{
    const std::lock_guard guard(m_bStopLock);
    if (IsToStop(nThread))
        return false;
    if (m_nStopState != COMMAND || m_nStopThread != nThread)
        return true;
    if (pReport && m_command.m_pReport)
        *m_command.m_pReport = *pReport;
    if (bEffect)
        NoteInfluence();
    Restore();
    return !IsToStop(nThread);
}

} // namespace corvina
