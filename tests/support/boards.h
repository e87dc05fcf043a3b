#ifndef CORVINA_TESTS_SUPPORT_BOARDS_H
#define CORVINA_TESTS_SUPPORT_BOARDS_H

#include <array>
#include <cstdint>

namespace corvina
{

/// 64 figure bytes, not necessarily a position.
using TBoardBytes = std::array<std::uint8_t, 64>;

/// The board with this number: kings and a queen, different for different numbers below 262144.
inline TBoardBytes NumberedBoard(std::uint32_t nNumber)
{
    TBoardBytes board{};
    board[nNumber & 63] = 0x41;
    board[nNumber >> 6 & 63] |= 0x4c;
    board[nNumber >> 12 & 63] |= 0x81;
    return board;
}

} // namespace corvina

#endif
