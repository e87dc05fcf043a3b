#ifndef CORVINA_CHESS_WHITELISTS_H
#define CORVINA_CHESS_WHITELISTS_H

#include "chess/chessboard.h"

namespace corvina
{

/// Keeps the lists of White's figures when one arrives on a square: by promotion, or as the scan of
/// a board meets it. Call before the count rises. A figure that finds no place makes the lists
/// invalid.
inline void AddToWhiteLists(TChessboard& b, TFigure kind, TSquare square)
{
    if (!b.m_bWhiteSquaresValid)
        return;
    const auto store = [&](std::int8_t* pList, int nCount, int nSize) {
        if (nCount < nSize)
            pList[nCount] = static_cast<std::int8_t>(square);
        else
            b.m_bWhiteSquaresValid = false;
    };
    switch (kind) {
    case KIND_QUEEN:
        store(&b.m_whiteQueenSquare, b.m_nWhiteQueens, 1);
        break;
    case KIND_ROOK:
        store(b.m_whiteRookSquares, b.m_nWhiteRooks, 2);
        break;
    case KIND_KNIGHT:
        store(b.m_whiteKnightSquares, b.m_nWhiteKnights, 2);
        break;
    case KIND_BISHOP:
        if (b.m_nWhiteBishops == 1 &&
            SquareColour(b.m_whiteBishopSquares[0]) == SquareColour(square))
            b.m_bWhiteSquaresValid = false;
        else
            store(b.m_whiteBishopSquares, b.m_nWhiteBishops, 2);
        break;
    default:
        break;
    }
}

/// Keeps the lists when a White figure moves.
inline void MoveInWhiteLists(TChessboard& b, TFigure kind, TSquare from, TSquare to)
{
    const auto follow = [from, to](std::int8_t* pList) {
        if (pList[0] == from)
            pList[0] = static_cast<std::int8_t>(to);
        else if (pList[1] == from)
            pList[1] = static_cast<std::int8_t>(to);
    };
    switch (kind) {
    case KIND_QUEEN:
        b.m_whiteQueenSquare = static_cast<std::int8_t>(to);
        break;
    case KIND_ROOK:
        follow(b.m_whiteRookSquares);
        break;
    case KIND_KNIGHT:
        follow(b.m_whiteKnightSquares);
        break;
    case KIND_BISHOP:
        follow(b.m_whiteBishopSquares);
        break;
    default:
        break;
    }
}

/// Keeps the lists when a White figure has been captured. Call when the figure has left the board
/// and its count has fallen.
inline void RemoveFromWhiteLists(TChessboard& b, TFigure kind, TSquare square)
{
    if (!b.m_bWhiteSquaresValid) {
        if (b.m_nWhiteQueens <= 1 && b.m_nWhiteRooks <= 2 && b.m_nWhiteKnights <= 2 &&
            (b.m_nWhiteBishops < 2 || (b.m_nWhiteBishops == 2 && !b.HasTwoBishopsOfOneColour())))
            b.RebuildWhiteLists();
        return;
    }
    const auto close = [square](std::int8_t* pList) {
        if (pList[0] == square)
            pList[0] = pList[1];
    };
    switch (kind) {
    case KIND_ROOK:
        close(b.m_whiteRookSquares);
        break;
    case KIND_KNIGHT:
        close(b.m_whiteKnightSquares);
        break;
    case KIND_BISHOP:
        close(b.m_whiteBishopSquares);
        break;
    default:
        break;
    }
}

} // namespace corvina

#endif
