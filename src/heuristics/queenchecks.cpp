#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/materialblocks.h"

namespace corvina
{
namespace
{

/// Black's queen checks, and it did so with its move before.
bool IsSecondCheck(const TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const TChessboard* pBefore = move.m_pGrandparent;
    return board.m_whiteChecker != NO_CHECK && !board.m_LastMove.IsNull() &&
           board.m_board[board.m_LastMove.m_to] == BLACK_QUEEN && pBefore && pBefore->m_pParent &&
           (pBefore->m_whiteChecker == board.m_LastMove.m_from ||
            pBefore->m_whiteChecker == DOUBLE_CHECK);
}

bool IsEdgeStep(const TMove& move)
{
    const int file = FileOf(move.m_to), row = RowOf(move.m_to);
    const bool bEdge = file == 0 || file == 7 || row == 0 || row == 7;
    return bEdge && (KingZone(move.m_to) & Bit(move.m_from));
}

bool IsThirdCheck(const TBlackMove& move)
{
    const TChessboard* pEarlier = Ancestor(*move.m_pGrandparent, 2);
    return pEarlier && pEarlier->m_whiteChecker != NO_CHECK;
}

} // namespace

EVerdict TestQueenChecks(TBlackMove& move)
{
    constexpr int FAR_KINGS = 3;
    const TChessboard& board = move.m_board;
    const TSquare to = board.m_LastMove.m_to;
    if (!IsSecondCheck(move) || IsEdgeStep(board.m_LastMove))
        return EVerdict::Passes;
    if ((board.m_nWhiteQueens >= 2 || KingDistance(board) < FAR_KINGS) && !IsThirdCheck(move))
        return EVerdict::Passes;
    const bool bCanTake = CanCapture<EColour::White>(board, to);
    if (bCanTake && (KingZone(board.WhiteKing()) & Bit(to)))
        return EVerdict::Passes;
    if (IsLastMoveEnPrise<EColour::Black>(board))
        return EVerdict::Passes;
    return board.m_nWhiteQueens < 2 || !bCanTake ? EVerdict::Doubtful : EVerdict::Passes;
}

} // namespace corvina
