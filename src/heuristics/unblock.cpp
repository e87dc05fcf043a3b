#include "heuristics/unblock.h"

#include "heuristics/attacksets.h"
#include "heuristics/blockedfigures.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"
#include "heuristics/materialblocks.h"
#include "heuristics/materialtests.h"
#include "search/hooks.h"

#include <algorithm>

namespace corvina
{
namespace
{

constexpr int MAX_RECAPTURE_LINE = 7;

/// Black's pawns may as well run: the king can't go with them.
bool ArePawnsFree(const TBlackMove& move)
{
    return move.m_context.m_bDlfuPawnsBreakFree && move.m_board.m_nBlackPawns <= 4 &&
           FreeKingSquares(move.m_board) <= 1;
}

/// White has nothing but pawns, and they come too late.
bool AreWhitePawnsTooSlow(const TChessboard& board)
{
    constexpr int ROW_IN_DOUBT = 4;
    if (WhiteFigures(board) != 0)
        return false;
    const TSquareSet pawns = TSets::Equal(board.m_board, WHITE_PAWN);
    const int row = pawns ? RowOf(63 - std::countl_zero(pawns)) : 0;
    return row < ROW_IN_DOUBT ||
           (row == ROW_IN_DOUBT && MovesToPromotion(board) > (board.m_nMoves + 1) / 2);
}

/// The entry of the list that the last move is about; -1: none. nSquares of pSquares count.
int IndexOf(const std::int8_t* pSquares, int nSquares, TSquare square)
{
    const std::int8_t* pEnd = pSquares + nSquares;
    const std::int8_t* pFound = std::find(pSquares, pEnd, static_cast<std::int8_t>(square));
    return pFound == pEnd ? -1 : static_cast<int>(pFound - pSquares);
}

/// A relaxation takes a figure that left its place off a list that the search has made, or that may
/// be shortened.
void NoteViolator(TThreadContext& context, int nIndex)
{
    const std::int8_t square = context.m_unblockSquares[nIndex];
    std::int8_t* pEnd = context.m_unblockViolators + context.m_nUnblockViolators;
    if ((context.m_bDlfuDynamicActive || context.m_bUnblockShrinkable) &&
        context.m_nUnblockViolators < MAX_UNBLOCK_FIGURES &&
        std::find(context.m_unblockViolators, pEnd, square) == pEnd)
        context.m_unblockViolators[context.m_nUnblockViolators++] = square;
}

/// Another figure has come to the square on the way: the listed one had left it before.
bool HasCameHere(const TBlackMove& move, TSquare square)
{
    for (const TChessboard* p = move.m_pGrandparent; p && p->m_pParent; p = Ancestor(*p, 2)) {
        if (!p->m_LastMove.IsNull() && p->m_LastMove.m_to == square)
            return true;
    }
    return false;
}

/// A listed figure must stay.
EVerdict TestFirstMove(TBlackMove& move)
{
    TThreadContext& context = move.m_context;
    TChessboard& board = move.m_board;
    const TMove& last = board.m_LastMove;
    const int nIndex = IndexOf(context.m_unblockSquares, context.m_nUnblockFigures, last.m_from);
    if (nIndex < 0 || last.IsNull() || HasCameHere(move, last.m_from))
        return EVerdict::Passes;
    if (IsReplyRecapture(board, MAX_RECAPTURE_LINE))
        return EVerdict::EndsHook;
    if (!IsAbovePawn(move.BlackCapture()) && IsLoose(board, last.m_to))
        return EVerdict::Passes;
    NoteViolator(context, nIndex);
    return EVerdict::Doubtful;
}

bool IsOnEdge(int square)
{
    return Ring(FileOf(square), RowOf(square)) == 0;
}

bool AreBlackMajorsPinned(const TChessboard& board)
{
    using B = TSide<EColour::Black>;
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    TSquareSet majors = B::HasLineSlider(board) ? TSets::Having(board.m_board, B::LINE_MASK) : 0;
    while (majors) {
        if (!IsPinnedTo<EColour::Black>(board, occupied, PopLowestSquare(majors)))
            return false;
    }
    return true;
}

/// White is on the way to win with the queen: what else Black has may go.
bool IsListNeedless(const TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const TSolveRequest& request = move.m_request;
    return board.m_nWhiteQueens && move.m_nRing == 0 && WhiteFigures(board) >= 2 &&
           AreBlackMajorsPinned(board) &&
           WhiteFigures(board) - BlackFigures(board) >
               request.m_nRootWhiteFigures - request.m_nRootBlackFigures;
}

/// The step of a figure within reach of its place.
bool IsStepAllowed(const TBlackMove& move, TSquare listed)
{
    const TSquare to = move.m_board.m_LastMove.m_to;
    return (IsOnEdge(to) && !move.Has(SH_SWEEPINGWHITEROOK)) || to == listed ||
           (KingZone(listed) & Bit(to));
}

/// The king is held on his square, and what matters are Black's queens and rooks: one of them is
/// free, or White has just taken one.
bool IsAboutMajors(const TBlackMove& move)
{
    return move.Has(SH_KEEPKINGONTHEEDGE) && move.m_context.m_bKingMustNotMove &&
           (IsMajor(move.WhiteCapture()) || !AreBlackMajorsPinned(move.m_board));
}

/// White takes it next, or it can't go on.
bool IsFigureHarmless(const TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const TSquare to = board.m_LastMove.m_to;
    const bool bLoose = IsLoose(board, to);
    if (bLoose && !IsAbovePawn(move.BlackCapture()))
        return true;
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    if (board.m_nMoves > 1 && IsAttackedBy<EColour::Black>(board, to) &&
        IsPinnedTo<EColour::Black>(board, occupied, to))
        return true;
    return IsBlackKingOnCorner(board) && WhiteMajors(board) >= 2 &&
           CountMajorsGuardingKing(board) >= 2;
}

/// Listed figures may move by a square, and are followed.
EVerdict TestFollowedFigure(TBlackMove& move)
{
    TThreadContext& context = move.m_context;
    TChessboard& board = move.m_board;
    const TSquare to = board.m_LastMove.m_to;
    const int nIndex = IndexOf(board.m_trackedSquares, MAX_UNBLOCK_FIGURES, to);
    if (nIndex < 0 || board.m_LastMove.IsNull())
        return EVerdict::Passes;
    context.m_nUnblockIndex = static_cast<std::uint8_t>(nIndex);
    const TFigure figure = board.m_board[to];
    if (!IsMajor(figure)) {
        if ((figure == BLACK_PAWN && ArePawnsFree(move)) || IsAboutMajors(move) ||
            IsStepAllowed(move, static_cast<TSquare>(context.m_unblockSquares[nIndex])))
            return EVerdict::Passes;
    }
    else if (to == context.m_unblockSquares[nIndex]) {
        return EVerdict::Passes;
    }
    if (IsListNeedless(move)) {
        board.m_trackedSquares[nIndex] = -1;
        return EVerdict::Passes;
    }
    if (IsFigureHarmless(move))
        return EVerdict::Passes;
    const EVerdict verdict = move.CutUnlessMateInOne();
    if (verdict == EVerdict::Doubtful)
        NoteViolator(context, nIndex);
    return verdict;
}

} // namespace

EVerdict TestUnblockedFigure(TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    if (move.m_context.m_bDlfuPawnsBreakFree && BlackFigures(board) < 2 &&
        FreeKingSquares(board) < 2)
        return EVerdict::Passes;
    if (AreWhitePawnsTooSlow(board))
        return EVerdict::Doubtful;
    return move.m_context.m_bUnblockOneSquare ? TestFollowedFigure(move) : TestFirstMove(move);
}

bool IsFigureUnblocked(const TChessboard& child)
{
    const TThreadContext& context = ContextOf(child);
    if (!context.m_bPromotedStrict ||
        !(child.m_nHeuristics & (SH_DONTLETPROMOTEDQUEENMOVE | SH_DONTLETPROMOTEDFIGUREMOVE)) ||
        !(child.m_boardFlags & TChessboard::BLACK_PROMOTIONS_MASK))
        return false;
    for (int i = 0; i < context.m_nUnblockFigures; ++i) {
        if (child.m_trackedSquares[i] >= 0 &&
            child.m_trackedSquares[i] != context.m_unblockSquares[i])
            return true;
    }
    return false;
}

bool ApplyUnblockDynamically(TChessboard& board, TSquare square)
{
    TThreadContext& context = ContextOf(board);
    const int nFigures = context.m_nUnblockFigures;
    const TFigure figure = board.m_board[square];
    if (!context.m_bCanApplyDlfuDynamically || nFigures >= MAX_UNBLOCK_FIGURES ||
        !(figure & COLOUR_BLACK) || figure == BLACK_KING ||
        IndexOf(context.m_unblockSquares, nFigures, square) >= 0)
        return false;
    if (nFigures == 0 && figure != BLACK_PAWN && board.m_pParent &&
        !(FindBlockedFigures(board).All() & Bit(square)))
        return false;
    if (!context.m_bDlfuDynamicActive)
        context.m_nDlfuDynamicDepth = board.m_nMoves;
    context.m_bDlfuDynamicActive |= board.m_pParent != nullptr;
    context.m_unblockSquares[nFigures] = context.m_unblockSquaresAtRoot[nFigures] =
        board.m_trackedSquares[nFigures] = static_cast<std::int8_t>(square);
    context.m_bUnblockListHasPawn |= figure == BLACK_PAWN;
    ++context.m_nUnblockFigures;
    board.m_nHeuristics |= SH_DONTLETFIGUREUNBLOCK;
    board.m_nHeuristicsParams = ComputeHeurParams(board);
    return true;
}

} // namespace corvina
