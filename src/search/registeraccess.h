#ifndef CORVINA_SEARCH_REGISTERACCESS_H
#define CORVINA_SEARCH_REGISTERACCESS_H

#include "chess/chessboard.h"
#include "search/result.h"

#include <cstdint>
#include <optional>

namespace corvina
{

/// The nodes' way to the temporary register of the run: when it is asked, how its answers count,
/// and what is stored.

/// The task is long enough for the register at all.
bool UsesRegister(const TChessboard& board);

/// What the register knows of a position with White to move: a result that ends the node, or
/// nothing. Sets the reason of doubt, and m_bAdditionalMovesUsed when the mate needs the additional
/// moves of the short mate search.
std::optional<TSearchResult> ProbeRegister(TChessboard& board);

/// Half-moves of the shortest mate that the register knows for certain, no more than the position
/// has left; 0: none.
int ShortestMateInRegister(TChessboard& board);

/// Stores that White mates, or does not, within nMoves half-moves. Nothing is stored of a thread
/// that is being stopped.
void StoreCertain(TChessboard& board, std::uint16_t nMoves, bool bMate);

/// Stores a failure under the heuristics of the board.
void StoreDoubtful(TChessboard& board, std::uint16_t nMoves);

} // namespace corvina

#endif
