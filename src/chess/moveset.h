#ifndef CORVINA_CHESS_MOVESET_H
#define CORVINA_CHESS_MOVESET_H

#include "chess/move.h"

#include <algorithm>
#include <vector>

namespace corvina
{

/// Short lists of moves as sets: marks don't count.

inline bool ContainsMove(const std::vector<TMove>& vecMoves, const TMove& move)
{
    return std::any_of(vecMoves.begin(), vecMoves.end(),
                       [&](const TMove& other) { return IsSameMove(move, other); });
}

inline bool IsSubset(const std::vector<TMove>& vecPart, const std::vector<TMove>& vecWhole)
{
    return std::all_of(vecPart.begin(), vecPart.end(),
                       [&](const TMove& move) { return ContainsMove(vecWhole, move); });
}

} // namespace corvina

#endif
