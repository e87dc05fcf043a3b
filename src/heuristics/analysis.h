#ifndef CORVINA_HEURISTICS_ANALYSIS_H
#define CORVINA_HEURISTICS_ANALYSIS_H

#include "heuristics/analysistrials.h"
#include "heuristics/positionanalysis.h"
#include "heuristics/predefined.h"

/// The steps of CheckPositionType. They run in a fixed order (positionanalysis.cpp), each on the
/// set that the ones before have left.

namespace corvina
{

/// An analysis in the making. It works on a record and a context of its own; the record holds the
/// mask and the flags, the context the parameters.
struct TAnalysis
{
    explicit TAnalysis(const TChessboard& root);
    TAnalysis(const TAnalysis&) = delete;
    TAnalysis& operator=(const TAnalysis&) = delete;

    bool Has(std::uint32_t nHeuristics) const { return m_board.m_nHeuristics & nHeuristics; }
    void Set(std::uint32_t nHeuristics) { m_board.m_nHeuristics |= nHeuristics; }
    void Clear(std::uint32_t nHeuristics) { m_board.m_nHeuristics &= ~nHeuristics; }
    void Replace(std::uint32_t nOld, std::uint32_t nNew)
    {
        Clear(nOld);
        Set(nNew);
    }
    bool HasFlag(std::uint16_t nFlag) const { return m_board.m_nPositionFlags & nFlag; }
    void SetFlag(std::uint16_t nFlag) { m_board.m_nPositionFlags |= nFlag; }

    bool HasStrictKing() const { return Has(SH_KEEPKINGONTHEEDGE) && m_params.m_bKingMustNotMove; }
    void SetStrictKing(bool bExceptions)
    {
        Set(SH_KEEPKINGONTHEEDGE);
        m_params.m_bKingMustNotMove = true;
        m_params.m_bKingMoveExceptions = bExceptions;
    }
    void SetPlainEdge()
    {
        Set(SH_KEEPKINGONTHEEDGE);
        m_params.m_bKingMustNotMove = m_params.m_bKingMoveExceptions = false;
    }
    void RelaxEdgeOnCaptures(int nCaptures, int nDeferMoves)
    {
        m_params.m_nEdgeRelaxCaptures = static_cast<std::uint8_t>(nCaptures);
        m_params.m_nDeferMoves = static_cast<std::uint16_t>(nDeferMoves);
    }

    /// With a null move of White Black is stalemated or mated.
    bool IsStalled() const { return m_facts.m_mobility.m_nMoves == 0; }

    TSolveRequest& m_request;
    TThreadContext m_context;
    THeuristicsParams& m_params; ///< of the context
    TChessboard m_board;
    TPositionFacts m_facts;
    TTrials m_trials;
    TPredefinedRun m_predefined; ///< what the known settings of the composition ask for
    bool m_bSafeMode;
    bool m_bSafeModeForced = false;
    std::vector<TMove> m_vecSeaSnakeMoves;

    void ForceSafeMode() { m_bSafeMode = m_bSafeModeForced = true; }
};

// Facts (analysisfacts.cpp)

void GatherFacts(TAnalysis& a);
void SetMaterialFlags(TAnalysis& a);

// Few figures (analysissmall.cpp)

/// The rules for at most seven men, and those of them that hold up to twelve. bFewFigures: the
/// position has few men.
void CheckSmallPosition(TAnalysis& a, bool bFewFigures);

// Single figures (analysisfigures.cpp)

/// SH_DONTLEAVEMAINDIAGONAL
void ChooseMainDiagonal(TAnalysis& a);
void PresetEdgeRelaxation(TAnalysis& a);
void ChooseForcedMate(TAnalysis& a);
void ChooseSaveQueenRook(TAnalysis& a);
void ChoosePromotedFigures(TAnalysis& a);
void ChooseReceding(TAnalysis& a);
void ChooseBlackQueen(TAnalysis& a);

/// The trial of the rules on promoted figures drops them, or the strict form of the edge.
void TryPromotedRules(TAnalysis& a);

/// White drives the king with a queen and a knight.
bool IsQueenKnightDrive(const TAnalysis& a);

// Key figure and blocked figures (analysisblocked.cpp)

/// A list of blocked figures comes into the set when White is too weak to take them.
void ChooseBlockedFigures(TAnalysis& a);

/// SH_KEYWHITEFIGURE
void ChooseKeyFigure(TAnalysis& a);

/// A key rook on a line of the edge holds the king there.
void HoldKingByKeyRook(TAnalysis& a);

/// With a key figure all blocked figures are listed.
void ListFiguresBesideKey(TAnalysis& a);

/// A relaxation may shorten the list where the king is held without it.
void NoteShrinkableList(TAnalysis& a);

/// One line can't have both a key figure and a bishop that must not leave it.
void DropKeyFigureOnDiagonal(TAnalysis& a);

/// SH_SWEEPINGWHITEROOK
void ChooseSweepingRook(TAnalysis& a);
void ForceSafeModeForKeyFigure(TAnalysis& a);

// The Black king (analysisking.cpp)

void ChooseKingOffEdge(TAnalysis& a);
void ChooseEdge(TAnalysis& a);

/// Tries the strict form, and with exceptions when that fails; true when it has set one of them.
bool TryStrictForms(TAnalysis& a);

// Further tests (analysisrefine.cpp)

void RefineSet(TAnalysis& a);

// Zugzwang (analysiszugzwang.cpp)

/// SH_SEASNAKE, SH_ZUGZWANGTRIANGLES
void DetectZugzwangPatterns(TAnalysis& a);

/// What such a pattern changes in the rest of the set; SH_ZUGZWANG, which the user has told.
void RefineByZugzwang(TAnalysis& a);

/// A sea snake with the Black king far from the edge.
void DropEdgeFormsOfSeaSnake(TAnalysis& a);

// Safe mode (analysissafe.cpp)

void DecideSafeMode(TAnalysis& a);
void ForceSafeModeForLonePiece(TAnalysis& a);

} // namespace corvina

#endif
