#ifndef CORVINA_SEARCH_PLAINSEARCH_H
#define CORVINA_SEARCH_PLAINSEARCH_H

#include "chess/chessboard.h"

#include <cstdint>

namespace corvina
{

/// The plain recursion: no position is remembered and nothing is cut, so that its answers are the
/// yardstick for every faster search. Only the reply that has refuted the last attempt comes first.
///
/// Results: 1 mate is forced within m_nMoves half-moves, 0 it is not. A run that is stopped
/// meanwhile makes 0 of every open question; 1 is a proof all the same.
///
/// The record is on the stack of its thread's context or is the thread's root; its request is set.

/// White is to move, with an odd number of half-moves left.
std::int8_t PlainSearchWhite(TChessboard& board);

/// Black is to move, with an even number of half-moves left.
std::int8_t PlainSearchBlack(TChessboard& board);

} // namespace corvina

#endif
