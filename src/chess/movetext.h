#ifndef CORVINA_CHESS_MOVETEXT_H
#define CORVINA_CHESS_MOVETEXT_H

#include "chess/chessboard.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

/// Characters of move texts: what the readers of the full and the short form share. Texts come from
/// users, so that nothing here reads beyond a text or depends on a locale.

namespace corvina
{

constexpr bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool IsFileLetter(char c)
{
    return c >= 'a' && c <= 'h';
}

constexpr bool IsRankDigit(char c)
{
    return c >= '1' && c <= '8';
}

/// The square named by the two characters at nPos, with the file in either case; NO_SQUARE when
/// they are no square or lie behind the end.
constexpr TSquare SquareAt(std::string_view strText, std::size_t nPos)
{
    if (strText.size() < 2 || nPos > strText.size() - 2)
        return NO_SQUARE;
    const char file = strText[nPos];
    const char row = strText[nPos + 1];
    if (!IsRankDigit(row))
        return NO_SQUARE;
    if (IsFileLetter(file))
        return MakeSquare(file - 'a', row - '1');
    return file >= 'A' && file <= 'H' ? MakeSquare(file - 'A', row - '1') : NO_SQUARE;
}

/// A square in lower case, as moves are written.
inline std::string SquareText(int square)
{
    return {static_cast<char>('a' + FileOf(square)), static_cast<char>('1' + RowOf(square))};
}

/// A letter behind the destination that may stand for the figure of a promotion. A file letter in
/// lower case doesn't, although some are also letters of figures.
constexpr bool IsPromotionLetter(char c)
{
    return IsLetter(c) && !IsFileLetter(c);
}

/// True for the kinds that a pawn can become.
constexpr bool IsPromotionKind(TFigure kind)
{
    return std::find(std::begin(g_aPromotionKinds), std::end(g_aPromotionKinds), kind) !=
           std::end(g_aPromotionKinds);
}

/// The kind that FigureFromLetter gives, or none for another character.
std::optional<TFigure> KindFromLetter(char letter);

constexpr std::string_view TrimLeft(std::string_view strText)
{
    strText.remove_prefix(std::min(strText.find_first_not_of(' '), strText.size()));
    return strText;
}

constexpr std::string_view TrimRight(std::string_view strText)
{
    return strText.substr(0, strText.find_last_not_of(' ') + 1);
}

constexpr std::string_view Trim(std::string_view strText)
{
    return TrimLeft(TrimRight(strText));
}

/// The squares of a castling told as "0-0" or "0-0-0", or none for another text.
std::optional<TMove> CastlingFromText(std::string_view strText, bool bWhite);

/// Squares with a figure of this kind and colour from where it could go to `to` if pins and checks
/// didn't matter. For figures other than kings; en passant included.
TSquareSet CandidateOrigins(const TChessboard& board, TFigure figure, TSquare to);

} // namespace corvina

#endif
