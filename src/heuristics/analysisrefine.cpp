#include "heuristics/analysis.h"
#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/relaxpredicates.h"
#include "heuristics/relaxsteps.h"

#include <bit>

namespace corvina
{
namespace
{

constexpr std::uint32_t EDGES = SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE;
constexpr std::uint32_t KING_FORMS = EDGES | SH_ASSERTBLACKKINGSURROUNDED;

/// White's figures are few, as the rules on swapping the forms take it.
bool HasFewWhiteFigures(const TAnalysis& a)
{
    return a.m_facts.m_nWhiteFigures <= 2;
}

bool HasPawnOnSeventhRow(const TChessboard& b)
{
    return (TSets::Equal(b.m_board, WHITE_PAWN) & TSquareSet{0xFF} << 48) != 0;
}

/// A queen or rook of White at most so far from the Black king.
int CountMajorsWithin(const TChessboard& b, int nDistance)
{
    TSquareSet majors = TSets::Having(b.m_board, TSide<EColour::White>::LINE_MASK);
    int nCount = 0;
    while (majors)
        nCount += Distance(PopLowestSquare(majors), b.BlackKing()) <= nDistance;
    return nCount;
}

/// White, outweighed, lives from a pawn that is about to promote.
bool LivesFromPromotion(const TAnalysis& a)
{
    constexpr int NEAR = 3, FEW_PAWNS = 2;
    const TChessboard& b = a.m_board;
    return a.m_facts.m_nWhiteMajors == 1 && CountMajorsWithin(b, NEAR) == 1 &&
           HasPawnOnSeventhRow(b) && b.m_nWhitePawns <= FEW_PAWNS &&
           a.m_facts.m_nWhiteMaterial < a.m_facts.m_nBlackMaterial;
}

void ProtectPromotion(TAnalysis& a)
{
    if (!LivesFromPromotion(a))
        return;
    a.Clear(KING_FORMS | SH_SAVEQUEENROOK);
    a.Set(SH_DONTLOSEANYFIGURES);
    a.m_params.m_nLoseFiguresMode = LOSE_NO_PAWNS_BEFORE_PROMOTION;
    a.ForceSafeMode();
}

/// Off the edge a king among figures that can move is better surrounded than held.
void SurroundOffEdge(TAnalysis& a)
{
    constexpr int MANY_GUARDS = 4, FEW_MEN = 6, MANY_FREE = 2;
    const TPositionFacts& f = a.m_facts;
    if (f.m_bEdge || !a.Has(SH_KEEPKINGONTHEEDGE) || f.m_nGuards > MANY_GUARDS ||
        f.m_nMovableFigures < 2 || f.m_nWhiteMaterial > f.m_nBlackMaterial)
        return;
    if (HasFewWhiteFigures(a) && f.m_nMen < FEW_MEN && f.m_nFreeSquares > MANY_FREE)
        return;
    a.Replace(SH_KEEPKINGONTHEEDGE, SH_ASSERTBLACKKINGSURROUNDED);
}

/// One queen or rook on a line to the king, with hardly a helper.
void HoldByLoneMajor(TAnalysis& a)
{
    constexpr int FEW_FREE = 2, FEW_FIGURES = 2;
    const TChessboard& b = a.m_board;
    const TPositionFacts& f = a.m_facts;
    const TSquareSet majors = TSets::Having(b.m_board, TSide<EColour::White>::LINE_MASK);
    if (a.Has(EDGES) || WhiteFigures(b) > FEW_FIGURES || !std::has_single_bit(majors) ||
        !OnCommonLine(LowestSquare(majors), b.BlackKing()))
        return;
    if (f.m_nFreeSquares <= FEW_FREE)
        a.Set(SH_ASSERTBLACKKINGSURROUNDED);
    else if (b.BlackKingRing() == 1)
        a.Set(SH_KEEPKINGWITHINEXTEDGE);
}

void SurroundUnguardedKing(TAnalysis& a)
{
    if (a.m_facts.m_nGuards < 2 && !a.Has(EDGES))
        a.Set(SH_ASSERTBLACKKINGSURROUNDED);
}

void LetKingRecede(TAnalysis& a)
{
    if (a.Has(SH_ASSERTBLACKKINGSURROUNDED) && !IsQueenKnightDrive(a))
        a.Clear(SH_DONTRECEDEBLACKKING);
}

/// On the edge, with few figures on a side: the surround heuristic may be the better one.
void SwapEdgeForSurround(TAnalysis& a)
{
    const TPositionFacts& f = a.m_facts;
    const bool bFew = HasFewWhiteFigures(a) || f.m_nBlackFigures <= 2;
    if (!f.m_bEdge || f.m_bCorner || !a.Has(SH_KEEPKINGONTHEEDGE) || a.HasStrictKing() || !bFew ||
        f.m_nGuards < 2)
        return;
    if (IsSurroundBetterThanEdge({a.m_board, a.m_context, &a.m_request, true}))
        a.Replace(SH_KEEPKINGONTHEEDGE, SH_ASSERTBLACKKINGSURROUNDED);
}

void SurroundHeldKing(TAnalysis& a)
{
    constexpr int FEW_FIGURES = 3;
    if (!a.Has(EDGES) && a.m_facts.m_nFreeSquares == 0 && a.m_facts.m_nWhiteFigures < FEW_FIGURES)
        a.Set(SH_ASSERTBLACKKINGSURROUNDED);
}

/// A king on the second ring may be kept within the two.
void ChooseExtEdge(TAnalysis& a)
{
    if (a.m_board.BlackKingRing() != 1 || a.Has(EDGES))
        return;
    bool bPasses = a.m_trials.TryExtEdge();
    if (!bPasses && a.Has(SH_ASSERTBLACKKINGSURROUNDED)) {
        a.m_params.m_bInclCorner = true;
        bPasses = a.m_trials.TryExtEdge();
        a.m_params.m_bInclCorner = bPasses;
    }
    if (!bPasses)
        return;
    a.Set(SH_KEEPKINGWITHINEXTEDGE);
    const bool bLoneRook = a.m_board.m_nWhiteRooks == 1 && WhiteFigures(a.m_board) == 1;
    if (!bLoneRook)
        a.Clear(SH_ASSERTBLACKKINGSURROUNDED);
}

/// A closed crowd on the edge: the king may step to the second ring and back.
void WidenCrowdedEdge(TAnalysis& a)
{
    constexpr int NEAR_KINGS = 3, MANY_NEAR = 3;
    const TPositionFacts& f = a.m_facts;
    if (!a.Has(SH_KEEPKINGONTHEEDGE) || a.HasStrictKing() || f.m_nFreeSquares > 1 ||
        f.m_nWhiteFigures < 2 || f.m_nKingDistance > NEAR_KINGS || f.m_nGuards < 2 ||
        CountBlackNear(a.m_board, 2) < MANY_NEAR)
        return;
    if (a.m_trials.TryExtEdge())
        a.Replace(SH_KEEPKINGONTHEEDGE, SH_KEEPKINGWITHINEXTEDGE);
}

/// A Black queen is the only figure that can move, and White has nothing to hold her: she falls, or
/// there is no edge to keep to.
void RelaxForBlackQueen(TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    const TPositionFacts& f = a.m_facts;
    const TSquareSet queens = TSets::Equal(b.m_board, BLACK_QUEEN);
    if (f.m_nFreeBlackQueens != 1 || !std::has_single_bit(queens) || WhiteMajors(b) > 0 ||
        f.m_bPawnPromotes || IsAttackedBy<EColour::White>(b, LowestSquare(queens)))
        return;
    a.RelaxEdgeOnCaptures(1, 0);
    a.m_params.m_bEdgeRelaxExtOnly = false;
}

/// The strict form must pass its trial with all that has been chosen since.
void CheckStrictForm(TAnalysis& a)
{
    if (!a.HasStrictKing() || a.m_trials.TryKingRule(true, a.m_params.m_bKingMoveExceptions))
        return;
    a.SetPlainEdge();
    if (!a.m_facts.m_bEdge)
        a.Clear(SH_KEEPKINGONTHEEDGE);
}

/// The squares diagonally next to the king's corner may count as edge.
bool CanIncludeCorner(const TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    const TSquare corner = MakeSquare(b.m_blackKingFile < 4 ? 0 : 7, b.m_blackKingRow < 4 ? 0 : 7);
    return Distance(b.BlackKing(), corner) <= 2;
}

/// The same for the plain form; what fails gives way to a form that asks for less.
void CheckPlainForm(TAnalysis& a)
{
    if (!a.Has(SH_KEEPKINGONTHEEDGE) || a.HasStrictKing())
        return;
    if (a.m_trials.TryHeuristics(SH_KEEPKINGONTHEEDGE))
        return;
    if (CanIncludeCorner(a)) {
        a.m_params.m_bInclCorner = true;
        if (a.m_trials.TryHeuristics(SH_KEEPKINGONTHEEDGE))
            return;
        a.m_params.m_bInclCorner = false;
    }
    if (a.m_params.m_nDeferMoves != 0)
        return;
    const bool bSurround = IsSurroundBetterThanEdge({a.m_board, a.m_context, &a.m_request, true});
    a.Replace(SH_KEEPKINGONTHEEDGE,
              bSurround ? SH_ASSERTBLACKKINGSURROUNDED : SH_KEEPKINGWITHINEXTEDGE);
}

void SurroundWithFigures(TAnalysis& a)
{
    constexpr int FEW_GUARDS = 2, MANY_FIGURES = 3;
    if (!a.Has(EDGES) && a.m_facts.m_nGuards <= FEW_GUARDS &&
        a.m_facts.m_nWhiteFigures >= MANY_FIGURES)
        a.Set(SH_ASSERTBLACKKINGSURROUNDED);
}

/// The kings face each other, and Black has hardly a figure to move: the king will be mated where
/// he stands.
bool IsKingPinnedDown(const TAnalysis& a)
{
    constexpr int CLOSE_KINGS = 2, FEW_FIGURES = 2;
    return a.m_facts.m_nKingDistance == CLOSE_KINGS && a.m_facts.m_nMovableFigures <= FEW_FIGURES &&
           !a.HasFlag(TChessboard::POSITION_BAREBLACKKING);
}

/// A king with few free squares stays surrounded in most solutions, whichever way he goes, while
/// each of the forms that ask for a place is broken in many: they are worth a pass only together
/// with it, where nothing else can happen.
void PreferSurround(TAnalysis& a)
{
    constexpr int MAX_FREE = 3, MAX_FREE_IF_STRICT = 2, NEAR_KINGS = 3;
    if (a.m_facts.m_nFreeSquares > MAX_FREE || LivesFromPromotion(a))
        return;
    if (!a.HasStrictKing() || !IsKingPinnedDown(a))
        a.Clear(EDGES);
    a.Set(SH_ASSERTBLACKKINGSURROUNDED);
    // With the White king at hand the net is close from the start.
    a.m_params.m_bSurroundedStrict = !a.Has(EDGES) && a.m_facts.m_nKingDistance <= NEAR_KINGS &&
                                     a.m_facts.m_nFreeSquares <= MAX_FREE_IF_STRICT;
}

/// The weaker forms come last, and what White can't hold for two moves is of no use.
void CheckWeakForms(TAnalysis& a)
{
    if (a.m_params.m_bSurroundedStrict)
        a.m_params.m_bSurroundedStrict = a.m_trials.TryHeuristics(SH_ASSERTBLACKKINGSURROUNDED);
    for (const std::uint32_t nForm : {SH_KEEPKINGWITHINEXTEDGE, SH_ASSERTBLACKKINGSURROUNDED}) {
        if (a.Has(nForm) && !a.m_trials.TryHeuristics(nForm))
            a.Clear(nForm);
    }
}

void ResolveConflicts(TAnalysis& a)
{
    if (a.Has(SH_DONTLOSEANYFIGURES))
        a.Clear(SH_SAVEQUEENROOK);
    if (a.Has(SH_DONTLETPROMOTEDFIGUREMOVE))
        a.Clear(SH_DONTLETPROMOTEDQUEENMOVE);
    if (a.HasStrictKing())
        a.Clear(SH_KEEPKINGWITHINEXTEDGE);
}

/// A lone knight can't do more against promotions than to hold off a queen, and she isn't feared
/// for long when White's queen is close.
void AdjustPromotedRules(TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    if (a.Has(SH_DONTLETPROMOTEDFIGUREMOVE) && b.m_nWhiteKnights == 1 && WhiteFigures(b) == 1 &&
        b.m_nWhitePawns == 0)
        a.Replace(SH_DONTLETPROMOTEDFIGUREMOVE, SH_DONTLETPROMOTEDQUEENMOVE);
    if (a.Has(SH_DONTLETPROMOTEDQUEENMOVE))
        a.m_params.m_bDropPromotedEarly = a.m_facts.m_bPawnPromotes;
}

} // namespace

void RefineSet(TAnalysis& a)
{
    constexpr void (*STEPS[])(TAnalysis&) = {
        ProtectPromotion,   SurroundOffEdge,      HoldByLoneMajor,    SurroundUnguardedKing,
        ChooseKeyFigure,    HoldKingByKeyRook,    LetKingRecede,      SwapEdgeForSurround,
        SurroundHeldKing,   ListFiguresBesideKey, ChooseExtEdge,      WidenCrowdedEdge,
        RelaxForBlackQueen, CheckStrictForm,      CheckPlainForm,     SurroundWithFigures,
        PreferSurround,     CheckWeakForms,       ResolveConflicts,   RefineByZugzwang,
        TryPromotedRules,   NoteShrinkableList,   AdjustPromotedRules};
    for (const auto step : STEPS)
        step(a);
}

} // namespace corvina
