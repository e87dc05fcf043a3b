#ifndef CORVINA_HEURISTICS_LASTMOVES_H
#define CORVINA_HEURISTICS_LASTMOVES_H

#include "chess/chessboard.h"

/// The latest moves of a line, as its records tell them.

namespace corvina
{

/// The record this many half-moves further up; null above the root.
inline const TChessboard* Ancestor(const TChessboard& board, int nPlies)
{
    const TChessboard* p = &board;
    while (p && nPlies-- > 0)
        p = p->m_pParent;
    return p;
}

/// What stood on the target of the last move: NO_FIGURE for a quiet move, a passing one and at a
/// root.
inline TFigure CapturedFigure(const TChessboard& board)
{
    return board.m_pParent && !board.m_LastMove.IsNull()
               ? board.m_pParent->m_board[board.m_LastMove.m_to]
               : NO_FIGURE;
}

/// The same of a record that may be missing.
inline TFigure CapturedFigure(const TChessboard* pBoard)
{
    return pBoard ? CapturedFigure(*pBoard) : NO_FIGURE;
}

constexpr bool IsAbovePawn(TFigure figure)
{
    return figure != NO_FIGURE && (figure & KIND_MASK) != KIND_PAWN;
}

constexpr bool IsMajor(TFigure figure)
{
    return figure & KIND_ROOK;
}

} // namespace corvina

#endif
