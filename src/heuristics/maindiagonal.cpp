#include "heuristics/attacksets.h"
#include "heuristics/kingtailored.h"
#include "heuristics/materialblocks.h"
#include "heuristics/materialtests.h"

namespace corvina
{
namespace
{

constexpr TSquareSet RISING = 0x8040201008040201, FALLING = 0x0102040810204080;

TSquareSet DiagonalOf(TSquare square)
{
    return RISING & Bit(square) ? RISING : FALLING;
}

bool IsRuleInForce(const TChessboard& board)
{
    const TThreadContext& context = ContextOf(board);
    return context.m_diagonalFigureSquare != NO_KEY_SQUARE && context.m_bKingMustNotMove &&
           (board.m_nHeuristics & SH_KEEPKINGONTHEEDGE);
}

/// The figure of the rule has stepped off its diagonal.
bool HasLeft(const TBlackMove& move, TSquareSet diagonal)
{
    const TMove& last = move.m_board.m_LastMove;
    return !last.IsNull() && (diagonal & Bit(last.m_from)) && !(diagonal & Bit(last.m_to)) &&
           OriginOf(move.m_parent, last.m_from).m_square == move.m_context.m_diagonalFigureSquare;
}

} // namespace

EVerdict TestMainDiagonal(TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    if (!IsRuleInForce(board))
        return EVerdict::Passes;
    const TSquareSet diagonal = DiagonalOf(move.m_context.m_diagonalFigureSquare);
    const TSquare to = board.m_LastMove.m_to;
    if (HasLeft(move, diagonal) && !IsLoose(board, to))
        return move.CutUnless(IsMateInNet(move.m_board));
    if (move.BlackCapture() != WHITE_BISHOP || !(diagonal & Bit(to)))
        return EVerdict::Passes;
    if (!IsAttackedBy<EColour::White>(board, to))
        return EVerdict::Doubtful;
    return to != move.m_context.m_diagonalFigureSquare ? move.CutUnlessMateWithin(3)
                                                       : EVerdict::Passes;
}

bool IsMainDiagonalLeft(const TChessboard& child)
{
    const TMove& last = child.m_LastMove;
    if (!IsRuleInForce(child) || last.IsNull() || child.m_board[last.m_to] != WHITE_BISHOP)
        return false;
    const EDirection direction = DirectionTo(child.BlackKing(), last.m_from);
    return direction != DIR_NONE && IsDiagonal(direction) &&
           DirectionTo(child.BlackKing(), last.m_to) != direction;
}

} // namespace corvina
