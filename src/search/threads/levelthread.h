#ifndef CORVINA_SEARCH_THREADS_LEVELTHREAD_H
#define CORVINA_SEARCH_THREADS_LEVELTHREAD_H

#include "search/result.h"
#include "search/threads/levels.h"

#include <array>
#include <functional>
#include <mutex>
#include <optional>

namespace corvina
{

/// The moves of a node that a group of threads shares. It lives as long as the group.
struct TLevelMoves
{
    std::array<TMove, MAX_SHARED_MOVES> m_moves{}; ///< in the node's order; read only
    std::uint8_t m_nCount = 0;
    std::uint8_t m_nNext = 0; ///< index of the next one to hand out
    std::mutex m_mutex;       ///< guards m_nNext
};

/// The index of a move that nobody else gets; m_nCount when all are handed out.
std::uint8_t TakeNextMove(TLevelMoves& shared);

/// What has become of moves that other threads have analysed: what the node would have counted, had
/// it gone through them itself.
struct TLevelOutcome
{
    TSearchResult m_nResult = RESULT_NO_MATE; ///< RESULT_MATE, or no move of them mates
    TMove m_mate{};
    int m_nDoubtful = 0;              ///< moves that came back doubtful
    int m_nRepetition = 0;            ///< moves that lean on a repetition
    std::uint16_t m_nRepeatDepth = 0; ///< m_anRepeatDepth behind the node's depth
    std::uint32_t m_nDoubtReason = 0;
    bool m_bLeftOutByHand = false;
    bool m_bGivenUp = false; ///< a thread has ended before its work was done: there is no answer

    /// Takes in what another thread has found.
    void Add(const TLevelOutcome& other);
};

/// The search of a group's thread on its copy of the node: takes moves until none are left.
using TLevelSearch = std::function<TLevelOutcome(TChessboard& board, TLevelMoves& shared)>;

/// Shares the moves of a node among the threads of a group and waits for them. The first mate ends
/// the others; so does a stop of the calling thread, and a thread that gives up without being told.
/// Nothing: the group couldn't be made, and nothing is left of it.
std::optional<TLevelOutcome> NextMultithreadingLevel(TChessboard& board, const TMove* pMoves,
                                                     int nCount, const TLevelSearch& search);

} // namespace corvina

#endif
