#include "heuristics/analysis.h"
#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"
#include "heuristics/relaxpredicates.h"

#include <bit>

namespace corvina
{
namespace
{

/// Tasks with fewer half-moves need no finer form.
constexpr int MIN_PLIES_FOR_EXCEPTIONS = 9;

bool HasTimeForExceptions(const TAnalysis& a)
{
    return a.m_board.m_nMoves >= MIN_PLIES_FOR_EXCEPTIONS;
}

/// Black figures that guard a square next to their king.
int CountBlackGuards(const TChessboard& b)
{
    const TSquareSet occupied = TSets::Occupied(b.m_board);
    TSquareSet figures = TSide<EColour::Black>::Figures(b.m_board) &
                         ~TSets::Equal(b.m_board, BLACK_PAWN) & ~Bit(b.BlackKing());
    int nGuards = 0;
    while (figures) {
        const TSquare from = PopLowestSquare(figures);
        const TFigure kind = b.m_board[from] & KIND_MASK;
        nGuards += (AttacksOf<EColour::Black>(kind, from, occupied) & KingZone(b.BlackKing())) != 0;
    }
    return nGuards;
}

/// Few of Black's figures can move, or White has a queen with a helper: the king's place may tell
/// the way of the solution.
bool IsKingOffEdgeHeld(const TAnalysis& a)
{
    constexpr int MANY_GUARDS = 4;
    const TPositionFacts& f = a.m_facts;
    return f.m_nMovableFigures <= 1 || (f.m_nMovableFigures == 2 && f.m_nGuards < MANY_GUARDS) ||
           (f.m_nWhiteQueens > 0 && f.m_nWhiteFigures >= 2);
}

/// Black can't free himself by his pawns.
void ChooseAmongBlockedMen(TAnalysis& a)
{
    constexpr int MANY_IN_ALL = 7, MANY_NEAR = 4;
    const TPositionFacts& f = a.m_facts;
    if (HasTimeForExceptions(a) && f.m_nMovableFigures == 0 && a.m_trials.TryKingRule(true, false))
    {
        a.SetStrictKing(true);
        a.m_params.m_bSurroundAfterExceptions = f.m_nMovableFigures > 0;
        return;
    }
    const int nBlack = CountBlackGuards(a.m_board), nWhite = CountMajorsGuardingKing(a.m_board);
    const bool bOpen = nBlack > nWhite + 2 && nBlack + nWhite < MANY_IN_ALL;
    if ((!bOpen && CountBlackNear(a.m_board, 2) >= MANY_NEAR) || f.m_nWhiteQueens >= 2)
        a.SetStrictKing(false);
}

/// White is outweighed, and must mate the king where it stands.
void ChooseByMaterial(TAnalysis& a)
{
    constexpr int MANY_GUARDS = 4, FEW_FLIGHTS = 2, GREAT_MATERIAL = 20;
    const TPositionFacts& f = a.m_facts;
    const int w = f.m_nWhiteMaterial, b = f.m_nBlackMaterial;
    const bool bBlocked = f.m_nMovableFigures == 0;
    const bool bNet = f.m_nGuards >= 2 && f.m_nFreeSquares <= 1;
    if ((bBlocked && f.m_nBlackFigures > 0 && a.m_trials.TryKingRule(true, false)) ||
        (w < b && f.m_nGuards > MANY_GUARDS && f.m_nFreeSquares <= FEW_FLIGHTS) ||
        (bBlocked && bNet && w > GREAT_MATERIAL && w + w / 2 < b) ||
        (bBlocked && 2 * w < b && a.m_board.m_whiteChecker == NO_CHECK))
        a.SetStrictKing(false);
}

/// At least five of the eight squares around a king off the edge are closed to it, and among them a
/// complete side of three.
bool IsKingNetPossible(const TChessboard& b)
{
    constexpr int MAX_OPEN = 3;
    if (b.BlackKingRing() == 0)
        return false;
    const TSquareSet open = FreeKingSquareSet(b);
    if (std::popcount(open) > MAX_OPEN)
        return false;
    const int king = b.BlackKing();
    const auto isClosed = [&](int first, int step) {
        return !(open & (Bit(first) | Bit(first + step) | Bit(first + 2 * step)));
    };
    return isClosed(king + 7, 1) || isClosed(king - 9, 1) || isClosed(king - 9, 8) ||
           isClosed(king - 7, 8);
}

/// Both sides have little room: the heavy figures must break through, wherever the king is.
bool IsClosedPosition(const TAnalysis& a)
{
    return a.m_facts.m_nMovableFigures == 0 && !CanBlackPawnsMove(a.m_board);
}

/// The free squares outnumber the figures that guard them: a king that must not move would be too
/// much to ask.
void WeakenUnguardedForm(TAnalysis& a)
{
    if (a.HasStrictKing() && a.m_facts.m_nGuards < a.m_facts.m_nFreeSquares)
        a.SetPlainEdge();
}

} // namespace

bool TryStrictForms(TAnalysis& a)
{
    if (a.m_trials.TryKingRule(true, false)) {
        a.SetStrictKing(false);
        return true;
    }
    if (!HasTimeForExceptions(a) || !a.m_trials.TryKingRule(true, true))
        return false;
    a.SetStrictKing(true);
    return true;
}

void ChooseKingOffEdge(TAnalysis& a)
{
    if (a.m_facts.m_bEdge || !IsKingOffEdgeHeld(a))
        return;
    if (!CanBlackPawnsMove(a.m_board))
        ChooseAmongBlockedMen(a);
    if (!a.HasStrictKing())
        ChooseByMaterial(a);
}

void ChooseEdge(TAnalysis& a)
{
    const TPositionFacts& f = a.m_facts;
    if (!f.m_bEdge && !IsKingNetPossible(a.m_board))
        return;
    if (WhiteMajors(a.m_board) > 2 && IsClosedPosition(a))
        return;
    if (!a.HasStrictKing())
        a.SetPlainEdge();
    if (!a.HasStrictKing() && (f.m_bCorner || f.m_bPawnPromotes || f.m_nWhiteMajors > 0))
        TryStrictForms(a);
    WeakenUnguardedForm(a);
    if (!f.m_bEdge) {
        if (!a.HasStrictKing())
            a.Clear(SH_KEEPKINGONTHEEDGE);
        return;
    }
    if (a.HasStrictKing())
        a.Clear(SH_KEEPKINGWITHINEXTEDGE | SH_ASSERTBLACKKINGSURROUNDED);
    else if (f.m_nFreeSquares <= 1 && HasTimeForExceptions(a) && f.m_nMovableFigures == 0)
        a.SetStrictKing(true);
}

} // namespace corvina
