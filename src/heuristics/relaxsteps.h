#ifndef CORVINA_HEURISTICS_RELAXSTEPS_H
#define CORVINA_HEURISTICS_RELAXSTEPS_H

#include "heuristics/heuristicbits.h"
#include "heuristics/signature.h"
#include "search/threadcontext.h"

#include <optional>

/// The steps of a relaxation (TryRelaxSpecialHeuristics). They are tried in a fixed order
/// (relaxation.cpp), and the first that applies ends it.

namespace corvina
{

constexpr int NOTHING_LEFT = 0;
constexpr int RELAXED = 1;
constexpr int RELAXED_BY_TIME = -1;

/// A relaxation in the making: the set that it changes, and how the steps end.
struct TRelaxation
{
    TChessboard& m_board;
    TThreadContext& m_context; ///< holds the parameters
    TSolveRequest* m_pRequest;
    bool m_bPlan;               ///< nothing but board and context may change, time accepts all
    bool m_bListIsBack = false; ///< the list of figures has been off for the last pass only

    bool Has(std::uint32_t nHeuristics) const { return m_board.m_nHeuristics & nHeuristics; }
    void Set(std::uint32_t nHeuristic) { m_board.m_nHeuristics |= nHeuristic; }
    void Clear(std::uint32_t nHeuristics) { m_board.m_nHeuristics &= ~nHeuristics; }
    void Replace(std::uint32_t nOld, std::uint32_t nNew)
    {
        Clear(nOld);
        Set(nNew);
    }

    /// What the relaxation answers with the set as it is now.
    int Ended()
    {
        m_board.m_nHeuristicsParams = SignatureOf(m_board, m_context);
        return m_board.m_nHeuristics ? RELAXED : NOTHING_LEFT;
    }
    int Drop(std::uint32_t nHeuristic)
    {
        Clear(nHeuristic);
        return Ended();
    }
};

/// What a step answers: the end of the relaxation, or none to go on with the next step.
using TStepResult = std::optional<int>;

// The Black king (relaxking.cpp)

/// The strict form of the edge heuristic gives way to its exceptions, to the plain form or to the
/// surround heuristic.
TStepResult RelaxStrictKing(TRelaxation& r);

/// Without the edge heuristic: the outer two rings.
TStepResult RelaxExtEdge(TRelaxation& r);

/// The plain form of the edge heuristic goes, and something weaker may come in its place.
int RelaxPlainEdge(TRelaxation& r);

/// Is the surround heuristic the better guess where the edge heuristic must give way?
bool IsSurroundBetterThanEdge(const TRelaxation& r);

// Listed figures (relaxunblock.cpp)

/// Takes those off the list that have broken it, where the analysis has asked for that.
TStepResult ShrinkUnblockList(TRelaxation& r);
/// The same for a list of at least three figures, which comes earlier.
TStepResult ShrinkLongUnblockList(TRelaxation& r);
TStepResult LetListedFiguresStep(TRelaxation& r);
TStepResult RelaxUnblockList(TRelaxation& r);

// The forced mate search (relaxforced.cpp)

int RelaxForcedMate(TRelaxation& r);

// The whole (relaxation.cpp)

/// One relaxation, without its log.
int Relax(TRelaxation& r);

} // namespace corvina

#endif
