#ifndef CORVINA_PROBLEMS_SORTINDICATIONS_H
#define CORVINA_PROBLEMS_SORTINDICATIONS_H

#include "chess/move.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace corvina
{

/// A hint for the order in which moves are tried: a description of moves of White.
struct TSortIndication
{
    static constexpr std::int8_t CAPTURE = 1;
    static constexpr std::int8_t NO_CAPTURE = 0;
    static constexpr std::int8_t CAPTURE_OR_NOT = -1;

    TFigure m_figure = NO_FIGURE; ///< a figure of White; NO_FIGURE: any
    TSquare m_from = NO_SQUARE;   ///< NO_SQUARE: any
    TSquare m_to = 0;
    std::int8_t m_capture = CAPTURE_OR_NOT;
    std::uint8_t m_nCheck = 0;       ///< 0 none, 1 check, 2 double check
    TFigure m_promotion = NO_FIGURE; ///< a kind
    std::uint16_t m_nMoveNumber = 0; ///< the full move that it applies to; 0: all
    bool m_bNegated = false;         ///< marks moves to try last
    bool m_bStar = false;            ///< only if the moved figure can't be captured afterwards

    bool operator==(const TSortIndication&) const = default;
};

/// The hints of a problem.
struct TSortIndications
{
    std::map<std::uint16_t, std::vector<TSortIndication>> m_mapItems; ///< by move number
    bool m_bHasGeneralItem = false; ///< there is an item with move number 0
    /// Letters of the longest pattern of a position among the items; items of a file have none.
    int m_nLongestDescription = 0;

    bool empty() const { return m_mapItems.empty(); }
    void Add(const TSortIndication& item);

    bool operator==(const TSortIndications&) const = default;
};

/// Reads one item: an optional "~" (try last), a move number with a point, a letter of a figure, an
/// origin, ":" (a capture), ">" (none) or "-" (either), the destination, the letter of a promotion,
/// "*" (safe from capture), "+" or "++". All but the destination may be missing. Castling is "0-0"
/// and "0-0-0". Throws ChessException "Invalid description of SortIndication", the same with ": "
/// and the text, "Move description too long (note that moves should be separated with a comma or
/// semicolon)" and "Unknown figure letter: ".
TSortIndication ParseSortIndication(std::string_view strText);

/// Reads a list divided by commas, or by semicolons if it has no comma, and adds it to the target.
/// Throws as ParseSortIndication does.
void ParseSortIndications(TSortIndications& target, std::string_view strText);

/// The items in the form that is read, divided by "; ", but for the star, which isn't written.
std::string SortIndicationsToText(const TSortIndications& indications);

} // namespace corvina

#endif
