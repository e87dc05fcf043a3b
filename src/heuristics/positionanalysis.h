#ifndef CORVINA_HEURISTICS_POSITIONANALYSIS_H
#define CORVINA_HEURISTICS_POSITIONANALYSIS_H

#include "heuristics/blackmobility.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/heuristicset.h"

#include <optional>
#include <string>
#include <vector>

/// The choice of a set of heuristics by a look at the root position: its material, the place of the
/// Black king, which Black figures can move, and short trial searches. It steers which set a run
/// begins with, never a result: a wrong guess costs time.

namespace corvina
{

/// The heuristics that the search has tests for. A pass under any other only repeats the work of
/// the next one.
constexpr std::uint32_t IMPLEMENTED_HEURISTICS =
    SH_AREKINGSNEAR | SH_KEEPKINGNEARCORNER | SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE |
    SH_ASSERTBLACKKINGSURROUNDED | SH_DONTRECEDEBLACKKING | SH_FINDFORCEDMATE | SH_3MOVESTOMATE |
    SH_SAVEQUEENROOK | SH_DONTLETFIGUREUNBLOCK | SH_DONTLETPROMOTEDQUEENMOVE |
    SH_DONTLETPROMOTEDFIGUREMOVE | SH_KEYLINE | SH_KEYDIAGONAL | SH_DONTLETBLACKQUEENCHECKTWICE |
    SH_DONTLOSEANYFIGURES | SH_CAPTUREKNIGHT | SH_KEYWHITEFIGURE | SH_DONTLEAVEMAINDIAGONAL |
    SH_SWEEPINGWHITEROOK | SH_SKIPWORSTWHITEMOVES | SH_SEASNAKE | SH_ZUGZWANGTRIANGLES |
    SH_ZUGZWANG | SH_ONECOLORPLAYPOSSIBLE | SH_SINGLEQUEENMATE | SH_KEYSQUARE |
    SH_REDUCTIONTOGLOBREGPOS;

/// Tasks with fewer half-moves are solved sooner than they are analysed.
constexpr int MIN_ANALYSED_PLIES = 11;

/// A set that the analysis has chosen for a shorter task is not relaxed: the last pass takes no
/// longer than the passes between.
constexpr int MIN_RELAXED_PLIES = 13;

/// What the position shows at a glance. Figures are queens, rooks, bishops and knights, majors are
/// queens and rooks, minors the others.
struct TPositionFacts
{
    int m_nWhiteQueens = 0; ///< without one that a queen or rook of Black can take
    int m_nWhiteMajors = 0, m_nWhiteMinors = 0, m_nWhiteFigures = 0;
    int m_nBlackMajors = 0, m_nBlackFigures = 0;
    int m_nMen = 0; ///< with kings and pawns
    int m_nWhiteMaterial = 0, m_nBlackMaterial = 0;
    int m_nFreeSquares = 0;       ///< FreeKingSquares
    int m_nMovableFigures = 0;    ///< Black figures with a legal move
    int m_nFreeBlackQueens = 0;   ///< of these
    int m_nUnblockedBlackMen = 0; ///< these and the pawns
    int m_nGuards = 0;            ///< CountKingGuards
    int m_nKingDistance = 0;      ///< between the kings
    bool m_bUnsafeQueen = false;  ///< see m_nWhiteQueens
    bool m_bPawnPromotes = false; ///< WhitePawnCanPromote
    bool m_bStallEscape = false;  ///< Black may hope for stalemate
    bool m_bPawnPlay = false;     ///< White mates with pawns and a minor figure
    bool m_bSmallChecked = false; ///< the rules for few figures have had their say
    bool m_bEdge = false;         ///< the Black king stands on the edge
    bool m_bCorner = false;       ///< the Black king stands on a corner
    TBlackMobility m_mobility;
};

/// A trial search.
struct TTrial
{
    std::string m_strSet;
    int m_nDepth = 0; ///< half-moves
    bool m_bPasses = false;
    std::uint64_t m_nPositions = 0;
};

struct TPositionAnalysis
{
    THeuristicSet m_set;         ///< its parameters on the course of the run are untouched
    std::uint32_t m_nWished = 0; ///< the mask with the heuristics that have no test
    std::uint16_t m_nPositionFlags = 0;
    std::uint16_t m_boardFlags = 0;        ///< FLAG_ISLAND
    bool m_bSafeMode = false;              ///< Quick mode is no good for the position
    std::vector<TMove> m_vecSeaSnakeMoves; ///< TSolveRequest::m_vecSeaSnakeMoves
    /// Half-moves of the search for a short mate that predefined settings give, or -1.
    std::optional<std::int16_t> m_shLookForQuickerMateDepth;
    TPositionFacts m_facts;
    std::vector<TTrial> m_vecTrials;
    std::uint64_t m_nPositions = 0; ///< moves made by all trials
    double m_dSeconds = 0;
};

/// Analyses a root with White to move whose request is set. What is known of a composition
/// beforehand (predefined.h) has the last word, if the run uses it; a failure there is a message of
/// the run. Root, thread and request are left as they were. A stop of the run ends the trials.
/// Takes a second at most: the trials have a limit of positions.
TPositionAnalysis CheckPositionType(const TChessboard& root);

/// Makes what the analysis has chosen the start of the request's run.
void TakeUpAnalysis(const TPositionAnalysis& analysis, TChessboard& root);

} // namespace corvina

#endif
