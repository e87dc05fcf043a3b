#include "search/forcedmate.h"

#include "heuristics/forcingmoves.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/kingtests.h"
#include "heuristics/lastmoves.h"
#include "search/blacknode.h"
#include "search/forcedmateexit.h"
#include "search/whitecuts.h"
#include "search/whitenode.h"

#include <array>
#include <stdexcept>

namespace corvina
{
namespace
{

template <int nLevel>
TSearchResult SearchForcedWhite(TChessboard& board, bool bProbeRegister);

template <int nLevel>
TSearchResult SearchForcedBlack(TChessboard& board);

/// Half-moves left within which the other heuristics apply when they do so near the end.
constexpr int NEAR_THE_END = 9;

/// Full moves of a series of checks that calls for quieter moves.
constexpr int LONG_SERIES = 8;

/// Are the other heuristics asked about this position?
bool VerifiesOthers(const TChessboard& board)
{
    const int nWithOther = ContextOf(board).m_nFfmVerifiesOther;
    return nWithOther == FFM_OTHERS_APPLY ||
           (nWithOther == FFM_OTHERS_NEAR_THE_END && board.m_nMoves <= NEAR_THE_END);
}

/// White, checked by a queen, can't simply take it.
bool IsCheckedBySafeQueen(const TChessboard& board)
{
    const int checker = board.m_whiteChecker;
    return checker >= 0 && checker < 64 && board.m_board[checker] == BLACK_QUEEN &&
           !IsAttackedBy<EColour::White>(board, checker);
}

/// Moves of the short mate that is looked for where White is to move.
int ShortMateMoves(const TChessboard& board)
{
    constexpr int MAX_DEPTH = 11, FEW_MOVES = 5, MORE_MOVES = 6;
    const int nBound = ContextOf(board).m_nFfmBound, d = board.m_nMoves;
    if (nBound != FFM_BOUND_AUTOMATIC)
        return (std::min({nBound - 2, d, MAX_DEPTH}) + 1) / 2;
    return d == 11 || (d > 9 && IsCheckedBySafeQueen(board)) ? MORE_MOVES : FEW_MOVES;
}

/// White's moves by the level.
template <int nLevel>
class TForcedMoves
{
public:
    static constexpr bool JUGGLED = false;

    int ListMoves(TChessboard& board, TMove* pMoves)
    {
        m_bWiden = nLevel < FFM_THREAT_1 && IsLongCheckSeries(board, LONG_SERIES);
        const int nMoves =
            GenerateForcingMoves<nLevel>(board, pMoves, ContextOf(board).m_bFfmAddCaptures);
        return SortWhiteMovesCheap(board, pMoves, nMoves);
    }

    /// Quiet moves, whose threats take much longer to find.
    int ListMoreMoves(TChessboard& board, TMove* pMoves, int nMoves, int* pnDoubtful)
    {
        if (m_bListedAll)
            return 0;
        m_bListedAll = true;
        TThreadContext& context = ContextOf(board);
        const TForcingList list = GenerateQuietForcingMoves<nLevel>(
            board, pMoves, nMoves, context.m_aWhiteKillers[board.m_nMoves].m_move);
        if (!list.m_bComplete) {
            ++*pnDoubtful;
            context.NoteWhiteCut(SH_FINDFORCEDMATE);
        }
        return SortWhiteMovesCheap(board, pMoves + nMoves, list.m_nMoves - nMoves);
    }

    static bool IsCut(const TChessboard& board, const TMove& move)
    {
        return VerifiesOthers(board) && IsWhiteMoveCut(board, move);
    }

    static bool IsCutAfterMove(TChessboard& child)
    {
        return VerifiesOthers(child) && IsCutAfterWhiteMove(child);
    }

    TSearchResult SearchReplies(TChessboard& child) const
    {
        TSearchResult nResult = SearchForcedBlack<nLevel>(child);
        if (nResult == RESULT_MATE)
            return RESULT_MATE;
        if (m_bWiden)
            nResult = Combine(nResult, SearchWidened(child));
        if (nResult != RESULT_MATE && LeavesForcedMate(child))
            nResult = Combine(nResult, SearchAfterForcedMate(child));
        return nResult;
    }

private:
    /// A second search of the same position overwrites the repetition depth of the first: what
    /// leans on a repetition is doubtful then.
    static TSearchResult Combine(TSearchResult nFirst, TSearchResult nSecond)
    {
        if (nSecond == RESULT_MATE)
            return RESULT_MATE;
        return nFirst == RESULT_NO_MATE || nSecond == RESULT_NO_MATE ? RESULT_NO_MATE
                                                                     : RESULT_DOUBTFUL;
    }

    static TSearchResult SearchWidened(TChessboard& child)
    {
        const TSetGuard guard(child);
        ContextOf(child).m_nFfmLevel = FFM_THREAT_1;
        child.m_nHeuristicsParams = ComputeHeurParams(child);
        return SearchForcedBlack<FFM_THREAT_1>(child);
    }

    bool m_bListedAll = false;
    bool m_bWiden = false; ///< so many checks without an end: threats too
};

/// Black's replies, with White's answers by the level.
template <int nLevel>
struct TForcedReplies
{
    static constexpr bool WalksAllReplies(const TChessboard&) { return false; }

    /// A quick refutation goes by the other heuristics and by all moves of White.
    static EBlackSort FormOfSort(const TChessboard& board)
    {
        return VerifiesOthers(board) ? EBlackSort::Full : EBlackSort::Light;
    }

    static bool VerifiesHeuristics(const TChessboard& child) { return VerifiesOthers(child); }

    /// By the nodes of the level: the main search takes longer for so many half-moves than the
    /// level does for the whole task.
    static bool HasShortMate(TChessboard& child)
    {
        return LookForQuickerMateN(child, ShortMateMoves(child), SearchForcedWhite<nLevel>);
    }

    /// Where the short mate search has gone as far as the half-moves that are left, the run ends.
    static TSearchResult SearchWhite(TChessboard& child)
    {
        if (2 * ShortMateMoves(child) - 1 < child.m_nMoves)
            return SearchForcedWhite<nLevel>(child, false);
        ContextOf(child).m_anRepeatDepth[child.m_nMoves + 1] = 0;
        return RESULT_END_OF_FORCED_MATE;
    }
};

template <int nLevel>
TSearchResult SearchForcedWhite(TChessboard& board, bool bProbeRegister)
{
    if (board.m_nMoves == 3)
        return IsMateInTwo(board, bProbeRegister) ? RESULT_MATE : RESULT_NO_MATE;
    return TWhiteNode<TForcedMoves<nLevel>>(board).Search(bProbeRegister);
}

template <int nLevel>
TSearchResult SearchForcedBlack(TChessboard& board)
{
    if (board.m_nMoves == 0)
        return ResultOfLeaf(board);
    if (board.m_nMoves == 2)
        return SearchLastReplies(board);
    return TBlackNode<TForcedReplies<nLevel>>(board).Search();
}

using TLevelSearch = TSearchResult (*)(TChessboard&);

constexpr std::array<TLevelSearch, FFM_THREAT_5 - FFM_CHECK_ONLY + 1> g_aSearches = {
    SearchForcedBlack<FFM_CHECK_ONLY>,    SearchForcedBlack<FFM_THREAT_1>,
    SearchForcedBlack<FFM_THREAT_1_PLUS>, SearchForcedBlack<FFM_THREAT_2>,
    SearchForcedBlack<FFM_THREAT_2_PLUS>, SearchForcedBlack<FFM_THREAT_3>,
    SearchForcedBlack<FFM_THREAT_4>,      SearchForcedBlack<FFM_THREAT_5>,
};

void Refuse(const char* pParameter)
{
    throw std::invalid_argument(
        std::string("Error: no implementation in FindMateMultithreadingLevelThreadProcFFM for ") +
        pParameter);
}

void Check(const TForcedMateSettings& settings)
{
    if (settings.m_nLevel < FFM_CHECK_ONLY || settings.m_nLevel > FFM_THREAT_5)
        Refuse("bAllowExceptions");
    if (settings.m_nWithOther < FFM_OTHERS_NEAR_THE_END || settings.m_nWithOther > FFM_OTHERS_APPLY)
        Refuse("VerifyHeuristics");
    if (settings.m_nBound != FFM_BOUND_NARROW && settings.m_nBound != FFM_BOUND_WIDE &&
        settings.m_nBound != FFM_BOUND_AUTOMATIC)
        Refuse("m_shLookForQuickerMateDepth");
}

} // namespace

TForcedMateSettings GetForcedMateSettings(const TChessboard& board)
{
    const THeuristicsParams& params = ContextOf(board);
    int nBound = FFM_BOUND_AUTOMATIC;
    if (params.m_nFfmLevel >= FFM_THREAT_3)
        nBound = FFM_BOUND_WIDE;
    else if (board.m_pRequest->m_shLookForQuickerMateDepth >= 0)
        nBound = FFM_BOUND_NARROW;
    return {params.m_nFfmLevel, nBound, params.m_nFfmWithOther};
}

TSearchResult FindForcedMate(TChessboard& child, const TForcedMateSettings& settings)
{
    Check(settings);
    TThreadContext& context = ContextOf(child);
    context.m_nFfmBound = static_cast<std::int16_t>(settings.m_nBound);
    context.m_nFfmVerifiesOther = static_cast<std::int8_t>(settings.m_nWithOther);
    return g_aSearches[static_cast<std::size_t>(settings.m_nLevel - FFM_CHECK_ONLY)](child);
}

TSearchResult FindForcedMate(TChessboard& child)
{
    return FindForcedMate(child, GetForcedMateSettings(child));
}

bool IsLongCheckSeries(const TChessboard& board, int nMoves)
{
    constexpr int MAX_CAPTURES = 1;
    if (board.m_nWhiteKnights == 0 || board.m_nInitialMoves - board.m_nMoves < 2 * nMoves)
        return false;
    int nCaptures = 0;
    const TChessboard* p = &board;
    for (int i = 0; i < nMoves; ++i) {
        const TChessboard* pCheck = p->m_pParent;
        if (!pCheck || !pCheck->m_pParent || CapturedFigure(*p) != NO_FIGURE ||
            pCheck->m_blackChecker == NO_CHECK)
            return false;
        nCaptures += CapturedFigure(*pCheck) != NO_FIGURE;
        p = pCheck->m_pParent;
    }
    return nCaptures <= MAX_CAPTURES;
}

} // namespace corvina
