#include "heuristics/attacksets.h"
#include "heuristics/kingblocks.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"

namespace corvina
{
namespace
{

constexpr int STRICT_LIMIT = 2;

/// White's pawns that soon promote: those of the sixth and seventh row.
constexpr TSquareSet NEAR_PROMOTION = 0x00FFFF0000000000;

/// A move of White under test.
class TWhiteMove
{
public:
    explicit TWhiteMove(const TChessboard& child)
        : m_child(child), m_nFigures(WhiteFigures(child)),
          m_bCheck(child.m_blackChecker != NO_CHECK), m_captured(CapturedFigure(child))
    {
    }

    bool IsDoubtful() const
    {
        const int nLimit = Limit();
        if (m_child.m_nPositionFlags & TChessboard::POSITION_FEWFIGURES)
            return IsOpenWithFewMen(nLimit);
        return m_bCheck ? IsOpenInCheck(nLimit) : IsOpenInQuiet(nLimit + Bonus());
    }

private:
    int Limit() const
    {
        int nLimit = m_bCheck ? 3 : 2;
        if (!m_bCheck && m_nFigures == 1 && (m_child.m_nHeuristics & SH_SAVEQUEENROOK))
            nLimit = 3;
        if (IsSurroundFlexible())
            nLimit += m_child.m_nWhiteQueens > 2 && m_nFigures < 5 ? 2 : 1;
        return nLimit + (m_child.m_LastMove.PromotionKind() == KIND_QUEEN) +
               IsAbovePawn(m_captured);
    }

    /// White's material closes squares fast, or Black has nothing to answer with.
    bool IsSurroundFlexible() const
    {
        if (m_child.m_nWhiteQueens >= 2 ||
            (m_child.m_nPositionFlags & TChessboard::POSITION_BAREBLACKKING))
            return true;
        return m_child.m_nWhiteRooks && m_child.BlackKingRing() == 0 &&
               (m_child.m_nWhiteQueens ||
                (TSets::Equal(m_child.m_board, WHITE_PAWN) & NEAR_PROMOTION));
    }

    bool IsOpenWithFewMen(int nLimit) const
    {
        const bool bHeavy = WhiteMajors(m_child) && m_nFigures + (KingDistance(m_child) < 4) > 2;
        return bHeavy ? IsSurroundOpenAfterWhite(m_child, nLimit)
                      : IsSurroundOpenForMinors(m_child, nLimit);
    }

    /// Black without figures is given more room.
    int Bonus() const
    {
        if (BlackFigures(m_child) || m_nFigures < 3)
            return 0;
        return m_captured == BLACK_PAWN ? 2 : 1;
    }

    /// One of White's last two moves took the queen that Black has no longer.
    bool HasTradedQueen() const
    {
        return m_child.m_nWhiteQueens && !m_child.m_nBlackQueens &&
               (m_captured == BLACK_QUEEN || CapturedFigure(Ancestor(m_child, 2)) == BLACK_QUEEN);
    }

    bool IsOpenInCheck(int nLimit) const
    {
        if (CountSurroundFree(m_child, nLimit, ESurroundRule::InCheck) <= nLimit ||
            HasTradedQueen())
            return false;
        if (m_child.m_board[m_child.m_blackChecker] != WHITE_QUEEN)
            return true;
        return m_nFigures + (m_child.BlackKingRing() == 0) < 4 && !IsCheckByNewQueen();
    }

    /// The checking queen was promoted by White's move before.
    bool IsCheckByNewQueen() const
    {
        const TMove& last = m_child.m_LastMove;
        const TChessboard* pBefore = Ancestor(m_child, 2);
        return last.m_to == m_child.m_blackChecker && RowOf(last.m_from) == 7 && pBefore &&
               pBefore->m_LastMove.PromotionKind() == KIND_QUEEN &&
               pBefore->m_LastMove.m_to == last.m_from;
    }

    ESurroundRule Rule() const
    {
        const int nHeavy = m_child.m_nWhiteQueens + (m_child.m_nWhiteRooks > 0);
        return nHeavy >= 2 || (nHeavy == 1 && HasRookLineAtKing(m_child))
                   ? ESurroundRule::HeavyFigures
                   : ESurroundRule::Plain;
    }

    bool IsOpenInQuiet(int nLimit) const
    {
        const int nFree = CountSurroundFree(m_child, nLimit, Rule());
        if (nFree <= nLimit || HasTradedQueen())
            return false;
        if (nLimit > 2 || nFree - nLimit >= 2 || !m_child.m_nWhiteRooks ||
            m_child.BlackKingRing() != 1)
            return true;
        return IsNextToEdgeOpen(nLimit, nFree);
    }

    /// A king next to the edge with one free square too many, against a rook that may take it.
    bool IsNextToEdgeOpen(int nLimit, int nFree) const
    {
        if (HasRookLineAtKing(m_child) || IsSurroundMendable(m_child, nFree - nLimit))
            return false;
        if (FreeKingSquares(*m_child.m_pParent) > nFree)
            return true;
        return m_child.m_nWhiteQueens && HasQueenContact(m_child) &&
               CountSurroundFree(m_child, nLimit, ESurroundRule::Queens) > nLimit;
    }

    const TChessboard& m_child;
    const int m_nFigures;
    const bool m_bCheck;
    const TFigure m_captured; ///< by White's move
};

} // namespace

bool IsSurroundLostByWhite(const TChessboard& child)
{
    const TThreadContext& context = ContextOf(child);
    if ((child.m_nHeuristics & SH_FINDFORCEDMATE) && context.m_bFfmCustom)
        return false;
    if (context.m_bSurroundedStrict)
        return IsSurroundOpenAfterWhite(child, STRICT_LIMIT);
    return child.m_blackChecker != DOUBLE_CHECK && TWhiteMove(child).IsDoubtful();
}

} // namespace corvina
