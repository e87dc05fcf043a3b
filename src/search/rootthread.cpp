#include "search/rootthread.h"

#include "heuristics/positionanalysis.h"
#include "search/enginecommand.h"
#include "search/forcedmate.h"
#include "search/hooks.h"
#include "search/movelog.h"
#include "search/nodes.h"
#include "search/ordering.h"
#include "search/plainsearch.h"
#include "search/progress.h"
#include "search/rootsetup.h"
#include "search/threads/levels.h"
#include "search/whitecuts.h"
#include "search/whitesort.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <memory>
#include <new>
#include <thread>
#include <utility>

namespace corvina
{
namespace
{

/// Shorter tasks are solved by the passes before a scout could find anything.
constexpr int MIN_SCOUTED_PLIES = 13;

/// A thread that takes first moves from the table and decides them.
class TRootThread
{
public:
    TRootThread(TRootRun& run, std::uint16_t nThreadId)
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
        m_request.TakeCommands(m_context.m_nThreadId, m_request.m_nSearchMode & SEARCH_ALL);
        try {
            DecideMoves();
        }
        catch (...) {
            m_run.Fail(std::current_exception());
        }
        m_request.TakeNoMoreCommands(m_context.m_nThreadId);
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
        m_run.m_passes.Leave(m_nRound);
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

    void DecideMoves()
    {
        DescribePass();
        while (!m_run.m_bFoundEnough && !MustStop()) {
            const auto pick = PickMove();
            if (!pick)
                break;
            Decide(*pick);
        }
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

    /// False: it is one more than the mode or the options want.
    bool OnSolution(const TMove& move)
    {
        const TAddedSolution added = AddSolution(m_request, move);
        if (m_request.m_bStopRelaxingAfterSolution)
            m_request.m_bSolutionFound = true;
        if (added.m_bEnough)
            m_run.m_bFoundEnough = true;
        return added.m_bTaken;
    }

    void OnScoutProved(const TMove& key)
    {
        if (!m_run.m_table.RecordMate(key))
            return;
        UpdatePercent(m_request);
        m_run.m_passes.CountDecision(m_nRound);
        if (OnSolution(key))
            m_run.m_bFoundByScout = true;
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

    TRootRun& m_run;
    TSolveRequest& m_request;
    TChessboard m_board; ///< the thread's own root
    TThreadContext m_context;
    std::optional<TScout> m_scout;
    std::uint8_t m_nRound = 0;
    bool m_bShares = false; ///< another thread is at work on the first move too
    int m_nDescribed = -1;  ///< the last round whose pass the thread has told
};

/// Null: the run is stopped, or there is no way to make the objects.
std::unique_ptr<TRootThread> MakeRootThread(TRootRun& run, std::uint16_t nThreadId)
{
    do {
        try {
            return std::make_unique<TRootThread>(run, nThreadId);
        }
        catch (const std::bad_alloc&) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        catch (...) {
            run.Fail(std::current_exception());
        }
    } while (!run.m_root.m_pRequest->IsStopped(nThreadId));
    return nullptr;
}

} // namespace

TRootRun::TRootRun(const TChessboard& root, std::vector<TMove> vecMoves, int nThreads)
    : m_root(root), m_nThreads(nThreads), m_table(std::move(vecMoves)),
      m_passes(nThreads, root.m_pRequest->OnPassEnd),
      m_scouting(root.m_pRequest->m_bProofSearch && !root.m_pRequest->m_bPlain &&
                     root.m_nMoves >= MIN_SCOUTED_PLIES &&
                     (root.m_pRequest->m_nSearchMode & SEARCH_FIRST),
                 std::min<int>(nThreads, root.m_pRequest->m_nThreads))
{
}

void TRootRun::AddCounts(const TThreadContext& context)
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

void TRootRun::Fail(std::exception_ptr error)
{
    {
        const std::lock_guard guard(m_mutex);
        if (!m_error)
            m_error = std::move(error);
    }
    m_root.m_pRequest->SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS);
}

void RunRootThread(TRootRun& run, std::uint16_t nThreadId)
{
    try {
        if (const auto pThread = MakeRootThread(run, nThreadId))
            pThread->Run();
        else
            run.m_passes.Leave(0);
    }
    catch (...) {
        // The listener of the passes.
        run.Fail(std::current_exception());
    }
}

} // namespace corvina
