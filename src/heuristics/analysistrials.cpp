#include "chess/sides.h"
#include "heuristics/analysis.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/relaxpredicates.h"
#include "heuristics/signature.h"
#include "search/hooks.h"
#include "search/nodes.h"
#include "search/ordering.h"
#include "search/rootsetup.h"
#include "search/shortmate.h"
#include "search/solverequest.h"
#include "search/whitecuts.h"

#include <algorithm>
#include <bit>

namespace corvina
{
namespace
{

/// Positions that one trial may make, and all of an analysis together. A second of search is some
/// three million; a trial looks at its limit between first moves and goes over it by one of them.
constexpr std::uint64_t MAX_TRIAL_POSITIONS = 150000;
constexpr std::uint64_t MAX_POSITIONS = 900000;

/// A further iteration costs about so many times the one before.
constexpr std::uint64_t ITERATION_GROWTH = 40;

/// Half-moves over which White is asked to hold a pattern, and those that are left behind them for
/// the mate tests of the hooks.
constexpr int MAX_HOLD_DEPTH = 4;
constexpr int HOLD_SPARE_PLIES = 3;

/// Makes the request fit for a trial, and brings back what the run needs: safe mode is on, and the
/// register keeps out, so that a trial neither leans on earlier runs nor leaves them its doubts.
class TRequestGuard
{
public:
    explicit TRequestGuard(TSolveRequest& request)
        : m_request(request), m_bSafeMode(request.m_bSafeMode),
          m_bUseRegister(request.m_bUseRegister)
    {
        m_request.m_bSafeMode = true;
        m_request.m_bUseRegister = false;
        m_onPosition.swap(m_request.OnPositionAnalysed);
    }
    ~TRequestGuard()
    {
        m_request.m_bSafeMode = m_bSafeMode;
        m_request.m_bUseRegister = m_bUseRegister;
        m_onPosition.swap(m_request.OnPositionAnalysed);
    }
    TRequestGuard(const TRequestGuard&) = delete;
    TRequestGuard& operator=(const TRequestGuard&) = delete;

private:
    TSolveRequest& m_request;
    const bool m_bSafeMode, m_bUseRegister;
    decltype(TSolveRequest::OnPositionAnalysed) m_onPosition;
};

/// Keeps the record and the parameters of an analysis during a trial, with the state that searches
/// leave in the context, so that a trial doesn't depend on those before it.
class TStateGuard
{
public:
    explicit TStateGuard(TAnalysis& a) : m_analysis(a), m_board(a.m_board), m_params(a.m_params)
    {
        TThreadContext& c = a.m_context;
        std::fill(c.m_aBlackKillers.begin(), c.m_aBlackKillers.end(), TKiller{});
        std::fill(c.m_aWhiteKillers.begin(), c.m_aWhiteKillers.end(), TKiller{});
        std::fill(c.m_aUnrefuted.begin(), c.m_aUnrefuted.end(), TKiller{});
        std::fill(c.m_anRepeatDepth.begin(), c.m_anRepeatDepth.end(), std::uint16_t{0});
        c.m_lastMate = TKiller{};
        c.m_bNoQuickerMate = true;
    }
    ~TStateGuard()
    {
        m_analysis.m_board = m_board;
        m_analysis.m_params = m_params;
    }
    TStateGuard(const TStateGuard&) = delete;
    TStateGuard& operator=(const TStateGuard&) = delete;

private:
    TAnalysis& m_analysis;
    const TChessboard m_board;
    const THeuristicsParams m_params;
};

/// The searches of a trial on a root with the set in force.
class TTrialSearch
{
public:
    TTrialSearch(TChessboard& board, std::uint64_t nMaxPositions)
        : m_board(board), m_request(*board.m_pRequest), m_context(ContextOf(board)),
          m_nEnd(m_context.m_nPositions + nMaxPositions)
    {
    }

    /// White mates within so many half-moves. No when the limit ends the search.
    bool HasMateWithin(int nDepth)
    {
        if (IsMateInOne(m_board))
            return true;
        std::uint64_t nLast = 1;
        for (int k = 3; k <= nDepth; k += 2) {
            const std::uint64_t nBefore = m_context.m_nPositions;
            if (nBefore + nLast * ITERATION_GROWTH > m_nEnd)
                return false;
            SetDepth(k);
            if (AnyFirstMoveMates())
                return true;
            nLast = m_context.m_nPositions - nBefore;
        }
        return false;
    }

    /// White has a move after which no reply breaks the pattern, and so on over so many half-moves.
    /// Yes when the limit ends the search.
    bool HoldsPattern(int nDepth)
    {
        SetDepth(std::min<int>(nDepth + HOLD_SPARE_PLIES, m_board.m_nInitialMoves) | 1);
        return WhiteHolds(m_board, nDepth) || IsOver();
    }

private:
    bool IsOver() const
    {
        return m_context.m_nPositions >= m_nEnd || m_request.IsStopped(m_context.m_nThreadId);
    }

    void SetDepth(int nDepth)
    {
        m_board.m_nMoves = m_board.m_nInitialMoves = static_cast<std::uint16_t>(nDepth);
    }

    /// Makes a move of White that the set doesn't cut. Null: cut or illegal.
    TChessboard* MakeWhite(TChessboard& board, TMove& move)
    {
        if (IsWhiteMoveCut(board, move))
            return nullptr;
        TChessboard& child = m_context.MakeChild(board);
        if (!child.MakeWhiteMove(&move))
            return nullptr;
        ++m_context.m_nPositions;
        return IsCutAfterWhiteMove(child) ? nullptr : &child;
    }

    bool AnyFirstMoveMates()
    {
        TMoveList moves;
        const int nMoves = m_board.GenerateWhiteMoves(moves.data());
        for (int i = 0; i < nMoves && !IsOver(); ++i) {
            TChessboard* pChild = MakeWhite(m_board, moves[i]);
            if (pChild && SearchBlack<NODE_MAIN>(*pChild) == RESULT_MATE)
                return true;
        }
        return false;
    }

    bool WhiteHolds(TChessboard& board, int nDepth)
    {
        TMoveList moves;
        const int nMoves = board.GenerateWhiteMoves(moves.data());
        const int nLegal = SortWhiteMovesCheap(board, moves.data(), nMoves);
        for (int i = 0; i < nLegal && !IsOver(); ++i) {
            TChessboard* pChild = MakeWhite(board, moves[i]);
            if (pChild && IsHeldAgainstAllReplies(*pChild, nDepth - 1))
                return true;
        }
        return false;
    }

    bool IsHeldAgainstAllReplies(TChessboard& board, int nDepth)
    {
        TMoveList moves;
        const int nMoves = board.GenerateBlackMoves(moves.data());
        bool bHasReply = board.m_blackChecker != NO_CHECK;
        BringKillerToFront(board, m_context.m_aBlackKillers[board.m_nMoves], moves.data(), nMoves);
        for (int i = 0; i < nMoves; ++i) {
            TChessboard& child = m_context.MakeChild(board);
            if (!child.MakeBlackMove(&moves[i]))
                continue;
            ++m_context.m_nPositions;
            bHasReply = true;
            if (IsBlackMoveDoubtful(child, &moves[i]) > 0 || IsOver() ||
                (nDepth > 1 && !WhiteHolds(child, nDepth - 1)))
            {
                m_context.m_aBlackKillers[board.m_nMoves] = {moves[i],
                                                             board.m_board[moves[i].m_from]};
                return false;
            }
        }
        return bHasReply;
    }

    TChessboard& m_board;
    TSolveRequest& m_request;
    TThreadContext& m_context;
    const std::uint64_t m_nEnd;
};

/// White and Black pawns that are about to promote; a lone few figures don't need the look.
bool HasPawnChains(const TChessboard& board)
{
    constexpr TSquareSet WHITE_ROWS = TSquareSet{0xFFFFFF} << 40; // sixth to eighth
    constexpr TSquareSet BLACK_ROWS = TSquareSet{0xFFFF} << 8;    // second and third
    if (WhiteFigures(board) + BlackFigures(board) < 4)
        return false;
    return std::popcount(TSets::Equal(board.m_board, WHITE_PAWN) & WHITE_ROWS) +
               std::popcount(TSets::Equal(board.m_board, BLACK_PAWN) & BLACK_ROWS) >=
           2;
}

/// A Black pawn of the second row can step to the first, where White can't take it.
bool HasSafePromotion(const TChessboard& board)
{
    TSquareSet pawns = TSets::Equal(board.m_board, BLACK_PAWN) & TSquareSet{0xFF} << 8;
    while (pawns) {
        const int to = PopLowestSquare(pawns) - 8;
        if (board.m_board[to] == NO_FIGURE && !IsAttackedBy<EColour::White>(board, to))
            return true;
    }
    return false;
}

} // namespace

int TTrials::DefaultDepth(std::uint32_t nMask) const
{
    const TChessboard& b = m_analysis.m_board;
    const TPositionFacts& f = m_analysis.m_facts;
    const THeuristicsParams& p = m_analysis.m_params;
    const int nMoves = b.m_nMoves;
    if (HasPawnChains(b))
        return nMoves >= 25 ? 6 : 4;
    if (nMoves >= 25 && f.m_nWhiteFigures <= 2 &&
        f.m_mobility.m_nKingMoves <= (f.m_nWhiteMajors ? 1 : 0))
        return 10;
    if (nMoves >= 29 && f.m_nWhiteFigures + b.m_nWhitePawns <= 3 && f.m_nBlackMajors == 0)
        return 10;
    if (nMoves >= 29 && (nMask & SH_DONTLETPROMOTEDQUEENMOVE) && f.m_nWhiteMajors == 0 &&
        f.m_nFreeBlackQueens == 0 && HasSafePromotion(b))
        return 10;
    if (nMoves >= 25 && f.m_nWhiteFigures <= 1 && f.m_nBlackFigures == 0)
        return 8;
    if (nMoves >= 23 && f.m_nWhiteQueens == 0 && f.m_nBlackFigures == 0)
        return 6;
    if (nMoves >= 19 && (nMask & SH_KEEPKINGONTHEEDGE) && p.m_bKingMustNotMove &&
        !p.m_bKingMoveExceptions && f.m_nFreeSquares > 0 && f.m_nKingDistance <= 2)
        return 6;
    return 4;
}

bool TTrials::TryHeuristics(std::uint32_t nMask, int nDepth)
{
    if (nDepth == 0)
        nDepth = DefaultDepth(nMask);
    nMask &= IMPLEMENTED_HEURISTICS;
    if (nMask == 0 || m_analysis.m_request.IsStoppedForAll())
        return true;
    const TStateGuard state(m_analysis);
    TChessboard& board = m_analysis.m_board;
    board.m_nHeuristics = nMask;
    board.m_nPass = PASS_WITH_HEURISTICS;
    board.m_moveFilter &= static_cast<std::uint8_t>(~TChessboard::FILTER_MODE_MASK);
    board.m_nHeuristicsParams = SignatureOf(board, m_analysis.m_params);
    const auto key = std::make_pair(nMask, board.m_nHeuristicsParams);
    const auto known = m_mapAnswers.find(key);
    if (known != m_mapAnswers.end() && known->second.second >= nDepth)
        return known->second.first;
    const bool bPasses = Run(nDepth);
    m_mapAnswers[key] = {bPasses, nDepth};
    return bPasses;
}

bool TTrials::Run(int nDepth)
{
    const TRequestGuard request(m_analysis.m_request);
    TChessboard& board = m_analysis.m_board;
    const std::string strSet = GetHeuristicsText(board, false);
    const std::uint64_t nBefore = m_analysis.m_context.m_nPositions;
    const std::uint64_t nLeft = MAX_POSITIONS - std::min(MAX_POSITIONS, m_nPositions);
    const std::uint64_t nMax = std::min(MAX_TRIAL_POSITIONS, nLeft);
    bool bPasses = !TTrialSearch(board, nMax).HasMateWithin(nDepth);
    if (bPasses)
        bPasses = TTrialSearch(board, nMax).HoldsPattern(std::min(nDepth, MAX_HOLD_DEPTH));
    const std::uint64_t nPositions = m_analysis.m_context.m_nPositions - nBefore;
    m_nPositions += nPositions;
    m_vecTrials.push_back({strSet, nDepth, bPasses, nPositions});
    return bPasses;
}

bool TTrials::TryKingRule(bool bStrict, bool bExceptions)
{
    THeuristicsParams& p = m_analysis.m_params;
    const bool bSavedStrict = p.m_bKingMustNotMove, bSavedExceptions = p.m_bKingMoveExceptions;
    p.m_bKingMustNotMove = bStrict;
    p.m_bKingMoveExceptions = bExceptions;
    const bool bPasses = TryHeuristics(SH_KEEPKINGONTHEEDGE);
    p.m_bKingMustNotMove = bSavedStrict;
    p.m_bKingMoveExceptions = bSavedExceptions;
    return bPasses;
}

bool TTrials::TryExtEdge()
{
    return TryHeuristics(SH_KEEPKINGWITHINEXTEDGE);
}

} // namespace corvina
