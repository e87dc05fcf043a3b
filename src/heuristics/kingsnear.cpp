#include "chess/squaresets.h"
#include "heuristics/kingblocks.h"
#include "heuristics/kingsurroundings.h"

namespace corvina
{
namespace
{

/// Only the White king's help is missing: White has no queen, or only one that no second joins at
/// once.
bool NeedsTheKing(const TChessboard& board)
{
    return board.m_nWhiteQueens == 0 ||
           (board.m_nWhiteQueens == 1 && WhiteFigures(board) == 1 && !WhitePawnPromotesNow(board));
}

int MovesLeft(const TChessboard& board)
{
    return (board.m_nMoves + 1) / 2;
}

bool IsKingInReach(const TBlackMove& move)
{
    return move.m_context.m_shAdditionalMoves + 1 + MovesLeft(move.m_board) >=
           KingDistance(move.m_board);
}

/// A pawn that is near enough to promote in the moves left has a legal move.
bool HasRunningPawn(const TChessboard& board, bool bMustMove)
{
    TSquareSet pawns = TSets::Equal(board.m_board, WHITE_PAWN);
    while (pawns) {
        const TSquare pawn = PopLowestSquare(pawns);
        if (7 - RowOf(pawn) > MovesLeft(board))
            continue;
        TMove aMoves[16 + MOVE_LIST_SLACK];
        const int nMoves = bMustMove ? board.GenerateWhiteFigureMoves(pawn, aMoves) : 0;
        if (!bMustMove || (nMoves > 0 && !board.IsPinnedToWhiteKing(FileOf(pawn), RowOf(pawn))))
            return true;
    }
    return false;
}

bool CanPromoteInTime(const TChessboard& board)
{
    constexpr int MIN_LINE_FIGURES = 2;
    if (!board.m_nWhitePawns || WhiteMajors(board) + board.m_nWhiteBishops < MIN_LINE_FIGURES)
        return false;
    const int nBlackMen = BlackFigures(board) + board.m_nBlackPawns;
    return nBlackMen <= 2 && HasRunningPawn(board, nBlackMen == 2);
}

/// The Black king on the edge above White's pawns, with enough guards of its squares.
bool IsInPocket(const TBlackMove& move)
{
    const int file = move.m_board.m_blackKingFile, row = move.m_board.m_blackKingRow;
    const int lowest = row < 6 ? 1 : row - 3;
    return move.m_nRing == 0 && row > 1 &&
           HasWhitePawnInBox(move.m_board, file - 1, lowest, file + 1, row - 1) &&
           CountKingGuards(move.m_board) > 2;
}

/// A queen mates a king in the corner that its own rook hems in.
bool IsHemmedInByRook(const TChessboard& board)
{
    if (!board.m_nWhiteQueens || board.m_nBlackRooks != 1 || BlackFigures(board) > 2 ||
        !IsBlackKingOnCorner(board))
        return false;
    const TSquareSet rook = TSets::Equal(board.m_board, BLACK_ROOK);
    return KingZone(board.BlackKing()) & rook;
}

} // namespace

EVerdict TestKingsNear(TBlackMove& move)
{
    if (move.m_parent.m_LastMove.PromotionKind() || IsKingInReach(move) ||
        !NeedsTheKing(move.m_board) || CanPromoteInTime(move.m_board) || IsInPocket(move) ||
        IsHemmedInByRook(move.m_board))
        return EVerdict::Passes;
    return move.CutUnlessMateInOne();
}

} // namespace corvina
