#include "platform/watchdog.h"

#include <csignal>
#include <utility>

namespace corvina
{
namespace
{

/// An interruption is seen within this time.
constexpr auto POLL_INTERVAL = std::chrono::milliseconds(20);

volatile std::sig_atomic_t g_bInterrupted = 0;

/// The first interruption asks the run to end in good order, a second one ends the process.
void OnInterrupt(int nSignal)
{
    g_bInterrupted = 1;
    std::signal(nSignal, SIG_DFL);
}

} // namespace

TWatchdog::TWatchdog(std::optional<TClock::duration> timeLimit, std::function<void()> onExpiry)
    : m_onExpiry(std::move(onExpiry))
{
    static const auto installed = std::signal(SIGINT, OnInterrupt);
    static_cast<void>(installed);
    std::optional<TClock::time_point> deadline;
    if (timeLimit)
        deadline = TClock::now() + *timeLimit;
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

bool TWatchdog::WasInterrupted()
{
    return g_bInterrupted;
}

void TWatchdog::Watch(std::optional<TClock::time_point> deadline)
{
    std::unique_lock lock(m_mutex);
    while (!m_bEnd) {
        const TClock::time_point now = TClock::now();
        const bool bExpired = g_bInterrupted || (deadline && now >= *deadline);
        if (bExpired)
            m_onExpiry();
        TClock::time_point wake = now + POLL_INTERVAL;
        if (!bExpired && deadline && *deadline < wake)
            wake = *deadline;
        m_condition.wait_until(lock, wake);
    }
}

} // namespace corvina
