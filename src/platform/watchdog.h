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
    /// The handler of the interruption is installed with the first object and stays.
    TWatchdog(std::optional<TClock::duration> timeLimit, std::function<void()> onExpiry);
    ~TWatchdog();
    TWatchdog(const TWatchdog&) = delete;
    TWatchdog& operator=(const TWatchdog&) = delete;

    /// True once the user has interrupted the process.
    static bool WasInterrupted();

private:
    void Watch(std::optional<TClock::time_point> deadline);

    std::function<void()> m_onExpiry;
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_bEnd = false;
    std::thread m_thread; ///< last: it starts when everything else stands
};

} // namespace corvina

#endif
