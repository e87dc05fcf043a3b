#ifndef CORVINA_HEURISTICS_MATERIALTESTS_H
#define CORVINA_HEURISTICS_MATERIALTESTS_H

#include "heuristics/kingtests.h"

/// Tailored conditions of the heuristics about material and blocked figures. Each holds back a cut:
/// an answer of true lets the position through to the full search, and a wrong one costs time,
/// never a false answer. The position is that after Black's move, White to move, unless told
/// otherwise.

namespace corvina
{

/// Where a figure comes from.
struct TOrigin
{
    TSquare m_square;         ///< in the root position
    bool m_bPromoted = false; ///< it was a pawn there
};

/// The origin of the figure on the square. Rooks that have castled are not followed.
TOrigin OriginOf(const TChessboard& board, TSquare square);

/// White mates within so many half-moves by checks alone. Trades mates with a quiet move in them,
/// and those behind more than a few hundred positions, for a test that costs microseconds.
bool IsReplyMateLine(TChessboard& board, int nPlies);

/// The same with the capture of the figure that has just moved as White's first move, which need
/// not check.
bool IsReplyRecapture(TChessboard& board, int nPlies);

/// White has a check after which the figure on the square is attacked, and Black can't take the
/// figure that moved: it falls next. Trades forks that Black parries by a check of his own.
bool IsWonByCheck(const TChessboard& board, TSquare square);

/// Moves that the White pawn nearest to promotion with a free way needs; 8: there is none.
int MovesToPromotion(const TChessboard& board);

/// White can take a queen or rook of Black at once, without leaving his king in check.
bool CanTakeMajor(const TChessboard& board);

/// Black figures, pawns left out, can't go anywhere: nothing but the king and the pawns moves.
bool AreBlackFiguresShutIn(const TChessboard& board);

} // namespace corvina

#endif
