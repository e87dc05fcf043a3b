#include "search/verify.h"

#include "chess/replies.h"
#include "search/guides/proofsearch.h"
#include "search/guides/provedpositions.h"
#include "search/hooks.h"
#include "search/nodes.h"
#include "search/ordering.h"
#include "search/registeraccess.h"
#include "search/rootsetup.h"
#include "search/shortmate.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace corvina
{
namespace
{

/// With so many half-moves left, or fewer, the engine is asked without heuristics.
constexpr int MAX_PLIES_WITHOUT_HEURISTICS = 11;

/// Positions that the proof-number search may look at before the passes are asked.
constexpr std::uint64_t MAX_PROOF_POSITIONS = 4'000'000;

/// Puts a set on a record and its thread for the life of the object.
class TSetHold
{
public:
    explicit TSetHold(TChessboard& board)
        : m_board(board), m_nHeuristics(board.m_nHeuristics),
          m_nHeuristicsParams(board.m_nHeuristicsParams), m_nPass(board.m_nPass),
          m_params(ContextOf(board))
    {
    }
    ~TSetHold()
    {
        m_board.m_nHeuristics = m_nHeuristics;
        m_board.m_nHeuristicsParams = m_nHeuristicsParams;
        m_board.m_nPass = m_nPass;
        static_cast<THeuristicsParams&>(ContextOf(m_board)) = m_params;
    }
    TSetHold(const TSetHold&) = delete;
    TSetHold& operator=(const TSetHold&) = delete;

private:
    TChessboard& m_board;
    const std::uint32_t m_nHeuristics;
    const std::uint32_t m_nHeuristicsParams;
    const std::uint8_t m_nPass;
    const THeuristicsParams m_params;
};

/// The walk over the proof of one key. Its records are of its own, since the engine uses the stack
/// of the thread below the position that it is asked about.
class TKeyWalk
{
public:
    explicit TKeyWalk(TSolveRequest& request)
        : m_request(request), m_root(*request.m_pChessboard), m_context(m_root.m_nMoves)
    {
        m_root.m_pRequest = &request;
        TakeUpHeuristics(m_root);
        PutOnThread(m_root, m_context);
        DropHeuristics(m_root);
    }

    TVerification Verify(TMove key)
    {
        m_vecLine.push_back(key);
        TChessboard child = m_root;
        child.m_pParent = &m_root;
        m_verification.m_bHolds = child.MakeWhiteMove(&key) && MateAgainstAll(child) != NO_MATE;
        m_verification.m_bStopped = !m_verification.m_bHolds && IsStopped();
        if (!m_verification.m_bHolds && !m_verification.m_bStopped)
            m_verification.m_vecRefutation = m_vecRefutation.empty() ? m_vecLine : m_vecRefutation;
        return m_verification;
    }

private:
    bool IsStopped() const { return m_request.IsStoppedForAll(); }

    static constexpr int NO_MATE = -1;

    /// Black to move: White mates after every reply, or has mated. Half-moves to the mate, or
    /// NO_MATE.
    int MateAgainstAll(TChessboard& board)
    {
        bool bHasReply = false;
        int nLongest = 0;
        const bool bAll =
            HoldsForEachReply(board, &bHasReply, [&](TChessboard& child, const TMove& move) {
                // A reply is left when no half-move is: no mate.
                if (board.m_nMoves == 0)
                    return false;
                m_vecLine.push_back(move);
                const int nMate = MateAtWhite(child);
                if (nMate == NO_MATE && m_vecRefutation.empty())
                    m_vecRefutation = m_vecLine;
                m_vecLine.pop_back();
                nLongest = std::max(nLongest, nMate + 1);
                return nMate != NO_MATE;
            });
        if (!bAll)
            return NO_MATE;
        const bool bMate = !bHasReply && board.m_blackChecker != NO_CHECK;
        m_verification.m_nMates += bMate;
        return bHasReply || bMate ? nLongest : NO_MATE;
    }

    int MateAtWhite(TChessboard& board)
    {
        if (IsStopped())
            return NO_MATE;
        if (const int nKnown = m_proved.Find(board))
            return nKnown;
        const int nMate = Continue(board);
        if (nMate == NO_MATE)
            return NO_MATE;
        m_vecRefutation.clear(); // of a move that another one replaces
        m_verification.m_nPositions += m_proved.Add(board, nMate);
        return nMate;
    }

    /// Looks for a move of White behind which the proof goes on. Those whose mate is known already
    /// are walked first, the shortest one before the others: among longer ones the walk would
    /// wander. Then the engine searches the position, which fills the register, and at last each
    /// move.
    int Continue(TChessboard& board)
    {
        TMoveList moves;
        TChessboard asked = board;
        const int nMoves =
            SortWhiteMovesCheap(asked, moves.data(), board.GenerateWhiteMoves(moves.data()));
        int nMate = MateByKnownMove(board, moves.data(), nMoves, false);
        if (nMate == NO_MATE)
            nMate = MateByKnownMove(board, moves.data(), nMoves, true);
        if (nMate != NO_MATE || IsStopped() || board.m_nMoves == 1 || !IsMateBySearch(board))
            return nMate;
        nMate = MateByKnownMove(board, moves.data(), nMoves, true);
        if (nMate != NO_MATE)
            return nMate;
        for (int i = 0; i < nMoves && nMate == NO_MATE && !IsStopped(); ++i) {
            nMate = MateByMove(board, moves[i], [&](TChessboard& child) {
                return SearchBlack<NODE_MAIN>(child) == RESULT_MATE;
            });
        }
        return nMate;
    }

    struct TKnownMove
    {
        int m_nMate; ///< half-moves to the mate after it
        TMove m_move;
    };

    int MateByKnownMove(TChessboard& board, const TMove* pMoves, int nMoves, bool bInTwo)
    {
        const int nEnough = IsRegisterable(board) && UsesRegister(board)
                                ? ShortestMateInRegister(board)
                                : m_request.m_matesBesideRegister.Find(board);
        std::vector<TKnownMove> vecKnown;
        int nShortest = board.m_nMoves;
        for (int i = 0; i < nMoves && !IsStopped(); ++i) {
            TMove move = pMoves[i];
            TChessboard child = board;
            child.m_pParent = &board;
            if (!child.MakeWhiteMove(&move))
                continue;
            const int nMate = KnownAtBlack(child, nShortest - 1, bInTwo);
            if (nMate == NO_MATE)
                continue;
            vecKnown.push_back({nMate, move});
            nShortest = nMate + 1;
            if (nShortest <= nEnough)
                break;
        }
        // Each is as short as those before it, or shorter.
        int nMate = NO_MATE;
        for (auto known = vecKnown.rbegin(); known != vecKnown.rend() && nMate == NO_MATE; ++known)
            nMate = MateByMove(board, known->m_move, [](TChessboard&) { return true; });
        return nMate;
    }

    template <class TSuggests>
    int MateByMove(TChessboard& board, TMove move, TSuggests suggests)
    {
        TChessboard child = board;
        child.m_pParent = &board;
        if (IsStopped() || !child.MakeWhiteMove(&move) || !suggests(child))
            return NO_MATE;
        m_vecLine.push_back(move);
        const int nMate = MateAgainstAll(child);
        m_vecLine.pop_back();
        return nMate == NO_MATE ? NO_MATE : nMate + 1;
    }

    /// Half-moves within which a mate is known after each reply, no more than nLongest; 0: the move
    /// has mated.
    int KnownAtBlack(TChessboard& board, int nLongest, bool bInTwo)
    {
        if (board.m_nMoves == 0)
            return board.m_blackChecker != NO_CHECK && !board.CanBlackEscapeCheck() ? 0 : NO_MATE;
        bool bHasReply = false;
        int nMate = 0;
        const bool bAll =
            HoldsForEachReply(board, &bHasReply, [&](TChessboard& child, const TMove&) {
                const int nKnown = KnownAtWhite(child, nLongest - 1, bInTwo);
                nMate = std::max(nMate, nKnown + 1);
                return nKnown != NO_MATE;
            });
        return bAll && (bHasReply || board.m_blackChecker != NO_CHECK) ? nMate : NO_MATE;
    }

    /// bInTwo: a mate in two is looked for when none is known.
    int KnownAtWhite(TChessboard& board, int nLongest, bool bInTwo)
    {
        if (nLongest < 1)
            return NO_MATE;
        if (IsMateInOne(board))
            return 1;
        if (nLongest < 3)
            return NO_MATE;
        int nKnown = m_proved.Find(board);
        if (!nKnown && board.m_nMoves > 3)
            nKnown = KnownToRegister(board);
        if (nKnown)
            return nKnown <= nLongest ? nKnown : NO_MATE;
        return bInTwo && IsMateInTwo(board) ? 3 : NO_MATE;
    }

    /// 0: no mate is known.
    int KnownToRegister(TChessboard& board)
    {
        if (!IsRegisterable(board))
            return m_request.m_matesBesideRegister.Find(board);
        if (UsesRegister(board))
            return ShortestMateInRegister(board);
        const bool bMate =
            board.m_nMoves <= MAX_PLIES_WITHOUT_HEURISTICS / 2 && IsMateWithoutHeuristics(board);
        return bMate ? board.m_nMoves : 0;
    }

    bool IsMateWithoutHeuristics(TChessboard& board)
    {
        return SearchWhite<NODE_MAIN>(board) == RESULT_MATE;
    }

    /// By proof numbers. The proof goes to the register.
    bool IsMateByProofNumbers(const TChessboard& board)
    {
        if (!UsesRegister(board) || !IsRegisterable(board))
            return false;
        if (!m_pProofTable)
            m_pProofTable = std::make_unique<TProofTable>();
        TProofSearch search(board, *m_pProofTable, m_context.m_nThreadId);
        return search.Search(MAX_PROOF_POSITIONS) == TProofSearch::EAnswer::Mate &&
               search.Confirm();
    }

    /// Far from the leaves proof numbers come first, and then the run's passes, as they were for
    /// the first moves.
    bool IsMateBySearch(TChessboard& board)
    {
        if (board.m_nMoves > MAX_PLIES_WITHOUT_HEURISTICS && IsMateByProofNumbers(board))
            return true;
        if (board.m_nMoves <= MAX_PLIES_WITHOUT_HEURISTICS ||
            m_request.m_heuristicSet.m_nHeuristics == 0)
            return IsMateWithoutHeuristics(board);
        const TSetHold hold(board);
        board.m_nHeuristics = m_request.m_heuristicSet.m_nHeuristics;
        board.m_nPass = PASS_WITH_HEURISTICS;
        static_cast<THeuristicsParams&>(m_context) = m_request.m_heuristicSet.m_params;
        board.m_nHeuristicsParams = ComputeHeurParams(board);
        while (board.m_nHeuristics != 0) {
            const TSearchResult nResult = SearchWhite<NODE_MAIN>(board);
            if (nResult >= 0 || IsStopped())
                return nResult == RESULT_MATE;
            if (TryRelaxSpecialHeuristics(board) == 0)
                DropHeuristics(board);
        }
        DropHeuristics(board);
        return IsMateWithoutHeuristics(board);
    }

    TSolveRequest& m_request;
    TChessboard m_root;
    TThreadContext m_context;
    TVerification m_verification;
    std::vector<TMove> m_vecLine;       ///< to the position at hand
    std::vector<TMove> m_vecRefutation; ///< the first line at whose end White had nothing
    TProvedPositions m_proved;
    std::unique_ptr<TProofTable> m_pProofTable; ///< none before it is asked
};

} // namespace

TVerification VerifyKey(TSolveRequest& request, TMove key)
{
    return TKeyWalk(request).Verify(key);
}

} // namespace corvina
