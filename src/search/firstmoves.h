#ifndef CORVINA_SEARCH_FIRSTMOVES_H
#define CORVINA_SEARCH_FIRSTMOVES_H

#include "chess/move.h"
#include "search/result.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

namespace corvina
{

/// The first moves of a run, from which its threads take one after the other, round by round: a
/// round is a pass over the moves that are still open.
class TFirstMoveTable
{
public:
    /// Result of a move that nobody has analysed.
    static constexpr TSearchResult NOT_ANALYSED = -2;

    explicit TFirstMoveTable(std::vector<TMove> vecMoves);

    struct TPick
    {
        std::size_t m_nIndex;
        std::uint8_t m_nRound; ///< above the asked one: all open moves of that are taken
        bool m_bShared;        ///< another thread is working on it
    };

    /// Takes the open move of the smallest round that is at least nRound, and counts the caller to
    /// it. With bMayShare it may be one that another thread is working on. Nothing: no such move.
    std::optional<TPick> Pick(std::uint8_t nRound, bool bMayShare);

    /// Takes a pick back.
    void GiveBack(std::size_t nIndex);

    /// Records the outcome of a pick; the first certain one stands. True when this call decided the
    /// move.
    bool Record(std::size_t nIndex, TSearchResult nResult);

    /// Records a proof that was found beside the picks. True when this call decided the move.
    bool RecordMate(const TMove& move);

    const TMove& Move(std::size_t nIndex) const { return m_vecFirstMoves[nIndex]; }
    std::size_t Size() const { return m_vecFirstMoves.size(); }

    /// Is any move still open?
    bool HasOpenMoves();

private:
    std::mutex m_csTable; ///< guards the last three vectors
    const std::vector<TMove> m_vecFirstMoves;
    std::vector<TSearchResult> m_vecResult;
    std::vector<std::uint8_t> m_vecInProgress; ///< threads at work on the move
    std::vector<std::uint8_t> m_vecRound;      ///< analyses started
};

} // namespace corvina

#endif
