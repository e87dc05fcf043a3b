#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"
#include "heuristics/materialblocks.h"
#include "heuristics/materialtests.h"
#include "search/hooks.h"

#include <algorithm>

namespace corvina
{
namespace
{

constexpr int MAX_MATE_LINE = 7;

/// Black has taken the queen, or a rook from a White without one.
bool IsMainFigureLost(const TBlackMove& move)
{
    const TFigure captured = move.BlackCapture();
    if (captured == NO_FIGURE)
        return false;
    const bool bHadQueen = move.m_parent.m_nWhiteQueens != 0;
    if ((captured & KIND_MASK) == KIND_QUEEN || (!bHadQueen && captured == WHITE_ROOK))
        return true;
    // Where Black's pawns run anyway, the last bishop is what counts.
    return !bHadQueen && move.m_context.m_bDlfuPawnsBreakFree && captured == WHITE_BISHOP &&
           (BlackFigures(move.m_board) >= 2 || FreeKingSquares(move.m_board) >= 2);
}

EVerdict TestLossAtOnce(TBlackMove& move)
{
    if (!IsMainFigureLost(move))
        return EVerdict::Passes;
    const EMateTest mate = IsMateInNet(move.m_board);
    if (mate != EMateTest::No)
        return move.CutUnless(mate);
    return IsReplyMateLine(move.m_board, MAX_MATE_LINE) ? EVerdict::EndsHook : EVerdict::Doubtful;
}

/// White has just lost what the form with an exception watches over.
bool IsLossToBeMended(const TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const bool bQueenGone = board.m_nWhiteQueens == 0 && move.m_parent.m_nWhiteQueens != 0;
    return ((WhiteMajors(board) == 0 || bQueenGone) && IsMajor(move.BlackCapture()) &&
            board.m_nWhiteQueens == 0) ||
           (board.m_boardFlags & TChessboard::FLAG_FIGUREGIVEN);
}

/// The loss may stay until the deadline.
void LetMendUntil(TBlackMove& move, int nDeadline)
{
    move.m_context.m_nSaveFigureDeadline = static_cast<std::uint16_t>(nDeadline);
    move.m_board.m_boardFlags |= TChessboard::FLAG_SAVEFIGUREPENDING;
    move.m_board.m_nHeuristicsParams = ComputeHeurParams(move.m_board);
}

EVerdict TestLoss(TBlackMove& move)
{
    constexpr int FEW_FREE = 2;
    TChessboard& board = move.m_board;
    if (!IsLossToBeMended(move))
        return EVerdict::Passes;
    if (FreeKingSquares(board) <= FEW_FREE) {
        const EMateTest mate = IsMateWithin(board, WhitePawnPromotesNow(board) ? 3 : 1);
        if (mate != EMateTest::No)
            return move.CutUnless(mate);
    }
    if (IsReplyMateLine(board, MAX_MATE_LINE)) {
        // The line goes on without the rule.
        board.m_nHeuristics &= ~SH_SAVEQUEENROOK;
        board.m_nHeuristicsParams = ComputeHeurParams(board);
        return EVerdict::Passes;
    }
    if (IsMajor(board.m_board[board.m_LastMove.m_to]) &&
        CanCapture<EColour::White>(board, board.m_LastMove.m_to))
    {
        if (!(board.m_boardFlags & TChessboard::FLAG_FIGUREGIVEN))
            LetMendUntil(move, 0);
        return EVerdict::Passes;
    }
    const int nMoves = MovesToPromotion(board);
    if (board.m_nMoves > 3 && nMoves < 8) {
        LetMendUntil(move, std::max(1, board.m_nMoves - 2 * nMoves));
        return EVerdict::Passes;
    }
    return CanTakeMajor(board) ? EVerdict::Passes : EVerdict::Doubtful;
}

} // namespace

EVerdict TestSaveQueenRook(TBlackMove& move)
{
    if (!move.m_context.m_bSaveFigureException)
        return TestLossAtOnce(move);
    if (!(move.m_board.m_boardFlags & TChessboard::FLAG_SAVEFIGUREPENDING))
        return TestLoss(move);
    const bool bDue = move.m_board.m_nMoves < move.m_context.m_nSaveFigureDeadline;
    return bDue && WhiteMajors(move.m_board) == 0 ? EVerdict::Doubtful : EVerdict::Passes;
}

} // namespace corvina
