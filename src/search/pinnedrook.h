#ifndef CORVINA_SEARCH_PINNEDROOK_H
#define CORVINA_SEARCH_PINNEDROOK_H

#include "chess/chessboard.h"

#include <optional>

namespace corvina
{

/// White's queen holds the Black king by the pin of a rook next to him: White can wait until Black
/// has nothing left but a move that loses. Looks for that zugzwang: were Black to move, and his
/// pawns not, is he mated in 2, 4 ... half-moves? Since a pass of White proves nothing, a mate
/// found there is confirmed by a search of the real position, with as many moves more as the pawns
/// have. Returns the half-moves within which White then mates, no more than the record has left;
/// nothing: it was not shown. White is to move. Marks the record with POSITION_PINNEDROOK when
/// there is such a zugzwang, and leaves it as it was otherwise.
std::optional<int> SolveByPinnedRook(TChessboard& board);

/// The position is one for SolveByPinnedRook, and long enough (m_nMinPinnedRookPlies).
bool HasPinnedRook(TChessboard& board);

/// White's first move of the root behind the same, or nothing.
std::optional<TMove> FindPinnedRookMate(TChessboard& root);

} // namespace corvina

#endif
