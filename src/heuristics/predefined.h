#ifndef CORVINA_HEURISTICS_PREDEFINED_H
#define CORVINA_HEURISTICS_PREDEFINED_H

#include "chess/chessboard.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Compositions that have been studied so well that what an analysis would need many passes to find
/// is known from the start. It makes a run faster, never its answer another one.

namespace corvina
{

/// What is known, by the position as the board field of a FEN (WriteFen).
struct TPredefinedTables
{
    template <class T>
    using TByFen = std::map<std::string, T, std::less<>>;
    using TTexts = std::vector<std::string>;

    /// Settings: changes of what the analysis has chosen. See ApplyPredefinedSetting.
    TByFen<TTexts> m_predefinedHeuristics;

    /// Lines of the solution, "1. Bc1-a3 Kg1-h2 2. Ba3-d6+", and lists of White's moves by their
    /// numbers, "1. Ka1-b2, 2. Kb2-c1". A row may be empty.
    TByFen<TTexts> m_predefinedLines;

    /// Positions of a composition's tree with White to move, and his move in each.
    TByFen<TByFen<std::string>> m_predefinedSubpositions;

    /// One of the tables has a row for the position.
    bool Has(const TChessboard& board) const;
};

/// Corvina's own tables. Built at the first call; they don't change.
const TPredefinedTables& PredefinedTables();

/// What settings ask of a run beside its set of heuristics.
struct TPredefinedRun
{
    bool m_bSafeMode = false;
    /// Half-moves; -1: by the position. Empty: nothing was said.
    std::optional<std::int16_t> m_shLookForQuickerMateDepth;
};

/// Applies the settings of the position's row in the tables of the board's run, if it has any, to
/// the mask of the board and the parameters of its thread, and to `run`. The signature is that of
/// the outcome. Throws ChessException for a setting that can't be read; those in front of it stand.
void ApplyPredefinedAdditionalHeuristics(TChessboard& board, TPredefinedRun& run);

/// Applies one setting: "DLFU(a1,b2)" lists Black figures for SH_DONTLETFIGUREUNBLOCK, pawns first;
/// "SafeMode"; "AssertBKS", "AssertBKS(strict)", "ExtEdge" and "DontLetKingMove" choose the form of
/// the king's heuristic; "DontLetPromotedQueenMove" puts that one in, with " NO" it takes it out;
/// "LFQMDepth(#4)" and "LFQMDepth(7)" are the depth of the search for a short mate, in moves and in
/// half-moves. Another text says nothing. Throws ChessException "Invalid square description at
/// index " and the index within the list.
void ApplyPredefinedSetting(std::string_view strSetting, TChessboard& board, TPredefinedRun& run);

} // namespace corvina

#endif
