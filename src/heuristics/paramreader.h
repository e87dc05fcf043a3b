#ifndef CORVINA_HEURISTICS_PARAMREADER_H
#define CORVINA_HEURISTICS_PARAMREADER_H

#include "heuristics/heuristicset.h"

#include <optional>
#include <string_view>

namespace corvina
{

/// Reads the parameters of heuristics, one after the other, into a set that starts with the initial
/// values. With a board, squares are compared with what stands on them.
class TParamReader
{
public:
    TParamReader(THeuristicSet& set, const TChessboard* pBoard) : m_set(set), m_pBoard(pBoard) {}

    /// What stands in the brackets behind a heuristic of the set, or nothing. Throws ChessException
    /// with what is wrong and what is allowed.
    void Read(std::uint32_t nHeuristic, std::string_view strParams);

    /// Once all are read: what concerns several heuristics. Throws ChessException.
    void Finish();

private:
    /// When an edge heuristic gives way within a line.
    struct TEdgeRelaxation
    {
        std::uint8_t m_nCaptures = 0;
        bool m_bCountPawns = false;
        bool m_bOnPawn = false;
        std::uint16_t m_nDeferMoves = 0;
        std::uint16_t m_nDeadline = 0;

        bool operator==(const TEdgeRelaxation&) const = default;
    };

    void ReadEdge(std::string_view strParams);
    void ReadExtEdge(std::string_view strParams);
    void ReadUnblockList(std::string_view strParams);
    void ReadForcedMate(std::string_view strParams);
    void ReadDiagonal(std::string_view strParams);
    void ReadKeyFigure(std::string_view strParams);
    void ReadKeyDiagonal(std::string_view strParams);
    void ReadLoseFigures(std::string_view strParams);
    void ReadSeaSnake(std::string_view strParams);
    void ReadTriangle(std::string_view strParams);
    void ReadZugzwang(std::string_view strParams);

    /// False when the item is none of this kind.
    static bool ReadEdgeRelaxation(std::string_view strItem, TEdgeRelaxation& relaxation);
    void FindPinnedFigure(int square);

    THeuristicSet& m_set;
    const TChessboard* m_pBoard;
    std::optional<TEdgeRelaxation> m_ofEdge, m_ofExtEdge;
};

} // namespace corvina

#endif
