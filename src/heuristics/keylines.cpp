#include "heuristics/materialblocks.h"

namespace corvina
{
namespace
{

/// The squares lie on one diagonal with both ends of the key diagonal, or are those ends.
bool IsOnKeyDiagonal(const TBlackMove& move, TSquare square)
{
    const TSquare a = move.m_context.m_keyDiagonal[0], b = move.m_context.m_keyDiagonal[1];
    if (a == NO_KEY_SQUARE || b == NO_KEY_SQUARE)
        return false;
    const EDirection direction = DirectionTo(a, b);
    if (direction == DIR_NONE || !IsDiagonal(direction))
        return false;
    const TSquareSet line = Ray(direction, a) | Ray(DirectionTo(b, a), b) | Bit(a) | Bit(b);
    return line & Bit(square);
}

TFigure MovedKind(const TBlackMove& move)
{
    return move.m_parent.m_board[move.m_board.m_LastMove.m_from] & KIND_MASK;
}

} // namespace

EVerdict TestKeyLine(TBlackMove& move)
{
    const TMove& last = move.m_board.m_LastMove;
    const bool bAlong = !last.IsNull() && FileOf(last.m_from) == move.m_context.m_keyLine &&
                        FileOf(last.m_to) == move.m_context.m_keyLine;
    const TFigure kind = MovedKind(move);
    return bAlong && (kind == KIND_ROOK || kind == KIND_QUEEN) ? EVerdict::Doubtful
                                                               : EVerdict::Passes;
}

EVerdict TestKeyDiagonal(TBlackMove& move)
{
    const TMove& last = move.m_board.m_LastMove;
    const TFigure kind = MovedKind(move);
    const bool bCut = !last.IsNull() && (kind == KIND_BISHOP || kind == KIND_QUEEN) &&
                      IsOnKeyDiagonal(move, last.m_from) && IsOnKeyDiagonal(move, last.m_to);
    return bCut ? EVerdict::Doubtful : EVerdict::Passes;
}

} // namespace corvina
