#include "search/ordering.h"

#include "search/indications.h"
#include "search/movescore.h"

#include <utility>

namespace corvina
{
namespace
{

constexpr int KILLER = -1000;
constexpr int CHECK = -100;
constexpr int DOUBLE_CHECK_SCORE = -150;
constexpr int PROMOTION = -40;
constexpr int CAPTURE = -4; ///< times the value

/// What is added to a score by a sort indication, so that its move comes before or behind all
/// others.
constexpr int SCORE_INDICATED_FIRST = -2000;
constexpr int SCORE_INDICATED_LAST = 2000;

/// Makes scores with noise positive, for a key.
constexpr int KEY_OFFSET = 1 << 12;

int ScoreCheaply(const TChessboard& board, const TChessboard& child, const TMove& move,
                 const TKiller& killer)
{
    if (IsKiller(killer, board, move))
        return KILLER;
    const TSquare king = board.BlackKing();
    int nScore = Distance(move.m_to, king) - Distance(move.m_from, king);
    if (child.m_blackChecker != NO_CHECK)
        nScore += child.m_blackChecker == DOUBLE_CHECK ? DOUBLE_CHECK_SCORE : CHECK;
    nScore += CAPTURE * CaptureValue(board.m_board[move.m_to] & KIND_MASK);
    if (move.PromotionKind() == KIND_QUEEN)
        nScore += PROMOTION;
    return nScore;
}

struct TScoredMove
{
    int m_nScore;
};

int ScoreByIndication(int nScore)
{
    return nScore + (nScore < 0 ? SCORE_INDICATED_FIRST : SCORE_INDICATED_LAST);
}

} // namespace

int SortWhiteMovesCheap(TChessboard& board, TMove* pMoves, int nMoves)
{
    TScoredMove aScored[MAX_MOVES + 1];
    TThreadContext& context = ContextOf(board);
    const TKiller& killer = context.m_aWhiteKillers[board.m_nMoves];
    const TOrderNoise noise(board);
    TNodeIndications indications(board);
    int nLegal = 0;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = context.MakeChild(board);
        if (!child.MakeWhiteMove(&pMoves[i]))
            continue;
        const TMove& move = pMoves[nLegal] = pMoves[i];
        const auto nIndicated = indications.Apply() ? indications.Score(child) : std::nullopt;
        aScored[nLegal++].m_nScore = nIndicated
                                         ? ScoreByIndication(*nIndicated)
                                         : ScoreCheaply(board, child, move, killer) + noise(move);
    }
    indications.Finish(aScored, nLegal);
    std::uint32_t anKeys[MAX_MOVES + 1];
    for (int i = 0; i < nLegal; ++i)
        anKeys[i] = static_cast<std::uint32_t>((aScored[i].m_nScore + KEY_OFFSET) << 8 | i);
    SortByKeys(anKeys, pMoves, nLegal);
    return nLegal;
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
