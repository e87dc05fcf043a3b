#include "search/guides/prooftable.h"

#include "platform/machine.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace corvina
{
namespace
{

constexpr std::uint64_t MAX_BYTES = std::uint64_t{1} << 29;
constexpr std::uint64_t SHARE_OF_MEMORY = 16;

/// Short searches stay in a part of the table: new pages take longer than they do. What that part
/// holds is lost when the whole is taken into use.
constexpr std::uint64_t FIRST_BYTES = std::uint64_t{1} << 25;
constexpr std::uint64_t MANY_POSITIONS = std::uint64_t{1} << 22;

constexpr std::uint64_t ODD_A = 0x9E3779B97F4A7C15, ODD_B = 0xD6E8FEB86659FD93;

std::uint64_t Mix(std::uint64_t nHash, std::uint64_t nWord)
{
    nHash = (nHash ^ nWord) * ODD_B;
    return nHash ^ nHash >> 32;
}

/// Numbers are stored under the position together with the half-moves left.
std::uint64_t KeyWithPlies(std::uint64_t nKey, int nPlies)
{
    return Mix(nKey, ODD_A * static_cast<std::uint64_t>(nPlies + 1));
}

/// Tells an entry with bounds from one with numbers.
constexpr std::uint64_t BOUNDS = std::uint64_t{1} << 63;

std::uint64_t Pack(TProofNumbers numbers)
{
    return numbers.m_nProof | std::uint64_t{numbers.m_nDisproof} << 32;
}

void PrefetchLine(const void* p)
{
#if defined(__GNUC__)
    __builtin_prefetch(p);
#else
    (void)p;
#endif
}

/// The pawn that can be captured en passant, 0: none.
unsigned EnPassant(const TChessboard& b)
{
    const TSquare pawn = b.DoubleSteppedPawn();
    if (pawn == NO_SQUARE)
        return 0;
    const TFigure capturer = b.IsWhiteToMove() ? WHITE_PAWN : BLACK_PAWN;
    const int file = FileOf(pawn);
    const bool bCan = (file > 0 && b.m_board[pawn - 1] == capturer) ||
                      (file < 7 && b.m_board[pawn + 1] == capturer);
    return bCan ? pawn + 1u : 0;
}

} // namespace

/// The shortest mate and the longest search without one, in half-moves.
struct TProofTable::TBounds
{
    static constexpr std::uint16_t NONE = 0x7FFF;

    std::uint16_t m_nMate = NONE;
    std::uint16_t m_nNoMate = 0;
    std::uint16_t m_nIndex = NO_MOVE; ///< of the mating move

    static TBounds Unpack(std::uint64_t nData)
    {
        return {static_cast<std::uint16_t>(nData), static_cast<std::uint16_t>(nData >> 16),
                static_cast<std::uint16_t>(nData >> 32)};
    }
    std::uint64_t Pack() const
    {
        return BOUNDS | m_nMate | std::uint64_t{m_nNoMate} << 16 | std::uint64_t{m_nIndex} << 32;
    }
    int Plies() const
    {
        return std::max<int>(m_nMate == NONE ? 0 : m_nMate, m_nNoMate == EVER ? 0 : m_nNoMate);
    }
};

namespace
{

/// About the logarithm of the work that made the entry.
int WorthOf(std::uint64_t nData, int nPliesOfBounds)
{
    if (nData & BOUNDS)
        return 3 + nPliesOfBounds / 2;
    return std::bit_width((nData & 0xFFFFFFFF) + (nData >> 32));
}

} // namespace

TProofTable::TProofTable()
{
    std::uint64_t nBytes = MAX_BYTES;
    if (const std::uint64_t nMemory = GetTotalPhysicalMemory())
        nBytes = std::min(nBytes, std::bit_floor(nMemory / SHARE_OF_MEMORY));
    nBytes = std::max(nBytes, FIRST_BYTES);
    m_nClusters = static_cast<std::size_t>(nBytes / (CLUSTER * sizeof(TEntry)));
    m_nMask = static_cast<std::size_t>(FIRST_BYTES / (CLUSTER * sizeof(TEntry)) - 1);
    m_pPages = AllocateZeroPages(static_cast<std::size_t>(nBytes));
    m_pEntries = static_cast<TEntry*>(m_pPages.get());
}

void TProofTable::NotePositions(std::uint64_t nPositions)
{
    if (m_nPositions.fetch_add(nPositions, std::memory_order_relaxed) > MANY_POSITIONS)
        m_nMask.store(m_nClusters - 1, std::memory_order_relaxed);
}

std::uint64_t TProofTable::KeyOf(const TChessboard& board)
{
    std::uint64_t aWords[8];
    std::memcpy(aWords, board.m_board, sizeof(aWords));
    std::uint64_t nRights = board.IsWhiteToMove() | EnPassant(board) << 1;
    if (board.m_board[TCastling<EColour::White>::KING] == WHITE_KING)
        nRights |= static_cast<std::uint64_t>(board.GetCastlingRights(true)) << 8;
    if (board.m_board[TCastling<EColour::Black>::KING] == BLACK_KING)
        nRights |= static_cast<std::uint64_t>(board.GetCastlingRights(false)) << 10;
    std::uint64_t a = nRights * ODD_A, b = ODD_B;
    for (int i = 0; i < 4; ++i) {
        a = Mix(a, aWords[i]);
        b = Mix(b, aWords[i + 4]);
    }
    return Mix(a, b * ODD_A);
}

void TProofTable::Prefetch(std::uint64_t nKey, int nPlies) const
{
    PrefetchLine(ClusterOf(nKey));
    PrefetchLine(ClusterOf(KeyWithPlies(nKey, nPlies)));
}

bool TProofTable::Get(const TEntry& entry, std::uint64_t nKey, std::uint64_t* pnData)
{
    *pnData = entry.m_nData.load(std::memory_order_relaxed);
    return (entry.m_nCheck.load(std::memory_order_relaxed) ^ *pnData) == nKey;
}

void TProofTable::Put(TEntry& entry, std::uint64_t nKey, std::uint64_t nData)
{
    entry.m_nData.store(nData, std::memory_order_relaxed);
    entry.m_nCheck.store(nKey ^ nData, std::memory_order_relaxed);
}

bool TProofTable::GetBounds(std::uint64_t nKey, TBounds* pBounds) const
{
    const TEntry* pCluster = ClusterOf(nKey);
    for (std::size_t i = 0; i < CLUSTER; ++i) {
        std::uint64_t nData;
        if (Get(pCluster[i], nKey, &nData) && (nData & BOUNDS)) {
            *pBounds = TBounds::Unpack(nData);
            return true;
        }
    }
    return false;
}

void TProofTable::PutInCluster(std::uint64_t nKey, std::uint64_t nData)
{
    TEntry* pCluster = ClusterOf(nKey);
    TEntry* pPlace = pCluster;
    int nLeastWorth = std::numeric_limits<int>::max();
    for (std::size_t i = 0; i < CLUSTER; ++i) {
        std::uint64_t nOld;
        if (Get(pCluster[i], nKey, &nOld)) {
            pPlace = &pCluster[i];
            break;
        }
        const int nWorth = WorthOf(nOld, TBounds::Unpack(nOld).Plies());
        if (nWorth < nLeastWorth) {
            nLeastWorth = nWorth;
            pPlace = &pCluster[i];
        }
    }
    Put(*pPlace, nKey, nData);
}

bool TProofTable::Find(std::uint64_t nKey, int nPlies, TProofNumbers* pNumbers) const
{
    TBounds bounds;
    if (GetBounds(nKey, &bounds)) {
        if (bounds.m_nMate <= nPlies) {
            *pNumbers = TProofNumbers::Mate();
            return true;
        }
        if (bounds.m_nNoMate >= nPlies) {
            *pNumbers = TProofNumbers::NoMate();
            return true;
        }
    }
    nKey = KeyWithPlies(nKey, nPlies);
    const TEntry* pCluster = ClusterOf(nKey);
    for (std::size_t i = 0; i < CLUSTER; ++i) {
        std::uint64_t nData;
        if (Get(pCluster[i], nKey, &nData) && !(nData & BOUNDS)) {
            *pNumbers = {static_cast<std::uint32_t>(nData),
                         static_cast<std::uint32_t>(nData >> 32)};
            return true;
        }
    }
    return false;
}

void TProofTable::Store(std::uint64_t nKey, int nPlies, TProofNumbers numbers)
{
    PutInCluster(KeyWithPlies(nKey, nPlies), Pack(numbers));
}

void TProofTable::StoreMate(std::uint64_t nKey, int nPlies, int nIndex)
{
    TBounds bounds;
    GetBounds(nKey, &bounds);
    if (nPlies >= bounds.m_nMate)
        return;
    bounds.m_nMate = static_cast<std::uint16_t>(nPlies);
    bounds.m_nIndex = static_cast<std::uint16_t>(nIndex);
    PutInCluster(nKey, bounds.Pack());
}

void TProofTable::StoreNoMate(std::uint64_t nKey, int nPlies)
{
    TBounds bounds;
    GetBounds(nKey, &bounds);
    bounds.m_nNoMate = std::max(bounds.m_nNoMate, static_cast<std::uint16_t>(nPlies));
    PutInCluster(nKey, bounds.Pack());
}

int TProofTable::FindMatingMove(std::uint64_t nKey, int nPlies) const
{
    TBounds bounds;
    return GetBounds(nKey, &bounds) && bounds.m_nMate <= nPlies ? bounds.m_nIndex : -1;
}

} // namespace corvina
