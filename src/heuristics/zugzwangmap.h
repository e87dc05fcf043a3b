#ifndef CORVINA_HEURISTICS_ZUGZWANGMAP_H
#define CORVINA_HEURISTICS_ZUGZWANGMAP_H

#include "chess/chessboard.h"

#include <compare>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// SH_ZUGZWANG: White has to come back to a position that would be zugzwang for Black. The user
/// tells it by the first moves that bring it about.

namespace corvina
{

/// How the entries are ordered: by the squares of the move, then by its place in the user's list.
struct TZugzwangKey
{
    TSquare m_from, m_to;
    std::uint8_t m_nNumber; ///< from 1

    auto operator<=>(const TZugzwangKey&) const = default;
};

/// A zugzwang position: White's move and what follows it.
struct TZugzwangEntry
{
    static constexpr int MAX_SQUARES = 22;

    TMove m_move{};
    bool m_bCapture = false; ///< the move takes something
    TChessboard m_board;     ///< after the move; its pointers are null
    /// Where Black's replies go that only wait: no capture, no check, no move of a pawn.
    TSquare m_squares[MAX_SQUARES] = {};
    int m_nSquares = 0;
};

using TZugzwangMap = std::map<TZugzwangKey, TZugzwangEntry>;

/// Reads legal moves of White with commas between them, in full notation. A move that comes again
/// counts once. Throws ChessException "Invalid move for SH_ZUGZWANG" and the text.
std::vector<TMove> ReadZugzwangMoves(std::string_view strText, const TChessboard& board);

/// The moves as ReadZugzwangMoves takes them, in the order of the map.
std::string ZugzwangMovesText(const TZugzwangMap& map);

/// A number that tells lists of moves apart; 0 for an empty one.
std::uint32_t KeyOfZugzwangMoves(const std::vector<TMove>& vecMoves);

/// The positions after legal moves of a root. Moves that aren't legal there are left out.
TZugzwangMap MakeZugzwangMap(const std::vector<TMove>& vecMoves, const TChessboard& root);

/// Black has only waited after a move of the map: the record is the one after his reply.
bool IsZugzwangReturn(const TChessboard& board);

/// The first move is on the map.
bool IsZugzwangAllowedMove(const TChessboard& root, const TMove& move);

/// The moves of the map by which White comes back to one of its positions, his men and the Black
/// king standing as they did. None far below the root's depth.
int GenerateZugzwangMoves(TChessboard& board, TMove* pMoves);

/// With fewer half-moves left there is no time to return.
constexpr int MIN_ZUGZWANG_RETURN = 14;

} // namespace corvina

#endif
