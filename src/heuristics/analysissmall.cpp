#include "chess/sides.h"
#include "heuristics/analysis.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/onecolour.h"
#include "heuristics/relaxpredicates.h"

#include <bit>

namespace corvina
{
namespace
{

/// The Black king stands in the middle of the board, off its outer files and rows.
bool IsInCentre(const TChessboard& b)
{
    return b.m_blackKingFile >= 2 && b.m_blackKingFile <= 5 && b.m_blackKingRow >= 2 &&
           b.m_blackKingRow <= 5;
}

bool HasFlight(const TChessboard& b)
{
    return HasBlackKingFlight(b, b.m_blackKingFile, b.m_blackKingRow);
}

/// A free king against few men: his place tells nothing yet.
void NoteFreeKing(TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    const TPositionFacts& f = a.m_facts;
    if (f.m_nBlackFigures > 1)
        return;
    const bool bLoneMajor =
        WhiteMajors(b) == 1 && b.m_nWhiteKnights == 0 && b.m_nWhitePawns + b.m_nBlackPawns == 0;
    if (IsInCentre(b) ? f.m_nFreeSquares >= 2 && !(bLoneMajor && b.m_nWhiteBishops > 0)
                      : f.m_nFreeSquares >= 2 || !f.m_bEdge)
        a.SetFlag(TChessboard::POSITION_FREEKING);
}

/// A rook or queen against a single figure: that one will be lost first.
void ChooseCapture(TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    const TPositionFacts& f = a.m_facts;
    if (f.m_nBlackFigures != 1 || b.m_nWhitePawns + b.m_nBlackPawns > 0)
        return;
    const bool bRookOnly = b.m_nWhiteRooks == 1 && b.m_nWhiteQueens == 0;
    if (bRookOnly && f.m_nWhiteMinors == 0) {
        if (b.m_nBlackKnights && !HasFlight(b))
            return;
        if (b.m_nBlackKnights)
            a.Set(SH_CAPTUREKNIGHT);
        if (b.m_nBlackQueens == 0)
            a.RelaxEdgeOnCaptures(1, b.m_nBlackKnights ? 3 : 1);
    }
    else if (bRookOnly && f.m_nWhiteMinors == 1 && b.m_nBlackKnights) {
        a.Set(SH_CAPTUREKNIGHT);
        if (f.m_bEdge)
            a.Replace(SH_KEEPKINGONTHEEDGE, SH_KEEPKINGWITHINEXTEDGE);
        a.RelaxEdgeOnCaptures(1, 2);
    }
    else if (b.m_nWhiteQueens == 1 && WhiteFigures(b) == 1 && b.m_nBlackRooks) {
        a.RelaxEdgeOnCaptures(1, 0);
    }
}

/// White's last means: two minor figures, or a rook and bishops that are outweighed.
void ChooseDontLose(TAnalysis& a)
{
    constexpr int FAR = 4;
    const TChessboard& b = a.m_board;
    const TPositionFacts& f = a.m_facts;
    if (WhiteMajors(b) == 0 && f.m_nWhiteMinors == 2 && Abs(b.m_nWhitePawns - b.m_nBlackPawns) <= 1)
    {
        a.SetFlag(TChessboard::POSITION_FREEKING);
        if (b.m_nWhiteKnights == 2)
            a.Set(SH_DONTLOSEANYFIGURES);
    }
    if (b.m_nWhiteRooks == 1 && b.m_nWhiteBishops == 2 && b.m_nWhitePawns == 0 &&
        f.m_nWhiteMaterial < f.m_nBlackMaterial && f.m_nKingDistance > FAR)
        a.Set(SH_DONTLOSEANYFIGURES);
}

/// A lone Black bishop keeps to the squares of one colour, or to a few of them.
void ChooseOneColour(TAnalysis& a)
{
    constexpr int LONG_DIAGONAL = 3;
    const TChessboard& b = a.m_board;
    if (b.m_nBlackBishops != 1 || a.m_facts.m_nBlackFigures != 1)
        return;
    if (FindBishopCage(b).IsFound() && b.m_nBlackPawns > 0)
        a.Set(SH_ONECOLORPLAYPOSSIBLE);
    const TSquare bishop = LowestSquare(TSets::Equal(b.m_board, BLACK_BISHOP));
    if (std::popcount(a.m_facts.m_mobility.m_targets) < LONG_DIAGONAL || WhiteMajors(b) > 0)
        return;
    const TSquareSet white = TSets::Equal(b.m_board, WHITE_BISHOP);
    if (b.m_nWhiteBishops == 1 && SquareColour(LowestSquare(white)) != SquareColour(bishop)) {
        a.SetFlag(TChessboard::POSITION_OPPOSITEBISHOPS);
        if (b.m_nWhiteKnights == 0)
            a.Set(SH_ONECOLORPLAYPOSSIBLE);
    }
}

/// Queens and the pawns that may become ones.
void ChooseQueens(TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    const TPositionFacts& f = a.m_facts;
    if (f.m_nFreeBlackQueens > 0 && b.m_nWhiteQueens > 0 && f.m_nWhiteFigures > 1 &&
        b.m_nWhitePawns + b.m_nBlackPawns > 0)
        a.Set(SH_DONTLETBLACKQUEENCHECKTWICE);
    if (b.m_nWhiteQueens != 1 || WhiteFigures(b) != 1 || b.m_nBlackPawns == 0)
        return;
    a.Set(SH_SAVEQUEENROOK);
    if (!f.m_bStallEscape)
        a.Set(SH_AREKINGSNEAR);
}

/// The net around a king off the edge.
void ChooseSurround(TAnalysis& a)
{
    constexpr int FEW_GUARDS = 3;
    const TPositionFacts& f = a.m_facts;
    const bool bBare = a.HasFlag(TChessboard::POSITION_BAREBLACKKING);
    const int nLimit = bBare && f.m_nGuards <= FEW_GUARDS ? 3 : 2;
    if (!f.m_bEdge && f.m_nFreeSquares <= nLimit)
        a.Set(SH_ASSERTBLACKKINGSURROUNDED);
}

/// The kings close to each other, both sides with minor figures and pawns only.
void ChooseRace(TAnalysis& a)
{
    const TPositionFacts& f = a.m_facts;
    if (f.m_nWhiteMajors > 0 || f.m_nBlackMajors > 0 || f.m_nWhiteFigures > 1 ||
        f.m_nKingDistance != 2 || a.IsStalled())
        return;
    a.Set(SH_DONTRECEDEBLACKKING);
    if (a.m_board.m_nBlackPawns > 0)
        a.Set(SH_DONTLETPROMOTEDQUEENMOVE);
}

/// What the rules above leave to be put in order.
void TidyUp(TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    if (b.m_nWhiteRooks > 0 && a.m_facts.m_nBlackFigures + b.m_nBlackPawns <= 1)
        a.Clear(SH_DONTLOSEANYFIGURES);
    if (a.m_facts.m_bEdge)
        TryStrictForms(a);
    if (WhiteMajors(b) == 0 && b.m_nWhiteKnights == 2 && b.m_nWhiteBishops == 0)
        a.Clear(SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE);
    if (a.Has(SH_DONTLETPROMOTEDFIGUREMOVE))
        a.Clear(SH_DONTLETPROMOTEDQUEENMOVE);
}

} // namespace

void CheckSmallPosition(TAnalysis& a, bool bFewFigures)
{
    a.m_facts.m_bSmallChecked = true;
    if (!bFewFigures) {
        ChooseOneColour(a);
        return;
    }
    a.SetFlag(TChessboard::POSITION_FEWFIGURES);
    NoteFreeKing(a);
    ChooseCapture(a);
    ChooseDontLose(a);
    ChooseOneColour(a);
    ChooseQueens(a);
    ChooseRace(a);
    ChooseSurround(a);
    TidyUp(a);
}

} // namespace corvina
