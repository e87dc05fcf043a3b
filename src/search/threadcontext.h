#ifndef CORVINA_SEARCH_THREADCONTEXT_H
#define CORVINA_SEARCH_THREADCONTEXT_H

#include "chess/linecontext.h"
#include "heuristics/heuristicsparams.h"
#include "search/logfile.h"
#include "search/threads/suspension.h"

#include <array>
#include <bit>
#include <cstdint>
#include <vector>

namespace corvina
{

/// A move that has decided a node, with the figure that made it: worth trying first at the next
/// node of the same depth.
struct TKiller
{
    TMove m_move{};
    TFigure m_figure = NO_FIGURE;
};

/// TThreadContext::m_nDoubtReason: the register knew the position as doubtful.
constexpr std::uint32_t DOUBT_REGISTER = 0xFFFFFFFF;

class TScout;

/// Everything that a search thread does not share: the line that it follows, the state of the
/// nodes on it, and its counters. One per thread of a run.
class TThreadContext : public TLineContext, public THeuristicsParams
{
public:
    static constexpr std::uint16_t NEVER = 65535;

    explicit TThreadContext(int nMaxPlies) : TLineContext(nMaxPlies) { ReserveLevels(nMaxPlies); }

    /// For a thread that goes on below a position of another one, which waits for it meanwhile: a
    /// copy of all that the owner has now, with a line of its own. *ppCopy: the position on that
    /// line. IsLineWhole(board) holds. Throws std::bad_alloc.
    TThreadContext(const TThreadContext& owner, const TChessboard& board, TChessboard** ppCopy);

    /// Adds what a thread that has ended has counted.
    void TakeCounts(const TThreadContext& other);

    /// Reserve of the base together with the state per depth.
    void ReserveLevels(int nMaxPlies)
    {
        Reserve(nMaxPlies);
        const auto nLevels = static_cast<std::size_t>(nMaxPlies) + 2;
        m_anRepeatDepth.resize(nLevels);
        m_anMoveIndex.resize(nLevels);
        m_anMoveCount.resize(nLevels);
        m_apMoves.resize(nLevels);
        m_aBlackKillers.resize(nLevels);
        m_aWhiteKillers.resize(nLevels);
        m_aUnrefuted.resize(nLevels);
    }

    std::uint16_t m_nThreadId = 0;           ///< for the stop block; 0 in a single-threaded run
    std::uint64_t m_nPositions = 0;          ///< legal moves made
    std::uint64_t m_nPublishedPositions = 0; ///< those that the request knows of
    std::uint64_t m_nLastProgressTick = 0;   ///< when the thread's line was shown last

    // The move log (search/movelog.h).
    bool m_bLogging = false;
    bool m_bLogOff = false;           ///< for a while, by a trial search
    TLogFile m_pLog;                  ///< null: not open, or it can't be
    std::uint16_t m_nLogThreadId = 0; ///< the thread for which it was opened

    // Threads below the root (search/threads/levels.h, search/threads/scheduler.h).
    const TThreadContext* m_pOwner = nullptr; ///< of the thread that waits for this one
    /// White nodes with at least so many half-moves left look closer: their moves may be shared, or
    /// the thread is one that can be held.
    std::uint16_t m_nWatchDepth = NEVER;
    std::uint8_t m_nSpawnWidth = 0;  ///< threads of a group; 0: there are no groups
    TThreadFlag m_bLastOfGroup;      ///< it is all that its group has left
    bool m_bRespawnLock = false;     ///< and has a group of its own therefore
    bool m_bSchedulerThread = false; ///< a scheduler's, or below one
    int m_nPriority = 0;

    // Position repetition. Element d + 1 holds, after the moves of the node of depth d are done,
    // the largest m_nMoves of a position further up on which an answer below the node leans; 0:
    // none.
    std::vector<std::uint16_t> m_anRepeatDepth;

    // Where the thread stands, for the panel: index of the move under analysis and their number.
    std::vector<std::uint8_t> m_anMoveIndex;
    std::vector<std::uint8_t> m_anMoveCount;
    std::vector<const TMove*> m_apMoves; ///< their lists; null where the line has no node

    bool m_bLeftOutByHand =
        false; ///< in the analysis of m_firstMove moves were passed over by hand

    // The short mate search.
    std::uint8_t m_nQuickerMateNesting = 0; ///< calls that are open
    bool m_bNoQuickerMate = false;          ///< the short mate search answers no at once
    std::uint16_t m_shAdditionalMoves = 0;  ///< full moves that a hit in a register may use on top
    bool m_bAdditionalMovesUsed = false;    ///< a mate was accepted thanks to them
    std::uint16_t m_nQuickerMateRootDepth = 0; ///< m_nMoves of m_pQuickerMateRoot
    TChessboard* m_pQuickerMateRoot = nullptr; ///< the position of the outermost call
    std::uint16_t m_nShortMateCap = 0; ///< half-moves, behind TChessboard::FLAG_SHORTMATECAP
    bool m_bSpecialSolverTried = false;

    // SolveByPinnedRook (search/pinnedrook.h).
    bool m_bInPinnedRook = false;            ///< it is open
    std::uint16_t m_nPinnedRookLevel = 0;    ///< of the latest mate that it has proved
    std::uint64_t m_nPinnedRookSearches = 0; ///< positions that it has taken up
    std::uint64_t m_nPinnedRookMates = 0;    ///< and mates that it has proved

    bool m_bTryUnblock = false; ///< SH_DONTLETFIGUREUNBLOCK may come into a subtree by itself
    std::uint64_t m_nUnblockTries = 0; ///< subtrees in which it was tried

    // The sorts (search/whitesort.h, search/blacksort.h) and the quick refutation.
    std::int8_t m_nSortNesting = 0;           ///< sorts that are open
    std::int8_t m_nFirstSortNesting = 0;      ///< sorts of first moves that are open
    const TChessboard* m_pSortRoot = nullptr; ///< the position of the outermost sort
    std::int8_t m_nSortProbeDepth = 0;    ///< depth of the latest quick refutation, in half-moves
    std::int8_t m_nRefutationNesting = 0; ///< quick refutations that are open
    const TChessboard* m_pRefutationRoot = nullptr; ///< the position of the outermost one

    // The forced mate search (search/forcedmate.h).
    std::int16_t m_nFfmBound = 0;        ///< of its short mate search, in half-moves
    std::int8_t m_nFfmVerifiesOther = 0; ///< THeuristicsParams::m_nFfmWithOther

    // Along the line: SH_SAVEQUEENROOK, SH_DONTLETFIGUREUNBLOCK.
    std::uint16_t m_nSaveFigureDeadline = 0; ///< m_nMoves by which the figure must be replaced
    std::uint8_t m_nUnblockIndex = 0;        ///< of the listed figure that moved last
    std::uint16_t m_nDlfuDynamicDepth = 0;   ///< m_nMoves at the first addition to the list

    /// SH_SEASNAKE: White pawns next to which a Black pawn has left its file; the walk may use the
    /// squares around them.
    static constexpr int MAX_TURN_BACK_SQUARES = 23;
    std::array<std::uint8_t, MAX_TURN_BACK_SQUARES> m_dynamicTurnBackSquares{};
    std::uint8_t m_nDynamicTurnBackSquares = 0;

    /// The heuristic that made the last result doubtful; 0 and -1: the register said so.
    std::uint32_t m_nDoubtReason = 0;
    std::uint8_t m_nHookNesting = 0;          ///< hooks of Black's moves that are open
    std::array<std::uint64_t, 32> m_anCuts{}; ///< lines that each heuristic has cut, by its bit
    std::array<std::uint64_t, 32> m_anWhiteCuts{}; ///< those of NoteWhiteCut among them

    /// A heuristic has cut a move of White, or left moves out of the list of his node.
    void NoteWhiteCut(std::uint32_t nHeuristic)
    {
        m_nDoubtReason = nHeuristic;
        const auto nBit = static_cast<std::size_t>(std::countr_zero(nHeuristic));
        ++m_anCuts[nBit];
        ++m_anWhiteCuts[nBit];
    }

    /// A mate was proved by a capture of the figure that Black had just promoted: it holds against
    /// each of the four.
    bool m_bSkipEqualPromotions = false;

    TScout* m_pScout = nullptr; ///< of the thread's passes, while it has one

    TMove m_firstMove{};                   ///< the first move that the thread analyses
    bool m_bSuspendResume = false;         ///< the thread has stopped itself and lifts that
    TSuspension m_nSuspended;              ///< by the scheduler
    std::uint16_t m_nDefenceDepth = 65535; ///< depth of the node whose replies are all walked

    /// Refutations by depth, the latest first.
    std::vector<TKiller> m_aBlackKillers;
    std::vector<TKiller> m_aWhiteKillers;
    std::vector<TKiller> m_aUnrefuted; ///< of White, in quick refutations
    TKiller m_lastMate;                ///< the latest mating move

private:
    TThreadContext(const TThreadContext&) = default;
};

/// The records from the position up to the root of its thread follow each other ply by ply.
bool IsLineWhole(const TChessboard& board);

/// The context of the thread that a record of the search belongs to.
inline TThreadContext& ContextOf(const TChessboard& board)
{
    return static_cast<TThreadContext&>(*board.m_pThread);
}

} // namespace corvina

#endif
