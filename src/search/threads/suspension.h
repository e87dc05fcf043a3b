#ifndef CORVINA_SEARCH_THREADS_SUSPENSION_H
#define CORVINA_SEARCH_THREADS_SUSPENSION_H

#include "platform/event.h"

#include <atomic>
#include <cstdint>

namespace corvina
{

/// Whether the scheduler lets a thread go on. The thread looks at it and waits by itself. A copy
/// belongs to another thread and begins as active.
class TSuspension
{
public:
    static constexpr std::uint8_t ACTIVE = 0;
    static constexpr std::uint8_t HELD = 1;
    static constexpr std::uint8_t ABANDON = 2; ///< for good; its answer isn't wanted any more

    TSuspension() = default;
    TSuspension(const TSuspension&) {}
    TSuspension& operator=(const TSuspension&) = delete;

    operator std::uint8_t() const { return m_nState.load(std::memory_order_relaxed); }

    void Hold()
    {
        m_changed.Reset();
        m_nState = HELD;
    }
    void Resume()
    {
        m_nState = ACTIVE;
        m_changed.Set();
    }
    void Abandon()
    {
        m_nState = ABANDON;
        m_changed.Set();
    }

    /// Returns when the thread is no longer held or after that time.
    void WaitFor(std::chrono::steady_clock::duration time) { m_changed.WaitFor(time); }

private:
    std::atomic<std::uint8_t> m_nState{ACTIVE};
    TEvent m_changed;
};

/// A flag of a thread that another one sets. A copy belongs to another thread and begins clear.
class TThreadFlag
{
public:
    TThreadFlag() = default;
    TThreadFlag(const TThreadFlag&) {}
    TThreadFlag& operator=(bool bSet)
    {
        m_bSet = bSet;
        return *this;
    }
    operator bool() const { return m_bSet.load(std::memory_order_relaxed); }

private:
    std::atomic<bool> m_bSet{false};
};

} // namespace corvina

#endif
