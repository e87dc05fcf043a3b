#ifndef CORVINA_SEARCH_MOVESCORE_H
#define CORVINA_SEARCH_MOVESCORE_H

#include "chess/chessboard.h"

#include <algorithm>
#include <array>

namespace corvina
{

/// Scores of a sort: moves are tried in rising order. The score of a move stands in its last byte,
/// from the sort until the move is made, which writes that byte anew.
using TScore = std::int8_t;

constexpr TScore SCORE_ILLEGAL = 127;    ///< at the end of the list, and not counted
constexpr TScore SCORE_MAX_BLACK = 126;  ///< of Black's sort
constexpr TScore SCORE_MAX_WHITE = 125;  ///< of White's sort; also of a move to try last
constexpr TScore SCORE_ALL_MATED = -127; ///< all replies are known to be mated
constexpr TScore SCORE_BEST = -128;

inline TScore ScoreOf(const TMove& move)
{
    return static_cast<TScore>(move.m_bEnPassant);
}

inline void SetScore(TMove& move, TScore nScore)
{
    move.m_bEnPassant = static_cast<std::uint8_t>(nScore);
}

/// What the tests of a sort add up: the coarse sum counts four times, the fine one once.
struct TScoreSums
{
    int m_nCoarse = 0;
    int m_nFine = 0;

    int Total() const { return 4 * m_nCoarse + m_nFine; }
};

/// The weight of a captured figure of this kind.
constexpr int CaptureValue(TFigure kind)
{
    switch (kind) {
    case KIND_KING:
        return 10;
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

/// Puts the moves into the order of their keys. The lowest byte of a key is the index of its move,
/// so that equal scores keep the order of the list.
template <class TKey>
void SortByKeys(TKey* pKeys, TMove* pMoves, int nMoves)
{
    std::sort(pKeys, pKeys + nMoves);
    TMove aCopy[MAX_MOVES + 1];
    std::copy_n(pMoves, nMoves, aCopy);
    for (int i = 0; i < nMoves; ++i)
        pMoves[i] = aCopy[pKeys[i] & 0xFF];
}

/// Puts the moves into the order of their scores; equal ones keep their order.
inline void SortByScore(TMove* pMoves, int nMoves)
{
    std::uint16_t anKeys[MAX_MOVES + 1];
    for (int i = 0; i < nMoves; ++i)
        anKeys[i] = static_cast<std::uint16_t>((ScoreOf(pMoves[i]) - SCORE_BEST) << 8 | i);
    SortByKeys(anKeys, pMoves, nMoves);
}

/// What TSolveRequest::m_nOrderSeed adds to the scores of a position's moves: 0 without a seed,
/// otherwise a number that depends on seed, position and move alone.
class TOrderNoise
{
public:
    explicit TOrderNoise(const TChessboard& board);

    int operator()(const TMove& move) const { return m_nHash ? Of(move) : 0; }

private:
    int Of(const TMove& move) const;

    std::uint64_t m_nHash = 0; ///< of seed and position
};

} // namespace corvina

#endif
