#include "heuristics/randomsets.h"

#include "heuristics/heuristicbits.h"
#include "heuristics/setreader.h"
#include "search/hooks.h"

namespace corvina
{
namespace
{

std::uint8_t RandomSquare(std::mt19937& random)
{
    return random() % 8 ? static_cast<std::uint8_t>(random() % 64) : NO_KEY_SQUARE;
}

void ListFigures(std::mt19937& random, const TChessboard& board, THeuristicsParams& p)
{
    for (int square = 0; square < 64 && p.m_nUnblockFigures < MAX_UNBLOCK_FIGURES; ++square) {
        const TFigure figure = board.m_board[square];
        if (!(figure & COLOUR_BLACK) || figure == BLACK_KING || random() % 2)
            continue;
        p.m_bUnblockListHasPawn |= figure == BLACK_PAWN;
        p.m_unblockSquares[p.m_nUnblockFigures] = static_cast<std::int8_t>(square);
        p.m_unblockSquaresAtRoot[p.m_nUnblockFigures++] = static_cast<std::int8_t>(square);
    }
    p.m_bUnblockListSet = p.m_nUnblockFigures > 0;
}

} // namespace

TSetPosition::TSetPosition(const TChessboard& position, int nHalfMoves) : board(position)
{
    board.m_pRequest = &request;
    board.m_pThread = &context;
    context.m_pRootBoard = &board;
    board.CheckStartPosition(static_cast<std::uint16_t>(nHalfMoves), true);
    board.m_nPass = 1;
}

void TSetPosition::Apply(const THeuristicSet& set)
{
    static_cast<THeuristicsParams&>(context) = set.m_params;
    ApplyToRoot(set, board);
    board.m_nHeuristicsParams = ComputeHeurParams(board);
}

void TSetPosition::Apply(const std::string& strSet)
{
    THeuristicSet set;
    ReadHeuristicsText(strSet, set, &board);
    Apply(set);
}

THeuristicSet RandomTellableSet(std::mt19937& random, const TChessboard& board)
{
    THeuristicSet set;
    set.m_nHeuristics = static_cast<std::uint32_t>(random() & random() & ALL_HEURISTICS);
    const auto has = [&](std::uint32_t nHeuristic) { return set.m_nHeuristics & nHeuristic; };
    THeuristicsParams& p = set.m_params;
    if (has(SH_FINDFORCEDMATE))
        set.m_nHeuristics &= ~SH_SEASNAKE;
    if (has(SH_KEEPKINGONTHEEDGE)) {
        p.m_bKingMustNotMove = random() % 2 && !has(SH_KEEPKINGWITHINEXTEDGE);
        p.m_bKingMoveExceptions = p.m_bKingMustNotMove && random() % 2;
    }
    if (has(SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE)) {
        p.m_bInclCorner = random() % 2;
        p.m_nEdgeRelaxCaptures = static_cast<std::uint8_t>(random() % 3);
        p.m_bEdgeRelaxCountPawns = p.m_nEdgeRelaxCaptures && random() % 2;
        p.m_bEdgeRelaxOnPawn = random() % 2;
        const bool bGivesWay = p.m_nEdgeRelaxCaptures || p.m_bEdgeRelaxOnPawn;
        p.m_nDeferMoves = static_cast<std::uint16_t>(bGivesWay ? random() % 400 : 0);
        p.m_nDeferDeadline = static_cast<std::uint16_t>(p.m_nDeferMoves ? random() % 600 : 0);
        p.m_bEdgeRelaxExtOnly =
            has(SH_KEEPKINGONTHEEDGE) && has(SH_KEEPKINGWITHINEXTEDGE) && bGivesWay && random() % 2;
    }
    p.m_bExtEdgeMoveOnly = has(SH_KEEPKINGWITHINEXTEDGE) && random() % 2;
    p.m_bSurroundedStrict = has(SH_ASSERTBLACKKINGSURROUNDED) && random() % 2;
    p.m_bPromotedStrict =
        has(SH_DONTLETPROMOTEDQUEENMOVE | SH_DONTLETPROMOTEDFIGUREMOVE) && random() % 2;
    p.m_bCanApplyDlfuDynamically = random() % 2;
    if (has(SH_DONTLETFIGUREUNBLOCK)) {
        p.m_bUnblockOneSquare = random() % 2;
        ListFigures(random, board, p);
    }
    if (has(SH_ONECOLORPLAYPOSSIBLE))
        set.m_nFilterMode = random() % 4;
    p.m_nCornerDistance =
        static_cast<std::int8_t>(random() % 2 ? random() % 5 + 1 : 0U - (random() % 2 + 1));
    p.m_nLoseFiguresMode = random() % 3;
    p.m_keyLine = random() % 8;
    p.m_keySquare = RandomSquare(random);
    p.m_keyDiagonal[0] = RandomSquare(random);
    p.m_keyDiagonal[1] = RandomSquare(random);
    p.m_approachSquare = RandomSquare(random);
    p.m_turnBackSquare = RandomSquare(random);
    p.m_nSeaSnakeOnlyAfter = static_cast<std::int8_t>(random() % 128);
    p.m_nFfmLevel = p.m_nFfmFirstLevel = static_cast<std::uint8_t>(FFM_CHECK_ONLY + random() % 8);
    p.m_bFfmPreliminary = random() % 4 == 0;
    p.m_nFfmWithOther = p.m_bFfmPreliminary ? FFM_OTHERS_NEAR_THE_END : random() % 2;
    p.m_bFfmCustom = random() % 2;
    return set;
}

THeuristicSet RandomSet(std::mt19937& random, const TChessboard& board)
{
    THeuristicSet set = RandomTellableSet(random, board);
    THeuristicsParams& p = set.m_params;
    const auto coin = [&] { return random() % 2 != 0; };
    p.m_bKingMustNotMove = coin();
    p.m_bKingMoveExceptions = coin();
    p.m_bSurroundAfterExceptions = coin();
    p.m_bEdgeDroppedToSurround = random() % 8 == 0;
    p.m_bUnblockShrinkable = coin();
    p.m_nUnblockShrinkFigures = random() % 5;
    p.m_bDlfuDynamicActive = random() % 4 == 0;
    p.m_bUnblockSuspended = random() % 8 == 0;
    p.m_bAlternateKeyAndUnblock = random() % 8 == 0;
    p.m_nUnblockViolators = static_cast<std::int8_t>(random() % (p.m_nUnblockFigures + 1));
    for (int i = 0; i < p.m_nUnblockViolators; ++i)
        p.m_unblockViolators[i] = p.m_unblockSquares[random() % p.m_nUnblockFigures];
    p.m_bDropQueenCheckEarly = coin();
    p.m_bDropPromotedEarly = coin();
    p.m_nMovableBlackFigures = random() % 4;
    p.m_nFfmFirstLevel = random() % 2 ? p.m_nFfmLevel : FFM_CHECK_ONLY;
    p.m_nFfmRelaxations = random() % 9;
    p.m_nFfmCustomRelaxations = random() % 9;
    p.m_nFfmWithOther = static_cast<std::int8_t>(static_cast<int>(random() % 3) - 1);
    p.m_bLetRelax = random() % 16 != 0;
    p.m_bEnableFallback = coin();
    p.m_bSaveFigureException = coin();
    p.m_bCaptureKnightFlag = coin();
    p.m_aTriangleFields[0] = random() % 64;
    p.m_aTriangleFields[1] = random() % 64;
    p.m_nCustomDataLevel = random() % 4;
    p.m_keyFigureSquare = RandomSquare(random);
    p.m_pinnedFigureSquare = RandomSquare(random);
    p.m_diagonalFigureSquare = RandomSquare(random);
    return set;
}

} // namespace corvina
