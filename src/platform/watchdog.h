#ifndef CORVINA_PLATFORM_WATCHDOG_H
#define CORVINA_PLATFORM_WATCHDOG_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace corvina
{

/// A thread that calls a function when a time has passed or the user has interrupted the process
/// (Ctrl-C), whichever comes first, and again every 20 ms from then on, so that a run that is just
/// about to start can't miss it. It ends with the object.
class TWatchdog
{
public:
    using TClock = std::chrono::steady_clock;

    /// Without a time only an interruption fires. The function is called on the watchdog's thread.
    /// The time is that of the clock, which may stand still for a while.
    TWatchdog(std::optional<TClock::duration> timeLimit, std::function<void()> onExpiry,
              std::function<TClock::time_point()> clock = TClock::now);
    ~TWatchdog();
    TWatchdog(const TWatchdog&) = delete;
    TWatchdog& operator=(const TWatchdog&) = delete;

private:
    void Watch(std::optional<TClock::time_point> deadline);

    std::function<void()> m_onExpiry;
    std::function<TClock::time_point()> m_clock;
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_bEnd = false;
    std::thread m_thread; ///< last: it starts when everything else stands
};

} // namespace corvina

#endif
