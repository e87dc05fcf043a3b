#ifndef CORVINA_HEURISTICS_BLACKMOBILITY_H
#define CORVINA_HEURISTICS_BLACKMOBILITY_H

#include "chess/chessboard.h"

namespace corvina
{

/// What Black could play if it were his turn: with White to move, after a null move.
struct TBlackMobility
{
    TSquareSet m_figures = 0; ///< with a legal move; pawns and the king left out
    TSquareSet m_targets = 0; ///< squares to which these figures can go
    int m_nMoves = 0;         ///< legal moves of all men
    int m_nKingMoves = 0;
    int m_nQueenMoves = 0;
};

/// The record is left as it was; it needs no thread.
TBlackMobility FindBlackMobility(const TChessboard& board);

} // namespace corvina

#endif
