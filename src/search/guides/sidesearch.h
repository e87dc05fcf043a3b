#ifndef CORVINA_SEARCH_GUIDES_SIDESEARCH_H
#define CORVINA_SEARCH_GUIDES_SIDESEARCH_H

#include "search/solverequest.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace corvina
{

/// A search of the root's task for one mate, beside the passes and slice by slice, in a graph of
/// positions that keeps no count of the moves played. Castling is left out of it.
///
/// A mate of the graph is a mate against all of Black's replies, but for two positions that share a
/// hash: it counts when its proof has been walked.
class TSideSearch
{
public:
    virtual ~TSideSearch() = default;
    TSideSearch(const TSideSearch&) = delete;
    TSideSearch& operator=(const TSideSearch&) = delete;

    /// Roots with a right to castle are not searched, nor tasks of less than three moves.
    static bool CanSearch(const TChessboard& root);

    enum class EAnswer : std::uint8_t
    {
        Open,
        Mate,   ///< to be confirmed
        GivenUp ///< there is no mate in the graph, or no room for it
    };

    /// Goes on with the search for about so many positions. Throws std::bad_alloc.
    virtual EAnswer Search(std::uint64_t nPositions) = 0;

    /// Walks the proof; the positions that it proves go to the register of the run. Nothing: a
    /// stop, or a fault of the hash. Throws std::bad_alloc.
    std::optional<TMove> Confirm();

    std::uint64_t Positions() const { return m_context.m_nPositions; }

protected:
    /// The root must outlive the object. Throws std::bad_alloc.
    TSideSearch(const TChessboard& root, std::uint16_t nThreadId);

    bool IsStopped() const { return m_board.m_pRequest->IsStopped(m_context.m_nThreadId); }

    /// Moves to the mate that the graph has for the position, with the move that leads to it; 0:
    /// none.
    struct TKnownMate
    {
        int m_nMate = 0;
        int m_nIndex = 0; ///< in the order of generation
    };
    virtual TKnownMate FindMate(const TChessboard& board) const = 0;

    TThreadContext m_context;
    TChessboard m_board;     ///< the root
    std::size_t m_nMaxBytes; ///< that the graph may take

private:
    bool m_bRegister; ///< the run has one for this task
};

} // namespace corvina

#endif
