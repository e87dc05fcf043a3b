#include "heuristics/analysis.h"
#include "heuristics/attacksets.h"
#include "heuristics/blockedfigures.h"
#include "heuristics/keyfigure.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/sweepingrook.h"
#include "search/hooks.h"

namespace corvina
{
namespace
{

constexpr std::uint8_t FIRST_ROW = 0;

bool IsWhiteWeak(const TPositionFacts& f)
{
    constexpr int MANY_MAJORS = 3;
    return f.m_nWhiteMajors < MANY_MAJORS || 2 * f.m_nWhiteMaterial / 3 < f.m_nBlackMaterial;
}

/// Most of Black's figures are shut in: that is what the problem is about, and not a figure that
/// has yet to be developed.
bool IsBlackShutIn(const TPositionFacts& f, TSquareSet blocked)
{
    constexpr int MIN_BLOCKED = 2, MAX_MOVABLE = 1;
    return std::popcount(blocked) >= MIN_BLOCKED && f.m_nMovableFigures <= MAX_MOVABLE;
}

/// The list of blocked figures, in the order of their squares.
void ApplyBlockedFigures(TAnalysis& a, TSquareSet figures)
{
    a.Set(SH_DONTLETFIGUREUNBLOCK);
    THeuristicsParams& p = a.m_params;
    p.m_bUnblockListSet = true;
    for (p.m_nUnblockFigures = 0; figures && p.m_nUnblockFigures < MAX_UNBLOCK_FIGURES;
         ++p.m_nUnblockFigures)
    {
        const TSquare square = PopLowestSquare(figures);
        p.m_unblockSquares[p.m_nUnblockFigures] = static_cast<std::int8_t>(square);
        p.m_unblockSquaresAtRoot[p.m_nUnblockFigures] = static_cast<std::int8_t>(square);
        p.m_bUnblockListHasPawn |= a.m_board.m_board[square] == BLACK_PAWN;
    }
}

bool HasKeyRook(const TAnalysis& a)
{
    return a.Has(SH_KEYWHITEFIGURE) && a.m_params.m_bKeyFigureIsRook;
}

/// The key figure pins along a file or row on the edge of the board on which the Black king stands.
bool PinsAlongEdge(const TAnalysis& a)
{
    const TSquare key = a.m_params.m_keyFigureSquare, king = a.m_board.BlackKing();
    const bool bFile = FileOf(key) == FileOf(king) && (FileOf(king) == 0 || FileOf(king) == 7);
    const bool bRow = RowOf(key) == RowOf(king) && (RowOf(king) == 0 || RowOf(king) == 7);
    return bFile || bRow;
}

} // namespace

void ChooseBlockedFigures(TAnalysis& a)
{
    constexpr int MIN_PLIES = 7;
    const TSquareSet figures = FindBlockedFigures(a.m_board).Figures();
    if (a.m_board.m_nMoves >= MIN_PLIES && IsWhiteWeak(a.m_facts) &&
        IsBlackShutIn(a.m_facts, figures))
        ApplyBlockedFigures(a, figures);
}

void ChooseKeyFigure(TAnalysis& a)
{
    const TKeyFigure key = AnalyzeKeyWhiteFigure(a.m_board);
    if (!key.IsFound())
        return;
    a.Set(SH_KEYWHITEFIGURE);
    a.m_params.m_keyFigureSquare = key.m_square;
    a.m_params.m_pinnedFigureSquare = key.m_pinned;
    a.m_params.m_bKeyFigureIsRook = a.m_board.m_board[key.m_square] == WHITE_ROOK;
    // Pinned down and held on his square: both must leave White his play.
    if (!a.HasStrictKing() || a.m_trials.TryKingRule(true, a.m_params.m_bKingMoveExceptions))
        return;
    a.SetPlainEdge();
    if (!a.m_facts.m_bEdge)
        a.Clear(SH_KEEPKINGONTHEEDGE);
}

void HoldKingByKeyRook(TAnalysis& a)
{
    if (HasKeyRook(a) && PinsAlongEdge(a) && a.Has(SH_ASSERTBLACKKINGSURROUNDED))
        a.Replace(SH_ASSERTBLACKKINGSURROUNDED, SH_KEEPKINGONTHEEDGE);
}

void ListFiguresBesideKey(TAnalysis& a)
{
    const TSquareSet figures = FindBlockedFigures(a.m_board).Figures();
    if (a.Has(SH_KEYWHITEFIGURE) && figures && IsWhiteWeak(a.m_facts))
        ApplyBlockedFigures(a, figures);
}

void NoteShrinkableList(TAnalysis& a)
{
    const TPositionFacts& f = a.m_facts;
    const bool bAlmostStrict = a.HasStrictKing() && a.m_params.m_bSurroundAfterExceptions;
    const bool bHeld = a.Has(SH_ASSERTBLACKKINGSURROUNDED) || bAlmostStrict;
    const bool bStrong = f.m_nWhiteFigures >= 2 || f.m_nWhiteMaterial > f.m_nBlackMaterial;
    if (!a.Has(SH_DONTLETFIGUREUNBLOCK) || !bHeld || !bStrong)
        return;
    a.m_params.m_bUnblockShrinkable = true;
    a.m_params.m_nUnblockShrinkFigures = static_cast<std::int8_t>(f.m_nBlackFigures);
}

void DropKeyFigureOnDiagonal(TAnalysis& a)
{
    const TSquare diagonal = a.m_params.m_diagonalFigureSquare;
    if (a.Has(SH_KEYWHITEFIGURE) && a.Has(SH_DONTLEAVEMAINDIAGONAL) && diagonal != NO_KEY_SQUARE &&
        OnCommonLine(a.m_params.m_keyFigureSquare, diagonal))
        a.Clear(SH_KEYWHITEFIGURE);
}

void ChooseSweepingRook(TAnalysis& a)
{
    if (!IsSweepingRookType(a.m_board))
        return;
    a.Set(SH_SWEEPINGWHITEROOK);
    const TSquare key = a.m_params.m_keyFigureSquare;
    if (!HasKeyRook(a) || (RowOf(key) != FIRST_ROW && a.m_board.m_nWhiteRooks != 1))
        return;
    // The rook that sweeps the first row leaves a file on which it pins, but not the row.
    const bool bPinsOnRow = RowOf(key) == RowOf(a.m_board.BlackKing());
    a.Clear(bPinsOnRow ? SH_SWEEPINGWHITEROOK : SH_KEYWHITEFIGURE);
}

void ForceSafeModeForKeyFigure(TAnalysis& a)
{
    const TPositionFacts& f = a.m_facts;
    if (a.Has(SH_KEYWHITEFIGURE) && a.Has(SH_DONTLETFIGUREUNBLOCK) && !a.Has(SH_SEASNAKE) &&
        f.m_nWhiteFigures >= 2 && f.m_nMovableFigures >= 2)
        a.ForceSafeMode();
}

} // namespace corvina
