#include "chess/fen.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>
#include <string_view>

namespace corvina
{
namespace
{

/// The figure that a letter of a FEN stands for: capitals are White's.
std::optional<TFigure> FigureOfFenLetter(char c)
{
    const bool bWhite = c >= 'A' && c <= 'Z';
    if (!bWhite && !(c >= 'a' && c <= 'z'))
        return std::nullopt;
    try {
        return (bWhite ? COLOUR_WHITE : COLOUR_BLACK) | FigureFromLetter(c);
    }
    catch (const ChessException&) {
        return std::nullopt;
    }
}

/// Fills the eight squares of a rank, which must be clear; false unless the text adds up to eight.
bool ReadRank(std::string_view strRank, std::uint8_t* pRank)
{
    int file = 0;
    for (const char c : strRank) {
        if (file == 8)
            return false;
        if (c >= '1' && c <= '8') {
            file += c - '0';
            if (file > 8)
                return false;
            continue;
        }
        const std::optional<TFigure> figure = FigureOfFenLetter(c);
        if (!figure)
            return false;
        pRank[file++] = *figure;
    }
    return file == 8;
}

/// Fills 64 clear squares from the eight ranks of a board field.
bool ReadBoardField(std::string_view strField, std::uint8_t* pBoard)
{
    // A text with a brace is no FEN but the list of pieces of other tools.
    if (strField.find('/') == std::string_view::npos ||
        strField.find('{') != std::string_view::npos)
        return false;
    for (int row = 7; row >= 0; --row) {
        const std::size_t nEnd = strField.find('/');
        const bool bLast = nEnd == std::string_view::npos;
        if (bLast != (row == 0) || !ReadRank(strField.substr(0, nEnd), pBoard + row * 8))
            return false;
        if (!bLast)
            strField.remove_prefix(nEnd + 1);
    }
    return true;
}

/// The fields behind the board field.
struct TFenRest
{
    bool m_bWhiteShort, m_bWhiteLong, m_bBlackShort, m_bBlackLong;
    bool m_bEnPassant;
};

/// The text from the first blank on, which is empty for a board field alone: then every castling
/// counts as named.
TFenRest ReadRest(std::string_view strRest)
{
    if (strRest.empty())
        return {true, true, true, true, false};
    const auto has = [strRest](char c) { return strRest.find(c) != std::string_view::npos; };
    const auto skip = [&strRest](bool bBlanks) {
        const std::size_t n = bBlanks ? strRest.find_first_not_of(' ') : strRest.find(' ');
        strRest.remove_prefix(std::min(n, strRest.size()));
    };
    TFenRest rest{has('K'), has('Q'), has('k'), has('q'), false};
    for (const bool bBlanks : {true, false, true, false, true})
        skip(bBlanks);
    rest.m_bEnPassant = !strRest.empty() && strRest.front() != '-';
    return rest;
}

bool AllowsMoreCastlings(const TChessboard& board, const TFenRest& rest)
{
    const int nWhite = board.GetCastlingRights(true);
    const int nBlack = board.GetCastlingRights(false);
    return ((nWhite & CASTLING_SHORT) && !rest.m_bWhiteShort) ||
           ((nWhite & CASTLING_LONG) && !rest.m_bWhiteLong) ||
           ((nBlack & CASTLING_SHORT) && !rest.m_bBlackShort) ||
           ((nBlack & CASTLING_LONG) && !rest.m_bBlackLong);
}

std::string WriteBoardField(const TChessboard& board)
{
    std::string strField;
    for (int row = 7; row >= 0; --row) {
        int nEmpty = 0;
        const auto flush = [&] {
            if (nEmpty)
                strField += static_cast<char>('0' + nEmpty);
            nEmpty = 0;
        };
        for (int file = 0; file < 8; ++file) {
            const TFigure figure = board.m_board[MakeSquare(file, row)];
            if (figure == NO_FIGURE) {
                ++nEmpty;
                continue;
            }
            flush();
            const char letter = LetterFromFigure(figure);
            strField += figure & COLOUR_BLACK ? static_cast<char>(letter - 'A' + 'a') : letter;
        }
        flush();
        if (row)
            strField += '/';
    }
    return strField;
}

std::string WriteCastlingField(const TChessboard& board)
{
    const int nWhite = board.GetCastlingRights(true);
    const int nBlack = board.GetCastlingRights(false);
    std::string strField;
    if (nWhite & CASTLING_SHORT)
        strField += 'K';
    if (nWhite & CASTLING_LONG)
        strField += 'Q';
    if (nBlack & CASTLING_SHORT)
        strField += 'k';
    if (nBlack & CASTLING_LONG)
        strField += 'q';
    return strField.empty() ? "-" : strField;
}

/// The square that the pawn of the last move has passed.
std::string WriteEnPassantField(const TChessboard& board)
{
    const TSquare pawn = board.DoubleSteppedPawn();
    if (pawn == NO_SQUARE)
        return "-";
    const int passed = (pawn + board.m_LastMove.m_from) / 2;
    return {static_cast<char>('a' + FileOf(passed)), static_cast<char>('1' + RowOf(passed))};
}

} // namespace

bool ReadFen(TChessboard& board, const std::string& strText, bool* pbCastlingDiffers,
             bool* pbEnPassantGiven)
{
    const std::string_view strAll = strText;
    const std::size_t nField = std::min(strAll.find(' '), strAll.size());
    // A root of its own while it is read, whatever line the receiver belongs to.
    TChessboard scratch = board;
    scratch.m_pThread = nullptr;
    scratch.m_pParent = nullptr;
    scratch.m_LastMove = TMove();
    std::memset(scratch.m_board, 0, sizeof scratch.m_board);
    if (!ReadBoardField(strAll.substr(0, nField), scratch.m_board))
        return false;
    scratch.ScanBoard(true);

    const TFenRest rest = ReadRest(strAll.substr(nField));
    if (pbCastlingDiffers)
        *pbCastlingDiffers = AllowsMoreCastlings(scratch, rest);
    if (pbEnPassantGiven)
        *pbEnPassantGiven = rest.m_bEnPassant;
    scratch.m_pThread = board.m_pThread;
    board = scratch;
    return true;
}

bool IsFen(const std::string& strText)
{
    try {
        TChessboard scratch;
        return ReadFen(scratch, strText);
    }
    catch (const ChessException&) {
        return false;
    }
}

std::string WriteFen(const TChessboard& board, bool bBoardOnly)
{
    std::string strFen = WriteBoardField(board);
    if (bBoardOnly)
        return strFen;
    const int nMoveNumber = (board.m_nInitialMoves - board.m_nMoves) / 2 + 1;
    strFen += board.IsWhiteToMove() ? " w " : " b ";
    strFen += WriteCastlingField(board) + ' ' + WriteEnPassantField(board);
    return strFen + " 0 " + std::to_string(nMoveNumber);
}

} // namespace corvina
