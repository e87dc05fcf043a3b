#ifndef CORVINA_HEURISTICS_BLOCKEDFIGURES_H
#define CORVINA_HEURISTICS_BLOCKEDFIGURES_H

#include "chess/chessboard.h"

#include <bit>

namespace corvina
{

/// Black's men, the king left out, without a move that leaves them where White can't win them: by
/// kind.
struct TBlockedFigures
{
    TSquareSet m_queens = 0, m_rooks = 0, m_bishops = 0, m_knights = 0, m_pawns = 0;

    TSquareSet Figures() const { return m_queens | m_rooks | m_bishops | m_knights; }
    TSquareSet All() const { return Figures() | m_pawns; }
    int CountFigures() const { return std::popcount(Figures()); }
};

/// With White to move as well: what Black could play if it were his turn.
TBlockedFigures FindBlockedFigures(const TChessboard& board);

/// No Black pawn can come through to promote: each is stopped by a man in front of it, or White
/// attacks its way. With a Black king that hardly moves, such pawns may step as they like.
bool CanBlackPawnsWalkInVain(const TChessboard& board);

} // namespace corvina

#endif
