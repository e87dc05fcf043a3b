#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"
#include "heuristics/materialblocks.h"
#include "heuristics/materialtests.h"

#include <bit>

namespace corvina
{
namespace
{

/// What White has left, and how long.
struct TMeans
{
    explicit TMeans(const TChessboard& board)
        : m_nMajors(WhiteMajors(board)), m_nMinors(board.m_nWhiteBishops + board.m_nWhiteKnights),
          m_nMoves((board.m_nMoves + 1) / 2)
    {
    }

    const int m_nMajors, m_nMinors;
    const int m_nMoves; ///< of White
};

/// Free squares next to a king on the ring that so little material can't take in three moves.
bool IsKingTooFree(const TBlackMove& move, const TMeans& means)
{
    constexpr int MAX_PARENT_FREE = 4, MAX_PARENT_FREE_ONE_MAJOR = 5;
    const TChessboard& board = move.m_board;
    if (move.m_nRing == 0)
        return false;
    const int nFree = FreeKingSquares(board);
    if (means.m_nMajors == 0)
        return nFree > (move.m_nRing == 1 ? 5 : 4) &&
               FreeKingSquares(move.m_parent) > MAX_PARENT_FREE;
    if (move.m_nRing == 1 && board.m_nWhiteQueens)
        return false;
    return nFree > (move.m_nRing == 1 ? 6 : 5) &&
           FreeKingSquares(move.m_parent) > MAX_PARENT_FREE_ONE_MAJOR;
}

bool IsLackingForThreeMoves(const TBlackMove& move, const TMeans& means)
{
    constexpr int THREE_MOVES = 5;
    const TChessboard& board = move.m_board;
    return board.m_nMoves == THREE_MOVES && board.m_bWhiteSquaresValid && means.m_nMajors < 2 &&
           !HasWhitePawnInBox(board, 0, 7 - means.m_nMoves, 7, 6) && IsKingTooFree(move, means);
}

/// Half-moves between the start of the run and the position from which a short mate is looked for;
/// large while none is.
int PliesBeforeShortMate(const TBlackMove& move)
{
    const TThreadContext& context = move.m_context;
    if (!context.m_nQuickerMateNesting || !context.m_pQuickerMateRoot)
        return 1000;
    return move.m_board.m_nInitialMoves - context.m_nQuickerMateRootDepth;
}

/// A Black pawn shields its king from above.
bool IsShielded(const TChessboard& board)
{
    const TSquareSet above = Ray(DIR_UP, board.BlackKing()) & 0x00FFFFFFFFFFFFFF;
    return TSets::Equal(board.m_board, BLACK_PAWN) & above;
}

int FreeSquaresInBoxOfTwo(const TChessboard& board)
{
    int nFree = 0;
    for (int file = board.m_blackKingFile - 2; file <= board.m_blackKingFile + 2; ++file) {
        for (int row = board.m_blackKingRow - 2; row <= board.m_blackKingRow + 2; ++row)
            nFree += IsOnBoard(file, row) && board.m_board[MakeSquare(file, row)] == NO_FIGURE;
    }
    return nFree;
}

/// The kings are too far apart for a mate on the edge with one figure or none.
bool IsKingTooFarFromEdge(const TBlackMove& move, const TMeans& means)
{
    constexpr int MIN_PLIES = 9;
    const TChessboard& board = move.m_board;
    if (means.m_nMajors + means.m_nMinors >= 2 || KingDistance(board) < means.m_nMoves + 2 ||
        PliesBeforeShortMate(move) < MIN_PLIES || FreeKingSquares(board) == 0 || IsShielded(board))
        return false;
    return !board.m_nWhitePawns || MovesToPromotion(board) > means.m_nMoves + 1;
}

/// The same of a king that stands free in the middle.
bool IsKingTooFarInside(const TBlackMove& move, const TMeans& means)
{
    constexpr int MAX_NEIGHBOURS = 1, MAX_LINES = 1, MAX_FREE = 4, MAX_FREE_BOX = 11;
    const TChessboard& board = move.m_board;
    if (BlackNeighbours(board) > MAX_NEIGHBOURS || CountMajorsGuardingKing(board) > MAX_LINES ||
        FreeKingSquares(board) <= MAX_FREE || FreeSquaresInBoxOfTwo(board) <= MAX_FREE_BOX ||
        means.m_nMoves > KingDistance(board) + move.m_nRing - 2)
        return false;
    return !board.m_nWhitePawns || means.m_nMoves < MovesToPromotion(board) + 3;
}

} // namespace

EVerdict TestThreeMovesToMate(TBlackMove& move)
{
    constexpr int MAX_PLIES_WITHOUT_KING = 15, MAX_PLIES_OF_MINOR = 9;
    constexpr int MAX_PLIES_BEFORE = 6, FEW_MEN = 8;
    const TChessboard& board = move.m_board;
    const TMeans means(board);
    if (IsLackingForThreeMoves(move, means))
        return EVerdict::Doubtful;
    if (means.m_nMajors >= 2)
        return EVerdict::Passes;
    const bool bLittle = (means.m_nMajors == 0 && means.m_nMinors < 3) || means.m_nMinors == 0;
    if (board.m_nMoves < MAX_PLIES_WITHOUT_KING && bLittle) {
        if (PliesBeforeShortMate(move) <= MAX_PLIES_BEFORE &&
            std::popcount(TSets::Occupied(board.m_board)) < FEW_MEN)
            return EVerdict::Passes;
        const bool bFar =
            move.m_nRing == 0 ? IsKingTooFarFromEdge(move, means) : IsKingTooFarInside(move, means);
        return bFar ? EVerdict::Doubtful : EVerdict::Passes;
    }
    if (board.m_nMoves < MAX_PLIES_OF_MINOR && means.m_nMinors == 1 &&
        KingDistance(board) >= means.m_nMoves + 2 && means.m_nMoves <= move.m_nRing &&
        BlackNeighbours(board) < 2)
        return EVerdict::Doubtful;
    return EVerdict::Passes;
}

} // namespace corvina
