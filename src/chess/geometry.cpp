#include "chess/geometry.h"

#include <initializer_list>

namespace corvina
{
namespace
{

using TSteps = const int[8][2];

/// Steps (file, row) in the order in which the moves are generated.
constexpr TSteps KING_STEPS = {{0, -1}, {-1, -1}, {1, -1}, {0, 1},
                               {-1, 1}, {1, 1},   {-1, 0}, {1, 0}};
constexpr TSteps KNIGHT_STEPS = {{-1, -2}, {-1, 2}, {-2, -1}, {-2, 1},
                                 {1, -2},  {1, 2},  {2, -1},  {2, 1}};

constexpr void FillJumps(int square, TSteps& aSteps, TSquareSet& set, std::uint8_t* pTargets,
                         std::uint8_t& nCount)
{
    for (const auto& step : aSteps) {
        const int file = FileOf(square) + step[0];
        const int row = RowOf(square) + step[1];
        if (!IsOnBoard(file, row))
            continue;
        set |= Bit(MakeSquare(file, row));
        pTargets[nCount++] = MakeSquare(file, row);
    }
}

constexpr void FillPawn(TGeometry& g, int square)
{
    for (const int side : {-1, 1}) {
        const int file = FileOf(square) + side;
        for (const int forward : {1, -1}) {
            const int row = RowOf(square) + forward;
            if (IsOnBoard(file, row))
                g.m_aPawn[forward == 1 ? 0 : 1][square] |= Bit(MakeSquare(file, row));
        }
    }
}

constexpr void FillLines(TGeometry& g, int square)
{
    for (int other = 0; other < 64; ++other)
        g.m_aDirection[square][other] = DIR_NONE;
    for (int direction = 0; direction < 8; ++direction) {
        TSquareSet passed = 0;
        int file = FileOf(square) + g_aDirectionFile[direction];
        int row = RowOf(square) + g_aDirectionRow[direction];
        while (IsOnBoard(file, row)) {
            const int target = MakeSquare(file, row);
            g.m_aDirection[square][target] = static_cast<EDirection>(direction);
            g.m_aBetween[square][target] = passed;
            passed |= Bit(target);
            file += g_aDirectionFile[direction];
            row += g_aDirectionRow[direction];
        }
        g.m_aRay[direction][square] = passed;
        (IsDiagonal(static_cast<EDirection>(direction)) ? g.m_aBishop : g.m_aRook)[square] |=
            passed;
    }
}

constexpr TGeometry MakeGeometry()
{
    TGeometry g{};
    for (int square = 0; square < 64; ++square) {
        FillJumps(square, KING_STEPS, g.m_aKing[square], g.m_aKingTargets[square],
                  g.m_aKingTargetCount[square]);
        FillJumps(square, KNIGHT_STEPS, g.m_aKnight[square], g.m_aKnightTargets[square],
                  g.m_aKnightTargetCount[square]);
        FillPawn(g, square);
        FillLines(g, square);
        for (int other = 0; other < 64; ++other)
            g.m_aSteps[square][other + 1] = static_cast<std::uint8_t>(Distance(square, other));
    }
    return g;
}

} // namespace

alignas(64) constexpr TGeometry g_geometry = MakeGeometry();

} // namespace corvina
