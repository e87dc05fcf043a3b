#ifndef CORVINA_SEARCH_ONECOLOURRUN_H
#define CORVINA_SEARCH_ONECOLOURRUN_H

#include "search/solverequest.h"

#include <vector>

namespace corvina
{

/// First moves of the root that mate by a run of its own on the game without Black's bishop
/// (heuristics/onecolour.h); one at most where the run looks for the first solution only. What a
/// game without a caged bishop shows counts when its proof has been walked in the real one. The
/// nested run has a register of its own and looks at a limited number of positions; a stop of the
/// outer run ends it. The root must carry the set of its run.
std::vector<TMove> FindOneColourMates(const TChessboard& root);

} // namespace corvina

#endif
