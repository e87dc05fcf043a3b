#ifndef CORVINA_SEARCH_INDICATIONS_H
#define CORVINA_SEARCH_INDICATIONS_H

#include "chess/chessboard.h"
#include "problems/sortindications.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace corvina
{

struct TPreferredMove;
struct TSolveRequest;

/// Sort indications at White's nodes: hints of the problem or its user about the order of moves.
/// They are read by all threads of a run and change only between runs.

/// Scores of moves that an indication concerns; lower is tried earlier, and every other move has a
/// score between the two or one of them. More letters of a pattern make a lower score.
constexpr std::int8_t INDICATED_FIRST = -128;
constexpr std::int8_t INDICATED_LAST = 125;

/// The indications of a run: those of the problem, and with m_nMainVariantUse the moves of White in
/// the main variant (1) or in all variants (2), each as long as the line is that of the variant.
/// What the position doesn't allow ends a variant.
void LoadSortIndications(TSolveRequest& request);

/// Adds White's moves of a line of play that begins with the root, each as long as the line is that
/// of the variant. What the position doesn't allow ends it.
void AddVariant(TSortIndications& target, const TVariant& variant, const TChessboard& root);

/// The indications that concern one node, for the length of a sort of its moves. White is to move.
class TNodeIndications
{
public:
    explicit TNodeIndications(const TChessboard& board);

    /// The same where the record doesn't tell with how many half-moves its line began.
    TNodeIndications(const TChessboard& board, int nInitialMoves);

    /// There are some: only then the rest is worth calling.
    bool Apply() const { return m_bApply; }

    /// The score of the move that led from the board to the child, or nothing when no item concerns
    /// it. The first item that matches decides, those of the move's number before the general ones.
    std::optional<std::int8_t> Score(const TChessboard& child);

    /// One of the moves that were scored goes on with a line of play, or is that of the position:
    /// that says more than a hint for moves of a kind.
    bool HasMatchedLine() const { return m_bMatchedLine; }

    /// To be called when the sort has scored its last move: once a move has matched, and any score
    /// is below 0, all of them sink by one. Those that stand at the bound of their kind stay, so
    /// that nothing comes up to a matched move.
    template <class TScored>
    void Finish(TScored* pScored, int nMoves) const
    {
        constexpr int LOWEST_UNMATCHED = INDICATED_FIRST + 1;
        if (!m_bMatched || std::none_of(pScored, pScored + nMoves,
                                        [](const TScored& scored) { return scored.m_nScore < 0; }))
            return;
        for (int i = 0; i < nMoves; ++i) {
            auto& nScore = pScored[i].m_nScore;
            if (nScore > LOWEST_UNMATCHED && nScore <= INDICATED_LAST)
                --nScore;
        }
    }

private:
    friend int GetIndicatedMoves(TChessboard& board, TMove* pMoves);

    bool IsPreferred(const TChessboard& child) const;
    const TSortIndication* FindItem(const TChessboard& child) const;
    const TSortIndication* FindItem(const std::vector<TSortIndication>* pItems,
                                    const TChessboard& child) const;
    bool Fits(const TSortIndication& item, const TChessboard& child) const;
    bool FitsEarlierItems() const;

    const TChessboard& m_board;
    const TSortIndications* m_pIndications = nullptr;
    const std::vector<TSortIndication>* m_pOfNumber = nullptr; ///< may be null
    const std::vector<TSortIndication>* m_pGeneral = nullptr;  ///< may be null
    const TPreferredMove* m_pPreferred = nullptr;              ///< may be null
    int m_nPlayed = 0;                                         ///< half-moves of the line
    int m_nMoveNumber = 0;                                     ///< of White's move, from 1
    bool m_bApply = false;
    bool m_bMatched = false;
    bool m_bMatchedLine = false;
};

} // namespace corvina

#endif
