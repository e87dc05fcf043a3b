#ifndef CORVINA_SEARCH_VERIFY_H
#define CORVINA_SEARCH_VERIFY_H

#include "search/solverequest.h"

#include <cstdint>
#include <vector>

namespace corvina
{

/// What the check of a key has shown.
struct TVerification
{
    bool m_bHolds = false;              ///< mate follows against every defence, all of them walked
    bool m_bStopped = false;            ///< ended by a stop of the run before it was done
    std::uint64_t m_nPositions = 0;     ///< different positions of the proof, White to move
    std::uint64_t m_nMates = 0;         ///< lines that were followed to the mate
    std::vector<TMove> m_vecRefutation; ///< without a proof: the line at whose end White has none
};

/// Walks the proof that a first move mates within the half-moves of the request's board: every
/// reply of Black, and against each one move of White, down to the mate. Which move that is, the
/// engine is asked, without heuristics near the leaves and with the request's set farther away; but
/// what it says is believed only when the walk has come to the mate. The request must have been
/// solved: what its register knows makes the walk fast. The stop block must be clear at the start.
/// Throws std::bad_alloc.
TVerification VerifyKey(TSolveRequest& request, TMove key);

} // namespace corvina

#endif
