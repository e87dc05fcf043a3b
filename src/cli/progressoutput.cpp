#include "cli/progressoutput.h"

#include "heuristics/settext.h"
#include "platform/terminal.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace corvina
{

TProgressOutput::TProgressOutput(TSolveRequest& request, EProgressForm form)
    : m_request(request), m_bLive(form == EProgressForm::Auto && IsErrorTerminal()),
      m_bJson(form == EProgressForm::Json)
{
    m_request.OnMessage = [this](const std::string& strText) { Print(strText); };
    m_request.OnForceThreads = [this](int nThreads) {
        Print("Engine wants to force a different number of threads (" + std::to_string(nThreads) +
              "): accepted.");
        return true;
    };
    if (!m_bLive && !m_bJson)
        return;
    constexpr std::size_t STACK = std::size_t{1} << 20;
    m_progress.Watch(m_request);
    m_pTicker = std::make_unique<TThread>(STACK, [this] { Tick(); });
}

TProgressOutput::~TProgressOutput()
{
    m_request.OnMessage = {};
    m_request.OnForceThreads = {};
    if (!m_bLive && !m_bJson)
        return;
    {
        const std::lock_guard guard(m_csTimer);
        m_bEnd = true;
        m_timerChanged.notify_all();
    }
    m_pTicker.reset();
    m_request.OnPositionAnalysed = {};
    const std::lock_guard guard(m_csOutput);
    ClearLive();
}

void TProgressOutput::Print(const std::string& strLine)
{
    const std::lock_guard guard(m_csOutput);
    ClearLive();
    const std::string strShown =
        m_bJson ? nlohmann::ordered_json{{"message", strLine}}.dump() : strLine;
    std::fprintf(stderr, "%s\n", strShown.c_str());
}

void TProgressOutput::SetTimer(bool bOn)
{
    const std::lock_guard guard(m_csTimer);
    m_bTimerOn = bOn;
    if (bOn && !m_tStart)
        m_tStart = m_request.Now();
    m_timerChanged.notify_all();
}

/// The procedure of the thread that shows the seconds. One that it is late for is left out.
void TProgressOutput::Tick()
{
    constexpr TStopBlock::TClock::duration SHORT_WAIT = std::chrono::milliseconds(10);
    std::unique_lock lock(m_csTimer);
    for (int nSeconds = 0; !m_bEnd;) {
        if (!m_bTimerOn) {
            m_timerChanged.wait(lock);
            continue;
        }
        const auto next = *m_tStart + std::chrono::seconds(nSeconds + 1);
        // In a pause the time that is left doesn't get less.
        if (const auto left = next - m_request.Now(); left > left.zero()) {
            m_timerChanged.wait_for(lock, std::max(left, SHORT_WAIT));
            continue;
        }
        nSeconds = static_cast<int>((m_request.Now() - *m_tStart) / std::chrono::seconds(1));
        lock.unlock();
        OnSecond(nSeconds);
        lock.lock();
    }
}

void TProgressOutput::OnSecond(int nSeconds)
{
    const std::lock_guard guard(m_csOutput);
    if (m_bJson)
        PrintJson(nSeconds);
    else
        ShowLive(nSeconds);
}

void TProgressOutput::PrintJson(int nSeconds)
{
    nlohmann::ordered_json object;
    object["seconds"] = nSeconds;
    object["positions"] = m_request.m_nPositions.load();
    object["percent"] = std::round(m_request.m_fPercent * 100.0) / 100;
    object["firstMovesDone"] = m_request.m_nFirstMovesDone.load();
    object["firstMoves"] = m_request.m_nFirstMovesTotal.load();
    object["passesPlanned"] = m_request.m_nPlannedPasses.load();
    if (const int nPhase = m_request.m_nHybridBruteForcePhase)
        object["phase"] = nPhase;
    if (const auto line = m_progress.Latest()) {
        object["pass"] = NameOfPass(line->m_nPass == 1, line->m_nPassIndex);
        auto& heuristics = object["heuristics"] = nlohmann::ordered_json::array();
        for (std::uint32_t nRest = line->m_nHeuristics; nRest; nRest &= nRest - 1)
            heuristics.push_back(GetHeuristicName(nRest & -nRest));
        object["registered"] = line->m_nRegistered;
        object["registeredDoubtful"] = line->m_nDoubtful;
        object["thread"] = line->m_nThread;
        auto& moves = object["line"] = nlohmann::ordered_json::array();
        for (const TProgressMove& move : line->m_vecMoves)
            moves.push_back(
                {{"move", move.m_strMove}, {"index", move.m_nIndex}, {"of", move.m_nCount}});
    }
    std::fprintf(stderr, "%s\n", object.dump().c_str());
}

void TProgressOutput::ShowLive(int nSeconds)
{
    const int nColumns = GetErrorColumns() - 1;
    std::string strText;
    if (const auto line = m_progress.Latest()) {
        strText = GetProgressLine(*line, nColumns);
    }
    else {
        char text[64];
        std::snprintf(text, sizeof text, "%d%s... %d sec(s)...     \r",
                      (m_request.m_nRequestedMoves + 1) / 2, m_request.m_bMirroredRun ? "(m)" : "",
                      nSeconds);
        strText = text;
    }
    // The blanks behind it must not reach into the next line of the terminal.
    strText.pop_back();
    strText.resize(std::min(strText.size(), static_cast<std::size_t>(nColumns)));
    const std::size_t nShown = strText.size();
    if (nShown < m_nShown)
        strText.append(m_nShown - nShown, ' ');
    m_nShown = nShown;
    std::fprintf(stderr, "\r%s\r", strText.c_str());
}

/// With the lock.
void TProgressOutput::ClearLive()
{
    if (m_nShown != 0)
        std::fprintf(stderr, "\r%s\r", std::string(m_nShown, ' ').c_str());
    m_nShown = 0;
}

} // namespace corvina
