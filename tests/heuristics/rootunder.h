#ifndef CORVINA_TESTS_HEURISTICS_ROOTUNDER_H
#define CORVINA_TESTS_HEURISTICS_ROOTUNDER_H

#include "heuristics/narrowedlists.h"
#include "heuristics/randomsets.h"
#include "heuristics/setreader.h"
#include "search/rootsetup.h"
#include "support/chesstest.h"

#include <set>

namespace corvina
{

inline TSquare At(const char* pSquare)
{
    return String2Square(pSquare);
}

/// A root that takes part in a run under a set, and a line from it.
struct TRootUnder
{
    TRootUnder(const TChessboard& board, const std::string& strSet, int nHalfMoves)
        : t(board, nHalfMoves)
    {
        ReadHeuristicsText(strSet, t.request.m_heuristicSet, &t.board);
        TakeUpHeuristics(t.board);
        PutOnThread(t.board, t.context);
    }

    TChessboard& Play(const std::string& strMoves) { return *PlayMoves(t.board, strMoves); }

    TSetPosition t;
};

inline std::set<std::string> Texts(const TChessboard& board, const TMove* pMoves, int nMoves)
{
    std::set<std::string> setTexts;
    for (int i = 0; i < nMoves; ++i)
        setTexts.insert(PrintMove(pMoves[i], board));
    return setTexts;
}

inline std::set<std::string> ListOf(TChessboard& board, TNarrowedList (*list)(TChessboard&, TMove*))
{
    TMoveList moves;
    const TNarrowedList narrowed = list(board, moves.data());
    return Texts(board, moves.data(), narrowed.m_nMoves);
}

using TTexts = std::set<std::string>;

/// Black's moves with his men other than king and pawns, were it his turn.
inline TTexts FigureMovesOfBlack(const TChessboard& board, bool* pKingMoves)
{
    TTestLine line(WriteFen(board, true), 20);
    TTexts setMoves;
    *pKingMoves = false;
    for (const TMove& move : LegalMoves(line.board)) {
        const TFigure figure = line.board.m_board[move.m_from];
        *pKingMoves |= figure == BLACK_KING;
        if (figure != BLACK_KING && figure != BLACK_PAWN)
            setMoves.insert(PrintMove(move, line.board));
    }
    return setMoves;
}

} // namespace corvina

#endif
