#include "search/findmate.h"

#include "heuristics/positionanalysis.h"
#include "heuristics/singlequeen.h"
#include "platform/thread.h"
#include "platform/threadpool.h"
#include "search/onecolourrun.h"
#include "search/ordering.h"
#include "search/pinnedrook.h"
#include "search/progress.h"
#include "search/rootsetup.h"
#include "search/rootthread.h"
#include "search/threads/forcethreads.h"
#include "search/threads/levels.h"
#include "search/threads/scheduler.h"
#include "search/whitesort.h"

#include <algorithm>
#include <chrono>
#include <system_error>
#include <thread>

namespace corvina
{
namespace
{

/// Threads of schedulers that wait for another move.
constexpr std::size_t MAX_PARKED_THREADS = 512;

/// Null: the system has no thread to give. The first one is waited for.
std::unique_ptr<TThread> StartRootThread(TRootRun& run, int nThread)
{
    const TSolveRequest& request = *run.m_root.m_pRequest;
    while (true) {
        try {
            return std::make_unique<TThread>(
                ThreadStack(run.m_root.m_nInitialMoves),
                [&run, nThread] { RunRootThread(run, static_cast<std::uint16_t>(nThread)); },
                request.m_nThreadPriority);
        }
        catch (const std::exception&) {
            if (nThread != 0 || request.IsStoppedForAll())
                return nullptr;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
}

/// Returns when all threads have ended. What has ended one of them by force is thrown on.
void RunThreads(TRootRun& run)
{
    if (run.m_nThreads < 2) {
        RunRootThread(run, 0);
    }
    else {
        std::vector<std::unique_ptr<TThread>> vecThreads(static_cast<std::size_t>(run.m_nThreads));
        for (int i = 0; i < run.m_nThreads; ++i) {
            auto& pThread = vecThreads[static_cast<std::size_t>(i)];
            pThread = StartRootThread(run, i);
            if (!pThread)
                run.m_passes.Leave(0);
        }
    }
    if (run.m_error)
        std::rethrow_exception(run.m_error);
}

/// Another number of threads than was asked for, where the run would do better with it.
void ForceThreads(TChessboard& root)
{
    TSolveRequest& request = *root.m_pRequest;
    constexpr std::uint8_t BRUTE_FORCE_PHASE = 2;
    if (request.m_bThreadsForced || request.m_bPlain || request.m_nRequestedThreads != -1 ||
        request.m_nHybridBruteForcePhase >= BRUTE_FORCE_PHASE)
        return;
    const int nThreads = -ForceThreadsDecision(root, request.m_vecFirstMoves);
    if (nThreads == 0 || nThreads == request.m_nEffectiveThreads)
        return;
    request.m_bThreadsForced = true;
    // The time of the question isn't the run's.
    const auto tAsked = request.Now();
    if (!request.OnForceThreads || request.OnForceThreads(nThreads))
        request.m_nEffectiveThreads = static_cast<std::uint8_t>(nThreads);
    const auto asked = request.Now() - tAsked;
    request.m_tStart += asked;
    request.m_tFirstMoveStart += asked;
}

/// The levels of the scheduler that the task has room for, and its threads.
class TSchedulerThreads
{
public:
    explicit TSchedulerThreads(const TChessboard& root)
        : m_request(*root.m_pRequest), m_pOuter(m_request.m_pSchedulerThreads)
    {
        m_request.m_nSchedulerLevels =
            static_cast<std::uint8_t>(SchedulerLevelsFor(root, m_request.m_nSchedulerLevels));
        if (m_request.m_nSchedulerLevels == 0)
            m_request.m_bCustomScheduler = false;
        else
            m_pool.emplace(m_request.m_bSchedulerThreadPool ? MAX_PARKED_THREADS : 0);
        m_request.m_pSchedulerThreads = m_pool ? &*m_pool : nullptr;
    }
    ~TSchedulerThreads() { m_request.m_pSchedulerThreads = m_pOuter; }
    TSchedulerThreads(const TSchedulerThreads&) = delete;
    TSchedulerThreads& operator=(const TSchedulerThreads&) = delete;

private:
    TSolveRequest& m_request;
    TThreadPool* const m_pOuter; ///< of a run that this one is part of
    std::optional<TThreadPool> m_pool;
};

/// Shorter tasks are solved sooner than their first moves are looked at.
constexpr int MIN_SORTED_TASK = 6;

/// White's legal first moves, the promising ones first.
std::vector<TMove> FirstMoves(TChessboard& root)
{
    TThreadContext context(root.m_nInitialMoves);
    PutOnThread(root, context);
    root.m_pRequest->m_nPlannedPasses = PlannedPasses(root, context);
    // A filter that holds in some passes only takes no move from the table.
    const std::uint8_t nFilter = root.m_moveFilter;
    root.m_moveFilter &= static_cast<std::uint8_t>(~TChessboard::FILTER_MODE_MASK);
    TMoveList moves;
    const int nMoves = root.GenerateWhiteMoves(moves.data());
    int nLegal = SortWhiteMovesCheap(root, moves.data(), nMoves);
    if (root.m_nMoves >= MIN_SORTED_TASK && !root.m_pRequest->m_bPlain)
        nLegal = SortFirstMoves(root, moves.data(), nLegal);
    std::for_each(moves.data(), moves.data() + nLegal, [](TMove& move) { move.m_bEnPassant = 0; });
    root.m_pThread = nullptr;
    root.m_moveFilter = nFilter;
    return std::vector<TMove>(moves.data(), moves.data() + nLegal);
}

/// The run begins with the set that an analysis of its root chooses.
void ChooseHeuristics(TChessboard& root)
{
    TSolveRequest& request = *root.m_pRequest;
    request.m_analysisSeconds.reset();
    if (!request.m_bAnalyse || request.m_bPlain || root.m_nMoves < MIN_ANALYSED_PLIES)
        return;
    const TPositionAnalysis analysis = CheckPositionType(root);
    request.m_analysisSeconds = analysis.m_dSeconds;
    TakeUpAnalysis(analysis, root);
}

/// The table of the register, for tasks that use it. What earlier runs have learnt stays.
void PrepareRegister(TSolveRequest& request)
{
    if (!request.m_bUseRegister || request.m_bPlain)
        return;
    auto& reg = request.m_TemporaryRegister;
    if (request.m_bClearRegister)
        reg.Clear(TAggregatedTemporaryChessboardRegister::CLEAR_EVERYTHING, true);
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

/// The runs that go ahead of the passes: their mates are solutions. Returns the first moves that
/// are left to the passes, none when there are solutions enough.
std::vector<TMove> MovesLeftByPreRuns(TChessboard& root)
{
    TSolveRequest& request = *root.m_pRequest;
    std::vector<TMove> vecMoves = request.m_vecFirstMoves;
    request.m_nOneColourMates = request.m_nSingleQueenMates = 0;
    request.m_nPinnedRookSearches = request.m_nPinnedRookMates = request.m_nUnblockTries = 0;
    if (!request.m_bPreRuns || request.m_bPlain)
        return vecMoves;
    const auto take = [&](const TMove& key) {
        std::erase_if(vecMoves, [&](const TMove& move) { return IsSameMove(move, key); });
        if (AddSolution(request, key).m_bEnough)
            vecMoves.clear();
    };
    for (const TMove& key : FindOneColourMates(root)) {
        ++request.m_nOneColourMates;
        take(key);
        if (vecMoves.empty())
            return vecMoves;
    }
    if (const auto key = FindPinnedRookMate(root)) {
        take(*key);
        if (vecMoves.empty())
            return vecMoves;
    }
    if (const auto key = FindSingleQueenMate(root)) {
        ++request.m_nSingleQueenMates;
        take(*key);
    }
    return vecMoves;
}

} // namespace

std::int8_t FindMate(TChessboard& root, std::vector<TMove>& vecResult)
{
    TSolveRequest& request = *root.m_pRequest;
    request.m_vecSolutions.clear();
    request.m_matesBesideRegister.Clear();
    PrepareRegister(request);
    ChooseHeuristics(root);
    TakeUpHeuristics(root);
    request.m_vecFirstMoves = FirstMoves(root);
    ForceThreads(root);
    const TSchedulerThreads schedulerThreads(root);
    TRootRun run(root, MovesLeftByPreRuns(root),
                 std::clamp<int>(request.m_nEffectiveThreads, 1, MAX_ROOT_THREADS));
    request.m_nFirstMovesTotal = static_cast<std::uint32_t>(run.m_table.Size());
    request.m_nFirstMovesDone = 0;
    request.m_fPercent = 0;
    request.m_nPositions = 0;
    RunThreads(run);

    request.m_nScoutPositions = run.m_nScoutPositions;
    request.m_bFoundByScout = run.m_bFoundByScout;
    request.m_anCuts = run.m_anCuts;
    request.m_anWhiteCuts = run.m_anWhiteCuts;
    const bool bOpen = !run.m_bFoundEnough && run.m_table.HasOpenMoves();
    request.m_bCutShort = bOpen && request.IsStoppedForAll();
    request.m_bDoubtful = bOpen && !request.m_bCutShort;
    SortSolutions(request.m_vecSolutions);
    vecResult = request.m_vecSolutions;
    if (request.OnSolutionFound)
        request.OnSolutionFound(TMove{}, std::string(), request.m_nProblemNumber);
    return !vecResult.empty();
}

} // namespace corvina
