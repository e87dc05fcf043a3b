#include "chess/movetext.h"
#include "chess/notation.h"

namespace corvina
{

TSquare String2Square(std::string_view strText)
{
    const TSquare square = strText.size() == 2 ? SquareAt(strText, 0) : NO_SQUARE;
    if (square == NO_SQUARE)
        throw ChessException("Error in String2Square() " + std::string(strText));
    return square;
}

std::string SquareToString(TSquare square, std::string_view strNone)
{
    if (square > 63)
        return std::string(strNone);
    return {static_cast<char>('A' + FileOf(square)), static_cast<char>('1' + RowOf(square))};
}

std::string FormatMove(const TMove& move, TFigure figure, bool bCapture)
{
    if (move.IsNull())
        return "-";
    if (move.m_from > 63 || move.m_to > 63)
        return {};
    const TFigure kind = figure & KIND_MASK;
    if (kind == KIND_KING && Abs(FileOf(move.m_to) - FileOf(move.m_from)) >= 2)
        return FileOf(move.m_to) == FileOf(TCastling<EColour::White>::SHORT_TO) ? "0-0" : "0-0-0";
    std::string strText;
    const TFigure promotion = move.PromotionKind();
    if (!promotion && kind != KIND_PAWN && kind != NO_FIGURE)
        strText += LetterFromFigure(kind);
    strText += SquareText(move.m_from) + (bCapture ? ':' : '-') + SquareText(move.m_to);
    if (promotion)
        strText += LetterFromFigure(promotion);
    return strText;
}

std::string PrintMove(const TMove& move, const TChessboard& board)
{
    if (move.m_from > 63 || move.m_to > 63)
        return FormatMove(move, NO_FIGURE, false);
    const TFigure figure = board.m_board[move.m_from];
    const bool bEnPassant =
        (figure & KIND_MASK) == KIND_PAWN && FileOf(move.m_from) != FileOf(move.m_to);
    return FormatMove(move, figure, board.m_board[move.m_to] != NO_FIGURE || bEnPassant);
}

} // namespace corvina
