#include "heuristics/zugzwangmap.h"

#include "chess/exception.h"
#include "chess/linecontext.h"
#include "chess/moveset.h"
#include "chess/notation.h"
#include "chess/sides.h"
#include "heuristics/lastmoves.h"
#include "heuristics/paramitems.h"
#include "search/solverequest.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// A reply that changes nothing but the place of a figure.
bool IsWaitingMove(const TChessboard& before, const TChessboard& after, const TMove& move)
{
    const TFigure kind = before.m_board[move.m_from] & KIND_MASK;
    return kind != KIND_PAWN && before.m_board[move.m_to] == NO_FIGURE &&
           after.m_whiteChecker == NO_CHECK;
}

/// Notes where Black's waiting moves go.
void FillSquares(TZugzwangEntry& entry)
{
    TLineContext line(entry.m_board.m_nMoves + 1);
    TChessboard board = entry.m_board;
    board.m_pThread = &line;
    TMoveList moves;
    const int nMoves = board.GenerateBlackMoves(moves.data());
    for (int i = 0; i < nMoves && entry.m_nSquares < TZugzwangEntry::MAX_SQUARES; ++i) {
        TChessboard child = board;
        child.m_pParent = &board;
        const TSquare* pEnd = entry.m_squares + entry.m_nSquares;
        if (child.MakeBlackUserMove(&moves[i]) && IsWaitingMove(board, child, moves[i]) &&
            std::find<const TSquare*>(entry.m_squares, pEnd, moves[i].m_to) == pEnd)
            entry.m_squares[entry.m_nSquares++] = moves[i].m_to;
    }
}

/// False for a move that isn't legal.
bool PlayEntry(const TChessboard& root, TMove move, TZugzwangEntry& entry)
{
    TLineContext line(root.m_nMoves + 1);
    TChessboard before = root;
    before.m_pParent = nullptr;
    before.m_pThread = &line;
    TChessboard child = before;
    child.m_pParent = &before;
    if (!child.MakeWhiteUserMove(&move))
        return false;
    child.m_pParent = nullptr;
    child.m_pThread = nullptr;
    child.m_pRequest = nullptr;
    entry.m_move = move;
    entry.m_board = child;
    FillSquares(entry);
    return true;
}

/// White's men stand alike on both.
bool HaveSameWhiteMen(const TChessboard& a, const TChessboard& b)
{
    const TSquareSet white = TSide<EColour::White>::Figures(a.m_board);
    if (white != TSide<EColour::White>::Figures(b.m_board))
        return false;
    for (TSquareSet rest = white; rest;) {
        const TSquare square = PopLowestSquare(rest);
        if (a.m_board[square] != b.m_board[square])
            return false;
    }
    return true;
}

/// The move leads to the entry's position, Black's men other than the king apart.
bool Fits(TChessboard& board, const TZugzwangEntry& entry)
{
    const TMove& move = entry.m_move;
    if (board.BlackKing() != entry.m_board.BlackKing() ||
        !(board.m_board[move.m_from] & COLOUR_WHITE))
        return false;
    TMoveList moves;
    const int nMoves = board.GenerateWhiteFigureMoves(move.m_from, moves.data());
    if (std::none_of(moves.data(), moves.data() + nMoves,
                     [&](const TMove& other) { return IsSameMove(other, move); }))
        return false;
    TChessboard& child = ContextOf(board).MakeChild(board);
    TMove made = move;
    return child.MakeWhiteMove(&made) && HaveSameWhiteMen(child, entry.m_board);
}

} // namespace

std::vector<TMove> ReadZugzwangMoves(std::string_view strText, const TChessboard& board)
{
    std::vector<TMove> vecMoves;
    TLineContext line(3);
    TChessboard root = board;
    root.m_pParent = nullptr;
    root.m_pThread = &line;
    root.m_nMoves = 3; // White to move, whatever is left
    for (const std::string_view strItem : ItemsOf(strText)) {
        try {
            const TMove move = ParseMove(root, strItem);
            if (!ContainsMove(vecMoves, move))
                vecMoves.push_back(move);
        }
        catch (const ChessException& error) {
            throw ChessException("Invalid move for SH_ZUGZWANG: \"" + std::string(strItem) +
                                 "\" (" + error.what() + ")");
        }
    }
    return vecMoves;
}

std::string ZugzwangMovesText(const TZugzwangMap& map)
{
    std::string strText;
    for (const auto& [key, entry] : map) {
        const TChessboard& after = entry.m_board;
        const TFigure kind =
            entry.m_move.PromotionKind() ? KIND_PAWN : after.m_board[key.m_to] & KIND_MASK;
        strText += (strText.empty() ? "" : ",") +
                   FormatMove(entry.m_move, COLOUR_WHITE | kind, entry.m_bCapture);
    }
    return strText;
}

std::uint32_t KeyOfZugzwangMoves(const std::vector<TMove>& vecMoves)
{
    constexpr std::uint32_t PRIME = 16777619;
    std::uint32_t nKey = 0;
    for (const TMove& move : vecMoves)
        nKey = (nKey ^ (FromTo(move) | unsigned{move.PromotionKind()} << 16)) * PRIME + 1;
    return nKey;
}

TZugzwangMap MakeZugzwangMap(const std::vector<TMove>& vecMoves, const TChessboard& root)
{
    TZugzwangMap map;
    std::uint8_t nNumber = 0;
    for (const TMove& move : vecMoves) {
        TZugzwangEntry entry;
        if (!PlayEntry(root, move, entry))
            continue;
        entry.m_bCapture = root.m_board[move.m_to] != NO_FIGURE || entry.m_move.m_bEnPassant;
        map.emplace(TZugzwangKey{move.m_from, move.m_to, ++nNumber}, entry);
    }
    return map;
}

bool IsZugzwangReturn(const TChessboard& board)
{
    if (!board.m_pParent)
        return false;
    const TMove& white = board.m_pParent->m_LastMove;
    for (const auto& [key, entry] : board.m_pRequest->m_zugzwangMap) {
        const TSquare* pEnd = entry.m_squares + entry.m_nSquares;
        if (IsSameMove(entry.m_move, white) &&
            std::find<const TSquare*>(entry.m_squares, pEnd, board.m_LastMove.m_to) != pEnd)
            return true;
    }
    return false;
}

bool IsZugzwangAllowedMove(const TChessboard& root, const TMove& move)
{
    const TZugzwangMap& map = root.m_pRequest->m_zugzwangMap;
    return std::any_of(map.begin(), map.end(),
                       [&](const auto& item) { return IsSameMove(item.second.m_move, move); });
}

int GenerateZugzwangMoves(TChessboard& board, TMove* pMoves)
{
    if (board.m_nMoves < MIN_ZUGZWANG_RETURN || board.m_whiteChecker != NO_CHECK)
        return 0;
    int nMoves = 0;
    for (const auto& [key, entry] : board.m_pRequest->m_zugzwangMap) {
        if (Fits(board, entry)) {
            pMoves[nMoves] = entry.m_move;
            pMoves[nMoves++].m_bEnPassant = 0;
        }
    }
    return nMoves;
}

} // namespace corvina
