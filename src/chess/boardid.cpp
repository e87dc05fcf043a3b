#include "chess/boardid.h"

#include "chess/exception.h"
#include "chess/figure.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace corvina
{
namespace
{

constexpr int SHORT_CODE_BITS = 4;

/// Figures by short code.
constexpr TFigure g_aShortCodes[12] = {WHITE_KING,   BLACK_KING,   WHITE_PAWN,   BLACK_PAWN,
                                       WHITE_QUEEN,  BLACK_QUEEN,  WHITE_ROOK,   BLACK_ROOK,
                                       WHITE_BISHOP, BLACK_BISHOP, WHITE_KNIGHT, BLACK_KNIGHT};

constexpr std::string_view ALPHABET =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ()";
static_assert(ALPHABET.size() == 64);

/// Cuts a bit string into groups of nGroup bits, lowest bit first, and writes each as a character.
std::string EncodeBits(const std::uint8_t* pBytes, int nBits, int nGroup)
{
    std::string strText;
    for (int nStart = 0; nStart < nBits; nStart += nGroup) {
        unsigned nValue = 0;
        for (int i = 0; i < nGroup && nStart + i < nBits; ++i) {
            const int nBit = nStart + i;
            nValue |= (pBytes[nBit >> 3] >> (nBit & 7) & 1u) << i;
        }
        strText += ALPHABET[nValue];
    }
    return strText;
}

} // namespace

TChessboardId::TChessboardId(const std::uint8_t* pBoard64)
{
    for (int square = 0; square < 64; ++square) {
        const TFigure figure = pBoard64[square];
        AppendBit(figure != NO_FIGURE);
        if (figure == NO_FIGURE)
            continue;
        const auto pCode = std::find(std::begin(g_aShortCodes), std::end(g_aShortCodes), figure);
        if (pCode == std::end(g_aShortCodes))
            throw ChessException("Unknown figure code");
        const auto nCode = pCode - std::begin(g_aShortCodes);
        for (int i = 0; i < SHORT_CODE_BITS; ++i)
            AppendBit(nCode >> i & 1);
    }
}

void TChessboardId::ToBoard(std::uint8_t* pOut64) const
{
    int nBit = 0;
    for (int square = 0; square < 64; ++square) {
        if (nBit >= m_nBits)
            throw ChessException("Wrong chessboard id");
        pOut64[square] = NO_FIGURE;
        if (!BitAt(nBit++))
            continue;
        if (nBit + SHORT_CODE_BITS > m_nBits)
            throw ChessException("Wrong chessboard id");
        std::size_t nCode = 0;
        for (int i = 0; i < SHORT_CODE_BITS; ++i)
            nCode |= std::size_t{BitAt(nBit++)} << i;
        if (nCode >= std::size(g_aShortCodes))
            throw ChessException("Unknown figure short code");
        pOut64[square] = g_aShortCodes[nCode];
    }
}

void TChessboardId::AppendBit(bool bBit)
{
    if (m_nBits >= MAX_BITS)
        throw ChessException("Exception in TChessboardId");
    m_bits[m_nBits >> 3] |= static_cast<std::uint8_t>(bBit << (m_nBits & 7));
    ++m_nBits;
}

std::string TChessboardId::ToAlphanum6() const
{
    return EncodeBits(m_bits, m_nBits, 6);
}

bool TChessboardId::FromAlphanum6(std::string_view strText)
{
    *this = TChessboardId();
    for (const char c : strText) {
        const std::size_t nValue = ALPHABET.find(c);
        if (nValue == std::string_view::npos)
            return false;
        for (int i = 0; i < 6; ++i) {
            const bool bBit = nValue >> i & 1;
            // MAX_BITS is no multiple of six: the padding behind a full board has no room.
            const bool bPadding = m_nBits == MAX_BITS && i > 0 && !bBit;
            if (!bPadding)
                AppendBit(bBit);
        }
    }
    return true;
}

std::string TChessboardId::GetIdFileName() const
{
    const std::string strId = ToAlphanum6();
    return strId + '.' + GetCaseMask(strId);
}

std::string ToAlphanum5(const std::uint8_t* pBytes, int nBits)
{
    return EncodeBits(pBytes, nBits, 5);
}

std::string GetCaseMask(std::string_view strText)
{
    std::vector<std::uint8_t> vecMask(strText.size() / 8 + 1);
    int nBits = 0;
    for (const char c : strText) {
        const bool bUpper = c >= 'A' && c <= 'Z';
        if (!bUpper && !(c >= 'a' && c <= 'z'))
            continue;
        vecMask[static_cast<std::size_t>(nBits >> 3)] |=
            static_cast<std::uint8_t>(bUpper << (nBits & 7));
        ++nBits;
    }
    return ToAlphanum5(vecMask.data(), nBits);
}

bool ParsePositionId(std::string_view strText, std::uint8_t* pBoard64)
{
    std::uint8_t anBoard[64];
    try {
        TChessboardId id;
        if (!id.FromAlphanum6(strText))
            return false;
        id.ToBoard(anBoard);
    }
    catch (const ChessException&) {
        return false;
    }
    std::copy(std::begin(anBoard), std::end(anBoard), pBoard64);
    return true;
}

} // namespace corvina
