#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/materialblocks.h"
#include "search/hooks.h"

namespace corvina
{
namespace
{

/// The material of which a man more or less doesn't matter to the question.
bool IsReducible(const TChessboard& board)
{
    constexpr int MIN_PLIES = 17, MANY_PAWNS = 4, MANY_FIGURES = 5;
    const int nWhite = WhiteFigures(board);
    return board.m_nMoves > MIN_PLIES && board.m_nBlackPawns < MANY_PAWNS &&
           nWhite + BlackFigures(board) < MANY_FIGURES && board.m_nWhiteKnights <= 1 &&
           board.m_nWhitePawns == 0 && board.m_nBlackPawns > 0 && nWhite > board.m_nWhiteKnights &&
           !(TSets::Equal(board.m_board, BLACK_PAWN) & KingZone(board.BlackKing()));
}

/// Takes off Black's pawns far from their king; White keeps all that he has, which can only help
/// him. False when there are none.
bool Reduce(TChessboard& board)
{
    constexpr int NEAR = 2;
    TSquareSet pawns = TSets::Equal(board.m_board, BLACK_PAWN);
    bool bTaken = false;
    while (pawns) {
        const TSquare pawn = PopLowestSquare(pawns);
        if (Distance(pawn, board.BlackKing()) <= NEAR)
            continue;
        board.m_board[pawn] = NO_FIGURE;
        bTaken = true;
    }
    return bTaken && board.RescanBoard(false);
}

} // namespace

EVerdict TestReducedPosition(TBlackMove& move)
{
    if (!IsReducible(move.m_board))
        return EVerdict::Passes;
    TChessboard reduced = move.m_board;
    reduced.m_pParent = nullptr;
    if (!Reduce(reduced))
        return EVerdict::Passes;
    return AskGlobalRegister(reduced) == 0 ? EVerdict::Doubtful : EVerdict::Passes;
}

EVerdict TestZugzwangTriangle(TBlackMove& move)
{
    return move.Has(SH_REDUCTIONTOGLOBREGPOS) ? EVerdict::Passes : TestReducedPosition(move);
}

} // namespace corvina
