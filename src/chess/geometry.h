#ifndef CORVINA_CHESS_GEOMETRY_H
#define CORVINA_CHESS_GEOMETRY_H

#include "chess/square.h"

namespace corvina
{

/// What the empty board tells of squares and lines. One object, so that the tables of the inner
/// loop share a base address.
struct TGeometry
{
    TSquareSet m_aKing[64];    ///< squares a king's move away
    TSquareSet m_aKnight[64];  ///< squares a knight's move away
    TSquareSet m_aPawn[2][64]; ///< squares that a pawn of EColour attacks
    TSquareSet m_aRay[8][64];  ///< squares from here to the edge, by EDirection
    TSquareSet m_aRook[64];    ///< union of the rays of the rook
    TSquareSet m_aBishop[64];  ///< union of the rays of the bishop

    /// Squares strictly between two squares of a common line; empty for other pairs.
    TSquareSet m_aBetween[64][64];

    /// EDirection of the step from the first square towards the second.
    EDirection m_aDirection[64][64];

    /// King moves from the first square to the second; 0 for the second indices 0 and 65, which
    /// stand for "no square": the second square has an offset of one.
    std::uint8_t m_aSteps[64][66];

    /// Destinations in the order of generation, and their number.
    std::uint8_t m_aKingTargets[64][8];
    std::uint8_t m_aKnightTargets[64][8];
    std::uint8_t m_aKingTargetCount[64];
    std::uint8_t m_aKnightTargetCount[64];
};

extern const TGeometry g_geometry;

/// Squares strictly between two squares of a common line.
inline TSquareSet Between(int a, int b)
{
    return g_geometry.m_aBetween[a][b];
}

/// The direction of the step from a towards b; DIR_NONE without a common line.
inline EDirection DirectionTo(int a, int b)
{
    return g_geometry.m_aDirection[a][b];
}

inline bool OnCommonLine(int a, int b)
{
    return DirectionTo(a, b) != DIR_NONE;
}

inline TSquareSet Ray(EDirection direction, int square)
{
    return g_geometry.m_aRay[direction][square];
}

/// The squares beyond `through`, seen from `from`; empty without a common line.
inline TSquareSet RayBeyond(int from, int through)
{
    const EDirection direction = DirectionTo(from, through);
    return direction == DIR_NONE ? 0 : Ray(direction, through);
}

inline TSquareSet KingZone(int square)
{
    return g_geometry.m_aKing[square];
}

inline TSquareSet KnightJumps(int square)
{
    return g_geometry.m_aKnight[square];
}

/// The squares that a pawn of this colour on `square` attacks.
inline TSquareSet PawnAttacks(EColour colour, int square)
{
    return g_geometry.m_aPawn[static_cast<int>(colour)][square];
}

} // namespace corvina

#endif
