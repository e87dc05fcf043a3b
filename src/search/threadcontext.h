#ifndef CORVINA_SEARCH_THREADCONTEXT_H
#define CORVINA_SEARCH_THREADCONTEXT_H

#include "chess/linecontext.h"

#include <cstdint>

namespace corvina
{

/// Everything that a search thread does not share: the line that it follows and its counters. One
/// per thread of a run.
class TThreadContext : public TLineContext
{
public:
    using TLineContext::TLineContext;

    std::uint16_t m_nThreadId = 0;  ///< for the stop block; 0 in a single-threaded run
    std::uint64_t m_nPositions = 0; ///< legal moves made
};

/// The context of the thread that a record of the search belongs to.
inline TThreadContext& ContextOf(const TChessboard& board)
{
    return static_cast<TThreadContext&>(*board.m_pThread);
}

} // namespace corvina

#endif
