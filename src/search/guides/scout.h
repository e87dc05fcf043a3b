#ifndef CORVINA_SEARCH_GUIDES_SCOUT_H
#define CORVINA_SEARCH_GUIDES_SCOUT_H

#include "search/guides/proofsearch.h"
#include "search/guides/sidesearch.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace corvina
{

/// What the scouts of a run share. The scouts of the first nScouts threads search; a thread beyond
/// them, which the machine may have no core for, rests for so long, and leaves them the time.
class TScouting
{
public:
    TScouting(bool bWanted, int nScouts) : m_bWanted(bWanted), m_nScouts(nScouts) {}

    bool IsWanted() const { return m_bWanted; }

private:
    friend class TScout;

    /// The table, made when the first scout sets out; null when there is no memory for it.
    TProofTable* Table();

    const bool m_bWanted;
    const int m_nScouts;
    std::mutex m_csTable; ///< guards the making of the table
    std::unique_ptr<TProofTable> m_pTable;
    std::atomic<int> m_nSideSearchesTaken{0}; ///< each is one scout's
    std::atomic<bool> m_bEnded{false};        ///< a scout has an answer: the others leave off
};

/// Search of a root thread for a first solution by other means, slice by slice within the thread's
/// passes: proof numbers and, for long tasks, graphs of positions. Long mates are found by them,
/// and what they can't find, the passes do.
class TScout
{
public:
    /// Enters itself into the context, whose thread it works for. OnProved is called, from Work,
    /// with a first move whose proof has been walked. All must outlive the scout.
    TScout(const TChessboard& root, TScouting& scouting, TThreadContext& context,
           std::function<void(const TMove& key)> onProved);
    ~TScout();
    TScout(const TScout&) = delete;
    TScout& operator=(const TScout&) = delete;

    /// Takes its share of the time that the thread's passes have used since the last call.
    void Work();

    std::uint64_t Positions() const
    {
        return (m_search ? m_search->Positions() : 0) + m_nSidePositions;
    }

private:
    using TClock = std::chrono::steady_clock;

    /// False: the scout's work is done. When memory is short, the next call says so.
    bool SearchSlice();
    bool TrySlice();
    struct TSide
    {
        std::unique_ptr<TSideSearch> m_pSearch;
        int m_nShare; ///< of time, in quarters of what the proof numbers get
        TClock::duration m_time{};
    };

    void TakeSideSearches();
    TSide* FindDueSide();
    bool TrySideSearch();
    void WorkOnSideSearch(TSide& side);
    void ClaimProof(const std::function<std::optional<TMove>()>& confirm);

    const TChessboard& m_root;
    TScouting& m_scouting;
    TThreadContext& m_context; ///< of the thread's passes
    const std::function<void(const TMove& key)> OnProved;
    std::optional<TProofSearch> m_search; ///< none before the first slice
    std::vector<TSide> m_vecSides; ///< this scout's side searches, those that aren't done with
    std::uint64_t m_nSidePositions = 0;
    TClock::time_point m_tReturned; ///< to the passes
    TClock::duration m_passTime{}, m_scoutTime{}, m_sideTime{};
};

} // namespace corvina

#endif
