#ifndef CORVINA_HEURISTICS_PARAMITEMS_H
#define CORVINA_HEURISTICS_PARAMITEMS_H

#include "chess/square.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The small parts of which the parameters of heuristics are made.

namespace corvina
{

/// Throws the ChessException for an item that a heuristic doesn't know.
[[noreturn]] void Refuse(std::uint32_t nHeuristic, std::string_view strItem,
                         const std::string& strAllowed);

/// The same text, letter case apart.
bool IsText(std::string_view strItem, std::string_view strText);

/// The items between the separators, without blanks at their ends; none of an empty text.
std::vector<std::string_view> ItemsOf(std::string_view strText, char separator = ',');

/// A whole decimal number from 0 to nMax.
std::optional<int> NumberOf(std::string_view strText, int nMax);

/// In either case.
std::optional<TSquare> SquareOf(std::string_view strText);

/// A square, or NO_KEY_SQUARE for an empty text. Throws ChessException.
std::uint8_t SquareOrNone(std::uint32_t nHeuristic, std::string_view strText);

} // namespace corvina

#endif
