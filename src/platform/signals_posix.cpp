#include "platform/signals.h"

#include <atomic>
#include <csignal>
#include <mutex>
#include <pthread.h>
#include <unistd.h>
#include <utility>

namespace corvina
{
namespace
{

std::atomic<bool> g_bInterrupted{false};
std::atomic<bool> g_bTaken{false}; ///< somebody sees to interruptions
std::atomic<bool> g_bEnd{false};
std::mutex g_csHandlers; ///< held while a handler runs
TSignalHandlers g_handlers;

sigset_t SignalsServed()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int nSignal : {SIGINT, SIGTSTP, SIGCONT, SIGUSR1})
        sigaddset(&signals, nSignal);
    return signals;
}

void Call(std::function<void()> TSignalHandlers::*pHandler)
{
    const std::lock_guard guard(g_csHandlers);
    if (const auto& handler = g_handlers.*pHandler)
        handler();
}

/// Does what the system would have done.
void EndByInterrupt()
{
    std::signal(SIGINT, SIG_DFL);
    sigset_t interrupt;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    pthread_sigmask(SIG_UNBLOCK, &interrupt, nullptr);
    raise(SIGINT);
}

/// The process stops, unless it has been told to go on in the meantime.
void StopProcess()
{
    sigset_t pending;
    sigpending(&pending);
    if (!sigismember(&pending, SIGCONT))
        kill(getpid(), SIGSTOP);
}

void Serve(int nSignal)
{
    switch (nSignal) {
    case SIGINT:
        if (g_bInterrupted.exchange(true) || !g_bTaken)
            EndByInterrupt();
        Call(&TSignalHandlers::m_onInterrupt);
        break;
    case SIGTSTP:
        Call(&TSignalHandlers::m_onSuspend);
        StopProcess();
        break;
    case SIGCONT:
        Call(&TSignalHandlers::m_onResume);
        break;
    default:
        Call(&TSignalHandlers::m_onReport);
        break;
    }
}

} // namespace

TSignalThread::TSignalThread()
{
    const sigset_t signals = SignalsServed();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_thread = std::thread([signals] {
        int nSignal = 0;
        while (sigwait(&signals, &nSignal) == 0 && !g_bEnd)
            Serve(nSignal);
    });
}

TSignalThread::~TSignalThread()
{
    g_bEnd = true;
    pthread_kill(m_thread.native_handle(), SIGUSR1);
    m_thread.join();
}

void TakeInterrupts()
{
    g_bTaken = true;
}

bool WasInterrupted()
{
    return g_bInterrupted;
}

TSignalHandlersHold::TSignalHandlersHold(TSignalHandlers handlers)
{
    TakeInterrupts();
    const std::lock_guard guard(g_csHandlers);
    g_handlers = std::move(handlers);
}

TSignalHandlersHold::~TSignalHandlersHold()
{
    const std::lock_guard guard(g_csHandlers);
    g_handlers = {};
}

} // namespace corvina
