#ifndef CORVINA_SEARCH_HOOKS_H
#define CORVINA_SEARCH_HOOKS_H

#include "chess/chessboard.h"
#include "search/result.h"

#include <string>

/// What the nodes and the run ask of the heuristics and of the endgame tables. Every operation is
/// behind a test of the mask or of a flag, so that a search without them costs no call. Answers of
/// the heuristics: what a move is to be taken for, never a proof.

namespace corvina
{

/// Answers of IsBlackMoveDoubtful.
constexpr int HOOK_PASSES = 0;
constexpr int HOOK_DOUBTFUL = 1;
constexpr int HOOK_IMPOSSIBLE = 2; ///< certain: White's material can't mate in the moves left
constexpr int HOOK_UNDECIDED = -1; ///< no cut, but a bounded mate test gave up

/// Has Black's last move broken a heuristic of the mask? pMove is its entry of the move list or
/// null; a violation that may stay for a while puts TMove::MARK on it. Sets m_nDoubtReason. In pass
/// 1 with a mask only. White is to move on the board.
int IsBlackMoveDoubtful(TChessboard& board, TMove* pMove);

/// White's last move breaks a heuristic of the mask. Sets m_nDoubtReason. In pass 1 only, for masks
/// with a bit of WHITE_HOOK_MASK. Black is to move on the child.
bool IsWhiteMoveDoubtful(TChessboard& child);
extern const std::uint32_t WHITE_HOOK_MASK;

/// The signature of the parameters of the mask in force, to be recomputed after a change of either.
std::uint32_t ComputeHeurParams(const TChessboard& board);

/// The set in words: its heuristics with their parameters. bQuickMode: told too.
std::string GetHeuristicsText(const TChessboard& board, bool bQuickMode);

/// The end of a pass: makes the set of the board and its thread less restrictive for the next one.
/// 0: nothing is left; above 0: relaxed; below 0: relaxed by the rule that depends on time.
int TryRelaxSpecialHeuristics(TChessboard& board);

/// Relaxations that the run will make if it goes its whole way, and how many of them depend on
/// time. Board and context are left as they were.
struct TRelaxationCount
{
    int m_nRelaxations = 0;
    int m_nTimeDependent = 0;
};
TRelaxationCount ComputeRelaxationPlan(TChessboard& board, bool bStopAtEdgeEnd);

/// The Black king has come to the edge where it can be held: the stricter set is worth a try.
bool CanApplyEdgeHeuristicDynamically(const TChessboard& board);

/// The legal moves that the problem tells to try at this point of the solution (indications.h), and
/// their number; those that it tells to try last are none of them. White is to move. A board
/// without such hints has none.
int GetIndicatedMoves(TChessboard& board, TMove* pMoves);

/// Half-moves to mate by the endgame tables; 0: no mate, UNKNOWN: no answer.
constexpr int GLOBAL_REGISTER_UNKNOWN = 65535;

inline int AskGlobalRegister(const TChessboard&)
{
    return GLOBAL_REGISTER_UNKNOWN;
}

} // namespace corvina

#endif
