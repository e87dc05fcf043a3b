#include "platform/memory.h"

#include <sys/mman.h>

#include <new>

namespace corvina
{

void TFreePages::operator()(void* p) const
{
    munmap(p, m_nBytes);
}

std::unique_ptr<void, TFreePages> AllocateZeroPages(std::size_t nBytes)
{
    void* p = mmap(nullptr, nBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED)
        throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
    madvise(p, nBytes, MADV_HUGEPAGE); // a hint: without it, everything works the same
#endif
    return {p, TFreePages{nBytes}};
}

} // namespace corvina
