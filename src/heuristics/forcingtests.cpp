#include "heuristics/forcingtests.h"

#include "chess/sides.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtests.h"
#include "search/shortmate.h"

namespace corvina
{

namespace
{

/// Black's pass on a child, in the next slot, without heuristics.
TChessboard& PassOn(TChessboard& child)
{
    TChessboard& passed = ContextOf(child).MakeChild(child);
    TMove pass{child.BlackKing(), child.BlackKing(), 0, 0};
    passed.m_nHeuristics = passed.m_nHeuristicsParams = 0;
    passed.MakeBlackMove(&pass);
    return passed;
}

/// Half-moves of a mate in so many moves.
constexpr int PliesOf(int nMoves)
{
    return 2 * nMoves - 1;
}

/// Black's pseudo-legal moves but those of the king; stops counting above nLimit.
int CountMovesWithoutKing(const TChessboard& child, int nLimit)
{
    TMoveList moves;
    TSquareSet figures = TSide<EColour::Black>::Figures(child.m_board) & ~Bit(child.BlackKing());
    int nMoves = 0;
    while (figures && nMoves <= nLimit)
        nMoves += child.GenerateBlackFigureMoves(PopLowestSquare(figures), moves.data());
    return nMoves;
}

} // namespace

bool CanKingTakeChecker(const TChessboard& child)
{
    const int checker = child.m_blackChecker;
    if (checker != child.m_LastMove.m_to || !(KingZone(child.BlackKing()) & Bit(checker)))
        return false;
    return !IsAttackedBy<EColour::White>(child, child.m_board,
                                         TSets::Occupied(child.m_board) & ~Bit(child.BlackKing()),
                                         ~Bit(checker), checker);
}

bool ThreatensMate(TChessboard& child, int nMoves)
{
    TChessboard& passed = PassOn(child);
    if (IsMateInOne(passed))
        return true;
    if (nMoves < 2 || passed.m_nMoves < PliesOf(2))
        return false;
    return nMoves == 2 ? IsMateInTwo(passed)
                       : IsMateWithin(passed, PliesOf(nMoves)) == EMateTest::Mate;
}

bool KeepsStalemateNet(const TChessboard& child, int nFree)
{
    constexpr int FEW_REPLIES = 2;
    if (nFree > FEW_REPLIES || BlackMaterial(child) >= WhiteMaterial(child))
        return false;
    const int nReplies = nFree + CountMovesWithoutKing(child, FEW_REPLIES - nFree);
    return nReplies >= 1 && nReplies <= FEW_REPLIES;
}

bool AllowsMateInOne(TChessboard& child)
{
    TMoveList moves;
    const int nMoves = child.GenerateBlackMoves(moves.data());
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& reply = ContextOf(child).MakeChild(child);
        if (reply.MakeBlackMove(&moves[i]) && IsMateInOne(reply))
            return true;
    }
    return false;
}

} // namespace corvina
