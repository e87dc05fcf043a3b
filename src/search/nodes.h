#ifndef CORVINA_SEARCH_NODES_H
#define CORVINA_SEARCH_NODES_H

#include "chess/chessboard.h"
#include "search/result.h"

namespace corvina
{

/// The two nodes of the main search. SearchWhite asks whether White, who is to move, forces mate
/// within m_nMoves half-moves (odd), SearchBlack whether mate follows against every reply of Black
/// (even). They call each other down to the leaves.
///
/// The record is on the stack of its thread's context, or is the thread's root; its request is set.
/// A stop of the run makes "no mate" of every open question.

/// The kinds of the nodes.
constexpr int NODE_MAIN = 0;           ///< the main search
constexpr int NODE_DEFENCE = 1;        ///< first levels of the search for Black's best defence
constexpr int NODE_DEFENCE_DEEPER = 2; ///< its deeper levels

/// bProbeRegister: the caller hasn't asked the register for the position yet.
template <int nKind>
TSearchResult SearchWhite(TChessboard& board, bool bProbeRegister = true);

template <int nKind>
TSearchResult SearchBlack(TChessboard& board);

extern template TSearchResult SearchWhite<NODE_MAIN>(TChessboard&, bool);
extern template TSearchResult SearchBlack<NODE_MAIN>(TChessboard&);
extern template TSearchResult SearchBlack<NODE_DEFENCE>(TChessboard&);
extern template TSearchResult SearchWhite<NODE_DEFENCE_DEEPER>(TChessboard&, bool);
extern template TSearchResult SearchBlack<NODE_DEFENCE_DEEPER>(TChessboard&);

} // namespace corvina

#endif
