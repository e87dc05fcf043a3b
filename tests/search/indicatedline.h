#ifndef CORVINA_TESTS_SEARCH_INDICATEDLINE_H
#define CORVINA_TESTS_SEARCH_INDICATEDLINE_H

#include "search/indications.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"

namespace corvina
{

/// A request with a line of play from its position.
struct TIndicatedLine
{
    explicit TIndicatedLine(const std::string& strFen, const std::string& strMoves = "")
        : request(BoardOf(strFen), MOVES), context(2 * MOVES - 1)
    {
        TChessboard& root = *request.m_pChessboard;
        root.CheckStartPosition(2 * MOVES - 1, true);
        root.m_pRequest = &request;
        root.m_pThread = &context;
        context.m_pRootBoard = &root;
        Play(strMoves);
    }

    /// From the root on.
    void Play(const std::string& strMoves)
    {
        TChessboard& root = *request.m_pChessboard;
        pBoard = strMoves.empty() ? &root : PlayMoves(root, strMoves);
    }

    void Load(const std::string& strItems)
    {
        ParseSortIndications(request.m_sortIndications, strItems);
        LoadSortIndications(request);
    }

    /// The score that the indications give a move, or nothing.
    std::optional<int> Score(const std::string& strMove)
    {
        TNodeIndications indications(*pBoard);
        return indications.Apply()
                   ? indications.Score(PlayMove(*pBoard, ParseMove(*pBoard, strMove)))
                   : std::nullopt;
    }

    static constexpr int MOVES = 6;

    TTaskRequest request;
    TThreadContext context;
    TChessboard* pBoard;
};

} // namespace corvina

#endif
