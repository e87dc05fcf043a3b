#include "platform/thread.h"

#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <iterator>
#include <pthread.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace corvina
{
namespace
{

struct TPriority
{
    int m_nPriority;
    int m_nNice; ///< the same for the system
};

constexpr TPriority g_aPriorities[] = {{-15, 19}, {-2, 10}, {-1, 5},  {0, 0},
                                       {1, -5},   {2, -10}, {15, -20}};

/// The step of the scale, or the next one below.
const TPriority* StepOf(int nPriority)
{
    const auto above = std::find_if(std::begin(g_aPriorities), std::end(g_aPriorities),
                                    [&](const TPriority& p) { return p.m_nPriority > nPriority; });
    return above == std::begin(g_aPriorities) ? above : above - 1;
}

std::atomic<int> g_nThreads{0};
std::atomic<bool (*)()> g_pThreadFault{nullptr};

} // namespace

int LowerPriority(int nPriority, int nSteps)
{
    const auto nStep = StepOf(nPriority) - std::begin(g_aPriorities);
    return g_aPriorities[std::max<std::ptrdiff_t>(nStep - nSteps, 0)].m_nPriority;
}

int CountThreads()
{
    return g_nThreads;
}

void SetThreadFault(bool (*pFails)())
{
    g_pThreadFault = pFails;
}

struct TThread::TState
{
    pthread_t m_thread{};
    std::function<void()> m_run;
    int m_nPriority = PRIORITY_NORMAL;

    static void* Start(void* pArgument)
    {
        const auto& state = *static_cast<TState*>(pArgument);
        // The system takes the nice value of the calling thread for that of the thread alone.
        if (state.m_nPriority != PRIORITY_NORMAL)
            static_cast<void>(setpriority(PRIO_PROCESS, 0, StepOf(state.m_nPriority)->m_nNice));
        state.m_run();
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

TThread::TThread(std::size_t nStackBytes, std::function<void()> run, int nPriority)
    : m_pState(std::make_unique<TState>())
{
    m_pState->m_run = std::move(run);
    m_pState->m_nPriority = nPriority;
    const auto pFails = g_pThreadFault.load();
    if (pFails && pFails())
        throw std::system_error(EAGAIN, std::generic_category(), "thread");
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, RoundedStack(nStackBytes));
    const int nError =
        pthread_create(&m_pState->m_thread, &attributes, TState::Start, m_pState.get());
    pthread_attr_destroy(&attributes);
    if (nError)
        throw std::system_error(nError, std::generic_category(), "thread");
    ++g_nThreads;
}

TThread::~TThread()
{
    pthread_join(m_pState->m_thread, nullptr);
    --g_nThreads;
}

} // namespace corvina
