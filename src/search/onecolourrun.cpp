#include "search/onecolourrun.h"

#include "chess/squaresets.h"
#include "heuristics/onecolour.h"
#include "search/findmate.h"
#include "search/guides/proofwalk.h"
#include "search/nodes.h"
#include "search/rootsetup.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace corvina
{
namespace
{

/// The nested run gives up when one of its threads has made so many moves.
constexpr std::uint64_t MAX_POSITIONS = 500'000;

/// And a walk over a proof when so many positions have been asked about.
constexpr int MAX_ASKED = 20'000;

/// A run on the game without the bishop.
class TReducedRun
{
public:
    TReducedRun(const TChessboard& root, const TBishopCage& cage)
        : m_outer(*root.m_pRequest), m_cage(cage), m_board(*m_request.m_pChessboard)
    {
        m_board = root;
        m_board.m_pRequest = &m_request;
        m_board.m_pParent = nullptr;
        m_board.m_pThread = nullptr;
        m_request.SetMateIn((root.m_nMoves + 1) / 2);
        if (m_cage.IsFound())
            SeparateBishop(m_board, m_cage);
        else
            ShutOutBishop(m_board);
        TakeSettings();
        m_outer.PassOnTo(&m_request);
    }
    ~TReducedRun() { m_outer.PassOnTo(nullptr); }
    TReducedRun(const TReducedRun&) = delete;
    TReducedRun& operator=(const TReducedRun&) = delete;

    std::vector<TMove> FindKeys()
    {
        std::vector<TMove> vecKeys;
        FindMate(m_board, vecKeys);
        if (!m_cage.IsFound())
            return vecKeys;
        std::erase_if(vecKeys, [&](const TMove& key) { return !HoldsInRealGame(key); });
        return vecKeys;
    }

private:
    void TakeSettings()
    {
        m_request.m_heuristicSet = m_outer.m_heuristicSet;
        m_request.m_heuristicSet.m_nHeuristics &= ~SH_ONECOLORPLAYPOSSIBLE;
        m_request.m_heuristicSet.m_nFilterMode =
            static_cast<std::uint8_t>(m_board.m_moveFilter & TChessboard::FILTER_MODE_MASK);
        m_request.m_forbiddenSquares = m_cage.m_walls;
        m_request.m_forbiddenTargets = m_cage.m_region;
        m_request.m_nSearchMode = m_outer.m_nSearchMode;
        m_request.m_nEffectiveThreads = m_outer.m_nEffectiveThreads;
        m_request.m_bSafeMode = m_outer.m_bSafeMode.load();
        m_request.m_bUseRegister = m_outer.m_bUseRegister;
        m_request.m_nMinRegisterPlies = m_outer.m_nMinRegisterPlies;
        m_request.m_nOrderSeed = m_outer.m_nOrderSeed;
        m_request.m_shLookForQuickerMateDepth = m_outer.m_shLookForQuickerMateDepth;
        m_request.m_bPreRuns = false;
        m_request.m_bThreadsForced = true; // it has the outer run's
        m_request.m_tStart = m_request.Now() - (m_outer.Now() - m_outer.m_tStart);
        m_request.OnPositionAnalysed = [this](const TChessboard* pBoard,
                                              const TThreadContext& context) {
            // A pause of the outer run's first thread is waited for.
            if ((pBoard && context.m_nPositions > MAX_POSITIONS) || m_outer.IsStopped(0))
                m_request.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS);
        };
    }

    /// The walk of the real game takes White's moves from the reduced one.
    bool HoldsInRealGame(const TMove& key)
    {
        m_request.ClearStopState();
        m_outer.PassOnTo(&m_request);
        m_pContext = std::make_unique<TThreadContext>(m_board.m_nInitialMoves);
        PutOnThread(m_board, *m_pContext);
        TChessboard real = *m_outer.m_pChessboard;
        TThreadContext context(real.m_nInitialMoves);
        PutOnThread(real, context);
        DropHeuristics(real);
        bool bFirst = true;
        int nAsked = 0;
        return TProofWalk(m_outer, context, false,
                          [&](const TChessboard& board) {
                              if (std::exchange(bFirst, false))
                                  return IndexOf(board, key);
                              return ++nAsked > MAX_ASKED ? TProofWalk::NO_ANSWER
                                                          : AskReducedGame(board);
                          })
            .Walk(real)
            .has_value();
    }

    static int IndexOf(const TChessboard& board, const TMove& move)
    {
        TMoveList moves;
        const int nMoves = board.GenerateWhiteMoves(moves.data());
        for (int i = 0; i < nMoves; ++i) {
            if (IsSameMove(moves[i], move))
                return i;
        }
        return TProofWalk::NO_ANSWER;
    }

    /// The bishop is known by its region. Of the line nothing is kept, so that the game without it
    /// has no capture en passant and no castling.
    int AskReducedGame(const TChessboard& board)
    {
        const TSquareSet bishops = TSets::Equal(board.m_board, BLACK_BISHOP) & m_cage.m_region;
        if (bishops == 0 || (bishops & (bishops - 1)))
            return TProofWalk::NO_ANSWER;
        TChessboard reduced = m_board;
        std::copy_n(board.m_board, std::size(reduced.m_board), reduced.m_board);
        reduced.m_board[LowestSquare(bishops)] = NO_FIGURE;
        if (!reduced.RescanBoard(false) || reduced.m_blackChecker != NO_CHECK)
            return TProofWalk::NO_ANSWER;
        reduced.m_nMoves = board.m_nMoves;
        reduced.m_LastMove = TMove{};
        TMoveList moves;
        const int nMoves = reduced.GenerateWhiteMoves(moves.data());
        for (int i = 0; i < nMoves; ++i) {
            TChessboard& child = m_pContext->MakeChild(reduced);
            if (child.MakeWhiteMove(&moves[i]) && SearchBlack<NODE_MAIN>(child) == RESULT_MATE)
                return IndexOf(board, moves[i]);
        }
        return TProofWalk::NO_ANSWER;
    }

    TSolveRequest& m_outer;
    const TBishopCage m_cage;
    TSolveRequest m_request;
    TChessboard& m_board; ///< the reduced root
    std::unique_ptr<TThreadContext> m_pContext;
};

} // namespace

std::vector<TMove> FindOneColourMates(const TChessboard& root)
{
    if (!(root.m_nHeuristics & SH_ONECOLORPLAYPOSSIBLE))
        return {};
    TBishopCage cage;
    if (!CanShutOutBishop(root)) {
        cage = FindBishopCage(root);
        if (!cage.IsFound())
            return {};
    }
    return TReducedRun(root, cage).FindKeys();
}

} // namespace corvina
