#ifndef CORVINA_SEARCH_GUIDES_TOURSEARCH_H
#define CORVINA_SEARCH_GUIDES_TOURSEARCH_H

#include "search/guides/sidesearch.h"
#include "search/guides/tourgraph.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

namespace corvina
{

/// Finds mates in which a few men of White tour the board while Black's army stays shut in: the
/// longest mates that there are, with few positions in them. A tour comes back to the same position
/// with the move on the other side again and again, which is hopeless for a search that keeps the
/// depths of a position apart. Here a pattern says which of White's kinds of men may move and how
/// much Black may be let out, all positions within it make up a graph, and the mates of the graph
/// are found backwards. Patterns are tried from the narrowest on, and grow as far as the memory
/// goes.
class TTourSearch : public TSideSearch
{
public:
    /// Of the root's task; the root must outlive the object. Throws std::bad_alloc.
    TTourSearch(const TChessboard& root, std::uint16_t nThreadId);

    EAnswer Search(std::uint64_t nPositions) override;

private:
    /// What White and Black may do within a graph.
    struct TPattern
    {
        std::uint8_t m_nKinds;     ///< of White's men that move, a bit each
        std::uint8_t m_nKingMoves; ///< the most that Black's king has after a move of White
        bool m_bDone = false;      ///< the whole graph has been searched
        bool m_bTooLarge = false;  ///< for this round

        /// All that the other allows, and perhaps more.
        bool Includes(const TPattern& other) const
        {
            return (other.m_nKinds & ~m_nKinds) == 0 && other.m_nKingMoves <= m_nKingMoves;
        }
    };

    void MakePatterns();
    bool NextPattern();
    bool BeginPattern();
    EAnswer EndOfGraph();
    bool SolveGraph();
    void Expand(std::uint32_t nNode);
    bool ListReplies(TChessboard& board);
    TKnownMate FindMate(const TChessboard& board) const override;

    int m_nMovableFigures = 0;      ///< of Black at the root, without king and pawns
    std::uint8_t m_nOtherKinds = 0; ///< of men that White gets by promotion only: they may move

    std::vector<TPattern> m_vecPatterns; ///< a pattern stands behind those that it includes
    std::size_t m_nPattern = 0;
    std::uint32_t m_nMaxNodes; ///< of a graph in this round
    bool m_bGrowing = false;   ///< a graph of this round was too large

    std::optional<TTourGraph> m_graph;
    std::deque<TChessboard> m_queOpen; ///< the last nodes of the graph, to be expanded in order
    std::uint32_t m_nNext = 0;         ///< node of the first of them
    std::uint32_t m_nNextSolve = 0;    ///< nodes of the graph when it is looked through again
    std::vector<TChessboard> m_vecReplies;
    std::vector<std::uint32_t> m_vecReplyNodes;
};

} // namespace corvina

#endif
