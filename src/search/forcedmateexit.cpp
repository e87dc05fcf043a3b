#include "search/forcedmateexit.h"

#include "chess/sides.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/lastmoves.h"
#include "heuristics/relaxpredicates.h"
#include "search/hooks.h"

namespace corvina
{
namespace
{

/// The heuristics about the place of the Black king that the second try does without.
constexpr std::uint32_t KING_PLACE =
    SH_ASSERTBLACKKINGSURROUNDED | SH_KEEPKINGWITHINEXTEDGE | SH_KEEPKINGONTHEEDGE;

TSquareSet BlackFigureSet(const TChessboard& b)
{
    return TSide<EColour::Black>::Figures(b.m_board) & ~TSets::Equal(b.m_board, BLACK_PAWN) &
           ~Bit(b.BlackKing());
}

/// White's last move took the last queen, or a figure when no pawn of Black is near promotion.
bool HasWonForGood(const TChessboard& child)
{
    constexpr TSquareSet NEAR_PROMOTION = 0xFFFFFF;
    const TFigure captured = CapturedFigure(child);
    if (captured == BLACK_QUEEN)
        return child.m_nBlackQueens == 0;
    return IsAbovePawn(captured) && !(TSets::Equal(child.m_board, BLACK_PAWN) & NEAR_PROMOTION);
}

void ReplaceHeuristics(TChessboard& child, std::uint32_t nDropped, std::uint32_t nAdded)
{
    child.m_nHeuristics = (child.m_nHeuristics & ~nDropped) | nAdded;
    child.m_nHeuristicsParams = ComputeHeurParams(child);
}

/// Lists the figure as one that must not leave its square.
void TieDown(THeuristicsParams& params, TSquare figure)
{
    const auto square = static_cast<std::int8_t>(figure);
    params.m_nUnblockFigures = 1;
    params.m_unblockSquares[0] = params.m_unblockSquaresAtRoot[0] = square;
    params.m_bDlfuDynamicActive = true;
}

} // namespace

TSetGuard::TSetGuard(TChessboard& board)
    : m_board(board), m_nHeuristics(board.m_nHeuristics),
      m_nHeuristicsParams(board.m_nHeuristicsParams), m_params(ContextOf(board))
{
}

TSetGuard::~TSetGuard()
{
    m_board.m_nHeuristics = m_nHeuristics;
    m_board.m_nHeuristicsParams = m_nHeuristicsParams;
    static_cast<THeuristicsParams&>(ContextOf(m_board)) = m_params;
}

bool LeavesForcedMate(const TChessboard& child)
{
    constexpr int MIN_PLIES = 2, NEAR_KINGS = 4, MIN_FORCE = 3;
    return child.m_nMoves >= MIN_PLIES && HasWonForGood(child) && WhiteMajors(child) >= 1 &&
           WhiteFigures(child) + (KingDistance(child) < NEAR_KINGS) >= MIN_FORCE &&
           (BlackFigures(child) == 0 || (BlackFigures(child) == 1 && !CanBlackFigureCheck(child)));
}

TSearchResult SearchAfterForcedMate(TChessboard& child)
{
    constexpr int LONG_TASK = 13;
    const TSetGuard guard(child);
    const bool bSkipWorst = WhiteMajors(child) >= 2 && child.m_nMoves > LONG_TASK;
    ReplaceHeuristics(child, SH_FINDFORCEDMATE, bSkipWorst ? SH_SKIPWORSTWHITEMOVES : 0);
    const TSearchResult nResult = SearchBlack<NODE_MAIN>(child);
    if (nResult == RESULT_MATE || !(child.m_nHeuristics & KING_PLACE))
        return nResult;
    std::uint32_t nAdded = SH_DONTLETPROMOTEDFIGUREMOVE | SH_SAVEQUEENROOK;
    if (const TSquareSet figures = BlackFigureSet(child)) {
        TieDown(ContextOf(child), LowestSquare(figures));
        nAdded |= SH_DONTLETFIGUREUNBLOCK;
    }
    ReplaceHeuristics(child, KING_PLACE, nAdded);
    return SearchBlack<NODE_MAIN>(child);
}

} // namespace corvina
