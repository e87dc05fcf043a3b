#ifndef CORVINA_CHESS_LINEATTACKS_H
#define CORVINA_CHESS_LINEATTACKS_H

#include "chess/geometry.h"

namespace corvina
{

/// Squares that a line figure on `square` attacks along the line of two opposite directions, the
/// first of which goes up in square numbers: up to the first occupied square of each side, that
/// square included. By obstruction difference.
template <EDirection UP, EDirection DOWN>
TSquareSet AttacksAlong(int square, TSquareSet occupied)
{
    const TSquareSet up = Ray(UP, square);
    const TSquareSet down = Ray(DOWN, square);
    const TSquareSet above = up & occupied;
    const TSquareSet highestBelow = Bit(63) >> std::countl_zero((down & occupied) | 1);
    const TSquareSet lowestAbove = above & (0 - above);
    return (2 * lowestAbove - highestBelow) & (up | down);
}

inline TSquareSet BishopAttacks(int square, TSquareSet occupied)
{
    return AttacksAlong<DIR_UP_RIGHT, DIR_DOWN_LEFT>(square, occupied) |
           AttacksAlong<DIR_UP_LEFT, DIR_DOWN_RIGHT>(square, occupied);
}

inline TSquareSet RookAttacks(int square, TSquareSet occupied)
{
    return AttacksAlong<DIR_UP, DIR_DOWN>(square, occupied) |
           AttacksAlong<DIR_RIGHT, DIR_LEFT>(square, occupied);
}

} // namespace corvina

#endif
