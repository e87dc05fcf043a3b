#ifndef CORVINA_SEARCH_WHITENODE_H
#define CORVINA_SEARCH_WHITENODE_H

#include "search/guides/scout.h"
#include "search/hooks.h"
#include "search/line.h"
#include "search/movelog.h"
#include "search/progress.h"
#include "search/registeraccess.h"
#include "search/servestop.h"
#include "search/shortmate.h"
#include "search/solverequest.h"
#include "search/threads/levelthread.h"
#include "search/threads/scheduler.h"

#include <algorithm>
#include <optional>
#include <thread>
#include <utility>

namespace corvina
{

/// Answer of TKind::ListMoves below.
constexpr int LIST_MATES = -1;

/// A node at White's move. TKind is what one search does differently from another:
///
///     int ListMoves(TChessboard& board, TMove* pMoves);
///         the moves to try first, in their order; LIST_MATES: none, White mates in time
///     int ListMoreMoves(TChessboard& board, TMove* pMoves, int nMoves, int* pnDoubtful);
///         those to try when the nMoves of the list have failed, appended, until none are left;
///         *pnDoubtful rises when moves are left out
///     bool IsCut(const TChessboard& board, const TMove& move);
///     bool IsCutAfterMove(TChessboard& child);
///         a heuristic cuts the move, before or after it is made
///     TSearchResult SearchReplies(TChessboard& child) const;
///         the node at Black's move; may be called in another thread, on a copy of the object
///     static constexpr bool JUGGLED;
///         the scheduler may take the list; then there is
///     int CountGoodMoves() const;
///         moves at the head of the list that promise most
template <class TKind>
class TWhiteNode
{
public:
    explicit TWhiteNode(TChessboard& board)
        : m_board(board), m_request(*board.m_pRequest), m_context(ContextOf(board)),
          m_nDepth(board.m_nMoves), m_anRepeat(m_context.m_anRepeatDepth)
    {
    }

    TSearchResult Search(bool bProbeRegister)
    {
        if (m_board.m_nPositionFlags & TChessboard::POSITION_GLOBALREGISTER) {
            if (const auto known = AnswerOfGlobalRegister())
                return *known;
        }
        m_bRegister = UsesRegister(m_board);
        if (bProbeRegister && m_bRegister) {
            if (const auto known = ProbeRegister(m_board))
                return *known;
        }
        if (m_nDepth == 1)
            return IsMateInOne(m_board) ? RESULT_MATE : RESULT_NO_MATE;
        if (!ReportProgress())
            return RESULT_NO_MATE;
        m_anRepeat[m_nDepth + 1] = 0;
        const TSearchResult nResult = SearchMoves();
        return nResult == RESULT_MATE && !m_bListMates ? OnMate() : nResult;
    }

    /// The part of a group's thread in the node of another thread: takes moves of the shared list
    /// until none are left. The answer is the node's; nothing of it is stored here.
    TLevelOutcome SearchShared(const TKind& kind, TLevelMoves& shared)
    {
        m_kind = kind;
        m_anRepeat[m_nDepth + 1] = 0;
        TMoveList moves;
        std::copy_n(shared.m_moves.begin(), shared.m_nCount, moves.data());
        const TShownList shown(m_context, m_nDepth);
        TLevelOutcome outcome;
        for (int i = TakeNextMove(shared); i < shared.m_nCount; i = TakeNextMove(shared)) {
            outcome.m_nResult =
                WaitWhileHeld(m_board) ? TryMoves(moves.data(), i, i + 1) : RESULT_REPETITION;
            if (outcome.m_nResult != RESULT_NO_MATE || m_bStopped)
                break;
        }
        outcome.m_bGivenUp = outcome.m_nResult == RESULT_REPETITION || m_bStopped || IsStopped();
        outcome.m_mate = m_mate;
        outcome.m_nDoubtful = m_nDoubtful;
        outcome.m_nRepetition = m_nRepetition;
        outcome.m_nRepeatDepth = m_anRepeat[m_nDepth + 1];
        outcome.m_nDoubtReason = m_context.m_nDoubtReason;
        outcome.m_bLeftOutByHand = m_context.m_bLeftOutByHand;
        return outcome;
    }

private:
    /// The callback of progress comes at depths 9, 25, 41 ...
    static constexpr int PROGRESS_PERIOD = 16;
    static constexpr int PROGRESS_DEPTH = 9;

    /// So deep that a scout's turn comes when it is due, not tens of milliseconds later.
    static constexpr int SCOUT_DEPTH = 7;

    bool IsStopped() const { return m_request.IsStopped(m_context.m_nThreadId); }

    /// At depths far enough apart that it costs nothing. False when the thread is to give up its
    /// first move: another one has proved it.
    bool ReportProgress()
    {
        if (m_nDepth == SCOUT_DEPTH && m_context.m_pScout)
            return LetScoutWork();
        const int nPlayed = m_board.m_nInitialMoves - m_nDepth;
        if (m_nDepth % PROGRESS_PERIOD != PROGRESS_DEPTH ||
            (m_nDepth != PROGRESS_DEPTH && nPlayed < PROGRESS_DEPTH))
            return true;
        PublishPositions(m_request, m_context);
        if (m_request.OnPositionAnalysed)
            m_request.OnPositionAnalysed(&m_board, m_context);
        return LetScoutWork();
    }

    bool LetScoutWork()
    {
        if (m_context.m_pScout)
            m_context.m_pScout->Work();
        if (!m_request.m_pFoundSolutions ||
            !m_request.m_pFoundSolutions->Contains(m_context.m_firstMove))
            return true;
        GiveUpFirstMove();
        return false;
    }

    /// Stops this thread. That is lifted when it has come back to the first moves, or to its end.
    void GiveUpFirstMove()
    {
        m_context.m_bSuspendResume = true;
        m_request.StopThread(m_context.m_nThreadId);
    }

    /// The tables' answer is exact; a mate that is too long may still fit a short mate search with
    /// moves to spare.
    std::optional<TSearchResult> AnswerOfGlobalRegister()
    {
        const int nPlies = AskGlobalRegister(m_board);
        if (nPlies == GLOBAL_REGISTER_UNKNOWN)
            return std::nullopt;
        if (nPlies == 0)
            return RESULT_NO_MATE;
        if (nPlies <= m_nDepth)
            return RESULT_MATE;
        if (m_context.m_nQuickerMateNesting &&
            nPlies <= m_nDepth + 2 * m_context.m_shAdditionalMoves) {
            m_context.m_bAdditionalMovesUsed = true;
            return RESULT_MATE;
        }
        return RESULT_NO_MATE;
    }

    TSearchResult SearchMoves()
    {
        TMoveList moves;
        const TShownList shown(m_context, m_nDepth);
        int nMoves = m_kind.ListMoves(m_board, moves.data());
        m_bListMates = nMoves == LIST_MATES;
        if (m_bListMates)
            return RESULT_MATE;
        for (int nDone = 0;;) {
            const TSearchResult nResult = m_nDepth < m_context.m_nWatchDepth
                                              ? TryMoves(moves.data(), nDone, nMoves)
                                              : TryMovesWatched(moves.data(), nDone, nMoves);
            if (nResult != RESULT_NO_MATE)
                return nResult;
            if (m_bStopped)
                return RESULT_NO_MATE;
            nDone = nMoves;
            nMoves += m_kind.ListMoreMoves(m_board, moves.data(), nMoves, &m_nDoubtful);
            if (nDone == nMoves)
                return OnListExhausted();
        }
    }

    /// RESULT_NO_MATE: none of them mates.
    TSearchResult TryMoves(TMove* pMoves, int nFrom, int nTo)
    {
        m_context.m_apMoves[m_nDepth] = pMoves;
        m_context.m_anMoveCount[m_nDepth] = static_cast<std::uint8_t>(nTo);
        m_context.m_anMoveIndex[m_nDepth] = static_cast<std::uint8_t>(nFrom);
        int i = nFrom;
        if (!m_request.IsAtRest())
            ServeStopAt(pMoves, nTo, i, false);
        for (; i < nTo && !m_bStopped; ++i) {
            m_context.m_anMoveIndex[m_nDepth] = static_cast<std::uint8_t>(i);
            const TSearchResult nResult = TryMove(pMoves[i]);
            if (nResult == RESULT_MATE)
                return NoteMate(pMoves[i]);
            // Behind the move: it may have been given up.
            if (!m_request.IsAtRest() && ServeStopAt(pMoves, nTo, i, true))
                continue;
            if (nResult == RESULT_DOUBTFUL)
                ++m_nDoubtful;
            else if (nResult <= RESULT_REPETITION && !NoteRepetition())
                return RESULT_REPETITION;
        }
        return RESULT_NO_MATE;
    }

    TSearchResult NoteMate(const TMove& move)
    {
        m_context.m_aWhiteKillers[m_nDepth] = {move, m_board.m_board[move.m_from]};
        m_mate = move;
        return RESULT_MATE;
    }

    /// As TryMoves, where the moves may be shared or the thread may be held.
    TSearchResult TryMovesWatched(TMove* pMoves, int nFrom, int nTo)
    {
        if (!WaitWhileHeld(m_board))
            return Leave();
        m_context.m_apMoves[m_nDepth] = pMoves;
        m_context.m_anMoveCount[m_nDepth] = static_cast<std::uint8_t>(nTo);
        m_context.m_anMoveIndex[m_nDepth] = static_cast<std::uint8_t>(nFrom);
        const int nMoves = nTo - nFrom;
        if (const TSpawnLeave leave(m_board, nMoves); leave) {
            const auto outcome = NextMultithreadingLevel(
                m_board, pMoves + nFrom, nMoves,
                [&kind = std::as_const(m_kind)](TChessboard& board, TLevelMoves& shared) {
                    return TWhiteNode(board).SearchShared(kind, shared);
                });
            if (outcome)
                return TakeUp(*outcome);
        }
        if constexpr (TKind::JUGGLED) {
            if (MayJuggle(m_board, nMoves, m_kind.CountGoodMoves()))
                return JuggleMoves(pMoves, nFrom, nTo);
        }
        return TryMoves(pMoves, nFrom, nTo);
    }

    /// Without an answer.
    TSearchResult Leave()
    {
        m_bStopped = true;
        return RESULT_NO_MATE;
    }

    /// Moves that others have tried for this node count as if it had tried them itself.
    TSearchResult TakeUp(const TLevelOutcome& outcome)
    {
        if (outcome.m_nResult == RESULT_MATE)
            return NoteMate(outcome.m_mate);
        if (outcome.m_bGivenUp)
            return GiveUpWithOthers();
        m_nDoubtful += outcome.m_nDoubtful;
        m_nRepetition += outcome.m_nRepetition;
        m_anRepeat[m_nDepth + 1] = std::max(m_anRepeat[m_nDepth + 1], outcome.m_nRepeatDepth);
        if (outcome.m_nDoubtful)
            m_context.m_nDoubtReason = outcome.m_nDoubtReason;
        m_context.m_bLeftOutByHand |= outcome.m_bLeftOutByHand;
        return RESULT_NO_MATE;
    }

    /// A thread at work for this node has left it without an answer. Unless this thread is on its
    /// way back anyway, the first move isn't worth going on with.
    TSearchResult GiveUpWithOthers()
    {
        if (m_request.LookAtStop(m_context.m_nThreadId, m_nDepth) != EStopCheck::GiveUp)
            GiveUpFirstMove();
        return Leave();
    }

    /// As TryMoves, with the moves that need a search juggled by a scheduler.
    TSearchResult JuggleMoves(TMove* pMoves, int nFrom, int nTo)
    {
        TScheduler scheduler(m_board, m_kind.CountGoodMoves(), [kind = m_kind](TChessboard& child) {
            return kind.SearchReplies(child);
        });
        bool bMayStart = true;
        for (int nNext = nFrom;;) {
            int i = SchedulerChooseNext(scheduler, bMayStart && nNext < nTo);
            int nResult = SCHEDULER_PENDING;
            if (i != TSchedulerBook::NONE) {
                m_context.m_anMoveIndex[m_nDepth] = static_cast<std::uint8_t>(i);
                nResult = SchedulerWait(scheduler, i);
                if (nResult <= RESULT_REPETITION)
                    m_anRepeat[m_nDepth] = SchedulerGetRepetition(scheduler, i);
            }
            else if (nNext < nTo) {
                i = nNext++;
                nResult = SchedulerLeftOut(scheduler, i) ? SCHEDULER_GIVEN_UP
                                                         : BeginMove(scheduler, pMoves, i);
                if (nResult == SCHEDULER_NOT_STARTED)
                    --nNext;
            }
            else {
                return RESULT_NO_MATE;
            }
            // Without a thread for it, a new move has to wait until another one has ended.
            bMayStart =
                nResult != SCHEDULER_NOT_STARTED && (bMayStart || nResult != SCHEDULER_PENDING);
            if (nResult == RESULT_MATE)
                return NoteMate(pMoves[i]);
            if (!TakeJuggled(scheduler, i, nResult))
                return m_bStopped ? RESULT_NO_MATE : RESULT_REPETITION;
        }
    }

    static constexpr int SCHEDULER_NOT_STARTED = 253; ///< beside the answers of SchedulerWait

    /// Makes a move and gives it a thread, if it isn't settled by that.
    int BeginMove(TScheduler& scheduler, TMove* pMoves, int nIndex)
    {
        constexpr int MAX_TRIES = 3;
        TSearchResult nSettled = RESULT_NO_MATE;
        TChessboard* pChild = MakeTry(pMoves[nIndex], &nSettled);
        if (!pChild)
            return nSettled;
        for (int i = 0; i < MAX_TRIES; ++i) {
            if (SchedulerStart(scheduler, *pChild, nIndex))
                return SCHEDULER_PENDING;
            if (SchedulerMustQuit(scheduler))
                return SCHEDULER_GIVEN_UP;
            std::this_thread::yield();
        }
        return SchedulerFirstFree(scheduler) == TSchedulerBook::NONE
                   ? int{TryMoves(pMoves, nIndex, nIndex + 1)}
                   : SCHEDULER_NOT_STARTED;
    }

    /// Counts the result of a move. False when the node is to end.
    bool TakeJuggled(TScheduler& scheduler, int nIndex, int nResult)
    {
        if (SchedulerMustQuit(scheduler)) {
            m_bStopped = true;
            return false;
        }
        if (nResult == SCHEDULER_GIVEN_UP && SchedulerLeftOut(scheduler, nIndex)) {
            ++m_nDoubtful;
            m_context.m_bLeftOutByHand = m_request.m_bInfluencedByHand = true;
        }
        else if (nResult == SCHEDULER_GIVEN_UP) {
            GiveUpWithOthers();
            return false;
        }
        else if (nResult == RESULT_DOUBTFUL) {
            ++m_nDoubtful;
        }
        return nResult > RESULT_REPETITION || NoteRepetition();
    }

    /// True: the move at i doesn't count, and the list goes on behind the new i. bTried: the move
    /// at i has been tried; else the list goes on at i.
    bool ServeStopAt(TMove* pMoves, int nMoves, int& i, bool bTried)
    {
        return ServeStop(m_board, &m_bStopped, [&](const TEngineCommand& command) {
            const TServedList served = ServeOnWhiteList(command, pMoves, nMoves, i, bTried);
            m_nDoubtful += served.m_nLeftOut;
            if (served.m_nLeftOut)
                m_context.m_bLeftOutByHand = m_request.m_bInfluencedByHand = true;
            i = served.m_nNext - bTried;
        });
    }

    /// One move of the list; a move that is illegal or ends in a repetition is no mate.
    TSearchResult TryMove(TMove& move)
    {
        TSearchResult nSettled = RESULT_NO_MATE;
        TChessboard* pChild = MakeTry(move, &nSettled);
        if (!pChild)
            return nSettled;
        const TSearchResult nResult = m_kind.SearchReplies(*pChild);
        if (m_context.m_bLogging)
            LogResult(*pChild, nResult);
        return nResult;
    }

    /// The position behind a move; null when that is settled without a search.
    TChessboard* MakeTry(TMove& move, TSearchResult* pnSettled)
    {
        *pnSettled = RESULT_DOUBTFUL;
        if (m_kind.IsCut(m_board, move)) {
            if (m_context.m_bLogging)
                LogCutMove(m_board, move);
            return nullptr;
        }
        TChessboard& child = m_context.MakeChild(m_board);
        *pnSettled = RESULT_NO_MATE;
        if (!child.MakeWhiteMove(&move))
            return nullptr;
        ++m_context.m_nPositions;
        if (m_context.m_bLogging)
            LogMove(child, &move, true);
        if (const std::uint16_t nEarlier = CountingRepetition(child)) {
            m_anRepeat[m_nDepth] = nEarlier;
            *pnSettled = RESULT_REPETITION;
        }
        else if (m_kind.IsCutAfterMove(child)) {
            *pnSettled = RESULT_DOUBTFUL;
        }
        else {
            return &child;
        }
        if (m_context.m_bLogging)
            LogResult(child, *pnSettled);
        return nullptr;
    }

    /// A move leans on a position further up. False when the thread is being stopped.
    bool NoteRepetition()
    {
        if (IsStopped()) {
            m_anRepeat[m_nDepth + 1] = m_board.m_nInitialMoves;
            return false;
        }
        m_anRepeat[m_nDepth + 1] = std::max(m_anRepeat[m_nDepth + 1], m_anRepeat[m_nDepth]);
        ++m_nRepetition;
        return true;
    }

    TSearchResult OnListExhausted()
    {
        if (IsStopped() || m_context.m_nSuspended > 1)
            return RESULT_NO_MATE;
        // A repetition must not make certain what has been left out.
        if (m_nDoubtful && m_context.m_bLeftOutByHand)
            return RESULT_DOUBTFUL;
        if (m_board.m_nPass == 1 && !m_request.m_bSafeMode)
            return OnListExhaustedInQuickMode();
        return m_anRepeat[m_nDepth + 1] > m_nDepth ? RESULT_REPETITION
                                                   : OnListExhaustedForCertain();
    }

    TSearchResult OnListExhaustedInQuickMode()
    {
        TSearchResult nResult = RESULT_NO_MATE;
        if (m_nRepetition) {
            ++m_nDoubtful;
            nResult = RESULT_REPETITION;
        }
        else if (m_nDoubtful) {
            nResult = RESULT_DOUBTFUL;
        }
        StoreFailure();
        return nResult;
    }

    /// No answer below leans on a position above the node.
    TSearchResult OnListExhaustedForCertain()
    {
        if (m_board.m_nHeuristics != 0) {
            StoreFailure();
            if (m_nDoubtful == 0 && m_anRepeat[m_nDepth + 1] == 0)
                return RESULT_NO_MATE;
            return RESULT_DOUBTFUL;
        }
        if (m_nDoubtful)
            return RESULT_DOUBTFUL;
        StoreFailure();
        return RESULT_NO_MATE;
    }

    void StoreFailure()
    {
        if (!m_bRegister)
            return;
        if (m_nDoubtful == 0 && (m_board.m_nHeuristics == 0 || m_anRepeat[m_nDepth + 1] == 0))
            StoreCertain(m_board, m_nDepth, false);
        else
            StoreDoubtful(m_board, m_nDepth);
    }

    /// Plies within which the mate holds: more than the node has when additional moves were used.
    std::uint16_t MateDepth() const
    {
        return static_cast<std::uint16_t>(
            m_nDepth + (m_context.m_bAdditionalMovesUsed ? 2 * m_context.m_shAdditionalMoves : 0));
    }

    TSearchResult OnMate()
    {
        if (m_board.m_LastMove.PromotionKind() && m_board.m_pParent &&
            m_mate.m_to == m_board.m_LastMove.m_to)
            StoreForAllPromotions();
        if (m_bRegister)
            StoreCertain(m_board, MateDepth(), true);
        return RESULT_MATE;
    }

    /// White mates by taking the figure that has just been promoted: whatever it was.
    void StoreForAllPromotions()
    {
        m_context.m_bSkipEqualPromotions = true;
        if (!m_bRegister)
            return;
        std::uint8_t& square = m_board.m_board[m_mate.m_to];
        const TFigure promoted = square;
        for (const TFigure kind : g_aPromotionKinds) {
            square = COLOUR_BLACK | kind;
            if (square != promoted)
                StoreCertain(m_board, MateDepth(), true);
        }
        square = promoted;
    }

    TKind m_kind;
    TChessboard& m_board;
    TSolveRequest& m_request;
    TThreadContext& m_context;
    const std::uint16_t m_nDepth;
    std::vector<std::uint16_t>& m_anRepeat; ///< by depth plus one
    bool m_bRegister = false;
    bool m_bStopped = false;   ///< within the list, by a stop or a command
    bool m_bListMates = false; ///< the list itself has proved the mate
    int m_nDoubtful = 0;       ///< moves that were cut or came back doubtful
    int m_nRepetition = 0;     ///< moves that lean on a repetition
    TMove m_mate{};
};

} // namespace corvina

#endif
