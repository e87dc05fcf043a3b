#include "search/proofwalk.h"

#include "search/line.h"
#include "search/registeraccess.h"
#include "search/shortmate.h"

namespace corvina
{

bool IsExactMate(TChessboard& board)
{
    return board.m_nMoves == EXACT_PLIES ? IsMateInTwo(board, false) : IsMateInOne(board);
}

bool TProofWalk::HoldsAtWhite(TChessboard& board)
{
    if (IsExactMate(board))
        return true;
    if (board.m_nMoves <= EXACT_PLIES)
        return false;
    if (m_proved.Has(board))
        return true;
    const int nIndex = MatingMove(board);
    if (nIndex != SHORT_MATE ? !HoldsAfter(board, nIndex) : !IsMateInTwo(board, false))
        return false;
    m_proved.Add(board);
    if (m_bRegister && IsRegisterable(board))
        StoreCertain(board, board.m_nMoves, true);
    return true;
}

bool TProofWalk::HoldsAfter(TChessboard& board, int nIndex)
{
    TMoveList moves;
    if (nIndex < 0 || nIndex >= board.GenerateWhiteMoves(moves.data()))
        return false;
    TChessboard& child = m_context.MakeChild(board);
    return child.MakeWhiteMove(&moves[nIndex]) && HoldsAtBlack(child);
}

bool TProofWalk::HoldsAtBlack(TChessboard& board)
{
    TMoveList moves;
    const int nMoves = board.GenerateBlackMoves(moves.data());
    bool bHasReply = false;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = m_context.MakeChild(board);
        if (!child.MakeBlackMove(&moves[i]))
            continue;
        ++m_context.m_nPositions;
        bHasReply = true;
        if (m_request.IsStopped(m_context.m_nThreadId) || !HoldsAtWhite(child))
            return false;
    }
    return bHasReply || board.m_blackChecker != NO_CHECK;
}

std::optional<TMove> TProofWalk::Walk(TChessboard& root)
{
    const int nIndex = MatingMove(root);
    if (!HoldsAfter(root, nIndex))
        return std::nullopt;
    TMoveList moves;
    root.GenerateWhiteMoves(moves.data());
    return moves[nIndex];
}

} // namespace corvina
