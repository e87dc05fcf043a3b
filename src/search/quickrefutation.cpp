#include "search/quickrefutation.h"

#include "chess/squaresets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/lastmoves.h"
#include "search/blackcuts.h"
#include "search/line.h"
#include "search/movelog.h"
#include "search/ordering.h"
#include "search/registeraccess.h"
#include "search/shortmate.h"
#include "search/solverequest.h"
#include "search/whitecuts.h"

#include <algorithm>
#include <bit>

namespace corvina
{
namespace
{

/// Shorter tasks, and positions with fewer half-moves left, are searched out instead.
constexpr int MIN_TASK = 12;
constexpr int MIN_DEPTH = 11;

/// From this depth of walk on a short mate is looked for first.
constexpr int MATE_IN_TWO_FIRST = 6;

int SearchQuickBlack(TChessboard& board, int nBudget);

/// What the moves of a quick node at White's move have come to.
class TQuickWhite
{
public:
    explicit TQuickWhite(TChessboard& board)
        : m_board(board), m_request(*board.m_pRequest), m_context(ContextOf(board)),
          m_nDepth(board.m_nMoves), m_anRepeat(m_context.m_anRepeatDepth),
          m_bRegister(UsesRegister(board))
    {
    }

    int Search(int nBudget)
    {
        m_anRepeat[m_nDepth + 1] = 0;
        if (m_bRegister) {
            if (const auto known = ProbeRegister(m_board))
                return *known == RESULT_MATE      ? QUICK_UNKNOWN
                       : *known == RESULT_NO_MATE ? QUICK_NO_MATE
                                                  : QUICK_DOUBTFUL;
        }
        if (nBudget <= 0 || IsGivenUp())
            return QUICK_UNKNOWN;
        TMoveList moves;
        const int nMoves = m_board.GenerateWhiteMoves(moves.data());
        TKiller& killer = m_context.m_aUnrefuted[m_nDepth];
        BringKillerToFront(m_board, killer, moves.data(), nMoves);
        for (int i = 0; i < nMoves; ++i) {
            if (!IsRefuted(moves[i], nBudget)) {
                killer = {moves[i], m_board.m_board[moves[i].m_from]};
                return QUICK_UNKNOWN;
            }
        }
        // A search of a hook that was given up is no answer.
        return m_request.IsAtRest() ? Conclude() : QUICK_UNKNOWN;
    }

private:
    /// A pause is waited for.
    bool IsGivenUp() const
    {
        return !m_request.IsAtRest() &&
               m_request.LookAtStop(m_context.m_nThreadId, m_nDepth) == EStopCheck::GiveUp;
    }

    /// Also of an illegal move.
    bool IsRefuted(TMove& move, int nBudget)
    {
        if (IsWhiteMoveCut(m_board, move)) {
            m_bDoubtful = true;
            return true;
        }
        TChessboard& child = m_context.MakeChild(m_board);
        if (!child.MakeWhiteMove(&move))
            return true;
        ++m_context.m_nPositions;
        if (const std::uint16_t nEarlier = CountingRepetition(child)) {
            NoteRepetition(nEarlier);
            return true;
        }
        if (IsCutAfterWhiteMove(child)) {
            m_bDoubtful = true;
            return true;
        }
        const int nAnswer = SearchQuickBlack(child, nBudget - 1);
        if (nAnswer == QUICK_REPETITION)
            NoteRepetition(m_anRepeat[m_nDepth]);
        m_bDoubtful |= nAnswer == QUICK_DOUBTFUL;
        return nAnswer != QUICK_UNKNOWN;
    }

    void NoteRepetition(std::uint16_t nEarlier)
    {
        m_anRepeat[m_nDepth + 1] = std::max(m_anRepeat[m_nDepth + 1], nEarlier);
        m_bRepetition = true;
    }

    /// All moves are refuted: what is stored and answered is what a node of the full search would
    /// make of these results.
    int Conclude()
    {
        if (m_board.m_nPass == 1 && !m_request.m_bSafeMode) {
            Store(!m_bDoubtful && !m_bRepetition);
            return m_bRepetition ? QUICK_REPETITION : m_bDoubtful ? QUICK_DOUBTFUL : QUICK_NO_MATE;
        }
        if (m_anRepeat[m_nDepth + 1] > m_nDepth)
            return QUICK_REPETITION;
        // Below the node itself a repetition is no mate; the heuristics may have had a part in it.
        const bool bCertain = !m_bDoubtful && (!m_bRepetition || m_board.m_nHeuristics == 0);
        Store(bCertain);
        return bCertain ? QUICK_NO_MATE : QUICK_DOUBTFUL;
    }

    void Store(bool bCertain)
    {
        if (!m_bRegister)
            return;
        if (bCertain)
            StoreCertain(m_board, m_nDepth, false);
        else
            StoreDoubtful(m_board, m_nDepth);
    }

    TChessboard& m_board;
    TSolveRequest& m_request;
    TThreadContext& m_context;
    const std::uint16_t m_nDepth;
    std::vector<std::uint16_t>& m_anRepeat;
    const bool m_bRegister;
    bool m_bDoubtful = false;
    bool m_bRepetition = false;
};

/// What a reply that is refuted with the answer makes of the node at Black's move.
int AnswerOfNode(const TChessboard& board, int nAnswer)
{
    if (nAnswer != QUICK_REPETITION)
        return nAnswer;
    auto& anRepeat = ContextOf(board).m_anRepeatDepth;
    const std::uint16_t nDepth = board.m_nMoves;
    if (anRepeat[nDepth] <= nDepth)
        return board.m_nPass == 1 ? QUICK_DOUBTFUL : QUICK_NO_MATE;
    anRepeat[nDepth + 1] = anRepeat[nDepth];
    return QUICK_REPETITION;
}

/// One reply after which the quick node of White proves that there is no mate.
int SearchQuickBlack(TChessboard& board, int nBudget)
{
    if (board.m_nMoves < 2)
        return QUICK_UNKNOWN;
    TThreadContext& context = ContextOf(board);
    TMoveList moves;
    const int nMoves = board.GenerateBlackMoves(moves.data());
    TKiller& killer = context.m_aBlackKillers[board.m_nMoves];
    BringKillerToFront(board, killer, moves.data(), nMoves);
    bool bHasReply = board.m_blackChecker != NO_CHECK;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = context.MakeChild(board);
        if (!child.MakeBlackMove(&moves[i]))
            continue;
        bHasReply = true;
        ++context.m_nPositions;
        int nAnswer = QuickAnswerOf(ResultOfBlackHook(child, moves[i]));
        if (nAnswer == QUICK_UNKNOWN)
            nAnswer = AnswerOfNode(board, TQuickWhite(child).Search(nBudget - 1));
        if (nAnswer != QUICK_UNKNOWN) {
            killer = {moves[i], board.m_board[moves[i].m_from]};
            return nAnswer;
        }
    }
    return bHasReply ? QUICK_UNKNOWN : QUICK_NO_MATE; // stalemate
}

/// White and Black pawns that are about to promote; a walk with two of them grows too fast.
int CountPawnsAboutToPromote(const TChessboard& board)
{
    constexpr TSquareSet WHITE_ROW = TSquareSet{0xFF} << 48, BLACK_ROWS = 0xFFFF;
    return std::popcount(TSets::Equal(board.m_board, WHITE_PAWN) & WHITE_ROW) +
           std::popcount(TSets::Equal(board.m_board, BLACK_PAWN) & BLACK_ROWS);
}

/// Half-moves to walk from a position of a task.
int ChooseDepth(const TChessboard& child)
{
    constexpr int LONG_TASK = 15, LONGER_TASK = 21, LONGEST_TASK = 31, MAX_LEAD = 51;
    constexpr int MIN_RECENT_DEPTH = 7, FEW_MEN = 7, DEEP = 7, CAPPED = 6, CONFIRMED = 4;
    const int nTask = child.m_nInitialMoves, d = child.m_nMoves;
    int nMoves = nTask < LONG_TASK ? 1 : 2;
    const int nLead = nTask >= LONGER_TASK ? std::min((nTask - LONG_TASK) / 2, MAX_LEAD) : 0;
    const bool bRecent = WhiteFigures(child) + BlackFigures(child) <= 1 && HasRecentGain(child);
    if (d < nTask - 2 * std::max(nLead, nMoves) && !(bRecent && d >= MIN_RECENT_DEPTH))
        nMoves = 1;
    int nDepth = std::min(d - 1, 2 * nMoves);
    if (nTask >= LONGEST_TASK) {
        if (d == nTask - 2)
            nDepth += 4;
        else if (d >= nTask - 6 || bRecent)
            nDepth += 2;
    }
    if (nDepth >= DEEP && std::popcount(TSets::Occupied(child.m_board)) <= FEW_MEN &&
        CountPawnsAboutToPromote(child) >= 2)
        nDepth = CAPPED;
    if (child.m_pRequest->m_bRegisterConfirm && nDepth > CONFIRMED)
        nDepth = CONFIRMED;
    return nDepth;
}

class TRefutationNesting
{
public:
    explicit TRefutationNesting(const TChessboard& child)
        : m_context(ContextOf(child)), m_logOff(m_context)
    {
        if (++m_context.m_nRefutationNesting == 1)
            m_context.m_pRefutationRoot = &child;
    }
    ~TRefutationNesting() { --m_context.m_nRefutationNesting; }
    TRefutationNesting(const TRefutationNesting&) = delete;
    TRefutationNesting& operator=(const TRefutationNesting&) = delete;

private:
    TThreadContext& m_context;
    const TLogOff m_logOff;
};

/// White mates in one or two moves.
bool HasMateInTwo(TChessboard& child)
{
    return IsMateInOne(child) || IsMateInTwo(child);
}

} // namespace

bool HasRecentGain(const TChessboard& board)
{
    constexpr int MAX_PLIES = 9;
    const TChessboard* p = &board;
    for (int i = 0; i < MAX_PLIES && p && p->m_pParent; ++i, p = p->m_pParent) {
        if (p->m_LastMove.PromotionKind() || IsAbovePawn(CapturedFigure(*p)))
            return true;
    }
    return false;
}

int QuickRefutation(TChessboard& child)
{
    TThreadContext& context = ContextOf(child);
    if (child.m_nInitialMoves < MIN_TASK || child.m_nMoves < MIN_DEPTH ||
        context.m_nQuickerMateNesting || context.m_nRefutationNesting ||
        (child.m_moveFilter & TChessboard::FILTER_MODE_MASK) ||
        (child.m_nPositionFlags & TChessboard::POSITION_GLOBALREGISTER) || IsMateInOne(child))
        return QUICK_UNKNOWN;
    const int nDepth = ChooseDepth(child);
    context.m_nSortProbeDepth = static_cast<std::int8_t>(nDepth);
    return QuickRefutationSearch(child, 2, nDepth, false);
}

int QuickRefutationSearch(TChessboard& child, int nFrom, int nTo, bool bMateInOneFirst)
{
    if (ContextOf(child).m_nQuickerMateNesting || (bMateInOneFirst && IsMateInOne(child)))
        return QUICK_UNKNOWN;
    const TRefutationNesting nesting(child);
    for (int k = nFrom; k <= nTo; k += 2) {
        if (k == MATE_IN_TWO_FIRST && HasMateInTwo(child))
            return QUICK_UNKNOWN;
        if (const int nAnswer = TQuickWhite(child).Search(k))
            return nAnswer;
    }
    return QUICK_UNKNOWN;
}

} // namespace corvina
