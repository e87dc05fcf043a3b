#include "heuristics/kingblocks.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// Steps from the nearer edge.
constexpr int EdgeDistance(int coordinate)
{
    return std::min(coordinate, 7 - coordinate);
}

} // namespace

EVerdict TestKingNearCorner(TBlackMove& move)
{
    const int nFiles = EdgeDistance(move.m_board.m_blackKingFile);
    const int nRows = EdgeDistance(move.m_board.m_blackKingRow);
    const int nAllowed = move.m_context.m_nCornerDistance;
    const bool bViolated =
        nAllowed < 1 ? std::max(nFiles, nRows) > -nAllowed : nFiles + nRows > nAllowed;
    return bViolated ? move.CutUnlessMateInOne() : EVerdict::Passes;
}

} // namespace corvina
