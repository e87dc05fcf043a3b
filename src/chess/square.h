#ifndef CORVINA_CHESS_SQUARE_H
#define CORVINA_CHESS_SQUARE_H

#include "chess/figure.h"

#include <bit>
#include <cstdint>
#include <cstdlib>

namespace corvina
{

/// A square is row * 8 + file: a1 = 0, h1 = 7, a8 = 56, h8 = 63.
using TSquare = std::uint8_t;

constexpr TSquare NO_SQUARE = 255; ///< "none" in lists of squares

/// A set of squares, bit i for square i.
using TSquareSet = std::uint64_t;

constexpr TSquareSet Bit(int square)
{
    return TSquareSet{1} << square;
}

/// The lowest square of a set that is not empty.
constexpr TSquare LowestSquare(TSquareSet set)
{
    return static_cast<TSquare>(std::countr_zero(set));
}

/// Takes the lowest square out of a set that is not empty.
constexpr TSquare PopLowestSquare(TSquareSet& set)
{
    const TSquare square = LowestSquare(set);
    set &= set - 1;
    return square;
}

constexpr int FileOf(int square)
{
    return square & 7;
}

constexpr int RowOf(int square)
{
    return square >> 3;
}

constexpr TSquare MakeSquare(int file, int row)
{
    return static_cast<TSquare>(row * 8 + file);
}

constexpr bool IsOnBoard(int file, int row)
{
    return ((file | row) & ~7) == 0;
}

/// 0 for a1 and the squares of its colour, 1 for the others.
constexpr int SquareColour(int square)
{
    return (square + (square >> 3)) & 1;
}

/// The squares of the colour of a1.
constexpr TSquareSet DARK_SQUARES = 0xAA55AA55AA55AA55;

/// True for coordinates 0 and 7.
constexpr bool IsEdge(int coordinate)
{
    return ((coordinate + 1) & 7) < 2;
}

/// 0 on the edge of the board to 3 on the four central squares.
constexpr int Ring(int file, int row)
{
    const int fileRing = file < 4 ? file : 7 - file;
    const int rowRing = row < 4 ? row : 7 - row;
    return fileRing < rowRing ? fileRing : rowRing;
}

constexpr int Sign(int n)
{
    return (n > 0) - (n < 0);
}

constexpr int Abs(int n)
{
    return n < 0 ? -n : n;
}

/// Number of king moves between two squares.
constexpr int Distance(int a, int b)
{
    const int files = Abs(FileOf(a) - FileOf(b));
    const int rows = Abs(RowOf(a) - RowOf(b));
    return files > rows ? files : rows;
}

/// The eight directions, rook lines first, in the order in which moves are generated.
enum EDirection : std::uint8_t
{
    DIR_UP,
    DIR_DOWN,
    DIR_RIGHT,
    DIR_LEFT,
    DIR_UP_RIGHT,
    DIR_UP_LEFT,
    DIR_DOWN_RIGHT,
    DIR_DOWN_LEFT,
    DIR_NONE ///< two squares that are equal or on no common line
};

constexpr bool IsDiagonal(EDirection direction)
{
    return direction >= DIR_UP_RIGHT;
}

constexpr int g_aDirectionStep[8] = {8, -8, 1, -1, 9, 7, -7, -9};
constexpr int g_aDirectionFile[8] = {0, 0, 1, -1, 1, -1, 1, -1};
constexpr int g_aDirectionRow[8] = {1, -1, 0, 0, 1, 1, -1, -1};

} // namespace corvina

#endif
