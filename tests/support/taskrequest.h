#ifndef CORVINA_TESTS_SUPPORT_TASKREQUEST_H
#define CORVINA_TESTS_SUPPORT_TASKREQUEST_H

#include "search/rootsetup.h"
#include "search/solve.h"

namespace corvina
{

/// The request of a mate task.
struct TTaskRequest : TSolveRequest
{
    TTaskRequest(const TChessboard& board, int nMate)
    {
        *m_pChessboard = board;
        SetMateIn(nMate);
    }
};

/// A root that is ready to be analysed, or searched by a search of its own.
struct TRootTask
{
    TRootTask(const TChessboard& board, int nMate) : m_request(board, nMate)
    {
        m_root.m_pRequest = &m_request;
        m_root.CheckStartPosition(m_request.m_nRequestedMoves, true);
    }

    TTaskRequest m_request;
    TChessboard& m_root = *m_request.m_pChessboard;
};

/// A record on a thread of its own, in a task of so many half-moves without heuristics.
struct TThreadPosition
{
    TThreadPosition(const TChessboard& position, int nTask, int nLeft)
        : context(nTask), board(position)
    {
        board.m_nInitialMoves = static_cast<std::uint16_t>(nTask);
        board.m_nMoves = static_cast<std::uint16_t>(nLeft);
        board.m_pRequest = &request;
        board.m_pParent = nullptr;
        board.m_nPass = PASS_WITHOUT_HEURISTICS;
        PutOnThread(board, context);
    }

    TSolveRequest request;
    TThreadContext context;
    TChessboard board;
};

/// All solutions of a mate task, by the plain recursion if wanted.
inline std::vector<TMove> SolutionsOf(const TChessboard& board, int nMate, bool bPlain = false)
{
    TTaskRequest request(board, nMate);
    request.m_bPlain = bPlain;
    return Solve(request, {}).m_vecSolutions;
}

} // namespace corvina

#endif
