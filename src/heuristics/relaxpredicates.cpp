#include "heuristics/relaxpredicates.h"

#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"

#include <algorithm>
#include <array>
#include <bit>

namespace corvina
{
namespace
{

constexpr TSquareSet NO_A_FILE = 0xFEFEFEFEFEFEFEFE;
constexpr TSquareSet NO_H_FILE = 0x7F7F7F7F7F7F7F7F;

template <EColour C>
TSquareSet Men(const TChessboard& b)
{
    return TSide<C>::Figures(b.m_board);
}

/// Queens, rooks, bishops and knights.
template <EColour C>
TSquareSet Figures(const TChessboard& b)
{
    return Men<C>(b) & ~TSets::Equal(b.m_board, TSide<C>::PAWN) & ~Bit(TSide<C>::King(b));
}

/// The squares to which the figure on a square can go, pins and checks apart.
template <EColour C>
TSquareSet TargetsOf(const TChessboard& b, int square)
{
    return AttacksOf<C>(b.m_board[square] & KIND_MASK, square, TSets::Occupied(b.m_board)) &
           ~Men<C>(b);
}

/// Squares that White attacks once the Black king is off the board.
TSquareSet AttackedThroughKing(const TChessboard& b)
{
    return AttackedSquares<EColour::White>(b, TSets::Occupied(b.m_board) & ~Bit(b.BlackKing()));
}

/// Squares that Black's men but the king guard.
TSquareSet GuardedByBlack(const TChessboard& b)
{
    return AttackedSquares<EColour::Black>(b, TSets::Occupied(b.m_board), ~Bit(b.BlackKing()));
}

TSquareSet QueenTargets(const TChessboard& b)
{
    TSquareSet targets = 0;
    TSquareSet queens = TSets::Equal(b.m_board, WHITE_QUEEN);
    while (queens)
        targets |= TargetsOf<EColour::White>(b, PopLowestSquare(queens));
    return targets;
}

bool ChecksFrom(const TChessboard& b, int from, int to)
{
    std::array<std::uint8_t, 64> aMailbox;
    std::copy(std::begin(b.m_board), std::end(b.m_board), aMailbox.begin());
    aMailbox[to] = aMailbox[from];
    aMailbox[from] = NO_FIGURE;
    return IsAttackedBy<EColour::Black>(b, aMailbox.data(), TSets::Occupied(aMailbox.data()),
                                        ALL_SQUARES, b.WhiteKing());
}

} // namespace

bool IsBlackKingOnEdge(const TChessboard& board)
{
    return board.BlackKingRing() == 0;
}

bool CanBlackPawnsMove(const TChessboard& board)
{
    const TSquareSet pawns = TSets::Equal(board.m_board, BLACK_PAWN);
    const TSquareSet forward = pawns >> 8;
    const TSquareSet captures = (forward & NO_A_FILE) >> 1 | (forward & NO_H_FILE) << 1;
    return (forward & ~TSets::Occupied(board.m_board)) != 0 ||
           (captures & Men<EColour::White>(board)) != 0;
}

bool AreBlackFiguresTiedToFiles(const TChessboard& board)
{
    TSquareSet figures = Figures<EColour::Black>(board);
    while (figures) {
        const TSquare square = PopLowestSquare(figures);
        const bool bPinned = board.IsPinnedToBlackKing(static_cast<std::int8_t>(FileOf(square)),
                                                       static_cast<std::int8_t>(RowOf(square)));
        const TSquareSet file = Ray(DIR_UP, square) | Ray(DIR_DOWN, square);
        if (!bPinned && (TargetsOf<EColour::Black>(board, square) & ~file))
            return false;
    }
    return true;
}

bool CanBlackFigureCheck(const TChessboard& board)
{
    TSquareSet figures = Figures<EColour::Black>(board);
    while (figures) {
        const TSquare from = PopLowestSquare(figures);
        TSquareSet targets = TargetsOf<EColour::Black>(board, from) & ~Bit(board.WhiteKing());
        while (targets) {
            if (ChecksFrom(board, from, PopLowestSquare(targets)))
                return true;
        }
    }
    return false;
}

bool OnlyPawnsReachBlackKing(const TChessboard& board)
{
    TSquareSet figures = Figures<EColour::Black>(board);
    while (figures) {
        if (TargetsOf<EColour::Black>(board, PopLowestSquare(figures)) &
            KingZone(board.BlackKing()))
            return false;
    }
    return true;
}

int CountDefendersOfQueenSquares(const TChessboard& board)
{
    const TSquareSet reached = QueenTargets(board) & KingZone(board.BlackKing());
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    int nDefenders = 0;
    TSquareSet figures = Figures<EColour::Black>(board);
    while (figures) {
        const TSquare square = PopLowestSquare(figures);
        const TFigure kind = board.m_board[square] & KIND_MASK;
        nDefenders += (AttacksOf<EColour::Black>(kind, square, occupied) & reached) != 0;
    }
    return nDefenders;
}

bool CanQueenKeepGuard(const TChessboard& board)
{
    TSquareSet rooks = TSets::Equal(board.m_board, BLACK_ROOK) & KingZone(board.BlackKing());
    if (board.m_nWhiteQueens != 1 || !std::has_single_bit(rooks) || FreeKingSquares(board) > 0)
        return false;
    const TSquare queen = LowestSquare(TSets::Equal(board.m_board, WHITE_QUEEN));
    const TSquareSet occupied = TSets::Occupied(board.m_board) & ~rooks & ~Bit(board.BlackKing());
    return (AttacksOf<EColour::White>(KIND_QUEEN, queen, occupied) & rooks) != 0;
}

bool HasFreeWhitePawn(const TChessboard& board)
{
    TSquareSet pawns = TSets::Equal(board.m_board, WHITE_PAWN);
    while (pawns) {
        if (!(Ray(DIR_UP, PopLowestSquare(pawns)) & Men<EColour::Black>(board)))
            return true;
    }
    return false;
}

bool CoversEdge(const TChessboard& board)
{
    const TSquare king = board.BlackKing();
    TSquareSet inner = 0;
    TSquareSet zone = KingZone(king);
    while (zone) {
        const TSquare square = PopLowestSquare(zone);
        if (Ring(FileOf(square), RowOf(square)) > board.BlackKingRing())
            inner |= Bit(square);
    }
    return (AttackedSquares<EColour::White>(board, TSets::Occupied(board.m_board) & ~Bit(king),
                                            Figures<EColour::White>(board)) &
            inner) != 0;
}

bool IsClosedCorner(const TChessboard& board)
{
    return IsBlackKingOnCorner(board) && FreeKingSquares(board) == 0 && BlackNeighbours(board) > 0;
}

bool IsWhiteKingShutIn(const TChessboard& board)
{
    const TSquare king = board.WhiteKing();
    const TSquareSet attacked =
        AttackedSquares<EColour::Black>(board, TSets::Occupied(board.m_board) & ~Bit(king));
    return IsEdge(FileOf(king)) && IsEdge(RowOf(king)) &&
           !(KingZone(king) & ~Men<EColour::White>(board) & ~attacked);
}

bool IsWhiteKingInDanger(const TChessboard& board)
{
    constexpr int MANY_SQUARES = 3;
    return WhiteMaterial(board) < BlackMaterial(board) &&
           std::popcount(GuardedByBlack(board) & KingZone(board.WhiteKing())) >= MANY_SQUARES;
}

bool HasLongQuietLines(const TChessboard& board)
{
    constexpr int LONG_TASK = 41;
    return board.m_nInitialMoves >= LONG_TASK && CountKingGuards(board) == 0;
}

int CountFreeInBox(const TChessboard& board, int nDistance)
{
    const TSquareSet taken = AttackedThroughKing(board) | Men<EColour::Black>(board);
    int nFree = 0;
    for (int square = 0; square < 64; ++square) {
        nFree += Distance(square, board.BlackKing()) <= nDistance && !(taken & Bit(square));
    }
    return nFree;
}

} // namespace corvina
