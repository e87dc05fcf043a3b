#ifndef CORVINA_HEURISTICS_KINGTAILORED_H
#define CORVINA_HEURISTICS_KINGTAILORED_H

#include "heuristics/kingtests.h"

/// Tailored conditions that hold back a cut of the king heuristics. Each one trades cuts for
/// solutions: an answer of true lets a position through to the full search, and a wrong one costs
/// time, never a false answer. Unless told otherwise the position is that after Black's move, and
/// nothing is changed.

namespace corvina
{

/// Answers of TestKingNet.
enum class EKingNet
{
    NotWorth, ///< the king is too free for a net
    Unknown,
    Mate, ///< proved
    Undecided
};

/// Does a mating net close around the Black king? A king with more than three free squares is not
/// worth the search; else mates within 3 half-moves are looked for, and within 5 when at most one
/// square is free.
EKingNet TestKingNet(TChessboard& board);

/// The same for a caller to whom a net that isn't worth a search is none.
EMateTest IsMateInNet(TChessboard& board);

/// What CountSurroundFree takes into account beyond the settled count.
enum class ESurroundRule : std::uint8_t
{
    Plain = 0,        ///< a White rook may take a line of free squares
    HeavyFigures = 1, ///< so may a queen
    Queens = 2,       ///< a queen may take any two squares
    InCheck = 0xFE,   ///< nothing: Black answers first
    None = 0xFF       ///< nothing
};

/// Free squares next to the Black king, as far as more than nLimit matter: never more than there
/// are once the loose Black figures next to the king have gone. A count not above nLimit is exact;
/// above it, a line or a figure that White is about to take lowers it.
int CountSurroundFree(const TChessboard& board, int nLimit, ESurroundRule rule);

/// From no free square next to it can the Black king go on to a square two steps away: it stays in
/// the pocket, however many squares that has. Trades cuts of pockets that leak later.
bool IsSurroundStillTight(const TChessboard& board);

/// The Black king can reach a square at the given distance, 1 or 2, over free squares.
bool IsKingBoxOpen(const TChessboard& board, int nDistance);

/// White has made one move, and the king had too many free squares in the root position: White
/// hasn't had the time to close the net.
bool IsFirstWhiteMoveEscape(const TChessboard& board, int nLimit);

/// Queens and rooks of White at most two squares from the Black king, and those that attack a
/// square next to it.
int CountMajorsNearKing(const TChessboard& board);
int CountMajorsGuardingKing(const TChessboard& board);

/// White has a queen move after which Black can't take her and at most nLimit squares next to the
/// king are free.
bool HasClosingQueenMove(const TChessboard& board, int nLimit);

/// A queen can go to a square next to the Black king where Black can't take her.
bool HasQueenContact(const TChessboard& board);

/// White's king can step to a square two from the Black king; with nLimit, to one from which at
/// most so many squares next to the Black king stay free.
bool HasKingApproach(const TChessboard& board, int nLimit = 8);

/// A White pawn of the sixth or seventh row has a move that checks, by its promotion or by opening
/// a line, and that Black can't answer by taking it.
bool HasPawnCheck(const TChessboard& board);

/// A pawn of the seventh row promotes now, with check or by a capture, and isn't lost.
bool HasPromotionWithTempo(const TChessboard& board);

/// White's most advanced pawn with a free way promotes before any Black pawn does and in the moves
/// left.
bool WinsPawnRace(const TChessboard& board);

/// Black's last move has opened a line of a White queen, rook or bishop to the square on which the
/// Black king stood in the root position: there it would stand in check.
bool HasOpenLineToRootKing(const TChessboard& board);

/// White has to deal with the figure that has just moved: it checks, or attacks a queen.
bool MustWhiteReact(const TChessboard& board);

/// A White rook can go to the file or row of the Black king, to a square that Black doesn't attack.
/// Also for the position after White's move.
bool HasRookLineAtKing(const TChessboard& board);

/// White's next move can take at least nMissing more of the free squares next to the king by a rook
/// or queen. For the position after White's move.
bool IsSurroundMendable(const TChessboard& child, int nMissing);

/// After White's move: more than nLimit squares next to the Black king are free; with minor figures
/// only, one more is allowed, since they close a net more slowly.
bool IsSurroundOpenAfterWhite(const TChessboard& child, int nLimit);
bool IsSurroundOpenForMinors(const TChessboard& child, int nLimit);

} // namespace corvina

#endif
