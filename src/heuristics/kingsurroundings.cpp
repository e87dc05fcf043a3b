#include "heuristics/kingsurroundings.h"

#include "heuristics/attacksets.h"

#include <algorithm>
#include <bit>

namespace corvina
{
namespace
{

using W = TSide<EColour::White>;
using B = TSide<EColour::Black>;

constexpr int QUEEN_VALUE = 9, ROOK_VALUE = 5, MINOR_VALUE = 3;

/// The squares of a rectangle that lie on the board.
TSquareSet Box(int x0, int y0, int x1, int y1)
{
    x0 = std::max(x0, 0);
    x1 = std::min(x1, 7);
    TSquareSet set = 0;
    for (int row = std::max(y0, 0); row <= std::min(y1, 7); ++row) {
        for (int file = x0; file <= x1; ++file)
            set |= Bit(MakeSquare(file, row));
    }
    return set;
}

} // namespace

int WhiteFigures(const TChessboard& board)
{
    return board.m_nWhiteQueens + board.m_nWhiteRooks + board.m_nWhiteBishops +
           board.m_nWhiteKnights;
}

int BlackFigures(const TChessboard& board)
{
    return board.m_nBlackQueens + board.m_nBlackRooks + board.m_nBlackBishops +
           board.m_nBlackKnights;
}

int WhiteMaterial(const TChessboard& board)
{
    return QUEEN_VALUE * board.m_nWhiteQueens + ROOK_VALUE * board.m_nWhiteRooks +
           MINOR_VALUE * (board.m_nWhiteBishops + board.m_nWhiteKnights) + board.m_nWhitePawns;
}

int BlackMaterial(const TChessboard& board)
{
    return QUEEN_VALUE * board.m_nBlackQueens + ROOK_VALUE * board.m_nBlackRooks +
           MINOR_VALUE * (board.m_nBlackBishops + board.m_nBlackKnights) + board.m_nBlackPawns;
}

int KingDistance(const TChessboard& board)
{
    return Distance(board.WhiteKing(), board.BlackKing());
}

TSquareSet FreeKingSquareSet(const TChessboard& board)
{
    const TSquare king = board.BlackKing();
    const TSquareSet open = KingZone(king) & ~B::Figures(board.m_board);
    if (!open)
        return 0;
    return open &
           ~AttackedSquares<EColour::White>(board, TSets::Occupied(board.m_board) & ~Bit(king));
}

int FreeKingSquares(const TChessboard& board)
{
    return std::popcount(FreeKingSquareSet(board));
}

bool HasBlackKingFlight(const TChessboard& board, int file, int row)
{
    const TSquare square = MakeSquare(file, row);
    const TSquareSet open =
        KingZone(square) & ~(B::Figures(board.m_board) & ~Bit(board.BlackKing()));
    if (!open)
        return false;
    // A figure on the square would have been taken by the king.
    const TSquareSet occupied =
        TSets::Occupied(board.m_board) & ~Bit(board.BlackKing()) & ~Bit(square);
    return open & ~AttackedSquares<EColour::White>(board, occupied, ~Bit(square));
}

int CountFlights(const TChessboard& board)
{
    const TSquareSet open = KingZone(board.BlackKing()) & ~B::Figures(board.m_board);
    if (!open)
        return 0;
    const TSquareSet flights =
        open & ~AttackedSquares<EColour::White>(board, TSets::Occupied(board.m_board));
    return std::min(std::popcount(flights), 2);
}

int BlackNeighbours(const TChessboard& board)
{
    return std::popcount(KingZone(board.BlackKing()) & B::Figures(board.m_board));
}

int CountBlackNear(const TChessboard& board, int nDistance)
{
    const int file = board.m_blackKingFile, row = board.m_blackKingRow;
    const TSquareSet box =
        Box(file - nDistance, row - nDistance, file + nDistance, row + nDistance);
    return std::popcount(box & B::Figures(board.m_board) & ~Bit(board.BlackKing()));
}

int CountKingGuards(const TChessboard& board)
{
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    const TSquareSet zone = KingZone(board.BlackKing());
    TSquareSet figures =
        W::Figures(board.m_board) & ~TSets::Equal(board.m_board, W::PAWN) & ~Bit(board.WhiteKing());
    int nGuards = KingDistance(board) == 2;
    while (figures) {
        const TSquare from = PopLowestSquare(figures);
        const TFigure kind = board.m_board[from] & KIND_MASK;
        nGuards += (AttacksOf<EColour::White>(kind, from, occupied) & zone) != 0;
    }
    return nGuards;
}

bool IsBlackKingWalledIn(const TChessboard& board)
{
    return !(KingZone(board.BlackKing()) & ~B::Figures(board.m_board));
}

bool IsBlackKingOnCorner(const TChessboard& board)
{
    return IsEdge(board.m_blackKingFile) && IsEdge(board.m_blackKingRow);
}

bool HasWhitePawnInBox(const TChessboard& board, int x0, int y0, int x1, int y1)
{
    return board.m_nWhitePawns && (Box(x0, y0, x1, y1) & TSets::Equal(board.m_board, W::PAWN));
}

} // namespace corvina
