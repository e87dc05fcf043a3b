#include "app/mirror.h"

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

void MirrorVariant(TVariant& variant)
{
    for (TVariantMove& move : variant.m_vecMoves) {
        MirrorMove(move.m_move);
        // The full form names both squares; only their files change.
        for (char& c : move.m_strText) {
            if (c >= 'a' && c <= 'h')
                c = static_cast<char>('a' + 'h' - c);
        }
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
        for (TSortIndication& item : vecItems) {
            MirrorSquare(item.m_from);
            MirrorSquare(item.m_to);
        }
    }
    for (auto& [strName, variant] : problem.m_mapVariants) {
        if (IsMainVariantName(strName))
            MirrorVariant(variant);
    }
}

} // namespace corvina
