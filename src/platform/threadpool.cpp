#include "platform/threadpool.h"

#include "platform/thread.h"

#include <algorithm>
#include <condition_variable>
#include <utility>

namespace corvina
{

struct TThreadPool::TWorker
{
    std::size_t m_nStackBytes;
    int m_nPriority;
    std::function<void()> m_task; ///< guarded by the pool's mutex, as all below
    bool m_bEnded = false;
    std::condition_variable m_hasTask;
    std::unique_ptr<TThread> m_pThread;
};

TThreadPool::TThreadPool(std::size_t nMaxParked) : m_nMaxParked(nMaxParked) {}

TThreadPool::~TThreadPool()
{
    {
        const std::lock_guard guard(m_mutex);
        m_bEnd = true;
        for (TWorker* pWorker : m_vecParked)
            pWorker->m_hasTask.notify_one();
    }
    m_vecWorkers.clear();
}

void TThreadPool::Run(std::size_t nStackBytes, int nPriority, std::function<void()> task)
{
    const std::lock_guard guard(m_mutex);
    if (TWorker* pWorker = TakeParked(nStackBytes, nPriority)) {
        pWorker->m_task = std::move(task);
        pWorker->m_hasTask.notify_one();
        return;
    }
    Reap();
    m_vecWorkers.reserve(m_vecWorkers.size() + 1);
    m_vecParked.reserve(std::min(m_vecWorkers.size() + 1, m_nMaxParked));
    auto pWorker = std::make_unique<TWorker>();
    TWorker& worker = *pWorker;
    worker.m_nStackBytes = nStackBytes;
    worker.m_nPriority = nPriority;
    worker.m_task = std::move(task);
    // The thread comes no further than to the mutex before this call is done.
    worker.m_pThread = std::make_unique<TThread>(
        nStackBytes, [this, &worker] { Work(worker); }, nPriority);
    m_vecWorkers.push_back(std::move(pWorker));
}

void TThreadPool::Work(TWorker& worker)
{
    do {
        std::function<void()> task;
        {
            const std::lock_guard guard(m_mutex);
            task = std::exchange(worker.m_task, nullptr);
        }
        task();
    } while (Park(worker));
}

/// True when there is another task.
bool TThreadPool::Park(TWorker& worker)
{
    std::unique_lock lock(m_mutex);
    if (!m_bEnd && m_vecParked.size() < m_nMaxParked) {
        m_vecParked.push_back(&worker);
        worker.m_hasTask.wait(lock, [&] { return m_bEnd || worker.m_task; });
        if (worker.m_task)
            return true;
    }
    worker.m_bEnded = true;
    return false;
}

/// With the mutex. Of those that will do, the one that has parked last: its stack is warm.
TThreadPool::TWorker* TThreadPool::TakeParked(std::size_t nStackBytes, int nPriority)
{
    const auto place =
        std::find_if(m_vecParked.rbegin(), m_vecParked.rend(), [&](const TWorker* pWorker) {
            return pWorker->m_nStackBytes >= nStackBytes && pWorker->m_nPriority == nPriority;
        });
    if (place == m_vecParked.rend())
        return nullptr;
    TWorker* pWorker = *place;
    m_vecParked.erase(std::next(place).base());
    return pWorker;
}

/// With the mutex: joins the threads that have come to their end.
void TThreadPool::Reap()
{
    std::erase_if(m_vecWorkers, [](const auto& pWorker) { return pWorker->m_bEnded; });
}

} // namespace corvina
