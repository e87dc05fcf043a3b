#ifndef CORVINA_SEARCH_SOLVEREQUEST_H
#define CORVINA_SEARCH_SOLVEREQUEST_H

#include "heuristics/heuristicset.h"
#include "heuristics/preferredmoves.h"
#include "heuristics/zugzwangmap.h"
#include "problems/problem.h"
#include "registers/aggregatedregister.h"
#include "registers/registerhost.h"
#include "search/foundsolutions.h"
#include "search/matesbesideregister.h"
#include "search/passbook.h"
#include "search/passendticks.h"
#include "search/threadcontext.h"
#include "search/threads/sharingsettings.h"
#include "search/threads/stopblock.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace corvina
{

class TThreadPool;
struct TPredefinedTables;

/// How the analysis of one reply at the root of the defence task ended.
struct TDefenceRecord
{
    TMove m_move{};
    std::uint64_t m_nPositions = 0;
    std::uint32_t m_nMilliseconds = 0;
    bool m_bRefutes = false;    ///< the reply prevented mate within the stipulation
    bool m_bRepetition = false; ///< the reply led only to position repetition
};

/// White's move to try first in a position, wherever it comes up.
struct TPreferredMove
{
    std::array<std::uint8_t, 64> m_board{}; ///< figures by squares
    TMove m_move{};
};

/// How far a run goes: bits of TSolveRequest::m_nSearchMode.
constexpr std::uint8_t SEARCH_FIRST = 1;   ///< stop at the first solution
constexpr std::uint8_t SEARCH_ALL = 2;     ///< find all solutions
constexpr std::uint8_t SEARCH_THREADS = 4; ///< the caller has set the number of threads
constexpr std::uint8_t SEARCH_FIXED = 8;   ///< the mode isn't derived from the options

/// One open problem and its run. The document part is what a file tells; this part is what all
/// threads of a run share. Lives as long as the problem is open.
struct TSolveRequest : TProblem, TStopBlock, TRegisterHost
{
    TSolveRequest() { m_TemporaryRegister.SetHost(this); }

    std::uint8_t m_nThreads = 1; ///< asked for by the options or by the engine
    std::uint8_t m_nMultithreadingLevels = 1;
    std::uint8_t m_nEffectiveThreads = 1; ///< root threads that the root board was built for
    std::atomic<std::uint8_t> m_nRunningThreads{0}; ///< root threads that have finished
    bool m_bMirroredRun = false;
    std::uint8_t m_nForcedSearchMode = 0; ///< of the command at hand; 0: from the options
    std::uint8_t m_nForcedThreads = 0;
    std::atomic<bool> m_bSolutionFound{false};
    std::vector<TMove> m_vecSolutions;             ///< result of the last run
    TFoundSolutions* m_pFoundSolutions = nullptr;  ///< of this run, may be null
    std::int16_t m_shLookForQuickerMateDepth = -1; ///< half-moves; -1: automatic
    std::atomic<std::uint64_t> m_nPlannedPasses{0};
    std::atomic<std::uint32_t> m_nFirstMovesTotal{1};
    std::atomic<std::uint64_t> m_nFirstMovesDone{0}; ///< in all passes
    std::atomic<float> m_fPercent{0};                ///< of the planned passes that is done
    std::vector<TMove> m_vecFirstMoves; ///< of the last run, in the order in which it tries them
    std::atomic<std::uint32_t> m_nPassCount{0};
    std::atomic<std::uint8_t> m_nHybridBruteForcePhase{0};
    bool m_bBruteForce = false;
    bool m_bBruteForceOverrides = false;
    std::atomic<bool> m_bStoppedByUser{false}; ///< of the last run
    std::atomic<bool> m_bSolveFinished{true};  ///< no thread of a run is left
    std::atomic<bool> m_bLastMoveStarted{false};
    std::atomic<bool> m_bPassWithoutHeuristics{false};
    bool m_bThreadsForced = false;       ///< the engine has asked for another number; once a run
    std::uint8_t m_nSchedulerLevels = 0; ///< 0: off
    bool m_bCustomScheduler = false;     ///< good moves are juggled behind the levels, too
    bool m_bSchedulerThreadPool = true;  ///< threads of schedulers wait for further moves
    TThreadPool* m_pSchedulerThreads = nullptr; ///< of the run, while it has a scheduler
    TSharingSettings m_sharing;
    TSharingCounts m_sharingCounts; ///< of the last run
    std::uint8_t m_nSearchMode = 0; ///< SEARCH_...
    std::int32_t m_nThreadPriority = 0;
    std::uint32_t m_nRequiredHeuristics = 0;
    std::atomic<bool> m_bSafeMode{false}; ///< a relaxation of any thread may turn it on

    THeuristicSet m_heuristicSet; ///< that the run begins with
    TZugzwangMap m_zugzwangMap;   ///< of SH_ZUGZWANG; nobody writes to it during a pass
    /// Of SH_SEASNAKE: what White's second move is narrowed to; empty: nothing.
    std::vector<TMove> m_vecSeaSnakeMoves;
    TPreferredMoves m_preferredMoves; ///< behind POSITION_PREFERREDMOVES
    bool m_bProofSearch = false;      ///< a search for the first solution has a scout beside it
    bool m_bAnalyse = false; ///< the run chooses its set itself, if it is long enough for that
    std::optional<double> m_analysisSeconds; ///< that the choice has taken; empty: none was made
    TSortIndications m_mapSortIndications; ///< of the run: the problem's and those of its variants
    /// What is known of compositions (heuristics/predefined.h); null: the run looks at none of it.
    const TPredefinedTables* m_pPredefinedTables = nullptr;
    std::vector<TPreferredMove> m_vecPreferredMoves; ///< of the run, from these tables
    bool m_bPredefinedDepth = false; ///< m_shLookForQuickerMateDepth is of these tables too

    // Men of the root position: queens, rooks, bishops and knights, and pawns.
    std::uint8_t m_nRootWhiteFigures = 0, m_nRootWhitePawns = 0;
    std::uint8_t m_nRootBlackFigures = 0, m_nRootBlackPawns = 0;

    std::chrono::steady_clock::time_point m_tStart;             ///< of the run
    TPassEndTicks m_passEndTick;                                ///< of the run's passes
    std::chrono::steady_clock::time_point m_tFirstMoveStart;    ///< of the search proper
    TAggregatedTemporaryChessboardRegister m_TemporaryRegister; ///< what the runs have learnt
    TMatesBesideRegister m_matesBesideRegister; ///< of the last run; the thread with a proof writes
    bool m_bUseRegister = true;
    /// Tasks with fewer half-moves are solved faster than their positions are looked up.
    std::uint16_t m_nMinRegisterPlies = 10;
    bool m_bPlain = false;         ///< by the plain recursion
    bool m_bLogMoves = false;      ///< each thread writes a log of its moves
    bool m_bCutShort = false;      ///< a stop left first moves undecided
    bool m_bDoubtful = false;      ///< the last pass that was wanted left first moves undecided
    bool m_bManualControl = false; ///< commands by hand are taken (enginecommand.h)
    bool m_bClearRegister = false; ///< what earlier runs have learnt is forgotten at the start
    bool m_bShareMoves = true;     ///< two threads may analyse one first move
    std::atomic<std::uint64_t> m_nPositions{0}; ///< legal moves made in the last run
    std::uint64_t m_nScoutPositions = 0;        ///< those of the scout among them
    bool m_bFoundByScout = false;               ///< the solution of the last run is the scout's
    std::array<std::uint64_t, 32> m_anCuts{};   ///< lines cut in the last run, by heuristic
    std::uint64_t m_nPinnedRookSearches = 0;    ///< of TThreadContext, summed up
    std::uint64_t m_nPinnedRookMates = 0;
    std::uint64_t m_nUnblockTries = 0;
    /// Those of m_anCuts at moves of White.
    std::array<std::uint64_t, 32> m_anWhiteCuts{};
    int m_nOneColourMates = 0;   ///< keys of the last run that its reduced problem has shown
    int m_nSingleQueenMates = 0; ///< and those of its single queen searches

    /// Of a reduced problem: what TLineContext has under these names.
    TSquareSet m_forbiddenSquares = 0, m_forbiddenTargets = 0;
    std::uint16_t m_nMinPinnedRookPlies = 21; ///< half-moves from which SolveByPinnedRook pays
    std::uint16_t m_nMinUnblockPlies = 17; ///< and a try with blocked figures (search/tryunblock.h)
    bool m_bPreRuns = true; ///< reduced problems and special searches may go ahead of the passes

    /// Not 0: the scores of every sort are disturbed, each seed giving another order. For tests.
    std::uint32_t m_nOrderSeed = 0;

    bool m_bRegisterConfirm = false; ///< hits under heuristics count only for the exact setting
    bool m_bThoroughDefence = false;
    std::vector<TMove>
        m_vecDefences; ///< replies that refute, in the order in which they were found
    std::vector<TDefenceRecord> m_vecDefenceRecords;

    /// Called for each reply of the defence task that refutes.
    std::function<void(const TMove& move, const std::string& strText, int nProblemNumber)>
        OnDefenceFound;

    /// Called for each solution as it is found, and with a zero move and an empty text at the end.
    std::function<void(const TMove& move, const std::string& strText, int nProblemNumber)>
        OnSolutionFound;

    /// Called now and then at a White node, from the thread that searches it; with a null board
    /// when a thread that has searched nodes has come to its end, before its line is gone.
    std::function<void(const TChessboard* pBoard, const TThreadContext& context)>
        OnPositionAnalysed;

    /// Called when a pass begins; its number from 1.
    std::function<void(std::uint32_t nPass)> OnPassStart;

    /// Called for each pass as it ends, one at a time.
    std::function<void(const TPassReport& report)> OnPassEnd;

    /// Asked whether the run may have another number of root threads, once it has looked at the
    /// first moves. Without it the answer is yes.
    std::function<bool(int nThreads)> OnForceThreads;

    /// Called with a text that the user should see; the run goes on.
    std::function<void(const std::string& strText)> OnMessage;

    /// Called with a line for the log of the run, from any of its threads.
    std::function<void(const std::string& strLine)> OnLogLine;

    /// Sets the stipulation and all that follows it: a mate in nMoves moves, clamped to 1 to
    /// MAX_MATE.
    void SetMateIn(int nMoves);

    /// A stop of all threads is in force: sweeps of the register end early.
    bool IsAbandoned() const override { return IsStoppedForAll(); }
};

/// The mode or the options limit the number of solutions, and the run has that many. Not while
/// threads of the run may add some.
bool HasEnoughSolutions(const TSolveRequest& request);

/// What has become of a solution.
struct TAddedSolution
{
    bool m_bTaken;  ///< it is new, and not one too many
    bool m_bEnough; ///< the run has as many as it is to find
};

/// Notes a solution of the run, once, and reports it. Where the mode or the options limit the
/// number of solutions the last one stops the run, and none is taken after it. Any thread of any
/// run may call it.
TAddedSolution AddSolution(TSolveRequest& request, const TMove& move);

} // namespace corvina

#endif
