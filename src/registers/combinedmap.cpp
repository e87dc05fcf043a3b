#include "registers/combinedmap.h"

#include "platform/machine.h"
#include "registers/registersettings.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <new>

namespace corvina
{
namespace
{

/// A clear spends this time at most on handing storage back to the system.
constexpr std::uint64_t RELEASE_MILLISECONDS = 750;

constexpr std::uint32_t PUMP_INDEX_MASK = 1023;
constexpr std::uint64_t PUMP_MILLISECONDS = 600;

constexpr std::size_t REHASH_FREE_THRESHOLD = 64; ///< entries
constexpr int TAKE_BACK_WAITS = 1000;             ///< of a millisecond, over a whole table

TBucketSlot* AllocateSlots(std::uint32_t nBuckets)
{
    return static_cast<TBucketSlot*>(
        AllocateRegisterMemory(std::size_t{nBuckets} * sizeof(TBucketSlot), true));
}

/// Serves the window's messages now and then during a long loop over a table, with the counters
/// that the window shows brought up to date.
class TPump
{
public:
    TPump(bool bNoPump, std::atomic<std::uint32_t>* pCounter1,
          std::atomic<std::uint32_t>* pCounter2)
        : m_pPump(bNoPump ? nullptr : g_registerSettings.m_pPumpMessages), m_pCounter1(pCounter1),
          m_pCounter2(pCounter2)
    {
    }
    ~TPump() { Count(); }

    void OnBucketEmptied(std::uint32_t nIndex, std::uint32_t nEntries)
    {
        m_nEntries += nEntries;
        if (!m_pPump || (nIndex & PUMP_INDEX_MASK) != PUMP_INDEX_MASK)
            return;
        if (GetTickMilliseconds() - m_nLastTick < PUMP_MILLISECONDS)
            return;
        Count();
        m_pPump();
        m_nLastTick = GetTickMilliseconds();
    }

private:
    void Count()
    {
        if (m_pCounter1)
            *m_pCounter1 -= m_nEntries;
        if (m_pCounter2)
            *m_pCounter2 -= m_nEntries;
        m_nEntries = 0;
    }

    void (*m_pPump)();
    std::atomic<std::uint32_t>*m_pCounter1, *m_pCounter2;
    std::uint32_t m_nEntries = 0;
    std::uint64_t m_nLastTick = GetTickMilliseconds();
};

/// Turns a full small bucket into a flat one. Throws std::bad_alloc, with the slot unchanged.
void ConvertToFlat(TBucketSlot& slot)
{
    TSmallBucket* pSmall = slot.GetSmall();
    TFlatBucket* pFlat = TBodyPool<TFlatBucket>::Get().Take();
    try {
        pFlat->m_map.reserve(TFlatBucket::INITIAL_CAPACITY);
    }
    catch (...) {
        TBodyPool<TFlatBucket>::Destroy(pFlat);
        throw;
    }
    for (const TRegisterEntry& entry : pSmall->m_aEntries)
        pFlat->m_map.emplace(entry.m_key, entry.m_depths);
    slot.SetBody(pFlat, TBucketSlot::KIND_FLAT);
    TBodyPool<TSmallBucket>::Get().GiveBack(pSmall);
}

/// Which entries a sweep removes.
struct TDepthLimits
{
    std::uint16_t m_nMaxMate, m_nMaxNoMate;

    bool Match(TRegisterDepths depths) const
    {
        return depths.m_nMovesMate <= m_nMaxMate && depths.m_nMovesNoMate <= m_nMaxNoMate;
    }
};

std::uint32_t RemoveFromSmall(TSmallBucket& bucket, TDepthLimits limits)
{
    TRegisterEntry* pEnd = bucket.m_aEntries + bucket.m_nCount;
    TRegisterEntry* pKept =
        std::remove_if(bucket.m_aEntries, pEnd,
                       [&](const TRegisterEntry& entry) { return limits.Match(entry.m_depths); });
    bucket.m_nCount = static_cast<std::uint64_t>(pKept - bucket.m_aEntries);
    return static_cast<std::uint32_t>(pEnd - pKept);
}

/// Removes entries from flat buckets. Has a vector of its own, into which it copies what stays of a
/// bucket, and which then changes places with the bucket's: so a bucket's storage shrinks with it.
class TFlatSweeper
{
public:
    std::uint32_t Remove(TFlatBucket::TMap& map, TDepthLimits limits)
    {
        const auto isMatch = [&](const auto& entry) { return limits.Match(entry.second); };
        const std::size_t nSize = map.size();
        const auto nMatches =
            static_cast<std::size_t>(std::count_if(map.begin(), map.end(), isMatch));
        if (nMatches == 0)
            return 0;
        if (nMatches == nSize) {
            map.clear();
            if (map.capacity() > MAX_EMPTY_CAPACITY)
                map.shrink_to_fit();
            return static_cast<std::uint32_t>(nSize);
        }
        const bool bCopy =
            nMatches > MAX_SHIFTED && ReserveScratch(nSize - nMatches, map.capacity());
        TSequence sequence = map.extract_sequence();
        if (bCopy) {
            std::remove_copy_if(sequence.begin(), sequence.end(), std::back_inserter(m_vecScratch),
                                isMatch);
            sequence.swap(m_vecScratch);
            m_vecScratch.clear();
        }
        else {
            sequence.erase(std::remove_if(sequence.begin(), sequence.end(), isMatch),
                           sequence.end());
        }
        map.adopt_sequence(boost::container::ordered_unique_range, std::move(sequence));
        return static_cast<std::uint32_t>(nMatches);
    }

private:
    using TSequence = TFlatBucket::TMap::sequence_type;
    static constexpr std::size_t MAX_EMPTY_CAPACITY = 32;
    static constexpr std::size_t MAX_SHIFTED = 2; ///< so few entries are shifted out in place

    /// Room for nKept entries, neither far too large nor larger than the bucket needs.
    bool ReserveScratch(std::size_t nKept, std::size_t nBucketCapacity)
    {
        const std::size_t nCapacity = m_vecScratch.capacity();
        if (nCapacity > 16 * nKept && nCapacity >= nKept + 33)
            m_vecScratch.shrink_to_fit();
        if (m_vecScratch.capacity() >= nKept)
            return true;
        try {
            m_vecScratch.reserve(
                std::min(std::max<std::size_t>(nKept + nKept / 2, 8), nBucketCapacity));
            return true;
        }
        catch (const std::bad_alloc&) {
            return false;
        }
    }

    TSequence m_vecScratch; ///< empty between two buckets
};

} // namespace

std::size_t GetFreeThreshold(const TFlatCapacities& capacities)
{
    constexpr std::size_t MIN_BUCKETS = 1025;
    std::size_t nBuckets = 0, nTotal = 0, nSum = 0;
    for (const auto& [nCapacity, nNumber] : capacities) {
        nBuckets += nNumber;
        nTotal += nCapacity * nNumber;
    }
    if (nBuckets < MIN_BUCKETS)
        return RELEASE_NOTHING;
    for (auto it = capacities.rbegin(); it != capacities.rend(); ++it) {
        nSum += it->first * it->second;
        if (nSum >= nTotal / 10)
            return it->first;
    }
    return RELEASE_NOTHING;
}

TRegisterDepths* TRegisterCombinedMap::FindEntry(TBucketSlot& slot, const std::uint8_t* pBoard)
{
    if (slot.IsFlat()) {
        TFlatBucket::TMap& map = slot.GetFlat()->m_map;
        const auto it = std::lower_bound(map.begin(), map.end(), pBoard,
                                         [](const auto& entry, const std::uint8_t* pSought) {
                                             return IsKeyLess(entry.first.m_board, pSought);
                                         });
        return it != map.end() && AreKeysEqual(it->first.m_board, pBoard) ? &it->second : nullptr;
    }
    TSmallBucket* pSmall = slot.GetSmall();
    if (!pSmall)
        return nullptr;
    for (std::uint64_t i = 0; i < pSmall->m_nCount; ++i) {
        if (AreKeysEqual(pSmall->m_aEntries[i].m_key.m_board, pBoard))
            return &pSmall->m_aEntries[i].m_depths;
    }
    return nullptr;
}

void TRegisterCombinedMap::AddEntry(TBucketSlot& slot, const std::uint8_t* pBoard,
                                    TRegisterDepths depths)
{
    if (!slot.GetBody())
        slot.SetBody(TBodyPool<TSmallBucket>::Get().Take(), 0);
    if (!slot.IsFlat()) {
        TSmallBucket& bucket = *slot.GetSmall();
        if (bucket.m_nCount < TSmallBucket::CAPACITY) {
            bucket.m_aEntries[bucket.m_nCount++] = {TPositionKey::Of(pBoard), depths};
            return;
        }
        try {
            ConvertToFlat(slot);
        }
        catch (const std::bad_alloc&) {
            ConvertToFlat(slot);
        }
    }
    slot.GetFlat()->m_map.emplace(TPositionKey::Of(pBoard), depths);
}

void TRegisterCombinedMap::PutEntry(TBucketSlot& slot, const TPositionKey& key,
                                    TRegisterDepths depths)
{
    if (TRegisterDepths* pDepths = FindEntry(slot, key.m_board))
        *pDepths = depths;
    else
        AddEntry(slot, key.m_board, depths);
}

std::size_t TRegisterCombinedMap::GetSize(const TBucketSlot& slot)
{
    if (slot.IsFlat())
        return slot.GetFlat()->m_map.size();
    return slot.GetBody() ? slot.GetSmall()->m_nCount : 0;
}

std::uint32_t TRegisterCombinedMap::EmptyBucket(TBucketSlot& slot, std::size_t nFreeThreshold)
{
    const auto nEntries = static_cast<std::uint32_t>(GetSize(slot));
    if (slot.IsFlat()) {
        TFlatBucket* pFlat = slot.GetFlat();
        pFlat->m_map.clear();
        if (pFlat->m_map.capacity() >= nFreeThreshold)
            pFlat->m_map.shrink_to_fit();
        TBodyPool<TFlatBucket>::Get().GiveBack(pFlat);
    }
    else if (slot.GetBody()) {
        TBodyPool<TSmallBucket>::Get().GiveBack(slot.GetSmall());
    }
    slot.SetBody(nullptr, 0);
    return nEntries;
}

TRegisterCombinedMap::~TRegisterCombinedMap()
{
    Clear(false, nullptr, nullptr, true, RELEASE_NOTHING);
}

void TRegisterCombinedMap::Clear(bool bKeepTable, std::atomic<std::uint32_t>* pCounter1,
                                 std::atomic<std::uint32_t>* pCounter2, bool bNoPump,
                                 std::size_t nFreeThreshold)
{
    const std::uint64_t nStart = GetTickMilliseconds();
    TPump pump(bNoPump, pCounter1, pCounter2);
    for (std::uint32_t i = 0; i < m_nBuckets; ++i) {
        if ((i & PUMP_INDEX_MASK) == 0 && GetTickMilliseconds() - nStart >= RELEASE_MILLISECONDS)
            nFreeThreshold = RELEASE_NOTHING;
        pump.OnBucketEmptied(i, EmptyBucket(m_pSlots[i], nFreeThreshold));
    }
    if (!bKeepTable) {
        FreeRegisterMemory(m_pSlots);
        m_pSlots = nullptr;
        m_nBuckets = 0;
    }
}

std::uint32_t TRegisterCombinedMap::RemoveByDepth(std::uint16_t nMaxMate, std::uint16_t nMaxNoMate)
{
    static std::mutex csSweeper;
    static TFlatSweeper sweeper;
    const std::lock_guard guard(csSweeper);
    const TDepthLimits limits{nMaxMate, nMaxNoMate};
    std::uint32_t nRemoved = 0;
    for (std::uint32_t i = 0; i < m_nBuckets; ++i) {
        const TBucket bucket(*this, i);
        if (m_pSlots[i].IsFlat())
            nRemoved += sweeper.Remove(m_pSlots[i].GetFlat()->m_map, limits);
        else if (TSmallBucket* pSmall = m_pSlots[i].GetSmall())
            nRemoved += RemoveFromSmall(*pSmall, limits);
    }
    return nRemoved;
}

std::uint32_t TRegisterCombinedMap::CountEntries() const
{
    std::size_t nEntries = 0;
    for (std::uint32_t i = 0; i < m_nBuckets; ++i)
        nEntries += GetSize(m_pSlots[i]);
    return static_cast<std::uint32_t>(nEntries);
}

std::uint64_t TRegisterCombinedMap::GetCapacity()
{
    std::uint64_t nCapacity = 0;
    for (std::uint32_t i = 0; i < m_nBuckets; ++i) {
        const TBucket bucket(*this, i);
        if (m_pSlots[i].IsFlat())
            nCapacity += m_pSlots[i].GetFlat()->m_map.capacity();
        else if (m_pSlots[i].GetBody())
            nCapacity += TSmallBucket::CAPACITY;
    }
    return nCapacity;
}

void TRegisterCombinedMap::AddFlatCapacities(TFlatCapacities& capacities)
{
    for (std::uint32_t i = 0; i < m_nBuckets; ++i) {
        std::size_t nCapacity = 0;
        {
            const TBucket bucket(*this, i);
            if (!m_pSlots[i].IsFlat())
                continue;
            nCapacity = m_pSlots[i].GetFlat()->m_map.capacity();
        }
        ++capacities[nCapacity];
    }
}

void TRegisterCombinedMap::Swap(TRegisterCombinedMap& other) noexcept
{
    std::swap(m_pSlots, other.m_pSlots);
    std::swap(m_nBuckets, other.m_nBuckets);
}

bool TRegisterCombinedMap::Resize(std::uint32_t nBuckets, bool bKeep)
{
    if (nBuckets == m_nBuckets) {
        if (!bKeep)
            Clear(true, nullptr, nullptr, false, RELEASE_NOTHING);
        return true;
    }
    if (bKeep && m_pSlots)
        return Rehash(nBuckets);
    Clear(false, nullptr, nullptr, false, RELEASE_NOTHING);
    try {
        m_pSlots = AllocateSlots(nBuckets);
        m_nBuckets = nBuckets;
        return true;
    }
    catch (const std::bad_alloc&) {
        return false;
    }
}

bool TRegisterCombinedMap::Rehash(std::uint32_t nBuckets)
{
    TRegisterCombinedMap target;
    try {
        target.m_pSlots = AllocateSlots(nBuckets);
        target.m_nBuckets = nBuckets;
        for (std::uint32_t i = 0; i < m_nBuckets; ++i) {
            ForEachEntryOf(m_pSlots[i], [&](const TPositionKey& key, TRegisterDepths depths) {
                PutEntry(target.SlotOf(key), key, depths);
            });
            EmptyBucket(m_pSlots[i], REHASH_FREE_THRESHOLD);
        }
    }
    catch (const std::bad_alloc&) {
        TakeBack(target);
        return false;
    }
    Swap(target);
    return true;
}

/// Puts the entries of a table that couldn't be finished into this one. Entries for which there is
/// no memory after a second of waiting are lost.
void TRegisterCombinedMap::TakeBack(TRegisterCombinedMap& other)
{
    int nWaits = 0;
    for (std::uint32_t i = 0; i < other.m_nBuckets; ++i) {
        ForEachEntryOf(other.m_pSlots[i], [&](const TPositionKey& key, TRegisterDepths depths) {
            for (;;) {
                try {
                    PutEntry(SlotOf(key), key, depths);
                    return;
                }
                catch (const std::bad_alloc&) {
                    if (nWaits++ >= TAKE_BACK_WAITS)
                        return;
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                }
            }
        });
        EmptyBucket(other.m_pSlots[i], REHASH_FREE_THRESHOLD);
    }
}

} // namespace corvina
