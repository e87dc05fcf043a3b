#include "registers/chessboardregister.h"

#include "chess/exception.h"
#include "platform/machine.h"
#include "registers/aggregatedregister.h"
#include "registers/answers.h"
#include "registers/registerlog.h"
#include "registers/registersettings.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <memory>

namespace corvina
{
namespace
{

constexpr unsigned DEFAULT_MEMORY_PERCENT = 20;
constexpr double BUDGET_SHARE = 0.73;         ///< of the limit, for entries
constexpr std::uint64_t BYTES_PER_ENTRY = 96; ///< planned, with its share of the table

const std::filesystem::path FOLDER = "SolvedProblemsDB";

/// A record of the file behind its key.
constexpr std::size_t INFO_BYTES = 12;
constexpr std::size_t RECORD_BYTES = sizeof(TPositionKey) + INFO_BYTES;
using TRecord = std::array<std::uint8_t, RECORD_BYTES>;
enum ERecordOffset
{
    OFFSET_MOVES = sizeof(TPositionKey),
    OFFSET_MARK = OFFSET_MOVES + 2,
    OFFSET_MOVE = OFFSET_MARK + 2,
    OFFSET_RESULT = OFFSET_MOVE + 4
};

void StoreBytes(std::uint8_t* pOut, std::uint32_t nValue, int nBytes)
{
    for (int i = 0; i < nBytes; ++i)
        pOut[i] = static_cast<std::uint8_t>(nValue >> 8 * i);
}

std::uint32_t LoadBytes(const std::uint8_t* pIn, int nBytes)
{
    std::uint32_t nValue = 0;
    for (int i = 0; i < nBytes; ++i)
        nValue |= std::uint32_t{pIn[i]} << 8 * i;
    return nValue;
}

struct TFileCloser
{
    void operator()(std::FILE* pFile) const { std::fclose(pFile); }
};
using TFile = std::unique_ptr<std::FILE, TFileCloser>;

const char* GetIncoherenceText(std::uint16_t nMoves)
{
    if (g_registerSettings.m_language != ELanguage::Polish)
        return "Incoherent information in TChessboardRegister::Insert()";
    return nMoves % 2 ? "Sprzeczna informacja w TChessboardRegister::Insert()"
                      : "Sprzeczna informacja w TChessboardRegister::InsertDefence()";
}

} // namespace

TChessboardRegister::TChessboardRegister()
    : m_nMaxMemMB((GetTotalPhysicalMemory() >> 20) * DEFAULT_MEMORY_PERCENT / 100)
{
    TChessboardRegister::UpdateLimits();
}

void TChessboardRegister::UpdateLimits()
{
    const std::uint64_t nUsersLimit = std::min(m_nMaxMemMB, std::uint64_t{1} << 43) << 20;
    const std::uint64_t nLimit = std::min(GetTotalPhysicalMemory(), nUsersLimit);
    const auto nBudget = static_cast<std::uint64_t>(static_cast<double>(nLimit) * BUDGET_SHARE);
    m_nMemoryLimit = nLimit;
    m_nMemoryBudget = nBudget;
    m_nMaxElements = static_cast<std::uint32_t>(std::min<std::uint64_t>(
        nBudget / BYTES_PER_ENTRY, std::numeric_limits<std::uint32_t>::max()));
}

void TChessboardRegister::SetMemoryLimitMB(std::uint64_t nMaxMemMB)
{
    m_nMaxMemMB = nMaxMemMB;
    UpdateLimits();
}

void TChessboardRegister::LogInfo(const char* pText, std::int64_t nParam1,
                                  std::int64_t nParam2) const
{
    const TChessboardRegister& counting = m_pOwner ? *m_pOwner : *this;
    LogRegisterInfo(pText, nParam1, nParam2, counting.m_nCount, counting.GetDoubtfulCount());
}

void TChessboardRegister::MakeRoom()
{
    TChessboardRegister& aggregate = m_pOwner ? *m_pOwner : *this;
    aggregate.EmptySomeDataWhenRegisterFull(false);
}

void TChessboardRegister::SwapContents(TChessboardRegister& other)
{
    std::swap(m_mapSubproblems, other.m_mapSubproblems);
    std::swap(m_position, other.m_position);
    std::swap(m_id, other.m_id);
    std::swap(m_strSubproblemsFile, other.m_strSubproblemsFile);
    std::swap(m_strSolutionFile, other.m_strSolutionFile);
    m_bKeepTwoMovers = other.m_bKeepTwoMovers.exchange(m_bKeepTwoMovers);
    m_nCount = other.m_nCount.exchange(m_nCount);
}

void TChessboardRegister::SetPosition(const std::uint8_t* pBoard, bool* pbLoadLater)
{
    const TRegisterLock::TWriteGuard guard(m_lock);
    if (AreKeysEqual(m_position.m_board, pBoard))
        return;
    m_id = TChessboardId(pBoard);
    m_position = TPositionKey::Of(pBoard);
    Clear();
    if (m_bNoFiles)
        return;
    const std::string strStem = m_id.GetIdFileName();
    m_strSubproblemsFile = (FOLDER / (strStem + ".cspdb")).string();
    m_strSolutionFile = (FOLDER / (strStem + ".cpdb")).string();
    if (pbLoadLater)
        *pbLoadLater = true;
    else
        Load();
}

void TChessboardRegister::Clear()
{
    const TRegisterLock::TWriteGuard guard(m_lock);
    m_mapSubproblems.clear();
    m_nCount = 0;
    m_nSecondaryCount = 0;
    m_bKeepTwoMovers = true;
}

auto TChessboardRegister::FindInfo(EParity parity, std::uint16_t nMoves,
                                   const TPositionKey& key) const -> const TSubproblemInfo*
{
    for (const auto& [nDepth, subproblems] : m_mapSubproblems) {
        if (ParityOf(nDepth) != parity)
            continue;
        const auto it = subproblems.find(key);
        if (it == subproblems.end())
            continue;
        const TSubproblemInfo& info = it->second;
        if (HoldsForMorePlies(nDepth, info.m_bResult) ? nDepth <= nMoves : nDepth >= nMoves)
            return &info;
    }
    return nullptr;
}

std::uint8_t TChessboardRegister::FindWhite(std::uint16_t nMoves, const std::uint8_t* pBoard)
{
    const TRegisterLock::TReadGuard guard(m_lock);
    const TSubproblemInfo* pInfo = FindInfo(WHITE_TO_MOVE, nMoves, TPositionKey::Of(pBoard));
    return pInfo ? std::uint8_t{pInfo->m_bResult} : REGISTER_UNKNOWN;
}

std::uint8_t TChessboardRegister::FindDefence(std::uint16_t nMoves, const std::uint8_t* pBoard,
                                              std::uint32_t* pMove)
{
    const TRegisterLock::TReadGuard guard(m_lock);
    const TSubproblemInfo* pInfo = FindInfo(BLACK_TO_MOVE, nMoves, TPositionKey::Of(pBoard));
    if (!pInfo)
        return REGISTER_UNKNOWN;
    if (pMove)
        *pMove = pInfo->m_nMove;
    return pInfo->m_bResult;
}

void TChessboardRegister::Insert(std::uint16_t nMoves, const std::uint8_t* pBoard, bool bMate,
                                 const std::uint32_t* pMove, bool bSave)
{
    InsertResult(nMoves, pBoard, bMate, pMove, bSave);
}

void TChessboardRegister::InsertDefence(std::uint16_t nMoves, const std::uint8_t* pBoard,
                                        bool bDefence, const std::uint32_t* pMove, bool bSave)
{
    InsertResult(nMoves, pBoard, bDefence, pMove, bSave);
}

void TChessboardRegister::InsertResult(std::uint16_t nMoves, const std::uint8_t* pBoard,
                                       bool bResult, const std::uint32_t* pMove, bool bSave)
{
    if (!m_bKeepTwoMovers && nMoves < MIN_PLIES_BEYOND_TWO_MOVES)
        return;
    const TChessboardRegister& counting = m_pOwner ? *m_pOwner : *this;
    if (counting.GetElementsCount() >= m_nMaxElements)
        MakeRoom();
    try {
        AddChecked(nMoves, TPositionKey::Of(pBoard), {pMove ? *pMove : 0, bResult});
    }
    catch (const ChessException&) {
        throw;
    }
    catch (const std::exception&) {
        LogInfo("Exception caught in method TChessboardRegister::Insert");
        MakeRoom();
        return;
    }
    if (bSave)
        Save();
}

void TChessboardRegister::AddChecked(std::uint16_t nMoves, const TPositionKey& key,
                                     TSubproblemInfo info)
{
    const TRegisterLock::TWriteGuard guard(m_lock);
    if (const TSubproblemInfo* pKnown = FindInfo(ParityOf(nMoves), nMoves, key)) {
        if (pKnown->m_bResult != info.m_bResult)
            throw ChessException(GetIncoherenceText(nMoves));
        return;
    }
    if (!m_mapSubproblems[nMoves].emplace(key, info).second)
        return;
    m_nCount += ParityOf(nMoves);
    if (m_bRemoveSuperseded)
        RemoveSuperseded(nMoves, key, info.m_bResult);
}

void TChessboardRegister::RemoveSuperseded(std::uint16_t nMoves, const TPositionKey& key,
                                           bool bResult)
{
    const bool bRemoveDeeper = HoldsForMorePlies(nMoves, bResult);
    for (auto& [nDepth, subproblems] : m_mapSubproblems) {
        if (ParityOf(nDepth) != ParityOf(nMoves) ||
            (bRemoveDeeper ? nDepth <= nMoves : nDepth >= nMoves))
            continue;
        const auto it = subproblems.find(key);
        if (it != subproblems.end() && it->second.m_bResult == bResult) {
            subproblems.erase(it);
            m_nCount -= ParityOf(nMoves);
        }
    }
}

bool TChessboardRegister::Save()
{
    if (m_bNoFiles || m_strSubproblemsFile.empty())
        return false;
    const TRegisterLock::TWriteGuard guard(m_lock);
    std::error_code error;
    std::filesystem::create_directories(FOLDER, error);
    std::filesystem::rename(m_strSubproblemsFile, m_strSubproblemsFile + ".BAK", error);
    TFile pFile(std::fopen(m_strSubproblemsFile.c_str(), "wb"));
    if (!pFile)
        return false;
    std::size_t nRecords = 0;
    for (const auto& [nDepth, subproblems] : m_mapSubproblems) {
        for (const auto& [key, info] : subproblems) {
            if (nRecords++ == MAX_FILE_RECORDS)
                return false;
            TRecord record{};
            std::copy(std::begin(key.m_board), std::end(key.m_board), record.begin());
            StoreBytes(&record[OFFSET_MOVES], nDepth, 2);
            StoreBytes(&record[OFFSET_MARK], FIRST_MOVE_MARK, 2);
            StoreBytes(&record[OFFSET_MOVE], info.m_nMove, 4);
            record[OFFSET_RESULT] = info.m_bResult;
            if (std::fwrite(record.data(), RECORD_BYTES, 1, pFile.get()) != 1)
                return false;
        }
    }
    return std::fclose(pFile.release()) == 0;
}

bool TChessboardRegister::Load()
{
    const TRegisterLock::TWriteGuard guard(m_lock);
    if (m_bNoFiles)
        return false;
    const TFile pFile(std::fopen(m_strSubproblemsFile.c_str(), "rb"));
    if (!pFile)
        return false;
    m_bRemoveSuperseded = false;
    const bool bWhole = ReadRecords(pFile.get());
    m_bRemoveSuperseded = true;
    return bWhole;
}

bool TChessboardRegister::ReadRecords(std::FILE* pFile)
{
    TRecord record;
    for (;;) {
        const std::size_t nBytes = std::fread(record.data(), 1, RECORD_BYTES, pFile);
        if (nBytes != RECORD_BYTES)
            return nBytes == 0 && !std::ferror(pFile);
        const auto nMoves = static_cast<std::uint16_t>(LoadBytes(&record[OFFSET_MOVES], 2));
        const std::uint32_t nMove = LoadBytes(&record[OFFSET_MOVE], 4);
        try {
            InsertResult(nMoves, record.data(), record[OFFSET_RESULT] != 0, &nMove, false);
        }
        catch (const ChessException&) {
            return false;
        }
    }
}

} // namespace corvina
