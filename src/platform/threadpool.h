#ifndef CORVINA_PLATFORM_THREADPOOL_H
#define CORVINA_PLATFORM_THREADPOOL_H

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace corvina
{

/// Threads that park when their task is done and wait for the next one, which they begin sooner
/// than a new thread would. The object waits for all tasks when it goes, and no thread outlives it.
/// Any thread may call it.
class TThreadPool
{
public:
    /// nMaxParked: threads that may wait for a task; 0: each ends with its first.
    explicit TThreadPool(std::size_t nMaxParked);
    ~TThreadPool();
    TThreadPool(const TThreadPool&) = delete;
    TThreadPool& operator=(const TThreadPool&) = delete;

    /// Begins a task in a thread of that priority, with a stack of that size at least. Throws
    /// std::system_error when the system has no thread to give, std::bad_alloc.
    void Run(std::size_t nStackBytes, int nPriority, std::function<void()> task);

private:
    struct TWorker;

    void Work(TWorker& worker);
    bool Park(TWorker& worker);
    TWorker* TakeParked(std::size_t nStackBytes, int nPriority);
    void Reap();

    const std::size_t m_nMaxParked;
    std::mutex m_mutex; ///< guards all below
    std::vector<std::unique_ptr<TWorker>> m_vecWorkers;
    std::vector<TWorker*> m_vecParked;
    bool m_bEnd = false;
};

} // namespace corvina

#endif
