#include "heuristics/analysis.h"
#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/relaxpredicates.h"

#include <bit>

namespace corvina
{
namespace
{

/// A Black queen or rook can take a White queen, and what it loses by that is no more than she is.
int CountUnsafeQueens(const TChessboard& board)
{
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    const TSquareSet majors = TSets::Having(board.m_board, TSide<EColour::Black>::LINE_MASK);
    TSquareSet queens = TSets::Equal(board.m_board, WHITE_QUEEN);
    int nUnsafe = 0;
    while (queens) {
        const TSquare queen = PopLowestSquare(queens);
        const TSquareSet takers =
            AttackersOf<EColour::Black>(board, occupied, queen).All() & majors;
        nUnsafe += takers != 0 && CanCapture<EColour::Black>(board, queen);
    }
    return nUnsafe;
}

/// Black has nothing but a king and pawns, White hardly more than a pawn that promotes, and Black's
/// pawns can't move: stalemate is what Black hopes for.
bool HasStallEscape(const TChessboard& board, const TPositionFacts& facts)
{
    return facts.m_nBlackFigures == 0 && board.m_nBlackPawns > 0 && facts.m_nWhiteFigures <= 1 &&
           facts.m_bPawnPromotes && !CanBlackPawnsMove(board);
}

/// White's pieces are hardly able to mate, or Black's are at hand to prevent it.
bool IsSmallEnding(const TChessboard& b, const TPositionFacts& f)
{
    constexpr int CLOSE = 2, MANY_CLOSE = 3, MANY_MINORS = 4;
    const bool bNoMajors = f.m_nWhiteMajors == 0;
    if (f.m_nWhiteFigures < 2)
        return true;
    if (f.m_nWhiteFigures == 2 &&
        (b.m_nWhiteBishops == 2 || b.m_nWhitePawns + b.m_nBlackPawns == 0))
        return true;
    if (bNoMajors && CountBlackNear(b, CLOSE) >= MANY_CLOSE)
        return true;
    return b.m_nWhitePawns == 0 && b.m_nBlackBishops + b.m_nBlackKnights == 0 && bNoMajors &&
           f.m_nWhiteMinors < MANY_MINORS;
}

} // namespace

void GatherFacts(TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    TPositionFacts& f = a.m_facts;
    const int nUnsafe = CountUnsafeQueens(b);
    f.m_bUnsafeQueen = nUnsafe != 0;
    f.m_nWhiteQueens = b.m_nWhiteQueens - nUnsafe;
    f.m_nWhiteMajors = f.m_nWhiteQueens + b.m_nWhiteRooks;
    f.m_nWhiteMinors = b.m_nWhiteBishops + b.m_nWhiteKnights;
    f.m_nWhiteFigures = f.m_nWhiteMajors + f.m_nWhiteMinors;
    f.m_nBlackMajors = BlackMajors(b);
    f.m_nBlackFigures = BlackFigures(b);
    f.m_nMen = std::popcount(TSets::Occupied(b.m_board));
    f.m_nWhiteMaterial = WhiteMaterial(b);
    f.m_nBlackMaterial = BlackMaterial(b);
    f.m_nFreeSquares = FreeKingSquares(b);
    f.m_nGuards = CountKingGuards(b);
    f.m_nKingDistance = KingDistance(b);
    f.m_bEdge = IsBlackKingOnEdge(b);
    f.m_bCorner = IsBlackKingOnCorner(b);
    f.m_bPawnPromotes = WhitePawnCanPromote(b);
    f.m_mobility = FindBlackMobility(b);
    f.m_nMovableFigures = std::popcount(f.m_mobility.m_figures);
    f.m_nFreeBlackQueens =
        std::popcount(f.m_mobility.m_figures & TSets::Equal(b.m_board, BLACK_QUEEN));
    f.m_nUnblockedBlackMen = f.m_nMovableFigures + b.m_nBlackPawns;
    f.m_bStallEscape = HasStallEscape(b, f);
}

void SetMaterialFlags(TAnalysis& a)
{
    constexpr int MANY_FIGURES = 11;
    const TChessboard& b = a.m_board;
    const TPositionFacts& f = a.m_facts;
    if (WhiteFigures(b) + f.m_nBlackFigures + 2 > MANY_FIGURES)
        a.SetFlag(TChessboard::POSITION_MANYFIGURES);
    if (WhiteFigures(b) == 1 && b.m_nWhiteBishops == 1)
        a.SetFlag(TChessboard::POSITION_LONEBISHOP);
    if (IsSmallEnding(b, f))
        a.SetFlag(TChessboard::POSITION_SMALLENDING);
    if (f.m_nBlackFigures + b.m_nBlackPawns == 0)
        a.SetFlag(TChessboard::POSITION_BAREBLACKKING);
}

} // namespace corvina
