#include "heuristics/sweepingrook.h"

#include "heuristics/attacksets.h"
#include "heuristics/blackmobility.h"
#include "heuristics/keyfigure.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/materialblocks.h"
#include "heuristics/materialtests.h"

namespace corvina
{
namespace
{

constexpr TSquareSet FIRST_ROW = 0xFF;

using W = TSide<EColour::White>;

bool HasMovablePawn(const TChessboard& board)
{
    TSquareSet pawns = TSets::Equal(board.m_board, WHITE_PAWN);
    const TSquareSet black = TSide<EColour::Black>::Figures(board.m_board);
    while (pawns) {
        const TSquare pawn = PopLowestSquare(pawns);
        const TFigure ahead = board.m_board[pawn + W::FORWARD] & KIND_MASK;
        if (ahead != KIND_PAWN || (PawnAttacks(EColour::White, pawn) & black))
            return true;
    }
    return false;
}

/// The rook stands on the first row, or can come there.
bool CanReachFirstRow(const TChessboard& board, TSquare rook)
{
    if (RowOf(rook) == 0)
        return true;
    return !(Ray(DIR_DOWN, rook) & TSets::Occupied(board.m_board)) &&
           !IsAttackedBy<EColour::Black>(board, FileOf(rook));
}

/// One rook does the work; the other figures of White pin.
bool HasOneWorkingRook(const TChessboard& board)
{
    if (board.m_nWhiteRooks == 0)
        return false;
    if (WhiteFigures(board) == 1)
        return true;
    TSquareSet figures =
        TSets::Having(board.m_board, W::DIAGONAL_MASK) | TSets::Having(board.m_board, W::LINE_MASK);
    TSquare free = NO_SQUARE;
    while (figures) {
        const TSquare square = PopLowestSquare(figures);
        if (FindPinnedFigure(board, square) != NO_SQUARE)
            continue;
        if (free != NO_SQUARE)
            return false;
        free = square;
    }
    return free == NO_SQUARE ||
           (board.m_board[free] == WHITE_ROOK && CanReachFirstRow(board, free));
}

bool IsFirstRowClear(const TChessboard& board)
{
    if (board.m_blackKingRow == 0)
        return true;
    TSquareSet men = TSets::Occupied(board.m_board) & FIRST_ROW;
    const TSquareSet rooks = men & TSets::Equal(board.m_board, WHITE_ROOK);
    if (rooks)
        men &= ~Bit(LowestSquare(rooks));
    return !men;
}

} // namespace

bool IsSweepingRookType(const TChessboard& board)
{
    constexpr int MIN_PLIES = 14;
    return board.m_nInitialMoves >= MIN_PLIES && !HasMovablePawn(board) &&
           HasOneWorkingRook(board) && board.m_nBlackPawns > 0 && IsFirstRowClear(board) &&
           std::popcount(FindBlackMobility(board).m_figures) <= 1;
}

EVerdict TestSweepingRook(TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const TMove& last = board.m_LastMove;
    if (last.IsNull() || board.m_board[last.m_to] != BLACK_BISHOP ||
        SquareColour(last.m_to) == SquareColour(board.BlackKing()))
        return EVerdict::Passes;
    const TOrigin origin = OriginOf(board, last.m_to);
    if (origin.m_bPromoted)
        return move.CutUnlessMateWithin(3);
    // A bishop beside the king guards the lines of both squares.
    const TSquare king = board.GetRootBoard().BlackKing();
    const bool bBesideKing =
        g_geometry.m_aRook[origin.m_square] & KingZone(origin.m_square) & Bit(king);
    const bool bOffLine = !OnCommonLine(last.m_to, origin.m_square) ||
                          (bBesideKing && !OnCommonLine(last.m_to, king));
    return bOffLine ? move.CutUnlessMateWithin(3) : EVerdict::Passes;
}

bool IsSweepGivenUp(const TChessboard& child)
{
    if (BlackFigures(child) == 0 && WhiteFigures(child) != 0)
        return false;
    const TMove& last = child.m_LastMove;
    return !last.IsNull() && child.m_board[last.m_to] == WHITE_ROOK &&
           child.m_blackChecker == NO_CHECK && CapturedFigure(child) == NO_FIGURE &&
           RowOf(last.m_from) == 0 && RowOf(last.m_to) != 0 &&
           IsAttackedBy<EColour::Black>(child, last.m_to);
}

} // namespace corvina
