#include "support/data.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace corvina
{
namespace
{

std::vector<std::string> Split(const std::string& strText, char separator)
{
    std::vector<std::string> vecParts;
    std::istringstream input(strText);
    for (std::string strPart; std::getline(input, strPart, separator);)
        vecParts.push_back(strPart);
    return vecParts;
}

/// "Sg8*f6" and "b7-b8=Q" as Corvina writes them: "Ng8:f6", "b7-b8Q".
std::string OwnNotation(std::string strMove)
{
    std::replace(strMove.begin(), strMove.end(), 'S', 'N');
    std::replace(strMove.begin(), strMove.end(), '*', ':');
    std::erase(strMove, '=');
    return strMove;
}

void PutCastlingFigures(TChessboard& board, std::mt19937& random)
{
    if (random() % 4 == 0) {
        board.m_board[4] = WHITE_KING;
        board.m_board[random() % 2 * 7] = WHITE_ROOK;
    }
    if (random() % 4 == 0) {
        board.m_board[60] = BLACK_KING;
        board.m_board[56 + random() % 2 * 7] = BLACK_ROOK;
    }
}

TSquare RandomEmptySquare(const TChessboard& board, std::mt19937& random, bool bPawn)
{
    for (;;) {
        const TSquare square = static_cast<TSquare>(bPawn ? 8 + random() % 48 : random() % 64);
        if (board.m_board[square] == NO_FIGURE)
            return square;
    }
}

void PutKing(TChessboard& board, TFigure king, std::mt19937& random)
{
    if (std::find(std::begin(board.m_board), std::end(board.m_board), king) ==
        std::end(board.m_board))
        board.m_board[RandomEmptySquare(board, random, false)] = king;
}

TChessboard TryPosition(std::mt19937& random, int nFigures)
{
    // White gets the heavier men, so that there is something to find.
    constexpr TFigure aWhiteKinds[] = {KIND_PAWN, KIND_PAWN, KIND_KNIGHT, KIND_BISHOP,
                                       KIND_ROOK, KIND_ROOK, KIND_QUEEN,  KIND_QUEEN};
    constexpr TFigure aBlackKinds[] = {KIND_PAWN,   KIND_PAWN,   KIND_PAWN, KIND_PAWN,
                                       KIND_KNIGHT, KIND_BISHOP, KIND_ROOK, KIND_QUEEN};
    TChessboard board;
    PutCastlingFigures(board, random);
    PutKing(board, WHITE_KING, random);
    PutKing(board, BLACK_KING, random);
    for (int i = 2; i < nFigures; ++i) {
        const bool bWhite = random() % 2;
        const TFigure kind = (bWhite ? aWhiteKinds : aBlackKinds)[random() % 8];
        const TFigure colour = bWhite ? COLOUR_WHITE : COLOUR_BLACK;
        board.m_board[RandomEmptySquare(board, random, kind == KIND_PAWN)] = colour | kind;
    }
    return board;
}

} // namespace

bool HasDataFolder()
{
    return std::getenv("CORVINA_DATA") != nullptr;
}

std::vector<TAnsweredTask> ReadAnsweredTasks(const std::string& strFile)
{
    const std::string strPath = std::string(std::getenv("CORVINA_DATA")) + "/" + strFile;
    std::ifstream input(strPath);
    if (!input)
        throw std::runtime_error("cannot read " + strPath);
    std::string strLine;
    std::getline(input, strLine);
    const std::vector<std::string> vecNames = Split(strLine, '\t');
    std::vector<TAnsweredTask> vecTasks;
    while (std::getline(input, strLine)) {
        std::map<std::string, std::string> row;
        const std::vector<std::string> vecColumns = Split(strLine, '\t');
        for (std::size_t i = 0; i < vecColumns.size(); ++i)
            row[vecNames[i]] = vecColumns[i];
        TAnsweredTask task{row["fen"], std::stoi(row["n"]), {}};
        for (const std::string& strKey : Split(row["keys"], ','))
            task.m_vecKeys.push_back(OwnNotation(strKey));
        if (task.m_nMate == 0)
            task.m_nMate = 3;
        else if (task.m_vecKeys.empty())
            continue;
        std::sort(task.m_vecKeys.begin(), task.m_vecKeys.end());
        vecTasks.push_back(task);
    }
    return vecTasks;
}

TChessboard RandomPosition(std::mt19937& random, int nFigures)
{
    for (;;) {
        TChessboard board = TryPosition(random, nFigures);
        if (board.RescanBoard(true) && board.m_blackChecker == NO_CHECK)
            return board;
    }
}

} // namespace corvina
