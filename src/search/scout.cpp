#include "search/scout.h"

#include "search/graphsearch.h"
#include "search/toursearch.h"

#include <algorithm>
#include <new>
#include <utility>

namespace corvina
{
namespace
{

/// The scout sets out when the passes have had so long; the easy tasks are solved by then.
constexpr auto HEAD_START = std::chrono::milliseconds(20);

/// Time of the scout for each unit of the passes.
constexpr int SHARE = 3;

/// Tasks of fewer moves gain nothing by a graph of positions.
constexpr int MIN_SIDE_SEARCH_PLIES = 2 * 16 - 1;

/// Time of the side searches for each unit of the scout's other work. The longest mates are tours,
/// which nothing else finds.
constexpr int SIDE_SHARE = 1;
constexpr int SIDE_SHARE_OF_TOURS = 4;
constexpr int MIN_TOUR_PLIES = 2 * 36 - 1;

constexpr int SIDE_SEARCHES = 2;

/// Positions of a slice.
constexpr std::uint64_t SLICE = 100'000;

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
      m_tReturned(TClock::now())
{
    m_context.m_pScout = this;
}

TScout::~TScout()
{
    m_context.m_pScout = nullptr;
}

void TScout::Work()
{
    TClock::time_point tNow = TClock::now();
    m_passTime += tNow - m_tReturned;
    while (m_passTime > HEAD_START && m_scoutTime < SHARE * m_passTime && SearchSlice()) {
        m_scoutTime += TClock::now() - tNow;
        tNow = TClock::now();
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
    if (!m_search) {
        if (TProofTable* pTable = m_scouting.Table())
            m_search.emplace(m_root, *pTable, m_context.m_nThreadId);
    }
    if (!m_search || m_scouting.m_bEnded || m_root.m_pRequest->IsStopped(m_context.m_nThreadId)) {
        m_context.m_pScout = nullptr;
        return false;
    }
    if (IsSideSearchDue()) {
        TrySideSearch();
        return !m_scouting.m_bEnded;
    }
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

bool TScout::IsSideSearchDue()
{
    const int nShare = m_root.m_nMoves < MIN_TOUR_PLIES ? SIDE_SHARE : SIDE_SHARE_OF_TOURS;
    if (m_sideTime > nShare * (m_scoutTime - m_sideTime) ||
        m_root.m_nMoves < MIN_SIDE_SEARCH_PLIES || !TSideSearch::CanSearch(m_root))
        return false;
    return !m_vecSides.empty() || m_scouting.m_nSideSearchesTaken < SIDE_SEARCHES;
}

/// Each scout has one, a scout on its own has them all.
void TScout::TakeSideSearches()
{
    const std::size_t nWanted = m_scouting.m_nScouts > 1 ? 1 : SIDE_SEARCHES;
    while (m_vecSides.size() < nWanted) {
        const int nKind = m_scouting.m_nSideSearchesTaken++;
        if (nKind == 0)
            m_vecSides.push_back({std::make_unique<TGraphSearch>(m_root, m_context.m_nThreadId)});
        else if (nKind == 1)
            m_vecSides.push_back({std::make_unique<TTourSearch>(m_root, m_context.m_nThreadId)});
        else
            break;
    }
}

/// Without memory for them the other search goes on.
void TScout::TrySideSearch()
{
    const TClock::time_point tStart = TClock::now();
    try {
        TakeSideSearches();
        if (!m_vecSides.empty())
            WorkOnSideSearch();
    }
    catch (const std::bad_alloc&) {
        m_vecSides.clear();
    }
    m_sideTime += TClock::now() - tStart;
}

/// The one that has had the least time.
void TScout::WorkOnSideSearch()
{
    const auto side =
        std::min_element(m_vecSides.begin(), m_vecSides.end(),
                         [](const TSide& a, const TSide& b) { return a.m_time < b.m_time; });
    const TClock::time_point tStart = TClock::now();
    TSideSearch& search = *side->m_pSearch;
    const std::uint64_t nPositions = search.Positions();
    const TSideSearch::EAnswer answer = search.Search(SLICE);
    if (answer == TSideSearch::EAnswer::Mate)
        ClaimProof([&search] { return search.Confirm(); });
    m_nSidePositions += search.Positions() - nPositions;
    side->m_time += TClock::now() - tStart;
    if (answer != TSideSearch::EAnswer::Open)
        m_vecSides.erase(side);
}

} // namespace corvina
