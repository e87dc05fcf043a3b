#include "search/scout.h"

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

/// Tasks of fewer moves have no tours to speak of.
constexpr int MIN_TOUR_PLIES = 2 * 16 - 1;

/// Time of the search for tours for each unit of the scout's other work.
constexpr int TOUR_SHARE = 1;

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
    if (IsTourDue()) {
        const TClock::time_point tStart = TClock::now();
        TryTours();
        m_tourTime += TClock::now() - tStart;
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

bool TScout::IsTourDue() const
{
    if (m_tourTime > TOUR_SHARE * (m_scoutTime - m_tourTime))
        return false;
    return m_tours || (m_root.m_nMoves >= MIN_TOUR_PLIES && !m_scouting.m_bToursTaken &&
                       TTourSearch::CanSearch(m_root));
}

/// Without memory for the tours the other search goes on.
void TScout::TryTours()
{
    try {
        SearchTours();
    }
    catch (const std::bad_alloc&) {
        m_tours.reset();
    }
}

void TScout::SearchTours()
{
    if (!m_tours) {
        if (m_scouting.m_bToursTaken.exchange(true))
            return;
        m_tours.emplace(m_root, m_context.m_nThreadId);
    }
    const TTourSearch::EAnswer answer = m_tours->Search(SLICE);
    if (answer == TTourSearch::EAnswer::Mate)
        ClaimProof([this] { return m_tours->Confirm(); });
    m_nTourPositions = m_tours->Positions();
    if (answer != TTourSearch::EAnswer::Open)
        m_tours.reset();
}

} // namespace corvina
