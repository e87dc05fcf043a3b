#ifndef CORVINA_SEARCH_THREADS_SCHEDULER_H
#define CORVINA_SEARCH_THREADS_SCHEDULER_H

#include "search/result.h"
#include "search/threads/schedulerbook.h"
#include "search/threads/stopblock.h"

#include <atomic>
#include <bitset>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace corvina
{

/// The scheduler juggles the moves of a node behind the levels of multithreading: each move that it
/// tries has a thread of its own, of which one runs and the others are held, so that a good move at
/// the second place has its turn while the first one may take days. A move is held where its thread
/// comes to its next White node, with all that is below it.

extern std::atomic<int> g_nSchedulerThreads; ///< of all schedulers of the process

/// Levels for a task, of those that are wanted: the last ones would come too near to the leaves.
int SchedulerLevelsFor(const TChessboard& root, int nLevels);

/// Are the moves of the node to be juggled? nGoodMoves, at the head of the list, promise most.
/// With m_bCustomScheduler two of them are enough behind the levels, too.
bool MayJuggle(const TChessboard& board, int nMoves, int nGoodMoves);

/// For the thread of the position: waits as long as it is held, or a thread that waits for it is
/// held or paused. False when the thread is to give up.
bool WaitWhileHeld(const TChessboard& board);

/// Answers of SchedulerWait beside the results of a search.
constexpr int SCHEDULER_PENDING = 254;  ///< the quantum has ended
constexpr int SCHEDULER_GIVEN_UP = 255; ///< the move has no answer and won't get one

/// The moves of one node. Used by the node's own thread; at the end of its life the object abandons
/// what still runs and waits for it.
class TScheduler
{
public:
    /// The search behind a move of the node, called on the move's own copy of it.
    using TSearch = std::function<TSearchResult(TChessboard& child)>;

    TScheduler(TChessboard& board, int nGoodMoves, TSearch search);
    ~TScheduler();
    TScheduler(const TScheduler&) = delete;
    TScheduler& operator=(const TScheduler&) = delete;

private:
    friend bool SchedulerStart(TScheduler& scheduler, const TChessboard& child, int nIndex);
    friend int SchedulerWait(TScheduler& scheduler, int nIndex);
    friend int SchedulerChooseNext(TScheduler& scheduler, bool bMayStartNew);
    friend std::uint16_t SchedulerGetRepetition(TScheduler& scheduler, int nIndex);
    friend int SchedulerFirstFree(TScheduler& scheduler);
    friend bool SchedulerMustQuit(TScheduler& scheduler);
    friend bool SchedulerLeftOut(TScheduler& scheduler, int nIndex);

    struct TMoveThread;

    bool Start(const TChessboard& child, int nIndex);
    void Run(TMoveThread& move, int nIndex);
    void Activate(int nIndex);
    bool WaitUntilDone(TMoveThread& move, std::chrono::nanoseconds time);
    int WaitForQuantum(int nIndex);
    int ResultOf(int nIndex);
    void TakeBack(TMoveThread& move);
    bool MustQuit();
    bool LookAtCommand();
    void ServeCommand();
    void ServeOnMove(const TEngineCommand& command);
    int PriorityOf(int nIndex) const;

    TChessboard& m_board;
    TSolveRequest& m_request;
    TThreadContext& m_context; ///< of the node's thread
    const TSearch m_search;
    bool m_bMustQuit = false;
    bool m_bTurnOver = false;             ///< by hand, of the move that runs
    int m_nActive = TSchedulerBook::NONE; ///< the move that isn't held

    std::mutex m_csScheduler; ///< guards all below, but what a running thread has for itself
    std::condition_variable m_ended;
    TSchedulerBook m_book;
    std::array<std::unique_ptr<TMoveThread>, MAX_SHARED_MOVES> m_apMoves;
    std::bitset<MAX_SHARED_MOVES> m_leftOut; ///< by hand
    int m_nAlive = 0;                        ///< threads that haven't delivered their result
};

/// Gives the move of that index, made on the child, a thread, which runs at once; the others are
/// held. False: there is no thread to be had, or no memory.
bool SchedulerStart(TScheduler& scheduler, const TChessboard& child, int nIndex);

/// Lets a move that has been started run for its quantum. Its result, or SCHEDULER_....
int SchedulerWait(TScheduler& scheduler, int nIndex);

/// TSchedulerBook::ChooseNext.
int SchedulerChooseNext(TScheduler& scheduler, bool bMayStartNew);

/// The repetition depth behind the move, which has a result.
std::uint16_t SchedulerGetRepetition(TScheduler& scheduler, int nIndex);

/// The lowest move that is started and not finished; TSchedulerBook::NONE.
int SchedulerFirstFree(TScheduler& scheduler);

/// The node's thread is to leave: a stop, the scheduler above has abandoned it, or a command
/// concerns a node above.
bool SchedulerMustQuit(TScheduler& scheduler);

/// The move was left out by hand: it is given up, or not to be started.
bool SchedulerLeftOut(TScheduler& scheduler, int nIndex);

} // namespace corvina

#endif
