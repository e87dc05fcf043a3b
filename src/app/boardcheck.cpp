#include "app/boardcheck.h"

#include "chess/notation.h"
#include "search/defence.h"

#include <algorithm>

namespace corvina
{
namespace
{

const TVariant* FindMainVariant(const TProblem& problem)
{
    for (const auto& [strName, variant] : problem.m_mapVariants) {
        if (IsMainVariantName(strName))
            return &variant;
    }
    return nullptr;
}

class CVariantWalk
{
public:
    CVariantWalk(const TSolveRequest& problem, const TVariant& variant,
                 const TRunSettings& settings, const TOptions& options, const TGuardedRun& guard)
        : m_vecMoves(variant.m_vecMoves), m_settings(settings), m_options(options), m_guard(guard),
          m_bAux(problem.m_nRunOptions & RUN_CHECKDEFENCEANDAUX),
          m_nMaxMoves(2 * problem.m_nGuiCheckRepeat - 1), m_root(*problem.m_pChessboard),
          m_line(problem.m_nRequestedMoves)
    {
        m_root.CheckStartPosition(problem.m_nRequestedMoves, true);
        m_line.m_pRootBoard = &m_root;
        m_root.m_pThread = &m_line;
    }

    std::string Walk()
    {
        TChessboard* pBoard = &m_root;
        std::string strFault;
        for (int i = 0; i < m_nMaxMoves && strFault.empty() && !m_bStopped; ++i) {
            pBoard = Play(*pBoard, static_cast<std::size_t>(i));
            if (!pBoard)
                break;
            if (!pBoard->IsWhiteToMove())
                strFault = CheckBlack(*pBoard, static_cast<std::size_t>(i) + 1);
        }
        return m_bStopped ? std::string() : strFault;
    }

private:
    /// The position after a move of the variant; null where the variant or the stipulation ends,
    /// and at a move that the position doesn't allow.
    TChessboard* Play(TChessboard& board, std::size_t nIndex)
    {
        if (nIndex >= m_vecMoves.size() || board.m_nMoves == 0)
            return nullptr;
        TMove move = m_vecMoves[nIndex].m_move;
        if (!IsMoveLegal(board, move))
            return nullptr;
        TChessboard& child = m_line.MakeChild(board);
        const bool bMade =
            board.IsWhiteToMove() ? child.MakeWhiteUserMove(&move) : child.MakeBlackUserMove(&move);
        return bMade ? &child : nullptr;
    }

    std::string CheckBlack(TChessboard& board, std::size_t nIndex)
    {
        if (!Play(board, nIndex))
            return {};
        std::string strFault = CheckDefence(board, m_vecMoves[nIndex].m_move);
        if (!strFault.empty() || !m_bAux || m_bStopped)
            return strFault;
        TChessboard& answered = *Play(board, nIndex);
        if (Play(answered, nIndex + 1))
            strFault = CheckMate(answered, m_vecMoves[nIndex + 1].m_move);
        return strFault;
    }

    static std::string Fault(const char* pWhat, const TChessboard& board, const TMove& expected,
                             const std::string& strFound)
    {
        return std::string("Error in ") + pWhat + ":\n\nexpected " + PrintMove(expected, board) +
               "\nfound " + strFound + "\n";
    }

    /// The position as a task of its own. Its parents tell what castling and capture en passant it
    /// allows.
    static void Ask(TSolveRequest& question, const TChessboard& board)
    {
        *question.m_pChessboard = board;
        question.m_nRequestedMoves = board.m_nMoves;
        question.m_nShortestRepetitionDepth = board.m_nMoves;
    }

    std::string CheckDefence(const TChessboard& board, const TMove& expected)
    {
        TSolveRequest question;
        Ask(question, board);
        TDefenceOutcome outcome;
        m_guard(question, [&] { outcome = FindBestDefence(question, false); });
        m_bStopped = outcome.m_bStopped;
        if (m_bStopped || outcome.m_vecRanked.empty())
            return {};
        const TRankedDefence& best = outcome.m_vecRanked.front();
        const bool bFound = std::any_of(outcome.m_vecRanked.begin(), outcome.m_vecRanked.end(),
                                        [&](const TRankedDefence& defence) {
                                            return IsSameMove(defence.m_move, expected) &&
                                                   defence.m_bRefutes == best.m_bRefutes &&
                                                   defence.m_nMatedIn == best.m_nMatedIn;
                                        });
        return bFound ? std::string()
                      : Fault("best defence", board, expected, PrintMove(best.m_move, board));
    }

    std::string CheckMate(const TChessboard& board, const TMove& expected)
    {
        TSolveRequest question;
        Ask(question, board);
        ApplyOptions(m_options, question);
        TRunSettings settings = m_settings;
        settings.m_bStopAtFirstSolution = false;
        TSolveOutcome outcome;
        m_guard(question, [&] { outcome = Solve(question, settings); });
        m_bStopped = outcome.m_bStopped;
        const auto& vecFound = outcome.m_vecSolutions;
        const bool bFound = std::any_of(vecFound.begin(), vecFound.end(), [&](const TMove& move) {
            return IsSameMove(move, expected);
        });
        if (m_bStopped || bFound)
            return {};
        return Fault("auxMate", board, expected,
                     vecFound.empty() ? "-" : PrintMove(vecFound.front(), board));
    }

    const std::vector<TVariantMove>& m_vecMoves;
    const TRunSettings& m_settings;
    const TOptions& m_options;
    const TGuardedRun& m_guard;
    const bool m_bAux;
    const int m_nMaxMoves;
    TChessboard m_root;
    TLineContext m_line;
    bool m_bStopped = false;
};

} // namespace

std::string CheckMainVariant(const TSolveRequest& problem, const TRunSettings& settings,
                             const TOptions& options, const TGuardedRun& guard)
{
    constexpr std::uint32_t ANY = RUN_CHECKDEFENCE | RUN_CHECKDEFENCEANDAUX;
    const TVariant* pVariant = FindMainVariant(problem);
    if (!pVariant || !(problem.m_nRunOptions & ANY))
        return {};
    return CVariantWalk(problem, *pVariant, settings, options, guard).Walk();
}

} // namespace corvina
