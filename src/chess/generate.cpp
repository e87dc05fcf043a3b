#include "chess/linecontext.h"
#include "chess/sides.h"

#include <cstring>

namespace corvina
{
namespace
{

/// No figure has more moves than a queen in the middle of an empty board.
constexpr int MAX_FIGURE_MOVES = 27;

/// What the generators of one position share.
struct TOccupancy
{
    TSquareSet m_all;
    TSquareSet m_own;
};

template <EColour C>
TOccupancy OccupancyOf(const TChessboard& b)
{
    return {TSets::Occupied(b.m_board), TSide<C>::Figures(b.m_board)};
}

TMove MakeMoveRecord(int from, int to, TFigure promotion = 0)
{
    return {static_cast<std::uint8_t>(from), static_cast<std::uint8_t>(to), promotion, 0};
}

TMove* AddPromotions(int from, int to, TMove* pOut)
{
    for (const TFigure kind : g_aPromotionKinds)
        *pOut++ = MakeMoveRecord(from, to, kind);
    return pOut;
}

/// A pawn's move, as four promotions when it arrives on the last row.
template <EColour C>
TMove* AddPawnMove(int from, int to, TMove* pOut)
{
    if (RowOf(to) == TSide<C>::LAST_ROW)
        return AddPromotions(from, to, pOut);
    *pOut++ = MakeMoveRecord(from, to);
    return pOut;
}

/// The jumps of a king or knight that don't end on a figure of the own side. Every jump is written;
/// the end of the list passes on only behind those that stand.
TMove* AddJumps(int from, const std::uint8_t* pTargets, int nTargets, TSquareSet own, TMove* pOut)
{
    for (int i = 0; i < nTargets; ++i) {
        *pOut = MakeMoveRecord(from, pTargets[i]);
        pOut += ~(own >> pTargets[i]) & 1;
    }
    return pOut;
}

/// The last squares of the rays of a direction.
constexpr TSquareSet EdgeOf(EDirection direction)
{
    constexpr TSquareSet TOP = 0xFF00000000000000;
    constexpr TSquareSet BOTTOM = 0xFF;
    constexpr TSquareSet RIGHT = 0x8080808080808080;
    constexpr TSquareSet LEFT = 0x0101010101010101;
    TSquareSet edge = 0;
    edge |= g_aDirectionRow[direction] > 0 ? TOP : 0;
    edge |= g_aDirectionRow[direction] < 0 ? BOTTOM : 0;
    edge |= g_aDirectionFile[direction] > 0 ? RIGHT : 0;
    edge |= g_aDirectionFile[direction] < 0 ? LEFT : 0;
    return edge;
}

/// The moves along one line up to the first figure, which is added when it is an enemy. The moves
/// to all seven squares that a line can have are written as one vector; the end of the list passes
/// on only by those that exist.
template <EDirection D>
TMove* AddRay(int from, const TOccupancy& occupancy, TMove* pOut)
{
    constexpr int STEP = g_aDirectionStep[D];
    const TSquareSet ray = Ray(D, from);
    const TSquareSet stops = ray & (occupancy.m_all | EdgeOf(D));
    const int last = STEP > 0 ? std::countr_zero(stops) : 63 - std::countl_zero(stops);
    const int nBlocked = (ray & occupancy.m_own & Bit(last & 63)) != 0;
    const int nMoves = g_geometry.m_aSteps[from][last + 1] - nBlocked;

    static_assert(std::endian::native == std::endian::little);
    std::uint32_t anMoves[8];
    const std::uint32_t nBase = FromTo(static_cast<TSquare>(from), static_cast<TSquare>(from));
    for (int i = 0; i < 8; ++i)
        anMoves[i] = nBase + (static_cast<std::uint32_t>(STEP * (i + 1)) << 8);
    std::memcpy(static_cast<void*>(pOut), anMoves, sizeof anMoves);
    return pOut + nMoves;
}

TMove* AddRookMoves(int from, const TOccupancy& occupancy, TMove* pOut)
{
    pOut = AddRay<DIR_UP>(from, occupancy, pOut);
    pOut = AddRay<DIR_DOWN>(from, occupancy, pOut);
    pOut = AddRay<DIR_RIGHT>(from, occupancy, pOut);
    return AddRay<DIR_LEFT>(from, occupancy, pOut);
}

TMove* AddBishopMoves(int from, const TOccupancy& occupancy, TMove* pOut)
{
    pOut = AddRay<DIR_UP_RIGHT>(from, occupancy, pOut);
    pOut = AddRay<DIR_UP_LEFT>(from, occupancy, pOut);
    pOut = AddRay<DIR_DOWN_RIGHT>(from, occupancy, pOut);
    return AddRay<DIR_DOWN_LEFT>(from, occupancy, pOut);
}

TMove* AddKnightMoves(int from, const TOccupancy& occupancy, TMove* pOut)
{
    return AddJumps(from, g_geometry.m_aKnightTargets[from], g_geometry.m_aKnightTargetCount[from],
                    occupancy.m_own, pOut);
}

template <EColour C>
TMove* AddCastling(const TChessboard& b, TSquareSet occupied, TMove* pOut)
{
    using S = TSide<C>;
    using K = TCastling<C>;
    const bool bShort = b.m_board[K::SHORT_CORNER] == S::ROOK && !(occupied & K::SHORT_EMPTY);
    const bool bLong = b.m_board[K::LONG_CORNER] == S::ROOK && !(occupied & K::LONG_EMPTY);
    if (!bShort && !bLong)
        return pOut;
    const int nRights = b.GetCastlingRights(S::IS_WHITE);
    if (bShort && (nRights & CASTLING_SHORT) && !IsAttackedBy<S::OTHER>(b, K::SHORT_CROSSED) &&
        !IsAttackedBy<S::OTHER>(b, K::SHORT_TO))
        *pOut++ = MakeMoveRecord(K::KING, K::SHORT_TO);
    if (bLong && (nRights & CASTLING_LONG) && !IsAttackedBy<S::OTHER>(b, K::LONG_CROSSED) &&
        !IsAttackedBy<S::OTHER>(b, K::LONG_TO))
        *pOut++ = MakeMoveRecord(K::KING, K::LONG_TO);
    return pOut;
}

template <EColour C>
TMove* AddKingMoves(const TChessboard& b, int from, const TOccupancy& occupancy, TMove* pOut)
{
    pOut = AddJumps(from, g_geometry.m_aKingTargets[from], g_geometry.m_aKingTargetCount[from],
                    occupancy.m_own, pOut);
    if (from == TCastling<C>::KING && TSide<C>::Checker(b) == NO_CHECK) [[unlikely]]
        pOut = AddCastling<C>(b, occupancy.m_all, pOut);
    return pOut;
}

/// A pawn that is pinned to its king and whose move to `to` leaves the line of the pin.
template <EColour C>
bool LeavesPin(const TChessboard& b, TSquareSet occupied, int from, int to)
{
    const TSquare king = TSide<C>::King(b);
    const EDirection line = DirectionTo(king, from);
    if (line == DIR_NONE || line == DirectionTo(from, to) ||
        DirectionTo(from, king) == DirectionTo(from, to))
        return false;
    return IsPinnedTo<C>(b, occupied, from);
}

/// The pawn's captures towards one side, en passant included.
template <EColour C>
TMove* AddPawnCaptures(const TChessboard& b, int from, int side, const TOccupancy& occupancy,
                       TMove* pOut)
{
    using S = TSide<C>;
    if (!IsOnBoard(FileOf(from) + side, 0))
        return pOut;
    const int to = from + S::FORWARD + side;
    if ((occupancy.m_all & ~occupancy.m_own) & Bit(to))
        return AddPawnMove<C>(from, to, pOut);
    if (RowOf(from) == S::EN_PASSANT_ROW && b.m_board[from + side] == TSide<S::OTHER>::PAWN &&
        b.DoubleSteppedPawn() == from + side)
        *pOut++ = MakeMoveRecord(from, to);
    return pOut;
}

template <EColour C>
TMove* AddPawnMovesFree(const TChessboard& b, int from, const TOccupancy& occupancy, TMove* pOut)
{
    using S = TSide<C>;
    const int ahead = from + S::FORWARD;
    if (!(occupancy.m_all & Bit(ahead))) {
        pOut = AddPawnMove<C>(from, ahead, pOut);
        if (RowOf(from) == S::HOME_ROW && !(occupancy.m_all & Bit(ahead + S::FORWARD)))
            *pOut++ = MakeMoveRecord(from, ahead + S::FORWARD);
    }
    pOut = AddPawnCaptures<C>(b, from, -1, occupancy, pOut);
    return AddPawnCaptures<C>(b, from, 1, occupancy, pOut);
}

/// Steps of the pawn between the checker and the king.
template <EColour C>
TMove* AddPawnInterpositions(const TChessboard& b, int from, int checker, TSquareSet occupied,
                             TMove* pOut)
{
    using S = TSide<C>;
    const int ahead = from + S::FORWARD;
    if ((occupied & Bit(ahead)) || LeavesPin<C>(b, occupied, from, ahead))
        return pOut;
    const TSquareSet line = Between(S::King(b), checker);
    if (line & Bit(ahead))
        pOut = AddPawnMove<C>(from, ahead, pOut);
    if (RowOf(from) == S::HOME_ROW && (line & Bit(ahead + S::FORWARD)))
        *pOut++ = MakeMoveRecord(from, ahead + S::FORWARD);
    return pOut;
}

/// The pawn's moves that answer a check. All of them are legal.
template <EColour C>
TMove* AddPawnMovesInCheck(const TChessboard& b, int from, TSquareSet occupied, TMove* pOut)
{
    using S = TSide<C>;
    const int checker = S::Checker(b);
    if (checker == DOUBLE_CHECK)
        return pOut;
    if ((PawnAttacks(C, from) & Bit(checker)) && !LeavesPin<C>(b, occupied, from, checker))
        pOut = AddPawnMove<C>(from, checker, pOut);
    if (b.m_board[checker] & SLIDER_MASK)
        return AddPawnInterpositions<C>(b, from, checker, occupied, pOut);
    if (RowOf(from) == S::EN_PASSANT_ROW && RowOf(checker) == S::EN_PASSANT_ROW &&
        Abs(from - checker) == 1 && b.DoubleSteppedPawn() == checker)
    {
        const int to = checker + S::FORWARD;
        if (!LeavesPin<C>(b, occupied & ~Bit(checker), from, to))
            *pOut++ = MakeMoveRecord(from, to);
    }
    return pOut;
}

template <EColour C>
TMove* AddPawnMoves(const TChessboard& b, int from, const TOccupancy& occupancy, TMove* pOut)
{
    if (TSide<C>::Checker(b) != NO_CHECK)
        return AddPawnMovesInCheck<C>(b, from, occupancy.m_all, pOut);
    return AddPawnMovesFree<C>(b, from, occupancy, pOut);
}

template <EColour C>
TMove* AddFigureMoves(const TChessboard& b, int from, const TOccupancy& occupancy, TMove* pOut)
{
    constexpr TFigure BIT = TSide<C>::BIT;
    switch (b.m_board[from]) {
    case BIT | KIND_KING:
        return AddKingMoves<C>(b, from, occupancy, pOut);
    case BIT | KIND_PAWN:
        return AddPawnMoves<C>(b, from, occupancy, pOut);
    case BIT | KIND_KNIGHT:
        return AddKnightMoves(from, occupancy, pOut);
    case BIT | KIND_BISHOP:
        return AddBishopMoves(from, occupancy, pOut);
    case BIT | KIND_ROOK:
        return AddRookMoves(from, occupancy, pOut);
    case BIT | KIND_QUEEN:
        return AddBishopMoves(from, occupancy, AddRookMoves(from, occupancy, pOut));
    default:
        return pOut;
    }
}

/// The moves of every figure of `from`, square by square upward. Stops short of a list too long for
/// its count, which no position within the rules of the game has.
template <EColour C>
TMove* AddMovesOf(const TChessboard& b, TSquareSet from, const TOccupancy& occupancy, TMove* pOut)
{
    const TMove* pLast = pOut + (MAX_MOVES - MAX_FIGURE_MOVES - 1);
    while (from && pOut < pLast)
        pOut = AddFigureMoves<C>(b, PopLowestSquare(from), occupancy, pOut);
    return pOut;
}

template <EColour C>
TMove* AddCapturesOfChecker(const TChessboard& b, int checker, TSquareSet occupied, TMove* pOut)
{
    const TAttackers a = AttackersOf<C>(b, occupied, checker);
    TSquareSet pawns = a.m_pawns;
    while (pawns)
        pOut = AddPawnMove<C>(PopLowestSquare(pawns), checker, pOut);
    for (TSquareSet set : {a.m_knights, a.m_diagonal, a.m_line & ~a.m_diagonal}) {
        while (set)
            *pOut++ = MakeMoveRecord(PopLowestSquare(set), checker);
    }
    return pOut;
}

template <EColour C>
TMove* AddInterpositions(const TChessboard& b, int checker, TSquareSet occupied, TMove* pOut)
{
    using S = TSide<C>;
    TSquareSet line = Between(S::King(b), checker);
    while (line) {
        const TSquare to = PopLowestSquare(line);
        TSquareSet movers = MoversToSquare<C>(b, occupied, to);
        while (movers) {
            const TSquare from = PopLowestSquare(movers);
            if (b.m_board[from] == S::PAWN)
                pOut = AddPawnMove<C>(from, to, pOut);
            else
                *pOut++ = MakeMoveRecord(from, to);
        }
    }
    return pOut;
}

template <EColour C>
TMove* AddEnPassantOfChecker(const TChessboard& b, int checker, TMove* pOut)
{
    using S = TSide<C>;
    if (b.DoubleSteppedPawn() != checker)
        return pOut;
    for (const int side : {-1, 1}) {
        if (IsOnBoard(FileOf(checker) + side, 0) && b.m_board[checker + side] == S::PAWN)
            *pOut++ = MakeMoveRecord(checker + side, checker + S::FORWARD);
    }
    return pOut;
}

template <EColour C>
TMove* AddEvasions(const TChessboard& b, TMove* pOut)
{
    using S = TSide<C>;
    const TOccupancy occupancy = OccupancyOf<C>(b);
    pOut = AddKingMoves<C>(b, S::King(b), occupancy, pOut);
    const int checker = S::Checker(b);
    if (checker == DOUBLE_CHECK || checker == NO_CHECK)
        return pOut;
    pOut = AddCapturesOfChecker<C>(b, checker, occupancy.m_all, pOut);
    pOut = AddInterpositions<C>(b, checker, occupancy.m_all, pOut);
    return AddEnPassantOfChecker<C>(b, checker, pOut);
}

int Count(const TMove* pOut, const TMove* pEnd)
{
    return static_cast<int>(pEnd - pOut);
}

template <EColour C>
int GenerateFigureMoves(const TChessboard& b, TSquare square, TMove* pOut)
{
    return Count(pOut, AddFigureMoves<C>(b, square, OccupancyOf<C>(b), pOut));
}

} // namespace

int TChessboard::GenerateWhiteFigureMoves(TSquare square, TMove* pOut) const
{
    return GenerateFigureMoves<EColour::White>(*this, square, pOut);
}

int TChessboard::GenerateBlackFigureMoves(TSquare square, TMove* pOut) const
{
    return GenerateFigureMoves<EColour::Black>(*this, square, pOut);
}

int TChessboard::GenerateWhiteKingMoves(std::int8_t file, std::int8_t row, TMove* pOut) const
{
    constexpr EColour C = EColour::White;
    return Count(pOut, AddKingMoves<C>(*this, MakeSquare(file, row), OccupancyOf<C>(*this), pOut));
}

int TChessboard::GenerateBlackKingMoves(std::int8_t file, std::int8_t row, TMove* pOut) const
{
    constexpr EColour C = EColour::Black;
    return Count(pOut, AddKingMoves<C>(*this, MakeSquare(file, row), OccupancyOf<C>(*this), pOut));
}

int TChessboard::GenerateWhitePawnMoves(std::int8_t file, std::int8_t row, TMove* pOut) const
{
    constexpr EColour C = EColour::White;
    return Count(pOut, AddPawnMoves<C>(*this, MakeSquare(file, row), OccupancyOf<C>(*this), pOut));
}

int TChessboard::GenerateBlackPawnMoves(std::int8_t file, std::int8_t row, TMove* pOut) const
{
    constexpr EColour C = EColour::Black;
    return Count(pOut, AddPawnMoves<C>(*this, MakeSquare(file, row), OccupancyOf<C>(*this), pOut));
}

int TChessboard::GenerateWhiteKnightMoves(std::int8_t file, std::int8_t row, TMove* pOut) const
{
    return Count(pOut,
                 AddKnightMoves(MakeSquare(file, row), OccupancyOf<EColour::White>(*this), pOut));
}

int TChessboard::GenerateBlackKnightMoves(std::int8_t file, std::int8_t row, TMove* pOut) const
{
    return Count(pOut,
                 AddKnightMoves(MakeSquare(file, row), OccupancyOf<EColour::Black>(*this), pOut));
}

int TChessboard::GenerateWhiteRookMoves(TSquare square, TMove* pOut) const
{
    return Count(pOut, AddRookMoves(square, OccupancyOf<EColour::White>(*this), pOut));
}

int TChessboard::GenerateBlackRookMoves(TSquare square, TMove* pOut) const
{
    return Count(pOut, AddRookMoves(square, OccupancyOf<EColour::Black>(*this), pOut));
}

int TChessboard::GenerateWhiteBishopMoves(TSquare square, TMove* pOut) const
{
    return Count(pOut, AddBishopMoves(square, OccupancyOf<EColour::White>(*this), pOut));
}

int TChessboard::GenerateBlackBishopMoves(TSquare square, TMove* pOut) const
{
    return Count(pOut, AddBishopMoves(square, OccupancyOf<EColour::Black>(*this), pOut));
}

int TChessboard::GenerateWhiteEvasions(TMove* pOut) const
{
    return Count(pOut, AddEvasions<EColour::White>(*this, pOut));
}

int TChessboard::GenerateBlackEvasions(TMove* pOut) const
{
    return Count(pOut, AddEvasions<EColour::Black>(*this, pOut));
}

bool TChessboard::GetNextWhiteMoves(TMove* pOut, std::uint8_t* pCount,
                                    std::uint8_t* pNextSquare) const
{
    constexpr EColour C = EColour::White;
    TMove* const pStart = pOut + *pCount;
    if (m_whiteChecker != NO_CHECK) {
        *pCount = static_cast<std::uint8_t>(*pCount + GenerateWhiteEvasions(pStart));
        return false;
    }
    if (*pNextSquare > 63 || *pCount > MAX_MOVES - MAX_FIGURE_MOVES)
        return false;
    const TOccupancy occupancy = OccupancyOf<C>(*this);
    TSquareSet from = occupancy.m_own & (ALL_SQUARES << *pNextSquare);
    while (from) {
        const TSquare square = PopLowestSquare(from);
        const TMove* pEnd = AddFigureMoves<C>(*this, square, occupancy, pStart);
        if (pEnd == pStart)
            continue;
        *pCount = static_cast<std::uint8_t>(*pCount + Count(pStart, pEnd));
        *pNextSquare = static_cast<std::uint8_t>(square + 1);
        return true;
    }
    *pNextSquare = 64;
    return false;
}

int TChessboard::GenerateWhiteMoves(TMove* pOut) const
{
    if (m_whiteChecker != NO_CHECK)
        return GenerateWhiteEvasions(pOut);
    const TOccupancy occupancy = OccupancyOf<EColour::White>(*this);
    return Count(pOut, AddMovesOf<EColour::White>(*this, occupancy.m_own, occupancy, pOut));
}

int TChessboard::GenerateBlackMoves(TMove* pOut) const
{
    if (m_blackChecker != NO_CHECK)
        return GenerateBlackEvasions(pOut);
    const TOccupancy occupancy = OccupancyOf<EColour::Black>(*this);
    TMove* pEnd = AddMovesOf<EColour::Black>(*this, occupancy.m_own, occupancy, pOut);
    if (m_moveFilter & FILTER_MODE_MASK)
        *pEnd++ = MakeMoveRecord(BlackKing(), BlackKing());
    return Count(pOut, pEnd);
}

} // namespace corvina
