#ifndef CORVINA_REGISTERS_REGISTERMEMORY_H
#define CORVINA_REGISTERS_REGISTERMEMORY_H

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace corvina
{

/// All memory of the register tables comes from here: bodies of buckets, their vectors, and the
/// arrays of slots (bZeroed). Throws std::bad_alloc.
void* AllocateRegisterMemory(std::size_t nBytes, bool bZeroed = false);
void FreeRegisterMemory(void* pMemory) noexcept;

/// Makes allocations fail on purpose while it lives: the first nSkip succeed, the next nFailures
/// throw. For tests; one at a time.
class TAllocationFault
{
public:
    TAllocationFault(std::int64_t nSkip, std::int64_t nFailures);
    ~TAllocationFault();
    TAllocationFault(const TAllocationFault&) = delete;
    TAllocationFault& operator=(const TAllocationFault&) = delete;

    /// Allocations asked for since the start.
    std::int64_t GetCount() const;

private:
    friend void* AllocateRegisterMemory(std::size_t nBytes, bool bZeroed);
    bool MustFail();

    const std::int64_t m_nSkip, m_nFailures;
    std::atomic<std::int64_t> m_nCount{0};
    static std::atomic<TAllocationFault*> m_pInForce;
};

/// AllocateRegisterMemory for containers.
template <class T>
struct TRegisterAllocator
{
    using value_type = T;

    TRegisterAllocator() = default;
    template <class U>
    TRegisterAllocator(const TRegisterAllocator<U>&)
    {
    }

    T* allocate(std::size_t nCount)
    {
        return static_cast<T*>(AllocateRegisterMemory(nCount * sizeof(T)));
    }
    void deallocate(T* pMemory, std::size_t) noexcept { FreeRegisterMemory(pMemory); }

    friend bool operator==(TRegisterAllocator, TRegisterAllocator) { return true; }
};

} // namespace corvina

#endif
