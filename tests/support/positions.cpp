#include "support/positions.h"

#include "chess/fen.h"
#include "chess/notation.h"

#include <algorithm>
#include <stdexcept>

namespace corvina
{

std::vector<std::string> Split(const std::string& strText, char separator)
{
    std::vector<std::string> vecParts(1);
    for (const char c : strText) {
        if (c == separator)
            vecParts.emplace_back();
        else
            vecParts.back() += c;
    }
    return vecParts;
}

TChessboard BoardOf(const std::string& strFen)
{
    TChessboard board;
    if (!ReadFen(board, strFen))
        throw std::invalid_argument("no FEN: " + strFen);
    return board;
}

TTestLine::TTestLine(const std::string& strFen, int nMoves) : context(nMoves)
{
    board = BoardOf(strFen);
    board.m_pThread = &context;
    context.m_pRootBoard = &board;
    board.CheckStartPosition(static_cast<std::uint16_t>(nMoves), true);
}

std::vector<TMove> LegalMoves(TChessboard& board)
{
    TMoveList list;
    const bool bWhite = board.IsWhiteToMove();
    const int nCount =
        bWhite ? board.GenerateWhiteMoves(list.data()) : board.GenerateBlackMoves(list.data());
    std::vector<TMove> vecLegal;
    for (int i = 0; i < nCount; ++i) {
        TChessboard child = board;
        child.m_pParent = &board;
        TMove move = list[i];
        if (!move.IsNull() &&
            (bWhite ? child.MakeWhiteUserMove(&move) : child.MakeBlackUserMove(&move)))
            vecLegal.push_back(move);
    }
    return vecLegal;
}

TChessboard& PlayMove(TChessboard& board, TMove move)
{
    TChessboard& child = board.m_pThread->MakeChild(board);
    if (!(board.IsWhiteToMove() ? child.MakeWhiteUserMove(&move) : child.MakeBlackUserMove(&move)))
        throw std::logic_error("the move is refused");
    return child;
}

std::vector<std::string> SortedKeys(const std::vector<TMove>& vecMoves, const TChessboard& board)
{
    std::vector<std::string> vecKeys;
    for (const TMove& move : vecMoves)
        vecKeys.push_back(PrintMove(move, board));
    std::sort(vecKeys.begin(), vecKeys.end());
    return vecKeys;
}

int HalfMovesFor(const std::string& strFen, int nPlies)
{
    const bool bBlack = strFen.find(" b ") != std::string::npos;
    return bBlack ? (nPlies + 2) & ~1 : (nPlies + 1) | 1;
}

} // namespace corvina
