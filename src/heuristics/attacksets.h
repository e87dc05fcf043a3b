#ifndef CORVINA_HEURISTICS_ATTACKSETS_H
#define CORVINA_HEURISTICS_ATTACKSETS_H

#include "chess/lineattacks.h"
#include "chess/sides.h"

#include <bit>

/// Attacks of a whole side at once, and captures that are legal: what the tests of the heuristics
/// are built of.

namespace corvina
{

/// What a pawn, knight, bishop, rook, queen or king of side C attacks from the square.
template <EColour C>
TSquareSet AttacksOf(TFigure kind, int square, TSquareSet occupied)
{
    TSquareSet attacks = 0;
    if (kind == KIND_KNIGHT)
        return KnightJumps(square);
    if (kind == KIND_KING)
        return KingZone(square);
    if (kind == KIND_PAWN)
        return PawnAttacks(C, square);
    if (kind & KIND_BISHOP)
        attacks |= BishopAttacks(square, occupied);
    if (kind & KIND_ROOK)
        attacks |= RookAttacks(square, occupied);
    return attacks;
}

/// Squares that side C attacks, lines being shut by `occupied`; only figures on squares of
/// `present` count.
template <EColour C>
TSquareSet AttackedSquares(const TChessboard& b, TSquareSet occupied,
                           TSquareSet present = ALL_SQUARES)
{
    TSquareSet attacked = 0;
    TSquareSet figures = TSide<C>::Figures(b.m_board) & present;
    while (figures) {
        const TSquare from = PopLowestSquare(figures);
        attacked |= AttacksOf<C>(b.m_board[from] & KIND_MASK, from, occupied);
    }
    return attacked;
}

/// Side C, were it to move, can take the figure of the other side on the square without leaving its
/// own king in check. Captures en passant are left out.
template <EColour C>
bool CanCapture(const TChessboard& b, int square)
{
    using S = TSide<C>;
    const TSquareSet occupied = TSets::Occupied(b.m_board);
    TSquareSet attackers = AttackersOf<C>(b, occupied, square).All();
    while (attackers) {
        const TSquare from = PopLowestSquare(attackers);
        const int king = from == S::King(b) ? square : S::King(b);
        if (!IsAttackedBy<S::OTHER>(b, b.m_board, occupied & ~Bit(from), ~Bit(square), king))
            return true;
    }
    return false;
}

/// Squares next to the White king that he could go to as the board stands.
inline int CountKingSquares(const TChessboard& board)
{
    const TSquareSet occupied = TSets::Occupied(board.m_board) & ~Bit(board.WhiteKing());
    return std::popcount(KingZone(board.WhiteKing()) &
                         ~TSide<EColour::White>::Figures(board.m_board) &
                         ~AttackedSquares<EColour::Black>(board, occupied));
}

} // namespace corvina

#endif
