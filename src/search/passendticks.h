#ifndef CORVINA_SEARCH_PASSENDTICKS_H
#define CORVINA_SEARCH_PASSENDTICKS_H

#include "platform/spinlock.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <mutex>

namespace corvina
{

/// When each pass of a run ended: the moment at which its first thread was done with it. Shared by
/// the threads.
class TPassEndTicks
{
public:
    using TTick = std::chrono::steady_clock::time_point;

    void Clear()
    {
        const std::lock_guard guard(m_lock);
        m_aTicks.fill(TTick());
    }

    /// A thread ends the pass now. Returns when the first one did.
    TTick NoteEnd(std::uint8_t nPassIndex, TTick now)
    {
        const std::lock_guard guard(m_lock);
        TTick& tick = m_aTicks[nPassIndex];
        if (tick == TTick())
            tick = now;
        return tick;
    }

private:
    TSpinLock m_lock;
    std::array<TTick, 256> m_aTicks{};
};

} // namespace corvina

#endif
