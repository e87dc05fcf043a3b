#ifndef CORVINA_HEURISTICS_BLACKMOBILITY_H
#define CORVINA_HEURISTICS_BLACKMOBILITY_H

#include "chess/linecontext.h"

namespace corvina
{

/// The position with Black to move: with White to move, after a null move. Legal moves can be made
/// from it, by MakeBlackUserMove.
class TBlackTurn
{
public:
    explicit TBlackTurn(const TChessboard& board);
    TBlackTurn(const TBlackTurn&) = delete;
    TBlackTurn& operator=(const TBlackTurn&) = delete;

    const TChessboard& Board() const { return m_passed; }

    /// Calls visit(const TChessboard& child, const TMove& move) for the legal moves of the figure,
    /// until it answers false.
    template <class TVisit>
    void ForEachMove(TSquare from, TVisit visit)
    {
        TMoveList moves;
        const int nMoves = m_passed.GenerateBlackFigureMoves(from, moves.data());
        for (int i = 0; i < nMoves; ++i) {
            TChessboard child = m_passed;
            child.m_pParent = &m_passed;
            if (child.MakeBlackUserMove(&moves[i]) && !visit(child, moves[i]))
                return;
        }
    }

private:
    TLineContext m_line;
    TChessboard m_before, m_passed;
};

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
