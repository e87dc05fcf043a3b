#include "cli/solverun.h"

#include "app/applog.h"
#include "app/solvecontrol.h"
#include "cli/task.h"

#include <thread>

namespace corvina
{
namespace
{

/// A terminal in the place of the window: what a run brings is printed when it has ended.
class TTerminalWindow : public TSolveWindow
{
public:
    TTerminalWindow(TProgressOutput& output, const std::string& strLog)
        : m_output(output), m_strLog(strLog)
    {
    }

    void SetStatusText(const std::string&) override {}
    void RefreshProgress() override {}
    void SetProgressTimer(bool bOn) override { m_output.SetTimer(bOn); }
    bool ShowMessage(const std::string& strText, const std::string&, EMessageKind) override
    {
        m_output.Print(strText);
        return true;
    }
    void ShowSolutionOnBoard(const TMove*) override {}
    void ShowVariantMove(const TMove&) override {}
    void EnableMenuForSolve(bool) override {}
    bool PumpMessages() override
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return true;
    }
    void WaitForPaint() override {}
    void WriteLog(const std::string& strLine) override
    {
        if (!m_strLog.empty())
            AppendToLog(m_strLog, strLine);
    }

private:
    TProgressOutput& m_output;
    const std::string& m_strLog;
};

const char* StateText(ESolveState state)
{
    switch (state) {
    case ESolveState::Idle:
        return "Not begun";
    case ESolveState::Solving:
        return "Solving";
    case ESolveState::PausedForAll:
    case ESolveState::PausedForOne:
        return "Paused";
    case ESolveState::Stopping:
        return "Stopping";
    default:
        return "Finished";
    }
}

/// How the run stands, on a few lines.
std::string Report(CSolveControl& control, const TSolveRequest& request,
                   TStopBlock::TClock::time_point tStart)
{
    const auto elapsed =
        std::chrono::duration_cast<std::chrono::milliseconds>(request.Now() - tStart);
    return std::string(StateText(control.State())) + " " + ElapsedText(elapsed) + ", " +
           std::to_string(request.m_nPositions.load()) + " positions\n" + control.RunSettings();
}

std::string WithoutLastLineFeed(std::string strText)
{
    if (strText.ends_with('\n'))
        strText.pop_back();
    return strText;
}

TSolveControlSettings ControlSettings(const TSolveRequest& request, const TRunSettings& settings,
                                      const TSolveOptions& options, TProgressOutput& output)
{
    TSolveControlSettings control;
    control.m_run = settings;
    control.m_bBatch = true;
    control.m_bThreats = options.m_bThreats;
    control.m_bOnePass = options.m_bNoRelax;
    if (!options.m_strThreads.empty()) {
        control.m_bruteForce.m_nThreads = request.m_nForcedThreads;
        control.m_bruteForce.m_nMultithreadingLevels = request.m_nRequestedMultithreadingLevels;
    }
    control.m_onPhase = [&output](const std::string& strPhase) { output.Print(strPhase); };
    if (options.m_bShowSettings)
        control.m_onSettings = [&output](const std::string& strSettings) {
            output.Print(WithoutLastLineFeed(strSettings));
        };
    return control;
}

/// What the window would have a box for. The notes stand below the solutions.
void TellOutcome(const TSolveRequest& request, const TSolveOutcome& outcome,
                 const TSolveOptions& options, TProgressOutput& output)
{
    const std::string strText = OutcomeMessage(request, outcome, options.m_bNoRelax);
    if (options.m_bTellOutcome && !options.m_bJson && !strText.empty())
        output.Print(
            strText.substr(0, strText.find("\n\n")) + " " +
            ElapsedText(std::chrono::duration_cast<std::chrono::milliseconds>(outcome.m_elapsed)));
}

EBruteForceKind KindOf(const TSolveOptions& options)
{
    if (options.m_bHybrid)
        return EBruteForceKind::Hybrid;
    return options.m_bBruteForce ? EBruteForceKind::BruteForce : EBruteForceKind::None;
}

} // namespace

TSolvedTask RunControlled(TSolveRequest& request, const TRunSettings& settings,
                          const TSolveOptions& options, TProgressOutput& output)
{
    // A position with Black to move asks for his defence.
    if (request.m_nRequestedMoves % 2 == 0)
        throw ChessException("Only mate problems (type=1) supported currently.");
    TTerminalWindow window(output, options.m_strLog);
    CSolveControl control(request, window, ControlSettings(request, settings, options, output));
    const auto tStart = request.Now();
    {
        const TSignalHandlersHold handlers(
            {[&] { control.RequestStop(true); }, [&] { control.PauseSolve(false); },
             [&] { control.ResumeSolve(); },
             [&] { output.Print(WithoutLastLineFeed(Report(control, request, tStart))); }});
        const TWatchdog watchdog(
            TimeLimitOf(options.m_dSeconds), [&] { control.RequestStop(WasInterrupted()); },
            [&] { return request.Now(); });
        if (!control.StartSolve(!options.m_bFirst, KindOf(options)))
            throw ChessException("There is nothing to solve.");
        control.Wait();
    }
    const TSolveReport& report = control.Report();
    if (report.m_error)
        std::rethrow_exception(report.m_error);
    TellOutcome(request, report.m_outcome, options, output);
    TSolvedTask solved{report.m_outcome, {}, report.m_nRunWord};
    if (!report.m_outcome.m_vecSolutions.empty())
        solved.m_strThreats =
            ThreatsText(request, report.m_outcome.m_vecSolutions.front(), report.m_threats);
    return solved;
}

} // namespace corvina
