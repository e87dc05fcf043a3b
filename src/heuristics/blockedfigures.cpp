#include "heuristics/blockedfigures.h"

#include "chess/sides.h"
#include "heuristics/attacksets.h"
#include "heuristics/blackmobility.h"

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

bool HasSafeMove(TBlackTurn& turn, TSquare from)
{
    bool bSafe = false;
    turn.ForEachMove(from, [&](const TChessboard& child, const TMove& move) {
        bSafe = !IsLostOn(child, move.m_to);
        return !bSafe;
    });
    return bSafe;
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
    TBlackTurn turn(board);
    TBlockedFigures blocked;
    TSquareSet men = B::Figures(board.m_board) & ~Bit(board.BlackKing());
    while (men) {
        const TSquare from = PopLowestSquare(men);
        if (!HasSafeMove(turn, from))
            GroupOf(blocked, board.m_board[from] & KIND_MASK) |= Bit(from);
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
