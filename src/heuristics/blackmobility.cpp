#include "heuristics/blackmobility.h"

#include "chess/linecontext.h"
#include "chess/sides.h"

namespace corvina
{
namespace
{

void AddMovesOf(TSquare from, const TChessboard& board, TBlackMobility& mobility)
{
    TMoveList moves;
    const int nMoves = board.GenerateBlackFigureMoves(from, moves.data());
    const TFigure kind = board.m_board[from] & KIND_MASK;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard child = board;
        child.m_pParent = const_cast<TChessboard*>(&board);
        if (!child.MakeBlackUserMove(&moves[i]))
            continue;
        ++mobility.m_nMoves;
        mobility.m_nKingMoves += kind == KIND_KING;
        mobility.m_nQueenMoves += kind == KIND_QUEEN;
        if (kind != KIND_KING && kind != KIND_PAWN) {
            mobility.m_figures |= Bit(from);
            mobility.m_targets |= Bit(moves[i].m_to);
        }
    }
}

} // namespace

TBlackMobility FindBlackMobility(const TChessboard& board)
{
    TLineContext line(board.m_nMoves + 1);
    TChessboard before = board, passed = board;
    passed.m_pParent = &before;
    passed.m_pThread = before.m_pThread = &line;
    if (board.IsWhiteToMove())
        passed.MakeWhiteNullMove();
    passed.m_nMoves = 2; // Black to move, whatever is left
    TBlackMobility mobility;
    TSquareSet men = TSide<EColour::Black>::Figures(passed.m_board);
    while (men)
        AddMovesOf(PopLowestSquare(men), passed, mobility);
    return mobility;
}

} // namespace corvina
