#include "chess/linecontext.h"
#include "chess/sides.h"
#include "chess/whitelists.h"

#include <cstring>

namespace corvina
{
namespace
{

enum class EForm
{
    Full,  ///< of the search
    Light, ///< of the search, where only the position itself matters
    User   ///< of a user or a replay: every legal move is made
};

/// A move while it is being made. The mailbox of the parent is read instead of the receiver's own:
/// bytes that have just been written there would stall a load of the whole line.
struct TChange
{
    const std::uint8_t* m_pBefore; ///< mailbox before the move
    int m_from, m_to;
    TFigure m_moved;       ///< the figure as it stood on m_from
    TFigure m_placed;      ///< the figure as it stands on m_to
    TFigure m_captured;    ///< NO_FIGURE for none
    int m_captureSquare;   ///< differs from m_to en passant
    TSquareSet m_occupied; ///< squares occupied after the move
    TSquareSet m_present;  ///< squares on which a figure of m_pBefore still stands

    bool IsEnPassant() const { return m_captureSquare != m_to; }
};

void CountPromotion(TChessboard& b)
{
    if ((b.m_boardFlags & TChessboard::BLACK_PROMOTIONS_MASK) < TChessboard::BLACK_PROMOTIONS_MASK)
        ++b.m_boardFlags;
}

/// The listed Black figures are followed; -1: captured.
template <EColour C>
void FollowListed(TChessboard& b, const TChange& c)
{
    std::uint64_t nAll;
    std::memcpy(&nAll, b.m_trackedSquares, sizeof nAll);
    if (nAll == ~std::uint64_t{0})
        return; // no list
    for (std::int8_t& square : b.m_trackedSquares) {
        if constexpr (TSide<C>::IS_WHITE) {
            if (c.m_captured != NO_FIGURE && square == c.m_captureSquare)
                square = -1;
        }
        else if (square == c.m_from) {
            square = static_cast<std::int8_t>(c.m_to);
        }
    }
}

template <EColour C>
TChange PutFigure(TChessboard& b, TMove* pMove)
{
    using S = TSide<C>;
    TChange c;
    c.m_pBefore = b.m_pParent->m_board;
    c.m_from = pMove->m_from;
    c.m_to = pMove->m_to;
    c.m_moved = c.m_pBefore[c.m_from];
    c.m_placed = c.m_moved;
    c.m_captured = c.m_pBefore[c.m_to];
    c.m_captureSquare = c.m_to;
    c.m_occupied = (TSets::Occupied(c.m_pBefore) & ~Bit(c.m_from)) | Bit(c.m_to);
    c.m_present = ~Bit(c.m_to) & ~Bit(c.m_from);
    pMove->m_bEnPassant = 0;
    if (c.m_moved == S::PAWN) {
        if (c.m_captured == NO_FIGURE && FileOf(c.m_from) != FileOf(c.m_to)) {
            pMove->m_bEnPassant = 1;
            c.m_captured = TSide<S::OTHER>::PAWN;
            c.m_captureSquare = c.m_to - S::FORWARD;
            c.m_occupied &= ~Bit(c.m_captureSquare);
            c.m_present &= ~Bit(c.m_captureSquare);
            b.m_board[c.m_captureSquare] = NO_FIGURE;
        }
        if (const TFigure kind = pMove->PromotionKind()) {
            c.m_placed = S::BIT | kind;
            if constexpr (S::IS_WHITE)
                AddToWhiteLists(b, kind, pMove->m_to);
            else
                CountPromotion(b);
            --S::Pawns(b);
            ++b.CountOf(c.m_placed);
        }
    }
    b.m_board[c.m_from] = NO_FIGURE;
    b.m_board[c.m_to] = c.m_placed;
    return c;
}

/// The square that the rook leaves or reaches in a castling that ends on the square of the king.
template <EColour C>
constexpr int CastlingRookFrom(int to)
{
    return to == TCastling<C>::SHORT_TO ? TCastling<C>::SHORT_CORNER : TCastling<C>::LONG_CORNER;
}

template <EColour C>
constexpr int CastlingRookTo(int to)
{
    return to == TCastling<C>::SHORT_TO ? TCastling<C>::SHORT_CROSSED : TCastling<C>::LONG_CROSSED;
}

bool IsCastling(const TChange& c)
{
    return (c.m_moved & KIND_MASK) == KIND_KING && Abs(c.m_from - c.m_to) == 2;
}

template <EColour C>
bool MoveCastlingRook(TChessboard& b, TChange& c)
{
    using S = TSide<C>;
    const int nRight = c.m_to == TCastling<C>::SHORT_TO ? CASTLING_SHORT : CASTLING_LONG;
    if (!(b.m_pParent->GetCastlingRights(S::IS_WHITE) & nRight))
        return false;
    const int from = CastlingRookFrom<C>(c.m_to);
    const int to = CastlingRookTo<C>(c.m_to);
    b.m_board[from] = NO_FIGURE;
    b.m_board[to] = S::ROOK;
    c.m_occupied = (c.m_occupied & ~Bit(from)) | Bit(to);
    if constexpr (S::IS_WHITE)
        MoveInWhiteLists(b, KIND_ROOK, static_cast<TSquare>(from), static_cast<TSquare>(to));
    return true;
}

template <EColour C>
bool MoveKing(TChessboard& b, TChange& c, bool bSkipLegalityTest)
{
    using S = TSide<C>;
    if (IsCastling(c) && !MoveCastlingRook<C>(b, c))
        return false;
    if (!bSkipLegalityTest &&
        IsAttackedBy<S::OTHER>(b, c.m_pBefore, c.m_occupied, c.m_present, c.m_to))
        return false;
    const auto file = static_cast<std::int8_t>(FileOf(c.m_to));
    const auto row = static_cast<std::int8_t>(RowOf(c.m_to));
    if constexpr (S::IS_WHITE) {
        b.m_whiteKingFile = file;
        b.m_whiteKingRow = row;
    }
    else {
        b.m_blackKingFile = file;
        b.m_blackKingRow = row;
        b.StoreBlackKingRing();
    }
    return true;
}

/// Sliders of side C that, through the square that the move has left, see the king of the other
/// side.
template <EColour C>
TSquareSet SlidersThrough(const TChessboard& b, const TChange& c, int king, int vacated)
{
    const EDirection direction = DirectionTo(king, vacated);
    if (direction == DIR_NONE)
        return 0;
    const TSquareSet sliders =
        TSide<C>::Sliders(b, c.m_pBefore, direction) & Ray(direction, vacated) & c.m_present;
    return sliders ? Reaching(sliders, king, c.m_occupied) : 0;
}

/// Does the move of a figure other than the king leave its own king attacked?
template <EColour C>
bool ExposesKing(const TChessboard& b, const TChange& c)
{
    using S = TSide<C>;
    const int king = S::King(b);
    if (S::Checker(b) != NO_CHECK)
        return IsAttackedBy<S::OTHER>(b, c.m_pBefore, c.m_occupied, c.m_present, king);
    if (SlidersThrough<S::OTHER>(b, c, king, c.m_from))
        return true;
    return c.IsEnPassant() && SlidersThrough<S::OTHER>(b, c, king, c.m_captureSquare);
}

/// Notes a capture of side C in the thread's log while that has room.
template <EColour C>
void LogCapture(TChessboard& b, const TChange& c)
{
    constexpr int SHIFT =
        TSide<C>::IS_WHITE ? TChessboard::WHITE_CAPTURES_SHIFT : TChessboard::BLACK_CAPTURES_SHIFT;
    const int nCaptures = b.m_moveFilter >> SHIFT & TChessboard::CAPTURES_MASK;
    if (nCaptures == TLineContext::MAX_CAPTURES)
        return;
    if (b.m_pThread)
        b.m_pThread->m_aCaptures[static_cast<int>(C)][nCaptures] = {
            static_cast<TSquare>(c.m_captureSquare), c.m_captured};
    b.m_moveFilter = static_cast<std::uint8_t>(b.m_moveFilter + (1 << SHIFT));
}

/// White's men don't suffice to mate a king that stands alone: nothing, bishops on squares of one
/// colour, or a knight.
bool CannotMateBareKing(const TChessboard& b)
{
    if (b.m_nWhiteQueens | b.m_nWhiteRooks | b.m_nWhitePawns)
        return false;
    if (b.m_nWhiteKnights)
        return b.m_nWhiteKnights == 1 && b.m_nWhiteBishops == 0;
    const TSquareSet bishops = TSets::Equal(b.m_board, WHITE_BISHOP);
    return !(bishops & DARK_SQUARES) || !(bishops & ~DARK_SQUARES);
}

bool IsWrongBishopEnding(const TChessboard& b)
{
    if ((b.m_nWhiteQueens | b.m_nWhiteRooks | b.m_nWhiteKnights) || !b.m_nWhiteBishops ||
        !b.m_nWhitePawns)
        return false;
    constexpr TSquareSet A_FILE = 0x0101010101010101;
    constexpr TSquareSet H_FILE = A_FILE << 7;
    const TSquareSet pawns = TSets::Equal(b.m_board, WHITE_PAWN);
    const TSquareSet bishops = TSets::Equal(b.m_board, WHITE_BISHOP);
    // a8 is a light square, h8 a dark one.
    return (!(pawns & ~A_FILE) && !(bishops & ~DARK_SQUARES)) ||
           (!(pawns & ~H_FILE) && !(bishops & DARK_SQUARES));
}

void StoreWrongBishopFlag(TChessboard& b)
{
    b.m_nPositionFlags = static_cast<std::uint16_t>(
        (b.m_nPositionFlags & ~TChessboard::POSITION_WRONGBISHOP) |
        (IsWrongBishopEnding(b) ? TChessboard::POSITION_WRONGBISHOP : 0));
}

bool IsBlackBare(const TChessboard& b)
{
    return !(b.m_nBlackQueens | b.m_nBlackRooks | b.m_nBlackBishops | b.m_nBlackKnights |
             b.m_nBlackPawns);
}

/// Counts, lists, log and flags after a capture. False when the search has no use for the move:
/// it leaves White unable to mate.
template <EColour C, EForm F>
bool AccountForCapture(TChessboard& b, const TChange& c)
{
    --b.CountOf(c.m_captured);
    LogCapture<C>(b, c);
    if constexpr (C == EColour::White) {
        if (IsBlackBare(b)) {
            if (F != EForm::User && CannotMateBareKing(b))
                return false;
            b.m_nPositionFlags |= TChessboard::POSITION_BAREBLACKKING;
        }
    }
    else {
        RemoveFromWhiteLists(b, c.m_captured & KIND_MASK, static_cast<TSquare>(c.m_captureSquare));
    }
    return true;
}

/// The kinds that move along a line of the direction.
constexpr TFigure g_aLineKinds[9] = {KIND_ROOK,   KIND_ROOK,   KIND_ROOK,   KIND_ROOK, KIND_BISHOP,
                                     KIND_BISHOP, KIND_BISHOP, KIND_BISHOP, 0};

/// Does the figure that arrived on `square` check the king?
template <EColour C>
bool ChecksDirectly(TFigure kind, int square, int king, TSquareSet occupied)
{
    if (kind & SLIDER_MASK)
        return (kind & g_aLineKinds[DirectionTo(king, square)]) &&
               !(Between(king, square) & occupied);
    if (kind == KIND_KNIGHT)
        return KnightJumps(square) & Bit(king);
    return kind == KIND_PAWN && (PawnAttacks(C, square) & Bit(king));
}

/// The state of check of the other side's king, from what the move can have changed.
template <EColour C>
std::int8_t DetectCheck(const TChessboard& b, const TChange& c)
{
    const int king = TSide<TSide<C>::OTHER>::King(b);
    TSquareSet checkers = 0;
    if (ChecksDirectly<C>(c.m_placed & KIND_MASK, c.m_to, king, c.m_occupied))
        checkers |= Bit(c.m_to);
    // A move along the line to the king leaves that line shut.
    if (DirectionTo(king, c.m_from) != DirectionTo(king, c.m_to))
        checkers |= SlidersThrough<C>(b, c, king, c.m_from);
    if (c.IsEnPassant())
        checkers |= SlidersThrough<C>(b, c, king, c.m_captureSquare);
    if (IsCastling(c)) {
        const int rook = CastlingRookTo<C>(c.m_to);
        if (ChecksDirectly<C>(KIND_ROOK, rook, king, c.m_occupied))
            checkers |= Bit(rook);
    }
    if (!checkers)
        return NO_CHECK;
    return checkers & (checkers - 1) ? DOUBLE_CHECK
                                     : static_cast<std::int8_t>(LowestSquare(checkers));
}

/// Bare plies and marks of a record to which a move has led.
template <EForm F>
void EnterLevel(TChessboard& b)
{
    --b.m_nMoves;
    if (F != EForm::Light && b.m_pThread)
        b.m_pThread->m_anLevelCounter[b.m_nMoves] = 0;
}

/// Squares that a line move crosses.
TSquareSet CrossedSquares(const TMove& move)
{
    return Between(move.m_from, move.m_to);
}

/// White's rule while Black's bishop is taken as absent: the squares on which it would matter are
/// forbidden, as ends of a move and for lines that cross them.
bool PassesSeparatedBishopFilter(const TChessboard& b, const TMove& move)
{
    if (!b.m_pThread)
        return true;
    const TSquareSet first = b.m_pThread->m_forbiddenSquares;
    const TSquareSet forbidden = first | b.m_pThread->m_forbiddenTargets;
    if ((forbidden & Bit(move.m_to)) || (forbidden & CrossedSquares(move)))
        return false;
    const bool bDeep = b.m_pParent->m_pParent && b.m_pParent->m_pParent->m_pParent;
    return !(bDeep && (first & Bit(move.m_from)));
}

/// White's moves that the one-colour reduction allows.
bool PassesMoveFilter(const TChessboard& b, const TMove& move)
{
    const int nMode = b.m_moveFilter & TChessboard::FILTER_MODE_MASK;
    if (nMode == TChessboard::FILTER_SEPARATED_BLACK_BISHOP)
        return PassesSeparatedBishopFilter(b, move);
    if ((((move.m_to >> 3) + move.m_to) ^ nMode) & 1)
        return false;
    // The lines of a queen or a rook cross squares of the other colour.
    return !(move.PromotionKind() & KIND_ROOK) &&
           !(b.m_board[move.m_from] == WHITE_PAWN && Abs(move.m_to - move.m_from) == 16);
}

/// Black's rule while his pawns are held up.
bool IsBlockedPawnMove(const TChessboard& b, const TMove& move)
{
    if (!b.m_pThread || b.m_nMoves != b.m_pThread->m_nBlockPawnsLevel ||
        b.m_board[move.m_from] != BLACK_PAWN)
        return false;
    ++b.m_pThread->m_nBlockedPawnMoves;
    return true;
}

template <EColour C, EForm F>
bool MakeMove(TChessboard& b, TMove* pMove, bool bSkipLegalityTest)
{
    using S = TSide<C>;
    if constexpr (S::IS_WHITE && F != EForm::User) {
        if ((b.m_moveFilter & TChessboard::FILTER_MODE_MASK) && !PassesMoveFilter(b, *pMove))
            return false;
    }
    if constexpr (!S::IS_WHITE && F == EForm::Full) {
        if ((b.m_moveFilter & TChessboard::FILTER_BLOCK_PAWNS) && IsBlockedPawnMove(b, *pMove))
            return false;
    }
    TChange c = PutFigure<C>(b, pMove);
    if (c.m_moved == S::KING) {
        if (!MoveKing<C>(b, c, bSkipLegalityTest))
            return false;
    }
    else {
        if (S::IS_WHITE)
            MoveInWhiteLists(b, c.m_moved & KIND_MASK, pMove->m_from, pMove->m_to);
        if (!bSkipLegalityTest && ExposesKing<C>(b, c))
            return false;
    }
    if (c.m_captured != NO_FIGURE) {
        if (!AccountForCapture<C, F>(b, c))
            return false;
        StoreWrongBishopFlag(b);
    }
    else if (S::IS_WHITE && c.m_moved == S::PAWN) {
        StoreWrongBishopFlag(b);
    }
    if constexpr (F == EForm::Full)
        FollowListed<C>(b, c);
    b.m_LastMove = *pMove;
    S::Checker(b) = NO_CHECK;
    if (b.m_nMoves == 0) {
        TSide<S::OTHER>::Checker(b) = NO_CHECK;
        return true;
    }
    TSide<S::OTHER>::Checker(b) = DetectCheck<C>(b, c);
    EnterLevel<F>(b);
    return true;
}

/// Black's passing move of a reduced position.
template <EForm F>
bool MakeBlackPass(TChessboard& b, const TMove& move)
{
    EnterLevel<F>(b);
    b.m_LastMove = move;
    b.m_whiteChecker = NO_CHECK;
    return true;
}

} // namespace

bool TChessboard::MakeWhiteMove(TMove* pMove)
{
    return MakeMove<EColour::White, EForm::Full>(*this, pMove, false);
}

bool TChessboard::MakeWhiteMoveLight(TMove* pMove)
{
    return MakeMove<EColour::White, EForm::Light>(*this, pMove, false);
}

bool TChessboard::MakeWhiteUserMove(TMove* pMove)
{
    return MakeMove<EColour::White, EForm::User>(*this, pMove, false);
}

bool TChessboard::MakeBlackMove(TMove* pMove, bool bSkipLegalityTest)
{
    if (pMove->IsNull())
        return MakeBlackPass<EForm::Full>(*this, *pMove);
    return MakeMove<EColour::Black, EForm::Full>(*this, pMove, bSkipLegalityTest);
}

bool TChessboard::MakeBlackUserMove(TMove* pMove)
{
    if (pMove->IsNull())
        return MakeBlackPass<EForm::User>(*this, *pMove);
    return MakeMove<EColour::Black, EForm::User>(*this, pMove, false);
}

void TChessboard::MakeWhiteNullMove()
{
    m_LastMove = TMove{};
    m_LastMove.m_from = m_LastMove.m_to = WhiteKing();
    EnterLevel<EForm::Full>(*this);
    m_blackChecker = m_pParent->m_blackChecker;
}

} // namespace corvina
