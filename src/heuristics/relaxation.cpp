#include "search/hooks.h"

namespace corvina
{

int TryRelaxSpecialHeuristics(TChessboard& board)
{
    board.m_nHeuristics = board.m_nHeuristicsParams = 0;
    return 0;
}

TRelaxationCount ComputeRelaxationPlan(TChessboard&, bool)
{
    return {};
}

bool CanApplyEdgeHeuristicDynamically(const TChessboard&)
{
    return false;
}

} // namespace corvina
