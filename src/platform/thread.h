#ifndef CORVINA_PLATFORM_THREAD_H
#define CORVINA_PLATFORM_THREAD_H

#include <cstddef>
#include <functional>
#include <memory>

namespace corvina
{

/// Priorities of a thread, on the scale -15, -2, -1, 0, 1, 2, 15. The system may refuse those above
/// 0.
constexpr int PRIORITY_NORMAL = 0;

/// So many steps lower on the scale.
int LowerPriority(int nPriority, int nSteps);

/// A thread with a stack of a given size. Joined when the object goes; not copied.
class TThread
{
public:
    /// Starts the thread. nStackBytes is rounded up to what the system wants. Throws
    /// std::system_error when the system has no thread to give.
    TThread(std::size_t nStackBytes, std::function<void()> run, int nPriority = PRIORITY_NORMAL);
    ~TThread();
    TThread(const TThread&) = delete;
    TThread& operator=(const TThread&) = delete;

private:
    struct TState;
    std::unique_ptr<TState> m_pState;
};

/// Threads that have been started and not joined.
int CountThreads();

/// For tests: from now on a thread whose start this function answers with true isn't to be had.
/// Null: all are. Called from any thread.
void SetThreadFault(bool (*pFails)());

} // namespace corvina

#endif
