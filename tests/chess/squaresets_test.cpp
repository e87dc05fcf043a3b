#include "chess/squaresets.h"

#include <gtest/gtest.h>

#include <random>

namespace corvina
{
namespace
{

/// Bytes of any value at every alignment; half of the boards have few values, so that many agree.
template <class T>
void CompareWithPortable()
{
    std::mt19937 random(7);
    std::uint8_t aBytes[128];
    for (int nBoard = 0; nBoard < 2000; ++nBoard) {
        std::uint8_t* pBoard = aBytes + nBoard % 64;
        const std::uint8_t bits = nBoard / 64 % 2 == 0 ? 0xFF : 0x4C;
        for (int i = 0; i < 64; ++i)
            pBoard[i] = static_cast<std::uint8_t>(random()) & bits;
        ASSERT_EQ(T::Occupied(pBoard), TSetsPortable::Occupied(pBoard));
        for (int i = 0; i < 16; ++i) {
            const std::uint8_t byte = static_cast<std::uint8_t>(random()) & bits;
            ASSERT_EQ(T::Equal(pBoard, byte), TSetsPortable::Equal(pBoard, byte));
            ASSERT_EQ(T::Having(pBoard, byte), TSetsPortable::Having(pBoard, byte));
        }
    }
}

TEST(SquareSets, InstructionSetsAgreeWithThePortableClass)
{
#if defined(__SSE2__)
    CompareWithPortable<TSetsSse2>();
#endif
#if defined(__AVX2__)
    CompareWithPortable<TSetsAvx2>();
#endif
#if defined(__AVX512BW__)
    CompareWithPortable<TSetsAvx512>();
#endif
    const std::uint8_t aBoard[64] = {0x4C, 0, 0x44, 0x48, 0x8C};
    EXPECT_EQ(TSetsPortable::Occupied(aBoard), 0b11101u);
    EXPECT_EQ(TSetsPortable::Equal(aBoard, 0x44), 0b00100u);
    EXPECT_EQ(TSetsPortable::Having(aBoard, 0x44), 0b00101u);
}

} // namespace
} // namespace corvina
