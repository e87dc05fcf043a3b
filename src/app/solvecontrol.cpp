#include "app/solvecontrol.h"

#include "chess/notation.h"
#include "search/line.h"
#include "search/registeraccess.h"
#include "search/rootsetup.h"
#include "search/threads/levels.h"
#include "search/whitesort.h"

#include <algorithm>
#include <system_error>
#include <thread>

namespace corvina
{
namespace
{

constexpr std::uint16_t ALL = TStopBlock::ALL_THREADS;

/// The time in which threads see a change of the stop block.
constexpr auto SETTLING_TIME = std::chrono::milliseconds(50);

/// Shorter tasks have no threats worth telling; half-moves.
constexpr int MIN_THREAT_PLIES = 4;

/// The analysis and the sort of the first moves run on the solve thread itself.
constexpr std::size_t MIN_SOLVE_STACK = std::size_t{8} << 20;

std::string NumberOf(const TProblem& problem)
{
    return std::to_string(problem.m_nProblemNumber);
}

/// A move of White that mates, where the problem's register knows that there is one.
std::optional<TMove> FindInRegister(TSolveRequest& request, const TChessboard& board)
{
    TChessboard root = board;
    TThreadContext context(root.m_nMoves);
    root.m_pRequest = &request;
    PutOnThread(root, context);
    DropHeuristics(root);
    if (!UsesRegister(root) || ShortestMateInRegister(root) == 0)
        return std::nullopt;
    TMoveList moves;
    const int nMoves = root.GenerateWhiteMoves(moves.data());
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = context.MakeChild(root);
        if (child.MakeWhiteMove(&moves[i]) && ProbeBlackReplies(child, PROBE_ALL) == REPLIES_MATED)
            return moves[i];
    }
    return std::nullopt;
}

} // namespace

/// The request at work, for those who pause and stop it.
class CSolveControl::TActive
{
public:
    TActive(CSolveControl& control, TSolveRequest& request)
        : m_control(control), m_pOuter(control.m_pActive)
    {
        Set(&request);
    }
    ~TActive() { Set(m_pOuter); }
    TActive(const TActive&) = delete;
    TActive& operator=(const TActive&) = delete;

private:
    void Set(TSolveRequest* pRequest)
    {
        const std::lock_guard guard(m_control.m_csState);
        m_control.m_pActive = pRequest;
    }

    CSolveControl& m_control;
    TSolveRequest* const m_pOuter;
};

CSolveControl::CSolveControl(TSolveRequest& request, TSolveWindow& window,
                             TSolveControlSettings settings)
    : m_request(request), m_window(window), m_settings(std::move(settings))
{
}

CSolveControl::~CSolveControl()
{
    while (IsRunning()) {
        RequestStop(true);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

// Commands

bool CSolveControl::RefuseWhileRunning()
{
    if (!IsRunning())
        return false;
    Tell("Search for solution of the current problem is pending", "", EMessageKind::Information);
    return true;
}

bool CSolveControl::StartSolve(bool bAllSolutions, EBruteForceKind kind)
{
    if (RefuseWhileRunning())
        return false;
    m_nBruteForceKind = kind;
    m_bAllSolutions = bAllSolutions;
    const TChessboard& shown = *m_request.m_pCurrentBoard;
    const bool bRoot = !shown.m_pParent;
    const int nPlies = bRoot ? m_request.m_nRequestedMoves : shown.m_nMoves;
    if (nPlies == 0)
        return false;
    if (nPlies % 2 == 0 && m_request.m_nProblemType == PROBLEM_DIRECTMATE)
        return Start(&CSolveControl::FindDefence);
    return Start(bRoot ? &CSolveControl::SolveProblem : &CSolveControl::AnalysePosition);
}

bool CSolveControl::StartMainVariant()
{
    if (RefuseWhileRunning())
        return false;
    m_nBruteForceKind = EBruteForceKind::None;
    m_bAllSolutions = false;
    return Start(&CSolveControl::SolveAndShowVariant);
}

bool CSolveControl::Start(TTask task)
{
    m_pThread.reset();
    m_report = {};
    m_report.m_nRunWord = RunWord(m_request, m_nBruteForceKind, m_bAllSolutions);
    {
        const std::lock_guard guard(m_csState);
        m_strSettings = RunSettingsText(m_request, false);
        m_bStarted = true;
        m_bStopping = false;
        m_pause = EPause::None;
        m_request.m_bStoppedByUser = false;
        m_request.m_bSolveFinished = false;
        m_request.m_nHybridBruteForcePhase = 0;
        m_request.m_bBruteForceOverrides = false;
    }
    m_window.EnableMenuForSolve(true);
    const std::size_t nStack = std::max(MIN_SOLVE_STACK, ThreadStack(m_request.m_nRequestedMoves));
    while (!m_pThread) {
        try {
            m_pThread = std::make_unique<TThread>(
                nStack, [this, task] { Run(task); }, m_request.m_nThreadPriority);
        }
        catch (const std::system_error&) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    return true;
}

void CSolveControl::RequestStop(bool bByUser)
{
    const std::lock_guard guard(m_csState);
    if (!IsRunning())
        return;
    m_bStopping = true;
    if (bByUser)
        m_request.m_bStoppedByUser = true;
    if (m_pActive)
        m_pActive->SetStopState(TStopBlock::STOP, ALL);
}

void CSolveControl::StopSolve()
{
    if (!IsRunning())
        return;
    if (State() == ESolveState::PausedForAll)
        m_window.SetProgressTimer(true);
    RequestStop(true);
    {
        std::unique_lock lock(m_csState);
        m_changed.wait_for(lock, SETTLING_TIME, [this] { return !IsRunning(); });
    }
    if (IsRunning())
        m_window.SetStatusText("Stop pending...");
    // A run clears the stop block as it begins: one that was about to is told once more.
    while (IsRunning() && m_window.PumpMessages())
        RequestStop(true);
}

void CSolveControl::PauseSolve(bool bOneThread)
{
    const std::uint16_t nThread = bOneThread ? m_nThreadToPeek.load() : ALL;
    const auto pause = [&] {
        const std::lock_guard guard(m_csState);
        if (!IsRunning() || m_bStopping)
            return false;
        m_pause = nThread == ALL ? EPause::All : EPause::One;
        if (m_pActive)
            m_pActive->SetStopState(TStopBlock::PAUSE, nThread);
        return true;
    };
    if (!pause())
        return;
    if (nThread == ALL)
        m_window.SetProgressTimer(false);
    std::this_thread::sleep_for(SETTLING_TIME);
    // The first one may have come just before a run cleared the stop block.
    if (State() == ESolveState::PausedForAll || State() == ESolveState::PausedForOne)
        pause();
    m_window.RefreshProgress();
}

void CSolveControl::ResumeSolve()
{
    EPause before;
    {
        const std::lock_guard guard(m_csState);
        before = m_pause;
        if (!IsRunning() || m_bStopping || before == EPause::None)
            return;
        m_pause = EPause::None;
        if (m_pActive)
            m_pActive->SetStopState(TStopBlock::RUN, ALL);
    }
    if (before == EPause::All)
        m_window.SetProgressTimer(true);
}

void CSolveControl::ShowRunSettings()
{
    m_window.ShowMessage(RunSettings(), "Main settings of current analysis",
                         EMessageKind::Information);
}

std::string CSolveControl::RunSettings()
{
    const std::lock_guard guard(m_csState);
    return m_bStarted ? m_strSettings : RunSettingsText(m_request, false);
}

ESolveState CSolveControl::State() const
{
    const std::lock_guard guard(m_csState);
    if (!m_bStarted)
        return ESolveState::Idle;
    if (!IsRunning())
        return ESolveState::Finished;
    if (m_bStopping)
        return ESolveState::Stopping;
    if (m_pause == EPause::None)
        return ESolveState::Solving;
    return m_pause == EPause::All ? ESolveState::PausedForAll : ESolveState::PausedForOne;
}

void CSolveControl::Wait()
{
    std::unique_lock lock(m_csState);
    m_changed.wait(lock, [this] { return !IsRunning(); });
    lock.unlock();
    m_pThread.reset();
}

// The thread

void CSolveControl::Run(TTask task)
{
    m_window.WaitForPaint();
    m_window.SetProgressTimer(true);
    try {
        const TActive active(*this, m_request);
        (this->*task)();
    }
    catch (const std::exception& error) {
        ReportError(error);
    }
    m_window.SetProgressTimer(false);
    m_window.EnableMenuForSolve(false);
    m_window.RefreshProgress();
    const std::lock_guard guard(m_csState);
    m_pause = EPause::None;
    m_request.m_bSolveFinished = true;
    m_changed.notify_all();
}

void CSolveControl::ReportError(const std::exception& error)
{
    m_report.m_error = std::current_exception();
    const std::string strThread = "Thread solving problem ";
    SetStatus(strThread + NumberOf(m_request) + " completed with error.");
    Tell(strThread + "\"" + NumberOf(m_request) + "\" completed with error:\n\n" + error.what(), "",
         EMessageKind::Warning);
}

/// The set of a run changes until its first pass begins; what the user may ask for is kept.
void CSolveControl::NoteSettings(const TSolveRequest& request)
{
    std::string strSettings = RunSettingsText(request);
    if (m_settings.m_onSettings)
        m_settings.m_onSettings(strSettings);
    const std::lock_guard guard(m_csState);
    m_strSettings = std::move(strSettings);
}

TSolveOutcome CSolveControl::RunEngine(TSolveRequest& request)
{
    const auto onPassStart = request.OnPassStart;
    const auto onMessage = request.OnMessage;
    bool bTold = false;
    if (!onMessage)
        request.OnMessage = [this](const std::string& strText) {
            Tell(strText, "Warning", EMessageKind::Warning);
        };
    request.OnPassStart = [&](std::uint32_t nPass) {
        PauseAgain();
        if (nPass == 1) {
            bTold = true;
            NoteSettings(request);
        }
        m_window.RefreshProgress();
        if (onPassStart)
            onPassStart(nPass);
    };
    const auto restore = [&] {
        request.OnPassStart = onPassStart;
        request.OnMessage = onMessage;
    };
    try {
        const TSolveOutcome outcome = RunInKind(request);
        restore();
        // A task may be solved before any pass.
        if (!bTold)
            NoteSettings(request);
        return outcome;
    }
    catch (...) {
        restore();
        throw;
    }
}

TSolveOutcome CSolveControl::RunInKind(TSolveRequest& request)
{
    constexpr std::uint32_t ANY = RUN_HYBRIDBRUTEFORCE | RUN_BRUTEFORCE;
    const bool bHybrid = m_nBruteForceKind == EBruteForceKind::Hybrid ||
                         (request.m_nRunOptions & RUN_HYBRIDBRUTEFORCE);
    if (m_nBruteForceKind == EBruteForceKind::None && !(request.m_nRunOptions & ANY))
        return Solve(request, m_settings.m_run);
    return BruteForceRun(request, m_settings.m_run, bHybrid, m_settings.m_bruteForce,
                         [this](const std::string& strText) {
                             SetStatus(strText);
                             if (m_settings.m_onPhase)
                                 m_settings.m_onPhase(strText);
                         });
}

void CSolveControl::SolveProblem()
{
    m_request.m_nForcedSearchMode = m_bAllSolutions ? SEARCH_ALL : SEARCH_FIRST;
    if (m_request.m_bClearRegister && !m_settings.m_bBatch) {
        SetStatus("Removing temporary data from memory...\n(the option to clear this data on start "
                  "solving is on)");
        m_request.m_TemporaryRegister.Clear(
            TAggregatedTemporaryChessboardRegister::CLEAR_EVERYTHING, true);
    }
    SetStatus("Initial position type check...");
    m_report.m_outcome = RunEngine(m_request);
    m_window.SetProgressTimer(false);
    if (m_settings.m_bShowSolution && !m_report.m_outcome.m_vecSolutions.empty() && !IsStopped())
        Highlight(m_report.m_outcome.m_vecSolutions.front());
    if (MayFindThreats())
        m_report.m_threats = FindThreats(m_request, m_report.m_outcome.m_vecSolutions.front());
    TellOutcome();
}

/// True: the stop with which the run has ended itself is lifted.
bool CSolveControl::MayFindThreats()
{
    const std::lock_guard guard(m_csState);
    const bool bMay = m_settings.m_bThreats && m_report.m_outcome.m_vecSolutions.size() == 1 &&
                      m_request.m_nRequestedMoves >= MIN_THREAT_PLIES && !IsStopped();
    if (bMay)
        m_request.ClearStopState();
    return bMay;
}

void CSolveControl::TellOutcome()
{
    const TSolveOutcome& outcome = m_report.m_outcome;
    const std::string strText = StatusText(m_request, outcome, m_report.m_threats);
    const bool bStopped = outcome.m_bStopped || m_request.m_bStoppedByUser;
    m_window.WriteLog(LogText(m_request, outcome, bStopped, strText));
    SetStatus(strText);
    const std::string strMessage = OutcomeMessage(m_request, outcome, m_settings.m_bOnePass);
    if (!strMessage.empty() && (!bStopped || !outcome.m_vecSolutions.empty()))
        Tell(strMessage, "Mate search result", EMessageKind::Information);
    if (m_settings.m_bBatch)
        SetStatus("Thread solving problem " + NumberOf(m_request) + " has completed successfully.");
}

/// Highlights a move, makes it on the board and leaves the highlight off.
void CSolveControl::Highlight(const TMove& move)
{
    m_window.ShowSolutionOnBoard(&move);
    Sleep(m_settings.m_highlightTime);
    m_window.ShowVariantMove(move);
    m_window.RefreshProgress();
    Sleep(m_settings.m_highlightTime);
    m_window.ShowSolutionOnBoard(nullptr);
}

/// A pause is no part of the time. False: a stop has come before.
bool CSolveControl::Sleep(std::chrono::milliseconds time)
{
    using TClock = std::chrono::steady_clock;
    constexpr TClock::duration STEP = std::chrono::milliseconds(10);
    std::unique_lock lock(m_csState);
    TClock::duration left = time;
    while (!IsStopped() && (left > TClock::duration::zero() || m_pause == EPause::All)) {
        const TClock::time_point tStart = TClock::now();
        m_changed.wait_for(lock, m_pause == EPause::All ? STEP : std::min(STEP, left));
        if (m_pause != EPause::All)
            left -= TClock::now() - tStart;
    }
    return !IsStopped();
}

/// False: a stop has come.
bool CSolveControl::WaitWhilePaused()
{
    return Sleep(std::chrono::milliseconds::zero());
}

/// A run clears the stop block as it begins, and may lose a pause by that.
void CSolveControl::PauseAgain()
{
    const std::lock_guard guard(m_csState);
    if (m_pause == EPause::All && !IsStopped() && m_pActive)
        m_pActive->SetStopState(TStopBlock::PAUSE, ALL);
}

// The main variant

void CSolveControl::SolveAndShowVariant()
{
    m_request.m_nForcedSearchMode = SEARCH_FIRST;
    SetStatus("Initial position type check...");
    m_report.m_outcome = RunEngine(m_request);
    if (!m_report.m_outcome.m_vecSolutions.empty() && !IsStopped())
        PlayMainVariant();
    TellOutcome();
    SetStatus("A thread has completed.");
}

/// White's key, then the best moves of both sides, as long as there are some.
void CSolveControl::PlayMainVariant()
{
    TChessboard root = *m_request.m_pChessboard;
    TLineContext line(root.m_nMoves);
    line.m_pRootBoard = &root;
    root.m_pThread = &line;
    TChessboard* pBoard = &root;
    std::optional<TMove> move = m_report.m_outcome.m_vecSolutions.front();
    while (move) {
        TChessboard& child = line.MakeChild(*pBoard);
        const bool bMade = pBoard->IsWhiteToMove() ? child.MakeWhiteUserMove(&*move)
                                                   : child.MakeBlackUserMove(&*move);
        if (!bMade)
            break;
        pBoard = &child;
        Highlight(*move);
        SetStatus("Move made on chessboard of problem no " + NumberOf(m_request));
        const bool bMated = !child.IsWhiteToMove() && child.m_blackChecker != NO_CHECK &&
                            !child.CanBlackEscapeCheck();
        if (IsStopped() || bMated || child.m_nMoves == 0)
            return;
        SetStatus("...wait...");
        move = AskForMove(child);
    }
    if (!IsStopped())
        SetStatus("No move found on chessboard of problemm no " + NumberOf(m_request));
}

/// The best move of the side that is to move.
std::optional<TMove> CSolveControl::AskForMove(const TChessboard& board)
{
    TSolveRequest question;
    PrepareQuestion(question, board);
    question.OnPassStart = [this](std::uint32_t) { PauseAgain(); };
    const TActive active(*this, question);
    if (!WaitWhilePaused())
        return std::nullopt;
    try {
        if (board.IsWhiteToMove()) {
            question.m_nForcedSearchMode = SEARCH_FIRST;
            const TSolveOutcome outcome = Solve(question, m_settings.m_run);
            if (!outcome.m_vecSolutions.empty())
                return outcome.m_vecSolutions.front();
        }
        else {
            const TDefenceOutcome outcome = FindBestDefence(question, false);
            if (!outcome.m_vecRanked.empty())
                return outcome.m_vecRanked.front().m_move;
        }
    }
    catch (const ChessException&) {
        // No legal move.
    }
    return std::nullopt;
}

/// The position as a task of its own. Its parents tell what castling and capture en passant it
/// allows.
void CSolveControl::PrepareQuestion(TSolveRequest& question, const TChessboard& board) const
{
    *question.m_pChessboard = board;
    question.m_nRequestedMoves = board.m_nMoves;
    question.m_nProblemNumber = m_request.m_nProblemNumber;
    question.m_nForcedThreads = m_request.m_nForcedThreads;
    question.m_nRequestedThreads = m_request.m_nRequestedThreads;
    question.m_nRequestedMultithreadingLevels = m_request.m_nRequestedMultithreadingLevels;
    question.m_shRequestedSchedulerLevels = m_request.m_shRequestedSchedulerLevels;
    question.m_nRunOptions = m_request.m_nRunOptions & RUN_SAFEMODE;
    question.m_bAnalyse = true;
    question.m_bProofSearch = m_request.m_bProofSearch;
    question.m_nThreadPriority = m_request.m_nThreadPriority;
    THeuristicsParams& params = question.m_heuristicSet.m_params;
    params.m_bLetRelax = m_request.m_heuristicSet.m_params.m_bLetRelax;
    params.m_bEnableFallback = m_request.m_heuristicSet.m_params.m_bEnableFallback;
    question.m_TemporaryRegister.SetMemoryLimitMB(m_request.m_TemporaryRegister.GetMemoryLimitMB());
    question.m_bUseRegister = m_request.m_bUseRegister;
    question.m_nMinRegisterPlies = m_request.m_nMinRegisterPlies;
    question.m_sharing = m_request.m_sharing;
    question.m_bShareMoves = m_request.m_bShareMoves;
    question.m_bManualControl = m_request.m_bManualControl;
    question.m_bLogMoves = m_request.m_bLogMoves;
    question.OnPositionAnalysed = m_request.OnPositionAnalysed;
    question.OnPassEnd = m_request.OnPassEnd;
    question.OnForceThreads = m_request.OnForceThreads;
    question.OnMessage = m_request.OnMessage;
    question.OnLogLine = m_request.OnLogLine;
}

// Positions down the line

void CSolveControl::AnalysePosition()
{
    TSolveRequest question;
    PrepareQuestion(question, *m_request.m_pCurrentBoard);
    question.m_heuristicSet.m_params.m_bRunPass2 = m_request.m_heuristicSet.m_params.m_bRunPass2;
    question.m_nForcedSearchMode = m_bAllSolutions ? SEARCH_ALL : SEARCH_FIRST;
    SetStatus(">> #" + std::to_string(question.GetStipulation()));
    std::optional<TMove> known;
    if (!m_bAllSolutions)
        known = FindInRegister(m_request, *m_request.m_pCurrentBoard);
    if (known) {
        m_report.m_outcome.m_nResult = 1;
        m_report.m_outcome.m_vecSolutions = {*known};
    }
    else {
        const TActive active(*this, question);
        m_report.m_outcome = RunEngine(question);
    }
    TellAnalysis(question, known.has_value());
}

void CSolveControl::TellAnalysis(const TSolveRequest& question, bool bFromRegister)
{
    const TSolveOutcome& outcome = m_report.m_outcome;
    if (!outcome.m_vecSolutions.empty()) {
        SetStatus(">> #" + std::to_string(question.GetStipulation()) +
                  (bFromRegister ? " (from register) " : " ") + StatusText(question, outcome, {}));
        return;
    }
    std::string strText =
        "No solution found " +
        ElapsedText(std::chrono::duration_cast<std::chrono::milliseconds>(outcome.m_elapsed));
    if (!m_request.m_heuristicSet.m_params.m_bRunPass2)
        strText += " NOTE: Pass without heuristics is currently switched off (see heuristics "
                   "selection dialog box)";
    SetStatus(strText);
    if (!outcome.m_bStopped && !m_request.m_bStoppedByUser)
        Tell(strText, "Result of analysis", EMessageKind::Information);
}

void CSolveControl::FindDefence()
{
    m_report.m_defence = FindBestDefence(m_request, m_bAllSolutions);
    const TDefenceOutcome& outcome = m_report.m_defence;
    SetStatus(outcome.m_strText);
    if (outcome.m_bRepetition)
        Tell(REPETITION_NOTE, REPETITION_TITLE, EMessageKind::Information);
    if (outcome.m_bStopped || outcome.m_vecRanked.empty())
        return;
    std::string strMoves = "Thread looking for black's defence in problem " + NumberOf(m_request) +
                           " has completed successfully.\nThe following moves have been found:";
    for (const TRankedDefence& defence : outcome.m_vecRanked)
        strMoves += "\n" + PrintMove(defence.m_move, *m_request.m_pCurrentBoard);
    Tell(strMoves, "", EMessageKind::Information);
}

// The window

void CSolveControl::SetStatus(const std::string& strText)
{
    m_report.m_strStatus = strText;
    m_window.SetStatusText(strText);
}

void CSolveControl::Tell(const std::string& strText, const std::string& strTitle, EMessageKind kind)
{
    if (!m_settings.m_bBatch)
        m_window.ShowMessage(strText, strTitle, kind);
}

} // namespace corvina
