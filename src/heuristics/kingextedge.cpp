#include "chess/squaresets.h"
#include "heuristics/edgerelaxation.h"
#include "heuristics/kingexceptions.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"

namespace corvina
{
namespace
{

/// c3, c6, f3 and f6: the corners of the inner board.
constexpr TSquareSet INNER_CORNERS = Bit(18) | Bit(21) | Bit(42) | Bit(45);

bool IsOnInnerCorner(const TBlackMove& move)
{
    return INNER_CORNERS & Bit(move.King());
}

/// A Black figure, the only one or just promoted, falls at White's next move; a balance that counts
/// the promoted one as lost already doesn't count it twice.
bool IsFigureFalling(const TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    if (BlackFigures(board) != 1 ||
        (board.m_LastMove.PromotionKind() && IsLoose(board, board.m_LastMove.m_to)))
        return false;
    const TSquareSet men = TSets::Having(board.m_board, COLOUR_BLACK) &
                           ~TSets::Equal(board.m_board, BLACK_PAWN) & ~Bit(move.King());
    return IsLoose(board, LowestSquare(men));
}

/// The rule is off in this line: the balance is won, counting what White's move wins at once.
bool IsExtRelaxed(const TBlackMove& move)
{
    if (move.m_context.m_nEdgeRelaxCaptures) {
        int nGain = BalanceGain(move);
        if (nGain == move.m_context.m_nEdgeRelaxCaptures - 1)
            nGain += IsFigureFalling(move) || HasPromotionWithTempo(move.m_board);
        if (IsBalanceWon(move, nGain))
            return true;
    }
    return move.m_context.m_bEdgeRelaxOnPawn && WhitePawnCanPromote(move.m_board);
}

/// Black's figures are gone, and the king stands on a corner of the inner board.
bool IsBareOnInnerCorner(const TBlackMove& move)
{
    return move.m_request.m_nRootBlackFigures && BlackFigures(move.m_board) == 0 &&
           WhiteFigures(move.m_board) && IsOnInnerCorner(move);
}

bool IsInnerCornerAllowed(const TBlackMove& move)
{
    if (move.HasFlag(TChessboard::POSITION_FREEKING))
        return false;
    if (!move.m_board.m_nWhiteQueens)
        return IsOnInnerCorner(move) && move.m_pGrandparent &&
               move.m_pGrandparent->BlackKingRing() < 2;
    return AreMajorsHolding(move);
}

/// White's material mates too slowly for the bounded search to be worth its time.
bool IsTooSlowForMateTest(const TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    return WhiteMajors(board) <= 1 ||
           (WhiteFigures(board) == WhiteMajors(board) && KingDistance(board) > 2) ||
           move.HasFlag(TChessboard::POSITION_BLACKBLOCKED);
}

EVerdict DeferOrCut(const TBlackMove& move)
{
    return CanDefer(move) ? Defer(move) : EVerdict::Doubtful;
}

EVerdict TestTwoRings(TBlackMove& move)
{
    const TFigure promoted = move.m_parent.m_LastMove.PromotionKind();
    if (move.m_nRing < 2 || promoted == KIND_QUEEN || IsExtRelaxed(move) ||
        IsBareOnInnerCorner(move))
        return EVerdict::Passes;
    if (move.m_board.m_boardFlags & TChessboard::FLAG_EDGECHECKDEFERRED)
        return TestDeferred(move);
    const bool bSkipExceptions = move.m_context.m_bInclCorner && IsOnInnerCorner(move);
    if (!bSkipExceptions &&
        (IsInnerCornerAllowed(move) || IsLastMoveEnPrise<EColour::Black>(move.m_board) ||
         !IsKingBoxOpen(move.m_board, 2)))
        return EVerdict::Passes;
    const bool bShort = bSkipExceptions || IsTooSlowForMateTest(move);
    const EVerdict verdict = move.CutUnlessMateWithin(bShort ? 1 : 5);
    return verdict == EVerdict::Doubtful ? DeferOrCut(move) : verdict;
}

EVerdict TestKingMoveToEdge(TBlackMove& move)
{
    TChessboard& board = move.m_board;
    if (move.m_nRing == 0 || MovedToOrFromRootKing(board) || CapturedMoreThanStandingPawn(move))
        return EVerdict::Passes;
    const bool bPromotes = board.m_nWhiteQueens || WhitePawnCanPromote(board);
    return move.CutUnlessMateWithin(bPromotes && BlackFigures(board) == 0 ? 5 : 3);
}

/// The form in which the king may only move to the edge.
EVerdict TestMoveOnly(TBlackMove& move)
{
    if (move.IsKingMove())
        return TestKingMoveToEdge(move);
    if (move.m_nRing == 0 || IsKingOnRootSquare(move.m_board) || IsCheckShutInVain(move))
        return EVerdict::Passes;
    return move.CutUnlessMateInOne();
}

} // namespace

EVerdict TestKingWithinExtEdge(TBlackMove& move)
{
    if (move.Has(SH_SWEEPINGWHITEROOK) && !BlackKeepsFigure(move.m_board) &&
        WhiteFigures(move.m_board))
        return EVerdict::Passes;
    return move.m_context.m_bExtEdgeMoveOnly ? TestMoveOnly(move) : TestTwoRings(move);
}

} // namespace corvina
