#include "search/ordering.h"

#include "search/indications.h"
#include "search/registeraccess.h"

#include <algorithm>
#include <utility>

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

/// What is added to a score by a sort indication, so that its move comes before or behind all
/// others.
constexpr TScore SCORE_INDICATED_FIRST = -2000;
constexpr TScore SCORE_INDICATED_LAST = 2000;

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

std::optional<TScore> ScoreByIndication(TNodeIndications& indications, const TChessboard& child)
{
    const auto nScore = indications.Score(child);
    if (!nScore)
        return std::nullopt;
    return *nScore + (*nScore < 0 ? SCORE_INDICATED_FIRST : SCORE_INDICATED_LAST);
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

} // namespace

int SortWhiteMovesCheap(TChessboard& board, TMove* pMoves, int nMoves)
{
    TScoredMove aScored[MAX_MOVES + 1];
    TThreadContext& context = ContextOf(board);
    const TKiller& killer = context.m_aWhiteKillers[board.m_nMoves];
    TNodeIndications indications(board);
    int nLegal = 0;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = context.MakeChild(board);
        if (!child.MakeWhiteMove(&pMoves[i]))
            continue;
        const auto nIndicated =
            indications.Apply() ? ScoreByIndication(indications, child) : std::nullopt;
        aScored[nLegal++] = {nIndicated ? *nIndicated : ScoreWhite(board, child, pMoves[i], killer),
                             pMoves[i]};
    }
    indications.Finish(aScored, nLegal);
    WriteSorted(aScored, nLegal, pMoves);
    return nLegal;
}

int SortBlackMoves(TChessboard& board, TMove* pMoves, int nMoves, bool* pbHasReply)
{
    TScoredMove aScored[MAX_MOVES + 1];
    TThreadContext& context = ContextOf(board);
    const TKiller& killer = context.m_aBlackKillers[board.m_nMoves];
    int nLeft = 0;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = context.MakeChild(board);
        if (!child.MakeBlackMove(&pMoves[i]))
            continue;
        *pbHasReply = true;
        if (UsesRegister(child)) {
            const auto known = ProbeRegister(child);
            if (known && *known != RESULT_MATE)
                return *known == RESULT_NO_MATE ? RESULT_REFUTED : *known;
            if (known)
                continue;
        }
        aScored[nLeft++] = {ScoreBlack(board, child, pMoves[i], killer), pMoves[i]};
    }
    WriteSorted(aScored, nLeft, pMoves);
    return nLeft;
}

void BringKillerToFront(const TChessboard& board, const TKiller& killer, TMove* pMoves, int nMoves)
{
    if (killer.m_figure == NO_FIGURE || board.m_board[killer.m_move.m_from] != killer.m_figure)
        return;
    for (int i = 1; i < nMoves; ++i) {
        if (IsSameMove(pMoves[i], killer.m_move)) {
            std::swap(pMoves[0], pMoves[i]);
            return;
        }
    }
}

} // namespace corvina
