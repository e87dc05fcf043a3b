#include "platform/thread.h"

#include <algorithm>
#include <climits>
#include <pthread.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace corvina
{

struct TThread::TState
{
    pthread_t m_thread{};
    std::function<void()> m_run;

    static void* Start(void* pState)
    {
        static_cast<TState*>(pState)->m_run();
        return nullptr;
    }
};

namespace
{

/// The system takes whole pages, and not fewer than its minimum.
std::size_t RoundedStack(std::size_t nBytes)
{
    const auto nPage = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    nBytes = std::max(nBytes, static_cast<std::size_t>(PTHREAD_STACK_MIN));
    return (nBytes + nPage - 1) / nPage * nPage;
}

} // namespace

TThread::TThread(std::size_t nStackBytes, std::function<void()> run)
    : m_pState(std::make_unique<TState>())
{
    m_pState->m_run = std::move(run);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, RoundedStack(nStackBytes));
    const int nError =
        pthread_create(&m_pState->m_thread, &attributes, TState::Start, m_pState.get());
    pthread_attr_destroy(&attributes);
    if (nError)
        throw std::system_error(nError, std::generic_category(), "thread");
}

TThread::~TThread()
{
    pthread_join(m_pState->m_thread, nullptr);
}

} // namespace corvina
