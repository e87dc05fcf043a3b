#include "search/threadcontext.h"

namespace corvina
{
namespace
{

constexpr std::uint64_t TThreadContext::*COUNTS[] = {
    &TThreadContext::m_nPositions,          &TThreadContext::m_nPublishedPositions,
    &TThreadContext::m_nPinnedRookSearches, &TThreadContext::m_nPinnedRookMates,
    &TThreadContext::m_nUnblockTries,       &TThreadContext::m_nBlockedPawnMoves};

} // namespace

TThreadContext::TThreadContext(const TThreadContext& owner, const TChessboard& board,
                               TChessboard** ppCopy)
    : TThreadContext(owner)
{
    m_pOwner = &owner;
    m_pScout = nullptr;
    m_bRespawnLock = false;
    for (std::uint64_t TThreadContext::*pCount : COUNTS)
        this->*pCount = 0;
    m_anCuts.fill(0);
    m_anWhiteCuts.fill(0);
    TChessboard* pChild = nullptr;
    for (const TChessboard* p = &board; p; p = p->m_pParent) {
        TChessboard& copy = Slot(p->m_nMoves + 1);
        copy = *p;
        copy.m_pThread = this;
        copy.m_pParent = nullptr;
        (pChild ? pChild->m_pParent : *ppCopy) = &copy;
        pChild = m_pRootBoard = &copy;
    }
}

void TThreadContext::TakeCounts(const TThreadContext& other)
{
    for (std::uint64_t TThreadContext::*pCount : COUNTS)
        this->*pCount += other.*pCount;
    for (std::size_t i = 0; i < m_anCuts.size(); ++i) {
        m_anCuts[i] += other.m_anCuts[i];
        m_anWhiteCuts[i] += other.m_anWhiteCuts[i];
    }
}

bool IsLineWhole(const TChessboard& board)
{
    const TChessboard* p = &board;
    for (; p->m_pParent; p = p->m_pParent) {
        if (p->m_pParent->m_nMoves != p->m_nMoves + 1)
            return false;
    }
    return p->m_nMoves == p->m_nInitialMoves && p == ContextOf(board).m_pRootBoard;
}

} // namespace corvina
