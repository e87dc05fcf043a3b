#include "search/blacksort.h"

#include "heuristics/heuristicbits.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/lastmoves.h"
#include "heuristics/onecolour.h"
#include "search/blackcuts.h"
#include "search/line.h"
#include "search/movesafety.h"
#include "search/movescore.h"
#include "search/ordering.h"
#include "search/quickrefutation.h"
#include "search/registeraccess.h"
#include "search/solverequest.h"
#include "search/sortnesting.h"

namespace corvina
{
namespace
{

using W = TSide<EColour::White>;
using B = TSide<EColour::Black>;

/// Half-moves left from which a test pays. In the last pass, nearer to the leaves, a score of more
/// than the move itself costs more time than it saves.
constexpr int MIN_RICH_DEPTH = 8;
constexpr int MIN_RICH_DEPTH_IN_LAST_PASS = 16;
constexpr int MIN_PIN_DEPTH = 17;
constexpr int MIN_COUNTER_MATE_DEPTH = 29;
constexpr int MIN_SHUTTLE_DEPTH = 34;
constexpr int MIN_LIGHT_DEPTH = 8;

/// Black's pawns that are one step from promotion.
constexpr TSquareSet ROW_BEFORE_LAST = TSquareSet{0xFF} << 8;

/// White, in check, has a legal move.
bool CanWhiteEscapeCheck(TChessboard& board)
{
    TMoveList moves;
    const int nMoves = board.GenerateWhiteEvasions(moves.data());
    for (int i = 0; i < nMoves; ++i) {
        TChessboard child = board;
        child.m_pParent = &board;
        if (child.MakeWhiteMoveLight(&moves[i]))
            return true;
    }
    return false;
}

/// Black, to move, has a check that mates White.
bool HasBlackMate(TChessboard& board)
{
    TMoveList moves;
    const int nMoves = board.GenerateBlackMoves(moves.data());
    for (int i = 0; i < nMoves; ++i) {
        TChessboard child = board;
        child.m_pParent = &board;
        if (child.MakeBlackMove(&moves[i]) && child.m_whiteChecker != NO_CHECK &&
            !CanWhiteEscapeCheck(child))
            return true;
    }
    return false;
}

/// White, in check, has at most two answers, and after each of them Black mates.
bool IsCounterMateInTwo(TChessboard& board)
{
    constexpr int MAX_ANSWERS = 2;
    TMoveList moves;
    const int nMoves = board.GenerateWhiteEvasions(moves.data());
    int nAnswers = 0;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard child = board;
        child.m_pParent = &board;
        if (!child.MakeWhiteMoveLight(&moves[i]))
            continue;
        if (++nAnswers > MAX_ANSWERS || !HasBlackMate(child))
            return false;
    }
    return true;
}

class TBlackSorter
{
public:
    TBlackSorter(TChessboard& board, EBlackSort form)
        : m_board(board), m_request(*board.m_pRequest), m_context(ContextOf(board)), m_form(form),
          m_nDepth(board.m_nMoves), m_killer(m_context.m_aBlackKillers[m_nDepth]), m_noise(board),
          m_bInTrial(m_nDepth >= MIN_LIGHT_DEPTH && m_context.m_nQuickerMateNesting == 0 &&
                     m_context.m_bNoQuickerMate),
          m_bRepetitions(form != EBlackSort::KeepsAll && MayRepetitionsCount(board)),
          m_bRich(m_nDepth >= (board.m_nPass < 2 ? MIN_RICH_DEPTH : MIN_RICH_DEPTH_IN_LAST_PASS))
    {
    }

    int Sort(TMove* pMoves, int nMoves, bool* pbHasReply)
    {
        const TSortNesting nesting(m_board);
        FindShuttle();
        int nLeft = 0;
        std::uint16_t nNearest = NO_REPETITION;
        for (int i = 0; i < nMoves; ++i) {
            TChessboard& child = m_context.MakeChild(m_board);
            if (!child.MakeBlackMove(&pMoves[i]))
                continue;
            *pbHasReply |= CountsAsReply(m_board, pMoves[i]);
            if (const std::uint16_t nEarlier = m_bRepetitions ? CountingRepetition(child) : 0)
                nNearest = std::min(nNearest, nEarlier);
            if (MatesWhite(child))
                return RESULT_REFUTED;
            if (UsesRegister(child)) {
                const auto known = ProbeRegister(child);
                if (known && *known != RESULT_MATE)
                    return *known == RESULT_NO_MATE ? RESULT_REFUTED : *known;
                if (known)
                    continue;
            }
            pMoves[nLeft] = pMoves[i];
            SetScore(pMoves[nLeft], Score(child, pMoves[nLeft]));
            ++nLeft;
        }
        SortByScore(pMoves, nLeft);
        if (nNearest != NO_REPETITION) {
            m_context.m_anRepeatDepth[m_nDepth] = nNearest;
            return RESULT_REPETITION;
        }
        if (nLeft && IsWorthPretest()) {
            if (const TSearchResult nResult = Pretest(pMoves, nLeft))
                return nResult;
        }
        return nLeft;
    }

private:
    static constexpr std::uint16_t NO_REPETITION = 65535;

    /// A rook of Black that went along a file can go back: White has then to find something new.
    void FindShuttle()
    {
        const TChessboard* pBefore = m_nDepth >= MIN_SHUTTLE_DEPTH ? Ancestor(m_board, 1) : nullptr;
        if (!pBefore || !pBefore->m_pParent)
            return;
        const TMove& last = pBefore->m_LastMove;
        if (pBefore->m_board[last.m_to] == BLACK_ROOK && FileOf(last.m_from) == FileOf(last.m_to))
            m_nShuttle = FromTo(last.m_to, last.m_from);
    }

    /// The reply mates White, now or against every answer in the next move.
    bool MatesWhite(TChessboard& child) const
    {
        if (child.m_whiteChecker == NO_CHECK || m_bInTrial || m_form == EBlackSort::KeepsAll)
            return false;
        return m_nDepth >= MIN_COUNTER_MATE_DEPTH ? IsCounterMateInTwo(child)
                                                  : !CanWhiteEscapeCheck(child);
    }

    TScore Score(const TChessboard& child, const TMove& move) const
    {
        if (IsKiller(m_killer, m_board, move) && m_request.m_nOrderSeed == 0)
            return SCORE_BEST;
        TScoreSums sums;
        const TFigure captured = m_board.m_board[move.m_to];
        if (captured != NO_FIGURE)
            sums.m_nCoarse -= 2 * CaptureValue(captured & KIND_MASK);
        if (captured != NO_FIGURE && move.m_to == m_board.m_LastMove.m_to)
            sums.m_nCoarse -= 5;
        if (child.m_whiteChecker != NO_CHECK)
            sums.m_nFine -= 50;
        if (m_board.m_board[move.m_from] == BLACK_KING)
            sums.m_nFine -= 10;
        if (move.PromotionKind() == KIND_QUEEN)
            sums.m_nCoarse -= 10;
        if ((m_board.m_nHeuristics & SH_KEYSQUARE) && move.m_to == m_context.m_keySquare)
            sums.m_nCoarse -= 3;
        if (m_bRich)
            AddRich(child, move, sums);
        return static_cast<TScore>(
            std::clamp<int>(sums.Total() + m_noise(move), SCORE_BEST, SCORE_MAX_BLACK));
    }

    void AddRich(const TChessboard& child, const TMove& move, TScoreSums& sums) const
    {
        sums.m_nFine -= 3 * FreeKingSquares(child);
        const TFigure moved = child.m_board[move.m_to] & KIND_MASK;
        if (moved != KIND_KING && !CanBeCapturedAtOnce<EColour::White>(child))
            sums.m_nFine -= 6;
        if (!m_bInTrial && moved == KIND_PAWN && (Bit(move.m_to) & ROW_BEFORE_LAST))
            sums.m_nCoarse -= 4;
        if (FromTo(move) == m_nShuttle)
            sums.m_nCoarse -= 3;
        if (m_nDepth >= MIN_PIN_DEPTH && !m_bInTrial && PinsWhite(child))
            sums.m_nFine -= 5;
    }

    /// A figure of White above a pawn is pinned to its king.
    static bool PinsWhite(const TChessboard& child)
    {
        const TSquareSet occupied = TSets::Occupied(child.m_board);
        TSquareSet figures =
            W::Figures(child.m_board) & ~TSets::Equal(child.m_board, W::PAWN) &
            ~Bit(child.WhiteKing()) &
            (g_geometry.m_aRook[child.WhiteKing()] | g_geometry.m_aBishop[child.WhiteKing()]);
        while (figures) {
            if (IsPinnedTo<EColour::White>(child, occupied, PopLowestSquare(figures)))
                return true;
        }
        return false;
    }

    /// Half-moves at the root, and left, from which the quick refutation is tried at all, and those
    /// from which it is only tried near the root.
    static constexpr int MIN_PRETEST_TASK = 12;
    static constexpr int MIN_PRETEST_DEPTH = 10;
    static constexpr int MIN_DEEP_DEPTH = 12;
    static constexpr int MAX_PLAYED = 9;
    static constexpr int MIN_TRIAL_SKIP_DEPTH = 14;

    bool IsWorthPretest() const
    {
        if (m_form != EBlackSort::Full || m_board.m_nPass >= 2 || m_board.m_nHeuristics == 0 ||
            m_context.m_nQuickerMateNesting || m_board.m_nInitialMoves < MIN_PRETEST_TASK ||
            m_nDepth < MIN_PRETEST_DEPTH ||
            (m_board.m_moveFilter & TChessboard::FILTER_MODE_MASK) ||
            (m_bInTrial && m_nDepth >= MIN_TRIAL_SKIP_DEPTH))
            return false;
        if (m_nDepth < MIN_DEEP_DEPTH || m_board.m_nInitialMoves - m_nDepth <= MAX_PLAYED)
            return true;
        return WhiteFigures(m_board) + BlackFigures(m_board) <= 1 && HasRecentGain(m_board);
    }

    TSearchResult Pretest(TMove* pMoves, int nMoves)
    {
        for (int i = 0; i < nMoves; ++i) {
            TChessboard& child = m_context.MakeChild(m_board);
            if (!child.MakeBlackMove(&pMoves[i], true))
                continue;
            // A reply that breaks a heuristic decides the node without a search of those before it.
            int nAnswer = QuickAnswerOf(ResultOfBlackHook(child, pMoves[i]));
            if (nAnswer == QUICK_UNKNOWN)
                nAnswer = QuickRefutation(child);
            if (nAnswer == QUICK_UNKNOWN)
                continue;
            // A search of the hook that was given up is no answer.
            if (!m_request.IsAtRest())
                return RESULT_NO_MATE;
            m_context.m_aBlackKillers[m_nDepth] = {pMoves[i], m_board.m_board[pMoves[i].m_from]};
            return static_cast<TSearchResult>(-nAnswer);
        }
        return RESULT_NO_MATE;
    }

    TChessboard& m_board;
    TSolveRequest& m_request;
    TThreadContext& m_context;
    const EBlackSort m_form;
    const std::uint16_t m_nDepth;
    const TKiller& m_killer;
    const TOrderNoise m_noise;
    const bool m_bInTrial; ///< a sort or an analysis tries something: no costly looks
    const bool m_bRepetitions;
    const bool m_bRich;      ///< the whole score
    unsigned m_nShuttle = 0; ///< FromTo of the rook's way back; 0: none
};

} // namespace

int SortBlackMoves(TChessboard& board, TMove* pMoves, int nMoves, bool* pbHasReply, EBlackSort form)
{
    return TBlackSorter(board, form).Sort(pMoves, nMoves, pbHasReply);
}

} // namespace corvina
