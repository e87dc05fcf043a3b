#ifndef CORVINA_REGISTERS_REGISTERLOCK_H
#define CORVINA_REGISTERS_REGISTERLOCK_H

#include <atomic>
#include <cstdint>

namespace corvina
{

namespace detail
{

/// Numbers the threads that have met a register, from 1; 0 before that.
inline constinit thread_local std::uint32_t g_nThreadNumber = 0;
std::uint32_t NumberThisThread();

inline std::uint32_t GetThreadNumber()
{
    return g_nThreadNumber ? g_nThreadNumber : NumberThisThread();
}

} // namespace detail

/// A reader-writer spin lock for many short readers and few writers.
///
/// A thread may take the write lock again while it holds it, and may read then. A thread that holds
/// only the read lock must take neither of them again: a writer that waits holds new readers back.
///
/// The count of readers is spread over cache lines by thread, so that readers on different
/// processors don't take a line from each other; a writer waits for every one to be 0.
class TRegisterLock
{
public:
    TRegisterLock() = default;
    TRegisterLock(const TRegisterLock&) = delete;
    TRegisterLock& operator=(const TRegisterLock&) = delete;

    void LockRead()
    {
        if (m_nWritersDraining.load(std::memory_order_relaxed) +
                m_nWriter.load(std::memory_order_relaxed) ==
            0)
        {
            std::atomic<std::uint32_t>& nReaders = MyReaders();
            nReaders.fetch_add(1, std::memory_order_seq_cst);
            if (!m_nWriter.load(std::memory_order_seq_cst)) [[likely]]
                return;
            nReaders.fetch_sub(1, std::memory_order_release);
        }
        LockReadSlowly();
    }
    void UnlockRead() { MyReaders().fetch_sub(1, std::memory_order_release); }

    void LockWrite();
    void UnlockWrite();

    class TReadGuard
    {
    public:
        explicit TReadGuard(TRegisterLock& lock) : m_lock(lock) { m_lock.LockRead(); }
        ~TReadGuard() { m_lock.UnlockRead(); }
        TReadGuard(const TReadGuard&) = delete;
        TReadGuard& operator=(const TReadGuard&) = delete;

    private:
        TRegisterLock& m_lock;
    };

    class TWriteGuard
    {
    public:
        explicit TWriteGuard(TRegisterLock& lock) : m_lock(lock) { m_lock.LockWrite(); }
        ~TWriteGuard() { m_lock.UnlockWrite(); }
        TWriteGuard(const TWriteGuard&) = delete;
        TWriteGuard& operator=(const TWriteGuard&) = delete;

    private:
        TRegisterLock& m_lock;
    };

private:
    static constexpr std::uint32_t READER_LINES = 16; ///< a power of two
    struct alignas(64) TReaderLine
    {
        std::atomic<std::uint32_t> m_nReaders{0};
    };

    std::atomic<std::uint32_t>& MyReaders()
    {
        return m_aReaderLines[detail::GetThreadNumber() & (READER_LINES - 1)].m_nReaders;
    }
    bool IsMine() const
    {
        return m_nOwnerThread.load(std::memory_order_relaxed) == detail::GetThreadNumber();
    }
    void LockReadSlowly();

    alignas(64) std::atomic<std::uint32_t> m_nWriter{0};
    std::uint32_t m_nRecursion = 0; ///< times that the owner has taken it on top of the first
    std::atomic<std::uint32_t> m_nWritersDraining{0}; ///< writers that wait for readers to leave
    std::atomic<std::uint32_t> m_nOwnerThread{0};
    TReaderLine m_aReaderLines[READER_LINES];
};

} // namespace corvina

#endif
