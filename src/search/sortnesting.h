#ifndef CORVINA_SEARCH_SORTNESTING_H
#define CORVINA_SEARCH_SORTNESTING_H

#include "search/movelog.h"

namespace corvina
{

/// Counts the sorts that are open on a thread; the outermost one notes its position.
class TSortNesting
{
public:
    explicit TSortNesting(const TChessboard& board)
        : m_context(ContextOf(board)), m_logOff(m_context)
    {
        if (++m_context.m_nSortNesting == 1)
            m_context.m_pSortRoot = &board;
    }
    ~TSortNesting() { --m_context.m_nSortNesting; }
    TSortNesting(const TSortNesting&) = delete;
    TSortNesting& operator=(const TSortNesting&) = delete;

private:
    TThreadContext& m_context;
    const TLogOff m_logOff;
};

/// Keeps the short mate search off for the life of the object.
class TNoQuickerMate
{
public:
    explicit TNoQuickerMate(TThreadContext& context)
        : m_context(context), m_bSaved(context.m_bNoQuickerMate)
    {
        m_context.m_bNoQuickerMate = true;
    }
    ~TNoQuickerMate() { m_context.m_bNoQuickerMate = m_bSaved; }
    TNoQuickerMate(const TNoQuickerMate&) = delete;
    TNoQuickerMate& operator=(const TNoQuickerMate&) = delete;

private:
    TThreadContext& m_context;
    const bool m_bSaved;
};

} // namespace corvina

#endif
