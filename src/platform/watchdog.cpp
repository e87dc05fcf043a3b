#include "platform/watchdog.h"

#include "platform/signals.h"

#include <algorithm>
#include <utility>

namespace corvina
{
namespace
{

/// An interruption is seen within this time.
constexpr auto POLL_INTERVAL = std::chrono::milliseconds(20);

} // namespace

TWatchdog::TWatchdog(std::optional<TClock::duration> timeLimit, std::function<void()> onExpiry,
                     std::function<TClock::time_point()> clock)
    : m_onExpiry(std::move(onExpiry)), m_clock(std::move(clock))
{
    TakeInterrupts();
    std::optional<TClock::time_point> deadline;
    if (timeLimit)
        deadline = m_clock() + *timeLimit;
    m_thread = std::thread([this, deadline] { Watch(deadline); });
}

TWatchdog::~TWatchdog()
{
    {
        const std::lock_guard guard(m_mutex);
        m_bEnd = true;
    }
    m_condition.notify_all();
    m_thread.join();
}

void TWatchdog::Watch(std::optional<TClock::time_point> deadline)
{
    std::unique_lock lock(m_mutex);
    while (!m_bEnd) {
        const TClock::time_point now = m_clock();
        const bool bExpired = WasInterrupted() || (deadline && now >= *deadline);
        if (bExpired)
            m_onExpiry();
        TClock::duration wait = POLL_INTERVAL;
        if (!bExpired && deadline)
            wait = std::min(wait, *deadline - now);
        m_condition.wait_for(lock, wait);
    }
}

} // namespace corvina
