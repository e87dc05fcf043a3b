#include "search/enginecommand.h"

#include "search/solverequest.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace corvina
{
namespace
{

constexpr auto POLL = std::chrono::milliseconds(1);

/// False when the thread takes no commands.
bool PostWhenPossible(TSolveRequest& request, std::uint16_t nThread, const TEngineCommand& command)
{
    while (true) {
        const TStopBlock::EPost post = request.PostCommand(nThread, command);
        if (post != TStopBlock::EPost::NotYet)
            return post == TStopBlock::EPost::Posted;
        std::this_thread::sleep_for(POLL);
    }
}

/// The moves of the node, as the thread that works on it reports them.
TNodeMoves AskForMoves(TSolveRequest& request, std::uint16_t nThread, std::uint16_t nDepth)
{
    TNodeMoves node;
    TEngineCommand report;
    report.m_nSkipCommand = 0;
    report.m_pReport = &node;
    report.m_nReportDepth = nDepth;
    if (!PostWhenPossible(request, nThread, report))
        return node;
    while (request.IsReportWaiting(&node))
        std::this_thread::sleep_for(POLL);
    return node;
}

void Reorder(std::uint8_t nOrder, TMove* pMoves, int nMoves, int nIndex)
{
    if (nIndex + 1 >= nMoves)
        return;
    if (nOrder == ORDER_SWAP)
        std::swap(pMoves[nIndex], pMoves[nIndex + 1]);
    else if (nOrder == ORDER_LAST)
        std::rotate(pMoves + nIndex, pMoves + nIndex + 1, pMoves + nMoves);
}

} // namespace

ECommandSent SendEngineCommand(TSolveRequest& request, TEngineDialog& dialog, std::uint16_t nDepth,
                               std::uint16_t nThread, int nOrderCommand, int nSkipCommand)
{
    constexpr int MAX_SKIP = MAX_MOVES;
    if (!request.m_bManualControl)
        return ECommandSent::Off;
    TEngineCommand command;
    command.m_nCommandDepth = nDepth != MAX_HALFMOVES
                                  ? nDepth
                                  : static_cast<std::uint16_t>((request.m_nRequestedMoves + 1) / 2);
    command.m_nCommand = static_cast<std::uint8_t>(nOrderCommand);
    command.m_nSkipCommand = static_cast<std::uint8_t>(std::clamp(nSkipCommand, 0, MAX_SKIP));
    if (nSkipCommand < 1) {
        const TNodeMoves node = AskForMoves(request, nThread, command.m_nCommandDepth);
        if (node.m_nMoves == 0)
            return ECommandSent::NoThread;
        const std::optional<TMove> target = dialog.ChooseMove(node);
        if (!target)
            return ECommandSent::Cancelled;
        if (IsSameMove(*target, node.m_moves[node.m_nCurrent]))
            return ECommandSent::Unchanged;
        command.m_commandMove = *target;
    }
    return PostWhenPossible(request, nThread, command) ? ECommandSent::Sent
                                                       : ECommandSent::NoThread;
}

TServedList ServeOnWhiteList(const TEngineCommand& command, TMove* pMoves, int nMoves, int nIndex,
                             bool bGivenUp)
{
    int nNext = nIndex;
    if (bGivenUp && command.m_nCommand != ORDER_KEEP)
        Reorder(command.m_nCommand, pMoves, nMoves, nIndex);
    else if (bGivenUp)
        ++nNext;
    if (command.m_nSkipCommand > 1) {
        nNext = std::max(nIndex, std::min(nNext + command.m_nSkipCommand - 1, nMoves - 1));
    }
    else if (command.m_nSkipCommand == 0) {
        const TMove* pTarget =
            std::find_if(pMoves + nNext, pMoves + nMoves, [&](const TMove& move) {
                return IsSameMove(move, command.m_commandMove);
            });
        nNext = pTarget == pMoves + nMoves ? nIndex : static_cast<int>(pTarget - pMoves);
    }
    return {nNext, nNext - nIndex};
}

void ServeOnBlackList(const TEngineCommand& command, TMove* pMoves, int nMoves, int nIndex)
{
    // The mark belongs to the analysis that was given up.
    pMoves[nIndex].m_promotion &= static_cast<std::uint8_t>(~TMove::MARK);
    Reorder(command.m_nCommand, pMoves, nMoves, nIndex);
}

void ReportMoves(const TChessboard& board, const TEngineCommand& command)
{
    const TThreadContext& context = ContextOf(board);
    TNodeMoves node;
    for (const TChessboard* p = &board; p && node.m_nMoves == 0; p = p->m_pParent) {
        const TMove* pMoves = context.m_apMoves[p->m_nMoves];
        if (p->m_nMoves < command.m_nReportDepth || !pMoves)
            continue;
        node.m_board = *p;
        node.m_board.m_pParent = nullptr;
        node.m_board.m_pThread = nullptr;
        node.m_board.m_pRequest = nullptr;
        node.m_nMoves = context.m_anMoveCount[p->m_nMoves];
        node.m_nCurrent = context.m_anMoveIndex[p->m_nMoves];
        std::copy_n(pMoves, node.m_nMoves, node.m_moves.data());
    }
    board.m_pRequest->FinishCommand(context.m_nThreadId, &node);
}

} // namespace corvina
