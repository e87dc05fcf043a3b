#include "heuristics/reduction.h"

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

} // namespace

bool ReducePosition(TChessboard& board)
{
    constexpr int NEAR = 2;
    if (!IsReducible(board))
        return false;
    TSquareSet pawns = TSets::Equal(board.m_board, BLACK_PAWN);
    bool bTaken = false;
    while (pawns) {
        const TSquare pawn = PopLowestSquare(pawns);
        if (Distance(pawn, board.BlackKing()) <= NEAR)
            continue;
        std::uint8_t& before = board.m_board[pawn - 8];
        if ((before & COLOUR_WHITE) && before != WHITE_KING)
            before = NO_FIGURE;
        board.m_board[pawn] = NO_FIGURE;
        bTaken = true;
    }
    board.m_pParent = nullptr;
    return bTaken && board.RescanBoard(false) && WhiteFigures(board) > board.m_nWhiteKnights;
}

bool HasReducedPosition(const TChessboard& board)
{
    TChessboard reduced = board;
    return ReducePosition(reduced) && AskGlobalRegister(reduced) != GLOBAL_REGISTER_UNKNOWN;
}

EVerdict TestReducedPosition(TBlackMove& move)
{
    TChessboard reduced = move.m_board;
    return ReducePosition(reduced) && AskGlobalRegister(reduced) == 0 ? EVerdict::Doubtful
                                                                      : EVerdict::Passes;
}

EVerdict TestZugzwangTriangle(TBlackMove& move)
{
    return move.Has(SH_REDUCTIONTOGLOBREGPOS) ? EVerdict::Passes : TestReducedPosition(move);
}

} // namespace corvina
