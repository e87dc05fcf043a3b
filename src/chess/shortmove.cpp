#include "chess/geometry.h"
#include "chess/movetext.h"
#include "chess/notation.h"
#include "chess/squaresets.h"

namespace corvina
{
namespace
{

/// A figure's letter as it is written in a short form: an English capital.
bool IsWrittenFigureLetter(char c)
{
    const std::optional<TFigure> kind = KindFromLetter(c);
    return kind && *kind != KIND_PAWN && LetterFromFigure(*kind) == c;
}

/// A text without the separators of the full form. A capture sign can stand behind the figure or
/// the file of a pawn ("N:d4", "e:d5"), and behind the part of the origin that tells two figures
/// apart ("Nb:d4", "R1:d4").
bool IsShortForm(std::string_view strText)
{
    if (strText.find('-') != std::string_view::npos)
        return false;
    const std::size_t nSign = strText.find(':');
    if (nSign == std::string_view::npos || nSign == 1)
        return true;
    return nSign == 2 && IsWrittenFigureLetter(strText[0]) &&
           (IsFileLetter(strText[1]) || IsRankDigit(strText[1]));
}

TSquareSet PawnOrigins(const TChessboard& board, EColour colour, TSquare to)
{
    const bool bWhite = colour == EColour::White;
    const int nForward = bWhite ? 8 : -8;
    const int behind = to - nForward;
    if (behind < 0 || behind > 63)
        return 0;
    const TFigure pawn = ColourBit(colour) | KIND_PAWN;
    const TSquareSet pawns = TSets::Equal(board.m_board, pawn);
    const TSquareSet diagonal = pawns & PawnAttacks(Opponent(colour), to);
    if (board.m_board[to] != NO_FIGURE)
        return diagonal;
    TSquareSet origins = pawns & Bit(behind);
    if (RowOf(to) == (bWhite ? 3 : 4) && board.m_board[behind] == NO_FIGURE)
        origins |= pawns & Bit(behind - nForward);
    if (RowOf(to) == (bWhite ? 5 : 2) && board.DoubleSteppedPawn() == behind)
        origins |= diagonal;
    return origins;
}

bool SliderReaches(const TChessboard& board, TFigure kind, TSquare from, TSquare to)
{
    const EDirection direction = DirectionTo(from, to);
    return direction != DIR_NONE && (kind & (IsDiagonal(direction) ? KIND_BISHOP : KIND_ROOK)) &&
           !(Between(from, to) & TSets::Occupied(board.m_board));
}

/// The destination of a pawn's capture told by two files ("ed"): the first row, seen from the
/// pawn's side, on which a pawn of the first file can capture a pawn on the second.
TSquare FindPawnCapture(const TChessboard& board, int file, int fileTo)
{
    const EColour colour = board.SideToMove();
    const bool bWhite = colour == EColour::White;
    const int nForward = bWhite ? 8 : -8;
    const TFigure pawn = ColourBit(colour) | KIND_PAWN;
    const TFigure taken = ColourBit(Opponent(colour)) | KIND_PAWN;
    for (int nRow = 1; nRow <= 5 && Abs(file - fileTo) == 1; ++nRow) {
        const int row = bWhite ? nRow : 7 - nRow;
        const TSquare beside = MakeSquare(fileTo, row);
        if (board.m_board[MakeSquare(file, row)] != pawn)
            continue;
        if (board.m_board[beside + nForward] == taken || board.DoubleSteppedPawn() == beside)
            return static_cast<TSquare>(beside + nForward);
    }
    return NO_SQUARE;
}

/// A short form taken apart.
struct TShortMove
{
    TFigure m_kind = 0;
    TSquare m_to = NO_SQUARE;
    char m_disambiguation = 0;
    std::string m_strPromotion;
};

/// Removes the blanks, the marks and the letter of a promotion from the end of a text.
std::string_view CutEnd(std::string_view strText, std::string& strPromotion)
{
    strText = TrimRight(strText);
    strText = strText.substr(0, strText.find_last_not_of("+x#") + 1);
    if (!strText.empty() && std::string_view("BNQR").find(strText.back()) != std::string_view::npos)
    {
        strPromotion = strText.back();
        strText.remove_suffix(1);
    }
    return strText;
}

std::optional<TShortMove> TakeApart(const TChessboard& board, std::string_view strText)
{
    if (strText.empty())
        return std::nullopt;
    TShortMove parts;
    parts.m_kind = KIND_PAWN;
    if (strText.size() != 2 && !IsFileLetter(strText.front())) {
        const std::optional<TFigure> kind = KindFromLetter(strText.front());
        if (!kind)
            return std::nullopt;
        parts.m_kind = *kind;
        strText.remove_prefix(1);
    }
    strText = CutEnd(strText, parts.m_strPromotion);
    if (strText.size() < 2)
        return std::nullopt;
    const std::string_view strTo = strText.substr(strText.size() - 2);
    strText.remove_suffix(2);
    if (strText.empty() && parts.m_kind == KIND_PAWN && IsFileLetter(strTo[0]) &&
        IsFileLetter(strTo[1]))
    {
        parts.m_to = FindPawnCapture(board, strTo[0] - 'a', strTo[1] - 'a');
        parts.m_disambiguation = strTo[0];
    }
    else {
        parts.m_to = SquareAt(strTo, 0);
    }
    if (parts.m_to == NO_SQUARE)
        return std::nullopt;
    if (!strText.empty() && (strText.back() == ':' || strText.back() == 'x'))
        strText.remove_suffix(1);
    if (!strText.empty() && (IsFileLetter(strText.back()) || IsRankDigit(strText.back())))
        parts.m_disambiguation = strText.back();
    return parts;
}

bool Agrees(TSquare square, char disambiguation)
{
    return IsFileLetter(disambiguation) ? FileOf(square) == disambiguation - 'a'
                                        : RowOf(square) == disambiguation - '1';
}

/// The part of the origin that tells a figure from the others that could have moved.
std::string OriginPart(TSquare from, TSquareSet others)
{
    if (!others)
        return {};
    const std::string strOrigin = SquareText(from);
    if (others & (others - 1))
        return strOrigin;
    return strOrigin.substr(FileOf(LowestSquare(others)) == FileOf(from) ? 1 : 0, 1);
}

} // namespace

TSquareSet CandidateOrigins(const TChessboard& board, TFigure figure, TSquare to)
{
    const TFigure kind = figure & KIND_MASK;
    if (kind == KIND_PAWN)
        return PawnOrigins(board, figure & COLOUR_WHITE ? EColour::White : EColour::Black, to);
    TSquareSet figures = TSets::Equal(board.m_board, figure);
    if (kind == KIND_KNIGHT)
        return figures & KnightJumps(to);
    TSquareSet origins = 0;
    while (figures) {
        const TSquare from = PopLowestSquare(figures);
        if (SliderReaches(board, kind, from, to))
            origins |= Bit(from);
    }
    return origins;
}

TSquare FindPosFrom(const TChessboard& board, TFigure figure, TSquare to, char disambiguation)
{
    const auto fail = [] { return ChessException("Error in FindPosFrom()"); };
    if (figure < COLOUR_WHITE)
        figure |= ColourBit(board.SideToMove());
    if (!IsFigure(figure) || to > 63)
        throw fail();
    if ((figure & KIND_MASK) == KIND_KING)
        return figure & COLOUR_WHITE ? board.WhiteKing() : board.BlackKing();
    TSquareSet candidates = CandidateOrigins(board, figure, to);
    if (std::popcount(candidates) > 1 && disambiguation) {
        TSquareSet agreeing = 0;
        while (candidates) {
            const TSquare from = PopLowestSquare(candidates);
            if (Agrees(from, disambiguation))
                agreeing |= Bit(from);
        }
        candidates = agreeing;
    }
    if (std::popcount(candidates) != 1)
        throw fail();
    return LowestSquare(candidates);
}

std::optional<std::string> ShortMoveToFull(const TChessboard& board, std::string_view strText)
{
    strText = TrimLeft(strText);
    if (!IsShortForm(strText))
        return std::nullopt;
    const std::optional<TShortMove> parts = TakeApart(board, strText);
    if (!parts)
        return std::nullopt;
    const TSquare from = FindPosFrom(board, parts->m_kind, parts->m_to, parts->m_disambiguation);
    std::string strFull;
    if (parts->m_kind != KIND_PAWN)
        strFull += LetterFromFigure(parts->m_kind);
    return strFull + SquareText(from) + '-' + SquareText(parts->m_to) + parts->m_strPromotion;
}

std::string GetShortMoveText(const TChessboard& board)
{
    const TChessboard& before = *board.m_pParent;
    const TMove& move = board.m_LastMove;
    if (move.IsNull())
        return "-";
    const TFigure figure = before.m_board[move.m_from];
    const TFigure kind = figure & KIND_MASK;
    const bool bPawn = kind == KIND_PAWN;
    if (kind == KIND_KING && Abs(FileOf(move.m_to) - FileOf(move.m_from)) >= 2)
        return FormatMove(move, kind, false);
    const TSquareSet others =
        kind == KIND_KING ? 0 : CandidateOrigins(before, figure, move.m_to) & ~Bit(move.m_from);

    const std::string strPart = OriginPart(move.m_from, others);
    const bool bCapture = before.m_board[move.m_to] != NO_FIGURE ||
                          (bPawn && FileOf(move.m_from) != FileOf(move.m_to));
    std::string strText;
    if (!bPawn)
        strText += LetterFromFigure(kind);
    strText += strPart;
    if (bCapture && bPawn && strPart.empty())
        strText += SquareText(move.m_from).front();
    else if (bCapture)
        strText += ':';
    else if (strPart.size() == 2)
        strText += '-';
    strText += SquareText(move.m_to);
    if (const TFigure promotion = move.PromotionKind())
        strText += LetterFromFigure(promotion);
    return strText;
}

} // namespace corvina
