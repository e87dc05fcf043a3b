#include "chess/sides.h"

namespace corvina
{
namespace
{

using B = TSide<EColour::Black>;
using W = TSide<EColour::White>;

/// White's figures by the way they attack, so that the squares around the king are tested against
/// sets that are read from the mailbox once.
struct TWhiteSets
{
    TSquareSet m_pawns, m_knights, m_diagonal, m_line;

    explicit TWhiteSets(const TChessboard& b)
        : m_pawns(TSets::Equal(b.m_board, W::PAWN)), m_knights(TSets::Equal(b.m_board, W::KNIGHT)),
          m_diagonal(TSets::Having(b.m_board, W::DIAGONAL_MASK)),
          m_line(TSets::Having(b.m_board, W::LINE_MASK))
    {
    }

    bool Attack(int square, TSquareSet occupied) const
    {
        return (m_pawns & PawnAttacks(EColour::Black, square)) ||
               (m_knights & KnightJumps(square)) ||
               AnyReaches(m_diagonal & g_geometry.m_aBishop[square], square, occupied) ||
               AnyReaches(m_line & g_geometry.m_aRook[square], square, occupied);
    }
};

/// The king has a square to go to. It is taken off the board meanwhile: a slider looks through it.
bool HasKingMove(const TChessboard& b, TSquareSet occupied)
{
    const TWhiteSets white(b);
    const TSquare king = b.BlackKing();
    const TSquareSet without = occupied & ~Bit(king);
    TSquareSet targets = KingZone(king) & ~B::Figures(b.m_board) & ~KingZone(b.WhiteKing());
    while (targets) {
        if (!white.Attack(PopLowestSquare(targets), without))
            return true;
    }
    return false;
}

bool CanCaptureChecker(const TChessboard& b, int checker, TSquareSet occupied)
{
    const TAttackers a = AttackersOf<EColour::Black>(b, occupied, checker);
    TSquareSet attackers = a.m_pawns | a.m_knights | a.m_diagonal | a.m_line;
    const TSquare king = b.BlackKing();
    while (attackers) {
        const TSquare from = PopLowestSquare(attackers);
        // A figure may capture along the line on which it is pinned.
        if (!IsPinnedTo<EColour::Black>(b, occupied, from) ||
            DirectionTo(king, from) == DirectionTo(king, checker))
            return true;
    }
    return false;
}

bool CanMoveTo(const TChessboard& b, int square, TSquareSet occupied)
{
    TSquareSet movers = MoversToSquare<EColour::Black>(b, occupied, square);
    while (movers) {
        if (!IsPinnedTo<EColour::Black>(b, occupied, PopLowestSquare(movers)))
            return true;
    }
    return false;
}

bool CanInterpose(const TChessboard& b, int checker, TSquareSet occupied)
{
    TSquareSet line = Between(b.BlackKing(), checker);
    while (line) {
        if (CanMoveTo(b, PopLowestSquare(line), occupied))
            return true;
    }
    return false;
}

bool CanCaptureEnPassant(const TChessboard& b, int checker, TSquareSet occupied)
{
    if (b.m_board[checker] != W::PAWN || b.DoubleSteppedPawn() != checker)
        return false;
    for (const int side : {-1, 1}) {
        if (!IsOnBoard(FileOf(checker) + side, 0) || b.m_board[checker + side] != B::PAWN)
            continue;
        const TSquareSet after =
            (occupied & ~Bit(checker) & ~Bit(checker + side)) | Bit(checker + B::FORWARD);
        if (!IsAttackedBy<EColour::White>(b, b.m_board, after, ~Bit(checker), b.BlackKing()))
            return true;
    }
    return false;
}

} // namespace

bool TChessboard::CanBlackEscapeCheck() const
{
    const TSquareSet occupied = TSets::Occupied(m_board);
    if (HasKingMove(*this, occupied))
        return true;
    if (m_blackChecker == DOUBLE_CHECK)
        return false;
    return CanCaptureChecker(*this, m_blackChecker, occupied) ||
           CanInterpose(*this, m_blackChecker, occupied) ||
           CanCaptureEnPassant(*this, m_blackChecker, occupied);
}

bool TChessboard::CanBlackMoveToSquare(TSquare square) const
{
    return CanMoveTo(*this, square, TSets::Occupied(m_board));
}

} // namespace corvina
