#include "heuristics/forcingmoves.h"

#include "chess/sides.h"
#include "heuristics/forcingtests.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/lastmoves.h"
#include "search/hooks.h"

#include <algorithm>

namespace corvina
{

namespace
{

/// Moves in which a threat of the level mates; 0: checks only.
constexpr int ThreatOfLevel(int nLevel)
{
    switch (nLevel) {
    case FFM_CHECK_ONLY:
        return 0;
    case FFM_THREAT_1:
    case FFM_THREAT_1_PLUS:
        return 1;
    case FFM_THREAT_2:
    case FFM_THREAT_2_PLUS:
        return 2;
    default:
        return nLevel - FFM_THREAT_3 + 3;
    }
}

/// White's legal moves, those among them that are candidates, and the stages that choose. A stage
/// looks at the moves that no earlier one has taken, so that the cheap ones come first.
template <int nLevel>
class TForcingMoves
{
public:
    /// nListed moves are in the list already.
    TForcingMoves(TChessboard& board, TMove* pOut, int nListed)
        : m_board(board), m_context(ContextOf(board)), m_pOut(pOut), m_nListed(nListed)
    {
        FindLegalMoves();
    }

    int AddFirst(bool bAddCaptures)
    {
        AddChecks();
        if (m_board.m_whiteChecker != NO_CHECK)
            AddEvasions();
        AddQueenCaptures();
        if constexpr (ADDS_CAPTURES) {
            if (bAddCaptures)
                AddCapturesNextToKing();
        }
        AddIndicatedMoves();
        return m_nListed;
    }

    TForcingList AddQuiet(const TMove& previousMove)
    {
        AddQuietMoves();
        if constexpr (THREAT >= 2)
            AddQueenHunt();
        AddPreviousMove(previousMove);
        return {m_nListed, m_nListed == m_nLegal};
    }

private:
    static constexpr int THREAT = ThreatOfLevel(nLevel);
    static constexpr bool ADDS_CAPTURES =
        nLevel == FFM_THREAT_1 || nLevel == FFM_THREAT_1_PLUS || nLevel == FFM_THREAT_2_PLUS;

    struct TCandidate
    {
        TMove m_move;
        std::int8_t m_checker; ///< of Black after the move
        bool m_bListed;
    };

    /// Makes every move once: whether it is legal and gives check.
    void FindLegalMoves()
    {
        TMoveList moves;
        const int nMoves = m_board.GenerateWhiteMoves(moves.data());
        for (int i = 0; i < nMoves; ++i) {
            TChessboard& child = m_context.MakeChild(m_board);
            if (child.MakeWhiteMove(&moves[i]))
                m_aLegal[m_nLegal++] = {moves[i], child.m_blackChecker, IsListed(moves[i])};
        }
    }

    bool IsListed(const TMove& move) const
    {
        return std::any_of(m_pOut, m_pOut + m_nListed,
                           [&](const TMove& listed) { return IsSameMove(listed, move); });
    }

    void List(TCandidate& candidate)
    {
        candidate.m_bListed = true;
        m_pOut[m_nListed++] = candidate.m_move;
    }

    /// Lists the moves not yet taken that pass the test.
    template <class TTest>
    void ListWhere(TTest test)
    {
        for (int i = 0; i < m_nLegal; ++i) {
            if (!m_aLegal[i].m_bListed && test(m_aLegal[i]))
                List(m_aLegal[i]);
        }
    }

    TChessboard& Make(TCandidate& candidate)
    {
        TChessboard& child = m_context.MakeChild(m_board);
        child.MakeWhiteMove(&candidate.m_move);
        return child;
    }

    TFigure CapturedBy(const TMove& move) const { return m_board.m_board[move.m_to]; }
    TFigure MovedBy(const TMove& move) const { return m_board.m_board[move.m_from]; }

    bool IsNextToKing(int square) const { return KingZone(m_board.BlackKing()) & Bit(square); }

    void AddChecks()
    {
        ListWhere([this](TCandidate& candidate) {
            if (candidate.m_checker == NO_CHECK)
                return false;
            return candidate.m_checker == DOUBLE_CHECK || !IsNextToKing(candidate.m_move.m_to) ||
                   !CanKingTakeChecker(Make(candidate));
        });
    }

    /// All of them where threats count; else the captures of the checker with several queens.
    void AddEvasions()
    {
        if constexpr (THREAT > 0)
            ListWhere([](TCandidate&) { return true; });
        else if (m_board.m_nWhiteQueens >= 2)
            ListWhere([this](TCandidate& candidate) {
                return candidate.m_move.m_to == m_board.m_whiteChecker;
            });
    }

    /// With several queens White can afford to trade one.
    void AddQueenCaptures()
    {
        if (m_board.m_nWhiteQueens < 2 || m_board.m_nBlackQueens == 0)
            return;
        ListWhere(
            [this](TCandidate& candidate) { return CapturedBy(candidate.m_move) == BLACK_QUEEN; });
    }

    void AddCapturesNextToKing()
    {
        ListWhere([this](TCandidate& candidate) {
            return CapturedBy(candidate.m_move) != NO_FIGURE && IsNextToKing(candidate.m_move.m_to);
        });
    }

    /// Moves without check: those that take a square of the king or keep him in a net, and those
    /// that threaten.
    void AddQuietMoves()
    {
        constexpr int MANY_SQUARES = 3;
        const int nFree = FreeKingSquares(m_board);
        ListWhere([this, nFree](TCandidate& candidate) {
            if (candidate.m_checker != NO_CHECK)
                return false;
            TChessboard& child = Make(candidate);
            const int nLeft = FreeKingSquares(child);
            if (THREAT > 0 && nFree < MANY_SQUARES && nLeft < nFree)
                return true;
            // After a capture the king may have one square more.
            if (nLeft <= IsAbovePawn(CapturedBy(candidate.m_move)) &&
                KeepsStalemateNet(child, nLeft))
                return true;
            return THREAT > 0 && MayThreaten(candidate.m_move) && ThreatensMate(child, THREAT);
        });
    }

    /// The lowest level with threats leaves out those of line figures that Black can take, and
    /// captures far from his king.
    bool MayThreaten(const TMove& move) const
    {
        if constexpr (nLevel != FFM_THREAT_1)
            return true;
        constexpr int NEAR = 2;
        if (CapturedBy(move) != NO_FIGURE && Distance(move.m_to, m_board.BlackKing()) <= NEAR)
            return true;
        if (MovedBy(move) & SLIDER_MASK)
            return !IsAttackedBy<EColour::Black>(m_board, move.m_to);
        return CapturedBy(move) == NO_FIGURE;
    }

    /// White has just taken a queen: its figure goes on.
    void AddQueenHunt()
    {
        const TChessboard* pBeforeReply = m_board.m_pParent;
        if (!pBeforeReply || CapturedFigure(*pBeforeReply) != BLACK_QUEEN)
            return;
        const TSquare hunter = pBeforeReply->m_LastMove.m_to;
        ListWhere([this, hunter](TCandidate& candidate) {
            return candidate.m_move.m_from == hunter && AllowsMateInOne(Make(candidate));
        });
    }

    /// A threat of mate in one by a move that is likely to have one.
    void AddPreviousMove(const TMove& previousMove)
    {
        if (previousMove.IsNull())
            return;
        ListWhere([&](TCandidate& candidate) {
            return candidate.m_checker == NO_CHECK && IsSameMove(candidate.m_move, previousMove) &&
                   ThreatensMate(Make(candidate), 1);
        });
    }

    /// What the problem itself tells to try at this point of the solution, quiet or not: it is to
    /// be tried before all else.
    void AddIndicatedMoves()
    {
        if (m_context.m_nQuickerMateNesting)
            return;
        TMoveList indicated;
        const int nIndicated = GetIndicatedMoves(m_board, indicated.data());
        for (int k = 0; k < nIndicated; ++k) {
            ListWhere(
                [&](TCandidate& candidate) { return IsSameMove(candidate.m_move, indicated[k]); });
        }
    }

    TChessboard& m_board;
    TThreadContext& m_context;
    TMove* const m_pOut;
    TCandidate m_aLegal[MAX_MOVES];
    int m_nLegal = 0;
    int m_nListed;
};

} // namespace

template <int nLevel>
int GenerateForcingMoves(TChessboard& board, TMove* pMoves, bool bAddCaptures)
{
    return TForcingMoves<nLevel>(board, pMoves, 0).AddFirst(bAddCaptures);
}

template <int nLevel>
TForcingList GenerateQuietForcingMoves(TChessboard& board, TMove* pMoves, int nMoves,
                                       const TMove& previousMove)
{
    return TForcingMoves<nLevel>(board, pMoves, nMoves).AddQuiet(previousMove);
}

template int GenerateForcingMoves<FFM_CHECK_ONLY>(TChessboard&, TMove*, bool);
template int GenerateForcingMoves<FFM_THREAT_1>(TChessboard&, TMove*, bool);
template int GenerateForcingMoves<FFM_THREAT_1_PLUS>(TChessboard&, TMove*, bool);
template int GenerateForcingMoves<FFM_THREAT_2>(TChessboard&, TMove*, bool);
template int GenerateForcingMoves<FFM_THREAT_2_PLUS>(TChessboard&, TMove*, bool);
template int GenerateForcingMoves<FFM_THREAT_3>(TChessboard&, TMove*, bool);
template int GenerateForcingMoves<FFM_THREAT_4>(TChessboard&, TMove*, bool);
template int GenerateForcingMoves<FFM_THREAT_5>(TChessboard&, TMove*, bool);
template TForcingList GenerateQuietForcingMoves<FFM_CHECK_ONLY>(TChessboard&, TMove*, int,
                                                                const TMove&);
template TForcingList GenerateQuietForcingMoves<FFM_THREAT_1>(TChessboard&, TMove*, int,
                                                              const TMove&);
template TForcingList GenerateQuietForcingMoves<FFM_THREAT_1_PLUS>(TChessboard&, TMove*, int,
                                                                   const TMove&);
template TForcingList GenerateQuietForcingMoves<FFM_THREAT_2>(TChessboard&, TMove*, int,
                                                              const TMove&);
template TForcingList GenerateQuietForcingMoves<FFM_THREAT_2_PLUS>(TChessboard&, TMove*, int,
                                                                   const TMove&);
template TForcingList GenerateQuietForcingMoves<FFM_THREAT_3>(TChessboard&, TMove*, int,
                                                              const TMove&);
template TForcingList GenerateQuietForcingMoves<FFM_THREAT_4>(TChessboard&, TMove*, int,
                                                              const TMove&);
template TForcingList GenerateQuietForcingMoves<FFM_THREAT_5>(TChessboard&, TMove*, int,
                                                              const TMove&);

} // namespace corvina
