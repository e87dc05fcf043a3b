#include "heuristics/attacksets.h"
#include "heuristics/edgerelaxation.h"
#include "heuristics/kingblocks.h"
#include "heuristics/kingexceptions.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"

namespace corvina
{
namespace
{

/// With fewer half-moves left White no longer closes the inner squares by a quiet move.
constexpr int MIN_PLIES_FOR_CLOSING_MOVE = 7;

/// Squares that don't lie on the edge.
constexpr TSquareSet INNER_SQUARES = 0x007E7E7E7E7E7E00;

/// b2, b7, g2 and g7.
constexpr TSquareSet NEAR_CORNERS = Bit(9) | Bit(14) | Bit(49) | Bit(54);

bool HasNothingToRule(const TBlackMove& move)
{
    if (move.m_nRing == 0 && !move.Has(SH_SWEEPINGWHITEROOK) && !move.HasKeyRook())
        return true;
    return move.Has(SH_SWEEPINGWHITEROOK) && !BlackKeepsFigure(move.m_board) &&
           WhiteFigures(move.m_board);
}

/// The rule is off in this line: White has won what the set asks for, or gets a new figure.
bool IsRelaxed(const TBlackMove& move)
{
    if (move.m_context.m_bEdgeRelaxExtOnly)
        return false;
    return IsBalanceWon(move, BalanceGain(move)) ||
           (move.m_context.m_bEdgeRelaxOnPawn && WhitePawnCanPromote(move.m_board));
}

TSquareSet OpenInnerSquares(const TChessboard& board)
{
    return FreeKingSquareSet(board) & INNER_SQUARES;
}

/// White has a move after which the king has no way into the board.
bool CanCloseInnerSquares(const TChessboard& board)
{
    TMoveList moves;
    const int nMoves = board.GenerateWhiteMoves(moves.data());
    TChessboard trial = board;
    trial.m_pThread = nullptr;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard child = trial;
        child.m_pParent = &trial;
        if (child.MakeWhiteMove(&moves[i]) && !OpenInnerSquares(child))
            return true;
    }
    return false;
}

/// Black has lost its figures, and the king, one step from the edge, can't go on into the board.
bool IsHeldNextToEdge(const TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    if (BlackFigures(board) || !WhiteFigures(board) || move.m_nRing != 1 ||
        !IsFigureBalanceBetter(move))
        return false;
    if (!OpenInnerSquares(board))
        return true;
    return board.m_nMoves >= MIN_PLIES_FOR_CLOSING_MOVE && WhiteFigures(board) >= 2 &&
           CanCloseInnerSquares(board);
}

/// The squares diagonally next to the corners count as edge, or the king came there from the edge
/// or under the queens and rooks.
bool IsNearCornerAllowed(const TBlackMove& move)
{
    if (move.m_context.m_bInclCorner)
        return true;
    if (!move.m_board.m_nWhiteQueens)
        return move.m_pGrandparent && move.m_pGrandparent->BlackKingRing() == 0;
    return AreMajorsHolding(move);
}

bool IsOnEdgeLine(int square, int king)
{
    return (IsEdge(FileOf(square)) && FileOf(square) == FileOf(king)) ||
           (IsEdge(RowOf(square)) && RowOf(square) == RowOf(king));
}

/// A White rook stands on the edge line of the king.
bool HasRookOnEdgeLine(const TBlackMove& move)
{
    TSquareSet rooks =
        move.m_board.m_nWhiteRooks ? TSets::Equal(move.m_board.m_board, WHITE_ROOK) : 0;
    while (rooks) {
        if (IsOnEdgeLine(PopLowestSquare(rooks), move.King()))
            return true;
    }
    return false;
}

/// In the first half of the solution the king must stay on the edge line of the key rook.
bool HasLeftKeyRook(const TBlackMove& move)
{
    const TThreadContext& context = move.m_context;
    const TChessboard& root = move.m_board.GetRootBoard();
    if (!(root.m_nHeuristics & SH_KEYWHITEFIGURE) || !context.m_bKeyFigureIsRook ||
        context.m_keyFigureSquare == NO_KEY_SQUARE ||
        move.m_board.m_nMoves <= move.m_board.m_nInitialMoves / 2)
        return false;
    return !IsOnEdgeLine(context.m_keyFigureSquare, move.King()) &&
           move.WhiteCapture() == NO_FIGURE && (move.m_nRing != 0 || !HasRookOnEdgeLine(move));
}

/// The sweeping rook works along one edge: the king that began there has gone round the corner to
/// another, and not to take part in an exchange.
bool HasGoneRoundCorner(const TBlackMove& move)
{
    const TSquare root = move.m_board.GetRootBoard().BlackKing();
    const bool bRootFile = IsEdge(FileOf(root)), bRootRow = IsEdge(RowOf(root));
    return move.Has(SH_SWEEPINGWHITEROOK) && (bRootFile || bRootRow) && move.m_nRing == 0 &&
           !(bRootFile && FileOf(move.King()) == FileOf(root)) &&
           !(bRootRow && RowOf(move.King()) == RowOf(root)) && move.WhiteCapture() == NO_FIGURE;
}

/// White wins Black's queen next: what the king does meanwhile doesn't matter.
bool IsLoneQueenAttacked(const TChessboard& board)
{
    if (board.m_nBlackQueens != 1 || BlackFigures(board) > 2 || WhiteMajors(board) == 0)
        return false;
    const TSquareSet queen = TSets::Equal(board.m_board, BLACK_QUEEN);
    return IsAttackedBy<EColour::White>(board, LowestSquare(queen));
}

/// The mate tests that stand before the cut.
EVerdict CutUnlessNet(TBlackMove& move, bool bNearCorner)
{
    TChessboard& board = move.m_board;
    const int nFlights = CountFlights(board);
    const bool bNet = WhiteFigures(board) >= 2 &&
                      (bNearCorner || nFlights <= 1 || IsLastMoveEnPrise<EColour::Black>(board) ||
                       IsSurroundStillTight(board));
    if (bNet) {
        switch (TestKingNet(board)) {
        case EKingNet::Mate:
            return EVerdict::EndsHook;
        case EKingNet::NotWorth:
            return EVerdict::Doubtful;
        case EKingNet::Undecided:
            return move.CutUnless(EMateTest::Undecided);
        case EKingNet::Unknown:
            break;
        }
    }
    if (WhiteMajors(board) + (KingDistance(board) == 2) > 2 && nFlights < 2)
        return move.CutUnlessMateWithin(5);
    return EVerdict::Doubtful;
}

/// Where the king may not be. bNearCorner is set for a king diagonally next to a corner.
bool IsViolated(const TBlackMove& move, bool& bNearCorner)
{
    if (move.m_nRing != 0 && !IsAbovePawn(move.WhiteCapture())) {
        bNearCorner =
            (NEAR_CORNERS & Bit(move.King())) &&
            (move.m_context.m_bInclCorner || !move.HasFlag(TChessboard::POSITION_FREEKING));
        if (!bNearCorner || !IsNearCornerAllowed(move))
            return true;
    }
    return HasLeftKeyRook(move) || HasGoneRoundCorner(move);
}

} // namespace

EVerdict TestPlainEdge(TBlackMove& move)
{
    bool bNearCorner = false;
    if (HasNothingToRule(move) || IsRelaxed(move) || IsHeldNextToEdge(move) ||
        !IsViolated(move, bNearCorner) || IsLoneQueenAttacked(move.m_board))
        return EVerdict::Passes;
    if (move.m_board.m_boardFlags & TChessboard::FLAG_EDGECHECKDEFERRED)
        return TestDeferred(move);
    if (CanDefer(move) && !move.m_context.m_bEdgeRelaxExtOnly)
        return Defer(move);
    return CutUnlessNet(move, bNearCorner);
}

EVerdict TestKingOnTheEdge(TBlackMove& move)
{
    const bool bPlain = !move.m_context.m_bKingMustNotMove || move.IsCustomForcedMate() ||
                        (move.m_board.m_boardFlags & TChessboard::FLAG_EDGERELAXED);
    return bPlain ? TestPlainEdge(move) : TestKingStays(move);
}

} // namespace corvina
