#include "search/defence.h"

#include "chess/notation.h"
#include "registers/answers.h"
#include "search/hooks.h"
#include "search/nodes.h"
#include "search/rootsetup.h"
#include "search/shortmate.h"

#include <algorithm>
#include <bit>

namespace corvina
{
namespace
{

/// The ranking looks for mates of at most so many half-moves.
constexpr int MAX_RANKING_PLIES = 9;
constexpr int MAX_RANKED_PLIES_THOROUGH = 10;

/// A register of its own for the task, with the limits of the request's, which comes back with its
/// contents at the end.
class TRegisterOfDefence
{
public:
    explicit TRegisterOfDefence(TSolveRequest& request) : m_request(request)
    {
        auto& reg = m_request.m_TemporaryRegister;
        reg.Swap(m_other);
        reg.SetBuckets(reg.GetBucketsForSolve(m_request.m_nRequestedMoves), false);
        m_request.m_bRegisterConfirm = true;
    }
    ~TRegisterOfDefence()
    {
        m_request.m_bRegisterConfirm = false;
        m_request.m_TemporaryRegister.Swap(m_other);
    }
    TRegisterOfDefence(const TRegisterOfDefence&) = delete;
    TRegisterOfDefence& operator=(const TRegisterOfDefence&) = delete;

private:
    TSolveRequest& m_request;
    TAggregatedTemporaryChessboardRegister m_other;
};

/// What the register of solved positions knows of a position with Black to move.
struct TRegisterAnswer
{
    std::uint8_t m_nAnswer = REGISTER_UNKNOWN; ///< 1: a move prevents the mate, 0: none does
    TMove m_move{};                            ///< the best one
};

/// Short tasks are not looked up.
constexpr int MIN_SOLVED_PLIES = 12;

TRegisterAnswer AskSolvedPositions(TSolveRequest& request)
{
    TRegisterAnswer answer;
    const TChessboard& board = *request.m_pCurrentBoard;
    std::uint32_t nMove = 0;
    if (board.m_nMoves >= MIN_SOLVED_PLIES)
        answer.m_nAnswer =
            request.m_TemporaryRegister.FindDefence(board.m_nMoves, board.m_board, &nMove);
    answer.m_move = std::bit_cast<TMove>(nMove);
    return answer;
}

/// The search for the best defence at one position.
class TDefenceSearch
{
public:
    /// The line that led to the record stays above it.
    TDefenceSearch(TSolveRequest& request, bool bThorough)
        : m_request(request), m_root(*request.m_pCurrentBoard), m_bThorough(bThorough),
          m_context(m_root.m_nMoves + MAX_RANKING_PLIES)
    {
        m_root.m_pRequest = &request;
        TakeUpHeuristics(m_root);
        PutOnThread(m_root, m_context);
        m_context.m_pRootBoard = request.m_pChessboard.get();
        // Black's best reply is none that he has in a reduced problem only.
        m_root.m_moveFilter &= static_cast<std::uint8_t>(~TChessboard::FILTER_MODE_MASK);
        m_root.m_nHeuristicsParams = ComputeHeurParams(m_root);
    }
    TDefenceSearch(const TDefenceSearch&) = delete;
    TDefenceSearch& operator=(const TDefenceSearch&) = delete;

    TDefenceOutcome Search(TRegisterAnswer solved)
    {
        CollectReplies();
        m_solved = solved;
        if (m_root.IsRepetition())
            return OutcomeOfRepetition();
        FindOnlyReply();
        if (m_bOnly && !m_bThorough)
            return OutcomeOfOnlyReply();
        m_context.m_nDefenceDepth = m_root.m_nMoves;
        if (m_solved.m_nAnswer != REGISTER_UNKNOWN && TakeSolved())
            return Outcome(TextOfSearch());
        m_outcome.m_bMateFollows = SearchPasses() == RESULT_MATE;
        if (IsStopped())
            return OutcomeOfStop();
        Rank();
        return Outcome(TextOfSearch());
    }

private:
    bool IsStopped() const { return m_request.IsStoppedForAll(); }

    /// From the set of the request to none, until a pass is certain.
    TSearchResult SearchPasses()
    {
        while (m_root.m_nHeuristics != 0) {
            const TSearchResult nResult = SearchBlack<NODE_DEFENCE>(m_root);
            if (nResult >= 0 || IsStopped())
                return nResult;
            if (TryRelaxSpecialHeuristics(m_root) == 0)
                DropHeuristics(m_root);
        }
        m_root.m_nPass = PASS_WITHOUT_HEURISTICS;
        return SearchBlack<NODE_DEFENCE>(m_root);
    }

    /// The register of solved positions knows how the position ends, with Black's best move. False
    /// when that is none of his moves.
    bool TakeSolved()
    {
        const auto isIt = [&](const TMove& reply) { return IsSameMove(reply, m_solved.m_move); };
        if (std::none_of(m_vecReplies.begin(), m_vecReplies.end(), isIt))
            return false;
        m_outcome.m_bFromRegister = true;
        m_outcome.m_bMateFollows = m_solved.m_nAnswer == 0;
        m_outcome.m_vecRanked = {{m_solved.m_move, !m_outcome.m_bMateFollows, 0}};
        return true;
    }

    /// Nothing is analysed that has stood on the board before.
    TDefenceOutcome OutcomeOfRepetition()
    {
        m_outcome.m_bSettledAtOnce = true;
        m_outcome.m_strText =
            "Program detected position repetition\nFor optimization reasons every "
            "postion repetition is treated as preventing mate and, thus, program "
            "terminates analysis in such case.";
        return m_outcome;
    }

    void CollectReplies()
    {
        TMoveList moves;
        const int nMoves = m_root.GenerateBlackMoves(moves.data());
        for (int i = 0; i < nMoves; ++i) {
            if (MakeReply(moves[i]))
                m_vecReplies.push_back(moves[i]);
        }
        if (m_vecReplies.empty())
            throw ChessException("No valid move found");
    }

    /// The position after a reply, or null for an illegal one. It has a place of its own: a test
    /// deeper than the root would come by the slot of the stack again.
    TChessboard* MakeReply(TMove move)
    {
        m_reply = m_root;
        m_reply.m_pParent = &m_root;
        return m_reply.MakeBlackMove(&move) ? &m_reply : nullptr;
    }

    /// White mates within nPlies half-moves after the reply.
    bool IsMatedWithin(const TMove& reply, int nPlies)
    {
        TChessboard& child = *MakeReply(reply);
        child.m_nMoves = static_cast<std::uint16_t>(nPlies);
        return SearchWhite<NODE_DEFENCE_DEEPER>(child) == RESULT_MATE;
    }

    /// The mates that a solver sees at a glance: in one and in two moves, as far as they fit.
    bool IsMatedShortly(const TMove& reply)
    {
        return IsMatedWithin(reply, std::min<int>(m_root.m_nMoves - 1, 3));
    }

    /// Is there but one legal reply, or but one that prevents a short mate?
    void FindOnlyReply()
    {
        m_only = m_vecReplies.front();
        m_bOnly = m_vecReplies.size() == 1;
        if (m_bOnly)
            return;
        int nSurvivors = 0;
        for (const TMove& reply : m_vecReplies) {
            if (IsMatedShortly(reply))
                continue;
            m_only = reply;
            ++nSurvivors;
        }
        m_bOnly = m_bShort = nSurvivors == 1;
    }

    TDefenceOutcome OutcomeOfOnlyReply()
    {
        m_outcome.m_bSettledAtOnce = true;
        const bool bMate = !m_bShort && IsMatedShortly(m_only);
        if (IsStopped())
            return OutcomeOfStop();
        m_outcome.m_bMateFollows = bMate;
        m_outcome.m_vecRanked = {{m_only, false, 0}};
        if (m_bShort)
            return Outcome("The only reply that prevents short mate: ");
        return Outcome(bMate ? "The only reply (not a defence against mate) : "
                             : "The only reply: ");
    }

    /// A stop leaves the defences found so far.
    TDefenceOutcome OutcomeOfStop()
    {
        m_outcome.m_bStopped = true;
        m_outcome.m_bMateFollows = false;
        if (m_request.m_vecDefences.empty()) {
            m_outcome.m_strText = "Analysis stopped by user";
            return m_outcome;
        }
        for (const TMove& move : m_request.m_vecDefences)
            m_outcome.m_vecRanked.push_back({move, true, 0});
        m_nEquals = m_outcome.m_vecRanked.size();
        Outcome("Mate in the requested stipulation was refuted with: ");
        m_outcome.m_strText += " (stopped by user)";
        return m_outcome;
    }

    const char* TextOfSearch() const
    {
        if (!m_outcome.m_bMateFollows)
            return "Mate in the requested stipulation was refuted with: ";
        if (!m_bOnly)
            return "Not found any defence against mate. The best looks: ";
        return m_bShort ? "The only reply that prevents short mate (not a defence against mate) : "
                        : "The only reply (not a defence against mate) : ";
    }

    /// The candidates: the replies that refute, or all when none does. A reply that is mated sooner
    /// ranks lower; what is left at the end shares the first place.
    void Rank()
    {
        const bool bRefuted = !m_outcome.m_bMateFollows;
        std::vector<TRankedDefence> vecLeft;
        for (const TMove& move : bRefuted ? m_request.m_vecDefences : m_vecReplies)
            vecLeft.push_back({move, bRefuted, 0});
        std::vector<TRankedDefence> vecBeaten;
        // Against a mate that follows, the length of the longest defence is told too.
        const auto isOpen = [&] {
            return vecLeft.front().m_nMatedIn == 0 && (vecLeft.size() > 1 || !bRefuted);
        };
        for (int k = 1; k <= RankingPlies() && isOpen() && !IsStopped(); k += 2)
            DropMatedWithin(k, vecLeft, vecBeaten);
        std::reverse(vecBeaten.begin(), vecBeaten.end());
        m_nEquals = vecLeft.size();
        m_outcome.m_vecRanked = std::move(vecLeft);
        m_outcome.m_vecRanked.insert(m_outcome.m_vecRanked.end(), vecBeaten.begin(),
                                     vecBeaten.end());
        const auto& vecRecords = m_request.m_vecDefenceRecords;
        m_outcome.m_bRepetition = bRefuted && std::none_of(vecRecords.begin(), vecRecords.end(),
                                                           [](const TDefenceRecord& record) {
                                                               return record.m_bRefutes;
                                                           });
    }

    /// Within the stipulation the search has the answers; beyond it the effort is bounded.
    int RankingPlies() const
    {
        const int nPlies = m_root.m_nMoves;
        if (m_outcome.m_bMateFollows)
            return nPlies - 1;
        const int nLimit = m_bThorough ? MAX_RANKED_PLIES_THOROUGH : MAX_RANKING_PLIES;
        return nPlies <= nLimit ? MAX_RANKING_PLIES : 0;
    }

    /// Moves the replies that are mated within k half-moves behind those beaten before; when that
    /// would be all of them they stay, as equals.
    void DropMatedWithin(int k, std::vector<TRankedDefence>& vecLeft,
                         std::vector<TRankedDefence>& vecBeaten)
    {
        std::vector<TRankedDefence> vecStay, vecGo;
        for (TRankedDefence defence : vecLeft) {
            if (IsMatedWithin(defence.m_move, k)) {
                defence.m_nMatedIn = k;
                vecGo.push_back(defence);
            }
            else {
                vecStay.push_back(defence);
            }
        }
        if (IsStopped())
            return;
        if (vecStay.empty()) {
            vecLeft = vecGo;
            return;
        }
        vecLeft = vecStay;
        vecBeaten.insert(vecBeaten.end(), vecGo.rbegin(), vecGo.rend());
    }

    TDefenceOutcome Outcome(const char* pText)
    {
        auto& ranked = m_outcome.m_vecRanked;
        m_outcome.m_strText = pText + PrintMove(ranked.front().m_move, m_root);
        for (std::size_t i = 1; i < std::min(m_nEquals, ranked.size()); ++i)
            m_outcome.m_strText +=
                (i == 1 ? "\nEquivalent moves: " : ", ") + PrintMove(ranked[i].m_move, m_root);
        if (m_outcome.m_bFromRegister)
            m_outcome.m_strText += " (from register)";
        return m_outcome;
    }

    TSolveRequest& m_request;
    TChessboard m_root;
    TRegisterAnswer m_solved;
    TChessboard m_reply;
    const bool m_bThorough;
    TThreadContext m_context;
    std::vector<TMove> m_vecReplies;
    TMove m_only{};        ///< the only reply to consider
    bool m_bOnly = false;  ///< there is such a reply
    bool m_bShort = false; ///< the others allow a short mate
    std::size_t m_nEquals = 1;
    TDefenceOutcome m_outcome;
};

} // namespace

TDefenceOutcome FindBestDefence(TSolveRequest& request, bool bThorough)
{
    request.ClearStopState();
    request.m_bThoroughDefence = bThorough;
    request.m_bSolutionFound = false;
    TChessboard& root = *request.m_pCurrentBoard;
    root.m_pRequest = &request;
    if (!root.m_pParent)
        root.CheckStartPosition(request.m_nRequestedMoves, true);
    else if (root.IsWhiteToMove())
        throw ChessException("It is not Black's move.");
    request.m_nShortestRepetitionDepth = root.m_nMoves;
    const TRegisterAnswer solved = AskSolvedPositions(request);
    const TRegisterOfDefence fresh(request);
    return TDefenceSearch(request, bThorough).Search(solved);
}

} // namespace corvina
