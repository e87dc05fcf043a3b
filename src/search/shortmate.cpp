#include "search/shortmate.h"

#include "chess/sides.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/onecolour.h"
#include "search/nodes.h"
#include "search/ordering.h"
#include "search/pinnedrook.h"
#include "search/registeraccess.h"
#include "search/shortmatedepth.h"
#include "search/solverequest.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// One reply of Black with 2 half-moves left.
enum class EReply
{
    Illegal,
    Beaten, ///< White mates at once
    Refutes
};

EReply TryLastReply(TChessboard& board, TThreadContext& context, TMove& move)
{
    TChessboard& child = context.MakeChild(board);
    if (!child.MakeBlackMove(&move))
        return EReply::Illegal;
    ++context.m_nPositions;
    return IsMateInOne(child) ? EReply::Beaten : EReply::Refutes;
}

/// The replies of a node with 2 half-moves left, figure by figure: a refutation by an early one
/// saves the generation of the rest. The refutation of the node before comes first.
class TLastReplies
{
public:
    explicit TLastReplies(TChessboard& board)
        : m_board(board), m_context(ContextOf(board)), m_killer(m_context.m_aBlackKillers[2])
    {
    }

    TSearchResult Search()
    {
        if (m_board.m_blackChecker != NO_CHECK)
            return SearchList(m_board.GenerateBlackEvasions(m_moves.data())) ? RESULT_NO_MATE
                                                                             : RESULT_MATE;
        if (KillerRefutes())
            return RESULT_NO_MATE;
        TSquareSet figures = TSide<EColour::Black>::Figures(m_board.m_board);
        // The king first: a flight is the most frequent refutation.
        const TSquare king = m_board.BlackKing();
        if (SearchList(m_board.GenerateBlackFigureMoves(king, m_moves.data())))
            return RESULT_NO_MATE;
        figures &= ~Bit(king);
        while (figures) {
            if (SearchList(
                    m_board.GenerateBlackFigureMoves(PopLowestSquare(figures), m_moves.data())))
                return RESULT_NO_MATE;
        }
        if (m_board.m_moveFilter & TChessboard::FILTER_MODE_MASK) {
            m_moves[0] = TMove{king, king, 0, 0};
            const bool bHasReply = m_bHasReply;
            if (SearchList(1))
                return RESULT_NO_MATE;
            m_bHasReply = bHasReply || StandsForMove(m_board);
        }
        return m_bHasReply ? RESULT_MATE : RESULT_NO_MATE;
    }

private:
    bool KillerRefutes()
    {
        const TMove killer = m_killer.m_move;
        if (m_killer.m_figure == NO_FIGURE || m_board.m_board[killer.m_from] != m_killer.m_figure)
            return false;
        const int nMoves = m_board.GenerateBlackFigureMoves(killer.m_from, m_moves.data());
        for (int i = 0; i < nMoves; ++i) {
            if (IsSameMove(m_moves[i], killer))
                return Refutes(m_moves[i]);
        }
        return false;
    }

    bool Refutes(TMove& move)
    {
        const EReply reply = TryLastReply(m_board, m_context, move);
        m_bHasReply |= reply != EReply::Illegal;
        if (reply != EReply::Refutes)
            return false;
        m_killer = {move, m_board.m_board[move.m_from]};
        return true;
    }

    bool SearchList(int nMoves)
    {
        for (int i = 0; i < nMoves; ++i) {
            if (Refutes(m_moves[i]))
                return true;
        }
        m_bHasReply |= m_board.m_blackChecker != NO_CHECK;
        return false;
    }

    TChessboard& m_board;
    TThreadContext& m_context;
    TKiller& m_killer;
    TMoveList m_moves;
    bool m_bHasReply = false;
};

/// Keeps the depth of a record while a test with a depth of its own runs on it.
class TDepthGuard
{
public:
    TDepthGuard(TChessboard& board, std::uint16_t nMoves) : m_board(board), m_nSaved(board.m_nMoves)
    {
        board.m_nMoves = nMoves;
    }
    ~TDepthGuard() { m_board.m_nMoves = m_nSaved; }
    TDepthGuard(const TDepthGuard&) = delete;
    TDepthGuard& operator=(const TDepthGuard&) = delete;

private:
    TChessboard& m_board;
    std::uint16_t m_nSaved;
};

/// Every reply of Black meets with a mate in two.
bool AllRepliesAllowMateInTwo(TChessboard& board)
{
    TThreadContext& context = ContextOf(board);
    TMoveList moves;
    const int nMoves = board.GenerateBlackMoves(moves.data());
    TKiller& killer = context.m_aBlackKillers[board.m_nMoves];
    BringKillerToFront(board, killer, moves.data(), nMoves);
    bool bHasReply = board.m_blackChecker != NO_CHECK;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = context.MakeChild(board);
        if (!child.MakeBlackMove(&moves[i]))
            continue;
        ++context.m_nPositions;
        bHasReply |= CountsAsReply(board, moves[i]);
        if (!IsMateInTwo(child)) {
            killer = {moves[i], board.m_board[moves[i].m_from]};
            return false;
        }
    }
    return bHasReply;
}

/// Tries White's moves, the latest mating one of the depth first.
template <class TTest>
bool AnyMoveMates(TChessboard& board, TTest test)
{
    TThreadContext& context = ContextOf(board);
    TMoveList moves;
    const int nMoves = board.GenerateWhiteMoves(moves.data());
    TKiller& killer = context.m_aWhiteKillers[board.m_nMoves];
    BringKillerToFront(board, killer, moves.data(), nMoves);
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = context.MakeChild(board);
        if (!child.MakeWhiteMove(&moves[i]))
            continue;
        ++context.m_nPositions;
        if (test(child)) {
            killer = {moves[i], board.m_board[moves[i].m_from]};
            return true;
        }
    }
    return false;
}

/// The iteration is so close to its end that hits beyond it may count.
constexpr int ADDITIONAL_MOVES_LEAD = 6;
constexpr int MIN_PLIES_FOR_ADDITIONAL_MOVES = 14;

/// One open call of the short mate search: counts the nesting and puts everything back.
class TQuickerMate
{
public:
    explicit TQuickerMate(TChessboard& board, TWhiteSearch pSearch = SearchWhite<NODE_MAIN>)
        : m_board(board), m_pSearch(pSearch), m_context(ContextOf(board)), m_nDepth(board.m_nMoves),
          m_shSaved(m_context.m_shAdditionalMoves)
    {
        if (++m_context.m_nQuickerMateNesting == 1) {
            m_context.m_pQuickerMateRoot = &board;
            m_context.m_nQuickerMateRootDepth = board.m_nMoves;
        }
    }
    ~TQuickerMate()
    {
        m_context.m_shAdditionalMoves = IsOutermost() ? 0 : m_shSaved;
        --m_context.m_nQuickerMateNesting;
    }
    TQuickerMate(const TQuickerMate&) = delete;
    TQuickerMate& operator=(const TQuickerMate&) = delete;

    /// Searches mates of 1, 3, 5 ... nLimit half-moves.
    bool Search(int nLimit)
    {
        bool bSpecial = m_nDepth >= m_board.m_pRequest->m_nMinPinnedRookPlies &&
                        m_context.m_nSortNesting == 0 && HasPinnedRook(m_board);
        for (int k = 1; k <= nLimit; k += 2) {
            if (bSpecial && (k >= m_nDepth / 3 || k >= nLimit - 1)) {
                if (SolveByPinnedRook(m_board))
                    return true;
                bSpecial = false;
            }
            const std::uint16_t shBefore = m_context.m_shAdditionalMoves;
            AllowAdditionalMoves(k, nLimit);
            const bool bMate = Iterate(static_cast<std::uint16_t>(k));
            if (!IsOutermost())
                m_context.m_shAdditionalMoves = shBefore;
            if (bMate)
                return true;
            if (m_board.m_pRequest->IsStopped(m_context.m_nThreadId))
                return false;
        }
        return false;
    }

private:
    bool IsOutermost() const { return m_context.m_nQuickerMateNesting == 1; }

    /// A mate that is known to be longer than the iteration still fits the plies that the node has
    /// left.
    void AllowAdditionalMoves(int k, int nLimit)
    {
        const auto shSpare = static_cast<std::uint16_t>((m_nDepth - k) / 2);
        if (!IsOutermost()) {
            if (m_context.m_shAdditionalMoves)
                m_context.m_shAdditionalMoves =
                    static_cast<std::uint16_t>(m_context.m_shAdditionalMoves + shSpare);
            return;
        }
        if (k + ADDITIONAL_MOVES_LEAD == nLimit &&
            !(m_board.m_nPositionFlags & TChessboard::POSITION_GLOBALREGISTER) &&
            m_nDepth - k > MIN_PLIES_FOR_ADDITIONAL_MOVES)
        {
            m_context.m_shAdditionalMoves = shSpare;
            m_context.m_bAdditionalMovesUsed = false;
        }
        else if (k + ADDITIONAL_MOVES_LEAD > nLimit && m_context.m_shAdditionalMoves) {
            m_context.m_shAdditionalMoves = shSpare;
        }
    }

    bool Iterate(std::uint16_t k)
    {
        const TChessboard saved = m_board;
        m_context.m_anRepeatDepth[k] = m_context.m_anRepeatDepth[m_nDepth];
        m_board.m_nMoves = k;
        const bool bMate = m_pSearch(m_board, true) > 0;
        m_board = saved;
        return bMate;
    }

    TChessboard& m_board;
    const TWhiteSearch m_pSearch;
    TThreadContext& m_context;
    const int m_nDepth;
    const std::uint16_t m_shSaved;
};

} // namespace

TSearchResult SearchLastReplies(TChessboard& board)
{
    return TLastReplies(board).Search();
}

bool IsMateInTwo(TChessboard& board, bool bProbeRegister)
{
    const TDepthGuard guard(board, 3);
    const bool bRegister = UsesRegister(board);
    if (bRegister && bProbeRegister) {
        // A doubt is no answer: the search is exact here, and soon done.
        const auto known = ProbeRegister(board);
        if (known && *known != RESULT_DOUBTFUL)
            return *known > 0;
    }
    const bool bMate = AnyMoveMates(
        board, [](TChessboard& child) { return SearchLastReplies(child) == RESULT_MATE; });
    if (bRegister)
        StoreCertain(board, 3, bMate);
    return bMate;
}

bool IsMateInThree(TChessboard& board)
{
    const TDepthGuard guard(board, 5);
    return AnyMoveMates(board, AllRepliesAllowMateInTwo);
}

/// Black has only waited after a move that brings about the zugzwang: a short mate would have been
/// there before.
static bool IsWaitedForZugzwang(const TChessboard& board)
{
    return (board.m_nHeuristics & SH_ZUGZWANG) && board.m_nMoves + 2 == board.m_nInitialMoves &&
           board.m_pRequest->m_shLookForQuickerMateDepth < 0 && IsZugzwangReturn(board);
}

bool LookForQuickerMate(TChessboard& board)
{
    TThreadContext& context = ContextOf(board);
    if (context.m_bNoQuickerMate || IsWaitedForZugzwang(board))
        return false;
    return TQuickerMate(board).Search(std::min<int>(board.m_nMoves, ChooseQuickerMateDepth(board)));
}

bool LookForQuickerMateN(TChessboard& board, int nMoves, TWhiteSearch pSearch)
{
    TThreadContext& context = ContextOf(board);
    if (context.m_bNoQuickerMate)
        return false;
    return TQuickerMate(board, pSearch).Search(std::min<int>(board.m_nMoves, 2 * nMoves - 1));
}

bool LookForQuickerMateInLastPass(TChessboard& board)
{
    constexpr int MAX_DEPTH = 18;
    const int nDepth = PickQuickerMateDepth(board);
    if (nDepth < 0)
        return LookForQuickerMate(board);
    if (nDepth == 0 || nDepth > MAX_DEPTH)
        return false;
    return nDepth <= 2 ? IsMateInOne(board) : LookForQuickerMateN(board, (nDepth + 1) / 2);
}

} // namespace corvina
