#ifndef CORVINA_HEURISTICS_HEURISTICSPARAMS_H
#define CORVINA_HEURISTICS_HEURISTICSPARAMS_H

#include "heuristics/seasnakerecord.h"

#include <cstdint>

namespace corvina
{

/// Levels of the forced mate search: THeuristicsParams::m_nFfmLevel.
constexpr std::uint8_t FFM_CHECK_ONLY = 2;
constexpr std::uint8_t FFM_THREAT_1 = 3;
constexpr std::uint8_t FFM_THREAT_1_PLUS = 4;
constexpr std::uint8_t FFM_THREAT_2 = 5;
constexpr std::uint8_t FFM_THREAT_2_PLUS = 6;
constexpr std::uint8_t FFM_THREAT_3 = 7;
constexpr std::uint8_t FFM_THREAT_4 = 8;
constexpr std::uint8_t FFM_THREAT_5 = 9;

/// THeuristicsParams::m_nFfmWithOther.
constexpr std::int8_t FFM_OTHERS_APPLY = 1;
constexpr std::int8_t FFM_OTHERS_OFF = 0;
constexpr std::int8_t FFM_OTHERS_NEAR_THE_END = -1;

/// THeuristicsParams::m_nLoseFiguresMode.
constexpr std::uint8_t LOSE_NO_FIGURES = 0;
constexpr std::uint8_t LOSE_NO_PAWNS = 1;
constexpr std::uint8_t LOSE_NO_PAWNS_BEFORE_PROMOTION = 2;

constexpr int MAX_UNBLOCK_FIGURES = 8;
constexpr int MAX_SEASNAKE_PAWNS = 8;
constexpr int MAX_CORNER_SQUARES = 5;
constexpr int MAX_CORNER_MOVES = 2;

/// The parameters of a set of heuristics; the mask that says which are on is with the record. The
/// initial values are those of every new position. Plain data: saved and restored by copying.
struct THeuristicsParams : TSeaSnake
{
    // SH_DONTLETFIGUREUNBLOCK: listed Black figures stay where they are.
    bool m_bUnblockOneSquare = false; ///< they may move one square, and are followed there
    std::int8_t m_nUnblockFigures = 0;
    std::int8_t m_nUnblockFiguresBefore = 0; ///< before the last dynamic reduction of the list
    std::int8_t m_unblockSquares[MAX_UNBLOCK_FIGURES] = {-1, -1, -1, -1, -1, -1, -1, -1};
    std::int8_t m_unblockSquaresAtRoot[MAX_UNBLOCK_FIGURES] = {-1, -1, -1, -1, -1, -1, -1, -1};
    bool m_bCanApplyDlfuDynamically = true;
    bool m_bDlfuDynamicActive = false; ///< a list has been applied during the search
    bool m_bFallbackRequested = false; ///< set by the relaxation: the next pass may fall back
    std::int8_t m_unblockViolators[MAX_UNBLOCK_FIGURES] = {}; ///< figures that broke a dynamic list
    std::int8_t m_nUnblockViolators = 0;
    bool m_bUnblockListHasPawn = false;
    bool m_bUnblockListSet = false;          ///< by the analysis or by the user
    bool m_bUnblockSuspended = false;        ///< taken off for exactly one pass
    bool m_bUnblockShrinkable = false;       ///< a relaxation shrinks the list and doesn't drop it
    std::int8_t m_nUnblockShrinkFigures = 0; ///< Black figures that the analysis counted for that
    bool m_bAlternateKeyAndUnblock = false;  ///< the next relaxation swaps with the key figure

    // SH_KEEPKINGONTHEEDGE
    bool m_bKingMustNotMove = true;
    bool m_bKingMoveExceptions = false;
    bool m_bSurroundAfterExceptions = false; ///< after the exceptions: the surround test at once
    bool m_bEdgeDroppedToSurround = false;

    // SH_KEEPKINGWITHINEXTEDGE, SH_ASSERTBLACKKINGSURROUNDED, SH_KEEPKINGNEARCORNER
    bool m_bExtEdgeMoveOnly = false;
    bool m_bSurroundedStrict = false;
    std::int8_t m_nCornerDistance = 0; ///< above 0: squares; below 0: minus moves of the king

    // Relaxation of the two edge heuristics within a line of play.
    std::uint8_t m_nEdgeRelaxCaptures = 0; ///< Black figures to be won for it; 0: off
    bool m_bEdgeRelaxCountPawns = false;
    bool m_bEdgeRelaxExtOnly = false;
    bool m_bEdgeRelaxOnPawn = false;
    bool m_bSkipDeferIfNoChange = false;
    bool m_bAutoEdgeRelax = false;
    std::uint16_t m_nDeferMoves = 0;    ///< moves that a violation may stay unresolved
    std::uint16_t m_nDeferDeadline = 0; ///< m_nMoves at which a deferred check falls due
    bool m_bInclCorner = false; ///< the squares diagonally next to the corners count as edge

    // SH_KEYWHITEFIGURE
    std::uint8_t m_keyFigureSquare = NO_KEY_SQUARE;
    std::uint8_t m_pinnedFigureSquare = NO_KEY_SQUARE;
    bool m_bKeyFigureIsRook = false;

    // SH_KEYSQUARE, SH_KEYLINE, SH_KEYDIAGONAL, SH_DONTLEAVEMAINDIAGONAL
    std::uint8_t m_keySquare = NO_KEY_SQUARE;
    std::int8_t m_keyLine = 0; ///< a file
    std::uint8_t m_keyDiagonal[2] = {NO_KEY_SQUARE, NO_KEY_SQUARE};
    std::uint8_t m_diagonalFigureSquare = NO_KEY_SQUARE;

    // SH_DONTLOSEANYFIGURES, SH_SAVEQUEEN/ROOK, SH_CAPTUREKNIGHT, promoted figures
    std::uint8_t m_nLoseFiguresMode = LOSE_NO_FIGURES;
    bool m_bSaveFigureException = false;
    bool m_bCaptureKnightFlag = false;
    bool m_bPromotedStrict = false;
    bool m_bDropQueenCheckEarly = false;
    bool m_bDropPromotedEarly = false;

    // SH_SEASNAKE, beside the record
    std::int8_t m_nSeaSnakeOnlyAfter = 0; ///< moves before it starts to work
    std::uint8_t m_nPawnGuards = 0;
    std::uint8_t m_pawnGuardSquares[MAX_SEASNAKE_PAWNS] = {}; ///< pawns that the walk must watch
    std::uint8_t m_nSeaSnakeOrigins = 0;
    /// White figures that stand in the way of the walk: once one of them has left such a square,
    /// the figures on the walk have their turn.
    std::uint8_t m_seaSnakeOriginSquares[MAX_SEASNAKE_GUARDS] = {};
    bool m_bSeaSnakeQuickMode = false; ///< a run that drops it stays in Quick mode
    bool m_bSeaSnakeAnalysed = false;  ///< the detection has looked at this root
    bool m_bDynamicSeaSnake = false;   ///< the pattern stands only after a first move of White
    bool m_bEdgeFormsOff = false;      ///< the Black king is at home off the edge

    // SH_ZUGZWANGTRIANGLES, SH_ZUGZWANG, SH_SINGLEQUEENMATE
    std::uint8_t m_aTriangleFields[2] = {};        ///< its other squares, six bits each
    std::uint8_t m_triangleOrigin = NO_KEY_SQUARE; ///< where its figure stands at the root
    std::uint32_t m_nZugzwangKey = 0;              ///< of the moves in the map; 0: no map
    std::uint8_t m_nCustomDataLevel = 0;

    // SH_FINDFORCEDMATE
    std::uint8_t m_nFfmLevel = FFM_CHECK_ONLY;
    std::uint8_t m_nFfmFirstLevel = FFM_CHECK_ONLY;
    std::uint8_t m_nFfmRelaxations = 0; ///< runs wanted after the first
    bool m_bFfmAddCaptures = false;
    std::int8_t m_nFfmWithOther = FFM_OTHERS_OFF;
    bool m_bFfmCustom = false; ///< the whole cycle runs twice, first with all other heuristics
    std::uint8_t m_nFfmCustomRelaxations = 0;
    bool m_bFfmCustomRelax = false;
    bool m_bFfmPreliminary = false;
    std::uint32_t m_savedFfmMask = 0; ///< the mask behind the preliminary run

    // The course of the run
    bool m_bLetRelax = true;
    bool m_bEnableFallback = true;
    bool m_bRunPass2 = true;
    std::uint8_t m_nPassIndex = 0; ///< relaxations performed in this run

    // Facts of the root position
    std::uint8_t m_nMovableBlackFigures = 0; ///< with at least one legal move
    std::uint8_t m_nRootBlackMajors = 0;     ///< queens and rooks
    std::uint8_t m_nRootWhiteMajors = 0;
    std::uint8_t m_nRootWhiteMinors = 0;     ///< bishops and knights
    std::uint8_t m_nBlockedBlackFigures = 0; ///< FindBlockedFigures, pawns left out
    bool m_bDlfuPawnsBreakFree = false;      ///< Black's pawns may walk without harm to White
    std::int8_t m_nLoseFigureSlack = 0; ///< White's figures that may go before it counts as a loss

    bool operator==(const THeuristicsParams&) const = default;
};

} // namespace corvina

#endif
