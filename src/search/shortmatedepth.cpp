#include "search/shortmatedepth.h"

#include "chess/sides.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/kingsurroundings.h"
#include "search/solverequest.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// Half-moves of the longest short mate: one of seven moves, of six where less is to be expected.
constexpr int MAX_QUICKER_MATE = 13;
constexpr int MAX_UNLIKELY = 11;

/// The heuristics about the place of the Black king.
constexpr std::uint32_t KING_MASK = SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE |
                                    SH_DONTLETFIGUREUNBLOCK | SH_ASSERTBLACKKINGSURROUNDED;

/// Heuristics of zugzwang, under which a mate is seldom short.
constexpr std::uint32_t ZUGZWANG_MASK =
    SH_ZUGZWANG | SH_ONECOLORPLAYPOSSIBLE | SH_SWEEPINGWHITEROOK;

bool QueenReachesKing(const TChessboard& board)
{
    TSquareSet queens = TSets::Equal(board.m_board, WHITE_QUEEN);
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    while (queens) {
        const TSquare queen = PopLowestSquare(queens);
        TSquareSet zone = KingZone(board.BlackKing());
        while (zone) {
            const TSquare square = PopLowestSquare(zone);
            if (OnCommonLine(queen, square) && !(Between(queen, square) & occupied))
                return true;
        }
    }
    return false;
}

/// White has so much, or so little near the king, that a short mate is found early or not at all.
bool IsLongMateUnlikely(const TChessboard& board)
{
    constexpr int FAR_KINGS = 4;
    const int nFigures = WhiteFigures(board);
    if (board.m_nWhiteQueens >= 2 && nFigures >= 3)
        return true;
    if ((board.m_nHeuristics & KING_MASK) || board.m_nMoves >= board.m_nInitialMoves - 4)
        return false;
    return board.m_nWhiteQueens == 0 ||
           (nFigures == 1 && KingDistance(board) >= FAR_KINGS && !QueenReachesKing(board));
}

int CapUnderZugzwang(const TChessboard& board, int nMax)
{
    const std::uint32_t nMask = board.m_nHeuristics;
    if ((nMask & SH_ONECOLORPLAYPOSSIBLE) ||
        (board.m_nPositionFlags & TChessboard::POSITION_LONEBISHOP))
    {
        nMax = nMax / 2 + 3;
        if (!(nMax < board.m_nMoves && nMax < 8))
            nMax -= 2;
    }
    constexpr std::uint32_t EDGES =
        SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE | SH_ASSERTBLACKKINGSURROUNDED;
    if ((nMask & SH_ZUGZWANG) && !(nMask & EDGES))
        nMax = std::min(nMax, MAX_UNLIKELY);
    return nMax;
}

/// White's last move has taken Black's last queen, which hadn't just been promoted.
bool HasTakenLastQueen(const TChessboard& board)
{
    const TChessboard* pBeforeBlack = board.m_pParent;
    const TChessboard* pBeforeWhite = pBeforeBlack ? pBeforeBlack->m_pParent : nullptr;
    if (!pBeforeWhite || board.m_nBlackQueens != 0)
        return false;
    const TSquare target = pBeforeBlack->m_LastMove.m_to;
    const bool bPromoted =
        pBeforeWhite->m_LastMove.PromotionKind() != 0 && pBeforeWhite->m_LastMove.m_to == target;
    return pBeforeWhite->m_board[target] == BLACK_QUEEN && !bPromoted;
}

/// A queen more decides, in the time that is left.
int RaiseAfterQueenCapture(const TChessboard& board, int nMax)
{
    constexpr int GAIN = 6;
    const int nFigures = WhiteFigures(board);
    if (board.m_nMoves + 1 < 2 * nMax || !(board.m_nHeuristics & KING_MASK) ||
        board.m_nWhiteQueens == 0 || nFigures < 2 || nFigures > 3 || !HasTakenLastQueen(board))
        return nMax;
    nMax += GAIN;
    while (nMax > board.m_nMoves)
        nMax -= 2;
    return nMax;
}

/// Black has just promoted to a queen, and White's own pawn is as far.
bool IsPromotionRace(const TChessboard& board)
{
    constexpr TSquareSet ROW_BEFORE_LAST = TSquareSet{0xFF} << 48;
    return board.m_LastMove.PromotionKind() == KIND_QUEEN && board.m_pParent &&
           (TSets::Equal(board.m_board, WHITE_PAWN) & ROW_BEFORE_LAST) && WhiteFigures(board) <= 1;
}

/// White's queens are so many that a short mate is found early or not at all.
bool HasManyQueens(const TChessboard& board)
{
    constexpr int MANY_QUEENS = 3, MAX_FIGURES = 15;
    return board.m_nWhiteQueens >= MANY_QUEENS &&
           std::popcount(TSets::Occupied(board.m_board)) <= MAX_FIGURES;
}

/// Black's pseudo-legal moves other than those of his king; counts up to 2.
int CountBlackMovesWithoutKing(const TChessboard& board)
{
    TMoveList moves;
    TSquareSet figures = TSide<EColour::Black>::Figures(board.m_board) & ~Bit(board.BlackKing());
    int nMoves = 0;
    while (figures && nMoves < 2)
        nMoves += board.GenerateBlackFigureMoves(PopLowestSquare(figures), moves.data());
    return nMoves;
}

} // namespace

int ChooseQuickerMateDepth(const TChessboard& board)
{
    constexpr int MAX_WITH_MANY_QUEENS = 9, CLOSE_TO_FULL_DEPTH = 4;
    const int nRequested = board.m_pRequest->m_shLookForQuickerMateDepth;
    if (nRequested >= 0)
        return nRequested;
    const int d = board.m_nMoves;
    const std::uint32_t nMask = board.m_nHeuristics;
    // A rook that sweeps drives the king down to the first row: that takes all moves there are.
    const bool bSweeps = (nMask & SH_SWEEPINGWHITEROOK) && board.m_blackKingRow != 0 &&
                         ContextOf(board).m_nQuickerMateNesting <= 1;
    int nMax = std::min(bSweeps ? d : d - 1, MAX_QUICKER_MATE);
    if (nMask && !(board.m_nPositionFlags & TChessboard::POSITION_MANYFIGURES) &&
        IsLongMateUnlikely(board))
        nMax = std::min(nMax, MAX_UNLIKELY);
    if (nMask & ZUGZWANG_MASK)
        nMax = CapUnderZugzwang(board, nMax);
    if (board.m_nPositionFlags & TChessboard::POSITION_PINNEDROOK)
        nMax = std::min(nMax, MAX_UNLIKELY);
    if ((board.m_boardFlags & TChessboard::FLAG_SHORTMATECAP) && !(nMask & SH_ZUGZWANG))
        nMax = std::min<int>(nMax, ContextOf(board).m_nShortMateCap);
    if (HasManyQueens(board))
        nMax = std::min(nMax, MAX_WITH_MANY_QUEENS);
    nMax = RaiseAfterQueenCapture(board, nMax);
    if (nMax <= MAX_QUICKER_MATE && IsPromotionRace(board))
        nMax += 2;
    constexpr std::uint32_t DEEP_MASK = SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE |
                                        SH_DONTLETFIGUREUNBLOCK | SH_FINDFORCEDMATE |
                                        SH_ASSERTBLACKKINGSURROUNDED | SH_SEASNAKE;
    if (!(nMask & DEEP_MASK) && nMax >= MAX_QUICKER_MATE && d - nMax <= CLOSE_TO_FULL_DEPTH &&
        board.m_nWhiteQueens)
        nMax -= 2;
    return nMax;
}

int PickQuickerMateDepth(const TChessboard& board)
{
    constexpr int MIN_FREE_CHOICE = 14, MAX_BLOCKED = 5, MAX_BLOCKED_LONE_FIGURE = 3;
    const int nRequested = board.m_pRequest->m_shLookForQuickerMateDepth;
    const int d = board.m_nMoves;
    if (nRequested > 3 || d >= MIN_FREE_CHOICE)
        return nRequested;
    if (d <= 3)
        return 0;
    if (d > MAX_BLOCKED && CountBlackMovesWithoutKing(board) <= (board.m_nWhiteQueens ? 1 : 0))
        return WhiteFigures(board) > 1 ? MAX_BLOCKED : MAX_BLOCKED_LONE_FIGURE;
    return d >= 7 ? 3 : 1;
}

} // namespace corvina
