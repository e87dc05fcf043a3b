#ifndef CORVINA_CHESS_REPLIES_H
#define CORVINA_CHESS_REPLIES_H

#include "chess/chessboard.h"

namespace corvina
{

/// Calls holds(child, move) on the position after each legal reply of Black, in the order of
/// generation, up to the first one for which it answers false. True when it never does.
/// *pbHasReply: there was a legal reply. The children are kept apart from the thread's stack.
template <class F>
bool HoldsForEachReply(TChessboard& board, bool* pbHasReply, F holds)
{
    TMoveList moves;
    const int nMoves = board.GenerateBlackMoves(moves.data());
    *pbHasReply = false;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard child = board;
        child.m_pParent = &board;
        if (!child.MakeBlackMove(&moves[i]))
            continue;
        *pbHasReply = true;
        if (!holds(child, moves[i]))
            return false;
    }
    return true;
}

} // namespace corvina

#endif
