#include "heuristics/blackmobility.h"

#include "chess/sides.h"

namespace corvina
{
TBlackTurn::TBlackTurn(const TChessboard& board)
    : m_line(board.m_nMoves + 1), m_before(board), m_passed(board)
{
    m_passed.m_pParent = &m_before;
    m_passed.m_pThread = m_before.m_pThread = &m_line;
    if (board.IsWhiteToMove())
        m_passed.MakeWhiteNullMove();
    m_passed.m_nMoves = 2; // Black to move, whatever is left
}

TBlackMobility FindBlackMobility(const TChessboard& board)
{
    TBlackTurn turn(board);
    TBlackMobility mobility;
    TSquareSet men = TSide<EColour::Black>::Figures(turn.Board().m_board);
    while (men) {
        const TSquare from = PopLowestSquare(men);
        const TFigure kind = turn.Board().m_board[from] & KIND_MASK;
        turn.ForEachMove(from, [&](const TChessboard&, const TMove& move) {
            ++mobility.m_nMoves;
            mobility.m_nKingMoves += kind == KIND_KING;
            mobility.m_nQueenMoves += kind == KIND_QUEEN;
            if (kind != KIND_KING && kind != KIND_PAWN) {
                mobility.m_figures |= Bit(from);
                mobility.m_targets |= Bit(move.m_to);
            }
            return true;
        });
    }
    return mobility;
}

} // namespace corvina
