#ifndef CORVINA_SEARCH_MOVESAFETY_H
#define CORVINA_SEARCH_MOVESAFETY_H

#include "chess/sides.h"

namespace corvina
{

/// Can side C, who is to move, capture the figure that has just moved? That is: its king stands
/// next to it and it is not protected, another figure that is not pinned can take it, or a pawn can
/// take it en passant. A pinned figure counts as one that can't take, even along its line.
template <EColour C>
bool CanBeCapturedAtOnce(const TChessboard& child)
{
    using S = TSide<C>;
    const int square = child.m_LastMove.m_to;
    const TSquareSet occupied = TSets::Occupied(child.m_board);
    const TAttackers attackers = AttackersOf<C>(child, occupied, square);
    TSquareSet takers =
        attackers.m_pawns | attackers.m_knights | attackers.m_diagonal | attackers.m_line;
    if (child.DoubleSteppedPawn() == square) {
        for (const int side : {-1, 1}) {
            if (IsOnBoard(FileOf(square) + side, 0) && child.m_board[square + side] == S::PAWN)
                takers |= Bit(square + side);
        }
    }
    while (takers) {
        if (!IsPinnedTo<C>(child, occupied, PopLowestSquare(takers)))
            return true;
    }
    return attackers.m_king &&
           !IsAttackedBy<S::OTHER>(child, child.m_board, occupied & ~attackers.m_king, ALL_SQUARES,
                                   square);
}

} // namespace corvina

#endif
