#include "heuristics/forcedmate.h"

#include "heuristics/attacksets.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/relaxpredicates.h"

#include <algorithm>
#include <bit>

namespace corvina
{

namespace
{

using W = TSide<EColour::White>;

TSquareSet Figures(const TChessboard& b)
{
    return W::Figures(b.m_board) & ~TSets::Equal(b.m_board, WHITE_PAWN) & ~Bit(b.WhiteKing());
}

/// White figures that stand off the two rings of squares around the Black king and attack none of
/// its squares.
int CountFiguresAway(const TChessboard& b)
{
    constexpr int NEAR = 2;
    const TSquareSet occupied = TSets::Occupied(b.m_board);
    TSquareSet figures = Figures(b);
    int nAway = 0;
    while (figures) {
        const TSquare from = PopLowestSquare(figures);
        const TFigure kind = b.m_board[from] & KIND_MASK;
        nAway += Distance(from, b.BlackKing()) > NEAR &&
                 !(AttacksOf<EColour::White>(kind, from, occupied) & KingZone(b.BlackKing()));
    }
    return nAway;
}

/// White's rooks, bishops and knights that attack a square next to the Black king.
int CountLineGuards(const TChessboard& b)
{
    const TSquareSet occupied = TSets::Occupied(b.m_board);
    TSquareSet figures = Figures(b) & ~TSets::Equal(b.m_board, WHITE_QUEEN);
    int nGuards = 0;
    while (figures) {
        const TSquare from = PopLowestSquare(figures);
        const TFigure kind = b.m_board[from] & KIND_MASK;
        nGuards += (AttacksOf<EColour::White>(kind, from, occupied) & KingZone(b.BlackKing())) != 0;
    }
    return nGuards;
}

/// Queens and rooks with a whole file or row before them, or that reach the king's squares.
int CountOpenMajors(const TChessboard& b)
{
    constexpr int OPEN_LINE = 10;
    const TSquareSet occupied = TSets::Occupied(b.m_board);
    TSquareSet majors = TSets::Having(b.m_board, W::LINE_MASK);
    int nOpen = 0;
    while (majors) {
        const TSquareSet reach = RookAttacks(PopLowestSquare(majors), occupied);
        nOpen += (reach & KingZone(b.BlackKing())) != 0 || std::popcount(reach) >= OPEN_LINE;
    }
    return nOpen;
}

int CountBlackPawnsOnRows(const TChessboard& b, int nRows)
{
    return std::popcount(TSets::Equal(b.m_board, BLACK_PAWN) & ((TSquareSet{1} << 8 * nRows) - 1));
}

} // namespace

bool IsForcedMateType(const TChessboard& board)
{
    TChessboard trial = board;
    trial.m_pThread = nullptr;
    TMoveList moves;
    const int nMoves = trial.GenerateWhiteMoves(moves.data());
    return std::any_of(moves.data(), moves.data() + nMoves, [&](TMove move) {
        TChessboard child = trial;
        child.m_pParent = &trial;
        return child.MakeWhiteMove(&move) && child.m_blackChecker != NO_CHECK;
    });
}

bool IsForcedMateWithOther(const TChessboard& board, int nWhiteMaterial, int nBlackMaterial,
                           int nFreeSquares)
{
    constexpr int MAX_FREE = 3, MAX_AWAY = 2;
    return IsBlackKingOnEdge(board) && nFreeSquares <= MAX_FREE &&
           nBlackMaterial >= nWhiteMaterial && CountFiguresAway(board) <= MAX_AWAY &&
           (nFreeSquares <= 1 || CountLineGuards(board) > 0);
}

void ApplyFfmWithOther(const TChessboard& board, THeuristicsParams& params)
{
    constexpr int CLOSE_KINGS = 2, MANY_FREE_IN_BOX = 3;
    const int w = WhiteMaterial(board), b = BlackMaterial(board);
    const int nFigures = WhiteFigures(board);
    params.m_nFfmWithOther = FFM_OTHERS_APPLY;
    params.m_nFfmLevel = params.m_nFfmFirstLevel = FFM_THREAT_1;
    params.m_nFfmRelaxations = 0;
    const bool bClose = KingDistance(board) == CLOSE_KINGS;
    if (b / 2 < w) {
        if (w + w / 2 <= b && nFigures < 3 && bClose)
            params.m_nFfmRelaxations = 2;
    }
    else if (WhiteMajors(board) == 0 && bClose && 2 * w + w / 2 < b && FreeKingSquares(board) == 0)
    {
        params.m_nFfmRelaxations = 3;
        return;
    }
    if (nFigures == 1 && CountLineGuards(board) > 0 && CountFreeInBox(board, 2) > MANY_FREE_IN_BOX)
        params.m_nFfmRelaxations = 1;
}

void MakeForcedMateCustom(const TChessboard& board, THeuristicsParams& params)
{
    constexpr int NEAR_KINGS = 4, FEW_RELAXATIONS = 3, GREAT_MATERIAL = 25, MANY_PAWNS = 3;
    if (!(board.m_nHeuristics & SH_KEEPKINGONTHEEDGE) || !IsBlackKingOnEdge(board) ||
        WhiteFigures(board) > 2 || KingDistance(board) >= NEAR_KINGS)
        return;
    params.m_bFfmCustom = true;
    params.m_nFfmCustomRelaxations = params.m_nFfmRelaxations;
    if (params.m_nFfmCustomRelaxations < FEW_RELAXATIONS &&
        (board.m_nHeuristics & (SH_DONTRECEDEBLACKKING | SH_DONTLETPROMOTEDFIGUREMOVE)) &&
        BlackMaterial(board) >= GREAT_MATERIAL && CountBlackPawnsOnRows(board, 2) >= MANY_PAWNS)
        params.m_nFfmCustomRelaxations = FEW_RELAXATIONS;
}

int SuggestFfmSettings(const TChessboard& board, int nWhiteMaterial, int nBlackMaterial,
                       int nFreeSquares)
{
    constexpr int GREAT_LEAD = 9, MANY_FREE = 3;
    const int nOpen = CountOpenMajors(board);
    const int nGuards = CountKingGuards(board);
    // Nothing bears on the king, or White can take its time.
    if (nOpen + nGuards == 0 || nWhiteMaterial >= nBlackMaterial + GREAT_LEAD)
        return 0;
    if (nBlackMaterial >= nWhiteMaterial) {
        if (nFreeSquares > MANY_FREE)
            return nOpen > 0 ? 2 : 0;
        return nFreeSquares <= 1 ? 4 : 3;
    }
    return nFreeSquares <= MANY_FREE && nOpen > 0 ? 2 : 0;
}

void ApplyFfmSettings(const TChessboard& board, int nCode, THeuristicsParams& params)
{
    const int nLow = nCode & 0xFF, nHigh = nCode >> 8 & 0xFF;
    int nBase = FFM_CHECK_ONLY, nRelaxations = 0;
    if (nLow >= 2) {
        nRelaxations = nLow - 1 > 1 || nHigh != 0 ? nLow : nLow - 1;
        nBase = HasLongQuietLines(board) ? FFM_THREAT_1 : FFM_CHECK_ONLY;
    }
    const int nLevel = std::min<int>(nBase + nHigh, FFM_THREAT_5);
    if (nLevel == FFM_THREAT_1 && nRelaxations == 4)
        nRelaxations = 3;
    params.m_bFfmAddCaptures = true;
    params.m_nFfmWithOther = FFM_OTHERS_NEAR_THE_END;
    params.m_nFfmLevel = params.m_nFfmFirstLevel = static_cast<std::uint8_t>(nLevel);
    params.m_nFfmRelaxations =
        static_cast<std::uint8_t>(std::min<int>(nRelaxations, FFM_THREAT_5 - nLevel));
}

void BeginPreliminaryRun(TChessboard& board, THeuristicsParams& params)
{
    if (!params.m_bFfmPreliminary || !(board.m_nHeuristics & SH_FINDFORCEDMATE))
        return;
    if (params.m_savedFfmMask == 0)
        params.m_savedFfmMask = board.m_nHeuristics;
    board.m_nHeuristics &= ~(SH_KEEPKINGONTHEEDGE | SH_ASSERTBLACKKINGSURROUNDED);
    board.m_nHeuristics |= SH_KEEPKINGWITHINEXTEDGE;
}

} // namespace corvina
