#ifndef CORVINA_HEURISTICS_KEYFIGURE_H
#define CORVINA_HEURISTICS_KEYFIGURE_H

#include "chess/chessboard.h"

namespace corvina
{

/// A White line figure that pins a Black figure against its king, for good: the pinned figure
/// doesn't move along the line, the king has nowhere to go, and Black can't take the pinning one.
struct TKeyFigure
{
    TSquare m_square = NO_SQUARE; ///< of the White figure
    TSquare m_pinned = NO_SQUARE;

    bool IsFound() const { return m_square != NO_SQUARE; }
};

/// The only Black man between White's line figure on the square and the Black king, if it can't
/// move along that line; else NO_SQUARE.
TSquare FindPinnedFigure(const TChessboard& board, TSquare square);

TKeyFigure AnalyzeKeyWhiteFigure(const TChessboard& board);

/// The moves of the key figure that keep the pin, and their number: what White waits with. None
/// when the position has no key figure. pOut has the room of a TMoveList.
int GetKeyFigureMove(const TChessboard& board, TMove* pOut);

} // namespace corvina

#endif
