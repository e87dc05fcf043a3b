#ifndef CORVINA_SEARCH_WHITENODE_H
#define CORVINA_SEARCH_WHITENODE_H

#include "search/hooks.h"
#include "search/line.h"
#include "search/registeraccess.h"
#include "search/scout.h"
#include "search/servestop.h"
#include "search/shortmate.h"
#include "search/solverequest.h"

#include <algorithm>
#include <optional>
#include <thread>

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
///     TSearchResult SearchReplies(TChessboard& child);
///         the node at Black's move
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

private:
    /// The callback of progress comes at depths 9, 25, 41 ...
    static constexpr int PROGRESS_PERIOD = 16;
    static constexpr int PROGRESS_DEPTH = 9;

    bool IsStopped() const { return m_request.IsStopped(m_context.m_nThreadId); }

    /// At depths far enough apart that it costs nothing. False when the thread is to give up its
    /// first move: another one has proved it.
    bool ReportProgress()
    {
        const int nPlayed = m_board.m_nInitialMoves - m_nDepth;
        if (m_nDepth % PROGRESS_PERIOD != PROGRESS_DEPTH ||
            (m_nDepth != PROGRESS_DEPTH && nPlayed < PROGRESS_DEPTH))
            return true;
        if (m_context.m_pScout)
            m_context.m_pScout->Work();
        if (m_request.OnPositionAnalysed)
            m_request.OnPositionAnalysed(m_board);
        if (!m_request.m_pFoundSolutions ||
            !m_request.m_pFoundSolutions->Contains(m_context.m_firstMove))
            return true;
        GiveUpFirstMove();
        return false;
    }

    /// Stops this thread, unless it is to stop for another reason. It lifts that when it has come
    /// back to the first moves.
    void GiveUpFirstMove()
    {
        while (!IsStopped() && m_context.m_nSuspended <= 1 && !m_context.m_bSuspendResume) {
            m_request.LookAtStop(m_context.m_nThreadId, m_nDepth); // a pause comes first
            m_context.m_bSuspendResume = m_request.StopThread(m_context.m_nThreadId);
            std::this_thread::yield(); // another thread may be on its way back
        }
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
            const TSearchResult nResult = TryMoves(moves.data(), nDone, nMoves);
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
            if (nResult == RESULT_MATE) {
                m_context.m_aWhiteKillers[m_nDepth] = {pMoves[i],
                                                       m_board.m_board[pMoves[i].m_from]};
                m_mate = pMoves[i];
                return RESULT_MATE;
            }
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
        if (m_kind.IsCut(m_board, move))
            return RESULT_DOUBTFUL;
        TChessboard& child = m_context.MakeChild(m_board);
        if (!child.MakeWhiteMove(&move))
            return RESULT_NO_MATE;
        ++m_context.m_nPositions;
        if (const std::uint16_t nEarlier = CountingRepetition(child)) {
            m_anRepeat[m_nDepth] = nEarlier;
            return RESULT_REPETITION;
        }
        return m_kind.IsCutAfterMove(child) ? RESULT_DOUBTFUL : m_kind.SearchReplies(child);
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
