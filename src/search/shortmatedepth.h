#ifndef CORVINA_SEARCH_SHORTMATEDEPTH_H
#define CORVINA_SEARCH_SHORTMATEDEPTH_H

#include "chess/chessboard.h"

namespace corvina
{

/// How far the search for a short mate looks at a position with White to move. These choices change
/// time, never a result.

/// Half-moves of the longest mate that it looks for; what the request asks for comes first.
int ChooseQuickerMateDepth(const TChessboard& board);

/// The depth by which the last pass looks for a short mate; 0: it doesn't, -1: by the free choice.
/// Where Black has hardly a move but those of his king, short mates are worth a longer look. At
/// other nodes near the leaves one short test pays, and a longer one is as dear as the node.
int PickQuickerMateDepth(const TChessboard& board);

} // namespace corvina

#endif
