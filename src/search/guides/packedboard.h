#ifndef CORVINA_SEARCH_GUIDES_PACKEDBOARD_H
#define CORVINA_SEARCH_GUIDES_PACKEDBOARD_H

#include "chess/chessboard.h"

#include <array>
#include <cstdint>

namespace corvina
{

/// The 64 squares in 32 bytes, four bits each.
class TPackedBoard
{
public:
    explicit TPackedBoard(const TChessboard& board)
    {
        for (std::size_t i = 0; i < m_aSquares.size(); ++i)
            m_aSquares[i] = static_cast<std::uint8_t>(Code(board.m_board[2 * i]) |
                                                      Code(board.m_board[2 * i + 1]) << 4);
    }

    /// Puts the men on a record; its counts and lists are to be found anew.
    void Unpack(TChessboard& board) const
    {
        for (std::size_t i = 0; i < m_aSquares.size(); ++i) {
            board.m_board[2 * i] = g_aFigures[m_aSquares[i] & 15];
            board.m_board[2 * i + 1] = g_aFigures[m_aSquares[i] >> 4];
        }
    }

private:
    static constexpr std::array<TFigure, 16> g_aFigures = {
        NO_FIGURE,  WHITE_KING,  WHITE_QUEEN, WHITE_ROOK,   WHITE_BISHOP, WHITE_KNIGHT, WHITE_PAWN,
        BLACK_KING, BLACK_QUEEN, BLACK_ROOK,  BLACK_BISHOP, BLACK_KNIGHT, BLACK_PAWN};

    static constexpr std::array<std::uint8_t, 256> MakeCodes()
    {
        std::array<std::uint8_t, 256> anCodes{};
        for (std::uint8_t i = 1; g_aFigures[i] != NO_FIGURE; ++i)
            anCodes[g_aFigures[i]] = i;
        return anCodes;
    }

    static std::uint8_t Code(TFigure figure)
    {
        static constexpr std::array<std::uint8_t, 256> anCodes = MakeCodes();
        return anCodes[figure];
    }

    std::array<std::uint8_t, 32> m_aSquares;
};

} // namespace corvina

#endif
