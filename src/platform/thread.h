#ifndef CORVINA_PLATFORM_THREAD_H
#define CORVINA_PLATFORM_THREAD_H

#include <cstddef>
#include <functional>
#include <memory>

namespace corvina
{

/// A thread with a stack of a given size. Joined when the object goes; not copied.
class TThread
{
public:
    /// Starts the thread. nStackBytes is rounded up to what the system wants. Throws
    /// std::system_error when the system has no thread to give.
    TThread(std::size_t nStackBytes, std::function<void()> run);
    ~TThread();
    TThread(const TThread&) = delete;
    TThread& operator=(const TThread&) = delete;

private:
    struct TState;
    std::unique_ptr<TState> m_pState;
};

} // namespace corvina

#endif
