#include "heuristics/analysis.h"
#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"

#include <bit>

namespace corvina
{
namespace
{

constexpr int MIN_PLIES = 13;

/// Squares over which the Black king can walk as the board stands, his own left out.
TSquareSet KingRegion(const TChessboard& b)
{
    const TSquare king = b.BlackKing();
    const TSquareSet closed =
        AttackedSquares<EColour::White>(b, TSets::Occupied(b.m_board) & ~Bit(king)) |
        (TSide<EColour::Black>::Figures(b.m_board) & ~Bit(king));
    TSquareSet region = Bit(king), front = region;
    while (front) {
        const TSquareSet next = KingZone(PopLowestSquare(front)) & ~closed & ~region;
        region |= next;
        front |= next;
    }
    return region & ~Bit(king);
}

/// The kings face each other, and Black's can't get out of a small region: White waits for
/// zugzwang, and positions come back on the way.
bool IsKingHeldInRegion(const TAnalysis& a)
{
    constexpr int SMALL_REGION = 4;
    return a.m_facts.m_nKingDistance <= 2 && a.m_facts.m_nMovableFigures <= 1 &&
           std::popcount(KingRegion(a.m_board)) <= SMALL_REGION;
}

/// One figure against one, both free to move: they chase each other.
bool IsDuel(const TAnalysis& a)
{
    constexpr int WIDE_REACH = 4;
    const TPositionFacts& f = a.m_facts;
    return f.m_nWhiteFigures == 1 && f.m_nBlackFigures == 1 && f.m_nMovableFigures == 1 &&
           f.m_nWhiteMajors == 0 && f.m_nBlackMajors == 0 &&
           std::popcount(f.m_mobility.m_targets) >= WIDE_REACH;
}

/// Two Black pawns of a file, of which the first can step, and no White pawn can take it: it gives
/// Black moves that count.
bool HasSteppingDoubledPawn(const TChessboard& b)
{
    constexpr TSquareSet FILE_A = 0x0101010101010101, INNER_ROWS = 0x00FFFFFFFFFFFF00;
    const TSquareSet pawns = TSets::Equal(b.m_board, BLACK_PAWN) & INNER_ROWS;
    const TSquareSet white = TSets::Equal(b.m_board, WHITE_PAWN);
    for (int file = 0; file < 8; ++file) {
        const TSquareSet onFile = pawns & FILE_A << file;
        if (!(onFile & (onFile - 1)))
            continue;
        const TSquare first = LowestSquare(onFile);
        TSquareSet neighbours = 0;
        if (file > 0)
            neighbours |= FILE_A << (file - 1);
        if (file < 7)
            neighbours |= FILE_A << (file + 1);
        if (b.m_board[first + TSide<EColour::Black>::FORWARD] == NO_FIGURE && !(white & neighbours))
            return true;
    }
    return false;
}

/// In a sea snake positions come back, and the repetition says nothing of the zugzwang.
bool NeedsSafeModeForSeaSnake(const TAnalysis& a)
{
    return a.Has(SH_SEASNAKE) && !a.m_params.m_bSeaSnakeQuickMode &&
           !HasSteppingDoubledPawn(a.m_board);
}

} // namespace

void DecideSafeMode(TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    const TPositionFacts& f = a.m_facts;
    if (a.m_bSafeMode || b.m_nMoves < MIN_PLIES)
        return;
    if (WhiteFigures(b) == 0 && b.m_nWhitePawns == 1)
        return;
    const bool bOutweighed = b.m_nBlackPawns == 0 && f.m_nBlackFigures == 1 &&
                             2 * f.m_nBlackMaterial < f.m_nWhiteMaterial;
    if (NeedsSafeModeForSeaSnake(a) || a.Has(SH_SWEEPINGWHITEROOK) || bOutweighed ||
        IsKingHeldInRegion(a) || IsDuel(a))
        a.ForceSafeMode();
}

void ForceSafeModeForLonePiece(TAnalysis& a)
{
    constexpr std::uint32_t EXCEPTIONS =
        SH_DONTLETFIGUREUNBLOCK | SH_SINGLEQUEENMATE | SH_REDUCTIONTOGLOBREGPOS;
    const TChessboard& b = a.m_board;
    if (!a.m_bSafeMode && !a.Has(EXCEPTIONS) && WhiteFigures(b) + b.m_nWhitePawns == 1)
        a.ForceSafeMode();
}

} // namespace corvina
