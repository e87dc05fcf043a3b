#include "search/hooks.h"

namespace corvina
{

std::uint32_t ComputeHeurParams(const TChessboard& board)
{
    return board.m_nHeuristics;
}

} // namespace corvina
