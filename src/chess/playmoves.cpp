#include "chess/geometry.h"
#include "chess/lineguard.h"
#include "chess/movetext.h"
#include "chess/notation.h"
#include "chess/squaresets.h"

namespace corvina
{
namespace
{

constexpr std::size_t MAX_TOKEN = 14; ///< characters of the longest move text in a line

constexpr const char* BLANKS = " \t\r\n";

bool MakeUserMove(TChessboard& child, TMove* pMove)
{
    return child.IsWhiteToMove() ? child.MakeWhiteUserMove(pMove) : child.MakeBlackUserMove(pMove);
}

/// A full form taken apart, castling apart.
struct TFullMove
{
    TFigure m_kind;
    TMove m_move;
};

std::optional<TFullMove> TakeApart(std::string_view strText)
{
    if (strText.size() < 5)
        return std::nullopt;
    const bool bLetter = IsLetter(strText[1]);
    const std::optional<TFigure> kind = bLetter ? KindFromLetter(strText[0]) : KIND_PAWN;
    if (!kind)
        return std::nullopt;
    if (bLetter)
        strText.remove_prefix(1);
    TFullMove full{*kind, {}};
    full.m_move.m_from = SquareAt(strText, 0);
    full.m_move.m_to = SquareAt(strText, 3);
    if (full.m_move.m_from == NO_SQUARE || full.m_move.m_to == NO_SQUARE)
        return std::nullopt;
    // A mark of mate can stand where the letter of a promotion would.
    if (strText.size() > 5 && IsPromotionLetter(strText[5]) && strText[5] != 'x') {
        const std::optional<TFigure> promotion = KindFromLetter(strText[5]);
        if (!promotion || !IsPromotionKind(*promotion))
            return std::nullopt;
        full.m_move.m_promotion = *promotion;
    }
    return full;
}

/// The figure of the text stands on the origin, and nothing in the way of the move.
bool FitsBoard(const TChessboard& board, const TFullMove& full)
{
    const TMove& move = full.m_move;
    const TFigure colour = ColourBit(board.SideToMove());
    if (board.m_board[move.m_from] != (colour | full.m_kind) || (board.m_board[move.m_to] & colour))
        return false;
    if (Between(move.m_from, move.m_to) & TSets::Occupied(board.m_board))
        return false;
    const bool bPromotes =
        full.m_kind == KIND_PAWN && RowOf(move.m_to) == (board.IsWhiteToMove() ? 7 : 0);
    return bPromotes == (move.PromotionKind() != 0);
}

/// The move that a text in full form tells; none when it is no move of this position by its form.
std::optional<TMove> ReadFullMove(const TChessboard& board, std::string_view strText)
{
    if (!strText.empty() && strText.front() == '0')
        return CastlingFromText(strText, board.IsWhiteToMove());
    const std::optional<TFullMove> full = TakeApart(strText);
    if (!full || !FitsBoard(board, *full))
        return std::nullopt;
    return full->m_move;
}

/// Skips the number of a move, if it is the one that is expected, and the point behind it.
std::string_view SkipMoveNumber(std::string_view strText, int nNumber)
{
    const std::string strNumber = std::to_string(nNumber);
    if (!strText.starts_with(strNumber))
        return strText;
    strText.remove_prefix(strNumber.size());
    if (!strText.starts_with('.'))
        return strText;
    strText.remove_prefix(1);
    strText.remove_prefix(std::min(strText.find_first_not_of(BLANKS), strText.size()));
    return strText;
}

} // namespace

bool TryMove(const TChessboard& board, TMove* pMove)
{
    // Without the thread nothing is noted of the move; the parent knows the root.
    TChessboard scratch = board;
    scratch.m_pParent = const_cast<TChessboard*>(&board);
    scratch.m_pThread = nullptr;
    return MakeUserMove(scratch, pMove);
}

bool IsMoveLegal(const TChessboard& board, TMove move)
{
    if (move.m_from > 63 || move.m_to > 63 || move.IsNull())
        return false;
    TMoveList list;
    const int nCount = board.IsWhiteToMove()
                           ? board.GenerateWhiteFigureMoves(move.m_from, list.data())
                           : board.GenerateBlackFigureMoves(move.m_from, list.data());
    for (int i = 0; i < nCount; ++i) {
        if (IsSameMove(list[i], move))
            return TryMove(board, &list[i]);
    }
    return false;
}

bool HasLegalMove(const TChessboard& board, EColour colour)
{
    TChessboard position = board;
    // The side to move is told by the number; what is left of the task doesn't matter.
    position.m_nMoves = colour == EColour::White ? 1 : 2;
    TMoveList list;
    const int nCount = colour == EColour::White ? position.GenerateWhiteMoves(list.data())
                                                : position.GenerateBlackMoves(list.data());
    for (int i = 0; i < nCount; ++i) {
        if (!list[i].IsNull() && TryMove(position, &list[i]))
            return true;
    }
    return false;
}

TChessboard* MakeMove(TChessboard& board, std::string_view strText, const TMoveCallback& callback)
{
    if (board.m_nMoves == 0)
        return nullptr;
    const std::optional<std::string> strFull = ShortMoveToFull(board, strText);
    std::optional<TMove> move = ReadFullMove(board, TrimLeft(strFull ? *strFull : strText));
    if (!move)
        return nullptr;
    if (!IsMoveLegal(board, *move))
        throw ChessException("Invalid move in MakeMove() : " + std::string(strText));
    TChessboard& child = board.m_pThread->MakeChild(board);
    if (!MakeUserMove(child, &*move))
        return nullptr;
    if (callback)
        callback(*move, -1);
    return &child;
}

TChessboard* PlayMoves(TChessboard& board, std::string_view strText, const TMoveCallback& callback)
{
    TLineGuard guard(board.m_pThread);
    TChessboard* pBoard = &board;
    int nNumber = 1;
    while (true) {
        strText.remove_prefix(std::min(strText.find_first_not_of(BLANKS), strText.size()));
        if (strText.empty()) {
            guard.Dismiss();
            return pBoard;
        }
        strText = SkipMoveNumber(strText, nNumber);
        const std::string_view strToken = strText.substr(0, strText.find_first_of(BLANKS));
        if (strToken.size() > MAX_TOKEN || pBoard->m_nMoves == 0)
            return nullptr;
        guard.Save(pBoard->m_nMoves);
        pBoard = MakeMove(*pBoard, strToken, callback);
        if (!pBoard)
            return nullptr;
        if (pBoard->IsWhiteToMove())
            ++nNumber;
        strText.remove_prefix(strToken.size());
    }
}

} // namespace corvina
