#include "registers/bucketpool.h"

#include "platform/machine.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>
#include <stop_token>
#include <thread>

namespace corvina
{
namespace
{

constexpr std::size_t POINTERS_ON_LARGE_MACHINE = 4194304;
constexpr std::size_t POINTERS_ELSEWHERE = 524288;
constexpr std::uint64_t LARGE_MACHINE_BYTES = 16106127360;

constexpr auto FILL_DELAY = std::chrono::seconds(2);
constexpr auto FILL_PAUSE = std::chrono::milliseconds(20);
constexpr int FILL_BURST = 2048; ///< bodies between two pauses

/// Waits; true when the process is ending.
bool IsStoppedAfter(std::stop_token stop, std::chrono::milliseconds time)
{
    std::mutex mutex;
    std::condition_variable_any condition;
    std::unique_lock lock(mutex);
    condition.wait_for(lock, stop, time, [] { return false; });
    return stop.stop_requested();
}

template <class TBody>
void FillPool(std::stop_token stop, std::size_t nPointers)
{
    TBodyPool<TBody>& pool = TBodyPool<TBody>::Get();
    if (IsStoppedAfter(stop, FILL_DELAY))
        return;
    for (std::size_t i = 0; i < nPointers / 2; ++i) {
        if (!pool.AddReadyBody(nPointers))
            return;
        if (i % FILL_BURST == FILL_BURST - 1 && IsStoppedAfter(stop, FILL_PAUSE))
            return;
    }
}

/// The threads; they end with the object.
class TPoolFillers
{
public:
    explicit TPoolFillers(std::size_t nPointers)
    {
        TBodyPool<TSmallBucket>::Get().Reserve(nPointers);
        TBodyPool<TFlatBucket>::Get().Reserve(nPointers);
        m_smallFiller = std::jthread(FillPool<TSmallBucket>, nPointers);
        m_flatFiller = std::jthread(FillPool<TFlatBucket>, nPointers);
    }

private:
    std::jthread m_smallFiller, m_flatFiller;
};

void Prepare(TSmallBucket&) {}

void Prepare(TFlatBucket& bucket)
{
    bucket.m_map.reserve(TFlatBucket::INITIAL_CAPACITY);
}

} // namespace

template <class TBody>
TBodyPool<TBody>& TBodyPool<TBody>::Get()
{
    static TBodyPool& pool = *new TBodyPool; // outlives every table, static ones included
    return pool;
}

template <class TBody>
TBody* TBodyPool<TBody>::Make()
{
    return new (AllocateRegisterMemory(sizeof(TBody))) TBody;
}

template <class TBody>
void TBodyPool<TBody>::Destroy(TBody* pBody) noexcept
{
    pBody->~TBody();
    FreeRegisterMemory(pBody);
}

template <class TBody>
TBody* TBodyPool<TBody>::Take()
{
    {
        const std::lock_guard guard(m_lock);
        if (!m_vecFree.empty()) {
            TBody* pBody = m_vecFree.back();
            m_vecFree.pop_back();
            return pBody;
        }
    }
    return Make();
}

template <class TBody>
void TBodyPool<TBody>::GiveBack(TBody* pBody) noexcept
{
    pBody->MakeEmpty();
    try {
        const std::lock_guard guard(m_lock);
        if (m_vecFree.size() < MAX_POINTERS) {
            m_vecFree.push_back(pBody);
            return;
        }
    }
    catch (const std::bad_alloc&) {
    }
    Destroy(pBody);
}

template <class TBody>
void TBodyPool<TBody>::Reserve(std::size_t nPointers)
{
    const std::lock_guard guard(m_lock);
    m_vecFree.reserve(nPointers);
}

template <class TBody>
bool TBodyPool<TBody>::AddReadyBody(std::size_t nPointers) noexcept
{
    TBody* pBody = nullptr;
    try {
        pBody = Make();
        Prepare(*pBody);
        const std::lock_guard guard(m_lock);
        if (m_vecFree.size() < nPointers) {
            m_vecFree.push_back(pBody);
            return true;
        }
    }
    catch (const std::bad_alloc&) {
    }
    if (pBody)
        Destroy(pBody);
    return false;
}

template <class TBody>
std::size_t TBodyPool<TBody>::GetCount()
{
    const std::lock_guard guard(m_lock);
    return m_vecFree.size();
}

template class TBodyPool<TSmallBucket>;
template class TBodyPool<TFlatBucket>;

void StartRegisterPools(bool bFirstInstance) noexcept
{
    const bool bLarge = bFirstInstance && GetTotalPhysicalMemory() >= LARGE_MACHINE_BYTES;
    try {
        static const TPoolFillers fillers(bLarge ? POINTERS_ON_LARGE_MACHINE : POINTERS_ELSEWHERE);
    }
    catch (const std::exception&) {
    }
}

} // namespace corvina
