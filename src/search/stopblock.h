#ifndef CORVINA_SEARCH_STOPBLOCK_H
#define CORVINA_SEARCH_STOPBLOCK_H

#include "platform/spinlock.h"

#include <atomic>
#include <cstdint>

namespace corvina
{

/// How the threads of a run are told to pause, to serve a command and to stop.
struct TStopBlock
{
    static constexpr std::uint8_t RUN = 0;
    static constexpr std::uint8_t PAUSE = 1;
    static constexpr std::uint8_t COMMAND = 2;
    static constexpr std::uint8_t STOP = 3;
    static constexpr std::uint16_t ALL_THREADS = 65535;

    mutable TSpinLock m_bStopLock;
    std::atomic<std::uint8_t> m_nStopState{RUN};           ///< readable without the lock as a hint
    std::atomic<std::uint16_t> m_nStopThread{ALL_THREADS}; ///< thread that the state concerns
    std::uint8_t m_nSavedStopState = RUN;                  ///< what to go back to after a command
    std::uint16_t m_nSavedStopThread = ALL_THREADS;

    /// Sets the state, unless a stop of all threads is in force, which nothing but a new run lifts.
    /// Any thread may call it.
    void SetStopState(std::uint8_t nState, std::uint16_t nThread);

    /// Stops one thread, unless a stop is in force already: false then.
    bool StopThread(std::uint16_t nThread);

    /// Lifts a stop of that thread alone, with which it has complied.
    void ResumeThread(std::uint16_t nThread);

    /// At the start of a run.
    void ClearStopState();

    /// Does a stop concern the thread? The fast path is one plain read.
    bool IsStopped(std::uint16_t nThread) const
    {
        return m_nStopState.load(std::memory_order_relaxed) == STOP && IsStopFor(nThread);
    }

    bool IsStoppedForAll() const { return IsStopped(ALL_THREADS); }

private:
    bool IsStopFor(std::uint16_t nThread) const;
};

} // namespace corvina

#endif
