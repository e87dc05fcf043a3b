#ifndef CORVINA_SEARCH_ROOTSETUP_H
#define CORVINA_SEARCH_ROOTSETUP_H

#include "search/solverequest.h"

namespace corvina
{

/// The stages of a run, as TChessboard::m_nPass has them.
constexpr std::uint8_t PASS_WITH_HEURISTICS = 1;
constexpr std::uint8_t PASS_WITHOUT_HEURISTICS = 2;

/// Gives the root the set that its request begins with, and notes the facts of the position that
/// the heuristics ask for. The stage is the last one when the set is empty.
void TakeUpHeuristics(TChessboard& root);

/// Makes the record the root of a thread, with the parameters of its request's set. The context
/// must outlive the record's use.
void PutOnThread(TChessboard& root, TThreadContext& context);

/// Passes that the run makes if it goes its whole way and every pass takes its time. The root is on
/// the thread.
std::uint64_t PlannedPasses(TChessboard& root, const TThreadContext& context);

/// Takes away the rest of the set: the last stage begins.
void DropHeuristics(TChessboard& root);

} // namespace corvina

#endif
