#include "chess/matekind.h"

#include "chess/geometry.h"
#include "chess/notation.h"
#include "chess/squaresets.h"

namespace corvina
{
namespace
{

/// White men that attack a square.
TSquareSet WhiteAttackers(const TChessboard& board, TSquare square)
{
    // At most one attacker in each of eight directions and eight knights, two bytes each.
    std::int8_t aAttackers[2 * 16];
    std::uint8_t nCount = 0;
    board.GetBlackKingChecker(static_cast<std::int8_t>(FileOf(square)),
                              static_cast<std::int8_t>(RowOf(square)), aAttackers, &nCount);
    TSquareSet attackers = 0;
    for (int i = 0; i < nCount; ++i)
        attackers |= Bit(MakeSquare(aAttackers[2 * i], aAttackers[2 * i + 1]));
    return attackers;
}

/// The first man of a line that starts behind a square, seen from the king; empty for none.
TSquareSet FirstBeyond(TSquare king, TSquare square, TSquareSet occupied)
{
    TSquareSet line = RayBeyond(king, square) & occupied;
    while (line) {
        const TSquare man = PopLowestSquare(line);
        if (!(Between(square, man) & occupied))
            return Bit(man);
    }
    return 0;
}

/// Black men held by needed pins, and the White men that hold them.
struct TNeededPins
{
    TSquareSet m_pinned = 0;
    TSquareSet m_pinning = 0;
};

/// In a mate by a single check, a man that could answer the check but for its legality is pinned.
TNeededPins FindNeededPins(const TChessboard& board)
{
    TNeededPins pins;
    if (board.m_blackChecker == DOUBLE_CHECK)
        return pins;
    TMoveList list;
    const int nCount = board.GenerateBlackEvasions(list.data());
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    const TSquare king = board.BlackKing();
    for (int i = 0; i < nCount; ++i) {
        const TSquare from = list[i].m_from;
        if (from == king || !board.IsPinnedToBlackKing(static_cast<std::int8_t>(FileOf(from)),
                                                       static_cast<std::int8_t>(RowOf(from))))
            continue;
        pins.m_pinned |= Bit(from);
        pins.m_pinning |= FirstBeyond(king, from, occupied);
    }
    return pins;
}

/// One check, or two of which Black could answer either.
bool IsCheckPure(const TChessboard& board, TSquareSet checkers)
{
    if (board.m_blackChecker != DOUBLE_CHECK)
        return true;
    TChessboard single = board;
    while (checkers) {
        // The king has no square either way; what counts is a capture or a step between.
        single.m_blackChecker = static_cast<std::int8_t>(PopLowestSquare(checkers));
        if (!single.CanBlackEscapeCheck())
            return false;
    }
    return true;
}

/// What the field of the king tells.
struct TField
{
    bool m_bPure = true;
    TSquareSet m_guards = 0; ///< White men that guard a square without a Black man
};

TField LookAtField(const TChessboard& board, const TNeededPins& pins)
{
    TChessboard without = board;
    without.m_board[board.BlackKing()] = NO_FIGURE;
    TField field;
    TSquareSet squares = KingZone(board.BlackKing());
    while (squares) {
        const TSquare square = PopLowestSquare(squares);
        const TSquareSet guards = WhiteAttackers(without, square);
        if (board.m_board[square] & COLOUR_BLACK) {
            const bool bByPin = (pins.m_pinned & Bit(square)) && !(guards & ~pins.m_pinning);
            field.m_bPure &= !guards || (bByPin && std::has_single_bit(guards));
        }
        else {
            field.m_bPure &= std::has_single_bit(guards);
            field.m_guards |= guards;
        }
    }
    return field;
}

EMateKind ClassifyMate(const TChessboard& board)
{
    const TSquare king = board.BlackKing();
    const TSquareSet checkers = WhiteAttackers(board, king);
    const TNeededPins pins = FindNeededPins(board);
    const TField field = LookAtField(board, pins);
    if (!field.m_bPure || !IsCheckPure(board, checkers))
        return EMateKind::Mate;

    const TSquareSet white = TSets::Having(board.m_board, COLOUR_WHITE);
    const TSquareSet idleWhite = white & ~(checkers | field.m_guards | pins.m_pinning);
    const TSquareSet maybeIdle = TSets::Equal(board.m_board, WHITE_PAWN) | Bit(board.WhiteKing());
    if (idleWhite & ~maybeIdle)
        return EMateKind::Mate;
    const TSquareSet black = TSets::Having(board.m_board, COLOUR_BLACK) & ~Bit(king);
    const TSquareSet idleBlack = black & ~(KingZone(king) | pins.m_pinned);
    return idleWhite | idleBlack ? EMateKind::ModelMate : EMateKind::IdealMate;
}

} // namespace

EMateKind GetMateKind(const TChessboard& board)
{
    if (board.m_blackChecker != NO_CHECK)
        return board.CanBlackEscapeCheck() ? EMateKind::None : ClassifyMate(board);
    return HasLegalMove(board, EColour::Black) ? EMateKind::None : EMateKind::Stalemate;
}

} // namespace corvina
