#ifndef CORVINA_PLATFORM_SIGNALS_H
#define CORVINA_PLATFORM_SIGNALS_H

#include <functional>
#include <thread>

namespace corvina
{

/// What a run does about the signals of the process.
struct TSignalHandlers
{
    std::function<void()> m_onInterrupt; ///< Ctrl-C
    std::function<void()> m_onSuspend;   ///< Ctrl-Z; the process stops when it returns
    std::function<void()> m_onResume;    ///< the process goes on
    std::function<void()> m_onReport;    ///< a user wants to know how things stand (SIGUSR1)
};

/// The signals of the process, served on a thread of their own, where anything may be done. The
/// first interruption asks for an end in good order, a second one ends the process.
class TSignalThread
{
public:
    /// Made once, before any other thread: those made later don't take the signals.
    TSignalThread();
    ~TSignalThread();
    TSignalThread(const TSignalThread&) = delete;
    TSignalThread& operator=(const TSignalThread&) = delete;

private:
    std::thread m_thread;
};

/// From now on an interruption is left to those who ask for it, or have a handler; before, it ends
/// the process at once.
void TakeInterrupts();

/// True once the user has interrupted the process.
bool WasInterrupted();

/// The handlers in force, as long as the object lives; one at a time. No handler runs any more when
/// it is gone.
class TSignalHandlersHold
{
public:
    explicit TSignalHandlersHold(TSignalHandlers handlers);
    ~TSignalHandlersHold();
    TSignalHandlersHold(const TSignalHandlersHold&) = delete;
    TSignalHandlersHold& operator=(const TSignalHandlersHold&) = delete;
};

} // namespace corvina

#endif
