#include "heuristics/forcedmate.h"

#include "heuristics/heuristicbits.h"
#include "heuristics/relaxpredicates.h"

#include <algorithm>

namespace corvina
{

int SuggestFfmSettings(const TChessboard&, int, int, int)
{
    return 0;
}

void ApplyFfmSettings(const TChessboard& board, int nCode, THeuristicsParams& params)
{
    const int nLow = nCode & 0xFF, nHigh = nCode >> 8 & 0xFF;
    int nBase = FFM_CHECK_ONLY, nRelaxations = 0;
    if (nLow >= 2) {
        nRelaxations = nLow - 1 > 1 || nHigh != 0 ? nLow : nLow - 1;
        nBase = HasLongQuietLines(board) ? FFM_THREAT_1 : FFM_CHECK_ONLY;
    }
    const int nLevel = std::min<int>(nBase + nHigh, FFM_THREAT_5);
    if (nLevel == FFM_THREAT_1 && nRelaxations == 4)
        nRelaxations = 3;
    params.m_bFfmAddCaptures = true;
    params.m_nFfmWithOther = FFM_OTHERS_NEAR_THE_END;
    params.m_nFfmLevel = params.m_nFfmFirstLevel = static_cast<std::uint8_t>(nLevel);
    params.m_nFfmRelaxations =
        static_cast<std::uint8_t>(std::min<int>(nRelaxations, FFM_THREAT_5 - nLevel));
}

void BeginPreliminaryRun(TChessboard& board, THeuristicsParams& params)
{
    if (!params.m_bFfmPreliminary || !(board.m_nHeuristics & SH_FINDFORCEDMATE))
        return;
    if (params.m_savedFfmMask == 0)
        params.m_savedFfmMask = board.m_nHeuristics;
    board.m_nHeuristics &= ~(SH_KEEPKINGONTHEEDGE | SH_ASSERTBLACKKINGSURROUNDED);
    board.m_nHeuristics |= SH_KEEPKINGWITHINEXTEDGE;
}

} // namespace corvina
