#ifndef CORVINA_HEURISTICS_RELAXPREDICATES_H
#define CORVINA_HEURISTICS_RELAXPREDICATES_H

#include "chess/chessboard.h"

namespace corvina
{

/// What the relaxation asks of a root position beyond the surroundings of the Black king. These
/// only choose the next set of heuristics; they look at the board as it stands and try no moves.
/// The figures of a side are its queens, rooks, bishops and knights.

bool IsBlackKingOnEdge(const TChessboard& board);

/// A Black pawn can step forward or take something.
bool CanBlackPawnsMove(const TChessboard& board);

/// Every Black figure is held to its file: it has no move to another one, or is pinned.
bool AreBlackFiguresTiedToFiles(const TChessboard& board);

/// A Black figure can give check with its next move.
bool CanBlackFigureCheck(const TChessboard& board);

/// None of Black's men but pawns can come to a square next to the Black king.
bool OnlyPawnsReachBlackKing(const TChessboard& board);

/// Black figures that guard a square next to their king to which a White queen can go.
int CountDefendersOfQueenSquares(const TChessboard& board);

/// A single rook next to the Black king stands between a lone White queen and the king's squares,
/// and were the rook to move she would guard the square that it leaves.
bool CanQueenKeepGuard(const TChessboard& board);

/// A White pawn has none of Black's men before it on its file.
bool HasFreeWhitePawn(const TChessboard& board);

/// A White figure guards a square next to the Black king on the side of the board's middle.
bool CoversEdge(const TChessboard& board);

/// A Black king in the corner has no square to go to, and one of his own men shuts him in.
bool IsClosedCorner(const TChessboard& board);

/// A White king in the corner has no move.
bool IsWhiteKingShutIn(const TChessboard& board);

/// White has less material than Black, whose men bear on three squares next to the White king.
bool IsWhiteKingInDanger(const TChessboard& board);

/// There is time for quiet play, and no figure of White bears on the Black king's squares yet.
bool HasLongQuietLines(const TChessboard& board);

/// Squares in the box of nDistance around the Black king, his own left out, that hold none of
/// Black's men and that White doesn't attack once the king is off the board.
int CountFreeInBox(const TChessboard& board, int nDistance);

} // namespace corvina

#endif
