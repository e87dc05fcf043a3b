#ifndef CORVINA_SEARCH_FIRSTMOVES_H
#define CORVINA_SEARCH_FIRSTMOVES_H

#include "chess/move.h"
#include "search/result.h"

#include <cstdint>
#include <functional>
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

    /// A list of moves that a command by hand may rearrange; returns how many at its head are to be
    /// left out.
    using TRearrange = std::function<int(TMove* pMoves, int nMoves)>;

    /// Takes a pick of the round back and lets a command rearrange it and the moves behind it that
    /// nobody has begun in the round. What is left out counts as tried in the round, without a
    /// result; with bForGood nobody tries it again, but it stays open.
    void Rearrange(std::size_t nIndex, std::uint8_t nRound, bool bForGood,
                   const TRearrange& rearrange);

    /// A pick is left open for good.
    void LeaveOpen(std::size_t nIndex);

    /// The pick, and the moves behind it that nobody has begun in the round.
    std::vector<TMove> MovesFrom(std::size_t nIndex, std::uint8_t nRound);

    /// Records a proof that was found beside the picks. True when this call decided the move.
    bool RecordMate(const TMove& move);

    const TMove& Move(std::size_t nIndex) const { return m_vecFirstMoves[nIndex]; }
    std::size_t Size() const { return m_vecFirstMoves.size(); }

    /// Is any move still open?
    bool HasOpenMoves();

private:
    std::vector<std::size_t> PlacesFrom(std::size_t nIndex, std::uint8_t nRound) const;

    std::mutex m_csTable; ///< guards all vectors but the first
    const std::vector<TMove> m_vecFirstMoves;
    std::vector<std::size_t> m_vecOrder; ///< indices, in the order of trying
    std::vector<bool> m_vecLeftOut;      ///< not to be tried any more
    std::vector<TSearchResult> m_vecResult;
    std::vector<std::uint8_t> m_vecInProgress; ///< threads at work on the move
    std::vector<std::uint8_t> m_vecRound;      ///< analyses started
};

} // namespace corvina

#endif
