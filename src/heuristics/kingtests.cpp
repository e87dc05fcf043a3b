#include "heuristics/kingtests.h"

#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/lastmoves.h"
#include "search/nodes.h"
#include "search/shortmate.h"
#include "search/solverequest.h"

#include <algorithm>
#include <array>

namespace corvina
{
namespace
{

/// Half-moves of the longest bounded mate search.
constexpr int MAX_MATE_TEST = 9;

/// Keeps what the nodes above the hook go on reading while a mate search of its own runs: the state
/// of the short mate search, the reason, and the repetition depths that the search writes. Those
/// are the elements up to its depth plus one; the Black node that asked stands at least one higher
/// and reads the element of its own depth only after the search of the same reply has written it.
class TMateTestGuard
{
public:
    explicit TMateTestGuard(TThreadContext& context)
        : m_context(context), m_shAdditionalMoves(context.m_shAdditionalMoves),
          m_bAdditionalMovesUsed(context.m_bAdditionalMovesUsed),
          m_bSkipEqualPromotions(context.m_bSkipEqualPromotions),
          m_bSpecialSolverTried(context.m_bSpecialSolverTried),
          m_nQuickerMateRootDepth(context.m_nQuickerMateRootDepth),
          m_pQuickerMateRoot(context.m_pQuickerMateRoot), m_nDoubtReason(context.m_nDoubtReason),
          m_lastMate(context.m_lastMate),
          m_nRepeat(std::min(context.m_anRepeatDepth.size(), m_anRepeat.size()))
    {
        std::copy_n(context.m_anRepeatDepth.begin(), m_nRepeat, m_anRepeat.begin());
        // A proof holds within the plies asked for, so nothing may come on top.
        context.m_shAdditionalMoves = 0;
    }
    ~TMateTestGuard()
    {
        m_context.m_shAdditionalMoves = m_shAdditionalMoves;
        m_context.m_bAdditionalMovesUsed = m_bAdditionalMovesUsed;
        m_context.m_bSkipEqualPromotions = m_bSkipEqualPromotions;
        m_context.m_bSpecialSolverTried = m_bSpecialSolverTried;
        m_context.m_nQuickerMateRootDepth = m_nQuickerMateRootDepth;
        m_context.m_pQuickerMateRoot = m_pQuickerMateRoot;
        m_context.m_nDoubtReason = m_nDoubtReason;
        m_context.m_lastMate = m_lastMate;
        std::copy_n(m_anRepeat.begin(), m_nRepeat, m_context.m_anRepeatDepth.begin());
    }
    TMateTestGuard(const TMateTestGuard&) = delete;
    TMateTestGuard& operator=(const TMateTestGuard&) = delete;

private:
    TThreadContext& m_context;
    const std::uint16_t m_shAdditionalMoves;
    const bool m_bAdditionalMovesUsed, m_bSkipEqualPromotions, m_bSpecialSolverTried;
    const std::uint16_t m_nQuickerMateRootDepth;
    TChessboard* const m_pQuickerMateRoot;
    const std::uint32_t m_nDoubtReason;
    const TKiller m_lastMate;
    std::array<std::uint16_t, MAX_MATE_TEST + 2> m_anRepeat;
    const std::size_t m_nRepeat;
};

/// A mate in exactly the iteration's half-moves, on a record whose depth that is.
bool SearchMate(TChessboard& board)
{
    switch (board.m_nMoves) {
    case 1:
        return IsMateInOne(board);
    case 3:
        return IsMateInTwo(board);
    default:
        return SearchWhite<NODE_MAIN>(board) == RESULT_MATE;
    }
}

} // namespace

template <EColour C>
bool IsLastMoveEnPrise(const TChessboard& board)
{
    const TMove& move = board.m_LastMove;
    if (!board.m_pParent || move.IsNull() || CapturedFigure(board) != NO_FIGURE ||
        (board.m_board[move.m_to] & KIND_MASK) == KIND_KING)
        return false;
    return CanCapture<TSide<C>::OTHER>(board, move.m_to) && !IsAttackedBy<C>(board, move.m_to);
}

template bool IsLastMoveEnPrise<EColour::White>(const TChessboard&);
template bool IsLastMoveEnPrise<EColour::Black>(const TChessboard&);

bool IsLoose(const TChessboard& board, int square)
{
    return IsAttackedBy<EColour::White>(board, square) &&
           !IsAttackedBy<EColour::Black>(board, square);
}

bool IsMoveReversal(const TChessboard& board)
{
    const TChessboard* pBefore = Ancestor(board, 2);
    return pBefore && pBefore->m_pParent && !board.m_LastMove.IsNull() &&
           board.m_LastMove.m_from == pBefore->m_LastMove.m_to &&
           board.m_LastMove.m_to == pBefore->m_LastMove.m_from;
}

bool MovedToOrFromRootKing(const TChessboard& board)
{
    const TSquare king = board.GetRootBoard().BlackKing();
    return board.m_LastMove.m_from == king || board.m_LastMove.m_to == king;
}

bool IsKingOnRootSquare(const TChessboard& board)
{
    return board.BlackKing() == board.GetRootBoard().BlackKing();
}

bool BlackKeepsFigure(const TChessboard& board)
{
    const int nFigures = BlackFigures(board);
    return nFigures >= 2 ||
           (nFigures == 1 && (!board.m_pParent || !board.m_LastMove.PromotionKind()));
}

bool IsGuardedByBlackPawnOrKnight(const TChessboard& board, int square)
{
    return (TSets::Equal(board.m_board, BLACK_PAWN) & PawnAttacks(EColour::White, square)) ||
           (TSets::Equal(board.m_board, BLACK_KNIGHT) & KnightJumps(square));
}

EMateTest IsMateWithin(TChessboard& board, int nPlies)
{
    if (IsMateInOne(board))
        return EMateTest::Mate;
    TThreadContext& context = ContextOf(board);
    const int nLimit = std::min<int>({nPlies, board.m_nMoves, MAX_MATE_TEST});
    const TMateTestGuard guard(context);
    TChessboard copy = board;
    copy.m_nHeuristics = copy.m_nHeuristicsParams = 0;
    for (int k = 3; k <= nLimit; k += 2) {
        copy.m_nMoves = static_cast<std::uint16_t>(k);
        if (SearchMate(copy))
            return EMateTest::Mate;
        if (board.m_pRequest->IsStopped(context.m_nThreadId) || context.m_nSuspended > 1)
            return EMateTest::Undecided;
    }
    return EMateTest::No;
}

EMateTest QuickMateAfterEdge(TChessboard& board)
{
    return IsMateWithin(board, MAX_MATE_TEST);
}

} // namespace corvina
