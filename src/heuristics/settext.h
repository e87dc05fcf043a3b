#ifndef CORVINA_HEURISTICS_SETTEXT_H
#define CORVINA_HEURISTICS_SETTEXT_H

#include "chess/chessboard.h"

#include <cstdint>
#include <string>
#include <string_view>

/// A set of heuristics in words. ReadHeuristicsText (heuristics/setreader.h) reads them back.

namespace corvina
{

/// Items and marks of a text, shared with its reader.
constexpr std::string_view TEXT_NONE = "none";
constexpr std::string_view TEXT_KING_MUST_NOT_MOVE = "SH_DONTLETKINGMOVE";
constexpr std::string_view TEXT_QUICK_MODE = "QuickMode";
constexpr std::string_view TEXT_NOT_DYNAMIC = "(CannotApplyDLFUDynamically)";
constexpr std::string_view TEXT_STRICT_KING = "STRICT";
constexpr std::string_view TEXT_ALMOST_STRICT_KING = "ALMOST_STRICT";
constexpr std::string_view TEXT_EXCEPTIONS = "excptns";
constexpr std::string_view TEXT_INCL_CORNER = "incl.corner";
constexpr std::string_view TEXT_STRICT = "strict";
constexpr std::string_view TEXT_INCL_PAWNS = "incl.pawns";
constexpr std::string_view TEXT_INCL_PAWNS_BEFORE_PROMOTION = "incl.pawnsBeforePromo";
constexpr std::string_view TEXT_ONE_SQUARE = "EFF";

/// By FILTER_WHITE_SQUARES_ONLY and what follows it, less 1.
constexpr std::string_view g_aFilterTexts[] = {"WhiteSquaresOnly", "BlackSquaresOnly",
                                               "SeparatedBlackBishop"};
/// By FFM_CHECK_ONLY and what follows it, less that.
constexpr std::string_view g_aFfmLevelTexts[] = {"CheckOnly", "#1", "#1+", "#2",
                                                 "#2+",       "#3", "#4",  "#5"};
constexpr std::string_view TEXT_FFM_WITH_OTHER = "-WithOtherHeuristics";
constexpr std::string_view TEXT_FFM_PRELIMINARY = "-Preliminary";
constexpr std::string_view TEXT_FFM_CUSTOM = "-Custom";

/// The name, "..." for a bit without one.
std::string GetHeuristicName(std::uint32_t nHeuristic);

/// The parameters of one heuristic, without brackets; empty when it has none.
std::string GetHeuristicParamText(std::uint32_t nHeuristic, const TChessboard& board);

} // namespace corvina

#endif
