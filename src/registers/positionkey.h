#ifndef CORVINA_REGISTERS_POSITIONKEY_H
#define CORVINA_REGISTERS_POSITIONKEY_H

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace corvina
{

/// What the registers know a position by: its 64 figure bytes, a1 first, 0 for an empty square. The
/// side to move isn't part of it, since the parity of a depth tells it. Whoever has to tell apart
/// two situations on the same board marks an empty square in the key.
struct TPositionKey
{
    std::uint8_t m_board[64];

    static TPositionKey Of(const std::uint8_t* pBoard)
    {
        TPositionKey key;
        std::memcpy(key.m_board, pBoard, sizeof(key.m_board));
        return key;
    }
};
static_assert(sizeof(TPositionKey) == 64 && alignof(TPositionKey) == 1);

namespace detail
{

// The order of keys is that of words with the lowest square in the lowest byte.
static_assert(std::endian::native == std::endian::little);

using TKeyWords = std::array<std::uint64_t, 8>;

inline TKeyWords KeyWords(const std::uint8_t* pBoard)
{
    TKeyWords words;
    std::memcpy(words.data(), pBoard, sizeof(words));
    return words;
}

inline constexpr auto g_aHashWeights = [] {
    std::array<std::int16_t, 64> aWeights{};
    for (int i = 0; i < 64; ++i)
        aWeights[i] = static_cast<std::int16_t>((i + 1) * (i + 1));
    return aWeights;
}();

} // namespace detail

/// Two boards of 64 bytes are the same. Without branches: one vector compare where there is one.
inline bool AreKeysEqual(const std::uint8_t* pBoard1, const std::uint8_t* pBoard2)
{
    const detail::TKeyWords words1 = detail::KeyWords(pBoard1);
    const detail::TKeyWords words2 = detail::KeyWords(pBoard2);
    std::uint64_t nDifferences = 0;
    for (int i = 0; i < 8; ++i)
        nDifferences |= words1[i] ^ words2[i];
    return nDifferences == 0;
}

/// The order of all sorted containers of the registers: as eight little-endian words of 64 bits,
/// the word of the squares 0 to 7 first.
inline bool IsKeyLess(const std::uint8_t* pBoard1, const std::uint8_t* pBoard2)
{
    const detail::TKeyWords words1 = detail::KeyWords(pBoard1);
    const detail::TKeyWords words2 = detail::KeyWords(pBoard2);
    for (int i = 0; i < 8; ++i) {
        if (words1[i] != words2[i])
            return words1[i] < words2[i];
    }
    return false;
}

struct TPositionKeyLess
{
    bool operator()(const TPositionKey& key1, const TPositionKey& key2) const
    {
        return IsKeyLess(key1.m_board, key2.m_board);
    }
};

/// The sum of each figure byte times the square of its index from 1. Factors of 16 bits, so that
/// the compiler has a multiply-and-add instruction for it.
inline std::uint32_t GetHash(const std::uint8_t* pBoard)
{
    std::int32_t nSum = 0;
    for (int i = 0; i < 64; ++i)
        nSum += static_cast<std::int16_t>(pBoard[i]) * detail::g_aHashWeights[i];
    return static_cast<std::uint32_t>(nSum);
}

} // namespace corvina

#endif
