#include "registers/temporaryregister.h"

#include "registers/aggregatedregister.h"

#include <algorithm>

namespace corvina
{

template <int nKind>
std::optional<TRegisterDepths>
TTemporaryChessboardRegister<nKind>::FindDepths(const std::uint8_t* pBoard, std::uint32_t nHash)
{
    const TRegisterLock::TReadGuard guard(m_mapLock);
    if (!m_map.HasTable())
        return std::nullopt;
    TRegisterCombinedMap::TBucket bucket(m_map, nHash);
    const TRegisterDepths* pDepths = bucket.Find(pBoard);
    return pDepths ? std::optional(*pDepths) : std::nullopt;
}

template <int nKind>
template <class F>
bool TTemporaryChessboardRegister<nKind>::AddOrUpdate(const std::uint8_t* pBoard,
                                                      std::uint32_t nHash, TRegisterDepths depths,
                                                      F update)
{
    const TRegisterLock::TReadGuard guard(m_mapLock);
    if (!m_map.HasTable())
        return false;
    TRegisterCombinedMap::TBucket bucket(m_map, nHash);
    if (TRegisterDepths* pDepths = bucket.Find(pBoard)) {
        update(*pDepths);
        return false;
    }
    bucket.Add(pBoard, depths);
    // Counted with the bucket held: a sweep that removes the entry finds it counted.
    ++m_nElements;
    if (nKind == REGISTER_DOUBTFUL && m_pOwner)
        ++m_pOwner->m_nDoubtfulElements;
    return true;
}

template <int nKind>
auto TTemporaryChessboardRegister<nKind>::StoreCertain(std::uint16_t nMoves,
                                                       const std::uint8_t* pBoard, bool bMate,
                                                       bool bRepair) -> TInsertion
    requires(nKind == REGISTER_CERTAIN)
{
    TInsertion insertion;
    insertion.m_depths = {bMate ? nMoves : std::uint16_t{0}, bMate ? std::uint16_t{0} : nMoves};
    const auto update = [&](TRegisterDepths& depths) {
        if (!bMate)
            depths.m_nMovesNoMate = std::max(depths.m_nMovesNoMate, nMoves);
        else if (!depths.m_nMovesMate || nMoves < depths.m_nMovesMate)
            depths.m_nMovesMate = nMoves;
        if (depths.m_nMovesMate && depths.m_nMovesNoMate >= depths.m_nMovesMate) {
            if (bRepair)
                depths.m_nMovesNoMate =
                    static_cast<std::uint16_t>(std::max(depths.m_nMovesMate - 2, 0));
            else
                insertion.m_bIncoherent = true;
        }
        insertion.m_depths = depths;
    };
    insertion.m_bNew = AddOrUpdate(pBoard, GetHash(pBoard), insertion.m_depths, update);
    return insertion;
}

template <int nKind>
bool TTemporaryChessboardRegister<nKind>::StoreDoubtful(
    std::uint16_t nMoves, const std::uint8_t* pBoard, std::uint32_t nHash,
    bool bNotDoubtful) requires(nKind == REGISTER_DOUBTFUL)
{
    if (!m_bKeepTwoMovers && nMoves < MIN_PLIES_BEYOND_TWO_MOVES)
        return false;
    const auto pField =
        bNotDoubtful ? &TRegisterDepths::m_nMovesNoMate : &TRegisterDepths::m_nMovesMate;
    TRegisterDepths depths{};
    depths.*pField = nMoves;
    return AddOrUpdate(pBoard, nHash, depths, [&](TRegisterDepths& known) {
        known.*pField = std::max(known.*pField, nMoves);
    });
}

template <int nKind>
std::uint32_t TTemporaryChessboardRegister<nKind>::RemoveNMovers(std::uint16_t nMoves)
{
    LogInfo("TTemporaryChessboardRegister::RemoveNMovers start.", nMoves);
    const auto nFewer = static_cast<std::uint16_t>(std::max(nMoves - 2, 0));
    std::uint32_t nRemoved = 0;
    {
        const TRegisterLock::TReadGuard guard(m_mapLock);
        nRemoved = m_map.RemoveByDepth(nMoves, nKind == REGISTER_CERTAIN ? nMoves : nFewer);
    }
    Uncount(nRemoved);
    LogInfo("TTemporaryChessboardRegister::RemoveNMovers complete.", nMoves, nRemoved);
    return nRemoved;
}

template <int nKind>
void TTemporaryChessboardRegister<nKind>::Uncount(std::uint32_t nRemoved)
{
    std::uint32_t nElements = m_nElements;
    while (nRemoved <= nElements) {
        if (m_nElements.compare_exchange_weak(nElements, nElements - nRemoved))
            break;
    }
    if (nRemoved > nElements) {
        const TRegisterLock::TWriteGuard guard(m_mapLock);
        m_nElements = m_map.CountEntries();
    }
    if (nKind == REGISTER_DOUBTFUL && m_pOwner)
        m_pOwner->m_nDoubtfulElements -= nRemoved;
}

template <int nKind>
void TTemporaryChessboardRegister<nKind>::ClearAll(bool bKeepTable,
                                                   std::atomic<std::uint32_t>* pOwnerCounter,
                                                   bool bNoPump, std::size_t nFreeThreshold)
{
    TChessboardRegister::Clear();
    const TRegisterLock::TWriteGuard guard(m_mapLock);
    m_map.Clear(bKeepTable, &m_nElements, pOwnerCounter, bNoPump, nFreeThreshold);
}

template <int nKind>
bool TTemporaryChessboardRegister<nKind>::Resize(std::uint32_t nBuckets, bool bKeep)
{
    const TRegisterLock::TWriteGuard guard(m_mapLock);
    const bool bResized = m_map.Resize(nBuckets, bKeep);
    const std::uint32_t nKept = bKeep ? m_nElements.load() : 0;
    const std::uint32_t nCount = bResized ? nKept : m_map.CountEntries();
    if (nKind == REGISTER_DOUBTFUL && m_pOwner)
        m_pOwner->m_nDoubtfulElements -= m_nElements - nCount;
    m_nElements = nCount;
    return bResized;
}

template <int nKind>
void TTemporaryChessboardRegister<nKind>::AddFlatCapacities(TFlatCapacities& capacities)
{
    const TRegisterLock::TReadGuard guard(m_mapLock);
    m_map.AddFlatCapacities(capacities);
}

template <int nKind>
std::uint64_t TTemporaryChessboardRegister<nKind>::GetCapacity()
{
    const TRegisterLock::TReadGuard guard(m_mapLock);
    return m_map.GetCapacity();
}

template <int nKind>
void TTemporaryChessboardRegister<nKind>::SwapMaps(TTemporaryChessboardRegister& other)
{
    TTemporaryChessboardRegister& first = this < &other ? *this : other;
    TTemporaryChessboardRegister& second = this < &other ? other : *this;
    const TRegisterLock::TWriteGuard guard1(first.m_mapLock);
    const TRegisterLock::TWriteGuard guard2(second.m_mapLock);
    m_map.Swap(other.m_map);
    m_nElements = other.m_nElements.exchange(m_nElements);
}

template class TTemporaryChessboardRegister<REGISTER_CERTAIN>;
template class TTemporaryChessboardRegister<REGISTER_DOUBTFUL>;

} // namespace corvina
