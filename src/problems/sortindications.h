#ifndef CORVINA_PROBLEMS_SORTINDICATIONS_H
#define CORVINA_PROBLEMS_SORTINDICATIONS_H

#include "chess/move.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace corvina
{

struct TVariant;

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

    // What the text form doesn't tell.

    std::shared_ptr<const TVariant> m_pVariant = nullptr; ///< holds only on its line
    /// Holds only if White's moves of the line so far satisfy the items of the earlier numbers.
    bool m_bNeedsEarlierItems = false;
    /// The position before the move, as the board field of a FEN: a letter is a figure that must
    /// stand there, a digit so many squares that are empty or hold a Black pawn. Rows may be empty
    /// or left out at the end: what they hold doesn't matter. Empty: any position.
    std::string m_strPattern = {};

    bool operator==(const TSortIndication&) const = default;
};

/// The hints of a problem.
struct TSortIndications
{
    std::map<std::uint16_t, std::vector<TSortIndication>> m_mapItems; ///< by move number
    bool m_bHasGeneralItem = false; ///< there is an item with move number 0
    /// Letters of the longest pattern among the items; items of a file have none.
    int m_nLongestDescription = 0;

    bool empty() const { return m_mapItems.empty(); }
    void Add(const TSortIndication& item);

    bool operator==(const TSortIndications&) const = default;
};

/// Letters of a pattern: figures that it asks for.
int CountPatternLetters(std::string_view strPattern);

/// Reads one item: an optional "~" (try last), a move number with a point, a letter of a figure, an
/// origin, ":" (a capture), ">" (none) or "-" (either), the destination, the letter of a promotion,
/// "*" (safe from capture), "+" or "++". All but the destination may be missing. Castling is "0-0"
/// and "0-0-0". Throws ChessException "Invalid description of SortIndication", the same with ": "
/// and the text, "Move description too long (note that moves should be separated with a comma or
/// semicolon)" and "Unknown figure letter: ".
TSortIndication ParseSortIndication(std::string_view strText);

/// Reads a list divided by commas, or by semicolons if it has no comma, and adds it to the target.
/// Throws as ParseSortIndication does; *pnPosition is then where in the text the item begins that
/// is at fault, and the items in front of it have been added.
void ParseSortIndications(TSortIndications& target, std::string_view strText,
                          std::size_t* pnPosition = nullptr);

/// The items in the form that is read, divided by "; ", but for the star and what the form doesn't
/// tell.
std::string SortIndicationsToText(const TSortIndications& indications);

} // namespace corvina

#endif
