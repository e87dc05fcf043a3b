#include "chess/sides.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/relaxpredicates.h"
#include "heuristics/relaxsteps.h"

#include <algorithm>
#include <bit>

namespace corvina
{
namespace
{

bool HasFreeKing(const TChessboard& b)
{
    return (b.m_nPositionFlags & TChessboard::POSITION_FREEKING) != 0;
}

int Figures(const TChessboard& b)
{
    return WhiteFigures(b) + BlackFigures(b);
}

int Pawns(const TChessboard& b)
{
    return b.m_nWhitePawns + b.m_nBlackPawns;
}

bool HasFlight(const TChessboard& b)
{
    return HasBlackKingFlight(b, b.m_blackKingFile, b.m_blackKingRow);
}

/// Squares next to the Black king that hold none of his figures.
int OpenNeighbours(const TChessboard& b)
{
    return std::popcount(KingZone(b.BlackKing())) - BlackNeighbours(b);
}

// The strict form

/// A lone queen holds the king on the edge who could leave his square.
bool LoneQueenHoldsKing(const TChessboard& b)
{
    return b.m_nWhiteQueens == 1 && WhiteFigures(b) == 1 && BlackFigures(b) >= 2 &&
           KingDistance(b) == 2 && IsBlackKingOnEdge(b) && HasFlight(b) && !CanBlackPawnsMove(b);
}

bool RooksHoldTiedFigures(const TChessboard& b)
{
    constexpr int CLOSE_FIGURES = 6;
    return IsBlackKingOnEdge(b) && b.m_nWhiteRooks == 2 && WhiteFigures(b) > 2 &&
           FreeKingSquares(b) == 0 && CountBlackNear(b, 2) > CLOSE_FIGURES &&
           AreBlackFiguresTiedToFiles(b);
}

/// Exceptions are the right next step of a king who must not move.
bool CallsForExceptions(const TChessboard& b)
{
    const int nOpen = OpenNeighbours(b);
    return LoneQueenHoldsKing(b) || nOpen == 1 ||
           (b.m_nWhiteQueens > 0 && CountKingGuards(b) >= 2 &&
            CountDefendersOfQueenSquares(b) >= 2) ||
           (Figures(b) < 4 && nOpen == 2) || CanQueenKeepGuard(b) || RooksHoldTiedFigures(b);
}

/// The list of figures is off for one pass, so that a lone White figure is tried against men that
/// are free to move.
bool SuspendsList(const TRelaxation& r)
{
    constexpr int MIN_FIGURES = 3;
    return r.Has(SH_DONTLETFIGUREUNBLOCK) && !r.m_bListIsBack && WhiteFigures(r.m_board) == 1 &&
           r.m_context.m_nUnblockFigures >= MIN_FIGURES;
}

// Surround or edge

bool HasOnlyRookNextToKing(const TChessboard& b)
{
    return BlackFigures(b) == 1 &&
           (TSets::Equal(b.m_board, BLACK_ROOK) & KingZone(b.BlackKing())) != 0;
}

/// A White queen works together with a minor figure.
bool HasQueenWithMinor(const TChessboard& b)
{
    return b.m_nWhiteQueens > 0 && b.m_nWhiteBishops + b.m_nWhiteKnights > 0 &&
           !HasOnlyRookNextToKing(b);
}

/// The key figure is a rook on the edge line of the Black king.
bool HasKeyRookOnEdgeOfKing(const TRelaxation& r)
{
    const TChessboard& b = r.m_board;
    const int nSquare = r.m_context.m_keyFigureSquare;
    if (!r.Has(SH_KEYWHITEFIGURE) || !IsBlackKingOnEdge(b) || nSquare > 63 ||
        b.m_board[nSquare] != WHITE_ROOK)
        return false;
    return (IsEdge(b.m_blackKingFile) && FileOf(nSquare) == b.m_blackKingFile) ||
           (IsEdge(b.m_blackKingRow) && RowOf(nSquare) == b.m_blackKingRow);
}

/// All squares that are free to the king lie on the edge.
bool StaysOnEdge(const TChessboard& b)
{
    TSquareSet free = FreeKingSquareSet(b);
    if (!free)
        return false;
    while (free) {
        const TSquare square = PopLowestSquare(free);
        if (Ring(FileOf(square), RowOf(square)) > 0)
            return false;
    }
    return true;
}

/// The White king stands two squares away, on the third line from the edge of the Black king.
bool StandsOpposite(const TChessboard& b)
{
    const auto opposite = [](int black, int white) {
        return (black == 0 && white == 2) || (black == 7 && white == 5);
    };
    const int nSum =
        Abs(b.m_whiteKingFile - b.m_blackKingFile) + Abs(b.m_whiteKingRow - b.m_blackKingRow);
    return nSum < 4 && (opposite(b.m_blackKingFile, b.m_whiteKingFile) ||
                        opposite(b.m_blackKingRow, b.m_whiteKingRow));
}

/// Two figures of White keep the king on the edge more easily than surrounded.
bool DoesEdgeSuitFewFigures(const TChessboard& b)
{
    if (IsBlackKingOnEdge(b) && StaysOnEdge(b))
        return true;
    return KingDistance(b) == 2 && (IsBlackKingOnCorner(b) || StandsOpposite(b));
}

} // namespace

bool IsSurroundBetterThanEdge(const TRelaxation& r)
{
    constexpr int FEW_FREE_SQUARES = 3;
    const TChessboard& b = r.m_board;
    const bool bQueenWithMinor = HasQueenWithMinor(b);
    if (HasKeyRookOnEdgeOfKing(r) || (HasFreeKing(b) && !bQueenWithMinor))
        return false;
    if (WhiteFigures(b) <= 2 && (!bQueenWithMinor || DoesEdgeSuitFewFigures(b)))
        return false;
    if (WhiteMajors(b) >= 2 && WhiteMaterial(b) < BlackMaterial(b))
        return false;
    if (WhiteFigures(b) >= 4 && IsClosedCorner(b))
        return false;
    return FreeKingSquares(b) < FEW_FREE_SQUARES;
}

namespace
{

bool HasOnlyQueenAndKnights(const TChessboard& b)
{
    return b.m_nWhiteQueens > 0 && b.m_nWhiteKnights > 0 && b.m_nWhiteRooks == 0 &&
           b.m_nWhiteBishops == 0 && b.m_nWhitePawns == 0;
}

/// The king stands on a corner, or diagonally next to one that a Black figure holds.
bool CornerBelongsToEdge(const TChessboard& b)
{
    if (IsBlackKingOnCorner(b))
        return true;
    const int file = b.m_blackKingFile, row = b.m_blackKingRow;
    const auto isSecond = [](int coordinate) { return coordinate == 1 || coordinate == 6; };
    const TSquare corner = MakeSquare(file < 4 ? 0 : 7, row < 4 ? 0 : 7);
    return isSecond(file) && isSecond(row) && (b.m_board[corner] & COLOUR_BLACK);
}

int ReplaceEdgeBySurround(TRelaxation& r)
{
    r.Replace(SH_KEEPKINGONTHEEDGE, SH_ASSERTBLACKKINGSURROUNDED);
    return r.Ended();
}

/// What comes after the strict form and its exceptions.
int EndStrictForm(TRelaxation& r)
{
    const TChessboard& b = r.m_board;
    if (!IsBlackKingOnEdge(b))
        return ReplaceEdgeBySurround(r);
    r.m_context.m_bKingMustNotMove = false;
    if (r.m_context.m_nMovableBlackFigures < 2)
        return r.Ended();
    if (!HasFreeKing(b) && WhiteMajors(b) == 2 && b.m_nWhiteBishops > 0 && !HasFlight(b))
        return ReplaceEdgeBySurround(r);
    if (!IsSurroundBetterThanEdge(r))
        return r.Ended();
    if (!HasOnlyQueenAndKnights(b))
        return ReplaceEdgeBySurround(r);
    r.m_context.m_bEdgeDroppedToSurround = true;
    r.m_context.m_bInclCorner = CornerBelongsToEdge(b);
    return r.Ended();
}

// After the plain form

/// Squares around the king that his own figures near him don't shut.
bool HasLittleRoom(const TChessboard& b)
{
    constexpr int LITTLE_ROOM = 4;
    return CountFreeInBox(b, 2) < LITTLE_ROOM;
}

bool HasRoomInBox(const TChessboard& b)
{
    const int nFree = CountFreeInBox(b, 3);
    return IsBlackKingOnCorner(b) ? nFree > 6 : IsBlackKingOnEdge(b) && nFree > 8;
}

bool ShouldKeepExtEdge(const TChessboard& b)
{
    constexpr int KINGS = 2;
    const int nWhitePieces = WhiteFigures(b) + b.m_nWhitePawns + 1;
    if ((Figures(b) + KINGS > 12 && nWhitePieces > 5) || CountKingGuards(b) > 2)
        return false;
    if (WhiteMajors(b) == 0 && !WhitePawnCanPromote(b))
        return false;
    if (WhiteMaterial(b) > BlackMaterial(b) || b.m_nBlackQueens == 0 || FreeKingSquares(b) <= 1 ||
        HasLittleRoom(b) || BlackNeighbours(b) >= 2)
        return true;
    return nWhitePieces <= 3 && WhiteMajors(b) == 0 && HasRoomInBox(b);
}

/// White shuts the three squares by which the king on the inner corner of his two rings would leave
/// them: attacks them, or has a blocked pawn there.
bool IsInnerCornerShut(const TChessboard& b)
{
    const int file = b.m_blackKingFile < 4 ? 2 : 5, row = b.m_blackKingRow < 4 ? 2 : 5;
    const int inFile = file == 2 ? 1 : -1, inRow = row == 2 ? 1 : -1;
    const int aExits[][2] = {
        {file + inFile, row}, {file, row + inRow}, {file + inFile, row + inRow}};
    return std::all_of(std::begin(aExits), std::end(aExits), [&](const int(&exit)[2]) {
        const TSquare square = MakeSquare(exit[0], exit[1]);
        return b.IsAttackedByWhite(static_cast<std::int8_t>(exit[0]),
                                   static_cast<std::int8_t>(exit[1])) ||
               (b.m_board[square] == WHITE_PAWN && b.m_board[square + 8] == BLACK_PAWN);
    });
}

void KeepWithinExtEdge(TRelaxation& r)
{
    r.Set(SH_KEEPKINGWITHINEXTEDGE);
    if (IsInnerCornerShut(r.m_board))
        r.m_context.m_bInclCorner = true;
}

bool CallsForExtEdge(const TChessboard& b)
{
    if (!HasFreeKing(b))
        return ShouldKeepExtEdge(b);
    const bool bBothHaveMajors = WhiteMajors(b) > 0 && BlackMajors(b) > 0;
    return !bBothHaveMajors && (WhiteMajors(b) > 0 || WhitePawnCanPromote(b));
}

/// White has enough to surround a king with few free squares.
bool CallsForSurround(const TChessboard& b)
{
    if (WhiteFigures(b) < 2 || FreeKingSquares(b) > 2 || Figures(b) + Pawns(b) <= 4)
        return false;
    const bool bFarMinors = WhiteFigures(b) <= 2 && WhiteMajors(b) == 0 && KingDistance(b) > 2;
    return !bFarMinors && !(b.m_nWhiteKnights == 2 && b.m_nWhitePawns == 0);
}

/// A White king with pawns alone surrounds the king only with many of them around him.
bool CallsForSurroundByPawns(const TChessboard& b)
{
    constexpr int MANY_PAWNS = 5, BOX = 3;
    if (FreeKingSquares(b) >= 2 || b.m_nWhitePawns < MANY_PAWNS)
        return false;
    int nLowest = b.m_blackKingRow - BOX;
    if (nLowest == 2) // the pawns of the second row just below count too
        nLowest = 1;
    int nPawns = 0;
    TSquareSet pawns = TSets::Equal(b.m_board, WHITE_PAWN);
    while (pawns) {
        const TSquare square = PopLowestSquare(pawns);
        nPawns += Abs(FileOf(square) - b.m_blackKingFile) <= BOX && RowOf(square) >= nLowest &&
                  RowOf(square) <= b.m_blackKingRow + BOX;
    }
    return nPawns >= MANY_PAWNS;
}

} // namespace

TStepResult RelaxStrictKing(TRelaxation& r)
{
    if (!r.Has(SH_KEEPKINGONTHEEDGE) || !r.m_context.m_bKingMustNotMove)
        return std::nullopt;
    if (SuspendsList(r)) {
        r.m_context.m_bUnblockSuspended = true;
        return r.Drop(SH_DONTLETFIGUREUNBLOCK);
    }
    if (!r.m_context.m_bKingMoveExceptions && CallsForExceptions(r.m_board)) {
        r.m_context.m_bKingMoveExceptions = true;
        return r.Ended();
    }
    return EndStrictForm(r);
}

TStepResult RelaxExtEdge(TRelaxation& r)
{
    if (!r.Has(SH_KEEPKINGWITHINEXTEDGE))
        return std::nullopt;
    if (r.m_context.m_bExtEdgeMoveOnly) {
        r.m_context.m_bExtEdgeMoveOnly = false;
        return r.Ended();
    }
    r.Clear(SH_KEEPKINGWITHINEXTEDGE);
    if (FreeKingSquares(r.m_board) <= 1 || CoversEdge(r.m_board))
        r.Set(SH_ASSERTBLACKKINGSURROUNDED);
    return r.Ended();
}

int RelaxPlainEdge(TRelaxation& r)
{
    const TChessboard& b = r.m_board;
    if (r.m_context.m_bEdgeDroppedToSurround)
        return ReplaceEdgeBySurround(r);
    r.Clear(SH_KEEPKINGONTHEEDGE);
    const int nRing = b.BlackKingRing();
    if (nRing == 0 && WhiteFigures(b) == 0 && !WhitePawnCanPromote(b)) {
        if (CallsForSurroundByPawns(b))
            r.Set(SH_ASSERTBLACKKINGSURROUNDED);
        return r.Ended();
    }
    if (nRing <= 1 && CallsForExtEdge(b))
        KeepWithinExtEdge(r);
    if (!r.Has(SH_KEEPKINGWITHINEXTEDGE) && CallsForSurround(b))
        r.Set(SH_ASSERTBLACKKINGSURROUNDED);
    if (HasFreeKing(b) && nRing < 2 && !r.Has(SH_ASSERTBLACKKINGSURROUNDED))
        KeepWithinExtEdge(r);
    if (!r.Has(SH_KEEPKINGWITHINEXTEDGE) && FreeKingSquares(b) <= 1)
        r.Set(SH_ASSERTBLACKKINGSURROUNDED);
    return r.Ended();
}

} // namespace corvina
