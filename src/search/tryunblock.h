#ifndef CORVINA_SEARCH_TRYUNBLOCK_H
#define CORVINA_SEARCH_TRYUNBLOCK_H

#include "search/result.h"
#include "search/threadcontext.h"

namespace corvina
{

/// SH_DONTLETFIGUREUNBLOCK for a subtree alone: where Black's figures have come to be shut in, near
/// the root of a long task, the position is worth a search as if they stayed so. Only a mate
/// counts.

/// The record, with White to move, is such a position.
bool CanTryUnblock(const TChessboard& child);

inline bool TriesUnblock(const TChessboard& child)
{
    return ContextOf(child).m_bTryUnblock && CanTryUnblock(child);
}

/// Searches the record with its blocked figures on the list, which is put back.
TSearchResult SearchWithBlockedFigures(TChessboard& child,
                                       TSearchResult (*pSearchWhite)(TChessboard& child));

} // namespace corvina

#endif
