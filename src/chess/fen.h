#ifndef CORVINA_CHESS_FEN_H
#define CORVINA_CHESS_FEN_H

#include "chess/chessboard.h"

#include <string>

namespace corvina
{

/// Reads the board field of a FEN into a root record (its m_pParent is cleared) and scans it, with
/// the heuristics reset. English and Polish figure letters are read. The side to move and the
/// counters are not looked at: the stipulation of a problem tells them. False, with the record
/// unchanged, for a text that is no FEN; throws ChessException, also with the record unchanged, for
/// a board that ScanBoard rejects.
///
/// *pbCastlingDiffers: the board allows a castling that the text's castling field does not name;
/// never for a board field alone. *pbEnPassantGiven: the text names a square of a capture en
/// passant. Both may be null, and are written when the result is true.
bool ReadFen(TChessboard& board, const std::string& strText, bool* pbCastlingDiffers = nullptr,
             bool* pbEnPassantGiven = nullptr);

/// True when ReadFen reads the text. Throws nothing.
bool IsFen(const std::string& strText);

/// The FEN of a position: the board field alone or all six fields. The half-move clock isn't kept
/// and written as 0; moves are numbered from 1 at the root.
std::string WriteFen(const TChessboard& board, bool bBoardOnly);

} // namespace corvina

#endif
