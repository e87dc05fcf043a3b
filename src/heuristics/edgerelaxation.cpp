#include "heuristics/edgerelaxation.h"

#include "heuristics/kingsurroundings.h"

#include <algorithm>
#include <bit>

namespace corvina
{
namespace
{

int RootBalance(const TSolveRequest& request)
{
    return request.m_nRootWhiteFigures - request.m_nRootBlackFigures;
}

/// The deferral ends at the promotion of a pawn: White's most advanced one gets there in time.
bool CanPawnChangeBalance(const TBlackMove& move)
{
    const TSquareSet pawns =
        move.m_board.m_nWhitePawns ? TSets::Equal(move.m_board.m_board, WHITE_PAWN) : 0;
    const int row = pawns ? RowOf(63 - std::countl_zero(pawns)) : -1;
    return pawns && 7 - move.m_context.m_nDeferMoves <= row;
}

bool HasBlackMaterialToWin(const TBlackMove& move)
{
    return BlackFigures(move.m_board) ||
           (move.m_context.m_bEdgeRelaxCountPawns && move.m_board.m_nBlackPawns);
}

} // namespace

int BalanceGain(const TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const TMove& last = board.m_LastMove;
    const int nFalling = last.PromotionKind() && IsLoose(board, last.m_to);
    int nGain =
        WhiteFigures(board) - (BlackFigures(board) - nFalling) - RootBalance(move.m_request);
    if (move.m_context.m_bEdgeRelaxCountPawns)
        nGain += board.m_nWhitePawns - board.m_nBlackPawns -
                 (move.m_request.m_nRootWhitePawns - move.m_request.m_nRootBlackPawns);
    return nGain;
}

bool IsBalanceWon(const TBlackMove& move, int nGain)
{
    return move.m_context.m_nEdgeRelaxCaptures && nGain >= move.m_context.m_nEdgeRelaxCaptures;
}

bool CanDefer(const TBlackMove& move)
{
    return move.m_context.m_nDeferMoves && move.m_context.m_nEdgeRelaxCaptures;
}

EVerdict Defer(const TBlackMove& move)
{
    TThreadContext& context = move.m_context;
    if (context.m_bSkipDeferIfNoChange && !HasBlackMaterialToWin(move) &&
        !CanPawnChangeBalance(move))
        return EVerdict::Doubtful;
    if (move.m_pMove) {
        move.m_pMove->m_promotion |= TMove::MARK;
        context.m_nDeferDeadline = static_cast<std::uint16_t>(
            std::max(1, move.m_board.m_nMoves - 2 * context.m_nDeferMoves));
    }
    return EVerdict::Passes;
}

EVerdict TestDeferred(const TBlackMove& move)
{
    return move.m_board.m_nMoves < move.m_context.m_nDeferDeadline ? EVerdict::Doubtful
                                                                   : EVerdict::Passes;
}

bool IsFigureBalanceBetter(const TBlackMove& move)
{
    return WhiteFigures(move.m_board) - BlackFigures(move.m_board) > RootBalance(move.m_request);
}

} // namespace corvina
