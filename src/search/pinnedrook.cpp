#include "search/pinnedrook.h"

#include "chess/sides.h"
#include "heuristics/attacksets.h"
#include "heuristics/heuristicbits.h"
#include "search/hooks.h"
#include "search/movelog.h"
#include "search/nodes.h"
#include "search/rootsetup.h"
#include "search/shortmate.h"
#include "search/solverequest.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// The longest search that confirms the zugzwang, in half-moves.
constexpr int MAX_CONFIRMED = 15;

/// Keeps the context's state of the short mate search while a search of another kind runs below an
/// open call of it.
class TSolverState
{
public:
    explicit TSolverState(TThreadContext& context)
        : m_context(context), m_logOff(context), m_nNesting(context.m_nQuickerMateNesting),
          m_shAdditionalMoves(context.m_shAdditionalMoves),
          m_bAdditionalMovesUsed(context.m_bAdditionalMovesUsed),
          m_nRootDepth(context.m_nQuickerMateRootDepth), m_pRoot(context.m_pQuickerMateRoot)
    {
        context.m_bInPinnedRook = true;
        context.m_shAdditionalMoves = 0;
        if (context.m_nQuickerMateNesting)
            --context.m_nQuickerMateNesting;
    }
    ~TSolverState()
    {
        m_context.m_bInPinnedRook = false;
        m_context.m_nBlockPawnsLevel = -1;
        m_context.m_nQuickerMateNesting = m_nNesting;
        m_context.m_shAdditionalMoves = m_shAdditionalMoves;
        m_context.m_bAdditionalMovesUsed = m_bAdditionalMovesUsed;
        m_context.m_nQuickerMateRootDepth = m_nRootDepth;
        m_context.m_pQuickerMateRoot = m_pRoot;
    }
    TSolverState(const TSolverState&) = delete;
    TSolverState& operator=(const TSolverState&) = delete;

private:
    TThreadContext& m_context;
    const TLogOff m_logOff;
    const std::uint8_t m_nNesting;
    const std::uint16_t m_shAdditionalMoves;
    const bool m_bAdditionalMovesUsed;
    const std::uint16_t m_nRootDepth;
    TChessboard* const m_pRoot;
};

/// Black has just promoted to a figure that he doesn't guard: there is something else to do.
bool IsLoosePromotion(const TChessboard& board)
{
    const TMove& last = board.m_LastMove;
    return board.m_pParent && last.PromotionKind() &&
           !IsAttackedBy<EColour::Black>(board, last.m_to);
}

/// The rook can take the queen for nothing.
bool IsQueenLost(const TChessboard& board)
{
    const TSquare queen = static_cast<TSquare>(board.m_whiteQueenSquare);
    return IsAttackedBy<EColour::Black>(board, queen) &&
           !IsAttackedBy<EColour::White>(board, queen);
}

/// White passes, and Black, whose pawns are held up at his first move, has nLevel half-moves.
bool IsZugzwang(TChessboard& board, int nLevel)
{
    TThreadContext& context = ContextOf(board);
    TChessboard& child = context.MakeChild(board);
    child.MakeWhiteNullMove();
    child.m_nMoves = child.m_nInitialMoves = static_cast<std::uint16_t>(nLevel);
    child.m_nHeuristics =
        (child.m_nHeuristics & ~SH_REDUCTIONTOGLOBREGPOS) | SH_USEBLOCKBLACKPAWNSLEVEL;
    child.m_nHeuristicsParams = ComputeHeurParams(child);
    child.m_moveFilter |= TChessboard::FILTER_BLOCK_PAWNS;
    context.m_nBlockPawnsLevel = static_cast<std::int16_t>(nLevel);
    const bool bMate = SearchBlack<NODE_MAIN>(child) == RESULT_MATE;
    context.m_nBlockPawnsLevel = -1;
    return bMate;
}

/// Single steps that Black's pawns have before something of their own file stops them.
int CountPawnSteps(const TChessboard& board)
{
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    TSquareSet pawns = TSets::Equal(board.m_board, BLACK_PAWN);
    int nSteps = 0;
    while (pawns) {
        for (int square = PopLowestSquare(pawns) - 8; square >= 0 && !(occupied & Bit(square));
             square -= 8)
            ++nSteps;
    }
    return nSteps;
}

int HighestLevel(int nMoves)
{
    constexpr int LOWEST = 4, HIGHEST = 14;
    const int n = (nMoves / 3) | 1;
    return n < 3 ? LOWEST : std::min(n + 1, HIGHEST);
}

std::optional<int> Confirm(TChessboard& board, int nLevel)
{
    const std::uint16_t nDepth = board.m_nMoves;
    const int nMax = std::min<int>(
        {nDepth, nLevel + 1 + 2 * CountPawnSteps(board), std::max(MAX_CONFIRMED, nLevel + 1)});
    const TChessboard saved = board;
    std::optional<int> mate;
    for (int k = nLevel - 1; k <= nMax && !mate; k += 2) {
        board.m_nMoves = static_cast<std::uint16_t>(k);
        const bool bMate =
            k == 1 ? IsMateInOne(board) : SearchWhite<NODE_MAIN>(board, true) == RESULT_MATE;
        board = saved;
        if (bMate)
            mate = k;
        if (board.m_pRequest->IsStopped(ContextOf(board).m_nThreadId))
            break;
    }
    return mate;
}

} // namespace

bool HasPinnedRook(TChessboard& board)
{
    if (board.m_nMoves < board.m_pRequest->m_nMinPinnedRookPlies || !board.m_bWhiteSquaresValid ||
        board.m_nWhiteQueens == 0 || board.m_nPass != 1 || board.m_nBlackRooks == 0 ||
        board.m_whiteChecker != NO_CHECK || ContextOf(board).m_bInPinnedRook ||
        (board.m_moveFilter & TChessboard::FILTER_MODE_MASK))
        return false;
    const TSquareSet between =
        Between(board.m_whiteQueenSquare, board.BlackKing()) & TSets::Occupied(board.m_board);
    return between != 0 && !(between & (between - 1)) && (between & KingZone(board.BlackKing())) &&
           board.m_board[LowestSquare(between)] == BLACK_ROOK && !IsLoosePromotion(board) &&
           !IsMateInOne(board) && !IsQueenLost(board);
}

std::optional<int> SolveByPinnedRook(TChessboard& board)
{
    if (!HasPinnedRook(board))
        return std::nullopt;
    TThreadContext& context = ContextOf(board);
    const TSolverState state(context);
    ++context.m_nPinnedRookSearches;
    const int nLimit = HighestLevel(board.m_nMoves);
    for (int nLevel = 2; nLevel <= nLimit; nLevel += 2) {
        if (board.m_pRequest->IsStopped(context.m_nThreadId))
            break;
        if (!IsZugzwang(board, nLevel))
            continue;
        board.m_nPositionFlags |= TChessboard::POSITION_PINNEDROOK;
        context.m_nPinnedRookLevel = static_cast<std::uint16_t>(nLevel);
        const std::optional<int> mate = Confirm(board, nLevel);
        context.m_nPinnedRookMates += mate.has_value();
        return mate;
    }
    return std::nullopt;
}

std::optional<TMove> FindPinnedRookMate(TChessboard& root)
{
    TSolveRequest& request = *root.m_pRequest;
    TThreadContext context(root.m_nInitialMoves);
    TChessboard board = root;
    PutOnThread(board, context);
    const std::optional<int> mate = SolveByPinnedRook(board);
    std::optional<TMove> key;
    TMoveList moves;
    const int nMoves = mate ? board.GenerateWhiteMoves(moves.data()) : 0;
    for (int i = 0; i < nMoves && !key; ++i) {
        board.m_nMoves = static_cast<std::uint16_t>(*mate);
        TChessboard& child = context.MakeChild(board);
        if (child.MakeWhiteMove(&moves[i]) && SearchBlack<NODE_MAIN>(child) == RESULT_MATE)
            key = moves[i];
    }
    root.m_nPositionFlags &= static_cast<std::uint16_t>(~TChessboard::POSITION_PINNEDROOK);
    root.m_nPositionFlags |= board.m_nPositionFlags & TChessboard::POSITION_PINNEDROOK;
    request.m_nPinnedRookSearches += context.m_nPinnedRookSearches;
    request.m_nPinnedRookMates += context.m_nPinnedRookMates;
    return key;
}

} // namespace corvina
