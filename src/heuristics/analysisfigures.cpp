#include "heuristics/analysis.h"
#include "heuristics/attacksets.h"
#include "heuristics/blockedfigures.h"
#include "heuristics/forcedmate.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/relaxpredicates.h"

#include <bit>

namespace corvina
{
namespace
{

constexpr TSquareSet DIAGONAL_OF_A1 = 0x8040201008040201, DIAGONAL_OF_H1 = 0x0102040810204080;

/// The long diagonal that ends on a corner.
TSquareSet MainDiagonalOf(int corner)
{
    return DIAGONAL_OF_A1 & Bit(corner) ? DIAGONAL_OF_A1 : DIAGONAL_OF_H1;
}

/// Black figures that can go to a square next to their king.
int CountFiguresReachingKing(const TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    const TSquareSet occupied = TSets::Occupied(b.m_board);
    TSquareSet figures = a.m_facts.m_mobility.m_figures;
    int nCount = 0;
    while (figures) {
        const TSquare from = PopLowestSquare(figures);
        const TFigure kind = b.m_board[from] & KIND_MASK;
        nCount += (AttacksOf<EColour::Black>(kind, from, occupied) & KingZone(b.BlackKing())) != 0;
    }
    return nCount;
}

/// A lone White bishop that reaches the corner of the Black king.
bool HasBishopOfCorner(const TChessboard& b)
{
    return b.m_nWhiteBishops == 1 && b.m_nWhiteKnights == 0 &&
           SquareColour(LowestSquare(TSets::Equal(b.m_board, WHITE_BISHOP))) ==
               SquareColour(b.BlackKing());
}

bool IsQueenTheLastMeans(const TAnalysis& a)
{
    constexpr int MANY_FIGURES = 3, FEW_REACHING = 2;
    const TPositionFacts& f = a.m_facts;
    if (f.m_nBlackFigures > MANY_FIGURES && f.m_nMovableFigures == 0)
        return false;
    if (f.m_bCorner && f.m_nWhiteMinors > 0 && !HasBishopOfCorner(a.m_board))
        return false;
    return f.m_bPawnPromotes || f.m_nWhiteFigures < 2 || f.m_nFreeSquares >= f.m_nWhiteFigures ||
           CountFiguresReachingKing(a) > FEW_REACHING || a.IsStalled();
}

bool IsRookTheLastMeans(const TAnalysis& a)
{
    constexpr int MANY_FIGURES = 5, MANY_MOVES = 5, GREAT_MATERIAL = 17;
    const TPositionFacts& f = a.m_facts;
    return f.m_nMovableFigures > MANY_FIGURES ||
           (f.m_nFreeSquares > 0 && f.m_nWhiteMaterial > GREAT_MATERIAL &&
            f.m_mobility.m_nMoves > MANY_MOVES);
}

/// The foremost Black pawn can promote in half of the moves that are left.
bool IsBlackPromotionNear(const TChessboard& b)
{
    constexpr int HOME_ROW = TSide<EColour::Black>::HOME_ROW;
    if (b.m_nBlackPawns == 0)
        return false;
    const int row = RowOf(LowestSquare(TSets::Equal(b.m_board, BLACK_PAWN)));
    // The first step from home is a double one.
    return b.m_nMoves / 2 >= (row == HOME_ROW ? row - 1 : row);
}

} // namespace

void ChooseMainDiagonal(TAnalysis& a)
{
    constexpr int FEW_FIGURES = 3;
    const TChessboard& b = a.m_board;
    if (!a.m_facts.m_bCorner || a.m_facts.m_nMovableFigures > FEW_FIGURES ||
        b.m_nBlackBishops != 1 || b.m_nWhiteBishops == 0)
        return;
    const TSquareSet bishop = TSets::Equal(b.m_board, BLACK_BISHOP);
    TMoveList moves;
    const int nMoves = b.GenerateBlackFigureMoves(LowestSquare(bishop), moves.data());
    if (nMoves != 1 || !(bishop & MainDiagonalOf(b.BlackKing())))
        return;
    a.Set(SH_DONTLEAVEMAINDIAGONAL);
    a.m_params.m_diagonalFigureSquare = LowestSquare(bishop);
    a.ForceSafeMode();
}

void PresetEdgeRelaxation(TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    const int nMinors = b.m_nBlackBishops + b.m_nBlackKnights;
    if (b.m_nWhiteQueens == 1 && WhiteFigures(b) == 1 && b.m_nBlackRooks == 1 && nMinors > 0 &&
        b.m_nBlackQueens == 0)
        a.RelaxEdgeOnCaptures(nMinors + 1, 0);
}

void ChooseForcedMate(TAnalysis& a)
{
    constexpr int MIN_PRELIMINARY_PLIES = 61, MAX_PLIES_IF_BLOCKED = 23, MANY_BLOCKED = 5;
    const TPositionFacts& f = a.m_facts;
    const TChessboard& b = a.m_board;
    if (b.m_nMoves < MIN_ANALYSED_PLIES || f.m_nMovableFigures == 0 || !IsForcedMateType(b))
        return;
    if (IsForcedMateWithOther(b, f.m_nWhiteMaterial, f.m_nBlackMaterial, f.m_nFreeSquares)) {
        ApplyFfmWithOther(b, a.m_params);
        a.Set(SH_FINDFORCEDMATE);
        return;
    }
    // Nothing but the king and the pawns moves: forcing play leads nowhere.
    const bool bBlocked = a.m_params.m_bCanApplyDlfuDynamically && f.m_nMovableFigures <= 1 &&
                          FindBlockedFigures(b).CountFigures() >= MANY_BLOCKED;
    if (bBlocked && b.m_nMoves > MAX_PLIES_IF_BLOCKED)
        return;
    const int nCode =
        SuggestFfmSettings(b, f.m_nWhiteMaterial, f.m_nBlackMaterial, f.m_nFreeSquares);
    if (nCode == 0)
        return;
    ApplyFfmSettings(b, nCode, a.m_params);
    a.Set(SH_FINDFORCEDMATE);
    a.m_params.m_bFfmPreliminary = b.m_nMoves >= MIN_PRELIMINARY_PLIES && b.BlackKingRing() < 2;
}

void ChooseSaveQueenRook(TAnalysis& a)
{
    constexpr int GREAT_MATERIAL = 22;
    const TChessboard& b = a.m_board;
    if (a.m_facts.m_nWhiteMaterial >= GREAT_MATERIAL)
        return;
    if (b.m_nWhiteQueens == 1 && b.m_nWhiteRooks == 0 && IsQueenTheLastMeans(a))
        a.Set(SH_SAVEQUEENROOK);
    if (b.m_nWhiteQueens == 0 && b.m_nWhiteRooks == 1 &&
        a.m_facts.m_nWhiteMinors <= b.m_nWhitePawns + 1 && IsRookTheLastMeans(a))
        a.Set(SH_SAVEQUEENROOK);
}

void ChoosePromotedFigures(TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    const TPositionFacts& f = a.m_facts;
    if (!IsBlackPromotionNear(b))
        return;
    const bool bWeak = f.m_nWhiteFigures < 2 &&
                       (b.m_nWhiteQueens == 0 || f.m_nWhiteMaterial < f.m_nBlackMaterial) &&
                       (f.m_nBlackMajors > 0 || f.m_nWhiteFigures == 1);
    a.Set(bWeak ? SH_DONTLETPROMOTEDFIGUREMOVE : SH_DONTLETPROMOTEDQUEENMOVE);
}

bool IsQueenKnightDrive(const TAnalysis& a)
{
    constexpr int FEW_NEIGHBOURS = 3;
    const TChessboard& b = a.m_board;
    return b.m_nWhiteQueens == 1 && b.m_nWhiteKnights == 1 && WhiteFigures(b) == 2 &&
           b.BlackKingRing() >= 2 && BlackNeighbours(b) < FEW_NEIGHBOURS;
}

void ChooseReceding(TAnalysis& a)
{
    constexpr int MANY_GUARDS = 4;
    const TPositionFacts& f = a.m_facts;
    if (IsQueenKnightDrive(a))
        a.Set(SH_DONTRECEDEBLACKKING);
    if (WhiteMajors(a.m_board) == 0 && f.m_nBlackMajors == 0 && f.m_nKingDistance == 2 &&
        !f.m_bEdge && f.m_nGuards < MANY_GUARDS && !a.IsStalled())
        a.Set(SH_DONTRECEDEBLACKKING);
}

void ChooseBlackQueen(TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    if (a.m_facts.m_nFreeBlackQueens == 0 || !CanBlackFigureCheck(b))
        return;
    a.Set(SH_DONTLETBLACKQUEENCHECKTWICE);
    TSquareSet queens = TSets::Equal(b.m_board, BLACK_QUEEN);
    while (queens)
        a.m_params.m_bDropQueenCheckEarly |= CanCapture<EColour::White>(b, PopLowestSquare(queens));
}

void TryPromotedRules(TAnalysis& a)
{
    constexpr std::uint32_t RULES = SH_DONTLETPROMOTEDQUEENMOVE | SH_DONTLETPROMOTEDFIGUREMOVE;
    if (!a.Has(RULES))
        return;
    const std::uint32_t nEdge = a.m_facts.m_nBlackFigures ? SH_KEEPKINGONTHEEDGE : 0;
    const auto passes = [&] {
        return a.m_trials.TryHeuristics(a.m_board.m_nHeuristics & (RULES | nEdge));
    };
    bool bPasses = passes();
    if (!bPasses && a.m_facts.m_bEdge && a.HasStrictKing()) {
        a.SetPlainEdge();
        bPasses = passes();
    }
    if (!bPasses)
        a.Clear(RULES);
}

} // namespace corvina
