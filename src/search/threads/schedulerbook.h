#ifndef CORVINA_SEARCH_THREADS_SCHEDULERBOOK_H
#define CORVINA_SEARCH_THREADS_SCHEDULERBOOK_H

#include "search/threads/levels.h"

#include <array>
#include <chrono>
#include <set>

namespace corvina
{

/// Which move of a juggled node runs next, and for how long: the bookkeeping of a scheduler,
/// without its threads. Moves are told by their index in the node's list and started in its order.
class TSchedulerBook
{
public:
    /// nLevel: 1 for the first of nLevels levels at which moves are juggled; above nLevels for a
    /// node behind them.
    TSchedulerBook(int nLevel, int nLevels) : m_nLevel(nLevel), m_nLevels(nLevels) {}

    /// The next move has a thread. bForcing: it checks, and Black's king can't simply take the
    /// checking figure; the moves at the head of the list that do so are favoured.
    void Start(int nIndex, bool bForcing);

    /// It has come to its end.
    void Finish(int nIndex);

    /// The moves at the head of the list that the sort calls good. Behind the levels they keep
    /// their turns long, while the others have short looks only.
    void SetGoodMoves(int nGoodMoves) { m_nGoodMoves = nGoodMoves; }

    /// The node has the result of a finished move.
    void Collect(int nIndex) { m_setDoneMoves.erase(nIndex); }

    int CountStarted() const { return m_nStarted; }
    bool IsUnfinished(int nIndex) const
    {
        return m_aMoves[Place(nIndex)].m_bStarted && !m_aMoves[Place(nIndex)].m_bFinished;
    }

    /// The lowest move that is started and not finished; -1: there is none.
    int FirstFree() const;

    /// A stretch of time for a move.
    struct TQuantum
    {
        double m_dSeconds;
        int m_nCredit; ///< what it counts
    };
    TQuantum QuantumOf(int nIndex) const;

    /// The move has had its quantum.
    void Charge(int nIndex, int nCredit) { m_aMoves[Place(nIndex)].m_nCredit += nCredit; }

    /// The move to run next: one that has finished, whose result comes before anything else, or one
    /// that goes on. -1: a new one is to be started, or without bMayStartNew, there is none left.
    int ChooseNext(bool bMayStartNew);

    static constexpr int NONE = -1;

private:
    static std::size_t Place(int nIndex) { return static_cast<std::size_t>(nIndex); }
    int FirstQuantum() const;
    bool IsFavoured(int nIndex) const { return nIndex < m_nForcingMoves || nIndex < m_nGoodMoves; }
    int ChooseByCredit() const;

    struct TJuggledMove
    {
        bool m_bStarted = false;
        bool m_bFinished = false;
        int m_nCredit = 0; ///< tenths of seconds, roughly
    };

    const int m_nLevel, m_nLevels;
    int m_nStarted = 0;
    int m_nForcingMoves = 0; ///< at the head of the list
    int m_nGoodMoves = 0;    ///< likewise
    std::array<TJuggledMove, MAX_SHARED_MOVES> m_aMoves{};
    std::set<int> m_setDoneMoves; ///< finished, and the node doesn't know of it yet
};

} // namespace corvina

#endif
