#include "search/fallback.h"

#include "heuristics/heuristicbits.h"
#include "search/hooks.h"

namespace corvina
{
namespace
{

/// Half-moves left to White, and played, at the node that may fall back.
constexpr int MIN_PLIES_LEFT = 17;
constexpr int MAX_PLIES_PLAYED = 9;

} // namespace

bool MayFallBack(const TChessboard& child)
{
    if (child.m_nPass >= 2 || child.m_nMoves + 1 < MIN_PLIES_LEFT ||
        child.m_nInitialMoves - child.m_nMoves - 1 > MAX_PLIES_PLAYED)
        return false;
    const TThreadContext& context = ContextOf(child);
    const bool bStrict = (child.m_nHeuristics & SH_KEEPKINGONTHEEDGE) && context.m_bKingMustNotMove;
    return context.m_bEnableFallback && child.m_nHeuristics != 0 && !bStrict &&
           child.BlackKingRing() == 0 && CanApplyEdgeHeuristicDynamically(child);
}

TStricterSet::TStricterSet(TChessboard& board)
    : m_board(board), m_nHeuristics(board.m_nHeuristics),
      m_nHeuristicsParams(board.m_nHeuristicsParams),
      m_bKingMustNotMove(ContextOf(board).m_bKingMustNotMove)
{
    m_board.m_nHeuristics |= SH_KEEPKINGONTHEEDGE;
    ContextOf(m_board).m_bKingMustNotMove = true;
    m_board.m_nHeuristicsParams = ComputeHeurParams(m_board);
}

TStricterSet::~TStricterSet()
{
    m_board.m_nHeuristics = m_nHeuristics;
    m_board.m_nHeuristicsParams = m_nHeuristicsParams;
    ContextOf(m_board).m_bKingMustNotMove = m_bKingMustNotMove;
}

} // namespace corvina
