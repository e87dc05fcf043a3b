#ifndef CORVINA_SEARCH_THREADS_STOPBLOCK_H
#define CORVINA_SEARCH_THREADS_STOPBLOCK_H

#include "chess/move.h"
#include "platform/spinlock.h"
#include "search/threads/threadset.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>

namespace corvina
{

struct TNodeMoves;

/// A command by hand to one thread (enginecommand.h).
struct TEngineCommand
{
    std::uint16_t m_nCommandDepth = 0; ///< nodes with fewer half-moves left are given up
    std::uint8_t m_nCommand = 0;       ///< ORDER_...
    std::uint8_t m_nSkipCommand =
        1; ///< moves to go on, the one at work included; 0: to m_commandMove
    TMove m_commandMove{};
    TNodeMoves* m_pReport = nullptr;  ///< nothing but a report is wanted, to be put there
    std::uint16_t m_nReportDepth = 0; ///< of the node that is asked about, or the next one above
};

/// What a node is to do after a look at the stop block.
enum class EStopCheck : std::uint8_t
{
    GoOn,
    GiveUp, ///< end without an answer
    Serve   ///< a command waits for this node
};

/// How the threads of a run are told to pause, to serve a command and to stop.
struct TStopBlock
{
    static constexpr std::uint8_t RUN = 0;
    static constexpr std::uint8_t PAUSE = 1;
    static constexpr std::uint8_t COMMAND = 2;
    static constexpr std::uint8_t STOP = 3;
    static constexpr std::uint16_t ALL_THREADS = 65535;

    mutable TSpinLock m_bStopLock;
    std::atomic<std::uint8_t> m_nStopState{RUN};           ///< readable without the lock as a hint
    std::atomic<std::uint16_t> m_nStopThread{ALL_THREADS}; ///< thread that the state concerns
    std::uint8_t m_nSavedStopState = RUN;                  ///< what to go back to after a command
    std::uint16_t m_nSavedStopThread = ALL_THREADS;
    TEngineCommand m_command;      ///< in state COMMAND; guarded by m_bStopLock
    TThreadSet m_commandedThreads; ///< that take commands; guarded likewise
    bool m_bNotesCommands = false; ///< each command is noted; guarded likewise
    /// A command has changed something in a run that notes them, or has made a node pass over
    /// moves.
    std::atomic<bool> m_bInfluencedByHand{false};

    /// Sets the state, unless a stop of all threads is in force, which nothing but a new run lifts.
    /// While a command waits, only a stop that concerns its thread replaces it; any other state
    /// comes into force when the command has been served. Any thread may call it.
    void SetStopState(std::uint8_t nState, std::uint16_t nThread);

    /// A directed stop: tells one thread of the run off, whatever the state is. Any number of them
    /// may be in force at once. A command to the thread is dropped.
    void StopThread(std::uint16_t nThread);

    /// Lifts a stop of that thread alone, with which it has complied.
    void ResumeThread(std::uint16_t nThread);

    /// Gives a number to a thread beside the nRootThreads root threads; nothing: all are in use.
    std::optional<std::uint16_t> TakeThreadId(int nRootThreads);

    /// The thread has ended: what concerned it is lifted, and the number may be given again.
    void GiveBackThreadId(std::uint16_t nThread);

    /// At the start of a run.
    void ClearStopState();

    /// From now on the inner block, of a run that is a part of this one, has the state that all
    /// threads have here; null: no longer. To be called again when the inner block was cleared.
    void PassOnTo(TStopBlock* pInner);

    /// Does a stop concern the thread? The fast path is one plain read. A search thread that asks
    /// for itself waits here while it is paused.
    bool IsStopped(std::uint16_t nThread) const { return !IsAtRest() && IsStopFor(nThread); }

    /// Does a pause concern the thread?
    bool IsPaused(std::uint16_t nThread) const { return !IsAtRest() && IsPauseFor(nThread); }

    bool IsStoppedForAll() const { return IsStopped(ALL_THREADS); }

    /// Nothing but to run, by one plain read: there is no need to look closer.
    bool IsAtRest() const { return m_bAtRest.load(std::memory_order_relaxed); }

    using TClock = std::chrono::steady_clock;

    /// The time on a clock that stands still while all threads are paused.
    TClock::time_point Now() const;

    /// What a node of the thread with so many half-moves left is to do. A pause is waited for.
    EStopCheck LookAtStop(std::uint16_t nThread, std::uint16_t nDepth) const;

    /// What such a node has found is no result: it may have been given up.
    bool IsGivenUp(std::uint16_t nThread, std::uint16_t nDepth) const
    {
        return !IsAtRest() && IsGivenUpAfterAll(nThread, nDepth);
    }

    // Commands

    /// From now on the thread takes commands, and no longer. The second one drops a command that
    /// waits for it. bNote: the run notes that it gets them.
    void TakeCommands(std::uint16_t nThread, bool bNote);
    void TakeNoMoreCommands(std::uint16_t nThread);

    enum class EPost : std::uint8_t
    {
        Posted,
        NotYet,  ///< another command waits
        NoThread ///< the thread takes none, or is to stop
    };

    /// Leaves a command for the thread, which then goes back to the state of now.
    EPost PostCommand(std::uint16_t nThread, const TEngineCommand& command);

    /// The command that asks for this report still waits.
    bool IsReportWaiting(const TNodeMoves* pReport) const;

    /// What the thread is told to do; LookAtStop has said Serve.
    TEngineCommand GetCommand() const;

    /// The thread has served its command, with this report if one was wanted: the state that was
    /// saved comes back. bEffect: it has changed something. False when the thread is to stop
    /// instead.
    bool FinishCommand(std::uint16_t nThread, const TNodeMoves* pReport = nullptr,
                       bool bEffect = true);

private:
    void SetState(std::uint8_t nState, std::uint16_t nThread);
    bool IsToStop(std::uint16_t nThread) const;
    bool IsFor(std::uint16_t nThread) const;
    bool IsGivenUpAfterAll(std::uint16_t nThread, std::uint16_t nDepth) const;
    EStopCheck Check(std::uint16_t nThread, std::uint16_t nDepth) const;
    void Restore();
    bool IsStopFor(std::uint16_t nThread) const;
    bool IsPauseFor(std::uint16_t nThread) const;
    void NotePause(bool bPaused);
    void NoteInfluence();

    // Pauses of all threads: those that are over, in ticks, and the start of the one in force.
    // Written with m_bStopLock.
    std::atomic<TClock::rep> m_nPausedTicks{0};
    std::optional<TClock::time_point> m_tPaused;

    /// Neither a state nor a directed stop is in force; written with the lock.
    std::atomic<bool> m_bAtRest{true};
    TStopBlock* m_pInner = nullptr; ///< of a run that is a part of this one; guarded by m_bStopLock
    TThreadSet m_stoppedThreads;    ///< under a directed stop; guarded by m_bStopLock, as the next
    TThreadSet m_threadIds;         ///< in use, without those of the root threads
};

} // namespace corvina

#endif
