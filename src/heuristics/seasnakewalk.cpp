#include "heuristics/seasnakewalk.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// The king attacks one of the squares while the figure stands on the other, and no free square
/// next to him does: White can't keep up the zugzwang by a step aside.
void TryApproach(const TRealm& realm, const TPendulum& pendulum, TSquare attacked, TSquare other,
                 const std::array<std::uint8_t, 64>& anSteps, TApproach& best)
{
    if (realm.IsGuardedByBlack(attacked, attacked, pendulum))
        return;
    TSquareSet squares = KingZone(attacked);
    while (squares) {
        const TSquare square = PopLowestSquare(squares);
        const TSquareSet around = KingZone(square) & realm.Free();
        if (!realm.IsSafeWith(square, other, pendulum) || !around || (around & KingZone(attacked)))
            continue;
        int nSteps = anSteps[square];
        for (TSquareSet rest = around; rest;)
            nSteps = std::min(nSteps, anSteps[PopLowestSquare(rest)] + 1);
        if (nSteps < best.m_nSteps)
            best = {square, attacked, other, nSteps};
    }
}

/// Three free squares next to each other, the nearest one first.
struct TTriangle
{
    std::array<TSquare, 3> m_aSquares{NO_SQUARE, NO_SQUARE, NO_SQUARE};
    int m_nSum = 3 * UNREACHED; ///< of the steps from the approach square
};

TTriangle FindTriangle(TSquareSet squares, const std::array<std::uint8_t, 64>& anSteps)
{
    TTriangle best;
    for (TSquareSet first = squares; first;) {
        const TSquare a = PopLowestSquare(first);
        for (TSquareSet second = KingZone(a) & first; second;) {
            const TSquare b = PopLowestSquare(second);
            for (TSquareSet third = KingZone(a) & KingZone(b) & second; third;) {
                const TSquare c = PopLowestSquare(third);
                const int nSum = anSteps[a] + anSteps[b] + anSteps[c];
                if (nSum < best.m_nSum)
                    best = {{a, b, c}, nSum};
            }
        }
    }
    std::stable_sort(best.m_aSquares.begin(), best.m_aSquares.end(), [&](TSquare a, TSquare b) {
        return a != NO_SQUARE && anSteps[a] < anSteps[b];
    });
    return best;
}

bool AddWalkSquare(TSeaSnake& snake, TSquare square)
{
    const std::uint8_t* pEnd = snake.m_walkSquares + snake.m_nWalkSquares;
    if (std::find<const std::uint8_t*>(snake.m_walkSquares, pEnd, square) != pEnd)
        return true;
    if (snake.m_nWalkSquares == MAX_SEASNAKE_WALK)
        return false;
    snake.m_walkSquares[snake.m_nWalkSquares++] = square;
    return true;
}

/// The shortest way between two squares, the first one included; false when it is too long.
bool AddPath(const TRealm& realm, TSquare from, TSquare to, TSeaSnake& snake)
{
    const auto anSteps = realm.StepsFrom(to);
    TSquare at = from;
    while (at != to) {
        if (!AddWalkSquare(snake, at))
            return false;
        TSquareSet next = KingZone(at) & (realm.Free() | Bit(to));
        TSquare best = NO_SQUARE;
        while (next) {
            const TSquare square = PopLowestSquare(next);
            if (best == NO_SQUARE || anSteps[square] < anSteps[best])
                best = square;
        }
        if (best == NO_SQUARE || anSteps[best] == UNREACHED)
            return false;
        at = best;
    }
    return true;
}

} // namespace

TApproach FindApproach(const TRealm& realm, const TPendulum& pendulum, TSquare king)
{
    const auto anSteps = realm.StepsFrom(king);
    TApproach best;
    TryApproach(realm, pendulum, pendulum.m_here, pendulum.m_there, anSteps, best);
    TryApproach(realm, pendulum, pendulum.m_there, pendulum.m_here, anSteps, best);
    return best;
}

bool FindWalk(const TRealm& realm, TSeaSnake& snake)
{
    const TSquare approach = snake.m_approachSquare;
    const auto anSteps = realm.StepsFrom(approach);
    TSquareSet reachable = Bit(approach);
    for (TSquare square = 0; square < 64; ++square) {
        if (anSteps[square] != UNREACHED)
            reachable |= Bit(square);
    }
    if (snake.m_turnBackSquare != NO_KEY_SQUARE)
        reachable &= KingZone(snake.m_turnBackSquare) | Bit(snake.m_turnBackSquare);
    const TTriangle triangle = FindTriangle(reachable, anSteps);
    if (triangle.m_aSquares[0] == NO_SQUARE)
        return false;
    std::copy(triangle.m_aSquares.begin(), triangle.m_aSquares.end(), snake.m_triangleSquares);
    if (!AddPath(realm, approach, triangle.m_aSquares[0], snake))
        return false;
    snake.m_nPathSquares = snake.m_nWalkSquares;
    for (const TSquare square : triangle.m_aSquares) {
        if (!AddWalkSquare(snake, square))
            return false;
    }
    if (snake.m_turnBackSquare == NO_KEY_SQUARE)
        snake.m_turnBackSquare = triangle.m_aSquares[2];
    return true;
}

} // namespace corvina
