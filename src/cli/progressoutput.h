#ifndef CORVINA_CLI_PROGRESSOUTPUT_H
#define CORVINA_CLI_PROGRESSOUTPUT_H

#include "app/progress.h"
#include "platform/thread.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>

namespace corvina
{

/// What standard error shows of a run that goes on.
enum class EProgressForm
{
    Auto, ///< a live line on a terminal, else nothing
    None,
    Json ///< an object a second, each on a line
};

/// Tells on standard error how a run stands, each second of its clock, and whatever else there is
/// to say meanwhile without a mix-up of the two: messages of the run, and that it takes the number
/// of threads that the engine wants. The live line is gone with the object.
class TProgressOutput
{
public:
    /// The request must outlive the object, which has its callbacks as long as it lives.
    TProgressOutput(TSolveRequest& request, EProgressForm form);
    ~TProgressOutput();
    TProgressOutput(const TProgressOutput&) = delete;
    TProgressOutput& operator=(const TProgressOutput&) = delete;

    /// A line of its own, with Json an object that has it as "message". Any thread may call it.
    void Print(const std::string& strLine);

    /// Begins to show the seconds of the run, or rests. Any thread may call it.
    void SetTimer(bool bOn);

private:
    void Tick();
    void OnSecond(int nSeconds);
    void PrintJson(int nSeconds);
    void ShowLive(int nSeconds);
    void ClearLive();

    TSolveRequest& m_request;
    const bool m_bLive, m_bJson;
    TProgress m_progress;
    std::mutex m_csOutput;
    std::size_t m_nShown = 0; ///< characters of the live line; guarded by m_csOutput

    std::mutex m_csTimer; ///< guards what follows
    std::condition_variable m_timerChanged;
    bool m_bTimerOn = false, m_bEnd = false;
    std::optional<TStopBlock::TClock::time_point> m_tStart; ///< of the first second
    std::unique_ptr<TThread> m_pTicker;                     ///< not guarded
};

} // namespace corvina

#endif
