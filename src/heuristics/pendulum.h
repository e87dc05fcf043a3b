#ifndef CORVINA_HEURISTICS_PENDULUM_H
#define CORVINA_HEURISTICS_PENDULUM_H

#include "heuristics/blackmobility.h"

namespace corvina
{

/// The figure, and the two squares between which it swings.
struct TPendulum
{
    TFigure m_figure = NO_FIGURE;
    TSquare m_here = NO_SQUARE, m_there = NO_SQUARE;

    bool IsFound() const { return m_figure != NO_FIGURE; }
};

/// The position with the pendulum's figure on its other square; the record has no line.
TChessboard Swung(const TChessboard& board, const TPendulum& pendulum);

/// The only figure that Black can move swings there and back, without check, and White can't take
/// it on either square; nothing when the Black king can move. *pMobility, if not null: what Black
/// can play.
TPendulum FindPendulum(const TChessboard& board, TBlackMobility* pMobility = nullptr);

} // namespace corvina

#endif
