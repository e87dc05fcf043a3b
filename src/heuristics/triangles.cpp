#include "heuristics/triangles.h"

#include "heuristics/attacksets.h"
#include "heuristics/blackmobility.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/lastmoves.h"
#include "heuristics/tempo.h"
#include "search/solverequest.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace corvina
{
namespace
{

constexpr int MIN_PLIES = 15;
constexpr int MOVES_OF_WALK = 3;

/// Queens and rooks alone don't wait.
bool HasOnlyMajors(const TChessboard& board)
{
    const int nMajors = WhiteMajors(board) + BlackMajors(board);
    return nMajors == std::popcount(TSets::Occupied(board.m_board)) - 2;
}

/// Black's king moves, or more than one of his figures, or one that has a choice.
bool IsMobile(const TBlackMobility& mobility)
{
    return mobility.m_nKingMoves != 0 || std::popcount(mobility.m_figures) > 1 ||
           std::popcount(mobility.m_targets) > 1;
}

/// Something of White's can be taken.
bool CanTake(const TChessboard& board, const TBlackMobility& mobility)
{
    return (mobility.m_targets & TSide<EColour::White>::Figures(board.m_board)) != 0;
}

/// A pawn is about to promote.
bool HasRunningPawn(const TChessboard& board)
{
    constexpr TSquareSet ROWS = 0xFFFF00;
    TSquareSet pawns = TSets::Equal(board.m_board, BLACK_PAWN) & ROWS;
    while (pawns) {
        if (board.m_board[PopLowestSquare(pawns) + TSide<EColour::Black>::FORWARD] == NO_FIGURE)
            return true;
    }
    return false;
}

/// Black, were it his turn, could play no more than a waiting move or one of a pawn.
bool IsHeld(const TChessboard& board, bool bMustMove)
{
    const TBlackMobility mobility = FindBlackMobility(board);
    return !IsMobile(mobility) && !CanTake(board, mobility) &&
           (!bMustMove || mobility.m_nMoves != 0);
}

/// White's three moves one after the other, Black passing; the position comes back.
bool WalksAround(const TChessboard& root, TSquare origin, TSquare first, TSquare second)
{
    TChessboard board = root;
    for (const TMove move :
         {TMove{origin, first, 0, 0}, TMove{first, second, 0, 0}, TMove{second, origin, 0, 0}})
    {
        TChessboard after;
        if (!PlayWithoutLine(board, move, after) || !IsHeld(after, false) ||
            IsAttackedBy<EColour::Black>(after, move.m_to))
            return false;
        board = after;
    }
    return std::memcmp(board.m_board, root.m_board, sizeof board.m_board) == 0;
}

bool FindTriangleOf(const TChessboard& root, TSquare origin, THeuristicsParams& params)
{
    const TSquareSet empty = ~TSets::Occupied(root.m_board);
    const TSquareSet around = KingZone(origin) & empty;
    for (TSquareSet rest = around; rest;) {
        const TSquare first = PopLowestSquare(rest);
        for (TSquareSet others = KingZone(first) & around; others;) {
            const TSquare second = PopLowestSquare(others);
            if (!WalksAround(root, origin, first, second))
                continue;
            params.m_triangleOrigin = origin;
            params.m_aTriangleFields[0] = first;
            params.m_aTriangleFields[1] = second;
            return true;
        }
    }
    return false;
}

TSquareSet TriangleOf(const THeuristicsParams& p)
{
    return p.m_triangleOrigin > 63 ? 0
                                   : Bit(p.m_triangleOrigin) | Bit(p.m_aTriangleFields[0] & 63) |
                                         Bit(p.m_aTriangleFields[1] & 63);
}

bool IsTriangleMove(const TMove& move, TSquareSet triangle)
{
    return !move.IsNull() && (triangle & Bit(move.m_from)) && (triangle & Bit(move.m_to));
}

/// White's latest moves that were made on the triangle, one after the other.
int CountWalkedMoves(const TChessboard& board, TSquareSet triangle)
{
    int nMoves = 0;
    for (const TChessboard* p = board.m_pParent; p && p->m_pParent && nMoves < MOVES_OF_WALK;
         p = Ancestor(*p, 2))
    {
        if (!IsTriangleMove(p->m_LastMove, triangle))
            break;
        ++nMoves;
    }
    return nMoves;
}

/// Black has done more than to wait.
bool HasBlackActed(const TChessboard& board)
{
    const TMove& last = board.m_LastMove;
    return board.m_whiteChecker != NO_CHECK || CapturedFigure(board) != NO_FIGURE ||
           last.PromotionKind() != 0 || last.m_to == board.BlackKing();
}

} // namespace

bool DetectTriangles(const TChessboard& root, THeuristicsParams& params)
{
    params.m_triangleOrigin = NO_KEY_SQUARE;
    params.m_aTriangleFields[0] = params.m_aTriangleFields[1] = 0;
    if (root.m_nMoves < MIN_PLIES || !root.IsWhiteToMove() || root.m_whiteChecker != NO_CHECK ||
        HasOnlyMajors(root) || HasRunningPawn(root) || !IsHeld(root, true) || HasWhiteTempo(root))
        return false;
    return FindTriangleOf(root, root.WhiteKing(), params);
}

bool FitsTriangle(const TChessboard& board)
{
    const TThreadContext& context = ContextOf(board);
    const TSquareSet triangle = TriangleOf(context);
    if (!triangle)
        return false;
    const TChessboard& root = board.GetRootBoard();
    const TFigure figure = root.m_board[context.m_triangleOrigin];
    const TSquareSet white = TSide<EColour::White>::Figures(board.m_board);
    const TSquareSet atHome = TSide<EColour::White>::Figures(root.m_board);
    return (figure & COLOUR_WHITE) && (white & ~triangle) == (atHome & ~triangle) &&
           std::popcount(white & triangle) == 1 &&
           board.m_board[LowestSquare(white & triangle)] == figure;
}

int GenerateTriangleMoves(TChessboard& board, TMove* pMoves)
{
    const THeuristicsParams& p = ContextOf(board);
    const TSquareSet triangle = TriangleOf(p);
    const int nWalked = CountWalkedMoves(board, triangle);
    if (nWalked == 0 || nWalked == MOVES_OF_WALK || HasBlackActed(board) || !FitsTriangle(board))
        return 0;
    const TMove& last = board.m_pParent->m_LastMove;
    TSquareSet left = triangle & ~Bit(last.m_from) & ~Bit(last.m_to);
    if (std::popcount(triangle) != MOVES_OF_WALK)
        return 0;
    const TMove move{last.m_to, PopLowestSquare(left), 0, 0};
    if (board.m_board[move.m_to] != NO_FIGURE || !IsPlayable(board, move))
        return 0;
    pMoves[0] = move;
    return 1;
}

void MoveTriangleMovesFirst(const TChessboard& board, int nMoves, TMove* pMoves)
{
    const TSquareSet triangle = TriangleOf(ContextOf(board));
    std::stable_partition(pMoves, pMoves + nMoves,
                          [&](const TMove& move) { return IsTriangleMove(move, triangle); });
}

void PreferTriangle(TChessboard& root, const THeuristicsParams& params)
{
    const TSquareSet triangle = TriangleOf(params);
    if (triangle && (root.m_board[params.m_triangleOrigin] & COLOUR_WHITE))
        PreferRound(
            root,
            {params.m_triangleOrigin, params.m_aTriangleFields[0], params.m_aTriangleFields[1]},
            root.m_board[params.m_triangleOrigin]);
}

void PreferRound(TChessboard& root, const std::array<TSquare, 3>& aWalk, TFigure figure)
{
    for (std::size_t i = 0; i < aWalk.size(); ++i)
        root.m_pRequest->m_preferredMoves.Add(aWalk[i], figure, aWalk[(i + 1) % aWalk.size()],
                                              root.BlackKing());
    root.m_nPositionFlags |= TChessboard::POSITION_PREFERREDMOVES;
}

} // namespace corvina
