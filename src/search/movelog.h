#ifndef CORVINA_SEARCH_MOVELOG_H
#define CORVINA_SEARCH_MOVELOG_H

#include "search/threadcontext.h"

/// The log of all that a thread analyses: each move as it is taken up, and the result that closes
/// it, a tab for each half-move. Each thread writes a file of its own in the working folder,
/// MovesLogger_problem<number>_thread<number>.log, and appends to what is there. It makes a run
/// much slower and the files large. Callers ask m_bLogging first: that is all that it costs a run
/// without a log.

namespace corvina
{

/// Opens the log of the thread. When the file can't be opened the run is told, and goes on without.
void OpenMovesLog(TThreadContext& context, const TSolveRequest& request);

/// The thread takes up a move. bMade: the board is the position behind it; else it is the one in
/// which *pMove is about to be made.
void LogMove(const TChessboard& board, const TMove* pMove, bool bMade);

/// The position behind a move has got its result, which may be any value.
void LogResult(const TChessboard& board, int nResult);

/// A move that isn't made, since a heuristic cuts it.
void LogCutMove(const TChessboard& board, const TMove& move);

/// The position behind a move is settled for the reason that the text says.
void LogText(const TChessboard& board, const char* pText);

/// No log as long as the object lives: what the thread does isn't the line itself, but a trial.
class TLogOff
{
public:
    explicit TLogOff(TThreadContext& context) : m_context(context), m_bSaved(context.m_bLogOff)
    {
        m_context.m_bLogOff = true;
    }
    ~TLogOff() { m_context.m_bLogOff = m_bSaved; }
    TLogOff(const TLogOff&) = delete;
    TLogOff& operator=(const TLogOff&) = delete;

private:
    TThreadContext& m_context;
    const bool m_bSaved;
};

} // namespace corvina

#endif
