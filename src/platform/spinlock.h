#ifndef CORVINA_PLATFORM_SPINLOCK_H
#define CORVINA_PLATFORM_SPINLOCK_H

#include <atomic>
#include <thread>

namespace corvina
{

/// A lock of one byte for sections of a few instructions, never held across a call that may block.
/// Works with std::lock_guard. Not recursive.
class TSpinLock
{
public:
    void lock()
    {
        while (m_bTaken.exchange(true, std::memory_order_acquire)) {
            while (m_bTaken.load(std::memory_order_relaxed))
                std::this_thread::yield();
        }
    }
    void unlock() { m_bTaken.store(false, std::memory_order_release); }

private:
    std::atomic<bool> m_bTaken{false};
};

} // namespace corvina

#endif
