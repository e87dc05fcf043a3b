#ifndef CORVINA_CHESS_SQUARESETS_H
#define CORVINA_CHESS_SQUARESETS_H

#include "chess/square.h"

#include <cstring>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

/// Sets of squares read from a mailbox of 64 bytes. One class per instruction set with the same
/// three operations; TSets is the best one that the build allows.
///
/// - Occupied: squares whose byte is not 0
/// - Equal: squares whose byte is `value`
/// - Having: squares whose byte has all bits of `mask`

namespace corvina
{

struct TSetsPortable
{
    template <class TTest>
    static TSquareSet Collect(const std::uint8_t* pBoard, TTest test)
    {
        TSquareSet set = 0;
        for (int i = 0; i < 64; ++i)
            set |= TSquareSet{test(pBoard[i])} << i;
        return set;
    }

    static TSquareSet Occupied(const std::uint8_t* pBoard)
    {
        return Collect(pBoard, [](std::uint8_t byte) { return byte != 0; });
    }
    static TSquareSet Equal(const std::uint8_t* pBoard, std::uint8_t value)
    {
        return Collect(pBoard, [value](std::uint8_t byte) { return byte == value; });
    }
    static TSquareSet Having(const std::uint8_t* pBoard, std::uint8_t mask)
    {
        return Collect(pBoard, [mask](std::uint8_t byte) { return (byte & mask) == mask; });
    }
};

#if defined(__SSE2__)
struct TSetsSse2
{
    static __m128i Load(const std::uint8_t* pBoard, int i)
    {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBoard) + i);
    }
    static TSquareSet Mask(__m128i a, __m128i b, __m128i c, __m128i d)
    {
        const auto bits = [](__m128i v) {
            return static_cast<TSquareSet>(static_cast<unsigned>(_mm_movemask_epi8(v)));
        };
        return bits(a) | bits(b) << 16 | bits(c) << 32 | bits(d) << 48;
    }

    static TSquareSet Occupied(const std::uint8_t* pBoard) { return ~Equal(pBoard, 0); }
    static TSquareSet Equal(const std::uint8_t* pBoard, std::uint8_t value)
    {
        const __m128i v = _mm_set1_epi8(static_cast<char>(value));
        return Mask(_mm_cmpeq_epi8(Load(pBoard, 0), v), _mm_cmpeq_epi8(Load(pBoard, 1), v),
                    _mm_cmpeq_epi8(Load(pBoard, 2), v), _mm_cmpeq_epi8(Load(pBoard, 3), v));
    }
    static TSquareSet Having(const std::uint8_t* pBoard, std::uint8_t mask)
    {
        const __m128i m = _mm_set1_epi8(static_cast<char>(mask));
        const auto test = [m](__m128i v) { return _mm_cmpeq_epi8(_mm_and_si128(v, m), m); };
        return Mask(test(Load(pBoard, 0)), test(Load(pBoard, 1)), test(Load(pBoard, 2)),
                    test(Load(pBoard, 3)));
    }
};
#endif

#if defined(__AVX2__)
struct TSetsAvx2
{
    static __m256i Load(const std::uint8_t* pBoard, int i)
    {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pBoard) + i);
    }
    static TSquareSet Mask(__m256i low, __m256i high)
    {
        const auto bits = [](__m256i v) {
            return static_cast<TSquareSet>(static_cast<unsigned>(_mm256_movemask_epi8(v)));
        };
        return bits(low) | bits(high) << 32;
    }

    static TSquareSet Occupied(const std::uint8_t* pBoard) { return ~Equal(pBoard, 0); }
    static TSquareSet Equal(const std::uint8_t* pBoard, std::uint8_t value)
    {
        const __m256i v = _mm256_set1_epi8(static_cast<char>(value));
        return Mask(_mm256_cmpeq_epi8(Load(pBoard, 0), v), _mm256_cmpeq_epi8(Load(pBoard, 1), v));
    }
    static TSquareSet Having(const std::uint8_t* pBoard, std::uint8_t mask)
    {
        const __m256i m = _mm256_set1_epi8(static_cast<char>(mask));
        const auto test = [m](__m256i v) { return _mm256_cmpeq_epi8(_mm256_and_si256(v, m), m); };
        return Mask(test(Load(pBoard, 0)), test(Load(pBoard, 1)));
    }
};
#endif

#if defined(__AVX512BW__)
struct TSetsAvx512
{
    static __m512i Load(const std::uint8_t* pBoard) { return _mm512_loadu_si512(pBoard); }

    static TSquareSet Occupied(const std::uint8_t* pBoard)
    {
        const __m512i v = Load(pBoard);
        return _mm512_test_epi8_mask(v, v);
    }
    static TSquareSet Equal(const std::uint8_t* pBoard, std::uint8_t value)
    {
        return _mm512_cmpeq_epi8_mask(Load(pBoard), _mm512_set1_epi8(static_cast<char>(value)));
    }
    static TSquareSet Having(const std::uint8_t* pBoard, std::uint8_t mask)
    {
        const __m512i m = _mm512_set1_epi8(static_cast<char>(mask));
        return _mm512_cmpeq_epi8_mask(_mm512_and_si512(Load(pBoard), m), m);
    }
};
#endif

#if defined(__AVX512BW__)
using TSets = TSetsAvx512;
#elif defined(__AVX2__)
using TSets = TSetsAvx2;
#elif defined(__SSE2__)
using TSets = TSetsSse2;
#else
using TSets = TSetsPortable;
#endif

} // namespace corvina

#endif
