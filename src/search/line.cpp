#include "search/line.h"

#include "chess/sides.h"
#include "search/solverequest.h"

#include <cstring>

namespace corvina
{
namespace
{

template <EColour C>
bool CanCaptureEnPassant(const TChessboard& b)
{
    using S = TSide<C>;
    const TSquare pawn = b.DoubleSteppedPawn();
    if (pawn == NO_SQUARE)
        return false;
    const std::int8_t checker = S::Checker(b);
    if (checker != NO_CHECK && checker != pawn)
        return false;
    for (const int side : {-1, 1}) {
        if (IsOnBoard(FileOf(pawn) + side, 0) && b.m_board[pawn + side] == S::PAWN)
            return true;
    }
    return false;
}

/// The castlings that the squares alone suggest are the ones that are allowed.
template <EColour C>
bool LooksLikeItsCastlingRights(const TChessboard& b)
{
    using S = TSide<C>;
    using K = TCastling<C>;
    if (b.m_board[K::KING] != S::KING)
        return true;
    const int nLooks = (b.m_board[K::SHORT_CORNER] == S::ROOK ? CASTLING_SHORT : 0) |
                       (b.m_board[K::LONG_CORNER] == S::ROOK ? CASTLING_LONG : 0);
    return nLooks == 0 || nLooks == b.GetCastlingRights(S::IS_WHITE);
}

/// Nodes with fewer plies left search a repetition out instead of ending the line.
constexpr int MIN_REPETITION_DEPTH = 14;

/// The shortest cycle: two moves of each side.
constexpr int SHORTEST_CYCLE = 4;

/// In the last pass, or in safe mode: the occurrences lie close together, or the position stands
/// for the third time. nDepth is that of the node before the move.
bool CountsWithoutHeuristics(const TChessboard& child, const TChessboard& earlier, int nDepth)
{
    if (nDepth < MIN_REPETITION_DEPTH)
        return false;
    if (nDepth > MIN_REPETITION_DEPTH + 1)
        return true;
    const bool bClose = earlier.m_nMoves - child.m_nMoves <= SHORTEST_CYCLE;
    return (bClose && ContextOf(child).m_nQuickerMateNesting == 0) ||
           earlier.FindEarlierOccurrence() != nullptr;
}

} // namespace

bool IsRegisterable(const TChessboard& board)
{
    if (!board.m_pParent)
        return true;
    if (board.IsWhiteToMove() ? CanCaptureEnPassant<EColour::White>(board)
                              : CanCaptureEnPassant<EColour::Black>(board))
        return false;
    return LooksLikeItsCastlingRights<EColour::White>(board) &&
           LooksLikeItsCastlingRights<EColour::Black>(board);
}

bool MayRepetitionsCount(const TChessboard& board)
{
    return board.m_nMoves >= MIN_REPETITION_DEPTH ||
           (board.m_nPass < 2 && !board.m_pRequest->m_bSafeMode);
}

std::uint16_t CountingRepetition(const TChessboard& child)
{
    const TChessboard* pEarlier = child.FindEarlierOccurrence();
    if (!pEarlier)
        return 0;
    const TSolveRequest& request = *child.m_pRequest;
    if (((pEarlier->m_nMoves ^ child.m_nMoves) & 1) ||
        pEarlier->m_nMoves > request.m_nShortestRepetitionDepth)
        return 0;
    const bool bQuick = child.m_nPass < 2 && !request.m_bSafeMode;
    return bQuick || CountsWithoutHeuristics(child, *pEarlier, child.m_nMoves + 1)
               ? pEarlier->m_nMoves
               : std::uint16_t{0};
}

} // namespace corvina
