#include "heuristics/blockedfigures.h"

#include "chess/linecontext.h"
#include "chess/sides.h"
#include "heuristics/attacksets.h"

namespace corvina
{
namespace
{

using B = TSide<EColour::Black>;

/// What an exchange of the figure counts.
int ValueOf(TFigure kind)
{
    switch (kind) {
    case KIND_QUEEN:
        return 9;
    case KIND_ROOK:
        return 5;
    case KIND_PAWN:
        return 1;
    case KIND_KING:
        return 10;
    default:
        return 3;
    }
}

/// White wins material by taking the figure that has come to the square.
bool IsLostOn(const TChessboard& board, int square)
{
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    TSquareSet attackers = AttackersOf<EColour::White>(board, occupied, square).All();
    if (!attackers)
        return false;
    if (!IsAttackedBy<EColour::Black>(board, square))
        return true;
    const int nValue = ValueOf(board.m_board[square] & KIND_MASK);
    while (attackers) {
        if (ValueOf(board.m_board[PopLowestSquare(attackers)] & KIND_MASK) < nValue)
            return true;
    }
    return false;
}

bool HasSafeMove(const TChessboard& passed, TSquare from)
{
    TMoveList moves;
    const int nMoves = passed.GenerateBlackFigureMoves(from, moves.data());
    for (int i = 0; i < nMoves; ++i) {
        TChessboard child = passed;
        child.m_pParent = const_cast<TChessboard*>(&passed);
        if (child.MakeBlackUserMove(&moves[i]) && !IsLostOn(child, moves[i].m_to))
            return true;
    }
    return false;
}

TSquareSet& GroupOf(TBlockedFigures& blocked, TFigure kind)
{
    switch (kind) {
    case KIND_QUEEN:
        return blocked.m_queens;
    case KIND_ROOK:
        return blocked.m_rooks;
    case KIND_BISHOP:
        return blocked.m_bishops;
    case KIND_KNIGHT:
        return blocked.m_knights;
    default:
        return blocked.m_pawns;
    }
}

} // namespace

TBlockedFigures FindBlockedFigures(const TChessboard& board)
{
    TLineContext line(board.m_nMoves + 1);
    TChessboard before = board, passed = board;
    passed.m_pParent = &before;
    passed.m_pThread = before.m_pThread = &line;
    if (board.IsWhiteToMove())
        passed.MakeWhiteNullMove();
    passed.m_nMoves = 2; // Black to move, whatever is left
    TBlockedFigures blocked;
    TSquareSet men = B::Figures(passed.m_board) & ~Bit(passed.BlackKing());
    while (men) {
        const TSquare from = PopLowestSquare(men);
        if (!HasSafeMove(passed, from))
            GroupOf(blocked, passed.m_board[from] & KIND_MASK) |= Bit(from);
    }
    return blocked;
}

bool CanBlackPawnsWalkInVain(const TChessboard& board)
{
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    TSquareSet pawns = board.m_nBlackPawns ? TSets::Equal(board.m_board, BLACK_PAWN) : 0;
    while (pawns) {
        const TSquareSet way = Ray(DIR_DOWN, PopLowestSquare(pawns));
        if (!(way & occupied) && !(way & AttackedSquares<EColour::White>(board, occupied)))
            return false;
    }
    return true;
}

} // namespace corvina
