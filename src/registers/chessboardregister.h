#ifndef CORVINA_REGISTERS_CHESSBOARDREGISTER_H
#define CORVINA_REGISTERS_CHESSBOARDREGISTER_H

#include "chess/boardid.h"
#include "registers/positionkey.h"
#include "registers/registerlock.h"

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>

namespace corvina
{

class TAggregatedTemporaryChessboardRegister;

/// Results of at least so many plies are kept also when shallow ones aren't.
constexpr std::uint16_t MIN_PLIES_BEYOND_TWO_MOVES = 4;

/// The base of all registers of positions: key, counters, memory limits and the lock. By itself it
/// is the small permanent register of a problem: the sub-positions that the user has had solved,
/// with their best moves, in memory and in a file ".cspdb".
///
/// Depths are plies left, nMoves. An odd one belongs to a position with White to move and the
/// question whether there is a mate, an even one to a position with Black to move and the question
/// whether there is a defence; answers are those of registers/answers.h, where "mate" stands for
/// yes. Boards are 64 figure bytes. Every operation may be called from any thread.
class TChessboardRegister
{
public:
    static constexpr std::uint16_t FIRST_MOVE_MARK = 993;
    static constexpr std::size_t MAX_FILE_RECORDS = 13797; ///< a file stays below 1 MiB

    TChessboardRegister();
    virtual ~TChessboardRegister() = default;
    TChessboardRegister(const TChessboardRegister&) = delete;
    TChessboardRegister& operator=(const TChessboardRegister&) = delete;

    /// Recomputes the limits from the physical memory and the user's.
    virtual void UpdateLimits();
    virtual std::uint32_t GetElementsCount() const { return m_nCount; }
    virtual std::uint32_t GetDoubtfulCount() const { return m_nSecondaryCount; }
    virtual std::uint32_t RemoveUnusedDoubtful() { return 0; }

    /// Reclaims memory. True when it ran: see TAggregatedTemporaryChessboardRegister.
    virtual bool EmptySomeDataWhenRegisterFull(bool) { return false; }

    /// The user's limit of memory for the registers. At first 20 % of the physical memory.
    void SetMemoryLimitMB(std::uint64_t nMaxMemMB);
    std::uint64_t GetMemoryLimitMB() const { return m_nMaxMemMB; }
    std::uint64_t GetMemoryLimit() const { return m_nMemoryLimit; }   ///< bytes
    std::uint64_t GetMemoryBudget() const { return m_nMemoryBudget; } ///< bytes for entries
    std::uint32_t GetMaxElements() const { return m_nMaxElements; }

    /// The aggregate that reclaims memory for this register.
    void SetOwner(TAggregatedTemporaryChessboardRegister* pOwner) { m_pOwner = pOwner; }

    bool KeepsTwoMovers() const { return m_bKeepTwoMovers; }
    void SetKeepTwoMovers(bool bKeep) { m_bKeepTwoMovers = bKeep; }

    /// Makes a board the problem of this register. A board other than the one in force empties the
    /// permanent entries and loads those of its file; with pbLoadLater that is only set to true,
    /// and the caller calls Load when it suits. Throws ChessException for a byte that is no figure.
    void SetPosition(const std::uint8_t* pBoard, bool* pbLoadLater = nullptr);

    /// A result for White to move (nMoves odd) with the packed best move. Keeps what is there,
    /// drops what the new result implies. bSave: writes the file too. Throws ChessException when
    /// the result contradicts what is there; a lack of memory only loses the entry.
    void Insert(std::uint16_t nMoves, const std::uint8_t* pBoard, bool bMate,
                const std::uint32_t* pMove, bool bSave);

    /// The same for Black to move (nMoves even), with his best defence.
    void InsertDefence(std::uint16_t nMoves, const std::uint8_t* pBoard, bool bDefence,
                       const std::uint32_t* pMove, bool bSave);

    std::uint8_t FindWhite(std::uint16_t nMoves, const std::uint8_t* pBoard);

    /// *pMove, if given, becomes the packed defence (0: none is known) when there is an answer.
    std::uint8_t FindDefence(std::uint16_t nMoves, const std::uint8_t* pBoard,
                             std::uint32_t* pMove = nullptr);

    /// The subproblem file: records of 76 bytes in the order of depth and key, each the key, then
    /// little-endian depth (2), mark 993 (2), packed move (4), result (1), zeroes (3). A file that
    /// is there moves to the same name + ".BAK".
    ///
    /// False in a register without files, for a file that can't be written, and when there are more
    /// than MAX_FILE_RECORDS entries, of which the file then holds the first ones.
    bool Save();

    /// Adds what the file holds. False for a file that isn't there, is cut within a record or
    /// contradicts what is known; what came before stays.
    bool Load();

    /// Empties the permanent entries; results of few moves are kept again.
    void Clear();

    const std::string& GetSubproblemsFile() const { return m_strSubproblemsFile; }
    const std::string& GetSolutionFile() const { return m_strSolutionFile; }

protected:
    /// To the register log, with the counts of the aggregate.
    void LogInfo(const char* pText, std::int64_t nParam1 = 0, std::int64_t nParam2 = 0) const;

    /// As many elements as memory allows are there: has some reclaimed.
    void MakeRoom();

    void SwapContents(TChessboardRegister& other);

    std::atomic<bool> m_bKeepTwoMovers{true}; ///< false: nothing of less than 4 plies is stored
    bool m_bNoFiles = false;
    std::atomic<std::uint32_t> m_nCount{0};          ///< permanent entries of odd depth
    std::atomic<std::uint32_t> m_nSecondaryCount{0}; ///< of derived classes
    TRegisterLock m_lock;                            ///< guards the permanent entries
    std::uint64_t m_nMaxMemMB;
    TAggregatedTemporaryChessboardRegister* m_pOwner = nullptr;

private:
    struct TSubproblemInfo
    {
        std::uint32_t m_nMove; ///< packed; 0: none is known
        bool m_bResult;
    };
    using TSubproblems = std::map<TPositionKey, TSubproblemInfo, TPositionKeyLess>;

    enum EParity : std::uint8_t
    {
        BLACK_TO_MOVE = 0,
        WHITE_TO_MOVE = 1
    };
    static EParity ParityOf(std::uint16_t nMoves) { return static_cast<EParity>(nMoves & 1); }

    /// The registers of White's and Black's questions differ in this: from which results follow
    /// answers for more plies (mates, defences that fail), and from which for fewer.
    static bool HoldsForMorePlies(std::uint16_t nMoves, bool bResult)
    {
        return ParityOf(nMoves) == WHITE_TO_MOVE ? bResult : !bResult;
    }

    /// The entry of least depth that answers a question asked with this side to move, or null.
    const TSubproblemInfo* FindInfo(EParity parity, std::uint16_t nMoves,
                                    const TPositionKey& key) const;
    void InsertResult(std::uint16_t nMoves, const std::uint8_t* pBoard, bool bResult,
                      const std::uint32_t* pMove, bool bSave);
    void AddChecked(std::uint16_t nMoves, const TPositionKey& key, TSubproblemInfo info);
    void RemoveSuperseded(std::uint16_t nMoves, const TPositionKey& key, bool bResult);
    bool ReadRecords(std::FILE* pFile);

    std::map<std::uint16_t, TSubproblems> m_mapSubproblems; ///< by depth
    TPositionKey m_position{};                              ///< of the problem; zero: none
    bool m_bRemoveSuperseded = true;
    TChessboardId m_id; ///< of m_position
    std::string m_strSubproblemsFile, m_strSolutionFile;
    std::atomic<std::uint64_t> m_nMemoryLimit{0}, m_nMemoryBudget{0};
    std::atomic<std::uint32_t> m_nMaxElements{0};
};

} // namespace corvina

#endif
