#include "app/mirror.h"

#include "chess/movetext.h"

#include <algorithm>

namespace corvina
{
namespace
{

template <typename T>
void MirrorSquare(T& square)
{
    if (square < 64)
        square = static_cast<T>((square & 0xF8) - (square & 7) + 7);
}

void MirrorMove(TMove& move)
{
    MirrorSquare(move.m_from);
    MirrorSquare(move.m_to);
}

bool HasCastlingLook(const TChessboard& board, int row, TFigure king, TFigure rook)
{
    const auto at = [&](int file) { return board.m_board[MakeSquare(file, row)]; };
    return (at(4) == king || at(3) == king) && (at(0) == rook || at(7) == rook);
}

/// The full form names both squares; only their files change.
void MirrorText(std::string& strMove)
{
    for (std::size_t i = 0; i < strMove.size(); ++i) {
        if (SquareAt(strMove, i) != NO_SQUARE)
            strMove[i] =
                static_cast<char>((IsFileLetter(strMove[i]) ? 'a' + 'h' : 'A' + 'H') - strMove[i]);
    }
}

void MirrorVariant(TVariant& variant)
{
    for (TVariantMove& move : variant.m_vecMoves) {
        MirrorMove(move.m_move);
        MirrorText(move.m_strText);
    }
}

void MirrorPattern(std::string& strPattern)
{
    for (auto row = strPattern.begin();;) {
        const auto end = std::find(row, strPattern.end(), '/');
        std::reverse(row, end);
        if (end == strPattern.end())
            return;
        row = end + 1;
    }
}

void MirrorIndication(TSortIndication& item)
{
    MirrorSquare(item.m_from);
    MirrorSquare(item.m_to);
    MirrorPattern(item.m_strPattern);
    if (item.m_pVariant) {
        TVariant variant = *item.m_pVariant;
        MirrorVariant(variant);
        item.m_pVariant = std::make_shared<const TVariant>(std::move(variant));
    }
}

} // namespace

bool IsCastlingPossible(const TChessboard& board)
{
    return HasCastlingLook(board, 0, WHITE_KING, WHITE_ROOK) ||
           HasCastlingLook(board, 7, BLACK_KING, BLACK_ROOK);
}

void MirrorProblem(TProblem& problem)
{
    problem.m_pChessboard->MirrorBoard();
    for (TMove& move : problem.m_vecExpectedSolutions)
        MirrorMove(move);
    for (TMove& move : problem.m_vecExpectedSortWhiteMoves)
        MirrorMove(move);
    for (auto& [nNumber, vecItems] : problem.m_sortIndications.m_mapItems) {
        for (TSortIndication& item : vecItems)
            MirrorIndication(item);
    }
    for (auto& [strName, variant] : problem.m_mapVariants)
        MirrorVariant(variant);
}

} // namespace corvina
