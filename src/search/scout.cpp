#include "search/scout.h"

#include <new>

namespace corvina
{
namespace
{

/// Positions of the passes between two looks at the clock.
constexpr std::uint64_t POSITIONS_BETWEEN = 2000;

/// The scout sets out when the passes have had so long; the easy tasks are solved by then.
constexpr auto HEAD_START = std::chrono::milliseconds(20);

/// Time of the scout for each unit of the passes.
constexpr int SHARE = 3;

/// Positions of a slice.
constexpr std::uint64_t SLICE = 100'000;

constexpr std::uint64_t NEVER = std::numeric_limits<std::uint64_t>::max();

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
    m_context.m_nScoutDue = POSITIONS_BETWEEN;
}

TScout::~TScout()
{
    m_context.m_pScout = nullptr;
    m_context.m_nScoutDue = NEVER;
}

void TScout::Work()
{
    m_context.m_nScoutDue = m_context.m_nPositions + POSITIONS_BETWEEN;
    const TClock::time_point tStart = TClock::now();
    m_passTime += tStart - m_tReturned;
    m_tReturned = tStart;
    if (m_passTime < HEAD_START || m_scoutTime > SHARE * m_passTime)
        return;
    SearchSlice();
    m_tReturned = TClock::now();
    m_scoutTime += m_tReturned - tStart;
}

void TScout::SearchSlice()
{
    if (!m_search) {
        if (TProofTable* pTable = m_scouting.Table())
            m_search.emplace(m_root, *pTable, m_context.m_nThreadId);
    }
    if (!m_search || m_scouting.m_bEnded) {
        m_context.m_nScoutDue = NEVER;
        return;
    }
    const TProofSearch::EAnswer answer = m_search->Search(SLICE);
    if (answer == TProofSearch::EAnswer::Open || m_scouting.m_bEnded.exchange(true))
        return;
    if (answer != TProofSearch::EAnswer::Mate)
        return;
    if (const auto key = m_search->Confirm())
        OnProved(*key);
}

} // namespace corvina
