#include "heuristics/signature.h"

#include "heuristics/heuristicbits.h"
#include "search/hooks.h"
#include "search/threadcontext.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// Parameters folded into one number. A shift by the width of each would push the first ones out
/// once many heuristics are on; the product with an odd number shifts all the same and loses
/// nothing, and the final mix lets each of the 64 bits count in the 32 that are left.
class TFold
{
public:
    template <class... T>
    void Add(T... values)
    {
        ((m_nSum = m_nSum * 0x9E3779B97F4A7C15 + static_cast<std::uint8_t>(values) + 1), ...);
    }
    void AddWide(std::uint16_t nValue) { Add(nValue, nValue >> 8); }

    std::uint32_t Mixed() const
    {
        std::uint64_t n = m_nSum;
        n = (n ^ n >> 30) * 0xBF58476D1CE4E5B9;
        n = (n ^ n >> 27) * 0x94D049BB133111EB;
        return static_cast<std::uint32_t>(n ^ n >> 31);
    }

private:
    std::uint64_t m_nSum = 0;
};

bool HasFlag(const TChessboard& board, std::uint16_t nFlag)
{
    return (board.m_boardFlags & nFlag) != 0;
}

/// The listed figures, whatever their order. A list of the user's tells them by their squares; one
/// that the search has begun by those at the root, and where they have come to since.
void FoldUnblockList(TFold& fold, const THeuristicsParams& p)
{
    const int nFigures = std::clamp<int>(p.m_nUnblockFigures, 0, MAX_UNBLOCK_FIGURES);
    std::uint32_t nSum = 0;
    for (int i = 0; i < nFigures; ++i) {
        TFold figure;
        figure.Add(p.m_bUnblockListSet ? p.m_unblockSquares[i] : p.m_unblockSquaresAtRoot[i],
                   p.m_unblockSquares[i]);
        nSum += figure.Mixed();
    }
    fold.Add(p.m_bUnblockOneSquare, p.m_bUnblockListSet, nFigures, nSum, nSum >> 8, nSum >> 16,
             nSum >> 24);
}

/// What lets the two edge heuristics give way within a line. The deadline counts only where a check
/// waits for it: elsewhere it is a leftover of another line.
void FoldEdgeRelaxation(TFold& fold, const TChessboard& board, const THeuristicsParams& p)
{
    const bool bDeferred = HasFlag(board, TChessboard::FLAG_EDGECHECKDEFERRED);
    fold.Add(p.m_nEdgeRelaxCaptures, p.m_bEdgeRelaxCountPawns, p.m_bEdgeRelaxOnPawn,
             p.m_bSkipDeferIfNoChange, p.m_bAutoEdgeRelax, bDeferred);
    fold.AddWide(p.m_nDeferMoves);
    fold.AddWide(bDeferred ? p.m_nDeferDeadline : std::uint16_t{0});
}

void FoldForcedMate(TFold& fold, const THeuristicsParams& p)
{
    fold.Add(p.m_nFfmLevel, p.m_nFfmWithOther, p.m_bFfmCustom, p.m_bFfmAddCaptures,
             p.m_bFfmPreliminary);
}

/// The parameters of one heuristic, other than those of the two whose place is fixed: the list of
/// figures stands before all others, the forced mate behind them.
void FoldHeuristic(TFold& fold, std::uint32_t nHeuristic, const TChessboard& board,
                   const THeuristicsParams& p)
{
    switch (nHeuristic) {
    case SH_KEEPKINGONTHEEDGE:
        fold.Add(p.m_bKingMustNotMove && !HasFlag(board, TChessboard::FLAG_EDGERELAXED),
                 p.m_bKingMoveExceptions, p.m_bInclCorner, p.m_bEdgeRelaxExtOnly);
        FoldEdgeRelaxation(fold, board, p);
        break;
    case SH_ONECOLORPLAYPOSSIBLE:
        fold.Add(board.m_moveFilter & TChessboard::FILTER_MODE_MASK);
        break;
    case SH_ZUGZWANGTRIANGLES:
        fold.Add(p.m_aTriangleFields[0], p.m_aTriangleFields[1], p.m_triangleOrigin);
        break;
    case SH_DONTLEAVEMAINDIAGONAL:
        fold.Add(p.m_diagonalFigureSquare);
        break;
    case SH_KEEPKINGWITHINEXTEDGE:
        fold.Add(p.m_bInclCorner, p.m_bExtEdgeMoveOnly);
        FoldEdgeRelaxation(fold, board, p);
        break;
    case SH_DONTLETPROMOTEDQUEENMOVE:
    case SH_DONTLETPROMOTEDFIGUREMOVE:
        fold.Add(p.m_bPromotedStrict);
        break;
    case SH_KEYLINE:
        fold.Add(p.m_keyLine);
        break;
    case SH_KEYDIAGONAL:
        fold.Add(p.m_keyDiagonal[0], p.m_keyDiagonal[1]);
        break;
    case SH_SAVEQUEENROOK:
        fold.Add(p.m_bSaveFigureException, HasFlag(board, TChessboard::FLAG_SAVEFIGUREPENDING));
        break;
    case SH_DONTLOSEANYFIGURES:
        fold.Add(p.m_nLoseFiguresMode);
        break;
    case SH_KEYSQUARE:
        fold.Add(p.m_keySquare);
        break;
    case SH_ASSERTBLACKKINGSURROUNDED:
        fold.Add(p.m_bSurroundedStrict);
        break;
    case SH_CAPTUREKNIGHT:
        fold.Add(p.m_bCaptureKnightFlag);
        break;
    case SH_KEEPKINGNEARCORNER:
        fold.Add(p.m_nCornerDistance);
        break;
    case SH_SEASNAKE:
        fold.Add(p.m_pendulumSquare1, p.m_pendulumSquare2, p.m_approachSquare, p.m_turnBackSquare,
                 p.m_nSeaSnakeOnlyAfter);
        break;
    case SH_ZUGZWANG:
        fold.AddWide(static_cast<std::uint16_t>(p.m_nZugzwangKey));
        fold.AddWide(static_cast<std::uint16_t>(p.m_nZugzwangKey >> 16));
        break;
    default:
        break;
    }
}

} // namespace

std::uint32_t SignatureOf(const TChessboard& board, const THeuristicsParams& params)
{
    const std::uint32_t nMask = board.m_nHeuristics;
    if (nMask == 0)
        return 0;
    TFold fold;
    if (nMask & SH_DONTLETFIGUREUNBLOCK)
        FoldUnblockList(fold, params);
    fold.Add(params.m_bCanApplyDlfuDynamically);
    if (nMask & SH_KEYWHITEFIGURE)
        fold.Add(params.m_keyFigureSquare, params.m_pinnedFigureSquare, params.m_bKeyFigureIsRook);
    for (std::uint32_t nLeft = nMask; nLeft; nLeft &= nLeft - 1)
        FoldHeuristic(fold, nLeft & (0 - nLeft), board, params);
    if (nMask & SH_FINDFORCEDMATE)
        FoldForcedMate(fold, params);
    if (nMask & SH_SINGLEQUEENMATE)
        fold.Add(params.m_nCustomDataLevel);
    return fold.Mixed();
}

std::uint32_t ComputeHeurParams(const TChessboard& board)
{
    return board.m_nHeuristics ? SignatureOf(board, ContextOf(board)) : 0;
}

} // namespace corvina
