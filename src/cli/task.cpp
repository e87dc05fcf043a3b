#include "cli/task.h"

#include "chess/fen.h"
#include "problems/problem.h"
#include "search/solverequest.h"

#include <charconv>

namespace corvina
{
namespace
{

std::string Trimmed(const std::string& strText)
{
    constexpr const char* BLANKS = " \t\r";
    const auto first = strText.find_first_not_of(BLANKS);
    if (first == std::string::npos)
        return {};
    return strText.substr(first, strText.find_last_not_of(BLANKS) - first + 1);
}

} // namespace

TTask ReadTaskLine(const std::string& strLine)
{
    const auto separator = strLine.rfind(';');
    if (separator == std::string::npos)
        throw ChessException("Expected a line \"FEN;N\": " + strLine);
    TTask task;
    task.m_strFen = Trimmed(strLine.substr(0, separator));
    const std::string strMate = Trimmed(strLine.substr(separator + 1));
    const char* pEnd = strMate.data() + strMate.size();
    const auto [pRead, error] = std::from_chars(strMate.data(), pEnd, task.m_nMate);
    if (error != std::errc() || pRead != pEnd || task.m_nMate < 1 || task.m_nMate > MAX_MATE)
        throw ChessException("Expected a number of moves from 1 to " + std::to_string(MAX_MATE) +
                             ": " + strMate);
    return task;
}

TChessboard BoardOfFen(const std::string& strFen)
{
    TChessboard board;
    if (!ReadFen(board, strFen))
        throw ChessException("Improper FEN code");
    return board;
}

std::optional<TWatchdog::TClock::duration> TimeLimitOf(std::optional<double> dSeconds)
{
    if (!dSeconds)
        return std::nullopt;
    return std::chrono::duration_cast<TWatchdog::TClock::duration>(
        std::chrono::duration<double>(*dSeconds));
}

TTimeLimit::TTimeLimit(TSolveRequest& request, std::optional<double> dSeconds)
    : m_handlers({{},
                  [&request] { request.SetStopState(TStopBlock::PAUSE, TStopBlock::ALL_THREADS); },
                  [&request] { request.SetStopState(TStopBlock::RUN, TStopBlock::ALL_THREADS); },
                  {}}),
      m_watchdog(
          TimeLimitOf(dSeconds),
          [&request] { request.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS); },
          [&request] { return request.Now(); })
{
}

} // namespace corvina
