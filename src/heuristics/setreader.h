#ifndef CORVINA_HEURISTICS_SETREADER_H
#define CORVINA_HEURISTICS_SETREADER_H

#include "heuristics/heuristicset.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace corvina
{

/// Reads what GetHeuristicsText writes: "none", or heuristics with commas between them, each with
/// its parameters in brackets; names and words in any letter case. What the text doesn't tell has
/// its initial value, except that the plain name of the edge heuristic is its plain form. With a
/// board, squares are compared with what stands on them. Throws ChessException, and leaves the set
/// as it was, for a text that makes no sense and for heuristics that exclude each other.
void ReadHeuristicsText(std::string_view strText, THeuristicSet& set,
                        const TChessboard* pBoard = nullptr);

/// The options of a problem file: a heuristic named there is put into the set with the parameters
/// given there, and takes out what excludes it; one with "OFF" leaves the set. Throws
/// ChessException, as above.
void ApplyHeuristicOptions(const std::map<std::uint32_t, std::vector<std::string>>& mapOptions,
                           THeuristicSet& set, const TChessboard* pBoard = nullptr);

} // namespace corvina

#endif
