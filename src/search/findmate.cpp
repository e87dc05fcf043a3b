#include "search/findmate.h"

#include "heuristics/positionanalysis.h"
#include "platform/thread.h"
#include "platform/threadpool.h"
#include "search/enginecommand.h"
#include "search/firstmoves.h"
#include "search/forcedmate.h"
#include "search/guides/scout.h"
#include "search/hooks.h"
#include "search/movelog.h"
#include "search/nodes.h"
#include "search/onecolourrun.h"
#include "search/ordering.h"
#include "search/pinnedrook.h"
#include "search/plainsearch.h"
#include "search/progress.h"
#include "search/rootsetup.h"
#include "search/threads/forcethreads.h"
#include "search/threads/levels.h"
#include "search/threads/scheduler.h"
#include "search/whitecuts.h"
#include "search/whitesort.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <condition_variable>
#include <system_error>
#include <thread>

namespace corvina
{
namespace
{

constexpr int MAX_ROOT_THREADS = 64;

/// Threads of schedulers that wait for another move.
constexpr std::size_t MAX_PARKED_THREADS = 512;

/// Shorter tasks are solved by the passes before a scout could find anything.
constexpr int MIN_SCOUTED_PLIES = 13;

/// What the root threads of a run share beside the request.
struct TRun
{
    TRun(const TChessboard& root, std::vector<TMove> vecMoves, int nThreads)
        : m_root(root), m_nThreads(nThreads), m_table(std::move(vecMoves)),
          m_passes(nThreads, root.m_pRequest->OnPassEnd),
          m_scouting(root.m_pRequest->m_bProofSearch && !root.m_pRequest->m_bPlain &&
                         root.m_nMoves >= MIN_SCOUTED_PLIES &&
                         (root.m_pRequest->m_nSearchMode & SEARCH_FIRST),
                     std::min<int>(nThreads, root.m_pRequest->m_nThreads))
    {
    }

    const TChessboard& m_root;
    const int m_nThreads;
    TFirstMoveTable m_table;
    TPassBook m_passes;
    TScouting m_scouting;
    std::atomic<bool> m_bFoundEnough{false}; ///< the mode asks for no more solutions
    std::atomic<std::uint64_t> m_nScoutPositions{0};
    std::atomic<bool> m_bFoundByScout{false};
    std::array<std::uint64_t, 32> m_anCuts{}, m_anWhiteCuts{}; ///< guarded by m_mutex

    void AddCounts(const TThreadContext& context)
    {
        const std::lock_guard guard(m_mutex);
        for (std::size_t i = 0; i < m_anCuts.size(); ++i) {
            m_anCuts[i] += context.m_anCuts[i];
            m_anWhiteCuts[i] += context.m_anWhiteCuts[i];
        }
        m_anCuts[std::countr_zero(SH_USEBLOCKBLACKPAWNSLEVEL)] += context.m_nBlockedPawnMoves;
        TSolveRequest& request = *m_root.m_pRequest;
        request.m_nPinnedRookSearches += context.m_nPinnedRookSearches;
        request.m_nPinnedRookMates += context.m_nPinnedRookMates;
        request.m_nUnblockTries += context.m_nUnblockTries;
    }

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
        m_context.m_nWatchDepth = WatchDepth(m_board);
        m_context.m_nSpawnWidth = m_request.m_nThreads > 1 ? m_request.m_nThreads : 0;
        m_context.m_nPriority = m_request.m_nThreadPriority;
        m_context.m_bLogging = m_request.m_bLogMoves;
        PutOnThread(m_board, m_context);
        if (m_run.m_scouting.IsWanted())
            m_scout.emplace(m_run.m_root, m_run.m_scouting, m_context,
                            [this](const TMove& key) { OnScoutProved(key); });
    }

    void Run()
    {
        const TThreadCounted running(g_nRunningThreads), active(g_nActiveRootThreads);
        DescribePass();
        m_request.TakeCommands(m_context.m_nThreadId, m_request.m_nSearchMode & SEARCH_ALL);
        while (!m_run.m_bFoundEnough && !MustStop()) {
            const auto pick = PickMove();
            if (!pick)
                break;
            Decide(*pick);
        }
        m_request.TakeNoMoreCommands(m_context.m_nThreadId);
        m_run.m_passes.Leave(m_nRound);
        if (m_scout) {
            m_context.m_nPositions += m_scout->Positions();
            m_run.m_nScoutPositions += m_scout->Positions();
        }
        m_context.m_pScout = nullptr;
        PublishPositions(m_request, m_context, 0);
        m_run.AddCounts(m_context);
        if (m_request.OnPositionAnalysed)
            m_request.OnPositionAnalysed(nullptr, m_context);
        ++m_request.m_nRunningThreads;
    }

private:
    /// Deeper than any node: a command that no node has served is served here.
    static constexpr std::uint16_t ABOVE_ALL_NODES = 65535;
    static constexpr int MAX_WAIT = 100; ///< milliseconds between two looks at the others

    /// Between two first moves: a command finds nothing to change. A report is left to the next
    /// node.
    bool MustStop()
    {
        if (m_request.IsAtRest())
            return false;
        const EStopCheck check = m_request.LookAtStop(m_context.m_nThreadId, ABOVE_ALL_NODES);
        if (check != EStopCheck::Serve || m_request.GetCommand().m_pReport)
            return check == EStopCheck::GiveUp;
        return !m_request.FinishCommand(m_context.m_nThreadId);
    }

    bool IsInLastPass() const { return m_board.m_nPass == PASS_WITHOUT_HEURISTICS; }

    /// The next move, after crossing into further passes as far as its round asks for it. Nothing:
    /// no move is left, or no further pass is wanted.
    std::optional<std::size_t> PickMove()
    {
        bool bMayShare = m_request.m_bShareMoves;
        while (const auto pick = m_run.m_table.Pick(m_nRound, bMayShare)) {
            if (!EnterRound(pick->m_nRound)) {
                m_run.m_table.GiveBack(pick->m_nIndex);
                return std::nullopt;
            }
            // In the last pass a second thread at one move is no help.
            if (!IsInLastPass() || !pick->m_bShared) {
                m_bShares = pick->m_bShared;
                if (IsInLastPass() && pick->m_nIndex + 1 == m_run.m_table.Size())
                    m_request.m_bLastMoveStarted = true;
                return pick->m_nIndex;
            }
            m_run.m_table.GiveBack(pick->m_nIndex);
            bMayShare = false;
        }
        return std::nullopt;
    }

    /// Crosses into the pass of a round. False when the run ends before it.
    bool EnterRound(std::uint8_t nRound)
    {
        while (m_nRound < nRound) {
            if (m_request.m_bSolutionFound || (IsInLastPass() && m_run.m_root.m_nHeuristics == 0))
                return false;
            if (!WaitForOthers())
                return false;
            Relax();
            if (IsInLastPass() && !m_context.m_bRunPass2)
                return false;
            m_run.m_passes.GoOn(m_nRound++);
        }
        DescribePass();
        return true;
    }

    /// A sea snake that no analysis has looked at may change what the threads share: they cross
    /// into the next pass together. False when the thread is to stop.
    bool WaitForOthers()
    {
        if (!(m_board.m_nHeuristics & SH_SEASNAKE) || m_context.m_bSeaSnakeAnalysed)
            return true;
        m_run.m_passes.Arrive(m_nRound);
        for (int nWait = 1; !m_run.m_passes.HaveAllArrived(m_nRound);
             nWait = std::min(2 * nWait, MAX_WAIT)) {
            if (m_run.m_bFoundEnough || m_request.IsStopped(m_context.m_nThreadId))
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(nWait));
        }
        return true;
    }

    /// Exchanges the set of the pass that ends for the next one; an empty set is that of the last
    /// pass. What was doubtful under the old set is of no use under a weaker one.
    void Relax()
    {
        auto& reg = m_request.m_TemporaryRegister;
        const std::uint32_t nMask = m_board.m_nHeuristics;
        const std::uint32_t nParams = m_board.m_nHeuristicsParams;
        const int nRelaxed = nMask ? TryRelaxSpecialHeuristics(m_board) : 0;
        // A step that depends on time may be refused to another thread, which goes on with the set.
        if (nRelaxed < 0)
            reg.KeepDoubtful(nMask, nParams);
        else if (nMask)
            reg.RemoveDoubtful(nMask, nParams);
        if (!nRelaxed)
            DropHeuristics(m_board);
    }

    /// Tells the name of the pass and its set, once the thread has a move to analyse in it.
    void DescribePass()
    {
        if (m_nDescribed == m_nRound)
            return;
        m_nDescribed = m_nRound;
        m_request.m_bPassWithoutHeuristics = m_request.m_bPassWithoutHeuristics || IsInLastPass();
        const std::string strSet =
            m_board.m_nHeuristics ? GetHeuristicsText(m_board, true) : std::string("none");
        if (!m_run.m_passes.Describe(m_nRound, NameOfPass(!IsInLastPass(), m_context.m_nPassIndex),
                                     strSet))
            return;
        const std::uint32_t nPass = ++m_request.m_nPassCount;
        if (m_request.OnPassStart)
            m_request.OnPassStart(nPass);
    }

    void Decide(std::size_t nIndex)
    {
        TMove move = m_run.m_table.Move(nIndex);
        m_context.m_firstMove = move;
        m_context.m_bLeftOutByHand = false;
        TSearchResult nResult = AnalyseShown(nIndex, move);
        if (nResult != RESULT_MATE && ServesCommand(nIndex))
            return;
        if (nResult != RESULT_MATE && IsGivenUp())
            nResult = TFirstMoveTable::NOT_ANALYSED;
        else if (nResult < 0 && IsInLastPass() && m_context.m_bLeftOutByHand) {
            m_run.m_table.LeaveOpen(nIndex);
            return;
        }
        else if (nResult < 0 && IsInLastPass())
            nResult = RESULT_NO_MATE;
        if (m_context.m_bSuspendResume) {
            m_context.m_bSuspendResume = false;
            m_request.ResumeThread(m_context.m_nThreadId);
        }
        const bool bDecided = m_run.m_table.Record(nIndex, nResult);
        if (bDecided || (nResult == RESULT_DOUBTFUL && !m_bShares))
            UpdatePercent(m_request);
        if (!bDecided)
            return;
        m_run.m_passes.CountDecision(m_nRound);
        if (nResult == RESULT_MATE)
            OnSolution(move);
    }

    void OnSolution(const TMove& move)
    {
        AddSolution(m_request, move);
        if (m_request.m_bStopRelaxingAfterSolution)
            m_request.m_bSolutionFound = true;
        if ((m_request.m_nSearchMode & SEARCH_FIRST) || HasEnoughSolutions(m_request)) {
            m_run.m_bFoundEnough = true;
            m_request.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS);
        }
    }

    void OnScoutProved(const TMove& key)
    {
        if (!m_run.m_table.RecordMate(key))
            return;
        UpdatePercent(m_request);
        m_run.m_passes.CountDecision(m_nRound);
        m_run.m_bFoundByScout = true;
        OnSolution(key);
    }

    /// The root is a node of White, whose list those see who ask for it.
    TSearchResult AnalyseShown(std::size_t nIndex, const TMove& move)
    {
        const std::uint16_t nDepth = m_board.m_nMoves;
        const std::vector<TMove> vecMoves = m_run.m_table.MovesFrom(nIndex, m_nRound);
        const TShownList shown(m_context, nDepth);
        m_context.m_apMoves[nDepth] = vecMoves.data();
        m_context.m_anMoveCount[nDepth] = static_cast<std::uint8_t>(vecMoves.size());
        m_context.m_anMoveIndex[nDepth] = 0;
        return Analyse(move);
    }

    /// A command concerns the first moves themselves, or the first move was given up for one. True:
    /// it has been taken back.
    bool ServesCommand(std::size_t nIndex)
    {
        if (m_request.IsAtRest() ||
            m_request.LookAtStop(m_context.m_nThreadId, ABOVE_ALL_NODES) != EStopCheck::Serve)
            return false;
        const TEngineCommand command = m_request.GetCommand();
        if (command.m_pReport)
            return false;
        m_run.m_table.Rearrange(nIndex, m_nRound, IsInLastPass(), [&](TMove* pMoves, int nMoves) {
            const int nLeftOut = ServeOnWhiteList(command, pMoves, nMoves, 0, true).m_nLeftOut;
            if (nLeftOut)
                m_request.m_bInfluencedByHand = true;
            return nLeftOut;
        });
        m_request.FinishCommand(m_context.m_nThreadId);
        return true;
    }

    bool IsGivenUp() { return m_request.IsStopped(m_context.m_nThreadId); }

    TSearchResult Analyse(TMove move)
    {
        if (IsWhiteMoveCut(m_board, move) || IsOffZugzwangMap(m_board, move))
            return RESULT_DOUBTFUL;
        const TSearchResult nResult = AnalyseMade(move);
        // A filter of White's moves shows mates only.
        const bool bFiltered = IsInFilteredPass() && !m_request.m_bPlain;
        if (nResult == RESULT_MATE || !bFiltered)
            return nResult;
        m_context.m_nDoubtReason = SH_ONECOLORPLAYPOSSIBLE;
        ++m_context.m_anCuts[std::countr_zero(SH_ONECOLORPLAYPOSSIBLE)];
        return RESULT_DOUBTFUL;
    }

    bool IsInFilteredPass() const
    {
        return !IsInLastPass() && (m_board.m_moveFilter & TChessboard::FILTER_MODE_MASK);
    }

    TSearchResult AnalyseMade(TMove move)
    {
        TChessboard& child = m_context.MakeChild(m_board);
        if (!child.MakeWhiteMove(&move))
            return RESULT_NO_MATE;
        ++m_context.m_nPositions;
        if (m_context.m_bLogging)
            LogMove(child, &move, true);
        const TSearchResult nResult = AnalyseChild(child);
        if (m_context.m_bLogging)
            LogResult(child, nResult);
        return nResult;
    }

    TSearchResult AnalyseChild(TChessboard& child)
    {
        if (IsCutAfterWhiteMove(child))
            return RESULT_DOUBTFUL;
        if (m_request.m_bPlain)
            return PlainSearchBlack(child);
        return IsForcedMateRun(child) ? SearchForcedMate(child) : SearchBlack<NODE_MAIN>(child);
    }

    static bool IsForcedMateRun(const TChessboard& child)
    {
        constexpr int MIN_PLIES = 2;
        return (child.m_nHeuristics & SH_FINDFORCEDMATE) && child.m_nPass == PASS_WITH_HEURISTICS &&
               child.m_nMoves >= MIN_PLIES;
    }

    /// A search that leaves moves out proves mates only.
    static TSearchResult SearchForcedMate(TChessboard& child)
    {
        return FindForcedMate(child) == RESULT_MATE ? RESULT_MATE : RESULT_DOUBTFUL;
    }

    TRun& m_run;
    TSolveRequest& m_request;
    TChessboard m_board; ///< the thread's own root
    TThreadContext m_context;
    std::optional<TScout> m_scout;
    std::uint8_t m_nRound = 0;
    bool m_bShares = false; ///< another thread is at work on the first move too
    int m_nDescribed = -1;  ///< the last round whose pass the thread has told
};

/// A thread that never came to its work.
void LeaveRun(TRun& run)
{
    run.m_passes.Leave(0);
    const std::lock_guard guard(run.m_mutex);
    ++run.m_nEnded;
    run.m_ended.notify_all();
}

/// Makes the thread's objects, trying again while memory is short, and runs it.
void RunRootThread(TRun& run, std::uint16_t nThreadId)
{
    std::unique_ptr<TRootThread> pThread;
    while (!pThread) {
        try {
            pThread = std::make_unique<TRootThread>(run, nThreadId);
        }
        catch (const std::bad_alloc&) {
            if (run.m_root.m_pRequest->IsStopped(nThreadId)) {
                run.m_passes.Leave(0);
                break;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    if (pThread)
        pThread->Run();
    const std::lock_guard guard(run.m_mutex);
    ++run.m_nEnded;
    run.m_ended.notify_all();
}

constexpr auto SHORT_WAIT = std::chrono::milliseconds(10);

/// Waits for all threads and reports each second that goes by.
void WaitForThreads(TRun& run, int nThreads)
{
    TSolveRequest& request = *run.m_root.m_pRequest;
    std::unique_lock lock(run.m_mutex);
    for (int nSeconds = 1; run.m_nEnded < nThreads;) {
        // In a pause the time that is left doesn't get less.
        const auto next = request.m_tStart + std::chrono::seconds(nSeconds);
        const auto left = std::max<TStopBlock::TClock::duration>(next - request.Now(), SHORT_WAIT);
        run.m_ended.wait_for(lock, left, [&] { return run.m_nEnded == nThreads; });
        if (run.m_nEnded == nThreads || request.Now() < next)
            continue;
        if (request.OnSecond)
            request.OnSecond(nSeconds);
        ++nSeconds;
    }
}

/// Null: the system has no thread to give. The first one is waited for.
std::unique_ptr<TThread> StartRootThread(TRun& run, int nThread)
{
    const TSolveRequest& request = *run.m_root.m_pRequest;
    while (true) {
        try {
            return std::make_unique<TThread>(
                ThreadStack(run.m_root.m_nInitialMoves),
                [&run, nThread] { RunRootThread(run, static_cast<std::uint16_t>(nThread)); },
                request.m_nThreadPriority);
        }
        catch (const std::system_error&) {
            if (nThread != 0 || request.IsStoppedForAll())
                return nullptr;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
}

void RunThreads(TRun& run)
{
    const int nThreads = run.m_nThreads;
    if (nThreads < 2 && !run.m_root.m_pRequest->OnSecond) {
        RunRootThread(run, 0);
        return;
    }
    std::vector<std::unique_ptr<TThread>> vecThreads;
    for (int i = 0; i < nThreads; ++i) {
        vecThreads.push_back(StartRootThread(run, i));
        if (!vecThreads.back())
            LeaveRun(run);
    }
    WaitForThreads(run, nThreads);
}

/// Another number of threads than was asked for, where the run would do better with it.
void ForceThreads(TChessboard& root)
{
    TSolveRequest& request = *root.m_pRequest;
    constexpr std::uint8_t BRUTE_FORCE_PHASE = 2;
    // A run that is part of another one has that one's threads.
    if (request.m_bThreadsForced || request.m_bPlain || request.m_nThreads < 2 ||
        request.m_nRequestedThreads != -1 || request.m_nHybridBruteForcePhase >= BRUTE_FORCE_PHASE)
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
        if (m_request.m_nSchedulerLevels != 0)
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
        AddSolution(request, key);
        std::erase_if(vecMoves, [&](const TMove& move) { return IsSameMove(move, key); });
    };
    for (const TMove& key : FindOneColourMates(root)) {
        ++request.m_nOneColourMates;
        take(key);
    }
    if (const auto key = FindPinnedRookMate(root))
        take(*key);
    if (const auto key = FindSingleQueenMate(root)) {
        ++request.m_nSingleQueenMates;
        take(*key);
    }
    const bool bEnough = !request.m_vecSolutions.empty() &&
                         ((request.m_nSearchMode & SEARCH_FIRST) || HasEnoughSolutions(request));
    if (bEnough)
        vecMoves.clear();
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
    TRun run(root, MovesLeftByPreRuns(root),
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
