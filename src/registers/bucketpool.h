#ifndef CORVINA_REGISTERS_BUCKETPOOL_H
#define CORVINA_REGISTERS_BUCKETPOOL_H

#include "platform/spinlock.h"
#include "registers/positionkey.h"
#include "registers/registermemory.h"

#include <boost/container/flat_map.hpp>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace corvina
{

/// What a temporary register knows of a position, in plies; 0 means no value.
struct TRegisterDepths
{
    std::uint16_t m_nMovesMate;
    std::uint16_t m_nMovesNoMate;

    friend bool operator==(TRegisterDepths, TRegisterDepths) = default;
};

struct TRegisterEntry
{
    TPositionKey m_key;
    TRegisterDepths m_depths;
};
static_assert(sizeof(TRegisterEntry) == 68);

/// The body of a short bucket: entries in no order. The count stands in front, so that a look-up
/// has it in the cache line of the first entry.
struct TSmallBucket
{
    static constexpr std::uint64_t CAPACITY = 8;

    std::uint64_t m_nCount = 0;
    TRegisterEntry m_aEntries[CAPACITY] = {};

    void MakeEmpty() { m_nCount = 0; }
};

/// The body of a long bucket: a vector of entries in the order of their keys.
struct TFlatBucket
{
    /// Entries for which a bucket has room when it becomes long.
    static constexpr std::size_t INITIAL_CAPACITY = 16;

    using TMap =
        boost::container::flat_map<TPositionKey, TRegisterDepths, TPositionKeyLess,
                                   TRegisterAllocator<std::pair<TPositionKey, TRegisterDepths>>>;
    static_assert(sizeof(TMap::value_type) == sizeof(TRegisterEntry));

    TMap m_map;

    void MakeEmpty() { m_map.clear(); }
};

/// Bodies that wait to be used, for all tables of the process; an empty pool makes a new one.
/// Bodies come back empty; a flat one keeps its vector's storage. Usable from any thread.
template <class TBody>
class TBodyPool
{
public:
    /// A pool that holds as many frees what comes back.
    static constexpr std::size_t MAX_POINTERS = 4194304;

    /// The only one; it lives as long as the process.
    static TBodyPool& Get();

    /// Throws std::bad_alloc.
    TBody* Take();
    void GiveBack(TBody* pBody) noexcept;

    /// Makes room for pointers without touching the memory. Throws std::bad_alloc.
    void Reserve(std::size_t nPointers);

    /// Adds a body ready for use; false when memory or the room of nPointers is used up.
    bool AddReadyBody(std::size_t nPointers) noexcept;

    std::size_t GetCount();

    static void Destroy(TBody* pBody) noexcept;

private:
    static TBody* Make();

    alignas(64) TSpinLock m_lock;
    std::vector<TBody*> m_vecFree;
};

extern template class TBodyPool<TSmallBucket>;
extern template class TBodyPool<TFlatBucket>;

/// Lets background threads, one per pool, fill half of the room that each pool reserves: for
/// 4194304 pointers in the first running instance of the program on a machine with at least 15 GiB,
/// else for 524288. Nothing waits for them. They begin two seconds after this call, work in short
/// bursts at less than full load, stop at the first failed allocation, and are ended, within a
/// burst, and joined at the end of the process: a short run costs them nothing. Only the first call
/// has an effect. Throws nothing: without memory or threads the pools just stay empty.
void StartRegisterPools(bool bFirstInstance) noexcept;

} // namespace corvina

#endif
