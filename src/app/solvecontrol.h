#ifndef CORVINA_APP_SOLVECONTROL_H
#define CORVINA_APP_SOLVECONTROL_H

#include "app/bruteforce.h"
#include "app/outcometext.h"
#include "app/solvewindow.h"
#include "platform/thread.h"
#include "search/defence.h"

#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>

namespace corvina
{

/// Where the run of a problem stands for its user.
enum class ESolveState : std::uint8_t
{
    Idle, ///< nothing has been started
    Solving,
    PausedForAll,
    PausedForOne,
    Stopping,
    Finished
};

struct TSolveControlSettings
{
    TRunSettings m_run;
    TRunOverrides m_bruteForce = BruteForceOverrides();
    bool m_bBatch = false;        ///< no boxes
    bool m_bShowSolution = false; ///< the solution is made on the board
    bool m_bThreats = true;       ///< the outcome has the threats of a single key
    bool m_bOnePass = false;      ///< the user wants no relaxation
    std::chrono::milliseconds m_highlightTime{800};
    /// Told of the settings of a run, or of each phase of one, as soon as they are in force. From a
    /// thread of the run.
    std::function<void(const std::string& strSettings)> m_onSettings;
    /// Told of each phase of a run by brute force as it begins, in words.
    std::function<void(const std::string& strPhase)> m_onPhase;
};

/// What a run has brought.
struct TSolveReport
{
    TSolveOutcome m_outcome; ///< of a solve or an analysis
    TThreats m_threats;
    TDefenceOutcome m_defence;
    int m_nRunWord = 0;         ///< RunWord
    std::string m_strStatus;    ///< the last status line
    std::exception_ptr m_error; ///< the run has failed
};

/// Starts, pauses and stops the runs of one problem, each on a thread of its own, and tells the
/// window what becomes of them. Commands come from the window's thread, those marked also from
/// others. Any number of problems may be at work at the same time.
class CSolveControl
{
public:
    /// Request and window must outlive the object, which stops what is still at work.
    CSolveControl(TSolveRequest& request, TSolveWindow& window, TSolveControlSettings settings);
    ~CSolveControl();
    CSolveControl(const CSolveControl&) = delete;
    CSolveControl& operator=(const CSolveControl&) = delete;

    /// Begins what the position shown (m_pCurrentBoard) asks for: the solve of the problem, behind
    /// its root the analysis of a position, Black's best defence where he is to move
    /// (bAllSolutions: the thorough one). False when a run goes on already, or no half-move is
    /// left.
    bool StartSolve(bool bAllSolutions, EBruteForceKind kind);

    /// Solves the problem, then plays its key and the best moves of both sides on the board.
    bool StartMainVariant();

    /// Ends a run and waits for that, or until the window is to be closed.
    void StopSolve();

    /// The same without waiting, from any thread; may be repeated. bByUser: else a clock asks.
    void RequestStop(bool bByUser);

    /// Pauses all threads, or the one whose line is shown, if there is one. From any thread.
    void PauseSolve(bool bOneThread);
    void ResumeSolve(); ///< From any thread.

    /// The settings of the run in a box, and as text. From any thread.
    void ShowRunSettings();
    std::string RunSettings();

    ESolveState State() const; ///< From any thread.

    /// Returns when no run is at work.
    void Wait();

    /// Of the last run; not while one is at work.
    const TSolveReport& Report() const { return m_report; }

    /// The thread whose line is shown; TStopBlock::ALL_THREADS: the summary.
    std::atomic<std::uint16_t> m_nThreadToPeek{TStopBlock::ALL_THREADS};

private:
    using TTask = void (CSolveControl::*)();
    class TActive;

    bool IsRunning() const { return !m_request.m_bSolveFinished; }
    bool RefuseWhileRunning();
    bool Start(TTask task);
    void Run(TTask task);
    void ReportError(const std::exception& error);

    void SolveProblem();
    void SolveAndShowVariant();
    void AnalysePosition();
    void TellAnalysis(const TSolveRequest& question, bool bFromRegister);
    void FindDefence();

    TSolveOutcome RunEngine(TSolveRequest& request);
    TSolveOutcome RunInKind(TSolveRequest& request);
    void NoteSettings(const TSolveRequest& request);
    bool MayFindThreats();
    void TellOutcome();
    void PlayMainVariant();
    std::optional<TMove> AskForMove(const TChessboard& board);
    void PrepareQuestion(TSolveRequest& question, const TChessboard& board) const;
    void Highlight(const TMove& move);
    bool Sleep(std::chrono::milliseconds time);
    bool WaitWhilePaused();
    void PauseAgain();

    bool IsStopped() const { return m_bStopping; }
    void SetStatus(const std::string& strText);
    void Tell(const std::string& strText, const std::string& strTitle, EMessageKind kind);

    TSolveRequest& m_request;
    TSolveWindow& m_window;
    const TSolveControlSettings m_settings;
    bool m_bAllSolutions = false;
    EBruteForceKind m_nBruteForceKind = EBruteForceKind::None;
    TSolveReport m_report;

    mutable std::mutex m_csState; ///< guards what follows
    std::condition_variable m_changed;
    TSolveRequest* m_pActive = nullptr; ///< the request at work: the problem's or one of a position
    std::string m_strSettings;          ///< of the run, as they were when it last began a pass
    bool m_bStarted = false;
    std::atomic<bool> m_bStopping{false};
    enum class EPause : std::uint8_t
    {
        None,
        One,
        All
    } m_pause = EPause::None;
    std::unique_ptr<TThread> m_pThread; ///< of the window's thread
};

} // namespace corvina

#endif
