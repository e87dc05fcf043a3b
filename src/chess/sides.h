#ifndef CORVINA_CHESS_SIDES_H
#define CORVINA_CHESS_SIDES_H

#include "chess/chessboard.h"
#include "chess/geometry.h"
#include "chess/squaresets.h"

/// The members of a record by colour, and the attack tests of both colours as one template: what
/// the generators, the make-move operations and the mate test are built of.

namespace corvina
{

template <EColour C>
struct TSide
{
    static constexpr EColour OTHER = Opponent(C);
    static constexpr bool IS_WHITE = C == EColour::White;
    static constexpr TFigure BIT = ColourBit(C);
    static constexpr TFigure KING = BIT | KIND_KING;
    static constexpr TFigure PAWN = BIT | KIND_PAWN;
    static constexpr TFigure ROOK = BIT | KIND_ROOK;
    static constexpr TFigure KNIGHT = BIT | KIND_KNIGHT;
    static constexpr TFigure DIAGONAL_MASK = BIT | KIND_BISHOP; ///< bishops and queens have it all
    static constexpr TFigure LINE_MASK = BIT | KIND_ROOK;       ///< rooks and queens have it all

    static constexpr int FORWARD = IS_WHITE ? 8 : -8;
    static constexpr int HOME_ROW = IS_WHITE ? 1 : 6;       ///< of the pawns
    static constexpr int LAST_ROW = IS_WHITE ? 7 : 0;       ///< where pawns promote
    static constexpr int EN_PASSANT_ROW = IS_WHITE ? 4 : 3; ///< from which pawns capture so

    static TSquare King(const TChessboard& b) { return IS_WHITE ? b.WhiteKing() : b.BlackKing(); }
    static std::int8_t Checker(const TChessboard& b)
    {
        return IS_WHITE ? b.m_whiteChecker : b.m_blackChecker;
    }
    static std::int8_t& Checker(TChessboard& b)
    {
        return IS_WHITE ? b.m_whiteChecker : b.m_blackChecker;
    }
    static std::uint8_t Queens(const TChessboard& b)
    {
        return IS_WHITE ? b.m_nWhiteQueens : b.m_nBlackQueens;
    }
    static std::uint8_t Rooks(const TChessboard& b)
    {
        return IS_WHITE ? b.m_nWhiteRooks : b.m_nBlackRooks;
    }
    static std::uint8_t Bishops(const TChessboard& b)
    {
        return IS_WHITE ? b.m_nWhiteBishops : b.m_nBlackBishops;
    }
    static std::uint8_t Knights(const TChessboard& b)
    {
        return IS_WHITE ? b.m_nWhiteKnights : b.m_nBlackKnights;
    }
    static std::uint8_t& Pawns(TChessboard& b)
    {
        return IS_WHITE ? b.m_nWhitePawns : b.m_nBlackPawns;
    }
    static bool HasDiagonalSlider(const TChessboard& b) { return Queens(b) + Bishops(b) != 0; }
    static bool HasLineSlider(const TChessboard& b) { return Queens(b) + Rooks(b) != 0; }

    /// Figures of this side on a mailbox.
    static TSquareSet Figures(const std::uint8_t* pBoard) { return TSets::Having(pBoard, BIT); }

    /// Sliders of this side that move along `direction`; empty without a look at the mailbox when
    /// the counts of the record show that there are none.
    static TSquareSet Sliders(const TChessboard& b, const std::uint8_t* pBoard,
                              EDirection direction)
    {
        if (IsDiagonal(direction))
            return HasDiagonalSlider(b) ? TSets::Having(pBoard, DIAGONAL_MASK) : 0;
        return HasLineSlider(b) ? TSets::Having(pBoard, LINE_MASK) : 0;
    }
};

/// One of the sliders reaches the square: nothing of `occupied` stands between.
inline bool AnyReaches(TSquareSet sliders, int square, TSquareSet occupied)
{
    while (sliders) {
        if (!(Between(square, PopLowestSquare(sliders)) & occupied))
            return true;
    }
    return false;
}

/// Those of the sliders that reach the square.
inline TSquareSet Reaching(TSquareSet sliders, int square, TSquareSet occupied)
{
    TSquareSet found = 0;
    while (sliders) {
        const TSquare from = PopLowestSquare(sliders);
        if (!(Between(square, from) & occupied))
            found |= Bit(from);
    }
    return found;
}

/// Does side C attack the square, with the figures of the mailbox pBoard that stand on squares of
/// `present`, lines being shut by `occupied`? The mailbox may be that of the position before a
/// move, with the two sets telling what the move has changed; the counts are those of the record.
template <EColour C>
bool IsAttackedBy(const TChessboard& counts, const std::uint8_t* pBoard, TSquareSet occupied,
                  TSquareSet present, int square)
{
    using S = TSide<C>;
    if (KingZone(square) & Bit(S::King(counts)))
        return true;
    // A pawn of C attacks the square from where a pawn of the other side on it would attack.
    if (TSets::Equal(pBoard, S::PAWN) & PawnAttacks(S::OTHER, square) & present)
        return true;
    if (S::Knights(counts) && (TSets::Equal(pBoard, S::KNIGHT) & KnightJumps(square) & present))
        return true;
    if (S::HasDiagonalSlider(counts)) {
        const TSquareSet sliders = TSets::Having(pBoard, S::DIAGONAL_MASK) & present;
        if (AnyReaches(sliders & g_geometry.m_aBishop[square], square, occupied))
            return true;
    }
    if (S::HasLineSlider(counts)) {
        const TSquareSet sliders = TSets::Having(pBoard, S::LINE_MASK) & present;
        if (AnyReaches(sliders & g_geometry.m_aRook[square], square, occupied))
            return true;
    }
    return false;
}

constexpr TSquareSet ALL_SQUARES = ~TSquareSet{0};

/// Does side C attack the square, with the board as it stands?
template <EColour C>
bool IsAttackedBy(const TChessboard& b, int square)
{
    return IsAttackedBy<C>(b, b.m_board, TSets::Occupied(b.m_board), ALL_SQUARES, square);
}

/// The attackers of a square, class by class in the order in which they are listed.
struct TAttackers
{
    TSquareSet m_king, m_pawns, m_knights, m_diagonal, m_line;

    TSquareSet All() const { return m_king | m_pawns | m_knights | m_diagonal | m_line; }
};

template <EColour C>
TAttackers AttackersOf(const TChessboard& b, TSquareSet occupied, int square)
{
    using S = TSide<C>;
    TAttackers a{};
    a.m_king = KingZone(square) & Bit(S::King(b));
    a.m_pawns = TSets::Equal(b.m_board, S::PAWN) & PawnAttacks(S::OTHER, square);
    if (S::Knights(b))
        a.m_knights = TSets::Equal(b.m_board, S::KNIGHT) & KnightJumps(square);
    if (S::HasDiagonalSlider(b))
        a.m_diagonal =
            Reaching(TSets::Having(b.m_board, S::DIAGONAL_MASK) & g_geometry.m_aBishop[square],
                     square, occupied);
    if (S::HasLineSlider(b))
        a.m_line = Reaching(TSets::Having(b.m_board, S::LINE_MASK) & g_geometry.m_aRook[square],
                            square, occupied);
    return a;
}

/// Would the figure of side C on `square`, if taken away, open a line to its own king?
template <EColour C>
bool IsPinnedTo(const TChessboard& b, TSquareSet occupied, int square)
{
    using S = TSide<C>;
    using O = TSide<S::OTHER>;
    const TSquare king = S::King(b);
    const EDirection direction = DirectionTo(king, square);
    if (direction == DIR_NONE || (Between(king, square) & occupied))
        return false;
    const TSquareSet sliders = O::Sliders(b, b.m_board, direction) & Ray(direction, square);
    return sliders && AnyReaches(sliders, square, occupied);
}

/// Figures of side C, kings left out, that can move to the empty square, pawn steps included.
template <EColour C>
TSquareSet MoversToSquare(const TChessboard& b, TSquareSet occupied, int square)
{
    using S = TSide<C>;
    const TAttackers a = AttackersOf<C>(b, occupied, square);
    TSquareSet movers = a.m_knights | a.m_diagonal | a.m_line;
    const int behind = square - S::FORWARD;
    if (behind < 8 || behind > 55)
        return movers;
    if (b.m_board[behind] == S::PAWN)
        return movers | Bit(behind);
    const int home = behind - S::FORWARD;
    if (RowOf(home) == S::HOME_ROW && b.m_board[behind] == NO_FIGURE && b.m_board[home] == S::PAWN)
        movers |= Bit(home);
    return movers;
}

} // namespace corvina

#endif
