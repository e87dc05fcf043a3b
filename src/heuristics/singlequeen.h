#ifndef CORVINA_HEURISTICS_SINGLEQUEEN_H
#define CORVINA_HEURISTICS_SINGLEQUEEN_H

#include "heuristics/analysis.h"
#include "heuristics/heuristicbits.h"
#include "search/solverequest.h"

#include <optional>

/// SH_SINGLEQUEENMATE: nothing moves but White's queen and the kings, the rest holds each other up
/// and walls off cul-de-sacs in which the queen mates. A White king who holds up a pawn stays.

namespace corvina
{

/// White's only figure is a queen, his pawns can't move, and neither can anything of Black's but
/// the king, now or when the queen is out of the way.
bool IsSingleQueenMate(const TChessboard& board);

/// The Black king stands in a corner region of such a mate.
bool IsCornerPattern(const TChessboard& board);

/// White's chances hang on a single queen or rook, and a pawn may give him another one: the loss of
/// the figure may be mended (THeuristicsParams::m_bSaveFigureException).
bool IsWhiteMaterialShort(const TChessboard& board);

/// The king's move frees a Black pawn that he holds up.
inline bool FreesHeldPawn(const TChessboard& board, const TMove& move)
{
    return board.m_board[move.m_from] == WHITE_KING && move.m_from < 56 &&
           board.m_board[move.m_from + 8] == BLACK_PAWN && move.m_to != move.m_from + 8;
}

/// Half-moves to mate by endgame tables made for the men of a position that don't move; 0: no mate,
/// GLOBAL_REGISTER_UNKNOWN: there is no such table.
int AskCustomTable(const TChessboard& board);

/// A first move of the root that mates by a search under this heuristic alone, at growing depth as
/// long as that is quickly done.
std::optional<TMove> FindSingleQueenMate(const TChessboard& root);

} // namespace corvina

#endif
