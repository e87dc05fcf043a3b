#ifndef CORVINA_SEARCH_BLACKCUTS_H
#define CORVINA_SEARCH_BLACKCUTS_H

#include "search/hooks.h"

namespace corvina
{

/// The hook of Black's moves, on the position after the reply: RESULT_DOUBTFUL when the reply
/// breaks a heuristic, RESULT_NO_MATE when White's material can't mate in time behind it, else
/// RESULT_MATE. A mark that the hook has put on the move goes with the child.
inline TSearchResult ResultOfBlackHook(TChessboard& child, TMove& move)
{
    if (child.m_nPass != 1 || child.m_nHeuristics == 0)
        return RESULT_MATE;
    const int nAnswer = IsBlackMoveDoubtful(child, &move);
    if (nAnswer > 0)
        return nAnswer == HOOK_IMPOSSIBLE ? RESULT_NO_MATE : RESULT_DOUBTFUL;
    if (move.m_promotion & TMove::MARK) {
        child.m_boardFlags |= TChessboard::FLAG_EDGECHECKDEFERRED;
        child.m_nHeuristicsParams = ComputeHeurParams(child);
    }
    return RESULT_MATE;
}

} // namespace corvina

#endif
