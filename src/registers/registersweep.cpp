// The part of the aggregate that reclaims memory.

#include "platform/machine.h"
#include "registers/aggregatedregister.h"
#include "registers/registerhost.h"

#include <algorithm>
#include <new>

namespace corvina
{
namespace
{

constexpr std::uint64_t MIN_MILLISECONDS_BETWEEN_SWEEPS = 64;

/// Numbers of entries removed that are enough by themselves.
constexpr std::uint32_t ENOUGH_REMOVED = 4096;
constexpr std::uint32_t ENOUGH_UNUSED_OUT_OF_MEMORY = 262144;
constexpr std::uint32_t ENOUGH_SWEPT_OUT_OF_MEMORY = 524288;

constexpr std::uint16_t TWO_MOVER_PLIES = 3;
constexpr std::uint16_t FIRST_SWEEP_DEPTH = 5, LAST_SWEEP_DEPTH = 255;

constexpr std::size_t TEST_ALLOCATION_BYTES = 1024;

// Of the process: sweeps run one at a time.
std::mutex g_csSweep;
std::atomic<bool> g_bSweepRunning{false};
std::atomic<std::uint16_t> g_nLastRemovedDepth{0}; ///< how deep the last sweep had to go

struct TRunningFlag
{
    TRunningFlag() { g_bSweepRunning = true; }
    ~TRunningFlag() { g_bSweepRunning = false; }
};

bool CanAllocate()
{
    try {
        FreeRegisterMemory(AllocateRegisterMemory(TEST_ALLOCATION_BYTES));
        return true;
    }
    catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace

void TAggregatedTemporaryChessboardRegister::ResetSweepDepth()
{
    g_nLastRemovedDepth = 0;
}

bool TAggregatedTemporaryChessboardRegister::EmptySomeDataWhenRegisterFull(bool bOutOfMemory)
{
    LogInfo("EmptySomeDataWhenRegisterFull started", bOutOfMemory);
    if (g_bSweepRunning)
        return false;
    const std::lock_guard sweep(g_csSweep);
    const TRunningFlag running;
    SweepIfDue(bOutOfMemory);
    return true;
}

void TAggregatedTemporaryChessboardRegister::SweepIfDue(bool bOutOfMemory)
{
    if (GetTickMilliseconds() <= m_nLastEmptiedTick + MIN_MILLISECONDS_BETWEEN_SWEEPS)
        return;
    const std::uint32_t nMax = GetMaxElements();
    const std::uint32_t nTotal = GetElementsCount();
    if (bOutOfMemory && nMax - std::min(nMax, nTotal) >= nMax >> 2)
        return; // with so much of the register free it isn't what uses up the memory
    if (TRegisterHost* pHost = m_pSolve)
        pHost->BeforeSweep();

    const std::uint32_t nTotalBefore = GetElementsCount();
    std::uint32_t nRemoved = RemoveUnusedDoubtful();
    bool bEnough = nRemoved > (bOutOfMemory ? ENOUGH_UNUSED_OUT_OF_MEMORY : ENOUGH_REMOVED);
    if (!bEnough && m_bKeepTwoMovers)
        bEnough = RemoveTwoMovers(nRemoved);
    if (!SweepByDepth(bOutOfMemory, bEnough, nRemoved, nTotalBefore) && !IsAbandoned())
        LogInfo("!!!! EmptySomeDataWhenRegisterFull failed.");
    LogInfo("EmptySomeDataWhenRegisterFull complete", bOutOfMemory);
    m_nLastEmptiedTick = GetTickMilliseconds();
}

/// Adds to the number removed. Where two-movers are too few to matter, no more of them are stored.
/// True when enough is removed.
bool TAggregatedTemporaryChessboardRegister::RemoveTwoMovers(std::uint32_t& nRemoved)
{
    nRemoved += RemoveNMovers(TWO_MOVER_PLIES);
    if (nRemoved < GetMaxElements() / 3) {
        const TRegisterLock::TReadGuard guard(m_lock);
        SetKeepTwoMovers(false);
        for (const auto& [nKey, pSetting] : m_mapDoubtful)
            pSetting->SetKeepTwoMovers(false);
    }
    return nRemoved > ENOUGH_REMOVED;
}

/// Removes depth after depth until enough is removed. False when that can't be reached.
bool TAggregatedTemporaryChessboardRegister::SweepByDepth(bool bOutOfMemory, bool bEnough,
                                                          std::uint32_t nRemoved,
                                                          std::uint32_t nTotalBefore)
{
    const std::int64_t nMax = GetMaxElements();
    const std::int64_t nWanted = bOutOfMemory
                                     ? std::max<std::int64_t>(nMax / 12, ENOUGH_SWEPT_OUT_OF_MEMORY)
                                     : std::max<std::int64_t>(nMax / 25, ENOUGH_REMOVED);
    const std::uint16_t nLast = g_nLastRemovedDepth;
    std::uint16_t nDepth =
        nLast > FIRST_SWEEP_DEPTH + 1 ? static_cast<std::uint16_t>(nLast - 2) : FIRST_SWEEP_DEPTH;
    for (;; nDepth = static_cast<std::uint16_t>(nDepth + 2)) {
        if (bEnough && GetElementsCount() < nTotalBefore && CanAllocate())
            return true;
        if (IsAbandoned())
            return false;
        nRemoved += RemoveNMovers(nDepth);
        nRemoved += RemoveNMovers(static_cast<std::uint16_t>(nDepth - 1));
        g_nLastRemovedDepth = nDepth;
        if (nRemoved > nWanted || nMax - std::int64_t{GetElementsCount()} >= nMax / 5)
            bEnough = true;
        if (nDepth >= LAST_SWEEP_DEPTH)
            return false;
    }
}

} // namespace corvina
