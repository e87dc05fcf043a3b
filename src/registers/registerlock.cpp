#include "registers/registerlock.h"

#include <chrono>
#include <thread>

namespace corvina
{
namespace
{

constexpr int SPIN_ROUND = 64000; ///< tries before a thread gives its processor away

/// Waits until the word is 0: by spinning, by giving the processor away, and after bSleeps' time by
/// sleeping.
void WaitForZero(const std::atomic<std::uint32_t>& nWord, bool bSleeps)
{
    using namespace std::chrono;
    for (int i = 0; i < SPIN_ROUND; ++i) {
        if (!nWord.load(std::memory_order_seq_cst))
            return;
    }
    const auto tSleep = steady_clock::now() + milliseconds(256);
    while (nWord.load(std::memory_order_seq_cst)) {
        if (bSleeps && steady_clock::now() >= tSleep)
            std::this_thread::sleep_for(milliseconds(1));
        else
            std::this_thread::yield();
    }
}

} // namespace

std::uint32_t detail::NumberThisThread()
{
    static std::atomic<std::uint32_t> nThreads{0};
    return g_nThreadNumber = ++nThreads;
}

void TRegisterLock::LockWrite()
{
    if (IsMine()) {
        ++m_nRecursion;
        return; // the readers have left already
    }
    for (int nTry = 0;; ++nTry) {
        if (!m_nWriter.load(std::memory_order_relaxed) &&
            !m_nWriter.exchange(1, std::memory_order_seq_cst))
            break;
        if (nTry >= SPIN_ROUND) {
            nTry = SPIN_ROUND;
            std::this_thread::yield();
        }
    }
    m_nOwnerThread.store(detail::GetThreadNumber(), std::memory_order_relaxed);
    m_nWritersDraining.fetch_add(1, std::memory_order_seq_cst);
    for (const TReaderLine& line : m_aReaderLines)
        WaitForZero(line.m_nReaders, false);
    m_nWritersDraining.fetch_sub(1, std::memory_order_release);
}

void TRegisterLock::UnlockWrite()
{
    if (m_nRecursion) {
        --m_nRecursion;
        return;
    }
    m_nOwnerThread.store(0, std::memory_order_relaxed);
    m_nWriter.store(0, std::memory_order_seq_cst);
}

void TRegisterLock::LockReadSlowly()
{
    std::atomic<std::uint32_t>& nReaders = MyReaders();
    if (IsMine()) {
        nReaders.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    for (;;) {
        WaitForZero(m_nWritersDraining, true);
        WaitForZero(m_nWriter, true);
        nReaders.fetch_add(1, std::memory_order_seq_cst);
        if (!m_nWriter.load(std::memory_order_seq_cst))
            return;
        nReaders.fetch_sub(1, std::memory_order_release);
    }
}

} // namespace corvina
