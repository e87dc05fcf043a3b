#ifndef CORVINA_SEARCH_WHITECUTS_H
#define CORVINA_SEARCH_WHITECUTS_H

#include "chess/geometry.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/lastmoves.h"
#include "heuristics/singlequeen.h"
#include "heuristics/zugzwangmap.h"
#include "search/hooks.h"
#include "search/threadcontext.h"

namespace corvina
{

/// The cuts of White's moves, for the first moves and for those of the nodes. A move that is cut is
/// doubtful.

/// With SH_DONTRECEDEBLACKKING: a move of the White king, no capture, that takes it farther from
/// the Black king.
inline bool RecedesFromBlackKing(const TChessboard& board, const TMove& move)
{
    if (!(board.m_nHeuristics & SH_DONTRECEDEBLACKKING) || board.m_nPass != 1)
        return false;
    if (board.m_board[move.m_from] != WHITE_KING || board.m_board[move.m_to] != NO_FIGURE)
        return false;
    const TSquare king = board.BlackKing();
    if (Distance(move.m_to, king) <= Distance(move.m_from, king))
        return false;
    ContextOf(board).NoteWhiteCut(SH_DONTRECEDEBLACKKING);
    return true;
}

/// With SH_SINGLEQUEENMATE: a move of the White king that frees a Black pawn which he holds up.
inline bool LeavesHeldPawn(const TChessboard& board, const TMove& move)
{
    if (!(board.m_nHeuristics & SH_SINGLEQUEENMATE) || board.m_nPass != 1 ||
        !FreesHeldPawn(board, move))
        return false;
    ContextOf(board).NoteWhiteCut(SH_SINGLEQUEENMATE);
    return true;
}

/// A cut of White's move before it is made.
inline bool IsWhiteMoveCut(const TChessboard& board, const TMove& move)
{
    constexpr std::uint32_t MASK = SH_DONTRECEDEBLACKKING | SH_SINGLEQUEENMATE;
    return (board.m_nHeuristics & MASK) &&
           (RecedesFromBlackKing(board, move) || LeavesHeldPawn(board, move));
}

/// With SH_ZUGZWANG: a first move that isn't on the map.
inline bool IsOffZugzwangMap(const TChessboard& root, const TMove& move)
{
    if (!(root.m_nHeuristics & SH_ZUGZWANG) || root.m_nPass != 1 ||
        IsZugzwangAllowedMove(root, move))
        return false;
    ContextOf(root).NoteWhiteCut(SH_ZUGZWANG);
    return true;
}

/// With SH_DONTLOSEANYFIGURES: notes on the position after White's move whether Black's move before
/// it took a figure. Black's next move is judged by it.
inline void NoteLostFigure(TChessboard& child)
{
    if (!(child.m_nHeuristics & SH_DONTLOSEANYFIGURES))
        return;
    child.m_boardFlags &= static_cast<std::uint16_t>(~TChessboard::FLAG_FIGURELOST);
    if (IsAbovePawn(CapturedFigure(child.m_pParent)))
        child.m_boardFlags |= TChessboard::FLAG_FIGURELOST;
}

/// The hook of White's moves, on the position after the move.
inline bool IsCutAfterWhiteMove(TChessboard& child)
{
    NoteLostFigure(child);
    return (child.m_nHeuristics & WHITE_HOOK_MASK) && child.m_nPass == 1 &&
           IsWhiteMoveDoubtful(child);
}

} // namespace corvina

#endif
