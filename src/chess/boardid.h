#ifndef CORVINA_CHESS_BOARDID_H
#define CORVINA_CHESS_BOARDID_H

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace corvina
{

/// The figures of a board as a string of bits: the squares a1, b1, ... h8, each either a 0 bit or a
/// 1 bit and the four bits of a short figure code, lowest bit first. Nothing but the figures is in
/// it: neither the side to move nor a stipulation.
struct TChessboardId
{
    static constexpr int MAX_BITS = 320; ///< of a board with a figure on every square

    std::int16_t m_nBits = 0;     ///< bits in use
    std::uint8_t m_bits[40] = {}; ///< lowest bit of each byte first; bits not in use are 0

    TChessboardId() = default;

    /// The identifier of 64 square bytes. Throws ChessException "Unknown figure code" for a byte
    /// that is no figure.
    explicit TChessboardId(const std::uint8_t* pBoard64);

    /// Writes the 64 square bytes; bits behind the last square don't matter. Throws ChessException
    /// "Wrong chessboard id" for too few bits and "Unknown figure short code".
    void ToBoard(std::uint8_t* pOut64) const;

    /// Throws ChessException "Exception in TChessboardId" when all MAX_BITS bits are in use.
    void AppendBit(bool bBit);

    /// The printable form: one character of 0-9, a-z, A-Z, "(" and ")" for six bits.
    std::string ToAlphanum6() const;

    /// Reads the printable form; false for a character that doesn't belong to it. The padding of
    /// the last character is read as 0 bits. Throws as AppendBit does for a text that is too long.
    bool FromAlphanum6(std::string_view strText);

    /// A file name for the position that is unique also where letter case doesn't count: the
    /// printable form, a point and its case mask.
    std::string GetIdFileName() const;

private:
    bool BitAt(int nBit) const { return m_bits[nBit >> 3] >> (nBit & 7) & 1; }
};

static_assert(sizeof(TChessboardId) == 42);
static_assert(std::is_trivially_copyable_v<TChessboardId>);

/// nBits bits of a string, lowest bit of each byte first, as one character of 0-9, a-v for five
/// bits; the last group is filled up with 0 bits.
std::string ToAlphanum5(const std::uint8_t* pBytes, int nBits);

/// One bit for each letter of the text, 1 for upper case, as ToAlphanum5 writes them. Empty for a
/// text without letters.
std::string GetCaseMask(std::string_view strText);

/// Reads the printable form of an identifier into 64 square bytes. False, with the bytes unchanged,
/// for a text that is none. Throws nothing.
bool ParsePositionId(std::string_view strText, std::uint8_t* pBoard64);

} // namespace corvina

#endif
