#include "registers/aggregatedregister.h"

#include "chess/fen.h"
#include "platform/machine.h"
#include "registers/answers.h"
#include "registers/registerhost.h"
#include "registers/registersettings.h"

#include <new>

namespace corvina
{
namespace
{

constexpr std::uint8_t PASS_WITHOUT_HEURISTICS = 2;

/// A small bucket's room: longer ones are sorted vectors, whose insertions move half of them.
constexpr std::uint32_t CROWDED_ENTRIES_PER_BUCKET = 4;

constexpr std::uint32_t BUCKETS_SHORT = 16384, BUCKETS_MEDIUM = 524288, BUCKETS_LONG = 4194304;
constexpr std::uint16_t PLIES_MEDIUM = 15, PLIES_LONG = 23; ///< from here on
constexpr std::uint64_t MAX_MB_MEDIUM = 8192;

} // namespace

TAggregatedTemporaryChessboardRegister::TAggregatedTemporaryChessboardRegister()
    : m_nLastEmptiedTick(GetTickMilliseconds() - 100)
{
}

TAggregatedTemporaryChessboardRegister::~TAggregatedTemporaryChessboardRegister()
{
    Clear(CLEAR_EVERYTHING, true);
}

void TAggregatedTemporaryChessboardRegister::UpdateLimits()
{
    const TRegisterLock::TReadGuard guard(m_lock);
    TChessboardRegister::UpdateLimits();
    for (const auto& [nKey, pSetting] : m_mapDoubtful)
        pSetting->SetMemoryLimitMB(m_nMaxMemMB);
}

bool TAggregatedTemporaryChessboardRegister::IsAbandoned() const
{
    const TRegisterHost* pHost = m_pSolve;
    return pHost && pHost->IsAbandoned();
}

void TAggregatedTemporaryChessboardRegister::OnInsertionFailed()
{
    LogInfo("Exception caught in method TChessboardRegister::Insert");
    EmptySomeDataWhenRegisterFull(false);
}

// Questions

std::optional<TRegisterDepths> TAggregatedTemporaryChessboardRegister::FindInSetting(
    std::uint64_t nKey, const std::uint8_t* pBoard, std::uint32_t nHash)
{
    if (!m_nDoubtfulElements.load(std::memory_order_relaxed))
        return std::nullopt;
    const TRegisterLock::TReadGuard guard(m_lock);
    const auto it = m_mapDoubtful.find(nKey);
    return it != m_mapDoubtful.end() ? it->second->FindDepths(pBoard, nHash) : std::nullopt;
}

std::uint8_t TAggregatedTemporaryChessboardRegister::FindPositionAdditional(
    std::uint16_t nMoves, std::uint16_t nMovesWithAdditional, const std::uint8_t* pBoard,
    std::uint32_t nHeuristics, std::uint32_t nHeurParams)
{
    const std::uint32_t nHash = GetHash(pBoard);
    if (const auto depths = FindDepths(pBoard, nHash)) {
        if (depths->m_nMovesNoMate && nMoves <= depths->m_nMovesNoMate)
            return REGISTER_NO_MATE;
        if (depths->m_nMovesMate && nMoves >= depths->m_nMovesMate)
            return REGISTER_MATE;
        if (depths->m_nMovesMate && nMovesWithAdditional >= depths->m_nMovesMate)
            return REGISTER_MATE_ADDITIONAL;
    }
    const auto depths = FindInSetting(SettingKey(nHeuristics, nHeurParams), pBoard, nHash);
    if (depths && depths->m_nMovesNoMate && nMoves <= depths->m_nMovesNoMate)
        return REGISTER_NO_MATE_HERE;
    return REGISTER_UNKNOWN;
}

std::uint8_t TAggregatedTemporaryChessboardRegister::FindDoubtful(std::uint16_t nMoves,
                                                                  std::uint16_t nMinDoubtful,
                                                                  const std::uint8_t* pBoard,
                                                                  std::uint32_t nHeuristics,
                                                                  std::uint32_t nHeurParams)
{
    const auto depths =
        FindInSetting(SettingKey(nHeuristics, nHeurParams), pBoard, GetHash(pBoard));
    if (!depths)
        return REGISTER_NO_MATE_HERE;
    return depths->m_nMovesMate && nMinDoubtful <= depths->m_nMovesMate &&
           (!depths->m_nMovesNoMate || nMoves > depths->m_nMovesNoMate);
}

int TAggregatedTemporaryChessboardRegister::FindShortestMate(std::uint16_t nMoves,
                                                             const std::uint8_t* pBoard,
                                                             std::uint32_t nHeuristics,
                                                             std::uint32_t nHeurParams)
{
    int nShortest = 0;
    for (int nDepth = nMoves; nDepth > 0; nDepth -= 2) {
        const std::uint8_t nAnswer =
            FindPosition(static_cast<std::uint16_t>(nDepth), pBoard, nHeuristics, nHeurParams);
        if (nAnswer != REGISTER_MATE)
            return nShortest ? nShortest : static_cast<std::int8_t>(nAnswer);
        nShortest = nDepth;
    }
    return nShortest;
}

// Insertions

auto TAggregatedTemporaryChessboardRegister::InsertCertain(std::uint16_t nMoves,
                                                           const std::uint8_t* pBoard, bool bMate,
                                                           bool bRepair) -> TInsertion
{
    if (!m_bKeepTwoMovers && nMoves < MIN_PLIES_BEYOND_TWO_MOVES)
        return {};
    if (IsFull())
        EmptySomeDataWhenRegisterFull(false);
    try {
        return StoreCertain(nMoves, pBoard, bMate, bRepair);
    }
    catch (const std::bad_alloc&) {
        OnInsertionFailed();
        return {};
    }
}

bool TAggregatedTemporaryChessboardRegister::Insert(std::uint16_t nMoves,
                                                    const TChessboard& position, bool bMate)
{
    const TRegisterHost* pHost = m_pSolve;
    const bool bRepair =
        position.m_nPass < PASS_WITHOUT_HEURISTICS && !(pHost && pHost->IsExactMode());
    const TInsertion insertion = InsertCertain(nMoves, position.m_board, bMate, bRepair);
    if (insertion.m_bIncoherent && g_registerSettings.m_bCheckTempRegCoherency)
        ShowIncoherence(nMoves, position, bMate, insertion.m_depths);
    return insertion.m_bNew;
}

bool TAggregatedTemporaryChessboardRegister::InsertFromFile(std::uint16_t nMoves,
                                                            const std::uint8_t* pBoard, bool bMate)
{
    return InsertCertain(nMoves, pBoard, bMate, true).m_bNew;
}

void TAggregatedTemporaryChessboardRegister::ShowIncoherence(std::uint16_t nMoves,
                                                             const TChessboard& position,
                                                             bool bMate, TRegisterDepths depths)
{
    const std::string strText = WriteFen(position, false) + "\n\nnMoves=" + std::to_string(nMoves) +
                                ", bThereIsMate=" + (bMate ? "1" : "0") +
                                "\nMovesMate=" + std::to_string(depths.m_nMovesMate) +
                                ", MovesNoMate=" + std::to_string(depths.m_nMovesNoMate);
    if (TRegisterHost* pHost = m_pSolve)
        pHost->ShowError("Error", strText);
    else
        std::fprintf(stderr, "Error: %s\n", strText.c_str());
}

void TAggregatedTemporaryChessboardRegister::InsertDoubtful(std::uint16_t nMoves,
                                                            const std::uint8_t* pBoard,
                                                            std::uint32_t nHeuristics,
                                                            std::uint32_t nHeurParams,
                                                            bool bNotDoubtful)
{
    if (IsFull()) {
        if (!GetMaxElements())
            return;
        EmptySomeDataWhenRegisterFull(false);
    }
    if (!m_bKeepTwoMovers && nMoves == 3 && bNotDoubtful)
        return;
    const std::uint64_t nKey = SettingKey(nHeuristics, nHeurParams);
    const std::uint32_t nHash = GetHash(pBoard);
    try {
        if (!StoreInSetting(nKey, nMoves, pBoard, nHash, bNotDoubtful))
            CreateSetting(nKey, nMoves, pBoard, nHash, bNotDoubtful);
    }
    catch (const std::bad_alloc&) {
        if (GetMaxElements())
            OnInsertionFailed();
    }
}

/// False when there is no register of this setting.
bool TAggregatedTemporaryChessboardRegister::StoreInSetting(std::uint64_t nKey,
                                                            std::uint16_t nMoves,
                                                            const std::uint8_t* pBoard,
                                                            std::uint32_t nHash, bool bNotDoubtful)
{
    const TRegisterLock::TReadGuard guard(m_lock);
    const auto it = m_mapDoubtful.find(nKey);
    if (it == m_mapDoubtful.end())
        return false;
    it->second->StoreDoubtful(nMoves, pBoard, nHash, bNotDoubtful);
    return true;
}

/// Makes the register of a setting with its first entry. Readers wait only for its publication.
void TAggregatedTemporaryChessboardRegister::CreateSetting(std::uint64_t nKey, std::uint16_t nMoves,
                                                           const std::uint8_t* pBoard,
                                                           std::uint32_t nHash, bool bNotDoubtful)
{
    const std::lock_guard creation(m_csDoubtful);
    if (!m_nBuckets || StoreInSetting(nKey, nMoves, pBoard, nHash, bNotDoubtful))
        return;
    auto pSetting = std::make_unique<TSettingRegister>();
    pSetting->SetMemoryLimitMB(m_nMaxMemMB);
    pSetting->SetKeepTwoMovers(m_bKeepTwoMovers);
    if (!pSetting->Resize(m_nBuckets, false))
        throw std::bad_alloc();
    pSetting->StoreDoubtful(nMoves, pBoard, nHash, bNotDoubtful);
    pSetting->SetOwner(this);
    const TRegisterLock::TWriteGuard guard(m_lock);
    const std::uint32_t nElements = pSetting->GetElementsCount();
    m_mapDoubtful.emplace(nKey, std::move(pSetting));
    m_nDoubtfulElements += nElements;
}

// Settings that have served

std::uint32_t TAggregatedTemporaryChessboardRegister::EmptySetting(std::uint64_t nKey)
{
    const auto it = m_mapDoubtful.find(nKey);
    if (it == m_mapDoubtful.end())
        return 0;
    const std::uint32_t nElements = it->second->GetElementsCount();
    it->second->ClearAll(true, &m_nDoubtfulElements, true, RELEASE_NOTHING);
    return nElements;
}

std::uint32_t TAggregatedTemporaryChessboardRegister::RemoveDoubtful(std::uint32_t nHeuristics,
                                                                     std::uint32_t nHeurParams)
{
    LogInfo("RemoveDoubtful start.", nHeuristics, nHeurParams);
    const std::uint64_t nKey = SettingKey(nHeuristics, nHeurParams);
    std::uint32_t nRemoved = 0;
    {
        const TRegisterLock::TWriteGuard guard(m_lock);
        try {
            std::uint32_t& nKeep = m_mapKeepDoubtful[nKey];
            if (nKeep > 0) {
                --nKeep;
                return 0;
            }
        }
        catch (const std::bad_alloc&) {
            // The setting isn't noted as one that later sweeps may empty.
        }
        nRemoved = EmptySetting(nKey);
    }
    LogInfo("RemoveDoubtful complete.", nHeuristics, nRemoved);
    return nRemoved;
}

void TAggregatedTemporaryChessboardRegister::KeepDoubtful(std::uint32_t nHeuristics,
                                                          std::uint32_t nHeurParams)
{
    const TRegisterLock::TWriteGuard guard(m_lock);
    try {
        ++m_mapKeepDoubtful[SettingKey(nHeuristics, nHeurParams)];
    }
    catch (const std::bad_alloc&) {
        // The data goes early, which only costs time.
    }
}

std::uint32_t TAggregatedTemporaryChessboardRegister::RemoveUnusedDoubtful()
{
    const TRegisterLock::TWriteGuard guard(m_lock);
    std::uint32_t nRemoved = 0;
    for (const auto& [nKey, nKeep] : m_mapKeepDoubtful) {
        if (nKeep == 0)
            nRemoved += EmptySetting(nKey);
    }
    return nRemoved;
}

// The register as a whole

std::size_t TAggregatedTemporaryChessboardRegister::GetThresholdForClear(int nMode)
{
    try {
        TFlatCapacities capacities;
        if (nMode >= CLEAR_EVERYTHING)
            AddFlatCapacities(capacities);
        if (nMode <= CLEAR_EVERYTHING) {
            for (const auto& [nKey, pSetting] : m_mapDoubtful)
                pSetting->AddFlatCapacities(capacities);
        }
        return GetFreeThreshold(capacities);
    }
    catch (const std::bad_alloc&) {
        return RELEASE_NOTHING;
    }
}

void TAggregatedTemporaryChessboardRegister::Clear(int nMode, bool bNoPump)
{
    const TRegisterLock::TWriteGuard guard(m_lock);
    const std::size_t nThreshold = GetThresholdForClear(nMode);
    if (nMode <= CLEAR_EVERYTHING) {
        for (const auto& [nKey, pSetting] : m_mapDoubtful)
            pSetting->ClearAll(false, &m_nDoubtfulElements, bNoPump, nThreshold);
        m_mapDoubtful.clear();
    }
    if (nMode >= CLEAR_EVERYTHING)
        ClearAll(nMode > CLEAR_EVERYTHING, nullptr, bNoPump, nThreshold);
    if (nMode == CLEAR_EVERYTHING)
        m_mapKeepDoubtful.clear();
}

void TAggregatedTemporaryChessboardRegister::Swap(TAggregatedTemporaryChessboardRegister& other)
{
    if (this == &other)
        return;
    TAggregatedTemporaryChessboardRegister& first = this < &other ? *this : other;
    TAggregatedTemporaryChessboardRegister& second = this < &other ? other : *this;
    {
        const TRegisterLock::TWriteGuard guard1(first.m_lock);
        const TRegisterLock::TWriteGuard guard2(second.m_lock);
        SwapContents(other);
        SwapMaps(other);
        m_mapDoubtful.swap(other.m_mapDoubtful);
        m_mapKeepDoubtful.swap(other.m_mapKeepDoubtful);
        m_nDoubtfulElements = other.m_nDoubtfulElements.exchange(m_nDoubtfulElements);
        m_nBuckets = other.m_nBuckets.exchange(m_nBuckets);
        for (TAggregatedTemporaryChessboardRegister* pRegister : {this, &other}) {
            for (const auto& [nKey, pSetting] : pRegister->m_mapDoubtful)
                pSetting->SetOwner(pRegister);
        }
    }
    UpdateLimits();
    other.UpdateLimits();
}

void TAggregatedTemporaryChessboardRegister::SetBuckets(std::uint32_t nBuckets, bool bKeep)
{
    const TRegisterLock::TWriteGuard guard(m_lock);
    m_nBuckets = nBuckets;
    Resize(nBuckets, bKeep);
    for (const auto& [nKey, pSetting] : m_mapDoubtful)
        pSetting->Resize(nBuckets, bKeep);
}

std::uint32_t
TAggregatedTemporaryChessboardRegister::GetBucketsForSolve(std::uint16_t nInitialMoves) const
{
    if (nInitialMoves < PLIES_MEDIUM)
        return BUCKETS_SHORT;
    return nInitialMoves < PLIES_LONG || m_nMaxMemMB <= MAX_MB_MEDIUM ? BUCKETS_MEDIUM
                                                                      : BUCKETS_LONG;
}

void TAggregatedTemporaryChessboardRegister::GrowIfCrowded()
{
    const auto isCrowded = [this](std::uint32_t nBuckets) {
        return nBuckets != 0 && nBuckets < BUCKETS_LONG &&
               GetMapCount() / CROWDED_ENTRIES_PER_BUCKET >= nBuckets;
    };
    if (!isCrowded(m_nBuckets))
        return;
    const TRegisterLock::TWriteGuard guard(m_lock);
    // Another thread may have been here while this one waited.
    const std::uint32_t nBuckets = m_nBuckets;
    if (isCrowded(nBuckets))
        SetBuckets(nBuckets < BUCKETS_MEDIUM ? BUCKETS_MEDIUM : BUCKETS_LONG, true);
}

std::uint32_t TAggregatedTemporaryChessboardRegister::RemoveNMovers(std::uint16_t nMoves)
{
    LogInfo("TAggregatedTemporaryChessboardRegister::RemoveNMovers start.", nMoves);
    std::uint32_t nRemoved = TTemporaryChessboardRegister::RemoveNMovers(nMoves);
    {
        const TRegisterLock::TReadGuard guard(m_lock);
        for (const auto& [nKey, pSetting] : m_mapDoubtful) {
            if (IsAbandoned())
                break;
            nRemoved += pSetting->RemoveNMovers(nMoves);
        }
    }
    LogInfo("TAggregatedTemporaryChessboardRegister::RemoveNMovers complete.", nMoves, nRemoved);
    return nRemoved;
}

} // namespace corvina
