#include "search/plainsearch.h"

#include "heuristics/onecolour.h"
#include "search/ordering.h"
#include "search/solverequest.h"

namespace corvina
{

std::int8_t PlainSearchWhite(TChessboard& board)
{
    TThreadContext& context = ContextOf(board);
    if (board.m_pRequest->IsStopped(context.m_nThreadId))
        return 0;
    TMoveList moves;
    const int nMoves = board.GenerateWhiteMoves(moves.data());
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = context.MakeChild(board);
        if (!child.MakeWhiteMove(&moves[i]))
            continue;
        ++context.m_nPositions;
        if (PlainSearchBlack(child) == 1)
            return 1;
    }
    return 0;
}

std::int8_t PlainSearchBlack(TChessboard& board)
{
    if (board.m_nMoves == 0)
        return board.m_blackChecker != NO_CHECK && !board.CanBlackEscapeCheck();
    TThreadContext& context = ContextOf(board);
    TMoveList moves;
    const int nMoves = board.GenerateBlackMoves(moves.data());
    TKiller& killer = context.m_aBlackKillers[board.m_nMoves];
    BringKillerToFront(board, killer, moves.data(), nMoves);
    bool bHasReply = false;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = context.MakeChild(board);
        if (!child.MakeBlackMove(&moves[i]))
            continue;
        ++context.m_nPositions;
        bHasReply |= CountsAsReply(board, moves[i]);
        if (PlainSearchWhite(child) != 1) {
            killer = {moves[i], board.m_board[moves[i].m_from]};
            return 0;
        }
    }
    return bHasReply || board.m_blackChecker != NO_CHECK;
}

} // namespace corvina
