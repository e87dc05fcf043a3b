#ifndef CORVINA_SEARCH_BLACKCUTS_H
#define CORVINA_SEARCH_BLACKCUTS_H

#include "search/hooks.h"

namespace corvina
{

/// The hook of Black's moves, on the position after the reply: the reply breaks a heuristic. A mark
/// that the hook has put on the move goes with the child.
inline bool IsCutAfterBlackMove(TChessboard& child, TMove& move)
{
    if (child.m_nPass != 1 || child.m_nHeuristics == 0)
        return false;
    if (IsBlackMoveDoubtful(child, &move) > 0)
        return true;
    if (move.m_promotion & TMove::MARK) {
        child.m_boardFlags |= TChessboard::FLAG_EDGECHECKDEFERRED;
        child.m_nHeuristicsParams = ComputeHeurParams(child);
    }
    return false;
}

} // namespace corvina

#endif
