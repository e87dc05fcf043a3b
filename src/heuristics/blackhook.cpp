#include "search/hooks.h"

namespace corvina
{

int IsBlackMoveDoubtful(TChessboard&, TMove*)
{
    return HOOK_PASSES;
}

} // namespace corvina
