#ifndef CORVINA_HEURISTICS_HEURISTICSET_H
#define CORVINA_HEURISTICS_HEURISTICSET_H

#include "chess/chessboard.h"
#include "heuristics/heuristicsparams.h"

#include <cstdint>
#include <vector>

namespace corvina
{

/// A set of heuristics as a user gives it, apart from any record or thread.
struct THeuristicSet
{
    std::uint32_t m_nHeuristics = 0;
    std::uint8_t m_nFilterMode = 0; ///< of SH_ONECOLORPLAYPOSSIBLE: TChessboard::FILTER_...
    bool m_bQuickMode = false;      ///< the text told of it
    /// Of SH_ZUGZWANG: moves after which the position is the one to return to.
    std::vector<TMove> m_vecZugzwangMoves;
    THeuristicsParams m_params;
};

/// Brings to a root what a set keeps with the record: the mask, the mode of the move filter and the
/// squares of the listed figures; and to its request, if it has one, the map of zugzwang positions.
/// The parameters go to the context of each thread, and the signature is computed once they are
/// there.
void ApplyToRoot(const THeuristicSet& set, TChessboard& root);

/// Copies the parameters of one heuristic. The two edge heuristics share some of theirs.
void CopyParams(std::uint32_t nHeuristic, const THeuristicSet& from, THeuristicSet& to);

} // namespace corvina

#endif
