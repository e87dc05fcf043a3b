#ifndef CORVINA_APP_MIRROR_H
#define CORVINA_APP_MIRROR_H

#include "problems/problem.h"

namespace corvina
{

/// A king and a rook of one colour stand as for castling, or as the mirror image of that.
bool IsCastlingPossible(const TChessboard& board);

/// Replaces a problem by its image left to right: the position, which must be the start position,
/// the expected moves, the sort indications and the variants. Twice gives the same problem.
void MirrorProblem(TProblem& problem);

} // namespace corvina

#endif
