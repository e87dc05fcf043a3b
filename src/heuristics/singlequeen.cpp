#include "heuristics/singlequeen.h"

#include "heuristics/kingsurroundings.h"
#include "heuristics/materialtests.h"
#include "search/nodes.h"
#include "search/rootsetup.h"
#include "search/whitecuts.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// The last depth to be searched is the one behind which a thread has made so many moves.
constexpr std::uint64_t MAX_POSITIONS = 100'000;

/// White's pawns have no move, captures included.
bool AreWhitePawnsHeld(const TChessboard& board)
{
    TMoveList moves;
    TSquareSet pawns = TSets::Equal(board.m_board, WHITE_PAWN);
    while (pawns) {
        if (board.GenerateWhiteFigureMoves(PopLowestSquare(pawns), moves.data()) != 0)
            return false;
    }
    return true;
}

bool OnlyKingOfBlackMoves(const TChessboard& board)
{
    const TBlackMobility mobility = FindBlackMobility(board);
    return mobility.m_nMoves == mobility.m_nKingMoves;
}

/// The queen blocks and pins nothing: without it Black's men have no further move.
bool AreBlackMenHeldWithoutQueen(const TChessboard& board)
{
    TChessboard without = board;
    without.m_pParent = nullptr;
    without.m_board[board.m_whiteQueenSquare] = NO_FIGURE;
    return without.RescanBoard(false) && OnlyKingOfBlackMoves(without);
}

} // namespace

bool IsSingleQueenMate(const TChessboard& board)
{
    return board.m_nWhiteQueens == 1 && WhiteFigures(board) == 1 &&
           BlackFigures(board) + board.m_nBlackPawns > 0 && AreWhitePawnsHeld(board) &&
           OnlyKingOfBlackMoves(board) && AreBlackMenHeldWithoutQueen(board);
}

bool IsCornerPattern(const TChessboard& board)
{
    constexpr int CORNER_REGION = 3;
    const int nSum = Ring(board.m_blackKingFile, 3) + Ring(3, board.m_blackKingRow);
    return nSum <= CORNER_REGION && IsSingleQueenMate(board);
}

bool IsWhiteMaterialShort(const TChessboard& board)
{
    constexpr int NO_WAY = 8;
    return WhiteFigures(board) == 1 && WhiteMajors(board) == 1 && BlackMajors(board) > 0 &&
           MovesToPromotion(board) < NO_WAY;
}

int AskCustomTable(const TChessboard&)
{
    return GLOBAL_REGISTER_UNKNOWN;
}

std::optional<TMove> FindSingleQueenMate(const TChessboard& root)
{
    if (!(root.m_nHeuristics & SH_SINGLEQUEENMATE))
        return std::nullopt;
    TThreadContext context(root.m_nInitialMoves);
    TChessboard board = root;
    board.m_nHeuristics = SH_SINGLEQUEENMATE;
    PutOnThread(board, context);
    TMoveList moves;
    int nMoves = board.GenerateWhiteMoves(moves.data());
    for (int nDepth = 3; nDepth <= root.m_nMoves && context.m_nPositions < MAX_POSITIONS;
         nDepth += 2) {
        board.m_nMoves = static_cast<std::uint16_t>(nDepth);
        const auto mates = [&](TMove move) {
            TChessboard& child = context.MakeChild(board);
            return !LeavesHeldPawn(board, move) && child.MakeWhiteMove(&move) &&
                   SearchBlack<NODE_MAIN>(child) == RESULT_MATE;
        };
        TMove* const pMate = std::find_if(moves.data(), moves.data() + nMoves, mates);
        if (pMate != moves.data() + nMoves)
            return *pMate;
    }
    return std::nullopt;
}

} // namespace corvina
