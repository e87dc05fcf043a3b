#ifndef CORVINA_HEURISTICS_BLACKMOVE_H
#define CORVINA_HEURISTICS_BLACKMOVE_H

#include "heuristics/heuristicbits.h"
#include "heuristics/kingtests.h"
#include "heuristics/lastmoves.h"
#include "search/solverequest.h"

namespace corvina
{

/// What a block of the hook of Black's moves says.
enum class EVerdict
{
    Passes,
    Doubtful,
    Impossible, ///< certain: no mate in the moves left
    EndsHook    ///< the move isn't doubtful, whatever the later blocks would say
};

/// A move of Black under test: what the blocks of the hook see of it.
class TBlackMove
{
public:
    TBlackMove(TChessboard& board, TMove* pMove)
        : m_board(board), m_pMove(pMove), m_context(ContextOf(board)), m_request(*board.m_pRequest),
          m_parent(*board.m_pParent), m_pGrandparent(board.m_pParent->m_pParent),
          m_nRing(board.BlackKingRing())
    {
    }

    bool Has(std::uint32_t nHeuristic) const { return m_board.m_nHeuristics & nHeuristic; }
    bool HasFlag(std::uint16_t nPositionFlag) const
    {
        return m_board.m_nPositionFlags & nPositionFlag;
    }

    TSquare King() const { return m_board.BlackKing(); }
    bool IsKingMove() const
    {
        return !m_board.m_LastMove.IsNull() && m_board.m_LastMove.m_to == King();
    }

    /// What White's and Black's last move took.
    TFigure WhiteCapture() const { return CapturedFigure(m_parent); }
    TFigure BlackCapture() const { return CapturedFigure(m_board); }

    /// The heuristic of the key figure runs with a rook.
    bool HasKeyRook() const { return Has(SH_KEYWHITEFIGURE) && m_context.m_bKeyFigureIsRook; }

    /// The forced mate search runs with a set of its own.
    bool IsCustomForcedMate() const { return Has(SH_FINDFORCEDMATE) && m_context.m_bFfmCustom; }

    /// A mate test decides: a mate ends the hook, its absence makes the move doubtful. A test that
    /// the stop of the run has cut short proves nothing: no cut, and the hook says so at its end.
    EVerdict CutUnless(EMateTest mate)
    {
        if (mate == EMateTest::No)
            return EVerdict::Doubtful;
        m_bUndecided |= mate == EMateTest::Undecided;
        return mate == EMateTest::Mate ? EVerdict::EndsHook : EVerdict::Passes;
    }
    EVerdict CutUnlessMateWithin(int nPlies) { return CutUnless(IsMateWithin(m_board, nPlies)); }
    EVerdict CutUnlessMateInOne() { return CutUnlessMateWithin(1); }

    TChessboard& m_board; ///< after the move
    TMove* const m_pMove; ///< its entry of the list, or null
    TThreadContext& m_context;
    const TSolveRequest& m_request;
    const TChessboard& m_parent;             ///< before the move: m_LastMove is White's
    const TChessboard* const m_pGrandparent; ///< before White's move; null when the root is Black's
    const int m_nRing;                       ///< of the Black king
    bool m_bUndecided = false;               ///< a mate test gave up
};

} // namespace corvina

#endif
