#include "heuristics/heuristicset.h"

#include "heuristics/heuristicbits.h"
#include "search/solverequest.h"

#include <algorithm>
#include <iterator>

namespace corvina
{
namespace
{

void CopyEdgeRelaxation(const THeuristicsParams& from, THeuristicsParams& to)
{
    to.m_nEdgeRelaxCaptures = from.m_nEdgeRelaxCaptures;
    to.m_bEdgeRelaxCountPawns = from.m_bEdgeRelaxCountPawns;
    to.m_bEdgeRelaxExtOnly = from.m_bEdgeRelaxExtOnly;
    to.m_bEdgeRelaxOnPawn = from.m_bEdgeRelaxOnPawn;
    to.m_nDeferMoves = from.m_nDeferMoves;
    to.m_nDeferDeadline = from.m_nDeferDeadline;
    to.m_bInclCorner = from.m_bInclCorner;
}

void CopyUnblockList(const THeuristicsParams& from, THeuristicsParams& to)
{
    to.m_bUnblockOneSquare = from.m_bUnblockOneSquare;
    to.m_nUnblockFigures = from.m_nUnblockFigures;
    to.m_bUnblockListSet = from.m_bUnblockListSet;
    to.m_bUnblockListHasPawn = from.m_bUnblockListHasPawn;
    std::copy(std::begin(from.m_unblockSquares), std::end(from.m_unblockSquares),
              to.m_unblockSquares);
    std::copy(std::begin(from.m_unblockSquaresAtRoot), std::end(from.m_unblockSquaresAtRoot),
              to.m_unblockSquaresAtRoot);
}

void CopyForcedMate(const THeuristicsParams& from, THeuristicsParams& to)
{
    to.m_nFfmLevel = from.m_nFfmLevel;
    to.m_nFfmFirstLevel = from.m_nFfmFirstLevel;
    to.m_nFfmWithOther = from.m_nFfmWithOther;
    to.m_bFfmPreliminary = from.m_bFfmPreliminary;
    to.m_bFfmCustom = from.m_bFfmCustom;
}

void CopySeaSnake(const THeuristicsParams& from, THeuristicsParams& to)
{
    static_cast<TSeaSnake&>(to) = from;
    to.m_nSeaSnakeOnlyAfter = from.m_nSeaSnakeOnlyAfter;
    to.m_nPawnGuards = from.m_nPawnGuards;
    std::copy(std::begin(from.m_pawnGuardSquares), std::end(from.m_pawnGuardSquares),
              to.m_pawnGuardSquares);
    to.m_nSeaSnakeOrigins = from.m_nSeaSnakeOrigins;
    std::copy(std::begin(from.m_seaSnakeOriginSquares), std::end(from.m_seaSnakeOriginSquares),
              to.m_seaSnakeOriginSquares);
    to.m_bSeaSnakeQuickMode = from.m_bSeaSnakeQuickMode;
    to.m_bSeaSnakeAnalysed = from.m_bSeaSnakeAnalysed;
    to.m_bDynamicSeaSnake = from.m_bDynamicSeaSnake;
    to.m_bEdgeFormsOff = from.m_bEdgeFormsOff;
}

} // namespace

void ApplyToRoot(const THeuristicSet& set, TChessboard& root)
{
    const THeuristicsParams& p = set.m_params;
    root.m_nHeuristics = set.m_nHeuristics;
    root.m_moveFilter = static_cast<std::uint8_t>(
        (root.m_moveFilter & ~TChessboard::FILTER_MODE_MASK) | set.m_nFilterMode);
    for (int i = 0; i < MAX_UNBLOCK_FIGURES; ++i)
        root.m_trackedSquares[i] =
            i < p.m_nUnblockFigures ? p.m_unblockSquares[i] : std::int8_t{-1};
    if (root.m_pRequest)
        root.m_pRequest->m_zugzwangMap = MakeZugzwangMap(set.m_vecZugzwangMoves, root);
}

void CopyParams(std::uint32_t nHeuristic, const THeuristicSet& from, THeuristicSet& to)
{
    const THeuristicsParams& p = from.m_params;
    THeuristicsParams& q = to.m_params;
    switch (nHeuristic) {
    case SH_KEEPKINGONTHEEDGE:
        q.m_bKingMustNotMove = p.m_bKingMustNotMove;
        q.m_bKingMoveExceptions = p.m_bKingMoveExceptions;
        CopyEdgeRelaxation(p, q);
        break;
    case SH_KEEPKINGWITHINEXTEDGE:
        q.m_bExtEdgeMoveOnly = p.m_bExtEdgeMoveOnly;
        CopyEdgeRelaxation(p, q);
        break;
    case SH_ONECOLORPLAYPOSSIBLE:
        to.m_nFilterMode = from.m_nFilterMode;
        break;
    case SH_DONTLEAVEMAINDIAGONAL:
        q.m_diagonalFigureSquare = p.m_diagonalFigureSquare;
        break;
    case SH_DONTLETFIGUREUNBLOCK:
        CopyUnblockList(p, q);
        break;
    case SH_FINDFORCEDMATE:
        CopyForcedMate(p, q);
        break;
    case SH_DONTLETPROMOTEDQUEENMOVE:
    case SH_DONTLETPROMOTEDFIGUREMOVE:
        q.m_bPromotedStrict = p.m_bPromotedStrict;
        break;
    case SH_KEYLINE:
        q.m_keyLine = p.m_keyLine;
        break;
    case SH_KEYDIAGONAL:
        std::copy(std::begin(p.m_keyDiagonal), std::end(p.m_keyDiagonal), q.m_keyDiagonal);
        break;
    case SH_SAVEQUEENROOK:
        q.m_bSaveFigureException = p.m_bSaveFigureException;
        break;
    case SH_DONTLOSEANYFIGURES:
        q.m_nLoseFiguresMode = p.m_nLoseFiguresMode;
        break;
    case SH_KEYSQUARE:
        q.m_keySquare = p.m_keySquare;
        break;
    case SH_KEYWHITEFIGURE:
        q.m_keyFigureSquare = p.m_keyFigureSquare;
        q.m_pinnedFigureSquare = p.m_pinnedFigureSquare;
        q.m_bKeyFigureIsRook = p.m_bKeyFigureIsRook;
        break;
    case SH_ASSERTBLACKKINGSURROUNDED:
        q.m_bSurroundedStrict = p.m_bSurroundedStrict;
        break;
    case SH_KEEPKINGNEARCORNER:
        q.m_nCornerDistance = p.m_nCornerDistance;
        break;
    case SH_SEASNAKE:
        CopySeaSnake(p, q);
        break;
    case SH_ZUGZWANGTRIANGLES:
        q.m_triangleOrigin = p.m_triangleOrigin;
        std::copy(std::begin(p.m_aTriangleFields), std::end(p.m_aTriangleFields),
                  q.m_aTriangleFields);
        break;
    case SH_ZUGZWANG:
        q.m_nZugzwangKey = p.m_nZugzwangKey;
        to.m_vecZugzwangMoves = from.m_vecZugzwangMoves;
        break;
    default:
        break;
    }
}

} // namespace corvina
