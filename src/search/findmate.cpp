#include "search/findmate.h"

#include "platform/thread.h"
#include "search/firstmoves.h"
#include "search/hooks.h"
#include "search/nodes.h"
#include "search/ordering.h"
#include "search/plainsearch.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <thread>

namespace corvina
{
namespace
{

/// The passes of a run, as TChessboard::m_nPass has them.
constexpr std::uint8_t PASS_WITH_HEURISTICS = 1;
constexpr std::uint8_t PASS_WITHOUT_HEURISTICS = 2;

constexpr int MAX_ROOT_THREADS = 64;
constexpr std::size_t MIN_THREAD_STACK = std::size_t{1} << 20;

/// A thread's stack per half-move of the task. A node holds its move list there.
constexpr std::size_t STACK_PER_PLY = 8192;

/// What the root threads of a run share beside the request.
struct TRun
{
    TRun(const TChessboard& root, std::vector<TMove> vecMoves)
        : m_root(root), m_table(std::move(vecMoves))
    {
    }

    const TChessboard& m_root;
    TFirstMoveTable m_table;
    std::atomic<bool> m_bFoundEnough{false}; ///< the mode asks for no more solutions
    std::atomic<std::uint64_t> m_nPositions{0};
    std::mutex m_mutex;
    std::condition_variable m_ended;
    int m_nEnded = 0; ///< threads; guarded by m_mutex
};

/// A thread that takes first moves from the table and decides them.
class TRootThread
{
public:
    TRootThread(TRun& run, std::uint16_t nThreadId)
        : m_run(run), m_request(*run.m_root.m_pRequest), m_board(run.m_root),
          m_context(run.m_root.m_nInitialMoves)
    {
        m_context.m_nThreadId = nThreadId;
        m_context.m_pRootBoard = &m_board;
        m_board.m_pThread = &m_context;
    }

    void Run()
    {
        while (!m_run.m_bFoundEnough && !m_request.IsStopped(m_context.m_nThreadId)) {
            const auto pick = PickMove();
            if (!pick)
                break;
            Decide(*pick);
        }
        m_run.m_nPositions += m_context.m_nPositions;
        ++m_request.m_nRunningThreads;
    }

private:
    /// The next move, after crossing into further passes as far as the round asks for it.
    std::optional<std::size_t> PickMove()
    {
        bool bMayShare = true;
        while (const auto pick = m_run.m_table.Pick(m_nRound, bMayShare)) {
            if (!pick->m_bNextRound)
                return pick->m_nIndex;
            if (EnterNextPass() || !pick->m_bShared)
                return pick->m_nIndex;
            // In the last pass a second thread at one move is no help.
            m_run.m_table.GiveBack(pick->m_nIndex);
            bMayShare = false;
        }
        return std::nullopt;
    }

    /// True when the heuristics have been relaxed; otherwise the last pass begins, or goes on.
    bool EnterNextPass()
    {
        ++m_nRound;
        if (!m_request.m_bSolutionFound && TryRelaxSpecialHeuristics(m_board) != 0) {
            m_board.m_nPass = PASS_WITH_HEURISTICS;
            ++m_request.m_nPassCount;
            return true;
        }
        m_board.m_nPass = PASS_WITHOUT_HEURISTICS;
        m_request.m_bPassWithoutHeuristics = true;
        return false;
    }

    void Decide(std::size_t nIndex)
    {
        TMove move = m_run.m_table.Move(nIndex);
        TSearchResult nResult = Analyse(move);
        if (nResult != RESULT_MATE && IsGivenUp())
            nResult = TFirstMoveTable::NOT_ANALYSED;
        else if (nResult < 0 && m_board.m_nPass == PASS_WITHOUT_HEURISTICS)
            nResult = RESULT_NO_MATE;
        if (!m_run.m_table.Record(nIndex, nResult))
            return;
        AddSolution(m_request, move);
        if (m_request.m_bStopRelaxingAfterSolution)
            m_request.m_bSolutionFound = true;
        if ((m_request.m_nSearchMode & SEARCH_FIRST) || HasEnoughSolutions(m_request)) {
            m_run.m_bFoundEnough = true;
            m_request.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS);
        }
    }

    bool IsGivenUp() { return m_request.IsStopped(m_context.m_nThreadId); }

    TSearchResult Analyse(TMove move)
    {
        TChessboard& child = m_context.MakeChild(m_board);
        if (!child.MakeWhiteMove(&move))
            return RESULT_NO_MATE;
        ++m_context.m_nPositions;
        return m_request.m_bPlain ? PlainSearchBlack(child) : SearchBlack<NODE_MAIN>(child);
    }

    TRun& m_run;
    TSolveRequest& m_request;
    TChessboard m_board; ///< the thread's own root
    TThreadContext m_context;
    std::uint8_t m_nRound = 0;
};

/// Makes the thread's objects, trying again while memory is short, and runs it.
void RunRootThread(TRun& run, std::uint16_t nThreadId)
{
    std::unique_ptr<TRootThread> pThread;
    while (!pThread) {
        try {
            pThread = std::make_unique<TRootThread>(run, nThreadId);
        }
        catch (const std::bad_alloc&) {
            if (run.m_root.m_pRequest->IsStopped(nThreadId))
                break;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    if (pThread)
        pThread->Run();
    const std::lock_guard guard(run.m_mutex);
    ++run.m_nEnded;
    run.m_ended.notify_all();
}

/// Waits for all threads and reports each second that goes by.
void WaitForThreads(TRun& run, int nThreads)
{
    TSolveRequest& request = *run.m_root.m_pRequest;
    std::unique_lock lock(run.m_mutex);
    for (int nSeconds = 1; run.m_nEnded < nThreads; ++nSeconds) {
        const auto next = request.m_tStart + std::chrono::seconds(nSeconds);
        const auto done = [&] { return run.m_nEnded == nThreads; };
        if (!run.m_ended.wait_until(lock, next, done) && request.OnSecond)
            request.OnSecond(nSeconds);
    }
}

void RunThreads(TRun& run, int nThreads)
{
    if (nThreads < 2 && !run.m_root.m_pRequest->OnSecond) {
        RunRootThread(run, 0);
        return;
    }
    const std::size_t nStack =
        std::max(MIN_THREAD_STACK, STACK_PER_PLY * run.m_root.m_nInitialMoves);
    std::vector<std::unique_ptr<TThread>> vecThreads;
    for (int i = 0; i < nThreads; ++i)
        vecThreads.push_back(std::make_unique<TThread>(
            nStack, [&run, i] { RunRootThread(run, static_cast<std::uint16_t>(i)); }));
    WaitForThreads(run, nThreads);
}

/// White's legal first moves, the promising ones first.
std::vector<TMove> FirstMoves(TChessboard& root)
{
    TThreadContext context(root.m_nInitialMoves);
    context.m_pRootBoard = &root;
    root.m_pThread = &context;
    TMoveList moves;
    const int nMoves = root.GenerateWhiteMoves(moves.data());
    const int nLegal = SortWhiteMovesCheap(root, moves.data(), nMoves);
    root.m_pThread = nullptr;
    return std::vector<TMove>(moves.data(), moves.data() + nLegal);
}

/// The table of the register, for tasks that use it. What earlier runs have learnt stays.
void PrepareRegister(TSolveRequest& request)
{
    if (!request.m_bUseRegister || request.m_bPlain)
        return;
    auto& reg = request.m_TemporaryRegister;
    TAggregatedTemporaryChessboardRegister::ResetSweepDepth();
    reg.SetBuckets(reg.GetBucketsForSolve(request.m_pChessboard->m_nInitialMoves), true);
}

/// Solutions in the order of their squares, whichever thread found them first.
void SortSolutions(std::vector<TMove>& vecMoves)
{
    std::sort(vecMoves.begin(), vecMoves.end(), [](const TMove& a, const TMove& b) {
        return std::make_tuple(a.m_from, a.m_to, b.PromotionKind()) <
               std::make_tuple(b.m_from, b.m_to, a.PromotionKind());
    });
}

} // namespace

std::int8_t FindMate(TChessboard& root, std::vector<TMove>& vecResult)
{
    TSolveRequest& request = *root.m_pRequest;
    request.m_vecSolutions.clear();
    PrepareRegister(request);
    // The heuristics are empty: there is nothing to relax.
    root.m_nPass = root.m_nHeuristics == 0 ? PASS_WITHOUT_HEURISTICS : PASS_WITH_HEURISTICS;
    request.m_bPassWithoutHeuristics = root.m_nPass == PASS_WITHOUT_HEURISTICS;
    request.m_nPassCount = 1;
    if (request.OnPassStart)
        request.OnPassStart(request.m_nPassCount);

    request.m_vecFirstMoves = FirstMoves(root);
    TRun run(root, request.m_vecFirstMoves);
    request.m_nFirstMovesTotal = static_cast<std::uint32_t>(run.m_table.Size());
    RunThreads(run, std::clamp<int>(request.m_nEffectiveThreads, 1, MAX_ROOT_THREADS));

    request.m_nPositions = run.m_nPositions;
    request.m_bCutShort = !run.m_bFoundEnough && run.m_table.HasOpenMoves();
    SortSolutions(request.m_vecSolutions);
    vecResult = request.m_vecSolutions;
    if (request.OnSolutionFound)
        request.OnSolutionFound(TMove{}, std::string(), request.m_nProblemNumber);
    return !vecResult.empty();
}

} // namespace corvina
