#include "search/guides/proofwalk.h"

#include "search/line.h"
#include "search/registeraccess.h"
#include "search/shortmate.h"

#include <algorithm>

namespace corvina
{

bool IsExactMate(TChessboard& board)
{
    return board.m_nMoves == EXACT_PLIES ? IsMateInTwo(board, false) : IsMateInOne(board);
}

int TProofWalk::MateAtWhite(TChessboard& board)
{
    if (IsExactMate(board))
        return board.m_nMoves == EXACT_PLIES ? EXACT_PLIES : 1;
    if (board.m_nMoves <= EXACT_PLIES)
        return NO_MATE;
    if (const int nKnown = m_proved.Find(board))
        return nKnown;
    const int nIndex = MatingMove(board);
    int nMate = NO_MATE;
    if (nIndex != SHORT_MATE)
        nMate = MateAfter(board, nIndex);
    else if (IsMateInTwo(board, false))
        nMate = EXACT_PLIES;
    if (nMate == NO_MATE)
        return NO_MATE;
    m_proved.Add(board, nMate);
    if (!IsRegisterable(board))
        m_request.m_matesBesideRegister.Add(board, static_cast<std::uint16_t>(nMate));
    else if (m_bRegister)
        StoreCertain(board, static_cast<std::uint16_t>(nMate), true);
    return nMate;
}

int TProofWalk::MateAfter(TChessboard& board, int nIndex)
{
    TMoveList moves;
    if (nIndex < 0 || nIndex >= board.GenerateWhiteMoves(moves.data()))
        return NO_MATE;
    TChessboard& child = m_context.MakeChild(board);
    const int nMate = child.MakeWhiteMove(&moves[nIndex]) ? MateAtBlack(child) : NO_MATE;
    return nMate == NO_MATE ? NO_MATE : nMate + 1;
}

int TProofWalk::MateAtBlack(TChessboard& board)
{
    TMoveList moves;
    const int nMoves = board.GenerateBlackMoves(moves.data());
    int nLongest = NO_MATE;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = m_context.MakeChild(board);
        if (!child.MakeBlackMove(&moves[i]))
            continue;
        ++m_context.m_nPositions;
        const int nMate = m_request.IsStopped(m_context.m_nThreadId) ? NO_MATE : MateAtWhite(child);
        if (nMate == NO_MATE)
            return NO_MATE;
        nLongest = std::max(nLongest, nMate + 1);
    }
    if (nLongest != NO_MATE)
        return nLongest;
    return board.m_blackChecker != NO_CHECK ? 0 : NO_MATE;
}

int TProofWalk::ShortMateAt(TChessboard& root)
{
    const std::uint16_t nDepth = root.m_nMoves;
    root.m_nMoves = std::min<std::uint16_t>(nDepth, EXACT_PLIES);
    TMoveList moves;
    const int nMoves = root.GenerateWhiteMoves(moves.data());
    int nIndex = 0;
    while (nIndex < nMoves && MateAfter(root, nIndex) == NO_MATE)
        ++nIndex;
    root.m_nMoves = nDepth;
    return nIndex < nMoves ? nIndex : NO_ANSWER;
}

std::optional<TMove> TProofWalk::Walk(TChessboard& root)
{
    int nIndex = MatingMove(root);
    if (nIndex == SHORT_MATE)
        nIndex = ShortMateAt(root);
    if (MateAfter(root, nIndex) == NO_MATE)
        return std::nullopt;
    TMoveList moves;
    root.GenerateWhiteMoves(moves.data());
    return moves[nIndex];
}

} // namespace corvina
