#include "search/movelog.h"

#include "chess/boardid.h"
#include "chess/movetext.h"
#include "chess/notation.h"
#include "heuristics/settext.h"
#include "search/hooks.h"
#include "search/result.h"
#include "search/solverequest.h"

#include <cstdio>
#include <mutex>
#include <string>

namespace corvina
{
namespace
{

/// Deeper lines aren't logged.
constexpr int MAX_LOGGED_PLIES = 600;

/// Held for a line, or for the opening of a file.
std::mutex g_csMovesLog;

int PliesPlayed(const TChessboard& board)
{
    return board.m_nInitialMoves - board.m_nMoves;
}

/// The open file of a thread whose line is of interest now, else null.
std::FILE* LogOf(const TChessboard& board)
{
    TThreadContext& context = ContextOf(board);
    if (!context.m_bLogging || context.m_bLogOff || PliesPlayed(board) > MAX_LOGGED_PLIES)
        return nullptr;
    if (!context.m_pLog)
        OpenMovesLog(context, *board.m_pRequest);
    return context.m_pLog;
}

void WriteLine(std::FILE* pLog, int nTabs, const std::string& strText)
{
    const std::string strLine = std::string(static_cast<std::size_t>(nTabs), '\t') + strText + '\n';
    const std::lock_guard guard(g_csMovesLog);
    std::fputs(strLine.c_str(), pLog);
}

/// "3." before a move of White, "3 ... " before one of Black, the nPly-th half-move from 0.
std::string MoveNumber(int nPly)
{
    return std::to_string(nPly / 2 + 1) + (nPly % 2 == 0 ? "." : " ... ");
}

std::string PassText(const TChessboard& board)
{
    const TThreadContext& context = ContextOf(board);
    if (board.m_nPass != 1)
        return std::to_string(board.m_nPass);
    return "1" + std::string(1, static_cast<char>('a' + context.m_nPassIndex)) +
           " Heur=" + std::to_string(board.m_nHeuristics) +
           " HeurParams=" + std::to_string(board.m_nHeuristicsParams) + " " +
           GetHeuristicsText(board, true);
}

/// Why the last result is doubtful.
std::string DoubtText(std::uint32_t nReason)
{
    constexpr int FIRST_IMPOSSIBLE = -32, LAST_IMPOSSIBLE = -2;
    const int nCode = static_cast<int>(nReason);
    if (nReason == 0 || nReason == DOUBT_REGISTER)
        return " (" + std::to_string(nCode) + " (temp.reg.))";
    if (nCode >= FIRST_IMPOSSIBLE && nCode <= LAST_IMPOSSIBLE)
        return "/impossible (" + std::to_string(nCode) + ")";
    return " (" + GetHeuristicName(nReason) + ")";
}

std::string ResultText(int nResult, std::uint32_t nDoubtReason)
{
    constexpr int END_OF_FORCED_MATE = -4;
    switch (nResult) {
    case RESULT_MATE:
        return "mate";
    case RESULT_NO_MATE:
        return "no mate";
    case RESULT_DOUBTFUL:
        return "doubtful" + DoubtText(nDoubtReason);
    case RESULT_REPETITION:
        return "position repetition";
    case END_OF_FORCED_MATE:
        return "end of FindForcedMate depth";
    default:
        return "result error";
    }
}

/// Closes the move by which nPlies half-moves are played.
void WriteResult(const TChessboard& board, int nPlies, int nResult)
{
    std::FILE* const pLog = LogOf(board);
    if (!pLog || ContextOf(board).m_nQuickerMateNesting || nPlies == 0)
        return;
    const int nPly = nPlies - 1;
    WriteLine(pLog, nPlies,
              std::to_string(nPly / 2 + 1) + (nPly % 2 == 0 ? "." : " ...") +
                  ResultText(nResult, ContextOf(board).m_nDoubtReason));
}

} // namespace

void OpenMovesLog(TThreadContext& context, const TSolveRequest& request)
{
    const std::string strName = "MovesLogger_problem" + std::to_string(request.m_nProblemNumber) +
                                "_thread" + std::to_string(context.m_nThreadId) + ".log";
    const std::lock_guard guard(g_csMovesLog);
    context.m_pLog.Take(std::fopen(strName.c_str(), "a"));
    if (!context.m_pLog) {
        context.m_bLogging = false;
        if (request.OnMessage)
            request.OnMessage("Cannot write " + strName);
        return;
    }
    std::fputs((std::string(52, '-') + '\n').c_str(), context.m_pLog);
    if (context.m_pOwner && context.m_nThreadId != context.m_nLogThreadId)
        std::fputs("NextMultithreadingLevel analysis...\n", context.m_pLog);
    context.m_nLogThreadId = context.m_nThreadId;
}

void LogMove(const TChessboard& board, const TMove* pMove, bool bMade)
{
    std::FILE* const pLog = LogOf(board);
    if (!pLog || ContextOf(board).m_nQuickerMateNesting)
        return;
    const int nPlies = PliesPlayed(board);
    if (!bMade) {
        WriteLine(pLog, nPlies + 1,
                  MoveNumber(nPlies) + SquareText(pMove->m_from) + "-" + SquareText(pMove->m_to));
        return;
    }
    std::string strLine = MoveNumber(nPlies - 1) + PrintMove(board.m_LastMove, *board.m_pParent) +
                          " " + TChessboardId(board.m_board).ToAlphanum6();
    if (nPlies == 1)
        strLine += " Pass " + PassText(board);
    WriteLine(pLog, nPlies, strLine);
}

void LogResult(const TChessboard& board, int nResult)
{
    WriteResult(board, PliesPlayed(board), nResult);
}

void LogCutMove(const TChessboard& board, const TMove& move)
{
    LogMove(board, &move, false);
    WriteResult(board, PliesPlayed(board) + 1, RESULT_DOUBTFUL);
}

void LogText(const TChessboard& board, const char* pText)
{
    std::FILE* const pLog = LogOf(board);
    if (pLog && ContextOf(board).m_nQuickerMateNesting == 0)
        WriteLine(pLog, PliesPlayed(board), pText);
}

} // namespace corvina
