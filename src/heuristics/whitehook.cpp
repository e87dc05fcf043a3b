#include "heuristics/heuristicbits.h"
#include "search/hooks.h"

namespace corvina
{

const std::uint32_t WHITE_HOOK_MASK = SH_SWEEPINGWHITEROOK | SH_KEEPKINGONTHEEDGE |
                                      SH_DONTLEAVEMAINDIAGONAL | SH_DONTLETFIGUREUNBLOCK |
                                      SH_DONTLETPROMOTEDQUEENMOVE | SH_ASSERTBLACKKINGSURROUNDED |
                                      SH_DONTLETPROMOTEDFIGUREMOVE;

bool IsWhiteMoveDoubtful(TChessboard&)
{
    return false;
}

} // namespace corvina
