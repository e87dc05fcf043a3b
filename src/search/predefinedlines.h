#ifndef CORVINA_SEARCH_PREDEFINEDLINES_H
#define CORVINA_SEARCH_PREDEFINEDLINES_H

#include "search/solverequest.h"

namespace corvina
{

/// Adds what the tables of the run know of its position to the sort indications: the lines of the
/// solution and White's moves by their numbers, behind those of the problem; and the moves of the
/// positions that come up further down. They concern the order of moves alone. Throws
/// ChessException for a text that is no line or no indication, or that the position doesn't allow;
/// what stands in front of it has been added.
void ApplyPredefinedLines(TSolveRequest& request);

} // namespace corvina

#endif
