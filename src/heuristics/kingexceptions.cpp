#include "heuristics/kingexceptions.h"

#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"

namespace corvina
{

bool CapturedMoreThanStandingPawn(const TBlackMove& move)
{
    const TFigure captured = move.WhiteCapture();
    if (captured != BLACK_PAWN)
        return captured != NO_FIGURE;
    const TChessboard* pBefore = Ancestor(move.m_board, 4);
    if (!pBefore)
        pBefore = &move.m_board.GetRootBoard();
    return pBefore->m_board[move.m_parent.m_LastMove.m_to] != BLACK_PAWN;
}

bool AreMajorsHolding(const TBlackMove& move)
{
    if (!move.m_board.m_nWhiteQueens || WhiteMajors(move.m_board) <= 2)
        return false;
    const int nNear = CountMajorsNearKing(move.m_board);
    return nNear > 2 || (nNear == 2 && CountMajorsGuardingKing(move.m_board) > 1);
}

bool IsCheckShutInVain(const TBlackMove& move)
{
    const std::int8_t checker = move.m_parent.m_blackChecker;
    const TMove& last = move.m_board.m_LastMove;
    if (checker == NO_CHECK || checker == DOUBLE_CHECK || last.IsNull() || move.IsKingMove() ||
        last.m_to == checker || IsGuardedByBlackPawnOrKnight(move.m_board, last.m_to))
        return false;
    if (Distance(last.m_to, move.King()) > 1)
        return true;
    // Next to the king: is the figure guarded by another one, lines through the checker's square
    // included?
    TAttackers guards = AttackersOf<EColour::Black>(
        move.m_board, TSets::Occupied(move.m_board.m_board) & ~Bit(checker), last.m_to);
    guards.m_king = 0;
    return !guards.All();
}

} // namespace corvina
