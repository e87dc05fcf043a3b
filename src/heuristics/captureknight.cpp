#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/materialblocks.h"
#include "heuristics/materialtests.h"

#include <algorithm>

namespace corvina
{
namespace
{

TSquareSet BlackKnights(const TChessboard& board)
{
    return board.m_nBlackKnights ? TSets::Equal(board.m_board, BLACK_KNIGHT) : 0;
}

bool IsKingHeldOnEdge(const TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    return move.m_nRing == 0 && KingDistance(board) == 2 &&
           (board.m_blackKingFile == board.m_whiteKingFile ||
            board.m_blackKingRow == board.m_whiteKingRow);
}

/// The knight runs about where neither king nor rook can catch it.
bool IsAtLarge(const TChessboard& board, TSquare knight)
{
    constexpr int NEAR = 2;
    const TSquareSet rooks = board.m_nWhiteRooks ? TSets::Equal(board.m_board, WHITE_ROOK) : 0;
    return !(rooks & g_geometry.m_aRook[knight]) && Distance(knight, board.BlackKing()) > NEAR &&
           Distance(knight, board.WhiteKing()) > NEAR && Ring(FileOf(knight), RowOf(knight)) > 1;
}

/// A knight has crossed the middle of the board, and White can't take it.
bool HasCrossed(const TBlackMove& move, TSquare knight)
{
    const auto& tracked = move.m_board.m_trackedSquares;
    if (std::find(std::begin(tracked), std::end(tracked), static_cast<std::int8_t>(knight)) !=
        std::end(tracked))
        return false;
    const bool bRight = FileOf(knight) > 3;
    const bool bRightAtRoot = FileOf(OriginOf(move.m_board, knight).m_square) > 3;
    return bRight != bRightAtRoot && !CanCapture<EColour::White>(move.m_board, knight);
}

template <class TTest>
bool AnyOf(TSquareSet squares, TTest test)
{
    while (squares) {
        if (test(PopLowestSquare(squares)))
            return true;
    }
    return false;
}

} // namespace

EVerdict TestCaptureKnight(TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const TSquareSet knights = BlackKnights(board);
    if (move.m_context.m_bCaptureKnightFlag)
        return AnyOf(knights, [&](TSquare knight) { return HasCrossed(move, knight); })
                   ? EVerdict::Doubtful
                   : EVerdict::Passes;
    if (board.m_nBlackPawns || (!IsBlackKingOnCorner(board) && IsKingHeldOnEdge(move)) ||
        WhiteFigures(board) >= 2)
        return EVerdict::Passes;
    return AnyOf(knights, [&](TSquare knight) { return IsAtLarge(board, knight); })
               ? EVerdict::Doubtful
               : EVerdict::Passes;
}

} // namespace corvina
