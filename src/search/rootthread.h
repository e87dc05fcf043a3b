#ifndef CORVINA_SEARCH_ROOTTHREAD_H
#define CORVINA_SEARCH_ROOTTHREAD_H

#include "search/firstmoves.h"
#include "search/guides/scout.h"
#include "search/solverequest.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <exception>
#include <mutex>
#include <vector>

namespace corvina
{

/// What the root threads of a run share beside the request.
struct TRootRun
{
    TRootRun(const TChessboard& root, std::vector<TMove> vecMoves, int nThreads);

    const TChessboard& m_root;
    const int m_nThreads;
    TFirstMoveTable m_table;
    TPassBook m_passes;
    TScouting m_scouting;
    std::atomic<bool> m_bFoundEnough{false}; ///< the mode asks for no more solutions
    std::atomic<std::uint64_t> m_nScoutPositions{0};
    std::atomic<bool> m_bFoundByScout{false};

    std::mutex m_mutex; ///< guards all below
    std::array<std::uint64_t, 32> m_anCuts{}, m_anWhiteCuts{};
    std::exception_ptr m_error; ///< the first one that has ended a thread

    /// Adds what a thread has counted.
    void AddCounts(const TThreadContext& context);

    /// A thread can't go on: all others are told off.
    void Fail(std::exception_ptr error);
};

/// The procedure of a root thread: takes first moves from the table and decides them until none are
/// left. Tries again to make what the thread needs while memory is short. Throws nothing.
void RunRootThread(TRootRun& run, std::uint16_t nThreadId);

} // namespace corvina

#endif
