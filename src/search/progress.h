#ifndef CORVINA_SEARCH_PROGRESS_H
#define CORVINA_SEARCH_PROGRESS_H

#include "search/solverequest.h"

#include <cstdint>
#include <string>
#include <vector>

/// Where a run stands, for those who watch it.

namespace corvina
{

/// A move on the line of a thread.
struct TProgressMove
{
    std::string m_strMove;     ///< in full notation
    std::uint8_t m_nIndex = 0; ///< in the list of its node
    std::uint8_t m_nCount = 0; ///< of moves in that list
};

/// What a thread is at, as it was at one moment.
struct TProgressLine
{
    std::uint16_t m_nThread = 0;           ///< the root thread that it belongs to
    std::vector<TProgressMove> m_vecMoves; ///< from the root, White's first
    std::uint16_t m_nPlies = 0;            ///< half-moves of the task
    std::uint32_t m_nHeuristics = 0;       ///< the mask in force
    std::uint8_t m_nPass = 0;
    std::uint8_t m_nPassIndex = 0;   ///< relaxations before it
    std::uint32_t m_nRegistered = 0; ///< positions in the temporary register
    std::uint32_t m_nDoubtful = 0;   ///< of them
    float m_fPercent = 0;            ///< done of the planned passes, to two decimals
    std::uint64_t m_nPositions = 0;
};

/// The number of the root thread that the context works for, itself or below it.
std::uint16_t RootThreadOf(const TThreadContext& context);

/// The line that leads to the board, and what the run has done so far. For the thread at work
/// there.
TProgressLine ReadProgress(const TChessboard& board);

/// "Pass 1b, SH:4h,TR:120(90), 1. Qa1-a8, Kh8-g7, 2. ... 12.5% 4711" and blanks that cover what was
/// longer before, with a carriage return. nColumns > 0: the line of moves is cut short so that all
/// of it, without the blanks, fits into so many.
std::string GetProgressLine(const TProgressLine& line, int nColumns = 0);

/// Adds what the thread has counted since the last time to the count of the run, once it is worth
/// the while: nStep positions or more.
void PublishPositions(TSolveRequest& request, TThreadContext& context, std::uint64_t nStep = 4096);

/// A first move has come to the end of its analysis in a pass. Above 100 percent when a pass comes
/// on top of those that were planned.
void UpdatePercent(TSolveRequest& request);

} // namespace corvina

#endif
