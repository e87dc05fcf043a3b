#ifndef CORVINA_SEARCH_SERVESTOP_H
#define CORVINA_SEARCH_SERVESTOP_H

#include "search/enginecommand.h"
#include "search/solverequest.h"

namespace corvina
{

/// A node looks closer at the stop block. Sets *pbStopped when it is to end. A command by hand goes
/// to serve(const TEngineCommand&), which changes the node's list. True: what the node has tried
/// last doesn't count.
template <class TServe>
bool ServeStop(const TChessboard& board, bool* pbStopped, TServe serve)
{
    TSolveRequest& request = *board.m_pRequest;
    const std::uint16_t nThreadId = ContextOf(board).m_nThreadId;
    const EStopCheck check = request.LookAtStop(nThreadId, board.m_nMoves);
    if (check == EStopCheck::GoOn)
        return false;
    *pbStopped = check == EStopCheck::GiveUp;
    if (*pbStopped)
        return true;
    const TEngineCommand command = request.GetCommand();
    if (command.m_pReport) {
        ReportMoves(board, command);
        return false;
    }
    serve(command);
    *pbStopped = !request.FinishCommand(nThreadId);
    return true;
}

} // namespace corvina

#endif
