#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/materialblocks.h"
#include "heuristics/materialtests.h"

namespace corvina
{
namespace
{

bool HasBlackPromoted(const TChessboard& board)
{
    return board.m_boardFlags & TChessboard::BLACK_PROMOTIONS_MASK;
}

/// The figure that has just moved comes from a pawn that promoted earlier in the line.
bool HasPromotedFigureMoved(const TBlackMove& move)
{
    const TMove& last = move.m_board.m_LastMove;
    return HasBlackPromoted(move.m_board) && !last.IsNull() && last.PromotionKind() == 0 &&
           OriginOf(move.m_parent, last.m_from).m_bPromoted;
}

/// What lets the figure go where it went.
bool IsMoveHarmless(const TBlackMove& move)
{
    constexpr int FEW_FIGURES = 3;
    const TChessboard& board = move.m_board;
    const TSquare to = board.m_LastMove.m_to;
    if (BlackFigures(board) == 1 && move.m_context.m_nBlockedBlackFigures > 1)
        return true;
    if (IsAttackedBy<EColour::White>(board, to))
        return true;
    return WhiteFigures(board) < FEW_FIGURES && !move.Has(SH_KEYWHITEFIGURE) &&
           IsWonByCheck(board, to);
}

EVerdict TestPromotedMove(TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const TSquare to = board.m_LastMove.m_to;
    const bool bFar = !(KingZone(board.BlackKing()) & Bit(to)) || WhiteFigures(board) < 2;
    if (!(move.m_context.m_bPromotedStrict && bFar) && IsMoveHarmless(move))
        return EVerdict::Passes;
    if (!IsBlackKingOnCorner(board))
        return move.CutUnlessMateInOne();
    const bool bTight = board.m_whiteChecker == NO_CHECK && FreeKingSquares(board) <= 1;
    return move.CutUnlessMateWithin(bTight ? 5 : 3);
}

/// After White's move: one of Black's promoted figures can go to a square where White can't take
/// it. Asked in the strict form only, in which such a move would be doubtful wherever it went.
bool HasFreePromotedFigure(const TChessboard& child, bool bQueensOnly)
{
    using B = TSide<EColour::Black>;
    if (!HasBlackPromoted(child) || child.m_blackChecker != NO_CHECK ||
        !ContextOf(child).m_bPromotedStrict || WhiteFigures(child) >= 2)
        return false;
    const TSquareSet occupied = TSets::Occupied(child.m_board);
    const TSquareSet attacked = AttackedSquares<EColour::White>(child, occupied);
    TSquareSet figures = B::Figures(child.m_board) & ~Bit(child.BlackKing());
    while (figures) {
        const TSquare from = PopLowestSquare(figures);
        const TFigure kind = child.m_board[from] & KIND_MASK;
        if (kind == KIND_PAWN || (bQueensOnly && kind != KIND_QUEEN) ||
            !OriginOf(child, from).m_bPromoted || IsPinnedTo<EColour::Black>(child, occupied, from))
            continue;
        const TSquareSet targets =
            AttacksOf<EColour::Black>(kind, from, occupied) & ~B::Figures(child.m_board);
        if (targets & ~attacked)
            return true;
    }
    return false;
}

} // namespace

EVerdict TestPromotedQueenMove(TBlackMove& move)
{
    return move.m_board.m_board[move.m_board.m_LastMove.m_to] == BLACK_QUEEN &&
                   HasPromotedFigureMoved(move)
               ? TestPromotedMove(move)
               : EVerdict::Passes;
}

EVerdict TestPromotedFigureMove(TBlackMove& move)
{
    return HasPromotedFigureMoved(move) ? TestPromotedMove(move) : EVerdict::Passes;
}

bool IsPromotedQueenFree(const TChessboard& child)
{
    return HasFreePromotedFigure(child, true);
}

bool IsPromotedFigureFree(const TChessboard& child)
{
    return HasFreePromotedFigure(child, false);
}

} // namespace corvina
