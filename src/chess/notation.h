#ifndef CORVINA_CHESS_NOTATION_H
#define CORVINA_CHESS_NOTATION_H

#include "chess/chessboard.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// Moves as text. The full form names both ends of a move: "Bc1-a3", "Ne2:d4", "e2-e4", "c7-c8Q",
/// "0-0", "0-0-0", and "-" for a null move. The short form names the origin only as far as it must:
/// "Ba3", "N:d4", "e4", "ed5", "Nb:d2". Figures are read by their English and Polish letters and
/// written by the English ones. Every function takes the position before the move; the side that
/// moves is told by its m_nMoves.

namespace corvina
{

/// A square from a file letter in either case and a rank digit. Throws ChessException
/// "Error in String2Square() " and the text.
TSquare String2Square(std::string_view strText);

/// The file as a capital letter and the rank ("E4"), or strNone for a byte that is no square.
std::string SquareToString(TSquare square, std::string_view strNone = {});

// The full form (moveformat.cpp, moveparse.cpp)

/// The full form of a move by this figure, of either colour or none. Empty for a square off the
/// board.
std::string FormatMove(const TMove& move, TFigure figure, bool bCapture);

/// The same, with the figure and the capture taken from the position.
std::string PrintMove(const TMove& move, const TChessboard& board);

/// Reads a full form without a look at a position; bWhite tells the row of castling. Throws
/// ChessException "Empty string", "Improper string length", "Improper full description of move" or
/// "Unknown figure letter: ".
TMove ParseFullMove(std::string_view strText, bool bWhite);

/// Reads a full form and validates it. Throws ChessException as ParseFullMove does, and "Improper
/// move description" when the text doesn't fit the position, "Illegal move", "Short notation not
/// supported.". With no half-moves left a move that exposes its own king is not found out.
TMove ParseMove(const TChessboard& board, std::string_view strText);

// The short form (shortmove.cpp)

/// The full form for a short form; none when the text isn't in short form or names no square.
/// Throws as FindPosFrom does.
std::optional<std::string> ShortMoveToFull(const TChessboard& board, std::string_view strText);

/// The square of the only figure of a kind that can go to `to`, pins not being looked at; a figure
/// without a colour is one of the side to move. A file letter or rank digit decides between several
/// candidates; 0 for none. Throws ChessException "Error in FindPosFrom()" for no or several
/// candidates.
TSquare FindPosFrom(const TChessboard& board, TFigure figure, TSquare to, char disambiguation = 0);

/// The short form of the move that led to a record, which must have a parent.
std::string GetShortMoveText(const TChessboard& board);

// Moves of users (playmoves.cpp)

/// A move that the generators could have written is legal: it doesn't expose its own king. Writes
/// m_bEnPassant of the move. The line is left alone.
bool TryMove(const TChessboard& board, TMove* pMove);

/// The move is legal. The line is left alone.
bool IsMoveLegal(const TChessboard& board, TMove move);

/// The side has a legal move.
bool HasLegalMove(const TChessboard& board, EColour colour);

/// Told of a move that has been made, and -1.
using TMoveCallback = std::function<void(const TMove& move, int nResult)>;

/// Makes a move that is told in full or short form on the next record of the stack of the board's
/// thread, which must have room for all half-moves that the board has left. Null
/// when the text has not the form of a move or no half-moves are left. Throws ChessException for a
/// text that has the form of a move but not of one that the position allows: "Invalid move in
/// MakeMove() : " and the text, or as FindPosFrom does.
TChessboard* MakeMove(TChessboard& board, std::string_view strText,
                      const TMoveCallback& callback = {});

/// Makes the moves of a numbered line ("1. e4 e5 2. Nf3"); numbers may be left out. Returns the
/// last record. Null for a text that is no line of moves; throws as MakeMove does. In both cases
/// the records of the line that the moves had overwritten are restored.
TChessboard* PlayMoves(TChessboard& board, std::string_view strText,
                       const TMoveCallback& callback = {});

} // namespace corvina

#endif
