#include "registers/registermemory.h"

#include <cstdlib>
#include <new>

namespace corvina
{

std::atomic<TAllocationFault*> TAllocationFault::m_pInForce{nullptr};

TAllocationFault::TAllocationFault(std::int64_t nSkip, std::int64_t nFailures)
    : m_nSkip(nSkip), m_nFailures(nFailures)
{
    m_pInForce = this;
}

TAllocationFault::~TAllocationFault()
{
    m_pInForce = nullptr;
}

std::int64_t TAllocationFault::GetCount() const
{
    return m_nCount;
}

bool TAllocationFault::MustFail()
{
    const std::int64_t nIndex = m_nCount++;
    return nIndex >= m_nSkip && nIndex - m_nSkip < m_nFailures;
}

void* AllocateRegisterMemory(std::size_t nBytes, bool bZeroed)
{
    TAllocationFault* pFault = TAllocationFault::m_pInForce.load(std::memory_order_acquire);
    if (pFault && pFault->MustFail()) [[unlikely]]
        throw std::bad_alloc();
    void* pMemory = bZeroed ? std::calloc(1, nBytes) : std::malloc(nBytes);
    if (!pMemory)
        throw std::bad_alloc();
    return pMemory;
}

void FreeRegisterMemory(void* pMemory) noexcept
{
    std::free(pMemory);
}

} // namespace corvina
