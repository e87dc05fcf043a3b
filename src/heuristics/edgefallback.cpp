#include "heuristics/kingsurroundings.h"
#include "search/hooks.h"

namespace corvina
{
namespace
{

/// The White king has just come in front of a pawn that is about to promote, and takes the
/// opposition.
bool HasWhiteKingStoppedPawn(const TChessboard& afterWhite)
{
    const TChessboard* pBefore = afterWhite.m_pParent;
    const TSquare king = afterWhite.WhiteKing();
    return pBefore && pBefore->WhiteKing() != king && RowOf(king) == 0 &&
           afterWhite.m_board[king + 8] == BLACK_PAWN && KingDistance(afterWhite) == 2 &&
           KingDistance(*pBefore) > 2;
}

/// Minor figures of White hold a king with at most a minor figure of his own.
bool DoMinorsHoldKing(const TChessboard& board)
{
    const bool bSeparatedBishop = (board.m_moveFilter & TChessboard::FILTER_MODE_MASK) ==
                                  TChessboard::FILTER_SEPARATED_BLACK_BISHOP;
    return WhiteMajors(board) == 0 && BlackMajors(board) == 0 &&
           BlackFigures(board) == (bSeparatedBishop ? 0 : 1) && board.m_nWhiteBishops <= 1 &&
           board.m_bWhiteSquaresValid &&
           !HasBlackKingFlight(board, board.m_blackKingFile, board.m_blackKingRow);
}

} // namespace

bool CanApplyEdgeHeuristicDynamically(const TChessboard& board)
{
    const TChessboard* pParent = board.m_pParent;
    const TChessboard* pAfterBlack = board.IsWhiteToMove() ? &board : pParent;
    const TChessboard* pAfterWhite = board.IsWhiteToMove() ? pParent : &board;
    if (!pAfterBlack || !pAfterBlack->m_pParent || pAfterBlack->BlackKingRing() != 0 ||
        pAfterBlack->m_pParent->BlackKingRing() == 0)
        return false;
    return (pAfterWhite && HasWhiteKingStoppedPawn(*pAfterWhite)) || DoMinorsHoldKing(board);
}

} // namespace corvina
