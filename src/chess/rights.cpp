#include "chess/linecontext.h"
#include "chess/sides.h"

#include <cstring>

namespace corvina
{
namespace
{

/// Squares that were the destination of a move between the root and the record. Passing is no move.
TSquareSet Destinations(const TChessboard& board)
{
    TSquareSet set = 0;
    for (const TChessboard* p = &board; p->m_pParent; p = p->m_pParent) {
        if (!p->m_LastMove.IsNull())
            set |= Bit(p->m_LastMove.m_to);
    }
    return set;
}

template <EColour C>
int CastlingRights(const TChessboard& board)
{
    using S = TSide<C>;
    using K = TCastling<C>;
    if (board.m_board[K::KING] != S::KING)
        return 0;
    const bool bShort = board.m_board[K::SHORT_CORNER] == S::ROOK;
    const bool bLong = board.m_board[K::LONG_CORNER] == S::ROOK;
    if (!bShort && !bLong)
        return 0;
    const std::uint8_t* pRoot = board.GetRootBoard().m_board;
    if (pRoot[K::KING] != S::KING)
        return 0;
    // A king or rook that left its square can only stand there again by moving to it, and the
    // corner of a captured rook was the destination of the capture.
    const TSquareSet touched = Destinations(board);
    if (touched & Bit(K::KING))
        return 0;
    int nRights = 0;
    if (bShort && pRoot[K::SHORT_CORNER] == S::ROOK && !(touched & Bit(K::SHORT_CORNER)))
        nRights |= CASTLING_SHORT;
    if (bLong && pRoot[K::LONG_CORNER] == S::ROOK && !(touched & Bit(K::LONG_CORNER)))
        nRights |= CASTLING_LONG;
    return nRights;
}

bool IsPawnMoveOrCapture(const TChessboard& board)
{
    const TMove& move = board.m_LastMove;
    const std::uint8_t* pBefore = board.m_pParent->m_board;
    return (pBefore[move.m_from] & KIND_MASK) == KIND_PAWN ||
           (!move.IsNull() && pBefore[move.m_to] != NO_FIGURE);
}

bool BlackMayCastleByLook(const TChessboard& board)
{
    using K = TCastling<EColour::Black>;
    return board.m_board[K::KING] == BLACK_KING && (board.m_board[K::SHORT_CORNER] == BLACK_ROOK ||
                                                    board.m_board[K::LONG_CORNER] == BLACK_ROOK);
}

bool IsSamePosition(const TChessboard& a, const TChessboard& b)
{
    if (std::memcmp(a.m_board, b.m_board, sizeof a.m_board) != 0)
        return false;
    return !BlackMayCastleByLook(a) ||
           CastlingRights<EColour::Black>(a) == CastlingRights<EColour::Black>(b);
}

} // namespace

const TChessboard& TChessboard::GetRootBoard() const
{
    if (m_pThread && m_pThread->m_pRootBoard)
        return *m_pThread->m_pRootBoard;
    const TChessboard* p = this;
    while (p->m_pParent)
        p = p->m_pParent;
    return *p;
}

int TChessboard::GetCastlingRights(bool bWhite) const
{
    return bWhite ? CastlingRights<EColour::White>(*this) : CastlingRights<EColour::Black>(*this);
}

TSquare TChessboard::DoubleSteppedPawn() const
{
    if (!m_pParent || Abs(m_LastMove.m_to - m_LastMove.m_from) != 16 ||
        (m_board[m_LastMove.m_to] & KIND_MASK) != KIND_PAWN)
        return NO_SQUARE;
    return m_LastMove.m_to;
}

const TChessboard* TChessboard::FindEarlierOccurrence() const
{
    const TChessboard* p = this;
    while (p->m_pParent && p->m_pParent->m_pParent) {
        if (IsPawnMoveOrCapture(*p) || IsPawnMoveOrCapture(*p->m_pParent))
            return nullptr;
        p = p->m_pParent->m_pParent;
        if (IsSamePosition(*this, *p))
            return p;
    }
    return nullptr;
}

} // namespace corvina
