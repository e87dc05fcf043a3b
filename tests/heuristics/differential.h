#ifndef CORVINA_TESTS_HEURISTICS_DIFFERENTIAL_H
#define CORVINA_TESTS_HEURISTICS_DIFFERENTIAL_H

#include "search/solverequest.h"

#include <array>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

/// Runs with a set of heuristics, to be compared with a run without.

namespace corvina
{

struct TRunOf
{
    std::vector<std::string> m_vecSolutions;
    std::vector<TPassReport> m_vecPasses;
    std::array<std::uint64_t, 32> m_anCuts{}, m_anWhiteCuts{};
    bool m_bDoubtful = false;

    // What searches of their own have shown (TSolveRequest).
    int m_nOneColourMates = 0, m_nSingleQueenMates = 0;
    std::uint64_t m_nPositions = 0, m_nPinnedRookSearches = 0, m_nPinnedRookMates = 0,
                  m_nUnblockTries = 0;
};

/// All solutions, by way of the set; "none" is the yardstick.
TRunOf SolveWith(const TChessboard& board, int nMate, const std::string& strSet, int nThreads = 1,
                 bool bRunPass2 = true);
TRunOf SolveWith(const TChessboard& board, int nMate, const THeuristicSet& set, int nThreads = 1);

struct TTask
{
    TChessboard m_board;
    int m_nMate;
    std::vector<std::string> m_vecSolutions;
};

/// A task with the solutions of a run without heuristics.
TTask MakeTask(const TChessboard& board, int nMate);

/// So many tasks of two moves, of three ...
std::vector<TTask> RandomTasks(unsigned nSeed, std::initializer_list<int> anTasksByMate);

std::string Describe(const TTask& task, const std::string& strSet);

} // namespace corvina

#endif
