#include "heuristics/materialtests.h"

#include "heuristics/attacksets.h"
#include "heuristics/blackmobility.h"
#include "heuristics/lastmoves.h"
#include "search/shortmate.h"
#include "search/threadcontext.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// Positions that a line of checks may look at.
constexpr int MAX_LINE_POSITIONS = 300;

/// Searches for a mate in which every move of White checks. Works on the stack of the thread below
/// the position.
class TCheckLine
{
public:
    explicit TCheckLine(TThreadContext& context) : m_context(context) {}

    bool MatesWithin(TChessboard& board, int nPlies)
    {
        if (IsMateInOne(board))
            return true;
        if (nPlies < 3)
            return false;
        TMoveList moves;
        const int nMoves = board.GenerateWhiteMoves(moves.data());
        return std::any_of(moves.data(), moves.data() + nMoves,
                           [&](TMove move) { return MatesByMove(board, move, nPlies, true); });
    }

    bool MatesByMove(TChessboard& board, TMove move, int nPlies, bool bCheck)
    {
        if (m_nPositions <= 0)
            return false;
        TChessboard& child = m_context.MakeChild(board);
        if (!child.MakeWhiteMove(&move))
            return false;
        Count();
        return (!bCheck || child.m_blackChecker != NO_CHECK) && MatesAfterAll(child, nPlies - 2);
    }

private:
    bool MatesAfterAll(TChessboard& board, int nPlies)
    {
        TMoveList replies;
        const int nReplies = board.GenerateBlackMoves(replies.data());
        bool bHasReply = false;
        for (int i = 0; i < nReplies; ++i) {
            TChessboard& child = m_context.MakeChild(board);
            if (!child.MakeBlackMove(&replies[i]))
                continue;
            Count();
            bHasReply = true;
            if (!MatesWithin(child, nPlies))
                return false;
        }
        return bHasReply || board.m_blackChecker != NO_CHECK;
    }

    void Count()
    {
        --m_nPositions;
        ++m_context.m_nPositions;
    }

    TThreadContext& m_context;
    int m_nPositions = MAX_LINE_POSITIONS;
};

int PliesLeft(const TChessboard& board, int nPlies)
{
    return std::min<int>(nPlies, board.m_nMoves);
}

} // namespace

TOrigin OriginOf(const TChessboard& board, TSquare square)
{
    TOrigin origin{square};
    for (const TChessboard* p = &board; p->m_pParent; p = p->m_pParent) {
        const TMove& move = p->m_LastMove;
        if (move.IsNull() || move.m_to != origin.m_square)
            continue;
        origin.m_square = move.m_from;
        origin.m_bPromoted |= move.PromotionKind() != 0;
    }
    return origin;
}

bool IsReplyMateLine(TChessboard& board, int nPlies)
{
    return TCheckLine(ContextOf(board)).MatesWithin(board, PliesLeft(board, nPlies));
}

bool IsReplyRecapture(TChessboard& board, int nPlies)
{
    TMoveList moves;
    const int nMoves = board.GenerateWhiteMoves(moves.data());
    TCheckLine line(ContextOf(board));
    return std::any_of(moves.data(), moves.data() + nMoves, [&](const TMove& move) {
        return move.m_to == board.m_LastMove.m_to &&
               line.MatesByMove(board, move, PliesLeft(board, nPlies), false);
    });
}

bool IsWonByCheck(const TChessboard& board, TSquare square)
{
    TMoveList moves;
    const int nMoves = board.GenerateWhiteMoves(moves.data());
    TChessboard trial = board;
    trial.m_pThread = nullptr;
    return std::any_of(moves.data(), moves.data() + nMoves, [&](TMove move) {
        TChessboard child = trial;
        child.m_pParent = &trial;
        return child.MakeWhiteMove(&move) && child.m_blackChecker != NO_CHECK &&
               IsAttackedBy<EColour::White>(child, square) &&
               !CanCapture<EColour::Black>(child, move.m_to);
    });
}

int MovesToPromotion(const TChessboard& board)
{
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    TSquareSet pawns = board.m_nWhitePawns ? TSets::Equal(board.m_board, WHITE_PAWN) : 0;
    int nMoves = 8;
    while (pawns) {
        const TSquare pawn = PopLowestSquare(pawns);
        if (!(Ray(DIR_UP, pawn) & occupied))
            nMoves = std::min(nMoves, 7 - RowOf(pawn) - (RowOf(pawn) == 1));
    }
    return nMoves;
}

bool CanTakeMajor(const TChessboard& board)
{
    using B = TSide<EColour::Black>;
    TSquareSet majors = B::HasLineSlider(board) ? TSets::Having(board.m_board, B::LINE_MASK) : 0;
    while (majors) {
        if (CanCapture<EColour::White>(board, PopLowestSquare(majors)))
            return true;
    }
    return false;
}

bool AreBlackFiguresShutIn(const TChessboard& board)
{
    return FindBlackMobility(board).m_figures == 0;
}

} // namespace corvina
