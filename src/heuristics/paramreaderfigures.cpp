#include "chess/exception.h"
#include "chess/geometry.h"
#include "chess/squaresets.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/paramitems.h"
#include "heuristics/paramreader.h"
#include "heuristics/settext.h"

#include <algorithm>

/// Where the heuristics that name figures are read.

namespace corvina
{
namespace
{

bool HoldsBlackFigure(const TChessboard& board, int square)
{
    return (board.m_board[square] & COLOUR_BLACK) && board.m_board[square] != BLACK_KING;
}

} // namespace

void TParamReader::ReadUnblockList(std::string_view strParams)
{
    THeuristicsParams& p = m_set.m_params;
    std::vector<std::string_view> vecItems = ItemsOf(strParams);
    p.m_bUnblockOneSquare = !vecItems.empty() && IsText(vecItems.front(), TEXT_ONE_SQUARE);
    if (p.m_bUnblockOneSquare)
        vecItems.erase(vecItems.begin());
    if (vecItems.size() > MAX_UNBLOCK_FIGURES)
        Refuse(SH_DONTLETFIGUREUNBLOCK, strParams, "EFF and up to 8 squares");
    p.m_nUnblockFigures = 0;
    for (const std::string_view strItem : vecItems) {
        const auto square = SquareOf(strItem);
        if (!square)
            Refuse(SH_DONTLETFIGUREUNBLOCK, strItem, "EFF and up to 8 squares");
        std::int8_t* pEnd = p.m_unblockSquares + p.m_nUnblockFigures;
        if (std::find(p.m_unblockSquares, pEnd, *square) != pEnd ||
            (m_pBoard && !HoldsBlackFigure(*m_pBoard, *square)))
            throw ChessException("Improper square:" + std::to_string(p.m_nUnblockFigures + 1) +
                                 " Figure not let unblock #");
        *pEnd = static_cast<std::int8_t>(*square);
        p.m_unblockSquaresAtRoot[p.m_nUnblockFigures++] = *pEnd;
        p.m_bUnblockListHasPawn |= m_pBoard && m_pBoard->m_board[*square] == BLACK_PAWN;
    }
    p.m_bUnblockListSet = p.m_nUnblockFigures > 0;
}

void TParamReader::ReadDiagonal(std::string_view strParams)
{
    const auto square = SquareOf(strParams);
    const bool bOnDiagonal =
        square && (FileOf(*square) == RowOf(*square) || FileOf(*square) + RowOf(*square) == 7);
    if (!strParams.empty() && (!bOnDiagonal || (m_pBoard && !HoldsBlackFigure(*m_pBoard, *square))))
        throw ChessException("Improper field (Black figure not let leave main diagonal)");
    m_set.m_params.m_diagonalFigureSquare = square.value_or(NO_KEY_SQUARE);
}

void TParamReader::ReadKeyFigure(std::string_view strParams)
{
    if (strParams.empty())
        return;
    const auto square = SquareOf(strParams);
    if (!square || (m_pBoard && !((m_pBoard->m_board[*square] & COLOUR_WHITE) &&
                                  (m_pBoard->m_board[*square] & SLIDER_MASK))))
        throw ChessException("Invalid key white figure");
    m_set.m_params.m_keyFigureSquare = *square;
    if (m_pBoard)
        FindPinnedFigure(*square);
}

/// The only figure between the key figure and the Black king, on a line of the key figure; it can't
/// move along that line itself.
void TParamReader::FindPinnedFigure(int square)
{
    const TFigure figure = m_pBoard->m_board[square];
    const TSquare king = m_pBoard->BlackKing();
    const EDirection direction = DirectionTo(square, king);
    const bool bDiagonal = direction != DIR_NONE && IsDiagonal(direction);
    const bool bIsItsLine =
        direction != DIR_NONE && (figure & (bDiagonal ? KIND_BISHOP : KIND_ROOK));
    const TSquareSet between = Between(square, king) & TSets::Occupied(m_pBoard->m_board);
    const bool bOne = between && !(between & (between - 1));
    const TFigure pinned = bOne ? m_pBoard->m_board[LowestSquare(between) & 63] : NO_FIGURE;
    if (!bIsItsLine ||
        (pinned != BLACK_KNIGHT && pinned != (bDiagonal ? BLACK_ROOK : BLACK_BISHOP)))
        throw ChessException("Invalid key white figure (pinned piece not found)");
    m_set.m_params.m_pinnedFigureSquare = LowestSquare(between);
    m_set.m_params.m_bKeyFigureIsRook = figure == WHITE_ROOK;
}

} // namespace corvina
