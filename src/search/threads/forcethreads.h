#ifndef CORVINA_SEARCH_THREADS_FORCETHREADS_H
#define CORVINA_SEARCH_THREADS_FORCETHREADS_H

#include "chess/chessboard.h"

#include <vector>

namespace corvina
{

/// Would the run do better with another number of root threads than m_nEffectiveThreads? Below 0:
/// with so many; 0: no. By the first moves: how many of them promise something, and whether all of
/// them are few enough for a thread each; with a single thread, where many figures stand on the
/// board, whether several are known to mate. Short tasks aren't looked at.
int ForceThreadsDecision(TChessboard& root, const std::vector<TMove>& vecMoves);

} // namespace corvina

#endif
