#include "search/threads/forcethreads.h"

#include "chess/figure.h"
#include "chess/sides.h"
#include "heuristics/forcingtests.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/keyfigure.h"
#include "heuristics/kingsurroundings.h"
#include "platform/machine.h"
#include "search/rootsetup.h"
#include "search/solverequest.h"
#include "search/threads/levels.h"
#include "search/whitesort.h"

#include <algorithm>

namespace corvina
{
namespace
{

constexpr int MIN_FORCED_PLIES = 14;
constexpr int MAX_FORCED = MAX_ROOT_THREADS;

/// First moves with a property of the position behind them.
template <class THas>
int CountMoves(TChessboard& root, const std::vector<TMove>& vecMoves, THas has)
{
    TThreadContext context(root.m_nInitialMoves);
    PutOnThread(root, context);
    int nMoves = 0;
    for (TMove move : vecMoves) {
        TChessboard& child = context.MakeChild(root);
        nMoves += child.MakeWhiteMove(&move) && has(child);
    }
    root.m_pThread = nullptr;
    return nMoves;
}

/// First moves that are known to mate.
int CountProvedMoves(TChessboard& root, const std::vector<TMove>& vecMoves)
{
    return CountMoves(root, vecMoves, [](TChessboard& child) {
        return ProbeBlackReplies(child, PROBE_ALL) == REPLIES_MATED;
    });
}

/// First moves that are worth a thread.
int CountPromisingMoves(TChessboard& root, const std::vector<TMove>& vecMoves)
{
    const int nProved = CountProvedMoves(root, vecMoves);
    const int nForcing = CountMoves(root, vecMoves, [](TChessboard& child) {
        return child.m_blackChecker != NO_CHECK || ThreatensMate(child, 1);
    });
    return nForcing > nProved ? nProved + (nForcing - nProved) * 2 / 3 : nProved;
}

int DecisionOfOneThread(TChessboard& root, const std::vector<TMove>& vecMoves)
{
    constexpr int MIN_PLIES = 13, PROVED = 3, FORCED = 4;
    const bool bMany = root.m_nPositionFlags & TChessboard::POSITION_MANYFIGURES;
    return bMany && root.m_nMoves >= MIN_PLIES && CountProvedMoves(root, vecMoves) > PROVED
               ? -FORCED
               : 0;
}

int CountMovablePawns(const TChessboard& root, const std::vector<TMove>& vecMoves)
{
    TSquareSet pawns = 0;
    for (const TMove& move : vecMoves) {
        if (root.m_board[move.m_from] == WHITE_PAWN)
            pawns |= Bit(move.m_from);
    }
    return std::popcount(pawns);
}

/// A Black rook or queen is pinned for good, and its king can't move: all depends on Black's other
/// men.
bool IsHeavyFigurePinned(const TChessboard& root)
{
    const TKeyFigure key = AnalyzeKeyWhiteFigure(root);
    return key.IsFound() && key.m_pinned != NO_SQUARE &&
           (root.m_board[key.m_pinned] == BLACK_ROOK || root.m_board[key.m_pinned] == BLACK_QUEEN);
}

} // namespace

int ForceThreadsDecision(TChessboard& root, const std::vector<TMove>& vecMoves)
{
    constexpr int MAX_BYTE = 255;
    const TSolveRequest& request = *root.m_pRequest;
    const int nThreads = request.m_nEffectiveThreads;
    const int nCores = static_cast<int>(GetProcessorCores());
    const int nMoves = static_cast<int>(vecMoves.size());
    if (nThreads < 2)
        return DecisionOfOneThread(root, vecMoves);
    if (root.m_nMoves < MIN_FORCED_PLIES)
        return 0;
    if (nMoves > nThreads && nMoves <= 2 * nThreads && 2 * nCores > nThreads) {
        const bool bFigures = WhiteFigures(root) + BlackFigures(root) != 0;
        const bool bMore = bFigures || CountMovablePawns(root, vecMoves) >= 2;
        return -std::min({bMore ? 2 * nThreads : 3 * nThreads / 2, nMoves, 2 * nCores, MAX_FORCED});
    }
    const int nPromising = CountPromisingMoves(root, vecMoves);
    if (nPromising <= nThreads)
        return nPromising == 0 && nMoves > 8 * nThreads ? -(nThreads + nThreads / 2) : 0;
    const int nFactor = IsHeavyFigurePinned(root) ? 3 : 2;
    return -std::min({nPromising, std::min(nFactor * nThreads, MAX_BYTE), MAX_FORCED});
}

} // namespace corvina
