#ifndef CORVINA_SEARCH_SHORTMATE_H
#define CORVINA_SEARCH_SHORTMATE_H

#include "chess/chessboard.h"
#include "search/nodes.h"

/// Mates in a few moves: the tests at the leaves, and the search for a short mate that goes ahead
/// of the full one. White is to move; the record stands on the stack of a search context, or is its
/// root, and is left as it was.

namespace corvina
{

/// White has a mating move. m_nMoves doesn't matter; no slot of the stack is written.
bool IsMateInOne(TChessboard& board);

/// White mates in two moves. m_nMoves is at least 3. bProbeRegister: the caller hasn't asked the
/// register yet.
bool IsMateInTwo(TChessboard& board, bool bProbeRegister = true);

/// White mates in three moves. m_nMoves is at least 5.
bool IsMateInThree(TChessboard& board);

/// Black, with 2 half-moves left, can prevent that White mates at once: RESULT_NO_MATE; else
/// RESULT_MATE.
TSearchResult SearchLastReplies(TChessboard& board);

/// White mates within the depth that is chosen for the position, always below m_nMoves unless the
/// request gives the depth.
bool LookForQuickerMate(TChessboard& board);

/// A search of a position with White to move for a mate within its half-moves; the flag as for
/// SearchWhite.
using TWhiteSearch = TSearchResult (*)(TChessboard& board, bool bProbeRegister);

/// The same with the depth fixed at 2 * nMoves - 1 half-moves, by this search.
bool LookForQuickerMateN(TChessboard& board, int nMoves,
                         TWhiteSearch pSearch = SearchWhite<NODE_MAIN>);

/// The short mate search of the last pass, with the depth that suits the position.
bool LookForQuickerMateInLastPass(TChessboard& board);

} // namespace corvina

#endif
