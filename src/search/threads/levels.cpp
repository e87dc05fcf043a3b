#include "search/threads/levels.h"

#include "heuristics/heuristicbits.h"
#include "platform/machine.h"
#include "search/solverequest.h"

#include <algorithm>

namespace corvina
{

std::atomic<int> g_nRunningThreads{0};
std::atomic<int> g_nActiveRootThreads{0};
std::atomic<int> g_nExtraThreads{0};
std::atomic<int> g_nReservations{0};

namespace
{

constexpr int MAX_GROUP = 64;
constexpr int BRUTE_FORCE_GROUP = 2;

/// Is the node far enough from the leaves, and free to share its moves?
bool MayShare(const TChessboard& board, int nMoves)
{
    const TSolveRequest& request = *board.m_pRequest;
    const TThreadContext& context = ContextOf(board);
    const TSharingSettings& settings = request.m_sharing;
    const bool bMany = board.m_nPositionFlags & TChessboard::POSITION_MANYFIGURES;
    const int nMinDepth = bMany ? settings.m_nMinLevelDepthOfMany : settings.m_nMinLevelDepth;
    return context.m_nSpawnWidth > 1 && board.m_nMoves >= nMinDepth &&
           board.m_nMoves != board.m_nInitialMoves && nMoves >= 2 && nMoves <= MAX_SHARED_MOVES &&
           IsPlainCourse(context) && context.m_nBlockPawnsLevel < 0 &&
           !(board.m_nHeuristics & SH_ZUGZWANGTRIANGLES) && !request.m_bRegisterConfirm &&
           !request.IsStopped(context.m_nThreadId) && IsLineWhole(board);
}

/// White has so much that the moves of a node take long.
bool IsHeavy(const TChessboard& board)
{
    constexpr int HEAVY = 3;
    return 2 * (board.m_nWhiteQueens + board.m_nWhiteRooks) + board.m_nWhiteBishops +
               board.m_nWhiteKnights >=
           HEAVY;
}

/// While the last first move is at work the processors of the others are free.
bool IsExtraLevel(const TChessboard& board)
{
    const TSharingSettings& settings = board.m_pRequest->m_sharing;
    const int nLevels = board.m_pRequest->m_nMultithreadingLevels;
    const int nPlayed = FullMovesPlayed(board);
    return nPlayed == nLevels ||
           (nPlayed > nLevels &&
            (board.m_nMoves >= settings.m_nMinExtraDepth ||
             (board.m_nMoves >= settings.m_nMinExtraDepthOfHeavy && IsHeavy(board))));
}

int ProcessorsTaken()
{
    return g_nReservations + 2 * g_nActiveRootThreads + g_nExtraThreads;
}

/// Two threads that see the last processor free at once must not both take it.
bool ReserveExtraGroup(const TSharingSettings& settings)
{
    const int nProcessors =
        settings.m_nProcessors ? settings.m_nProcessors : static_cast<int>(GetLogicalProcessors());
    if (ProcessorsTaken() >= nProcessors)
        return false;
    const TThreadCounted reservation(g_nReservations);
    if (ProcessorsTaken() > nProcessors)
        return false;
    ++g_nExtraThreads;
    return true;
}

} // namespace

std::size_t ThreadStack(int nInitialMoves)
{
    constexpr std::size_t MIN_STACK = std::size_t{1} << 20;
    constexpr std::size_t STACK_PER_PLY = 12288; // a node holds its move list there
    return std::max(MIN_STACK, STACK_PER_PLY * static_cast<std::size_t>(nInitialMoves));
}

std::uint16_t WatchDepth(const TChessboard& root)
{
    const TSolveRequest& request = *root.m_pRequest;
    const TSharingSettings& settings = request.m_sharing;
    int nDepth = TThreadContext::NEVER;
    const bool bLevels = request.m_nMultithreadingLevels > 1 || request.m_bBruteForce;
    if (bLevels && request.m_nEffectiveThreads > 1)
        nDepth = std::min({nDepth, settings.m_nMinLevelDepth, settings.m_nMinLevelDepthOfMany});
    if (request.m_nSchedulerLevels != 0)
        nDepth =
            std::min({nDepth, settings.m_nMinSchedulerDepth, settings.m_nMinSchedulerDepthOfMany});
    return static_cast<std::uint16_t>(nDepth);
}

bool IsPlainCourse(const TThreadContext& context)
{
    return context.m_nQuickerMateNesting == 0 && context.m_nRefutationNesting == 0 &&
           context.m_nSortNesting == 0 && context.m_nFirstSortNesting == 0 &&
           context.m_nHookNesting == 0 && !context.m_bInPinnedRook;
}

TSpawnLeave::TSpawnLeave(const TChessboard& board, int nMoves)
    : m_context(ContextOf(board)), m_eKind(FindKind(board, nMoves))
{
}

TSpawnLeave::EKind TSpawnLeave::FindKind(const TChessboard& board, int nMoves)
{
    TSolveRequest& request = *board.m_pRequest;
    if (!MayShare(board, nMoves))
        return EKind::None;
    if (FullMovesPlayed(board) < request.m_nMultithreadingLevels)
        return EKind::Level;
    if (!request.m_bBruteForce || m_context.m_bSchedulerThread)
        return EKind::None;
    if (m_context.m_bLastOfGroup && board.m_nMoves >= request.m_sharing.m_nMinRespawnDepth &&
        !m_context.m_bRespawnLock)
    {
        m_context.m_bRespawnLock = true;
        ++request.m_sharingCounts.m_nRespawns;
        return EKind::Respawn;
    }
    if (!request.m_bLastMoveStarted || !IsExtraLevel(board) ||
        !ReserveExtraGroup(request.m_sharing))
        return EKind::None;
    ++request.m_sharingCounts.m_nExtraGroups;
    return EKind::Extra;
}

TSpawnLeave::~TSpawnLeave()
{
    if (m_eKind == EKind::Respawn)
        m_context.m_bRespawnLock = false;
    if (m_eKind == EKind::Extra)
        --g_nExtraThreads;
}

int GroupSize(const TChessboard& board, int nMoves)
{
    const TSolveRequest& request = *board.m_pRequest;
    if (request.m_bBruteForce)
        return BRUTE_FORCE_GROUP;
    int nSize = std::min<int>(nMoves, ContextOf(board).m_nSpawnWidth);
    if (request.m_nThreads > 1 && request.m_nEffectiveThreads > 1)
        nSize = std::min<int>(nSize, request.m_nEffectiveThreads);
    return std::min(nSize, MAX_GROUP);
}

} // namespace corvina
