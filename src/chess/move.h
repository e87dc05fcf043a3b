#ifndef CORVINA_CHESS_MOVE_H
#define CORVINA_CHESS_MOVE_H

#include "chess/square.h"

#include <bit>
#include <cstdint>

namespace corvina
{

/// A move. Castling is told by the king's move over two files; a move with equal ends is a null
/// move. Without initial values, so that a list of moves costs nothing to set up.
struct alignas(4) TMove
{
    static constexpr std::uint8_t PROMOTION_MASK = 0x1F; ///< kind of the promoted figure, or 0
    static constexpr std::uint8_t MARK = 0x20;           ///< set on a move by the heuristics

    std::uint8_t m_from;
    std::uint8_t m_to;
    std::uint8_t m_promotion;  ///< PROMOTION_MASK and MARK
    std::uint8_t m_bEnPassant; ///< 1 for a capture en passant; written when the move is made

    TFigure PromotionKind() const { return m_promotion & PROMOTION_MASK; }
    bool IsNull() const { return m_from == m_to; }
};
static_assert(sizeof(TMove) == 4);

/// The same move: marks and the en-passant byte do not count.
constexpr bool IsSameMove(const TMove& a, const TMove& b)
{
    return a.m_from == b.m_from && a.m_to == b.m_to &&
           ((a.m_promotion ^ b.m_promotion) & TMove::PROMOTION_MASK) == 0;
}

/// Origin and destination as one number, for the comparison with a fixed move.
constexpr unsigned FromTo(TSquare from, TSquare to)
{
    return from | unsigned{to} << 8;
}

constexpr unsigned FromTo(const TMove& move)
{
    return FromTo(move.m_from, move.m_to);
}

/// Castling by the king's ends, for each colour.
template <EColour C>
struct TCastling
{
    static constexpr TSquare ROW = C == EColour::White ? 0 : 56;
    static constexpr TSquare KING = ROW + 4;
    static constexpr TSquare SHORT_TO = ROW + 6;
    static constexpr TSquare SHORT_CROSSED = ROW + 5;
    static constexpr TSquare SHORT_CORNER = ROW + 7;
    static constexpr TSquare LONG_TO = ROW + 2;
    static constexpr TSquare LONG_CROSSED = ROW + 3;
    static constexpr TSquare LONG_CORNER = ROW;
    static constexpr TSquareSet SHORT_EMPTY = Bit(SHORT_CROSSED) | Bit(SHORT_TO);
    static constexpr TSquareSet LONG_EMPTY = Bit(LONG_CROSSED) | Bit(LONG_TO) | Bit(ROW + 1);
};

/// Room for every pseudo-legal move of a position in which neither side has more figures than the
/// rules of the game allow (218 is the most that is known). A generator writes whole vectors, so
/// that up to MOVE_LIST_SLACK entries behind the last move may be overwritten.
constexpr int MAX_MOVES = 255;
constexpr int MOVE_LIST_SLACK = 33;

struct TMoveList
{
    TMove m_aMoves[MAX_MOVES + 1 + MOVE_LIST_SLACK];

    TMove* data() { return m_aMoves; }
    TMove& operator[](int i) { return m_aMoves[i]; }
    const TMove& operator[](int i) const { return m_aMoves[i]; }
};

} // namespace corvina

#endif
