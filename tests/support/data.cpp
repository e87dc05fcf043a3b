#include "support/data.h"

#include "support/positions.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <stdexcept>

namespace corvina
{
namespace
{

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

bool Has(const TChessboard& board, TFigure figure)
{
    return std::find(std::begin(board.m_board), std::end(board.m_board), figure) !=
           std::end(board.m_board);
}

void PutKing(TChessboard& board, TFigure king, std::mt19937& random)
{
    if (!Has(board, king))
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

void PutIfEmpty(TChessboard& board, int file, int row, TFigure figure)
{
    const bool bPawn = (figure & KIND_MASK) == KIND_PAWN;
    if (file < 0 || file > 7 || row < 0 || row > 7 || (bPawn && (row == 0 || row == 7)))
        return;
    if (board.m_board[8 * row + file] == NO_FIGURE)
        board.m_board[8 * row + file] = figure;
}

void PutNear(TChessboard& board, std::mt19937& random, int file, int row, int nReach,
             TFigure figure)
{
    const int nSpan = 2 * nReach + 1;
    const int x = file - nReach + static_cast<int>(random() % nSpan);
    const int y = row - nReach + static_cast<int>(random() % nSpan);
    PutIfEmpty(board, x, y, figure);
}

/// Pawns that block each other, a row of them for each side.
void PutPawnPairs(TChessboard& board, std::mt19937& random)
{
    for (int file = 0; file < 8; ++file) {
        const int row = 1 + static_cast<int>(random() % 5);
        if (random() % 3 == 0 && board.m_board[8 * row + file] == NO_FIGURE) {
            board.m_board[8 * row + file] = COLOUR_WHITE | KIND_PAWN;
            PutIfEmpty(board, file, row + 1, COLOUR_BLACK | KIND_PAWN);
        }
    }
}

/// Pawns one step from promotion, or from where a capture en passant can happen.
void PutPawnsAtWork(TChessboard& board, std::mt19937& random)
{
    for (const auto& [row, figure] : {std::pair{6, WHITE_PAWN},
                                      {4, WHITE_PAWN},
                                      {1, WHITE_PAWN},
                                      {6, BLACK_PAWN},
                                      {3, BLACK_PAWN},
                                      {1, BLACK_PAWN}})
    {
        if (random() % 2)
            PutIfEmpty(board, static_cast<int>(random() % 8), row, figure);
    }
}

TChessboard TryComposedPosition(std::mt19937& random)
{
    constexpr TFigure aWhite[] = {WHITE_QUEEN, WHITE_ROOK, WHITE_ROOK, WHITE_BISHOP, WHITE_KNIGHT};
    constexpr TFigure aBlack[] = {BLACK_PAWN, BLACK_PAWN,   BLACK_KNIGHT,
                                  BLACK_ROOK, BLACK_BISHOP, BLACK_PAWN};
    TChessboard board;
    const unsigned nKind = random() % 4;
    if (nKind == 0)
        PutCastlingFigures(board, random);
    int file = static_cast<int>(random() % 8), row = static_cast<int>(random() % 8);
    const int nEdge = random() % 2 ? 0 : 7;
    if (nKind != 3)
        (random() % 2 ? file : row) = nEdge;
    if (Has(board, BLACK_KING))
        file = 4, row = 7;
    PutIfEmpty(board, file, row, BLACK_KING);
    const unsigned nGuards = random() % 5;
    for (unsigned i = 0; i < nGuards; ++i)
        PutNear(board, random, file, row, 1, aBlack[random() % 6]);
    if (nKind == 1)
        PutPawnPairs(board, random);
    if (nKind != 1 || random() % 3 == 0)
        PutPawnsAtWork(board, random);
    if (!Has(board, WHITE_KING))
        PutNear(board, random, file, row, 3, WHITE_KING);
    const unsigned nMating = 1 + random() % 3;
    for (unsigned i = 0; i < nMating; ++i)
        PutNear(board, random, file, row, 4, aWhite[random() % 5]);
    return board;
}

/// The first attempt that is a position of the game with White to move.
template <class TMake>
TChessboard FirstSound(TMake make)
{
    for (;;) {
        TChessboard board = make();
        if (board.RescanBoard(true) && board.m_blackChecker == NO_CHECK)
            return board;
    }
}

} // namespace

bool HasDataFolder()
{
    return std::getenv("CORVINA_DATA") != nullptr;
}

namespace
{

using TRow = std::map<std::string, std::string>;

std::vector<TRow> ReadRows(const std::string& strFile)
{
    const std::string strPath = std::string(std::getenv("CORVINA_DATA")) + "/" + strFile;
    std::ifstream input(strPath);
    if (!input)
        throw std::runtime_error("cannot read " + strPath);
    std::string strLine;
    std::getline(input, strLine);
    const std::vector<std::string> vecNames = Split(strLine, '\t');
    std::vector<TRow> vecRows;
    while (std::getline(input, strLine)) {
        TRow row;
        const std::vector<std::string> vecColumns = Split(strLine, '\t');
        for (std::size_t i = 0; i < vecColumns.size(); ++i)
            row[vecNames[i]] = vecColumns[i];
        vecRows.push_back(row);
    }
    return vecRows;
}

} // namespace

std::vector<TAnsweredTask> ReadAnsweredTasks(const std::string& strFile)
{
    std::vector<TAnsweredTask> vecTasks;
    for (TRow& row : ReadRows(strFile)) {
        TAnsweredTask task{row["fen"], std::stoi(row["n"]), {}};
        for (const std::string& strKey : Split(row["keys"], ','))
            if (!strKey.empty())
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

std::vector<TAnsweredTask> ReadLongTasks(const std::string& strFile, int nMinMoves)
{
    std::vector<TAnsweredTask> vecTasks;
    for (TRow& row : ReadRows(strFile)) {
        if (const int nMate = std::stoi(row["n"]); nMate >= nMinMoves)
            vecTasks.push_back({row["fen"], nMate, {}});
    }
    return vecTasks;
}

TChessboard RandomPosition(std::mt19937& random, int nFigures)
{
    return FirstSound([&] { return TryPosition(random, nFigures); });
}

TChessboard ComposedPosition(std::mt19937& random)
{
    return FirstSound([&] { return TryComposedPosition(random); });
}

} // namespace corvina
