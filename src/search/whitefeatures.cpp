#include "search/whitefeatures.h"

#include "heuristics/attacksets.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/kingsurroundings.h"
#include "search/movesafety.h"
#include "search/shortmate.h"
#include "search/solverequest.h"

#include <bit>

namespace corvina
{
namespace
{

using W = TSide<EColour::White>;

constexpr TSquareSet BLACK_RUNNER_ROWS = 0xFFFF00; ///< one and two steps from promotion
constexpr TSquareSet BLACK_LAST_STEP = 0xFF00;

/// If Black passed, White would mate in one.
bool ThreatensMateInOne(TChessboard& child)
{
    TChessboard passed = child;
    passed.m_pParent = &child;
    TMove pass{child.BlackKing(), child.BlackKing(), 0, 0};
    passed.MakeBlackMove(&pass);
    return IsMateInOne(passed);
}

/// Squares before a White pawn up to its promotion.
TSquareSet WayOf(int pawn)
{
    return Ray(DIR_UP, pawn);
}

} // namespace

TWhiteFeatures::TWhiteFeatures(TChessboard& board)
    : m_board(board), m_nMen(WhiteFigures(board) + board.m_nWhitePawns),
      m_blackPawns(board.m_nBlackPawns ? TSets::Equal(board.m_board, BLACK_PAWN) : 0),
      m_runners(m_blackPawns & BLACK_RUNNER_ROWS)
{
}

TScoreSums TWhiteFeatures::Of(TChessboard& child, const TMove& move) const
{
    TScoreSums sums;
    AddForce(child, move, sums);
    AddSafety(child, move, sums);
    AddPlace(child, move, sums);
    AddPawns(child, move, sums);
    if (child.m_nHeuristics != 0 && child.m_nPass == 1)
        AddHeuristics(child, move, sums);
    return sums;
}

/// Capture, check and threat, and what they leave to the Black king.
void TWhiteFeatures::AddForce(TChessboard& child, const TMove& move, TScoreSums& sums) const
{
    constexpr int DOUBLE = 22, SINGLE = 15, THREAT = 6, FLIGHT = 2, LAST_MAN = 3;
    bool bWinsAtOnce = false;
    if (child.m_blackChecker != NO_CHECK) {
        sums.m_nCoarse -= child.m_blackChecker == DOUBLE_CHECK ? DOUBLE : SINGLE;
    }
    else if (ThreatensMateInOne(child)) {
        sums.m_nCoarse -= THREAT;
        bWinsAtOnce = true;
    }
    sums.m_nFine += FLIGHT * FreeKingSquares(child);
    int nValue = CaptureValue(m_board.m_board[move.m_to] & KIND_MASK) + move.m_bEnPassant;
    if (m_nMen <= 1 && !bWinsAtOnce)
        nValue *= LAST_MAN;
    sums.m_nCoarse -= nValue;
}

void TWhiteFeatures::AddSafety(const TChessboard& child, const TMove& move, TScoreSums& sums) const
{
    constexpr int LOST_FIGURE = 2, LOST_CHECKER = 1, SAFE_QUEEN = 10;
    const TFigure kind = child.m_board[move.m_to] & KIND_MASK;
    if (kind == KIND_KING || (kind == KIND_PAWN && m_board.m_nWhitePawns > 1))
        return;
    const bool bLost = CanBeCapturedAtOnce<EColour::Black>(child);
    if (move.PromotionKind() == KIND_QUEEN)
        sums.m_nCoarse -= bLost ? SAFE_QUEEN / 2 : SAFE_QUEEN;
    else if (bLost)
        sums.m_nCoarse += child.m_blackChecker == NO_CHECK ? LOST_FIGURE : LOST_CHECKER;
}

void TWhiteFeatures::AddPlace(const TChessboard& child, const TMove& move, TScoreSums& sums) const
{
    const int king = child.BlackKing();
    sums.m_nFine += Distance(move.m_to, king) - Distance(move.m_from, king);
    const TFigure kind = child.m_board[move.m_to] & KIND_MASK;
    const EDirection direction = DirectionTo(move.m_to, king);
    if (direction != DIR_NONE && (kind & (IsDiagonal(direction) ? KIND_BISHOP : KIND_ROOK)) &&
        kind != KIND_KNIGHT)
        sums.m_nFine -= 1;
}

/// A pawn of Black's gets through with his next move.
bool TWhiteFeatures::BlackCanPromoteNext(const TChessboard& child) const
{
    TSquareSet pawns = TSets::Equal(child.m_board, BLACK_PAWN) & BLACK_LAST_STEP;
    const TSquareSet occupied = TSets::Occupied(child.m_board);
    const TSquareSet white = W::Figures(child.m_board);
    while (pawns) {
        const int pawn = PopLowestSquare(pawns);
        if (!(occupied & Bit(pawn - 8)) || (PawnAttacks(EColour::Black, pawn) & white))
            return true;
    }
    return false;
}

void TWhiteFeatures::AddPawns(const TChessboard& child, const TMove& move, TScoreSums& sums) const
{
    constexpr int LETS_PROMOTE = 4;
    if ((m_runners & BLACK_LAST_STEP) && child.m_blackChecker == NO_CHECK &&
        BlackCanPromoteNext(child))
        sums.m_nCoarse += LETS_PROMOTE;
    if (WhiteFigures(m_board) <= 1 && WhiteMajors(m_board) == 0)
        AddRun(child, move, sums);
}

/// White has hardly a figure: a pawn with a free way, or the king that goes to help it or to stop
/// Black's, runs. The route is counted in half-moves.
void TWhiteFeatures::AddRun(const TChessboard& child, const TMove& move, TScoreSums& sums) const
{
    const TFigure kind = m_board.m_board[move.m_from] & KIND_MASK;
    int nRoute = -1;
    if (kind == KIND_PAWN && !(WayOf(move.m_to) & TSets::Occupied(child.m_board))) {
        nRoute = 2 * (W::LAST_ROW - RowOf(move.m_to));
    }
    else if (kind == KIND_KING) {
        TSquareSet goals = 0;
        for (TSquareSet pawns = m_runners; pawns;)
            goals |= Bit(FileOf(PopLowestSquare(pawns)));
        for (TSquareSet pawns = m_board.m_nWhitePawns ? TSets::Equal(m_board.m_board, WHITE_PAWN)
                                                      : 0;
             pawns;)
        {
            const int pawn = PopLowestSquare(pawns);
            if (RowOf(pawn) >= W::EN_PASSANT_ROW)
                goals |= Bit(MakeSquare(FileOf(pawn), W::LAST_ROW));
        }
        while (goals) {
            const int goal = PopLowestSquare(goals);
            const int nSteps = Distance(move.m_to, goal);
            if (nSteps < Distance(move.m_from, goal) && (nRoute < 0 || 2 * nSteps < nRoute))
                nRoute = 2 * nSteps;
        }
    }
    if (nRoute < 0 || nRoute > child.m_nMoves)
        return;
    const int nBonus = (2240 - 80 * (nRoute / 2)) / 28 + 20;
    sums.m_nFine -= nBonus % 16;
    sums.m_nCoarse -= (nBonus - nBonus % 16) / 4;
}

/// Moves that serve the heuristics in force, or come near to breaking them.
void TWhiteFeatures::AddHeuristics(const TChessboard& child, const TMove& move,
                                   TScoreSums& sums) const
{
    const std::uint32_t nMask = child.m_nHeuristics;
    const TSquareSet flights = FreeKingSquareSet(child);
    constexpr TSquareSet EDGE = 0xFF818181818181FF;
    if ((nMask & SH_KEEPKINGONTHEEDGE) && child.BlackKingRing() == 0)
        sums.m_nCoarse += 2 * std::popcount(flights & ~EDGE);
    constexpr TSquareSet EXT_EDGE = 0xFFFFC3C3C3C3FFFF;
    if ((nMask & SH_KEEPKINGWITHINEXTEDGE) && child.BlackKingRing() <= 1)
        sums.m_nCoarse += 2 * std::popcount(flights & ~EXT_EDGE);
    constexpr int MANY_FLIGHTS = 2;
    if ((nMask & SH_ASSERTBLACKKINGSURROUNDED) && std::popcount(flights) > MANY_FLIGHTS)
        sums.m_nCoarse += 2 * (std::popcount(flights) - MANY_FLIGHTS);
    if ((nMask & SH_KEYSQUARE) && move.m_to == ContextOf(child).m_keySquare)
        sums.m_nCoarse -= 3;
    if ((child.m_boardFlags & TChessboard::FLAG_ISLAND) &&
        m_board.m_board[move.m_from] == WHITE_KING)
        sums.m_nFine -= 2 * CountKingSquares(child);
    if ((nMask & SH_AREKINGSNEAR) && m_board.m_board[move.m_from] == WHITE_KING)
        sums.m_nFine +=
            2 * (Distance(move.m_to, child.BlackKing()) - Distance(move.m_from, child.BlackKing()));
}

} // namespace corvina
