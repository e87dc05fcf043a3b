#ifndef CORVINA_PLATFORM_EVENT_H
#define CORVINA_PLATFORM_EVENT_H

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace corvina
{

/// A flag that threads can wait for. It stays set until it is reset.
class TEvent
{
public:
    void Set()
    {
        const std::lock_guard guard(m_mutex);
        m_bSet = true;
        m_changed.notify_all();
    }

    void Reset()
    {
        const std::lock_guard guard(m_mutex);
        m_bSet = false;
    }

    /// True when it is set; false when the time has passed before.
    bool WaitFor(std::chrono::steady_clock::duration time)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, time, [this] { return m_bSet; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_bSet = false;
};

} // namespace corvina

#endif
