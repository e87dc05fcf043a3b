#ifndef CORVINA_PROBLEMS_PROBLEM_H
#define CORVINA_PROBLEMS_PROBLEM_H

#include "chess/chessboard.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace corvina
{

/// Kinds of problem: values of TProblem::m_nProblemType.
constexpr std::uint8_t PROBLEM_DIRECTMATE = 1;
constexpr std::uint8_t PROBLEM_SELFMATE = 2; ///< read and written, not solved
constexpr std::uint8_t PROBLEM_LINE = 4;     ///< a position with a played line, no stipulation

/// Bits of TProblem::m_nRunOptions.
constexpr std::uint32_t RUN_NOMIRROR = 0x1; ///< no mirrored run
constexpr std::uint32_t RUN_ALLSOLUTIONS =
    0x2; ///< a single-solution mode becomes an all-solutions mode
constexpr std::uint32_t RUN_ANSWERKNOWN = 0x4; ///< the answer is known and compared
constexpr std::uint32_t RUN_STOPON2SOLUTIONS = 0x8;
constexpr std::uint32_t RUN_STOPON3SOLUTIONS = 0x10;
constexpr std::uint32_t RUN_STOPON4SOLUTIONS = 0x8000;

/// Half-moves of a directmate in nMoves moves.
constexpr std::uint16_t HalfMovesOfMate(int nMoves)
{
    return static_cast<std::uint16_t>(2 * nMoves - 1);
}

/// The longest stipulation in half-moves, and in moves.
constexpr int MAX_HALFMOVES = 599;
constexpr int MAX_MATE = (MAX_HALFMOVES + 1) / 2;

/// A problem as a document: what a file says of it.
struct TProblem
{
    std::uint8_t m_nProblemType = PROBLEM_DIRECTMATE;
    std::int32_t m_nProblemNumber = 0;
    std::uint16_t m_nRequestedMoves = 1; ///< stipulation in half-moves
    std::unique_ptr<TChessboard> m_pChessboard = std::make_unique<TChessboard>();
    std::vector<TMove> m_vecExpectedSolutions;
    std::uint32_t m_nRunOptions = 0;      ///< RUN_...
    std::int8_t m_nRequestedThreads = -1; ///< -1: from the options
    std::int8_t m_nRequestedMultithreadingLevels = -1;
    std::int16_t m_shRequestedSchedulerLevels = -1;
    std::int32_t m_nMemoryLimitMB = -1; ///< for precalculated data; -1: from the options
    bool m_bStopRelaxingAfterSolution = false;
};

} // namespace corvina

#endif
