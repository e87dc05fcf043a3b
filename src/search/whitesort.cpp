#include "search/whitesort.h"

#include "chess/squaresets.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/singlequeen.h"
#include "search/hooks.h"
#include "search/indications.h"
#include "search/line.h"
#include "search/movescore.h"
#include "search/ordering.h"
#include "search/registeraccess.h"
#include "search/solverequest.h"
#include "search/sortnesting.h"
#include "search/whitefeatures.h"

#include <optional>

namespace corvina
{
namespace
{

class TWhiteSorter
{
public:
    explicit TWhiteSorter(TChessboard& board)
        : m_board(board), m_request(*board.m_pRequest), m_context(ContextOf(board)),
          m_features(board), m_indications(board), m_noise(board),
          m_killer(m_context.m_aWhiteKillers[board.m_nMoves]),
          m_bRepetitions(MayRepetitionsCount(board))
    {
    }

    /// Returns the number of legal moves.
    int Sort(TMove* pMoves, int nMoves)
    {
        const TSortNesting nesting(m_board);
        const TNoQuickerMate noQuickerMate(m_context);
        TScored aScored[MAX_MOVES + 1];
        int nLegal = nMoves;
        for (int i = 0; i < nMoves; ++i) {
            if (m_request.IsStopped(m_context.m_nThreadId))
                return nMoves;
            aScored[i].m_nScore = Score(pMoves[i]);
            nLegal -= aScored[i].m_nScore == SCORE_ILLEGAL;
        }
        m_indications.Finish(aScored, nMoves);
        for (int i = 0; i < nMoves; ++i)
            SetScore(pMoves[i], aScored[i].m_nScore);
        SortByScore(pMoves, nMoves);
        return nLegal;
    }

    /// Moves of the last sort that an indication asks for.
    int CountIndicated() const { return m_nIndicated; }

private:
    struct TScored
    {
        TScore m_nScore;
    };

    TScore Score(TMove& move)
    {
        TChessboard& child = m_context.MakeChild(m_board);
        if (!child.MakeWhiteMove(&move))
            return SCORE_ILLEGAL;
        if (const std::optional<TScore> score = SettledScore(child, move))
            return *score;
        const int nScore = m_features.Of(child, move).Total() + m_noise(move);
        return static_cast<TScore>(std::clamp<int>(nScore, SCORE_ALL_MATED, SCORE_MAX_WHITE));
    }

    /// A score that is known without a look at the features.
    std::optional<TScore> SettledScore(TChessboard& child, const TMove& move)
    {
        if (m_bRepetitions && CountingRepetition(child))
            return SCORE_MAX_WHITE;
        if (!(child.m_moveFilter & TChessboard::FILTER_MODE_MASK)) {
            const int nKnown = ProbeBlackReplies(child, PROBE_UP_TO_UNKNOWN);
            if (nKnown != REPLIES_UNKNOWN)
                return nKnown == REPLIES_MATED ? SCORE_ALL_MATED : SCORE_MAX_WHITE;
        }
        if (m_indications.Apply()) {
            if (const auto nIndicated = m_indications.Score(child)) {
                m_nIndicated += *nIndicated < 0;
                return nIndicated;
            }
        }
        if ((m_board.m_nPositionFlags & TChessboard::POSITION_PREFERREDMOVES) &&
            m_request.m_preferredMoves.Contains(m_board, move))
            return SCORE_BEST;
        if (m_request.m_nOrderSeed == 0 && IsKiller(m_killer, m_board, move))
            return SCORE_ALL_MATED;
        return std::nullopt;
    }

    TChessboard& m_board;
    TSolveRequest& m_request;
    TThreadContext& m_context;
    const TWhiteFeatures m_features;
    TNodeIndications m_indications;
    const TOrderNoise m_noise;
    const TKiller& m_killer;
    int m_nIndicated = 0;
    const bool m_bRepetitions;
};

/// The set of a record for the time of a sort that goes by none of it.
class TReducedSet
{
public:
    explicit TReducedSet(TChessboard& root)
        : m_root(root), m_nHeuristics(root.m_nHeuristics),
          m_nHeuristicsParams(root.m_nHeuristicsParams),
          m_bKingMustNotMove(ContextOf(root).m_bKingMustNotMove)
    {
        m_root.m_nHeuristics &= SH_SINGLEQUEENMATE;
        ContextOf(m_root).m_bKingMustNotMove = false;
        m_root.m_nHeuristicsParams = m_root.m_nHeuristics ? ComputeHeurParams(m_root) : 0;
        ++ContextOf(m_root).m_nFirstSortNesting;
    }
    ~TReducedSet()
    {
        --ContextOf(m_root).m_nFirstSortNesting;
        m_root.m_nHeuristics = m_nHeuristics;
        m_root.m_nHeuristicsParams = m_nHeuristicsParams;
        ContextOf(m_root).m_bKingMustNotMove = m_bKingMustNotMove;
    }
    TReducedSet(const TReducedSet&) = delete;
    TReducedSet& operator=(const TReducedSet&) = delete;

private:
    TChessboard& m_root;
    const std::uint32_t m_nHeuristics;
    const std::uint32_t m_nHeuristicsParams;
    const bool m_bKingMustNotMove;
};

/// Black has no figures but bishops, all on squares of one colour, and White neither queen nor
/// rook.
bool IsBareMaterial(const TChessboard& root)
{
    const TSquareSet bishops = TSets::Equal(root.m_board, BLACK_BISHOP);
    return WhiteMajors(root) == 0 && BlackFigures(root) == root.m_nBlackBishops &&
           (!(bishops & DARK_SQUARES) || !(bishops & ~DARK_SQUARES));
}

/// What is known of a position with White to move: REPLIES_... of a single reply.
int Known(TChessboard& board)
{
    if (board.m_nHeuristics & SH_SINGLEQUEENMATE) {
        const int nPlies = AskCustomTable(board);
        if (nPlies != GLOBAL_REGISTER_UNKNOWN && nPlies > 0 && nPlies <= board.m_nMoves)
            return REPLIES_MATED;
    }
    if (board.m_nPositionFlags & TChessboard::POSITION_GLOBALREGISTER) {
        const int nPlies = AskGlobalRegister(board);
        if (nPlies != GLOBAL_REGISTER_UNKNOWN)
            return nPlies > 0 && nPlies <= board.m_nMoves ? REPLIES_MATED : REPLIES_SAVE;
    }
    if (!UsesRegister(board))
        return REPLIES_UNKNOWN;
    const auto known = ProbeRegister(board);
    if (!known || *known == RESULT_DOUBTFUL)
        return REPLIES_UNKNOWN;
    return *known == RESULT_MATE ? REPLIES_MATED : REPLIES_SAVE;
}

} // namespace

int ProbeBlackReplies(TChessboard& child, int nFlags)
{
    TThreadContext& context = ContextOf(child);
    TMoveList moves;
    const int nMoves = child.GenerateBlackMoves(moves.data());
    BringKillerToFront(child, context.m_aBlackKillers[child.m_nMoves], moves.data(), nMoves);
    int nResult = REPLIES_MATED;
    bool bHasReply = child.m_blackChecker != NO_CHECK;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& reply = context.MakeChild(child);
        if (!reply.MakeBlackMove(&moves[i]))
            continue;
        bHasReply = true;
        const int nKnown = Known(reply);
        if (nKnown == REPLIES_SAVE)
            return REPLIES_SAVE;
        if (nKnown == REPLIES_UNKNOWN)
            nResult = REPLIES_UNKNOWN;
        if (nKnown == REPLIES_UNKNOWN && (nFlags & PROBE_UP_TO_UNKNOWN))
            return REPLIES_UNKNOWN;
    }
    return bHasReply ? nResult : REPLIES_SAVE; // stalemate
}

int SortWhiteMoves(TChessboard& board, TMove* pMoves, int nMoves, TSortNotes* pNotes)
{
    TWhiteSorter sorter(board);
    const int nLegal = sorter.Sort(pMoves, nMoves);
    const bool bSkip = board.m_nHeuristics & SH_SKIPWORSTWHITEMOVES;
    const int nKept = bSkip ? MovesKept(nLegal) : nLegal;
    if (pNotes)
        *pNotes = {nLegal - nKept, sorter.CountIndicated()};
    return nKept;
}

int SortFirstMoves(TChessboard& root, TMove* pMoves, int nMoves)
{
    if (IsBareMaterial(root))
        return nMoves;
    const TReducedSet reduced(root);
    return SortWhiteMoves(root, pMoves, nMoves);
}

} // namespace corvina
