#ifndef CORVINA_SEARCH_THREADS_THREADSET_H
#define CORVINA_SEARCH_THREADS_THREADSET_H

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <optional>

namespace corvina
{

/// Threads of a run by their numbers, 0 to 65534. Changes need a lock of the caller; the question
/// whether a thread is one of them doesn't.
class TThreadSet
{
public:
    static constexpr int MAX_THREADS = 65535;

    bool Contains(std::uint16_t nThread) const
    {
        return m_anBits[nThread / 64].load(std::memory_order_acquire) >> nThread % 64 & 1;
    }

    bool empty() const { return m_nThreads == 0; }

    void Insert(std::uint16_t nThread)
    {
        m_nThreads += !Contains(nThread);
        m_anBits[nThread / 64].fetch_or(std::uint64_t{1} << nThread % 64);
    }

    void Erase(std::uint16_t nThread)
    {
        m_nThreads -= Contains(nThread);
        m_anBits[nThread / 64].fetch_and(~(std::uint64_t{1} << nThread % 64));
    }

    void Clear()
    {
        if (!empty())
            std::fill(m_anBits.begin(), m_anBits.end(), 0);
        m_nThreads = 0;
    }

    /// The smallest number from nFrom on that isn't in the set; nothing: there is none left.
    std::optional<std::uint16_t> FirstMissing(std::uint16_t nFrom) const
    {
        for (int n = nFrom; n < MAX_THREADS;) {
            const int nRun = std::countr_one(m_anBits[static_cast<std::size_t>(n / 64)] >> n % 64);
            if (nRun == 0)
                return static_cast<std::uint16_t>(n);
            n = std::min(n + nRun, (n / 64 + 1) * 64);
        }
        return std::nullopt;
    }

private:
    std::array<std::atomic<std::uint64_t>, 1024> m_anBits{};
    int m_nThreads = 0;
};

} // namespace corvina

#endif
