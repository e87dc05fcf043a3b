#include "search/threads/levelthread.h"

#include "platform/thread.h"
#include "search/enginecommand.h"
#include "search/guides/scout.h"
#include "search/solverequest.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <new>
#include <system_error>
#include <vector>

namespace corvina
{

std::uint8_t TakeNextMove(TLevelMoves& shared)
{
    const std::lock_guard guard(shared.m_mutex);
    return shared.m_nNext < shared.m_nCount ? shared.m_nNext++ : shared.m_nCount;
}

void TLevelOutcome::Add(const TLevelOutcome& other)
{
    if (m_nResult != RESULT_MATE && other.m_nResult == RESULT_MATE) {
        m_nResult = RESULT_MATE;
        m_mate = other.m_mate;
    }
    m_nDoubtful += other.m_nDoubtful;
    m_nRepetition += other.m_nRepetition;
    m_nRepeatDepth = std::max(m_nRepeatDepth, other.m_nRepeatDepth);
    if (other.m_nDoubtful)
        m_nDoubtReason = other.m_nDoubtReason;
    m_bLeftOutByHand |= other.m_bLeftOutByHand;
    m_bGivenUp |= other.m_bGivenUp;
}

namespace
{

/// Between two looks of the waiting thread at the stop block.
constexpr auto POLL = std::chrono::milliseconds(5);

/// One thread of a group.
struct TLevelThread
{
    // States
    static constexpr std::uint8_t NOT_STARTED = 255;
    static constexpr std::uint8_t CANCELLED = 254; ///< before its start
    static constexpr std::uint8_t RUNNING = 1;
    static constexpr std::uint8_t FINISHED = 0;

    std::unique_ptr<TThreadContext> m_pContext;
    TChessboard* m_pBoard = nullptr; ///< its copy of the node, on a line of its own
    TLevelOutcome m_outcome;         ///< valid with FINISHED
    std::atomic<std::uint8_t> m_nState{NOT_STARTED};
    std::optional<std::uint16_t> m_nThreadId;
    std::unique_ptr<TThread> m_pThread;

    void SetState(std::uint8_t nState)
    {
        m_nState = nState;
        m_nState.notify_all();
    }
    bool IsFinished() const { return m_nState == FINISHED; }
};

/// The threads at one node. The object tells them off and joins them.
class TGroup
{
public:
    TGroup(TChessboard& board, const TMove* pMoves, int nCount, const TLevelSearch& search)
        : m_board(board), m_request(*board.m_pRequest), m_context(ContextOf(board)),
          m_search(search), m_vecThreads(static_cast<std::size_t>(GroupSize(board, nCount)))
    {
        std::copy_n(pMoves, nCount, m_shared.m_moves.begin());
        m_shared.m_nCount = static_cast<std::uint8_t>(nCount);
    }

    ~TGroup()
    {
        // Something may have been thrown while the group was at work.
        if (m_bStarted)
            StopAll();
        for (TLevelThread& thread : m_vecThreads) {
            thread.m_pThread.reset();
            if (thread.m_nThreadId)
                m_request.GiveBackThreadId(*thread.m_nThreadId);
            if (thread.m_pContext)
                m_context.TakeCounts(*thread.m_pContext);
        }
    }
    TGroup(const TGroup&) = delete;
    TGroup& operator=(const TGroup&) = delete;

    /// False: none of the threads has begun, nor will.
    bool Start()
    {
        const bool bMade = Make();
        for (TLevelThread& thread : m_vecThreads)
            thread.SetState(bMade ? TLevelThread::RUNNING : TLevelThread::CANCELLED);
        if (!bMade) {
            ++m_request.m_sharingCounts.m_nFailures;
            return false;
        }
        m_bStarted = true;
        ++m_request.m_sharingCounts.m_nGroups;
        m_request.m_sharingCounts.m_nGroupThreads += m_vecThreads.size();
        return true;
    }

    TLevelOutcome Wait()
    {
        while (!IsOver() && !MustStop()) {
            WaitForEnd(POLL);
            if (m_context.m_pScout)
                m_context.m_pScout->Work();
        }
        StopAll();
        TLevelOutcome outcome;
        for (TLevelThread& thread : m_vecThreads)
            outcome.Add(thread.m_outcome);
        return outcome;
    }

private:
    bool Make()
    {
        try {
            for (TLevelThread& thread : m_vecThreads)
                MakeThread(thread);
        }
        catch (const std::bad_alloc&) {
            return false;
        }
        catch (const std::system_error&) {
            return false;
        }
        return std::all_of(m_vecThreads.begin(), m_vecThreads.end(),
                           [](const TLevelThread& thread) { return thread.m_pThread != nullptr; });
    }

    void MakeThread(TLevelThread& thread)
    {
        thread.m_nThreadId = m_request.TakeThreadId(m_request.m_nEffectiveThreads);
        if (!thread.m_nThreadId)
            return;
        thread.m_pContext = std::make_unique<TThreadContext>(m_context, m_board, &thread.m_pBoard);
        thread.m_pContext->m_nThreadId = *thread.m_nThreadId;
        thread.m_pThread = std::make_unique<TThread>(
            ThreadStack(m_board.m_nInitialMoves), [this, &thread] { Run(thread); },
            m_request.m_nThreadPriority);
    }

    /// The procedure of a thread.
    void Run(TLevelThread& thread)
    {
        thread.m_nState.wait(TLevelThread::NOT_STARTED);
        if (thread.m_nState == TLevelThread::CANCELLED)
            return;
        const TThreadCounted running(g_nRunningThreads);
        try {
            thread.m_outcome = m_search(*thread.m_pBoard, m_shared);
        }
        catch (const std::exception&) {
            thread.m_outcome = {};
            thread.m_outcome.m_bGivenUp = true;
        }
        if (m_request.OnPositionAnalysed)
            m_request.OnPositionAnalysed(nullptr, *thread.m_pContext);
        const std::lock_guard guard(m_mutex);
        thread.SetState(TLevelThread::FINISHED);
        if (m_request.m_bBruteForce)
            MarkLast();
        m_ended.notify_all();
    }

    /// With the mutex.
    void MarkLast()
    {
        TLevelThread* pLast = nullptr;
        for (TLevelThread& thread : m_vecThreads) {
            if (thread.IsFinished())
                continue;
            if (pLast)
                return;
            pLast = &thread;
        }
        if (pLast)
            pLast->m_pContext->m_bLastOfGroup = true;
    }

    /// All have ended, or one that settles it has.
    bool IsOver()
    {
        const std::lock_guard guard(m_mutex);
        std::size_t nFinished = 0;
        for (const TLevelThread& thread : m_vecThreads) {
            if (!thread.IsFinished())
                continue;
            ++nFinished;
            if (thread.m_outcome.m_nResult == RESULT_MATE || thread.m_outcome.m_bGivenUp)
                return true;
        }
        return nFinished == m_vecThreads.size();
    }

    /// The waiting thread is to stop, or to give up for a command to a node above. A command to the
    /// node itself, which works on many moves at once, changes nothing.
    bool MustStop()
    {
        if (m_request.IsAtRest())
            return false;
        const EStopCheck check = m_request.LookAtStop(m_context.m_nThreadId, m_board.m_nMoves);
        if (check == EStopCheck::Serve) {
            const TEngineCommand command = m_request.GetCommand();
            if (command.m_pReport)
                ReportMoves(m_board, command);
            else
                m_request.FinishCommand(m_context.m_nThreadId, nullptr, false);
        }
        return check == EStopCheck::GiveUp;
    }

    void WaitForEnd(std::chrono::steady_clock::duration time)
    {
        std::unique_lock lock(m_mutex);
        const std::size_t nBefore = CountFinished();
        m_ended.wait_for(lock, time, [&] {
            const std::size_t nFinished = CountFinished();
            return nFinished != nBefore || nFinished == m_vecThreads.size();
        });
    }

    std::size_t CountFinished() const
    {
        return static_cast<std::size_t>(
            std::count_if(m_vecThreads.begin(), m_vecThreads.end(),
                          [](const TLevelThread& thread) { return thread.IsFinished(); }));
    }

    /// Tells off each thread that is still at work, and sees all of them end. One with a group of
    /// its own passes it on.
    void StopAll()
    {
        std::unique_lock lock(m_mutex);
        for (TLevelThread& thread : m_vecThreads) {
            if (!thread.IsFinished())
                m_request.StopThread(*thread.m_nThreadId);
        }
        m_ended.wait(lock, [this] { return CountFinished() == m_vecThreads.size(); });
    }

    TChessboard& m_board;
    TSolveRequest& m_request;
    TThreadContext& m_context; ///< of the thread that waits
    const TLevelSearch& m_search;
    TLevelMoves m_shared;
    std::mutex m_mutex; ///< held when a thread comes to its end
    std::condition_variable m_ended;
    std::vector<TLevelThread> m_vecThreads;
    bool m_bStarted = false;
};

/// A thread that waits for a group isn't at work.
class TThreadAway
{
public:
    TThreadAway() { --g_nRunningThreads; }
    ~TThreadAway() { ++g_nRunningThreads; }
    TThreadAway(const TThreadAway&) = delete;
    TThreadAway& operator=(const TThreadAway&) = delete;
};

} // namespace

std::optional<TLevelOutcome> NextMultithreadingLevel(TChessboard& board, const TMove* pMoves,
                                                     int nCount, const TLevelSearch& search)
{
    try {
        TGroup group(board, pMoves, nCount, search);
        if (!group.Start())
            return std::nullopt;
        const TThreadAway away;
        return group.Wait();
    }
    catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

} // namespace corvina
