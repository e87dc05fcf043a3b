#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"
#include "heuristics/materialblocks.h"
#include "heuristics/materialtests.h"

namespace corvina
{
namespace
{

bool IsPawn(TFigure figure)
{
    return (figure & KIND_MASK) == KIND_PAWN;
}

/// The loss is one that the form watches over.
bool Counts(const TBlackMove& move, TFigure captured)
{
    constexpr int ROW_BEFORE_PROMOTION = 5;
    const int nMode = move.m_context.m_nLoseFiguresMode;
    if (IsPawn(captured))
        return nMode == LOSE_NO_PAWNS ||
               (nMode == LOSE_NO_PAWNS_BEFORE_PROMOTION &&
                RowOf(move.m_board.m_LastMove.m_to) >= ROW_BEFORE_PROMOTION);
    return nMode != LOSE_NO_FIGURES ||
           WhiteFigures(move.m_board) <
               move.m_request.m_nRootWhiteFigures - move.m_context.m_nLoseFigureSlack - 1;
}

/// Black has only taken back.
bool IsExchange(const TBlackMove& move)
{
    return move.m_pGrandparent &&
           IsAbovePawn(move.m_pGrandparent->m_board[move.m_board.m_LastMove.m_to]) &&
           (move.m_pGrandparent->m_board[move.m_board.m_LastMove.m_to] & COLOUR_BLACK);
}

/// White gets even: by taking back, or because what he has left still wins.
bool IsLossMended(const TBlackMove& move, TFigure captured)
{
    const TChessboard& board = move.m_board;
    const int nBlackFigures = BlackFigures(board);
    if (IsPawn(captured))
        return WhiteMajors(board) != 0 &&
               (nBlackFigures == 0 || CanCapture<EColour::White>(board, board.m_LastMove.m_to));
    if (nBlackFigures == 0)
        return WhiteMajors(board) != 0 || WinsPawnRace(board);
    return nBlackFigures == 1 && IsAbovePawn(board.m_board[board.m_LastMove.m_to]) &&
           board.m_LastMove.m_to != board.BlackKing() &&
           CanCapture<EColour::White>(board, board.m_LastMove.m_to);
}

bool HasMeansToMate(const TChessboard& board)
{
    return WhiteMajors(board) != 0 || board.m_nWhiteBishops + board.m_nWhiteKnights >= 2 ||
           board.m_nWhitePawns >= 2;
}

EVerdict LetGive(TBlackMove& move)
{
    move.m_board.m_boardFlags |= TChessboard::FLAG_FIGUREGIVEN;
    return EVerdict::Passes;
}

} // namespace

EVerdict TestLostFigure(TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    if ((board.m_boardFlags & TChessboard::FLAG_FIGURELOST) &&
        HasBlackKingFlight(board, board.m_blackKingFile, board.m_blackKingRow))
        return EVerdict::Doubtful;
    const TFigure captured = move.BlackCapture();
    if (captured == NO_FIGURE || !Counts(move, captured) || IsExchange(move))
        return EVerdict::Passes;
    const EMateTest mate = IsMateWithin(move.m_board, 1);
    if (mate != EMateTest::No)
        return move.CutUnless(mate);
    if (IsLossMended(move, captured))
        return EVerdict::Passes;
    if (!HasBlackKingFlight(board, board.m_blackKingFile, board.m_blackKingRow) &&
        HasMeansToMate(board))
        return LetGive(move);
    if (FreeKingSquares(board) > 1 || WhiteFigures(board) < 2 || !AreBlackFiguresShutIn(board))
        return EVerdict::Doubtful;
    return LetGive(move);
}

} // namespace corvina
