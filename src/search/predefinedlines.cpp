#include "search/predefinedlines.h"

#include "chess/fen.h"
#include "chess/notation.h"
#include "heuristics/predefined.h"
#include "problems/lexer.h"
#include "search/indications.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// Takes the next move off the text, with the number in front of it, which is left out.
std::string_view TakeMove(std::string_view& strText)
{
    while (!(strText = TrimBlanks(strText)).empty()) {
        const std::size_t nEnd = std::min(strText.find_first_of(" \t"), strText.size());
        std::string_view strWord = strText.substr(0, nEnd);
        strText.remove_prefix(nEnd);
        strWord.remove_prefix(strWord.find('.') + 1);
        if (!strWord.empty())
            return strWord;
    }
    return {};
}

/// A line of play "1. Bc1-a3 Kg1-h2 2. Ba3-d6+". Marks of check are passed over.
TVariant ReadLine(std::string_view strText, const TChessboard& root, int nNumber)
{
    TVariant variant;
    variant.m_strName = std::to_wstring(nNumber);
    // A move takes a character and a blank at least.
    const int nPlies = static_cast<int>(strText.size() / 2 + 1);
    TLineContext line(nPlies | 1);
    TChessboard start = root;
    start.m_pThread = &line;
    start.m_nMoves = start.m_nInitialMoves = static_cast<std::uint16_t>(nPlies | 1);
    TChessboard* pBoard = &start;
    for (std::string_view strMove; !(strMove = TakeMove(strText)).empty();) {
        strMove = strMove.substr(0, strMove.find_first_of("+#"));
        TChessboard* pNext = MakeMove(*pBoard, strMove);
        if (!pNext)
            throw ChessException("Invalid move in a line: " + std::string(strMove));
        variant.m_vecMoves.push_back(
            {pNext->m_LastMove, PrintMove(pNext->m_LastMove, *pBoard), std::wstring()});
        pBoard = pNext;
    }
    return variant;
}

/// A position of the tree and White's move there.
TPreferredMove ReadPreferredMove(const std::string& strFen, const std::string& strMove)
{
    TPreferredMove preferred;
    TChessboard board;
    if (!ReadFen(board, strFen))
        throw ChessException("Improper FEN code");
    board.m_nMoves = board.m_nInitialMoves = 1;
    std::copy(std::begin(board.m_board), std::end(board.m_board), preferred.m_board.begin());
    preferred.m_move = ParseMove(board, strMove);
    return preferred;
}

} // namespace

void ApplyPredefinedLines(TSolveRequest& request)
{
    if (!request.m_pPredefinedTables)
        return;
    const TPredefinedTables& tables = *request.m_pPredefinedTables;
    const TChessboard& root = *request.m_pChessboard;
    const std::string strFen = WriteFen(root, true);
    if (const auto row = tables.m_predefinedSubpositions.find(strFen);
        row != tables.m_predefinedSubpositions.end())
    {
        for (const auto& [strPosition, strMove] : row->second)
            request.m_vecPreferredMoves.push_back(ReadPreferredMove(strPosition, strMove));
    }
    const auto row = tables.m_predefinedLines.find(strFen);
    if (row == tables.m_predefinedLines.end())
        return;
    int nLines = 0;
    for (const std::string& strText : row->second) {
        if (strText.find(',') != std::string::npos)
            ParseSortIndications(request.m_mapSortIndications, strText);
        else
            AddVariant(request.m_mapSortIndications, ReadLine(strText, root, ++nLines), root);
    }
}

} // namespace corvina
