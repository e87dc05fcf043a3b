#ifndef CORVINA_SEARCH_WHITEFEATURES_H
#define CORVINA_SEARCH_WHITEFEATURES_H

#include "search/movescore.h"

namespace corvina
{

/// What the full sort of White's moves looks at in the position after a move. The facts of the
/// position before it are gathered once for the whole list.
class TWhiteFeatures
{
public:
    explicit TWhiteFeatures(TChessboard& board);

    /// The sums of a legal move; Black is to move on the child.
    TScoreSums Of(TChessboard& child, const TMove& move) const;

private:
    void AddForce(TChessboard& child, const TMove& move, TScoreSums& sums) const;
    void AddSafety(const TChessboard& child, const TMove& move, TScoreSums& sums) const;
    void AddPlace(const TChessboard& child, const TMove& move, TScoreSums& sums) const;
    void AddPawns(const TChessboard& child, const TMove& move, TScoreSums& sums) const;
    void AddRun(const TChessboard& child, const TMove& move, TScoreSums& sums) const;
    void AddHeuristics(const TChessboard& child, const TMove& move, TScoreSums& sums) const;
    bool BlackCanPromoteNext(const TChessboard& child) const;

    TChessboard& m_board;
    const int m_nMen; ///< of White, the king left out
    TSquareSet m_blackPawns;
    TSquareSet m_runners; ///< Black's pawns on the last two rows before promotion
};

} // namespace corvina

#endif
