#include "heuristics/attacksets.h"
#include "heuristics/kingblocks.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"
#include "heuristics/relaxpredicates.h"

namespace corvina
{
namespace
{

constexpr int STRICT_LIMIT = 2;
constexpr int USUAL_LIMIT = 3;

bool IsQueenCapture(const TChessboard* pBoard)
{
    return CapturedFigure(pBoard) == BLACK_QUEEN;
}

/// Free squares that the king of this material may have after Black's move.
int SurroundLimit(const TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    if (BlackFigures(board) || WhiteFigures(board) < 3)
        return USUAL_LIMIT;
    return (move.WhiteCapture() == NO_FIGURE ? 4 : 5) + (KingDistance(board) < 4);
}

/// With few men on the board.
EVerdict TestFewMen(TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    if (move.HasFlag(TChessboard::POSITION_BAREBLACKKING))
        return EVerdict::Passes;
    const bool bHeavy = WhiteMajors(board) && WhiteFigures(board) >= 3;
    const int nFree = CountSurroundFree(
        board, USUAL_LIMIT, bHeavy ? ESurroundRule::HeavyFigures : ESurroundRule::Plain);
    return nFree > USUAL_LIMIT && !IsMajor(move.WhiteCapture()) && !IsSurroundStillTight(board)
               ? EVerdict::Doubtful
               : EVerdict::Passes;
}

/// White hasn't won anything lately that would explain a freer king.
bool IsQuietLine(const TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const bool bLoneQueen = board.m_nWhiteQueens == 1 && WhiteFigures(board) == 1;
    return !move.HasFlag(TChessboard::POSITION_MANYFIGURES) && BlackFigures(board) < 4 &&
           !bLoneQueen && !IsMajor(move.WhiteCapture()) &&
           (!IsAbovePawn(move.WhiteCapture()) || !CapturedFigure(move.m_pGrandparent));
}

/// The figure with which Black captured can be taken, or the mate must come at once.
bool IsCapturerLost(const TBlackMove& move)
{
    return IsAbovePawn(move.BlackCapture()) &&
           (move.m_board.m_nMoves <= 1 ||
            IsAttackedBy<EColour::White>(move.m_board, move.m_board.m_LastMove.m_to));
}

bool IsBareKingInPocket(const TChessboard& board)
{
    return BlackFigures(board) == 0 && board.m_nBlackPawns == 0 && CountFreeInBox(board, 2) < 4;
}

/// White stands in check by Black's only figure, which it can take.
bool IsLoneCheckerLost(const TChessboard& board)
{
    const std::int8_t checker = board.m_whiteChecker;
    return checker >= 0 && checker < DOUBLE_CHECK && BlackFigures(board) == 1 &&
           IsAbovePawn(board.m_board[checker]) && CanCapture<EColour::White>(board, checker);
}

/// White's king comes near enough to close squares.
bool IsKingComing(const TBlackMove& move, int nLimit)
{
    const int nDistance = KingDistance(move.m_board);
    if (nDistance < 4 && HasKingApproach(move.m_board))
        return true;
    return !move.Has(SH_SEASNAKE) && nDistance == 3 && HasKingApproach(move.m_board, nLimit);
}

bool IsQueenClosing(const TChessboard& board, int nLimit)
{
    return board.m_nMoves != 1 && WhiteFigures(board) >= 2 && HasClosingQueenMove(board, nLimit);
}

/// The conditions under which too many free squares don't matter.
bool IsOpenSurroundExcused(const TBlackMove& move, int nLimit)
{
    const TChessboard& board = move.m_board;
    if (IsLastMoveEnPrise<EColour::Black>(board))
        return true;
    if (IsQuietLine(move)) {
        if (IsFirstWhiteMoveEscape(board, nLimit))
            return true;
    }
    else if (IsCapturerLost(move)) {
        return true;
    }
    return IsBareKingInPocket(board) || IsSurroundStillTight(board) || HasPawnCheck(board) ||
           IsKingComing(move, nLimit) || IsLoneCheckerLost(board) || IsQueenClosing(board, nLimit);
}

/// Black took the checking knight, which had held a square next to the king.
bool IsKnightSacrifice(const TBlackMove& move)
{
    const TMove& white = move.m_parent.m_LastMove;
    const TSquare to = move.m_board.m_LastMove.m_to;
    return move.BlackCapture() == WHITE_KNIGHT && move.m_parent.m_blackChecker == to &&
           move.m_pGrandparent && white.m_to == to && Distance(white.m_from, move.King()) == 1 &&
           !IsAttackedBy<EColour::White>(*move.m_pGrandparent, white.m_from);
}

/// White has a queen, Black none, and one of White's last two moves took Black's: the line is about
/// that exchange.
bool HasTradedQueen(const TChessboard& board, const TChessboard* pLast, const TChessboard* pBefore)
{
    return board.m_nWhiteQueens && !board.m_nBlackQueens &&
           (IsQueenCapture(pLast) || IsQueenCapture(pBefore));
}

EVerdict CutOpenSurround(TBlackMove& move)
{
    if (WhiteMajors(move.m_board) > 2)
        return move.CutUnlessMateWithin(3);
    return HasTradedQueen(move.m_board, &move.m_parent, Ancestor(move.m_parent, 2))
               ? EVerdict::Passes
               : EVerdict::Doubtful;
}

EVerdict TestManyMen(TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    int nLimit = SurroundLimit(move);
    const bool bQueens = board.m_nWhiteQueens >= 3;
    if (bQueens && WhiteFigures(board) <= 4)
        ++nLimit;
    const int nFree =
        CountSurroundFree(board, nLimit, bQueens ? ESurroundRule::Queens : ESurroundRule::None);
    if (nFree <= nLimit || IsOpenSurroundExcused(move, nLimit))
        return EVerdict::Passes;
    const int nFigures = WhiteFigures(board);
    if (board.m_nWhiteQueens && nFigures >= 4 && board.m_nMoves > 1 && HasQueenContact(board))
        return EVerdict::Passes;
    if (IsKnightSacrifice(move) ||
        (nFigures >= 3 && board.m_nMoves > 1 && IsQueenClosing(board, nLimit)))
        return EVerdict::Passes;
    return CutOpenSurround(move);
}

} // namespace

EVerdict TestKingSurrounded(TBlackMove& move)
{
    if (move.IsCustomForcedMate())
        return EVerdict::Passes;
    if (move.m_context.m_bSurroundedStrict)
        return FreeKingSquares(move.m_board) > STRICT_LIMIT ? move.CutUnlessMateInOne()
                                                            : EVerdict::Passes;
    return move.HasFlag(TChessboard::POSITION_FEWFIGURES) ? TestFewMen(move) : TestManyMen(move);
}

} // namespace corvina
