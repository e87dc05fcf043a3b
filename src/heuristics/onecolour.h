#ifndef CORVINA_HEURISTICS_ONECOLOUR_H
#define CORVINA_HEURISTICS_ONECOLOUR_H

#include "chess/chessboard.h"
#include "heuristics/heuristicbits.h"

/// SH_ONECOLORPLAYPOSSIBLE: a game without Black's only bishop. White keeps off the squares of its
/// colour, and Black may pass, which stands for every move of the bishop.
///
/// A mate there is a mate of the real game, wherever the bishop stands. All of White's men stand on
/// the other colour and stay there, so that the bishop never takes one and never checks the king.
/// White has neither queen nor rook, nor promotes to one: none of his lines crosses a square of the
/// bishop, which can't come between, and no line through it pins or checks. So Black's moves are
/// those of the real game and more, and White's are legal there: lines of Black's other figures
/// that the bishop may shut are open. Two things are left. A pass may be all that Black has while
/// the bishop has no move either: that is stalemate, so a pass alone saves him unless the bishop
/// can move wherever it stands. And a failure means nothing for the real game: it is doubtful.

namespace corvina
{

/// The reduced game can begin on the board: one bishop is all that Black has in figures, and
/// White's men are as told above.
bool CanShutOutBishop(const TChessboard& board);

/// Begins it: the bishop leaves the board.
void ShutOutBishop(TChessboard& board);

/// Black's pass stands for a move that he certainly has in the real game.
bool StandsForMove(const TChessboard& board);

/// A legal reply of Black counts against stalemate. The board is the one before the move.
inline bool CountsAsReply(const TChessboard& board, const TMove& move)
{
    return !move.IsNull() || StandsForMove(board);
}

/// The reply of Black behind the record is to be answered in the reduced game.
inline bool StartsOneColourPlay(const TChessboard& child)
{
    return (child.m_nHeuristics & SH_ONECOLORPLAYPOSSIBLE) && child.m_nPass == 1 &&
           CanShutOutBishop(child);
}

/// White's knights can't move in the reduced game without coming within reach of the bishop. Where
/// one of them is near the king: does White mate in two in the real game, wherever the bishop
/// stands? White is to move; the record is one of the reduced game.
bool OneColourReplay(TChessboard& board);

/// Squares of the bishop's colour that a caged bishop can come to as the men stand, its own among
/// them, and White's men that shut it in.
struct TBishopCage
{
    TSquare m_bishop = NO_SQUARE; ///< NO_SQUARE: there is no cage
    TSquareSet m_region = 0;
    TSquareSet m_walls = 0;

    bool IsFound() const { return m_bishop != NO_SQUARE; }
};

/// FILTER_SEPARATED_BLACK_BISHOP: Black's only bishop has a few squares to itself. That the cage
/// holds is a guess: what the game without the bishop shows has to be proved in the real one.
TBishopCage FindBishopCage(const TChessboard& board);

/// Begins the game without a caged bishop; White keeps off the region and the walls stay, as
/// the request's lists have it (TSolveRequest::m_forbiddenSquares).
void SeparateBishop(TChessboard& board, const TBishopCage& cage);

} // namespace corvina

#endif
