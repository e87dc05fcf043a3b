#include "search/movescore.h"

#include "search/solverequest.h"

#include <cstring>

namespace corvina
{
namespace
{

/// The finaliser of splitmix64.
std::uint64_t Mixed(std::uint64_t n)
{
    n += 0x9E3779B97F4A7C15;
    n = (n ^ n >> 30) * 0xBF58476D1CE4E5B9;
    n = (n ^ n >> 27) * 0x94D049BB133111EB;
    return n ^ n >> 31;
}

} // namespace

TOrderNoise::TOrderNoise(const TChessboard& board)
{
    const std::uint32_t nSeed = board.m_pRequest->m_nOrderSeed;
    if (nSeed == 0)
        return;
    m_nHash = Mixed(nSeed);
    for (int i = 0; i < 64; i += 8) {
        std::uint64_t nRow;
        std::memcpy(&nRow, board.m_board + i, sizeof nRow);
        m_nHash = Mixed(m_nHash ^ nRow);
    }
}

int TOrderNoise::Of(const TMove& move) const
{
    // Wide enough to turn any order round.
    constexpr int RANGE = 200;
    const std::uint64_t n = Mixed(m_nHash ^ (FromTo(move) | move.PromotionKind() << 16));
    return static_cast<int>(n % (2 * RANGE + 1)) - RANGE;
}

} // namespace corvina
