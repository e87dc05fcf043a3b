#ifndef CORVINA_SEARCH_LINE_H
#define CORVINA_SEARCH_LINE_H

#include "chess/chessboard.h"

namespace corvina
{

/// The registers know a position by its 64 squares alone: one in which a capture en passant is
/// possible, or that looks as if a king could castle when it can't, must stay out of them.
bool IsRegisterable(const TChessboard& board);

/// Can a repetition count at all after a move of the node?
bool MayRepetitionsCount(const TChessboard& board);

/// m_nMoves of the earlier occurrence of the position after a move that ends the line: a
/// repetition that counts. 0 when there is none. Before the last pass, in quick mode, every
/// repetition counts; otherwise near the leaves none, where it can be searched out.
std::uint16_t CountingRepetition(const TChessboard& child);

} // namespace corvina

#endif
