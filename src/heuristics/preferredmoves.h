#ifndef CORVINA_HEURISTICS_PREFERREDMOVES_H
#define CORVINA_HEURISTICS_PREFERREDMOVES_H

#include "chess/chessboard.h"

#include <array>

namespace corvina
{

/// Moves of White that a pattern of the root position asks for, one per origin: the full sort puts
/// them first. They change the order of moves only.
class TPreferredMoves
{
public:
    void Clear() { m_aMoves = {}; }

    /// blackKing: the move is preferred with the Black king on this square only; NO_SQUARE: with
    /// him anywhere. The first entry of an origin stays.
    void Add(TSquare from, TFigure figure, TSquare to, TSquare blackKing = NO_SQUARE)
    {
        TEntry& entry = m_aMoves[from];
        if (entry.m_figure == NO_FIGURE)
            entry = {figure, to, blackKing};
    }

    bool Contains(const TChessboard& board, const TMove& move) const
    {
        const TEntry& entry = m_aMoves[move.m_from];
        return entry.m_figure != NO_FIGURE && entry.m_to == move.m_to &&
               board.m_board[move.m_from] == entry.m_figure &&
               (entry.m_blackKing == NO_SQUARE || entry.m_blackKing == board.BlackKing());
    }

private:
    struct TEntry
    {
        TFigure m_figure = NO_FIGURE;
        TSquare m_to = 0;
        TSquare m_blackKing = NO_SQUARE;
    };

    std::array<TEntry, 64> m_aMoves{};
};

} // namespace corvina

#endif
