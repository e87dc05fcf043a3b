#ifndef CORVINA_SEARCH_BLACKNODE_H
#define CORVINA_SEARCH_BLACKNODE_H

#include "chess/notation.h"
#include "heuristics/onecolour.h"
#include "heuristics/triangles.h"
#include "search/blackcuts.h"
#include "search/blacksort.h"
#include "search/movelog.h"
#include "search/ordering.h"
#include "search/registeraccess.h"
#include "search/servestop.h"
#include "search/solverequest.h"
#include "search/tryunblock.h"

#include <bit>
#include <optional>

namespace corvina
{

/// A node at Black's move, other than the leaves. TKind is what one search does differently from
/// another:
///
///     bool WalksAllReplies(const TChessboard& board);
///         every reply is analysed and recorded
///     EBlackSort FormOfSort(const TChessboard& board);
///         what the sort of the replies may decide
///     bool VerifiesHeuristics(const TChessboard& child);
///         the hook is to be asked about the reply, if there are heuristics
///     bool HasShortMate(TChessboard& child);
///         a short mate against the reply
///     TSearchResult SearchWhite(TChessboard& child);
///         the node at White's move; the register has been asked
template <class TKind>
class TBlackNode
{
public:
    explicit TBlackNode(TChessboard& board)
        : m_board(board), m_request(*board.m_pRequest), m_context(ContextOf(board)),
          m_nDepth(board.m_nMoves), m_anRepeat(m_context.m_anRepeatDepth)
    {
    }

    TSearchResult Search()
    {
        TMoveList moves;
        int nMoves = m_board.GenerateBlackMoves(moves.data());
        if (m_nDepth >= MIN_SORTED_DEPTH) {
            nMoves = SortBlackMoves(m_board, moves.data(), nMoves, &m_bHasReply,
                                    TKind::WalksAllReplies(m_board) ? EBlackSort::KeepsAll
                                                                    : TKind::FormOfSort(m_board));
            m_bProbed = true;
        }
        else {
            BringKillerToFront(m_board, m_context.m_aBlackKillers[m_nDepth], moves.data(), nMoves);
        }
        if (nMoves < 0)
            return ResultOfRefutation(static_cast<TSearchResult>(nMoves));
        const TShownList shown(m_context, m_nDepth);
        m_context.m_apMoves[m_nDepth] = moves.data();
        m_context.m_anMoveCount[m_nDepth] = static_cast<std::uint8_t>(nMoves);
        if (TKind::WalksAllReplies(m_board))
            return WalkAllReplies(moves.data(), nMoves);
        for (int i = 0; i < nMoves; ++i) {
            m_context.m_anMoveIndex[m_nDepth] = static_cast<std::uint8_t>(i);
            if (!m_request.IsAtRest()) {
                ServeStopAt(moves.data(), nMoves, i, false);
                if (m_bStopped)
                    return RESULT_NO_MATE;
            }
            const TSearchResult nResult = TryReply(moves[i]);
            if (nResult != RESULT_MATE) {
                // The refutation may be nothing but a search that was given up.
                if (!m_request.IsAtRest() && ServeStopAt(moves.data(), nMoves, i, true)) {
                    if (m_bStopped)
                        return RESULT_NO_MATE;
                    --i;
                    continue;
                }
                m_context.m_aBlackKillers[m_nDepth] = {moves[i], m_board.m_board[moves[i].m_from]};
                return ResultOfRefutation(nResult);
            }
            if (moves[i].PromotionKind() && m_context.m_bSkipEqualPromotions) {
                m_context.m_bSkipEqualPromotions = false;
                nMoves = DropEqualPromotions(moves.data(), i, nMoves);
                m_context.m_anMoveCount[m_nDepth] = static_cast<std::uint8_t>(nMoves);
            }
        }
        return m_bHasReply || m_board.m_blackChecker != NO_CHECK ? RESULT_MATE : RESULT_NO_MATE;
    }

private:
    /// Below this depth the replies are tried as generated, the latest refutation first.
    static constexpr int MIN_SORTED_DEPTH = 6;

    /// True: a reply that was tried at i doesn't count, and the one that is there now is to be
    /// tried.
    bool ServeStopAt(TMove* pMoves, int nMoves, int i, bool bTried)
    {
        return ServeStop(m_board, &m_bStopped, [&](const TEngineCommand& command) {
            if (bTried)
                ServeOnBlackList(command, pMoves, nMoves, i);
        });
    }

    /// The root of the defence task: every reply is analysed and recorded.
    TSearchResult WalkAllReplies(TMove* pMoves, int nMoves)
    {
        m_request.m_vecDefences.clear();
        m_request.m_vecDefenceRecords.clear();
        bool bDoubtful = false;
        for (int i = 0; i < nMoves; ++i) {
            const auto start = m_request.Now();
            const std::uint64_t nPositions = m_context.m_nPositions;
            const TSearchResult nResult = TryReply(pMoves[i]);
            if (nResult != RESULT_MATE && m_request.IsStopped(m_context.m_nThreadId))
                break;
            TDefenceRecord record;
            record.m_move = pMoves[i];
            record.m_nPositions = m_context.m_nPositions - nPositions;
            record.m_nMilliseconds = static_cast<std::uint32_t>((m_request.Now() - start) /
                                                                std::chrono::milliseconds(1));
            const bool bCertain =
                nResult >= RESULT_NO_MATE || m_board.m_nPass > 1 || m_board.m_nHeuristics == 0;
            bDoubtful |= !bCertain;
            record.m_bRepetition = nResult <= RESULT_REPETITION;
            record.m_bRefutes = bCertain && nResult != RESULT_MATE && !record.m_bRepetition;
            m_request.m_vecDefenceRecords.push_back(record);
            if (bCertain && nResult != RESULT_MATE)
                NoteDefence(pMoves[i]);
        }
        if (!m_request.m_vecDefences.empty())
            return RESULT_NO_MATE;
        return bDoubtful ? RESULT_DOUBTFUL : RESULT_MATE;
    }

    void NoteDefence(const TMove& move)
    {
        m_request.m_vecDefences.push_back(move);
        if (m_request.OnDefenceFound)
            m_request.OnDefenceFound(move, PrintMove(move, m_board), m_request.m_nProblemNumber);
    }

    /// A result above 0: White mates all the same, or the move is illegal. A sorted list holds only
    /// legal moves that the register doesn't know.
    TSearchResult TryReply(TMove& move)
    {
        TChessboard& child = m_context.MakeChild(m_board);
        if (!child.MakeBlackMove(&move, m_bProbed))
            return RESULT_MATE;
        m_bHasReply |= CountsAsReply(m_board, move);
        ++m_context.m_nPositions;
        if (m_context.m_bLogging)
            LogMove(child, &move, true);
        const TSearchResult nResult = ResultOfReply(child, move);
        if (m_context.m_bLogging)
            LogResult(child, nResult);
        return nResult;
    }

    TSearchResult ResultOfReply(TChessboard& child, TMove& move)
    {
        if (TKind::VerifiesHeuristics(child)) {
            const TSearchResult nResult = ResultOfBlackHook(child, move);
            if (nResult != RESULT_MATE)
                return nResult;
        }
        if (!m_bProbed && UsesRegister(child)) {
            if (const auto known = ProbeRegister(child)) {
                if (*known == RESULT_MATE && m_context.m_bLogging)
                    LogText(child, "Mate found (pos.in temp.reg.)");
                return *known;
            }
        }
        if ((child.m_nHeuristics & (SH_ONECOLORPLAYPOSSIBLE | SH_ZUGZWANGTRIANGLES)) &&
            child.m_nPass == 1)
            return AnswerUnderRareSet(child);
        return Answer(child, TKind::HasShortMate(child));
    }

    TSearchResult Answer(TChessboard& child, bool bShortMate)
    {
        m_context.m_bSkipEqualPromotions = false;
        if (bShortMate) {
            if (m_context.m_bLogging && m_context.m_bAdditionalMovesUsed)
                LogText(child, "QuickerMate with AdditionalMoves found (with glob.reg./Nalimov "
                               "lookup)");
            return RESULT_MATE;
        }
        if (m_nDepth >= m_request.m_nMinUnblockPlies && TriesUnblock(child) &&
            SearchWithBlockedFigures(child, TKind::SearchWhite) == RESULT_MATE)
            return RESULT_MATE;
        return TKind::SearchWhite(child);
    }

    /// On a triangle White waits: no mate is short as long as it stands.
    TSearchResult AnswerUnderRareSet(TChessboard& child)
    {
        if (StartsOneColourPlay(child))
            return AnswerWithoutBishop(child);
        if ((child.m_nHeuristics & SH_ZUGZWANGTRIANGLES) && child.m_nWhiteQueens == 1 &&
            child.m_nBlackRooks > 0 && !FitsTriangle(child))
            DropForSubtree(child, SH_ZUGZWANGTRIANGLES);
        const bool bWaits = child.m_nHeuristics & SH_ZUGZWANGTRIANGLES;
        return Answer(child, !bWaits && TKind::HasShortMate(child));
    }

    /// A mate counts, anything else is a doubt of the heuristic.
    TSearchResult AnswerWithoutBishop(TChessboard& child)
    {
        ShutOutBishop(child);
        if (Answer(child, TKind::HasShortMate(child)) == RESULT_MATE)
            return RESULT_MATE;
        m_context.m_nDoubtReason = SH_ONECOLORPLAYPOSSIBLE;
        ++m_context.m_anCuts[std::countr_zero(SH_ONECOLORPLAYPOSSIBLE)];
        return RESULT_DOUBTFUL;
    }

    TSearchResult ResultOfRefutation(TSearchResult nResult)
    {
        if (nResult == RESULT_REFUTED)
            return RESULT_NO_MATE;
        if (nResult > RESULT_REPETITION)
            return nResult;
        if (m_anRepeat[m_nDepth] <= m_nDepth)
            return m_board.m_nPass == 1 ? RESULT_DOUBTFUL : RESULT_NO_MATE;
        m_anRepeat[m_nDepth + 1] = m_anRepeat[m_nDepth];
        return nResult;
    }

    /// Takes the other promotions on the square out of the rest of the list.
    static int DropEqualPromotions(TMove* pMoves, int nDone, int nMoves)
    {
        int nKept = nDone + 1;
        for (int i = nDone + 1; i < nMoves; ++i) {
            if (FromTo(pMoves[i]) != FromTo(pMoves[nDone]))
                pMoves[nKept++] = pMoves[i];
        }
        return nKept;
    }

    TChessboard& m_board;
    TSolveRequest& m_request;
    TThreadContext& m_context;
    const std::uint16_t m_nDepth;
    std::vector<std::uint16_t>& m_anRepeat;
    bool m_bHasReply = false;
    bool m_bStopped = false; ///< by a stop or a command
    bool m_bProbed = false;  ///< the list is sorted: the register has been asked for each reply
};

/// A leaf: no half-move is left.
inline TSearchResult ResultOfLeaf(const TChessboard& board)
{
    return board.m_blackChecker != NO_CHECK && !board.CanBlackEscapeCheck() ? RESULT_MATE
                                                                            : RESULT_NO_MATE;
}

} // namespace corvina

#endif
