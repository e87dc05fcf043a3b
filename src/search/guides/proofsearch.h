#ifndef CORVINA_SEARCH_GUIDES_PROOFSEARCH_H
#define CORVINA_SEARCH_GUIDES_PROOFSEARCH_H

#include "search/guides/prooftable.h"
#include "search/solverequest.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace corvina
{

/// Proof-number search, depth first: always goes on at the position that decides most with the
/// least left to show, however deep it lies, where the passes go through the moves one after the
/// other. It finds long mates in which Black has few replies, and is a guide only: a mate counts
/// when its proof has been walked, every reply of Black, down to the mates.
///
/// One object per thread, with records of its own; the table is shared.
class TProofSearch
{
public:
    /// Of the root's task, with at least 5 half-moves; the root must outlive the object. Throws
    /// std::bad_alloc.
    TProofSearch(const TChessboard& root, TProofTable& table, std::uint16_t nThreadId);

    enum class EAnswer : std::uint8_t
    {
        Open,
        Mate,  ///< by the table: to be confirmed
        NoMate ///< by the table
    };

    /// Goes on with the search for about so many positions.
    EAnswer Search(std::uint64_t nPositions);

    /// Walks the proof; the positions that it proves go to the register of the run. Nothing: a
    /// stop, or the table was wrong.
    std::optional<TMove> Confirm();

    std::uint64_t Positions() const { return m_context.m_nPositions; }

private:
    struct TChild
    {
        TMove m_move;
        TProofNumbers m_numbers;
        std::uint64_t m_nKey;
        std::uint8_t m_nIndex;       ///< in the order of generation
        std::uint32_t m_nWeight = 1; ///< times its number of the kind that chooses
    };

    /// The children of a node, and what follows from their numbers.
    struct TChoice
    {
        TProofNumbers m_node;
        int m_nBest;             ///< child to go on with
        std::uint32_t m_nSecond; ///< number of the next best one, of the kind that chooses
        std::uint32_t m_nOpen;   ///< children that count for the other number
    };

    bool IsOver() const
    {
        return m_context.m_nPositions >= m_nEnd || m_request.IsStopped(m_context.m_nThreadId);
    }

    bool Make(TChessboard& child, TMove move) const;
    int CountReplies(TChessboard& board);
    void Expand(TChessboard& board, std::vector<TChild>& vecChildren);
    bool AskForNumbers(std::vector<TChild>& vecChildren, std::size_t nFirst, int nPlies,
                       bool bWhite);
    void PutBehindIndicated(TChessboard& board, std::vector<TChild>& vecChildren);
    TProofNumbers Evaluate(TChessboard& child, std::uint64_t nKey);
    TChoice Choose(const std::vector<TChild>& vecChildren, int nPlies, bool bWhite) const;
    TProofNumbers Limits(const TChoice& choice, const TChild& child, TProofNumbers limits,
                         bool bWhite) const;
    bool Settle(const TChessboard& board, std::uint64_t nKey,
                const std::vector<TChild>& vecChildren, const TChoice& choice);

    /// Searches below the position until a number reaches its limit, or the time is over.
    void SearchNode(TChessboard& board, std::uint64_t nKey, TProofNumbers limits);

    int MatingMove(TChessboard& board);

    TSolveRequest& m_request;
    TProofTable& m_table;
    TThreadContext m_context;
    TChessboard m_board;

    /// Records of the children that the table is asked for next: their entries come from memory
    /// meanwhile.
    static constexpr std::size_t BATCH = 16;
    std::array<TChessboard, BATCH> m_aBatch;

    const bool m_bLong;
    bool m_bRegister; ///< the run has one for this task
    std::uint64_t m_nRootKey;
    std::uint64_t m_nEnd = 0;                       ///< of m_context.m_nPositions
    std::vector<std::vector<TChild>> m_vecChildren; ///< by half-moves left
};

} // namespace corvina

#endif
