#ifndef CORVINA_CHESS_LINEGUARD_H
#define CORVINA_CHESS_LINEGUARD_H

#include "chess/linecontext.h"

#include <algorithm>
#include <vector>

namespace corvina
{

/// Undoes what a run of trial moves does to a thread's line: the records that it overwrites and the
/// notes that making a move leaves. Restores on destruction unless the moves are to stand.
class TLineGuard
{
public:
    /// The thread may be null: then there is nothing to guard.
    explicit TLineGuard(TLineContext* pThread) : m_pThread(pThread)
    {
        if (m_pThread)
            std::copy_n(&m_pThread->m_aCaptures[0][0], CAPTURES, m_aCaptures);
    }
    TLineGuard(const TLineGuard&) = delete;
    TLineGuard& operator=(const TLineGuard&) = delete;
    ~TLineGuard()
    {
        if (m_pThread)
            Restore();
    }

    /// To be called before a child of a record with this many half-moves left, at least one, is
    /// built.
    void Save(int nMoves)
    {
        if (m_pThread)
            m_vecSaved.push_back(
                {nMoves, m_pThread->Slot(nMoves), m_pThread->m_anLevelCounter[Level(nMoves)]});
    }

    /// Lets the moves stand.
    void Dismiss() { m_pThread = nullptr; }

private:
    static constexpr int CAPTURES = 2 * TLineContext::MAX_CAPTURES;

    struct TSaved
    {
        int m_nMoves;
        TChessboard m_board;
        std::uint8_t m_nLevelCounter;
    };

    /// The level that a move from a record with this many half-moves left arrives at.
    static std::size_t Level(int nMoves) { return static_cast<std::size_t>(nMoves - 1); }

    void Restore()
    {
        while (!m_vecSaved.empty()) {
            const TSaved& saved = m_vecSaved.back();
            m_pThread->Slot(saved.m_nMoves) = saved.m_board;
            m_pThread->m_anLevelCounter[Level(saved.m_nMoves)] = saved.m_nLevelCounter;
            m_vecSaved.pop_back();
        }
        std::copy_n(m_aCaptures, CAPTURES, &m_pThread->m_aCaptures[0][0]);
    }

    TLineContext* m_pThread;
    TLineContext::TCapture m_aCaptures[CAPTURES];
    std::vector<TSaved> m_vecSaved;
};

} // namespace corvina

#endif
