#include "search/guides/scout.h"

#include "search/guides/graphsearch.h"
#include "search/guides/toursearch.h"

#include <algorithm>
#include <new>
#include <thread>
#include <utility>

namespace corvina
{
namespace
{

/// The scout sets out when the passes have had so long; the easy tasks are solved by then.
constexpr auto HEAD_START = std::chrono::milliseconds(20);

/// Time of the scout for each unit of the passes. It gets more in tasks so long that the passes
/// hardly ever come to their end, and for a while in every run that they haven't ended soon: of the
/// mates that take a minute it finds most. A run that goes on after that has no quick way, and the
/// passes catch up.
constexpr int SHARE = 3;
constexpr int LARGE_SHARE = 7;
constexpr int LONG_PLIES = 2 * 36 - 1;
constexpr auto LARGE_SHARE_FROM = std::chrono::seconds(3),
               LARGE_SHARE_TO = std::chrono::seconds(30);

/// Tasks of fewer moves gain nothing by a graph of positions.
constexpr int MIN_SIDE_SEARCH_PLIES = 2 * 16 - 1;

/// Quarters of the time of the scout's other work that a side search gets; with one scout for all
/// of them half of that. The longest mates are tours, most of which the graph finds and nothing
/// else.
constexpr int SIDE_SHARE = 4;
constexpr int GRAPH_SHARE_OF_LONG = 16;
constexpr int TOURS_SHARE_OF_LONG = 2;

constexpr int SIDE_SEARCHES = 2;

/// Positions of a slice.
constexpr std::uint64_t SLICE = 100'000;

constexpr auto REST = std::chrono::milliseconds(5);

} // namespace

TProofTable* TScouting::Table()
{
    const std::lock_guard guard(m_csTable);
    if (!m_pTable && !m_bEnded) {
        try {
            m_pTable = std::make_unique<TProofTable>();
        }
        catch (const std::bad_alloc&) {
            m_bEnded = true;
        }
    }
    return m_pTable.get();
}

TScout::TScout(const TChessboard& root, TScouting& scouting, TThreadContext& context,
               std::function<void(const TMove& key)> onProved)
    : m_root(root), m_scouting(scouting), m_context(context), OnProved(std::move(onProved)),
      m_tReturned(m_root.m_pRequest->Now())
{
    m_context.m_pScout = this;
}

TScout::~TScout()
{
    m_context.m_pScout = nullptr;
}

void TScout::Work()
{
    TClock::time_point tNow = m_root.m_pRequest->Now();
    m_passTime += tNow - m_tReturned;
    const bool bLate = m_passTime > LARGE_SHARE_FROM && m_passTime < LARGE_SHARE_TO;
    // Threads that rest meanwhile are no reason for the passes to have more.
    const int nShare = (bLate || m_root.m_nMoves >= LONG_PLIES ? LARGE_SHARE : SHARE) *
                       std::max<int>(m_root.m_pRequest->m_nEffectiveThreads, m_scouting.m_nScouts) /
                       m_scouting.m_nScouts;
    while (m_passTime > HEAD_START && m_scoutTime < nShare * m_passTime && SearchSlice()) {
        m_scoutTime += m_root.m_pRequest->Now() - tNow;
        tNow = m_root.m_pRequest->Now();
    }
    m_tReturned = tNow;
}

bool TScout::SearchSlice()
{
    try {
        return TrySlice();
    }
    catch (const std::bad_alloc&) {
        // The passes need less memory, and go on alone.
        m_scouting.m_bEnded = true;
        return true;
    }
}

bool TScout::TrySlice()
{
    const bool bRests = m_context.m_nThreadId >= m_scouting.m_nScouts;
    if (!m_search && !bRests) {
        if (TProofTable* pTable = m_scouting.Table())
            m_search.emplace(m_root, *pTable, m_context.m_nThreadId);
    }
    if ((!m_search && !bRests) || m_scouting.m_bEnded ||
        m_root.m_pRequest->IsStopped(m_context.m_nThreadId))
    {
        m_context.m_pScout = nullptr;
        return false;
    }
    if (bRests) {
        std::this_thread::sleep_for(REST);
        return true;
    }
    if (TrySideSearch())
        return !m_scouting.m_bEnded;
    const TProofSearch::EAnswer answer = m_search->Search(SLICE);
    if (answer == TProofSearch::EAnswer::Open)
        return true;
    if (answer == TProofSearch::EAnswer::Mate)
        ClaimProof([this] { return m_search->Confirm(); });
    else
        m_scouting.m_bEnded = true;
    return false;
}

/// The others leave off; the first claim is the one that counts.
void TScout::ClaimProof(const std::function<std::optional<TMove>()>& confirm)
{
    if (m_scouting.m_bEnded.exchange(true))
        return;
    if (const auto key = confirm())
        OnProved(*key);
}

/// Each scout has one, a scout on its own has them all.
void TScout::TakeSideSearches()
{
    const bool bLong = m_root.m_nMoves >= LONG_PLIES, bAll = m_scouting.m_nScouts == 1;
    const auto take = [&](std::unique_ptr<TSideSearch> pSearch, int nShareOfLong) {
        const int nShare = bLong ? nShareOfLong : SIDE_SHARE;
        m_vecSides.push_back({std::move(pSearch), bAll ? nShare / 2 : nShare});
    };
    while (m_vecSides.size() < (bAll ? SIDE_SEARCHES : 1)) {
        const int nKind = m_scouting.m_nSideSearchesTaken++;
        if (nKind >= SIDE_SEARCHES)
            break;
        if (nKind == 0)
            take(std::make_unique<TGraphSearch>(m_root, m_context.m_nThreadId),
                 GRAPH_SHARE_OF_LONG);
        else
            take(std::make_unique<TTourSearch>(m_root, m_context.m_nThreadId), TOURS_SHARE_OF_LONG);
    }
}

/// The side search that has had the least of its share, unless all have had theirs: then null.
TScout::TSide* TScout::FindDueSide()
{
    const TClock::duration proofTime = m_scoutTime - m_sideTime;
    TSide* pDue = nullptr;
    for (TSide& side : m_vecSides) {
        if (4 * side.m_time <= side.m_nShare * proofTime &&
            (!pDue || side.m_time * pDue->m_nShare < pDue->m_time * side.m_nShare))
            pDue = &side;
    }
    return pDue;
}

/// False: none is due. Without memory for them the other search goes on.
bool TScout::TrySideSearch()
{
    if (m_root.m_nMoves < MIN_SIDE_SEARCH_PLIES || !TSideSearch::CanSearch(m_root))
        return false;
    const TClock::time_point tStart = m_root.m_pRequest->Now();
    try {
        TakeSideSearches();
        TSide* pSide = FindDueSide();
        if (!pSide)
            return false;
        WorkOnSideSearch(*pSide);
    }
    catch (const std::bad_alloc&) {
        m_vecSides.clear();
    }
    m_sideTime += m_root.m_pRequest->Now() - tStart;
    return true;
}

void TScout::WorkOnSideSearch(TSide& side)
{
    const TClock::time_point tStart = m_root.m_pRequest->Now();
    TSideSearch& search = *side.m_pSearch;
    const std::uint64_t nPositions = search.Positions();
    const TSideSearch::EAnswer answer = search.Search(SLICE);
    if (answer == TSideSearch::EAnswer::Mate)
        ClaimProof([&search] { return search.Confirm(); });
    m_nSidePositions += search.Positions() - nPositions;
    side.m_time += m_root.m_pRequest->Now() - tStart;
    if (answer != TSideSearch::EAnswer::Open)
        m_vecSides.erase(m_vecSides.begin() + (&side - m_vecSides.data()));
}

} // namespace corvina
