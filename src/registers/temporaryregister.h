#ifndef CORVINA_REGISTERS_TEMPORARYREGISTER_H
#define CORVINA_REGISTERS_TEMPORARYREGISTER_H

#include "registers/chessboardregister.h"
#include "registers/combinedmap.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace corvina
{

/// What a register makes of the two depths of an entry (TRegisterDepths).
///
/// REGISTER_CERTAIN: certain results. m_nMovesMate is the shortest known mate, m_nMovesNoMate the
/// greatest depth without one, and less than m_nMovesMate when both are known.
///
/// REGISTER_DOUBTFUL: what was found under one setting of the heuristics. m_nMovesMate is the
/// greatest depth at which the position was left doubtful, m_nMovesNoMate the greatest one at which
/// the search found nothing and no doubt remains of that.
constexpr int REGISTER_CERTAIN = 0;
constexpr int REGISTER_DOUBTFUL = 1;

/// One hash of positions: the memory of the search. The search asks and stores with White to move,
/// so depths in use are odd. Operations throw std::bad_alloc where they say so, and leave limits of
/// memory to the aggregate.
///
/// Lock order: m_lock, m_mapLock, the flag of one bucket.
template <int nKind>
class TTemporaryChessboardRegister : public TChessboardRegister
{
public:
    TTemporaryChessboardRegister() { m_bNoFiles = true; }

    std::uint32_t GetElementsCount() const override { return m_nElements; }

    /// Entries of the hash.
    std::uint32_t GetMapCount() const { return m_nElements; }

    /// What is known of a board with this hash.
    std::optional<TRegisterDepths> FindDepths(const std::uint8_t* pBoard, std::uint32_t nHash);

    /// Stores that a doubtful position has or has no doubt left: see REGISTER_DOUBTFUL. True when
    /// that made a new entry. Throws std::bad_alloc.
    bool StoreDoubtful(std::uint16_t nMoves, const std::uint8_t* pBoard, std::uint32_t nHash,
                       bool bNotDoubtful) requires(nKind == REGISTER_DOUBTFUL);

    /// Removes results of at most nMoves plies and returns their number: of certain ones those in
    /// which neither depth is greater, of doubtful ones those that are not doubtful beyond nMoves
    /// and not free of doubt from there on.
    std::uint32_t RemoveNMovers(std::uint16_t nMoves);

    /// Empties the hash, and the permanent entries of the base. *pOwnerCounter, if given, falls by
    /// the number of entries of the hash.
    void ClearAll(bool bKeepTable, std::atomic<std::uint32_t>* pOwnerCounter, bool bNoPump,
                  std::size_t nFreeThreshold);

    /// TRegisterCombinedMap::Resize.
    bool Resize(std::uint32_t nBuckets, bool bKeep);

    void AddFlatCapacities(TFlatCapacities& capacities);

    /// Room for entries.
    std::uint64_t GetCapacity();

    /// Calls visit(key, depths) for each entry, with its bucket held.
    template <class F>
    void ForEachEntry(F visit)
    {
        const TRegisterLock::TReadGuard guard(m_mapLock);
        m_map.ForEachEntry(visit);
    }

protected:
    struct TInsertion
    {
        bool m_bNew = false;
        bool m_bIncoherent = false; ///< there is a mate and no mate at the same depth
        TRegisterDepths m_depths{}; ///< after the insertion
    };

    /// Stores a certain result: see REGISTER_CERTAIN. Where the two depths of a known entry
    /// contradict each other, the mate wins with bRepair, else they stay so. Throws std::bad_alloc.
    TInsertion StoreCertain(std::uint16_t nMoves, const std::uint8_t* pBoard, bool bMate,
                            bool bRepair) requires(nKind == REGISTER_CERTAIN);

    void SwapMaps(TTemporaryChessboardRegister& other);

private:
    /// update(depths) for a known board, else a new entry. True for a new one. Throws
    /// std::bad_alloc.
    template <class F>
    bool AddOrUpdate(const std::uint8_t* pBoard, std::uint32_t nHash, TRegisterDepths depths,
                     F update);

    void Uncount(std::uint32_t nRemoved);

    TRegisterCombinedMap m_map;
    alignas(64) std::atomic<std::uint32_t> m_nElements{0}; ///< entries of m_map
    TRegisterLock m_mapLock; ///< read: one entry or a sweep; write: the table as a whole
};

} // namespace corvina

#endif
