#ifndef CORVINA_PLATFORM_MEMORY_H
#define CORVINA_PLATFORM_MEMORY_H

#include <cstddef>
#include <memory>

namespace corvina
{

/// Gives the pages of AllocateZeroPages back.
struct TFreePages
{
    std::size_t m_nBytes = 0;
    void operator()(void* p) const;
};

/// A large block of zeros, on pages as large as the system has. Those that nothing is written to
/// take no memory. Throws std::bad_alloc.
std::unique_ptr<void, TFreePages> AllocateZeroPages(std::size_t nBytes);

} // namespace corvina

#endif
