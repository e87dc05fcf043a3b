#ifndef CORVINA_REGISTERS_COMBINEDMAP_H
#define CORVINA_REGISTERS_COMBINEDMAP_H

#include "registers/bucketpool.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <thread>

namespace corvina
{

/// One bucket of a table in 64 bits: the body's address in the lower 48, a spin flag, a tag. An
/// address of 0 stands for an empty bucket. Zero bytes are an empty bucket that nobody holds.
/// Everything but the flag belongs to the holder of the flag.
struct TBucketSlot
{
    static constexpr std::uint8_t KIND_FLAT = 1; ///< in m_nKind: the body is a TFlatBucket

    std::uint32_t m_nBodyLow;
    std::uint16_t m_nBodyHigh;
    std::uint8_t m_bTaken;
    std::uint8_t m_nKind;

    /// Takes the spin flag. Held for one look-up or insertion, so that waiting is short, unless the
    /// holder has lost its processor.
    void Acquire()
    {
        const std::atomic_ref<std::uint8_t> taken(m_bTaken);
        for (unsigned nTry = 0; taken.exchange(1, std::memory_order_acquire); ++nTry) {
            if (nTry % SPINS_PER_YIELD == SPINS_PER_YIELD - 1) [[unlikely]]
                std::this_thread::yield();
        }
    }
    void Release() { std::atomic_ref(m_bTaken).store(0, std::memory_order_release); }

    void* GetBody() const
    {
        const std::int64_t nHigh = static_cast<std::int16_t>(m_nBodyHigh);
        return reinterpret_cast<void*>(
            static_cast<std::uintptr_t>(nHigh * (std::int64_t{1} << 32) + m_nBodyLow));
    }
    void SetBody(void* pBody, std::uint8_t nKind)
    {
        const auto nAddress = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pBody));
        m_nBodyLow = static_cast<std::uint32_t>(nAddress);
        m_nBodyHigh = static_cast<std::uint16_t>(nAddress >> 32);
        m_nKind = nKind;
    }

    bool IsFlat() const { return m_nKind & KIND_FLAT; }
    TSmallBucket* GetSmall() const { return static_cast<TSmallBucket*>(GetBody()); }
    TFlatBucket* GetFlat() const { return static_cast<TFlatBucket*>(GetBody()); }

private:
    static constexpr unsigned SPINS_PER_YIELD = 4096;
};
static_assert(sizeof(TBucketSlot) == 8 && std::is_trivial_v<TBucketSlot>);
static_assert(std::atomic_ref<std::uint8_t>::is_always_lock_free);

/// Storage of flat buckets: capacity in entries, number of buckets.
using TFlatCapacities = std::map<std::size_t, std::size_t>;

/// No vector's storage is released.
constexpr std::size_t RELEASE_NOTHING = SIZE_MAX;

/// The capacity from which on a clear releases the vectors of flat buckets, so that about a tenth
/// of the storage, the largest vectors, goes back to the system and the rest stays in the pool.
std::size_t GetFreeThreshold(const TFlatCapacities& capacities);

/// The hash table of the temporary registers: position key to depths. A bucket is a small unordered
/// block until it has eight entries and a sorted vector from then on, also when it shrinks again.
/// Nothing is evicted.
///
/// Any number of threads may use TBucket, RemoveByDepth, ForEachEntry and AddFlatCapacities at the
/// same time; the rest wants the table for itself.
class TRegisterCombinedMap
{
public:
    /// A bucket held by its spin flag while the object lives. Take no lock meanwhile.
    class TBucket
    {
    public:
        /// The table must exist.
        TBucket(TRegisterCombinedMap& map, std::uint32_t nHash)
            : m_slot(map.m_pSlots[nHash & (map.m_nBuckets - 1)])
        {
            m_slot.Acquire();
        }
        ~TBucket() { m_slot.Release(); }
        TBucket(const TBucket&) = delete;
        TBucket& operator=(const TBucket&) = delete;

        /// Null when the board isn't there. Valid until the next change of the bucket.
        TRegisterDepths* Find(const std::uint8_t* pBoard) { return FindEntry(m_slot, pBoard); }

        /// Adds a board that isn't there. Throws std::bad_alloc, with the bucket unchanged.
        void Add(const std::uint8_t* pBoard, TRegisterDepths depths)
        {
            AddEntry(m_slot, pBoard, depths);
        }

    private:
        TBucketSlot& m_slot;
    };

    TRegisterCombinedMap() = default;
    ~TRegisterCombinedMap();
    TRegisterCombinedMap(const TRegisterCombinedMap&) = delete;
    TRegisterCombinedMap& operator=(const TRegisterCombinedMap&) = delete;

    bool HasTable() const { return m_pSlots; }
    std::uint32_t GetBuckets() const { return m_nBuckets; }

    /// Gives the table a length, a power of two. With bKeep the entries stay; when memory is too
    /// short for that, the old table stays, and only where there is no memory even for putting
    /// entries back some are lost. Without bKeep the table is empty afterwards. False when the
    /// table doesn't have that length now.
    bool Resize(std::uint32_t nBuckets, bool bKeep);

    /// Removes the entries with m_nMovesMate <= nMaxMate and m_nMovesNoMate <= nMaxNoMate and
    /// returns their number. Sweeps of several threads, over all tables, run one after the other.
    std::uint32_t RemoveByDepth(std::uint16_t nMaxMate, std::uint16_t nMaxNoMate);

    /// Empties every bucket; without bKeepTable the array of slots goes too. The counters, which
    /// may be null, fall by the number of entries in total. They are brought up to date before the
    /// messages of a window are served, which bNoPump forbids.
    void Clear(bool bKeepTable, std::atomic<std::uint32_t>* pCounter1,
               std::atomic<std::uint32_t>* pCounter2, bool bNoPump, std::size_t nFreeThreshold);

    std::uint32_t CountEntries() const;

    /// Room for entries in all bodies.
    std::uint64_t GetCapacity();

    /// Throws std::bad_alloc.
    void AddFlatCapacities(TFlatCapacities& capacities);

    void Swap(TRegisterCombinedMap& other) noexcept;

    /// Calls visit(key, depths) for each entry in bucket order, with the bucket held.
    template <class F>
    void ForEachEntry(F visit);

private:
    static TRegisterDepths* FindEntry(TBucketSlot& slot, const std::uint8_t* pBoard);
    static void AddEntry(TBucketSlot& slot, const std::uint8_t* pBoard, TRegisterDepths depths);
    static void PutEntry(TBucketSlot& slot, const TPositionKey& key, TRegisterDepths depths);
    static std::uint32_t EmptyBucket(TBucketSlot& slot, std::size_t nFreeThreshold);
    static std::size_t GetSize(const TBucketSlot& slot);

    /// The entries of one bucket, which the caller holds.
    template <class F>
    static void ForEachEntryOf(const TBucketSlot& slot, F visit);

    TBucketSlot& SlotOf(const TPositionKey& key)
    {
        return m_pSlots[GetHash(key.m_board) & (m_nBuckets - 1)];
    }
    bool Rehash(std::uint32_t nBuckets);
    void TakeBack(TRegisterCombinedMap& other);

    TBucketSlot* m_pSlots = nullptr;
    std::uint32_t m_nBuckets = 0; ///< length of m_pSlots
};

template <class F>
void TRegisterCombinedMap::ForEachEntryOf(const TBucketSlot& slot, F visit)
{
    if (slot.IsFlat()) {
        for (const auto& entry : slot.GetFlat()->m_map)
            visit(entry.first, entry.second);
    }
    else if (const TSmallBucket* pSmall = slot.GetSmall()) {
        for (std::uint64_t i = 0; i < pSmall->m_nCount; ++i)
            visit(pSmall->m_aEntries[i].m_key, pSmall->m_aEntries[i].m_depths);
    }
}

template <class F>
void TRegisterCombinedMap::ForEachEntry(F visit)
{
    for (std::uint32_t i = 0; i < m_nBuckets; ++i) {
        const TBucket bucket(*this, i);
        ForEachEntryOf(m_pSlots[i], visit);
    }
}

} // namespace corvina

#endif
