#ifndef CORVINA_HEURISTICS_TEMPO_H
#define CORVINA_HEURISTICS_TEMPO_H

#include "heuristics/zugzwangmap.h"

/// Who has a harmless move left: what the analyses of zugzwang positions ask.

namespace corvina
{

/// White, to move, has a quiet move other than the king's that loses nothing and lets no further
/// man of Black move: he need not lose a tempo with his king.
bool HasWhiteTempo(const TChessboard& board);

/// Makes a legal move of White on a copy of the root that has no line of its own. False: illegal.
/// In `after` White is to move again, as if Black had passed.
bool PlayWithoutLine(const TChessboard& root, TMove move, TChessboard& after);

/// The map is empty, or has the move.
bool IsOnMap(const TZugzwangMap& map, const TMove& move);

} // namespace corvina

#endif
