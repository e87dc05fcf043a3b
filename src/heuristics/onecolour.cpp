#include "heuristics/onecolour.h"

#include "chess/sides.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/materialblocks.h"
#include "heuristics/materialtests.h"
#include "search/hooks.h"
#include "search/shortmate.h"

#include <bit>

namespace corvina
{
namespace
{

using W = TSide<EColour::White>;
using B = TSide<EColour::Black>;

constexpr TSquareSet A_FILE = 0x0101010101010101;
constexpr TSquareSet H_FILE = A_FILE << 7;

TSquareSet SquaresOfColour(TSquare square)
{
    return Bit(square) & DARK_SQUARES ? DARK_SQUARES : ~DARK_SQUARES;
}

/// Squares next to the set on a diagonal.
TSquareSet DiagonalNeighbours(TSquareSet set)
{
    const TSquareSet left = (set & ~A_FILE) >> 1, right = (set & ~H_FILE) << 1;
    return (left | right) << 8 | (left | right) >> 8;
}

/// The squares of the bishop that has left the board.
TSquareSet BishopSquares(const TChessboard& board)
{
    const int nMode = board.m_moveFilter & TChessboard::FILTER_MODE_MASK;
    return nMode == TChessboard::FILTER_WHITE_SQUARES_ONLY ? DARK_SQUARES : ~DARK_SQUARES;
}

void SetMode(TChessboard& board, int nMode)
{
    board.m_moveFilter =
        static_cast<std::uint8_t>((board.m_moveFilter & ~TChessboard::FILTER_MODE_MASK) | nMode);
}

/// The tables know nothing of a game in which Black may pass.
void TakeOff(TChessboard& board, TSquare bishop, int nMode)
{
    board.m_board[bishop] = NO_FIGURE;
    --board.m_nBlackBishops;
    for (std::int8_t& square : board.m_trackedSquares) {
        if (square == bishop)
            square = -1;
    }
    SetMode(board, nMode);
    board.m_boardFlags |= TChessboard::FLAG_BISHOPSHUTOUT;
    board.m_nPositionFlags &= static_cast<std::uint16_t>(~TChessboard::POSITION_GLOBALREGISTER);
    // The bishop may have shut a line of Black's own.
    board.m_whiteChecker = board.GetWhiteKingChecker(board.m_whiteKingFile, board.m_whiteKingRow);
    board.m_blackChecker = board.GetBlackKingChecker(board.m_blackKingFile, board.m_blackKingRow);
    if (board.m_pThread)
        board.m_nHeuristicsParams = ComputeHeurParams(board);
}

/// A jump brings a knight of White to where it attacks the Black king or a square next to him.
bool IsKnightNear(const TChessboard& board)
{
    const TSquareSet zone = KingZone(board.BlackKing()) | Bit(board.BlackKing());
    const TSquareSet white = W::Figures(board.m_board);
    TSquareSet knights = TSets::Equal(board.m_board, WHITE_KNIGHT);
    while (knights) {
        TSquareSet jumps = KnightJumps(PopLowestSquare(knights)) & ~white;
        while (jumps) {
            if (KnightJumps(PopLowestSquare(jumps)) & zone)
                return true;
        }
    }
    return false;
}

} // namespace

bool CanShutOutBishop(const TChessboard& board)
{
    if (board.m_nBlackBishops != 1 || BlackFigures(board) != 1 || WhiteMajors(board) != 0 ||
        (board.m_boardFlags & TChessboard::FLAG_BISHOPSHUTOUT))
        return false;
    const TSquare bishop = LowestSquare(TSets::Equal(board.m_board, BLACK_BISHOP));
    return !(W::Figures(board.m_board) & SquaresOfColour(bishop));
}

void ShutOutBishop(TChessboard& board)
{
    const TSquare bishop = LowestSquare(TSets::Equal(board.m_board, BLACK_BISHOP));
    TakeOff(board, bishop,
            SquaresOfColour(bishop) == DARK_SQUARES ? TChessboard::FILTER_WHITE_SQUARES_ONLY
                                                    : TChessboard::FILTER_BLACK_SQUARES_ONLY);
}

bool StandsForMove(const TChessboard& board)
{
    if (!(board.m_boardFlags & TChessboard::FLAG_BISHOPSHUTOUT))
        return false; // the bishop is there, and has no move
    if ((board.m_moveFilter & TChessboard::FILTER_MODE_MASK) ==
        TChessboard::FILTER_SEPARATED_BLACK_BISHOP)
        return true; // the real game is gone through in any case
    const TSquareSet free = ~TSets::Occupied(board.m_board) & BishopSquares(board);
    const TSquareSet ways = ~B::Figures(board.m_board) & BishopSquares(board);
    return !(free & ~DiagonalNeighbours(ways));
}

bool OneColourReplay(TChessboard& board)
{
    const int nMode = board.m_moveFilter & TChessboard::FILTER_MODE_MASK;
    if (board.m_nWhiteKnights == 0 || nMode == TChessboard::FILTER_SEPARATED_BLACK_BISHOP ||
        !(board.m_boardFlags & TChessboard::FLAG_BISHOPSHUTOUT) || !IsKnightNear(board))
        return false;
    TChessboard real = board;
    SetMode(real, 0);
    real.m_boardFlags &= static_cast<std::uint16_t>(~TChessboard::FLAG_BISHOPSHUTOUT);
    real.m_nHeuristics = real.m_nHeuristicsParams = 0;
    ++real.m_nBlackBishops;
    TSquareSet stands = ~TSets::Occupied(board.m_board) & BishopSquares(board);
    while (stands) {
        const TSquare bishop = PopLowestSquare(stands);
        real.m_board[bishop] = BLACK_BISHOP;
        real.m_whiteChecker = real.GetWhiteKingChecker(real.m_whiteKingFile, real.m_whiteKingRow);
        const bool bMate = real.m_nMoves >= 3 ? IsMateInTwo(real) : IsMateInOne(real);
        real.m_board[bishop] = NO_FIGURE;
        if (!bMate)
            return false;
    }
    return true;
}

TBishopCage FindBishopCage(const TChessboard& board)
{
    constexpr int MIN_REGION = 2, MAX_REGION = 11;
    if (board.m_nBlackBishops != 1 || BlackFigures(board) != 1)
        return {};
    const TSquare bishop = LowestSquare(TSets::Equal(board.m_board, BLACK_BISHOP));
    const TSquareSet empty = ~TSets::Occupied(board.m_board);
    TBishopCage cage;
    cage.m_region = Bit(bishop);
    for (TSquareSet before = 0; before != cage.m_region;) {
        before = cage.m_region;
        cage.m_region |= DiagonalNeighbours(cage.m_region) & empty;
    }
    cage.m_walls = DiagonalNeighbours(cage.m_region) & W::Figures(board.m_board);
    const int nSquares = std::popcount(cage.m_region);
    if (nSquares < MIN_REGION || nSquares > MAX_REGION || (cage.m_walls & Bit(board.WhiteKing())))
        return {};
    cage.m_bishop = bishop;
    return cage;
}

void SeparateBishop(TChessboard& board, const TBishopCage& cage)
{
    TakeOff(board, cage.m_bishop, TChessboard::FILTER_SEPARATED_BLACK_BISHOP);
}

EVerdict TestOneColourPlay(TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const TMove& last = board.m_LastMove;
    const bool bMovesOn = (board.m_moveFilter & TChessboard::FILTER_MODE_MASK) && !last.IsNull() &&
                          RowOf(last.m_from) == 0 &&
                          OriginOf(move.m_parent, last.m_from).m_bPromoted;
    return bMovesOn ? move.CutUnlessMateInOne() : EVerdict::Passes;
}

} // namespace corvina
