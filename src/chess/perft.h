#ifndef CORVINA_CHESS_PERFT_H
#define CORVINA_CHESS_PERFT_H

#include "chess/chessboard.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace corvina
{

/// Number of lines of nDepth legal moves, each move made on a record of its own, the last one
/// included. The record needs m_nMoves of at least nDepth, whose parity tells the side to move, and
/// a thread with room for it.
std::uint64_t Perft(TChessboard& board, int nDepth);

/// The same for each legal move, in the order of generation.
std::vector<std::pair<TMove, std::uint64_t>> PerftDivide(TChessboard& board, int nDepth);

} // namespace corvina

#endif
