#include "search/ordering.h"

#include "chess/sides.h"
#include "search/threadcontext.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// Scores, lower is tried earlier.
using TScore = std::int32_t;

constexpr TScore SCORE_KILLER = -1000;
constexpr TScore SCORE_CHECK = -100;
constexpr TScore SCORE_DOUBLE_CHECK = -150;
constexpr TScore SCORE_PROMOTION = -40;

/// A material scale for captures, by kind.
constexpr TScore MaterialValue(TFigure kind)
{
    switch (kind) {
    case KIND_QUEEN:
        return 9;
    case KIND_ROOK:
        return 5;
    case KIND_BISHOP:
    case KIND_KNIGHT:
        return 3;
    default:
        return kind == KIND_PAWN;
    }
}

struct TScoredMove
{
    TScore m_nScore;
    TMove m_move;
};

/// Stable: the order of generation decides between equals.
void WriteSorted(TScoredMove* pScored, int nMoves, TMove* pMoves)
{
    std::stable_sort(pScored, pScored + nMoves, [](const TScoredMove& a, const TScoredMove& b) {
        return a.m_nScore < b.m_nScore;
    });
    for (int i = 0; i < nMoves; ++i)
        pMoves[i] = pScored[i].m_move;
}

bool IsKiller(const TKiller& killer, const TChessboard& board, const TMove& move)
{
    return killer.m_figure == board.m_board[move.m_from] && IsSameMove(killer.m_move, move);
}

TScore ScoreWhite(const TChessboard& board, const TChessboard& child, const TMove& move,
                  const TKiller& killer)
{
    if (IsKiller(killer, board, move))
        return SCORE_KILLER;
    const TSquare king = board.BlackKing();
    TScore nScore = Distance(move.m_to, king) - Distance(move.m_from, king);
    if (child.m_blackChecker != NO_CHECK)
        nScore += child.m_blackChecker == DOUBLE_CHECK ? SCORE_DOUBLE_CHECK : SCORE_CHECK;
    nScore -= 4 * MaterialValue(board.m_board[move.m_to] & KIND_MASK);
    if (move.PromotionKind() == KIND_QUEEN)
        nScore += SCORE_PROMOTION;
    return nScore;
}

TScore ScoreBlack(const TChessboard& board, const TChessboard& child, const TMove& move,
                  const TKiller& killer)
{
    if (IsKiller(killer, board, move))
        return SCORE_KILLER;
    TScore nScore = 0;
    if (child.m_whiteChecker != NO_CHECK)
        nScore += SCORE_CHECK / 2;
    const TFigure captured = board.m_board[move.m_to] & KIND_MASK;
    nScore -= 8 * MaterialValue(captured);
    if (captured && move.m_to == board.m_LastMove.m_to)
        nScore -= 20;
    if (board.m_board[move.m_from] == BLACK_KING)
        nScore -= 10;
    if (move.PromotionKind() == KIND_QUEEN)
        nScore += SCORE_PROMOTION;
    return nScore;
}

/// Makes each move on the next slot and sorts those that stand.
template <EColour C, class TScoring>
int Sort(TChessboard& board, TMove* pMoves, int nMoves, TScoring score)
{
    TScoredMove aScored[MAX_MOVES + 1];
    TThreadContext& context = ContextOf(board);
    int nLegal = 0;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = context.MakeChild(board);
        const bool bLegal =
            C == EColour::White ? child.MakeWhiteMove(&pMoves[i]) : child.MakeBlackMove(&pMoves[i]);
        if (bLegal)
            aScored[nLegal++] = {score(child, pMoves[i]), pMoves[i]};
    }
    WriteSorted(aScored, nLegal, pMoves);
    return nLegal;
}

} // namespace

int SortWhiteMovesCheap(TChessboard& board, TMove* pMoves, int nMoves)
{
    const TKiller killer = ContextOf(board).m_aWhiteKillers[board.m_nMoves];
    return Sort<EColour::White>(board, pMoves, nMoves,
                                [&](const TChessboard& child, const TMove& move) {
                                    return ScoreWhite(board, child, move, killer);
                                });
}

int SortBlackMoves(TChessboard& board, TMove* pMoves, int nMoves)
{
    const TKiller killer = ContextOf(board).m_aBlackKillers[board.m_nMoves];
    return Sort<EColour::Black>(board, pMoves, nMoves,
                                [&](const TChessboard& child, const TMove& move) {
                                    return ScoreBlack(board, child, move, killer);
                                });
}

} // namespace corvina
