#include "chess/geometry.h"
#include "chess/movetext.h"
#include "chess/notation.h"

namespace corvina
{
namespace
{

[[noreturn]] void ThrowImproper()
{
    throw ChessException("Improper move description");
}

[[noreturn]] void ThrowIllegal()
{
    throw ChessException("Illegal move");
}

/// Full forms only: a capture sign follows a rank digit.
void RejectShortForm(std::string_view strText)
{
    std::size_t nSign = strText.find(':');
    if (nSign == std::string_view::npos)
        nSign = strText.find('x');
    if (nSign == 0)
        ThrowImproper();
    if (strText.front() == '0')
        return;
    if (strText.size() < 5 || (nSign != std::string_view::npos && IsLetter(strText[nSign - 1])))
        throw ChessException("Short notation not supported.");
}

/// The figure that the text says is moving.
TFigure NamedKind(std::string_view strText, bool bCastling)
{
    if (bCastling)
        return KIND_KING;
    const bool bLetter = strText.size() >= 4 && IsLetter(strText[0]) && IsLetter(strText[1]);
    return bLetter ? FigureFromLetter(strText[0]) : KIND_PAWN;
}

bool Attacks(const TChessboard& board, TSquare from, TSquare to)
{
    // At most one attacker in each of eight directions and eight knights, two bytes each.
    std::int8_t aAttackers[2 * 16];
    std::uint8_t nCount = 0;
    const auto file = static_cast<std::int8_t>(FileOf(to));
    const auto row = static_cast<std::int8_t>(RowOf(to));
    if (board.IsWhiteToMove())
        board.GetBlackKingChecker(file, row, aAttackers, &nCount);
    else
        board.GetWhiteKingChecker(file, row, aAttackers, &nCount);
    for (int i = 0; i < nCount; ++i) {
        if (MakeSquare(aAttackers[2 * i], aAttackers[2 * i + 1]) == from)
            return true;
    }
    return false;
}

bool IsPawnStep(const TChessboard& board, const TMove& move)
{
    const bool bWhite = board.IsWhiteToMove();
    const int nForward = bWhite ? 8 : -8;
    const int nHomeRow = bWhite ? 1 : 6;
    if (board.m_board[move.m_to] != NO_FIGURE)
        return false;
    if (move.m_to == move.m_from + nForward)
        return true;
    return RowOf(move.m_from) == nHomeRow && move.m_to == move.m_from + 2 * nForward &&
           board.m_board[move.m_from + nForward] == NO_FIGURE;
}

/// The rules for pawns behind the mere reach of the destination.
void CheckPawnMove(const TChessboard& board, const TMove& move)
{
    const bool bWhite = board.IsWhiteToMove();
    const int passed = move.m_to - (bWhite ? 8 : -8);
    if (FileOf(move.m_from) != FileOf(move.m_to) && board.m_board[move.m_to] == NO_FIGURE &&
        board.DoubleSteppedPawn() != passed)
        ThrowIllegal();
    const bool bLastRow = RowOf(move.m_to) == (bWhite ? 7 : 0);
    if (bLastRow != (move.PromotionKind() != 0))
        ThrowIllegal();
}

/// Castling as the generator of moves sees it: rights, empty squares, attacked squares.
bool IsCastlingGenerated(const TChessboard& board, const TMove& move)
{
    TMoveList list;
    const int nCount = board.IsWhiteToMove()
                           ? board.GenerateWhiteFigureMoves(move.m_from, list.data())
                           : board.GenerateBlackFigureMoves(move.m_from, list.data());
    for (int i = 0; i < nCount; ++i) {
        if (IsSameMove(list[i], move))
            return true;
    }
    return false;
}

/// A move other than castling by a figure of this kind: the rules of the kind, checks apart.
void CheckFigureMove(const TChessboard& board, const TMove& move, TFigure kind)
{
    const bool bPawn = kind == KIND_PAWN;
    if (!Attacks(board, move.m_from, move.m_to) && !(bPawn && IsPawnStep(board, move)))
        ThrowIllegal();
    if (bPawn)
        CheckPawnMove(board, move);
    else if (move.PromotionKind())
        ThrowIllegal();
}

} // namespace

std::optional<TFigure> KindFromLetter(char letter)
{
    try {
        return FigureFromLetter(letter);
    }
    catch (const ChessException&) {
        return std::nullopt;
    }
}

std::optional<TMove> CastlingFromText(std::string_view strText, bool bWhite)
{
    if (strText != "0-0" && strText != "0-0-0")
        return std::nullopt;
    using K = TCastling<EColour::White>;
    const TSquare row = bWhite ? 0 : TCastling<EColour::Black>::ROW;
    TMove move{};
    move.m_from = static_cast<TSquare>(K::KING + row);
    move.m_to = static_cast<TSquare>((strText.size() == 3 ? K::SHORT_TO : K::LONG_TO) + row);
    return move;
}

TMove ParseFullMove(std::string_view strText, bool bWhite)
{
    constexpr const char* pImproper = "Improper full description of move";
    strText = Trim(strText);
    if (strText.empty())
        throw ChessException("Empty string");
    if (const std::optional<TMove> castling = CastlingFromText(strText, bWhite))
        return *castling;
    TMove move{};
    if (IsPromotionLetter(strText.back())) {
        move.m_promotion = FigureFromLetter(strText.back());
        if (!IsPromotionKind(move.m_promotion))
            throw ChessException(pImproper);
        strText.remove_suffix(1);
    }
    if (strText.size() == 6)
        strText.remove_prefix(1);
    if (strText.size() != 5)
        throw ChessException("Improper string length");
    move.m_from = SquareAt(strText, 0);
    move.m_to = SquareAt(strText, 3);
    if (move.m_from == NO_SQUARE || move.m_to == NO_SQUARE)
        throw ChessException(pImproper);
    return move;
}

TMove ParseMove(const TChessboard& board, std::string_view strText)
{
    strText = Trim(strText);
    if (strText.empty())
        throw ChessException("Empty string");
    RejectShortForm(strText);
    const bool bWhite = board.IsWhiteToMove();
    TMove move = ParseFullMove(strText, bWhite);

    const bool bCastling = CastlingFromText(strText, bWhite).has_value();
    const TFigure kind = NamedKind(strText, bCastling);
    const TFigure colour = ColourBit(board.SideToMove());
    if (board.m_board[move.m_from] != (colour | kind) || (board.m_board[move.m_to] & colour))
        ThrowImproper();
    if (!bCastling)
        CheckFigureMove(board, move, kind);
    else if (!IsCastlingGenerated(board, move))
        ThrowIllegal();
    if (board.m_nMoves != 0 && !TryMove(board, &move))
        ThrowIllegal();
    return move;
}

} // namespace corvina
