#ifndef CORVINA_SEARCH_THREADS_LEVELS_H
#define CORVINA_SEARCH_THREADS_LEVELS_H

#include "search/threadcontext.h"

#include <atomic>
#include <cstddef>

namespace corvina
{

/// Levels of multithreading: which nodes of White share their moves among a group of threads. With
/// N threads and L levels about N^L threads are at work: N at the root, N for each of them at
/// White's second move, and so on.

/// Threads of all runs of the process.
extern std::atomic<int> g_nRunningThreads;    ///< at work; not those that wait for a group
extern std::atomic<int> g_nActiveRootThreads; ///< of these, those at the root
extern std::atomic<int> g_nExtraThreads;      ///< groups beyond the levels
extern std::atomic<int> g_nReservations;      ///< of such groups, for a moment

/// Counts a thread among one of these for the life of the object.
class TThreadCounted
{
public:
    explicit TThreadCounted(std::atomic<int>& nThreads) : m_nThreads(nThreads) { ++m_nThreads; }
    ~TThreadCounted() { --m_nThreads; }
    TThreadCounted(const TThreadCounted&) = delete;
    TThreadCounted& operator=(const TThreadCounted&) = delete;

private:
    std::atomic<int>& m_nThreads;
};

/// The most threads at the root.
constexpr int MAX_ROOT_THREADS = 64;

/// The most moves of a node that are shared.
constexpr int MAX_SHARED_MOVES = 248;

/// Bytes of stack for a search thread of a task of so many half-moves.
std::size_t ThreadStack(int nInitialMoves);

/// TThreadContext::m_nWatchDepth of a root thread: no node needs to look closer above it.
std::uint16_t WatchDepth(const TChessboard& root);

/// Full moves played before the position.
inline int FullMovesPlayed(const TChessboard& board)
{
    return (board.m_nInitialMoves - board.m_nMoves) / 2;
}

/// Nothing but the plain course of the search is open on the thread: no short mate search, quick
/// refutation, sort or special solver.
bool IsPlainCourse(const TThreadContext& context);

/// Leave for a node to make a group of the moves in its list. What it counts is given back when the
/// object goes, that is when the group has ended.
class TSpawnLeave
{
public:
    TSpawnLeave(const TChessboard& board, int nMoves);
    ~TSpawnLeave();
    TSpawnLeave(const TSpawnLeave&) = delete;
    TSpawnLeave& operator=(const TSpawnLeave&) = delete;

    explicit operator bool() const { return m_eKind != EKind::None; }

private:
    enum class EKind : std::uint8_t
    {
        None,
        Level,
        Respawn, ///< in brute force, of the last thread of a group
        Extra    ///< in brute force, when there are processors to spare
    };

    EKind FindKind(const TChessboard& board, int nMoves);

    TThreadContext& m_context;
    const EKind m_eKind;
};

/// Threads for a list of so many moves.
int GroupSize(const TChessboard& board, int nMoves);

} // namespace corvina

#endif
