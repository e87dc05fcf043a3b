#ifndef CORVINA_HEURISTICS_FORCINGMOVES_H
#define CORVINA_HEURISTICS_FORCINGMOVES_H

#include "heuristics/heuristicsparams.h"
#include "search/threadcontext.h"

namespace corvina
{

/// The candidates of the forced mate search: the moves of White that check or threaten a mate, by
/// the level, and some exceptions. The list steers which moves are tried, and proves nothing.

/// A list of candidates and what it leaves out.
struct TForcingList
{
    int m_nMoves = 0;
    bool m_bComplete = false; ///< it has all legal moves
};

/// Both take a level from FFM_CHECK_ONLY to FFM_THREAT_5, and list legal moves, none of them twice.
/// White is to move with at least 5 half-moves left. They write the slots of the thread's stack
/// below the record, and its hints on the order of moves.

/// Checks, evasions and captures, into pMoves with the room of a TMoveList. bAddCaptures: figures
/// next to the Black king may be taken, at some levels. Returns the number of moves.
template <int nLevel>
int GenerateForcingMoves(TChessboard& board, TMove* pMoves, bool bAddCaptures);

/// Appends the moves that cost more to find to the nMoves that the list has: threats, moves that
/// close in on the king, and what the problem tells to try. previousMove is a candidate if it
/// threatens mate in one, whatever the level; a null move for none.
template <int nLevel>
TForcingList GenerateQuietForcingMoves(TChessboard& board, TMove* pMoves, int nMoves,
                                       const TMove& previousMove);

extern template int GenerateForcingMoves<FFM_CHECK_ONLY>(TChessboard&, TMove*, bool);
extern template int GenerateForcingMoves<FFM_THREAT_1>(TChessboard&, TMove*, bool);
extern template int GenerateForcingMoves<FFM_THREAT_1_PLUS>(TChessboard&, TMove*, bool);
extern template int GenerateForcingMoves<FFM_THREAT_2>(TChessboard&, TMove*, bool);
extern template int GenerateForcingMoves<FFM_THREAT_2_PLUS>(TChessboard&, TMove*, bool);
extern template int GenerateForcingMoves<FFM_THREAT_3>(TChessboard&, TMove*, bool);
extern template int GenerateForcingMoves<FFM_THREAT_4>(TChessboard&, TMove*, bool);
extern template int GenerateForcingMoves<FFM_THREAT_5>(TChessboard&, TMove*, bool);
extern template TForcingList GenerateQuietForcingMoves<FFM_CHECK_ONLY>(TChessboard&, TMove*, int,
                                                                       const TMove&);
extern template TForcingList GenerateQuietForcingMoves<FFM_THREAT_1>(TChessboard&, TMove*, int,
                                                                     const TMove&);
extern template TForcingList GenerateQuietForcingMoves<FFM_THREAT_1_PLUS>(TChessboard&, TMove*, int,
                                                                          const TMove&);
extern template TForcingList GenerateQuietForcingMoves<FFM_THREAT_2>(TChessboard&, TMove*, int,
                                                                     const TMove&);
extern template TForcingList GenerateQuietForcingMoves<FFM_THREAT_2_PLUS>(TChessboard&, TMove*, int,
                                                                          const TMove&);
extern template TForcingList GenerateQuietForcingMoves<FFM_THREAT_3>(TChessboard&, TMove*, int,
                                                                     const TMove&);
extern template TForcingList GenerateQuietForcingMoves<FFM_THREAT_4>(TChessboard&, TMove*, int,
                                                                     const TMove&);
extern template TForcingList GenerateQuietForcingMoves<FFM_THREAT_5>(TChessboard&, TMove*, int,
                                                                     const TMove&);

} // namespace corvina

#endif
