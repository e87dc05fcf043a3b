#ifndef CORVINA_SEARCH_GUIDES_PROOFTABLE_H
#define CORVINA_SEARCH_GUIDES_PROOFTABLE_H

#include "chess/chessboard.h"
#include "platform/memory.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace corvina
{

/// What must still be shown at a node, at the least, to prove that White mates, and to prove that
/// he does not: numbers of leaves. 0 and INFINITE: settled.
struct TProofNumbers
{
    static constexpr std::uint32_t INFINITE = std::uint32_t{1} << 30;

    static constexpr TProofNumbers Mate() { return {0, INFINITE}; }
    static constexpr TProofNumbers NoMate() { return {INFINITE, 0}; }
    bool IsMate() const { return m_nProof == 0; }
    bool IsNoMate() const { return m_nDisproof == 0; }

    std::uint32_t m_nProof;
    std::uint32_t m_nDisproof;
};

/// The memory of a proof-number search, shared by the threads of a run without a lock: the numbers
/// of positions with the half-moves left, and for each position the bounds of its mate. A position
/// is known by 64 bits of a hash, and an entry may be lost to another: what the table says is a
/// hint where to look, never a proof.
class TProofTable
{
public:
    /// The most that a table takes: so many bytes and no more than a share of the machine's memory.
    /// Throws std::bad_alloc.
    TProofTable();

    /// The position with its side to move, its rights to castle and a capture en passant.
    static std::uint64_t KeyOf(const TChessboard& board);

    /// An index that stands for a mate in one or two, found by their tests.
    static constexpr int NO_MOVE = 0x7FFF;

    /// Half-moves within which nothing changes: Black is stalemated.
    static constexpr int EVER = 0x7FFE;

    /// Brings the entries of a key nearer, for a Find that is to come soon.
    void Prefetch(std::uint64_t nKey, int nPlies) const;

    /// False: nothing is known.
    bool Find(std::uint64_t nKey, int nPlies, TProofNumbers* pNumbers) const;

    /// Numbers of a position that is not settled.
    void Store(std::uint64_t nKey, int nPlies, TProofNumbers numbers);

    /// White mates within nPlies half-moves, by the move with this index in the order of generation
    /// when he is to move, or NO_MOVE.
    void StoreMate(std::uint64_t nKey, int nPlies, int nIndex);

    /// White does not mate within nPlies half-moves.
    void StoreNoMate(std::uint64_t nKey, int nPlies);

    /// Index of the move that mates within nPlies half-moves; -1: unknown.
    int FindMatingMove(std::uint64_t nKey, int nPlies) const;

    /// So many positions more have been searched: the table grows to its full size with their
    /// number.
    void NotePositions(std::uint64_t nPositions);

    /// Threads that are below a position with so many half-moves left now.
    std::atomic<std::uint8_t>& Visitors(std::uint64_t nKey, int nPlies)
    {
        return m_aVisitors[(nKey + static_cast<std::uint64_t>(nPlies) * 0x9E37) %
                           m_aVisitors.size()];
    }

private:
    /// The first word is the key combined with the second: an entry torn by two writers fits no
    /// key.
    struct TEntry
    {
        std::atomic<std::uint64_t> m_nCheck;
        std::atomic<std::uint64_t> m_nData;
    };
    static constexpr std::size_t CLUSTER = 4; ///< entries on one cache line

    struct TBounds;

    TEntry* ClusterOf(std::uint64_t nKey) const
    {
        return m_pEntries + (nKey & m_nMask.load(std::memory_order_relaxed)) * CLUSTER;
    }
    static bool Get(const TEntry& entry, std::uint64_t nKey, std::uint64_t* pnData);
    static void Put(TEntry& entry, std::uint64_t nKey, std::uint64_t nData);
    bool GetBounds(std::uint64_t nKey, TBounds* pBounds) const;
    /// In the place of the entry with this key, or of the one with the least worth.
    void PutInCluster(std::uint64_t nKey, std::uint64_t nData);

    std::size_t m_nClusters;
    std::atomic<std::size_t> m_nMask; ///< clusters in use less one
    std::atomic<std::uint64_t> m_nPositions{0};
    std::unique_ptr<void, TFreePages> m_pPages;
    TEntry* m_pEntries; ///< on the pages
    std::array<std::atomic<std::uint8_t>, 65536> m_aVisitors{};
};

} // namespace corvina

#endif
