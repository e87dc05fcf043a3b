#ifndef CORVINA_HEURISTICS_SEASNAKERECORD_H
#define CORVINA_HEURISTICS_SEASNAKERECORD_H

#include <cstdint>

namespace corvina
{

constexpr std::uint8_t NO_KEY_SQUARE = 0xFF;

constexpr int MAX_SEASNAKE_WALK = 12;
constexpr int MAX_SEASNAKE_GUARDS = 8;

/// The pattern of SH_SEASNAKE. A Black figure swings between two squares, the pendulum; the rest of
/// Black has pawn moves at best. The White king takes one of the two squares away from it by
/// standing on the approach square: then Black must spoil something. To come there with Black to
/// move the king loses a tempo on a triangle, at whose far corner he turns back. All fields are one
/// byte wide: squares, NO_KEY_SQUARE for none, or counts. Only the detection fills all of it.
struct TSeaSnake
{
    std::uint8_t m_pendulumSquare2 = NO_KEY_SQUARE;
    std::uint8_t m_pendulumSquare1 = NO_KEY_SQUARE; ///< the one that the White king can approach
    std::uint8_t m_approachSquare = NO_KEY_SQUARE;  ///< of the White king
    std::uint8_t m_turnBackSquare = NO_KEY_SQUARE;  ///< of the White king
    std::uint8_t m_pendulumFigure = NO_KEY_SQUARE;  ///< its figure byte
    std::uint8_t m_nWalkSquares = 0;
    std::uint8_t m_walkSquares[MAX_SEASNAKE_WALK] = {}; ///< from the approach square outward
    std::uint8_t m_triangleSquares[3] = {NO_KEY_SQUARE, NO_KEY_SQUARE, NO_KEY_SQUARE};
    std::uint8_t m_whiteKingSquare = NO_KEY_SQUARE; ///< at the root
    std::uint8_t m_blackKingSquare = NO_KEY_SQUARE; ///< at the root
    std::uint8_t m_pendulumAtRoot = NO_KEY_SQUARE;  ///< the square on which the figure stands there
    std::uint8_t m_nGuards = 0;
    std::uint8_t m_guardSquares[MAX_SEASNAKE_GUARDS] = {}; ///< White figures that shut Black in
    std::uint8_t m_nBlackPawnMoves = 0;                    ///< at the root
    std::uint8_t m_nPathSquares = 0;        ///< squares of the walk in front of the triangle
    bool m_bCheckKingMove = false;          ///< the Black king may find a move on the way
    std::uint8_t m_nSeaSnakeStartMoves = 0; ///< of the White king to the approach square

    bool operator==(const TSeaSnake&) const = default;
};

static_assert(sizeof(TSeaSnake) == 37);

} // namespace corvina

#endif
