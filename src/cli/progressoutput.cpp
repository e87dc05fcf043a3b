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
    m_progress.Watch(m_request);
    m_request.OnSecond = [this](int nSeconds) { OnSecond(nSeconds); };
}

TProgressOutput::~TProgressOutput()
{
    m_request.OnMessage = {};
    m_request.OnForceThreads = {};
    if (!m_bLive && !m_bJson)
        return;
    m_request.OnSecond = {};
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
    object["firstMoves"] = m_request.m_nFirstMovesTotal;
    object["passesPlanned"] = m_request.m_nPlannedPasses;
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
                      (m_request.m_pChessboard->m_nInitialMoves + 1) / 2,
                      m_request.m_bMirroredRun ? "(m)" : "", nSeconds);
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
