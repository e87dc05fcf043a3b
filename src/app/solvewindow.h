#ifndef CORVINA_APP_SOLVEWINDOW_H
#define CORVINA_APP_SOLVEWINDOW_H

#include "chess/move.h"

#include <string>

namespace corvina
{

enum class EMessageKind : std::uint8_t
{
    Information,
    Warning,
    Question
};

/// What the control of a solve needs of the window, or of what stands in its place. Unless said
/// otherwise it is called from the solving thread.
class TSolveWindow
{
public:
    virtual ~TSolveWindow() = default;

    /// The status line of the problem.
    virtual void SetStatusText(const std::string& strText) = 0;

    /// The progress panel and the board are to be painted anew.
    virtual void RefreshProgress() = 0;

    /// The timer that shows progress each second runs or rests. From any thread.
    virtual void SetProgressTimer(bool bOn) = 0;

    /// A box that waits for the user; a question returns his answer, yes or no.
    virtual bool ShowMessage(const std::string& strText, const std::string& strTitle,
                             EMessageKind kind) = 0;

    /// Highlights a move on the board that is shown, or, without one, takes the highlight away.
    virtual void ShowSolutionOnBoard(const TMove* pMove) = 0;

    /// Makes a move on the board that is shown.
    virtual void ShowVariantMove(const TMove& move) = 0;

    /// Commands that can't run during a solve are greyed.
    virtual void EnableMenuForSolve(bool bRunning) = 0;

    /// On the window's thread: processes what waits for the window, or lets some milliseconds pass.
    /// False: the window is to be closed.
    virtual bool PumpMessages() = 0;

    /// Returns when nothing is left to be painted.
    virtual void WaitForPaint() = 0;

    /// A line for the program's log, with its line feed.
    virtual void WriteLog(const std::string& strLine) = 0;
};

} // namespace corvina

#endif
