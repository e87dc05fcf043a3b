#ifndef CORVINA_TESTS_HEURISTICS_RANDOMSETS_H
#define CORVINA_TESTS_HEURISTICS_RANDOMSETS_H

#include "heuristics/heuristicset.h"
#include "search/solverequest.h"
#include "search/threadcontext.h"

#include <random>
#include <string>

namespace corvina
{

/// Every heuristic with a name.
constexpr std::uint32_t ALL_HEURISTICS = 0xCFFFFEFF;

/// A root with a request and a context of its own that holds a set.
struct TSetPosition
{
    explicit TSetPosition(const TChessboard& position, int nHalfMoves = 41);

    void Apply(const THeuristicSet& set);
    void Apply(const std::string& strSet);

    TSolveRequest request;
    TThreadContext context{60};
    TChessboard board;
};

/// Any heuristics with any parameters that a text can tell and that a reader takes. The figures
/// listed are those of the board.
THeuristicSet RandomTellableSet(std::mt19937& random, const TChessboard& board);

/// Any heuristics with any parameters at all, those of the relaxation included.
THeuristicSet RandomSet(std::mt19937& random, const TChessboard& board);

} // namespace corvina

#endif
