#ifndef CORVINA_HEURISTICS_KINGSURROUNDINGS_H
#define CORVINA_HEURISTICS_KINGSURROUNDINGS_H

#include "chess/chessboard.h"

namespace corvina
{

/// What the heuristics ask of the Black king and the squares around it, and of the material. The
/// figures of a side are its queens, rooks, bishops and knights. None of these changes the record.

int WhiteFigures(const TChessboard& board);
int BlackFigures(const TChessboard& board);
inline int WhiteMajors(const TChessboard& board)
{
    return board.m_nWhiteQueens + board.m_nWhiteRooks;
}
inline int BlackMajors(const TChessboard& board)
{
    return board.m_nBlackQueens + board.m_nBlackRooks;
}

/// Queen 9, rook 5, bishop and knight 3, pawn 1.
int WhiteMaterial(const TChessboard& board);
int BlackMaterial(const TChessboard& board);

/// King moves between the kings.
int KingDistance(const TChessboard& board);

/// Squares next to the Black king that hold no Black figure and that White doesn't attack once the
/// king is off the board.
TSquareSet FreeKingSquareSet(const TChessboard& board);
int FreeKingSquares(const TChessboard& board);

/// A Black king on that square, taken off the board for the test, has such a square.
bool HasBlackKingFlight(const TChessboard& board, int file, int row);

/// The same squares with the king on the board; stops at 2.
int CountFlights(const TChessboard& board);

/// Black figures, pawns included, on the squares next to the Black king, and in the box of
/// nDistance squares around it.
int BlackNeighbours(const TChessboard& board);
int CountBlackNear(const TChessboard& board, int nDistance);

/// Distinct White figures, and the White king at distance 2, that attack a square next to the Black
/// king.
int CountKingGuards(const TChessboard& board);

/// All squares next to the Black king hold Black figures.
bool IsBlackKingWalledIn(const TChessboard& board);

bool IsBlackKingOnCorner(const TChessboard& board);

/// A White pawn on the sixth or seventh row, or one that Black's next move can't stop, can promote
/// without being lost. It respects pins to the White king, en passant and checks. White is to move.
bool WhitePawnCanPromote(const TChessboard& board);

/// The same of the pawn on this square, and of the pawns on the seventh row.
bool WhitePawnCanPromoteFrom(const TChessboard& board, TSquare pawn);
bool WhitePawnPromotesNow(const TChessboard& board);

/// A White pawn stands in the rectangle; its corners may lie outside of the board.
bool HasWhitePawnInBox(const TChessboard& board, int x0, int y0, int x1, int y1);

} // namespace corvina

#endif
