#include "chess/perft.h"

#include "chess/linecontext.h"

namespace corvina
{
namespace
{

bool MakeUserMove(TChessboard& child, TMove* pMove, bool bWhite)
{
    return bWhite ? child.MakeWhiteUserMove(pMove) : child.MakeBlackUserMove(pMove);
}

} // namespace

std::uint64_t Perft(TChessboard& board, int nDepth)
{
    if (nDepth == 0)
        return 1;
    TMoveList moves;
    const bool bWhite = board.IsWhiteToMove();
    const int nMoves =
        bWhite ? board.GenerateWhiteMoves(moves.data()) : board.GenerateBlackMoves(moves.data());
    std::uint64_t nLines = 0;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = board.m_pThread->MakeChild(board);
        if (MakeUserMove(child, &moves[i], bWhite))
            nLines += Perft(child, nDepth - 1);
    }
    return nLines;
}

std::vector<std::pair<TMove, std::uint64_t>> PerftDivide(TChessboard& board, int nDepth)
{
    std::vector<std::pair<TMove, std::uint64_t>> result;
    TMoveList moves;
    const bool bWhite = board.IsWhiteToMove();
    const int nMoves =
        bWhite ? board.GenerateWhiteMoves(moves.data()) : board.GenerateBlackMoves(moves.data());
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = board.m_pThread->MakeChild(board);
        if (MakeUserMove(child, &moves[i], bWhite))
            result.emplace_back(moves[i], Perft(child, nDepth - 1));
    }
    return result;
}

} // namespace corvina
