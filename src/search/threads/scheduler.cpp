#include "search/threads/scheduler.h"

#include "chess/geometry.h"
#include "heuristics/attacksets.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/kingsurroundings.h"
#include "platform/machine.h"
#include "platform/thread.h"
#include "platform/threadpool.h"
#include "search/enginecommand.h"
#include "search/guides/scout.h"
#include "search/movelog.h"
#include "search/rootsetup.h"
#include "search/solverequest.h"

#include <algorithm>
#include <exception>
#include <new>
#include <system_error>
#include <utility>

namespace corvina
{

std::atomic<int> g_nSchedulerThreads{0};

namespace
{

using TClock = std::chrono::steady_clock;

/// Between two looks of a thread at whether it is held, or at the stop block.
constexpr auto POLL = std::chrono::milliseconds(10);
/// The same of a thread that is woken when that ends.
constexpr auto LONG_POLL = std::chrono::milliseconds(50);

/// Schedulers one below the other.
constexpr int MAX_NESTING = 12;

/// Threads of all schedulers: one stands for a MiB of stack, and they get a fifth of the memory.
int ThreadLimit()
{
    static const int nLimit = [] {
        constexpr std::uint64_t MIB = std::uint64_t{1} << 20, SHARE = 5, MAX = 1'000'000;
        const std::uint64_t nTotal = GetTotalPhysicalMemory();
        return static_cast<int>(nTotal ? std::min(nTotal / MIB / SHARE, MAX) : MAX);
    }();
    return nLimit;
}

int LevelOf(const TChessboard& board)
{
    const int nMultithreading = board.m_pRequest->m_nMultithreadingLevels;
    return (board.m_nInitialMoves - 2 * nMultithreading - board.m_nMoves + 2) / 2;
}

/// The main search begins within a pass of the forced mate search, too; there it has to be quick.
bool IsMainPass(const TChessboard& board)
{
    return !(ContextOf(board).m_pRootBoard->m_nHeuristics & SH_FINDFORCEDMATE);
}

int CountSchedulersAbove(const TThreadContext& context)
{
    int nSchedulers = 0;
    for (const TThreadContext* p = &context; p; p = p->m_pOwner)
        nSchedulers += p->m_bSchedulerThread;
    return nSchedulers;
}

/// Held itself, or by way of a thread that waits for it.
bool IsHeld(const TThreadContext& context, const TSolveRequest& request)
{
    if (context.m_nSuspended == TSuspension::HELD)
        return true;
    for (const TThreadContext* p = context.m_pOwner; p; p = p->m_pOwner) {
        if (p->m_nSuspended == TSuspension::HELD || request.IsPaused(p->m_nThreadId))
            return true;
    }
    return false;
}

/// Behind the levels it takes a choice of good moves and figures to play them with.
bool MayJuggleBeyond(const TChessboard& board, int nGoodMoves)
{
    return board.m_pRequest->m_bCustomScheduler && nGoodMoves >= 2 && WhiteFigures(board) >= 2;
}

/// The move just made checks, and the king can't simply take the figure.
bool IsForcing(const TChessboard& child)
{
    if (child.m_blackChecker == NO_CHECK || child.m_blackChecker == DOUBLE_CHECK)
        return child.m_blackChecker == DOUBLE_CHECK;
    const TSquare checker = static_cast<TSquare>(child.m_blackChecker);
    return !(KingZone(child.BlackKing()) & Bit(checker)) ||
           IsAttackedBy<EColour::White>(child, checker);
}

} // namespace

int SchedulerLevelsFor(const TChessboard& root, int nLevels)
{
    const bool bFew = root.m_nPositionFlags & TChessboard::POSITION_FEWFIGURES;
    const TSharingSettings& settings = root.m_pRequest->m_sharing;
    const int nMinDepth =
        bFew ? settings.m_nMinSchedulerDepth : settings.m_nMinSchedulerDepthOfMany;
    return std::clamp((root.m_nMoves - nMinDepth) / 2, 0, nLevels);
}

bool MayJuggle(const TChessboard& board, int nMoves, int nGoodMoves)
{
    const TSolveRequest& request = *board.m_pRequest;
    const TThreadContext& context = ContextOf(board);
    const TSharingSettings& settings = request.m_sharing;
    const bool bFew = board.m_nPositionFlags & TChessboard::POSITION_FEWFIGURES;
    const int nMinDepth =
        bFew ? settings.m_nMinSchedulerDepth : settings.m_nMinSchedulerDepthOfMany;
    const int nLevel = LevelOf(board);
    return nLevel >= 1 && request.m_nSchedulerLevels != 0 &&
           (nLevel <= request.m_nSchedulerLevels || MayJuggleBeyond(board, nGoodMoves)) &&
           board.m_nMoves >= nMinDepth && nMoves >= 1 && nMoves <= MAX_SHARED_MOVES &&
           IsPlainCourse(context) &&
           (!(board.m_nHeuristics & SH_SINGLEQUEENMATE) ||
            board.m_nPass == PASS_WITHOUT_HEURISTICS || request.m_bSafeMode) &&
           IsMainPass(board) && request.m_pSchedulerThreads && IsLineWhole(board) &&
           CountSchedulersAbove(context) < MAX_NESTING;
}

bool WaitWhileHeld(const TChessboard& board)
{
    TSolveRequest& request = *board.m_pRequest;
    TThreadContext& context = ContextOf(board);
    while (context.m_nSuspended < TSuspension::ABANDON && !request.IsStopped(context.m_nThreadId)) {
        if (!IsHeld(context, request))
            return true;
        if (context.m_nSuspended == TSuspension::HELD)
            context.m_nSuspended.WaitFor(LONG_POLL);
        else
            std::this_thread::sleep_for(POLL);
    }
    return false;
}

/// One move and its thread.
struct TScheduler::TMoveThread
{
    std::unique_ptr<TThreadContext> m_pContext;
    TChessboard* m_pChild = nullptr; ///< the position behind the move, on a line of its own
    std::uint16_t m_nThreadId = 0;

    // Guarded by m_csScheduler.
    bool m_bDone = false;
    TSearchResult m_nResult = RESULT_NO_MATE;
    std::uint16_t m_nRepetition = 0;
    bool m_bGivenUp = false;
};

TScheduler::TScheduler(TChessboard& board, int nGoodMoves, TSearch search)
    : m_board(board), m_request(*board.m_pRequest), m_context(ContextOf(board)),
      m_search(std::move(search)), m_book(LevelOf(board), m_request.m_nSchedulerLevels)
{
    m_book.SetGoodMoves(nGoodMoves);
    ++m_request.m_sharingCounts.m_nSchedulers;
}

TScheduler::~TScheduler()
{
    std::unique_lock lock(m_csScheduler);
    for (const auto& pMove : m_apMoves) {
        if (!pMove || pMove->m_bDone)
            continue;
        m_request.StopThread(pMove->m_nThreadId);
        pMove->m_pContext->m_nSuspended.Abandon();
    }
    m_ended.wait(lock, [this] { return m_nAlive == 0; });
    for (const auto& pMove : m_apMoves) {
        if (pMove)
            TakeBack(*pMove);
    }
}

/// What the thread has counted, and its number.
void TScheduler::TakeBack(TMoveThread& move)
{
    if (!move.m_pContext)
        return;
    m_context.TakeCounts(*move.m_pContext);
    m_context.m_nDoubtReason = move.m_pContext->m_nDoubtReason;
    m_request.GiveBackThreadId(move.m_nThreadId);
    move.m_pContext.reset();
}

/// The first move of a list goes on with the node's priority, the others stand back.
int TScheduler::PriorityOf(int nIndex) const
{
    constexpr int STEPS = 2;
    return nIndex == 0 ? m_context.m_nPriority : LowerPriority(m_request.m_nThreadPriority, STEPS);
}

bool TScheduler::Start(const TChessboard& child, int nIndex)
{
    if (g_nSchedulerThreads >= ThreadLimit() || MustQuit())
        return false;
    const auto nThreadId = m_request.TakeThreadId(m_request.m_nEffectiveThreads);
    if (!nThreadId)
        return false;
    const std::lock_guard guard(m_csScheduler);
    auto& pMove = m_apMoves[static_cast<std::size_t>(nIndex)];
    try {
        pMove = std::make_unique<TMoveThread>();
        pMove->m_nThreadId = *nThreadId;
        pMove->m_pContext = std::make_unique<TThreadContext>(m_context, child, &pMove->m_pChild);
        pMove->m_pContext->m_nThreadId = *nThreadId;
        pMove->m_pContext->m_bSchedulerThread = true;
        pMove->m_pContext->m_nWatchDepth = 0;
        pMove->m_pContext->m_nPriority = PriorityOf(nIndex);
        Activate(nIndex);
        m_request.m_pSchedulerThreads->Run(ThreadStack(m_board.m_nInitialMoves), PriorityOf(nIndex),
                                           [this, &move = *pMove, nIndex] { Run(move, nIndex); });
    }
    catch (const std::exception&) {
        // No memory or no thread: the node has others, or goes on alone.
        ++m_request.m_sharingCounts.m_nFailures;
        pMove.reset();
        m_request.GiveBackThreadId(*nThreadId);
        return false;
    }
    // The thread delivers its result under the same lock.
    m_book.Start(nIndex, IsForcing(child));
    ++m_nAlive;
    ++g_nSchedulerThreads;
    ++m_request.m_sharingCounts.m_nJuggledMoves;
    return true;
}

/// The procedure of a move's thread.
void TScheduler::Run(TMoveThread& move, int nIndex)
{
    TThreadContext& context = *move.m_pContext;
    TSearchResult nResult = RESULT_NO_MATE;
    bool bGivenUp = true;
    try {
        nResult = m_search(*move.m_pChild);
        if (context.m_bLogging)
            LogResult(*move.m_pChild, nResult);
        bGivenUp = nResult != RESULT_MATE && (m_request.IsStopped(move.m_nThreadId) ||
                                              context.m_nSuspended == TSuspension::ABANDON);
    }
    catch (const std::exception&) {
        // The move has no answer.
    }
    if (m_request.OnPositionAnalysed)
        m_request.OnPositionAnalysed(nullptr, context);
    const std::lock_guard guard(m_csScheduler);
    move.m_nResult = nResult;
    move.m_nRepetition = context.m_anRepeatDepth[m_board.m_nMoves];
    move.m_bGivenUp = bGivenUp;
    move.m_bDone = true;
    m_book.Finish(nIndex);
    --m_nAlive;
    --g_nSchedulerThreads;
    m_ended.notify_all();
}

/// With the lock: holds the move that runs and lets this one go on.
void TScheduler::Activate(int nIndex)
{
    if (m_nActive == nIndex)
        return;
    if (m_nActive != TSchedulerBook::NONE) {
        const auto& pActive = m_apMoves[static_cast<std::size_t>(m_nActive)];
        if (pActive && !pActive->m_bDone) {
            pActive->m_pContext->m_nSuspended.Hold();
            ++m_request.m_sharingCounts.m_nSwitches;
        }
    }
    m_nActive = nIndex;
    m_apMoves[static_cast<std::size_t>(nIndex)]->m_pContext->m_nSuspended.Resume();
}

bool TScheduler::MustQuit()
{
    if (!m_bMustQuit)
        m_bMustQuit = m_context.m_nSuspended == TSuspension::ABANDON ||
                      m_request.IsStopped(m_context.m_nThreadId) || LookAtCommand();
    return m_bMustQuit;
}

/// True for a command to a node above. One to this node or a lower one is served. A pause is waited
/// for.
bool TScheduler::LookAtCommand()
{
    if (m_request.IsAtRest())
        return false;
    const EStopCheck check = m_request.LookAtStop(m_context.m_nThreadId, m_board.m_nMoves);
    if (check == EStopCheck::Serve)
        ServeCommand();
    return check == EStopCheck::GiveUp;
}

/// The move at work has to wait for others, or moves are left out, it among them or not.
void TScheduler::ServeCommand()
{
    const TEngineCommand command = m_request.GetCommand();
    if (command.m_pReport) {
        ReportMoves(m_board, command);
        return;
    }
    const std::lock_guard guard(m_csScheduler);
    const bool bAtWork = m_nActive != TSchedulerBook::NONE && m_book.IsUnfinished(m_nActive);
    if (bAtWork)
        ServeOnMove(command);
    m_request.FinishCommand(m_context.m_nThreadId, nullptr, bAtWork);
}

/// With the lock. What a node that goes through its list would pass over is left out.
void TScheduler::ServeOnMove(const TEngineCommand& command)
{
    constexpr int MUCH = 1'000, VERY_MUCH = 1'000'000;
    if (command.m_nCommand != ORDER_KEEP) {
        m_book.Charge(m_nActive, command.m_nCommand == ORDER_SWAP ? MUCH : VERY_MUCH);
        m_bTurnOver = true;
    }
    const TMove* pMoves = m_context.m_apMoves[m_board.m_nMoves];
    const int nMoves = m_context.m_anMoveCount[m_board.m_nMoves];
    TMoveList moves;
    std::copy_n(pMoves, nMoves, moves.data());
    const TServedList served = ServeOnWhiteList(command, moves.data(), nMoves, m_nActive, true);
    for (int i = m_nActive; i < nMoves; ++i) {
        const TMove* pEnd = moves.data() + served.m_nNext;
        if (std::none_of(pEnd - served.m_nLeftOut, pEnd,
                         [&](const TMove& move) { return IsSameMove(move, pMoves[i]); }))
            continue;
        const auto nPlace = static_cast<std::size_t>(i);
        m_leftOut.set(nPlace);
        if (m_book.IsUnfinished(i))
            m_request.StopThread(m_apMoves[nPlace]->m_nThreadId);
    }
}

/// True when the move has come to its end within the time.
bool TScheduler::WaitUntilDone(TMoveThread& move, std::chrono::nanoseconds time)
{
    std::unique_lock lock(m_csScheduler);
    return m_ended.wait_for(lock, time, [&] { return move.m_bDone; });
}

/// Time during which the node itself is held isn't the move's.
int TScheduler::WaitForQuantum(int nIndex)
{
    TMoveThread& move = *m_apMoves[static_cast<std::size_t>(nIndex)];
    TSchedulerBook::TQuantum quantum{};
    {
        const std::lock_guard guard(m_csScheduler);
        if (!move.m_bDone) {
            Activate(nIndex);
            quantum = m_book.QuantumOf(nIndex);
        }
    }
    const auto total = std::chrono::duration_cast<std::chrono::nanoseconds>(
        quantum.m_dSeconds * m_request.m_sharing.m_second);
    std::chrono::nanoseconds active{};
    while (!WaitUntilDone(move, std::chrono::nanoseconds::zero())) {
        if (MustQuit())
            return SCHEDULER_GIVEN_UP;
        if (active >= total || std::exchange(m_bTurnOver, false)) {
            const std::lock_guard guard(m_csScheduler);
            m_book.Charge(nIndex, quantum.m_nCredit);
            return SCHEDULER_PENDING;
        }
        const TClock::time_point tStart = TClock::now();
        const bool bHeld = IsHeld(m_context, m_request);
        WaitUntilDone(move, std::min<std::chrono::nanoseconds>(POLL, total - active));
        if (m_context.m_pScout)
            m_context.m_pScout->Work();
        if (!bHeld)
            active += TClock::now() - tStart;
    }
    return ResultOf(nIndex);
}

int TScheduler::ResultOf(int nIndex)
{
    TMoveThread& move = *m_apMoves[static_cast<std::size_t>(nIndex)];
    const std::lock_guard guard(m_csScheduler);
    m_book.Collect(nIndex);
    TakeBack(move);
    return move.m_bGivenUp ? SCHEDULER_GIVEN_UP : move.m_nResult;
}

bool SchedulerStart(TScheduler& scheduler, const TChessboard& child, int nIndex)
{
    return scheduler.Start(child, nIndex);
}

int SchedulerWait(TScheduler& scheduler, int nIndex)
{
    return scheduler.WaitForQuantum(nIndex);
}

int SchedulerChooseNext(TScheduler& scheduler, bool bMayStartNew)
{
    const std::lock_guard guard(scheduler.m_csScheduler);
    return scheduler.m_book.ChooseNext(bMayStartNew);
}

std::uint16_t SchedulerGetRepetition(TScheduler& scheduler, int nIndex)
{
    const std::lock_guard guard(scheduler.m_csScheduler);
    return scheduler.m_apMoves[static_cast<std::size_t>(nIndex)]->m_nRepetition;
}

int SchedulerFirstFree(TScheduler& scheduler)
{
    const std::lock_guard guard(scheduler.m_csScheduler);
    return scheduler.m_book.FirstFree();
}

bool SchedulerMustQuit(TScheduler& scheduler)
{
    return scheduler.MustQuit();
}

bool SchedulerLeftOut(TScheduler& scheduler, int nIndex)
{
    const std::lock_guard guard(scheduler.m_csScheduler);
    return scheduler.m_leftOut[static_cast<std::size_t>(nIndex)];
}

} // namespace corvina
