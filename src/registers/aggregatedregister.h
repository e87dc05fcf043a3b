#ifndef CORVINA_REGISTERS_AGGREGATEDREGISTER_H
#define CORVINA_REGISTERS_AGGREGATEDREGISTER_H

#include "chess/chessboard.h"
#include "registers/temporaryregister.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace corvina
{

class TRegisterHost;

/// The memory of a solve: certain results, results per setting of the heuristics (the pair of a
/// position's m_nHeuristics and m_nHeuristicsParams), and the policy that keeps them within the
/// memory granted. When that is used up, sweeps throw away everything below a depth, the shallowest
/// first, because it is the cheapest to work out again.
///
/// Boards are 64 figure bytes, already marked where a key needs a mark; depths are plies left,
/// answers are those of registers/answers.h. Every operation may be called from any thread, and
/// none throws for lack of memory: an entry is lost then, or a table has its old length. Without a
/// table, before the first SetBuckets and after CLEAR_EVERYTHING, nothing is stored.
class TAggregatedTemporaryChessboardRegister : public TTemporaryChessboardRegister<REGISTER_CERTAIN>
{
public:
    TAggregatedTemporaryChessboardRegister();
    ~TAggregatedTemporaryChessboardRegister() override;

    void UpdateLimits() override;
    std::uint32_t GetElementsCount() const override
    {
        return GetMapCount() + m_nDoubtfulElements + m_nCount;
    }
    std::uint32_t GetDoubtfulCount() const override { return m_nDoubtfulElements; }

    /// The solve that the register belongs to; null, as at first, outside one. Not owned.
    void SetHost(TRegisterHost* pHost) { m_pSolve = pHost; }

    /// Is there mate within nMoves? REGISTER_NO_MATE_HERE comes only from this very setting.
    std::uint8_t FindPosition(std::uint16_t nMoves, const std::uint8_t* pBoard,
                              std::uint32_t nHeuristics, std::uint32_t nHeurParams)
    {
        return FindPositionAdditional(nMoves, nMoves, pBoard, nHeuristics, nHeurParams);
    }

    /// The same, with REGISTER_MATE_ADDITIONAL for a mate that needs more than nMoves but at most
    /// nMovesWithAdditional.
    std::uint8_t FindPositionAdditional(std::uint16_t nMoves, std::uint16_t nMovesWithAdditional,
                                        const std::uint8_t* pBoard, std::uint32_t nHeuristics,
                                        std::uint32_t nHeurParams);

    /// Asks only this setting: REGISTER_NO_MATE_HERE when it doesn't know the board, 1 when the
    /// board was left doubtful at nMinDoubtful or more and wasn't cleared of that at nMoves, else
    /// 0.
    std::uint8_t FindDoubtful(std::uint16_t nMoves, std::uint16_t nMinDoubtful,
                              const std::uint8_t* pBoard, std::uint32_t nHeuristics,
                              std::uint32_t nHeurParams);

    /// The least depth with a known mate among nMoves, nMoves - 2, ... Where FindPosition doesn't
    /// say mate at nMoves: its answer, 0 or, as a signed byte, -2 (unknown) or -1.
    int FindShortestMate(std::uint16_t nMoves, const std::uint8_t* pBoard,
                         std::uint32_t nHeuristics, std::uint32_t nHeurParams);

    /// A certain result for position.m_board. In a pass with heuristics a mate overrules a "no
    /// mate" at the same depth; later on the contradiction is shown to the user. True when that
    /// made a new entry.
    bool Insert(std::uint16_t nMoves, const TChessboard& position, bool bMate);

    /// A certain result from a file: a mate always overrules.
    bool InsertFromFile(std::uint16_t nMoves, const std::uint8_t* pBoard, bool bMate);

    /// A result under heuristics: nothing found and no doubt left (bNotDoubtful), or doubtful.
    void InsertDoubtful(std::uint16_t nMoves, const std::uint8_t* pBoard, std::uint32_t nHeuristics,
                        std::uint32_t nHeurParams, bool bNotDoubtful);

    /// TTemporaryChessboardRegister::RemoveNMovers of all registers; ends early when the solve is
    /// being abandoned.
    std::uint32_t RemoveNMovers(std::uint16_t nMoves);

    /// Empties a setting that has served, unless a KeepDoubtful is open for it: then that is used
    /// up instead. Returns the number of entries removed.
    std::uint32_t RemoveDoubtful(std::uint32_t nHeuristics, std::uint32_t nHeurParams);

    /// The next RemoveDoubtful of this setting is to be skipped; adds up.
    void KeepDoubtful(std::uint32_t nHeuristics, std::uint32_t nHeurParams);

    /// Empties every setting that RemoveDoubtful or KeepDoubtful was called with and that has no
    /// KeepDoubtful open. Returns the number of entries removed.
    std::uint32_t RemoveUnusedDoubtful() override;

    /// Reclaims memory, at most once in 64 ms. bOutOfMemory: an allocation has failed; nothing is
    /// removed then while a quarter of the register is free. False when a sweep of any register is
    /// under way. The caller holds no lock of the register.
    bool EmptySomeDataWhenRegisterFull(bool bOutOfMemory) override;

    /// Sweeps of all registers start at the least depth again: for a new solve, and when the user
    /// has changed the options.
    static void ResetSweepDepth();

    static constexpr int CLEAR_EVERYTHING = 0; ///< frees the tables and all settings
    static constexpr int CLEAR_DOUBTFUL = -1;  ///< frees all settings
    static constexpr int CLEAR_CERTAIN = 1;    ///< keeps the table
    void Clear(int nMode, bool bNoPump);

    /// Exchanges the contents. Limits and host stay.
    void Swap(TAggregatedTemporaryChessboardRegister& other);

    /// Sets the table length, a power of two, of all tables, those of future settings included.
    /// With bKeep the entries stay.
    void SetBuckets(std::uint32_t nBuckets, bool bKeep);

    /// The table length for a solve of so many plies within the memory limit.
    std::uint32_t GetBucketsForSolve(std::uint16_t nInitialMoves) const;

    /// Gives the tables the next length when their buckets have become long. Searching threads call
    /// it as they store; they wait while the entries move.
    void GrowIfCrowded();

    /// The report for the user: counts of elements, by depth in moves.
    std::string Statistics();

private:
    template <int nKind>
    friend class TTemporaryChessboardRegister;

    using TSettingRegister = TTemporaryChessboardRegister<REGISTER_DOUBTFUL>;

    /// Of a setting: m_nHeuristics in the low half, m_nHeuristicsParams in the high half.
    static std::uint64_t SettingKey(std::uint32_t nHeuristics, std::uint32_t nHeurParams)
    {
        return std::uint64_t{nHeurParams} << 32 | nHeuristics;
    }

    bool IsFull() const { return GetElementsCount() >= GetMaxElements(); }
    bool IsAbandoned() const;
    void OnInsertionFailed();
    TInsertion InsertCertain(std::uint16_t nMoves, const std::uint8_t* pBoard, bool bMate,
                             bool bRepair);
    void ShowIncoherence(std::uint16_t nMoves, const TChessboard& position, bool bMate,
                         TRegisterDepths depths);
    bool StoreInSetting(std::uint64_t nKey, std::uint16_t nMoves, const std::uint8_t* pBoard,
                        std::uint32_t nHash, bool bNotDoubtful);
    void CreateSetting(std::uint64_t nKey, std::uint16_t nMoves, const std::uint8_t* pBoard,
                       std::uint32_t nHash, bool bNotDoubtful);
    std::optional<TRegisterDepths> FindInSetting(std::uint64_t nKey, const std::uint8_t* pBoard,
                                                 std::uint32_t nHash);
    std::uint32_t EmptySetting(std::uint64_t nKey);
    std::size_t GetThresholdForClear(int nMode);

    void SweepIfDue(bool bOutOfMemory);
    bool RemoveTwoMovers(std::uint32_t& nRemoved);
    bool SweepByDepth(bool bOutOfMemory, bool bEnough, std::uint32_t nRemoved,
                      std::uint32_t nTotalBefore);

    /// Changed with m_lock held for writing; read with m_lock.
    std::map<std::uint64_t, std::unique_ptr<TSettingRegister>> m_mapDoubtful;
    std::map<std::uint64_t, std::uint32_t> m_mapKeepDoubtful;      ///< RemoveDoubtful calls to skip
    alignas(64) std::atomic<std::uint32_t> m_nDoubtfulElements{0}; ///< entries of all settings
    std::mutex m_csDoubtful; ///< held while a setting is created; comes before m_lock
    std::uint64_t m_nLastEmptiedTick;
    std::atomic<TRegisterHost*> m_pSolve{nullptr};
    std::atomic<std::uint32_t> m_nBuckets{0}; ///< table length in force
};

} // namespace corvina

#endif
