#include "platform/encoding.h"

#include <algorithm>
#include <iconv.h>
#include <stdexcept>

namespace corvina
{
namespace
{

constexpr std::size_t FAILED = static_cast<std::size_t>(-1);

const iconv_t NO_CONVERSION = reinterpret_cast<iconv_t>(-1);

bool IsAscii(unsigned c)
{
    return c < 0x80;
}

iconv_t OpenConversion(const char* pTo, const char* pFrom)
{
    const iconv_t conversion = iconv_open(pTo, pFrom);
    if (conversion == NO_CONVERSION)
        throw std::runtime_error(std::string("Unknown text encoding: ") + pFrom);
    return conversion;
}

/// Converts until the end or the first element that can't be converted, appending to strOut.
/// Returns the number of elements that were read.
template <class TOut, class TIn>
std::size_t ConvertRun(void* pConversion, std::basic_string_view<TIn> strIn,
                       std::basic_string<TOut>& strOut)
{
    char* pIn = const_cast<char*>(reinterpret_cast<const char*>(strIn.data()));
    std::size_t nIn = strIn.size() * sizeof(TIn);
    while (nIn) {
        TOut aBuffer[256];
        char* pOut = reinterpret_cast<char*>(aBuffer);
        std::size_t nOut = sizeof aBuffer;
        const std::size_t nInBefore = nIn;
        const bool bFailed = iconv(pConversion, &pIn, &nIn, &pOut, &nOut) == FAILED;
        strOut.append(aBuffer, (sizeof aBuffer - nOut) / sizeof(TOut));
        // A full buffer is a failure that gets on.
        if (bFailed && nIn == nInBefore)
            break;
    }
    iconv(pConversion, nullptr, nullptr, nullptr, nullptr);
    return strIn.size() - nIn / sizeof(TIn);
}

/// The whole of a text; convertOne handles the elements that the conversion doesn't take.
template <class TOut, class TIn, class F>
std::basic_string<TOut> Convert(void* pConversion, std::basic_string_view<TIn> strIn, F convertOne)
{
    std::basic_string<TOut> strOut;
    const auto isAscii = [](TIn c) { return IsAscii(static_cast<std::make_unsigned_t<TIn>>(c)); };
    if (std::all_of(strIn.begin(), strIn.end(), isAscii))
        return {strIn.begin(), strIn.end()};
    strOut.reserve(strIn.size() + strIn.size() / 8);
    while (true) {
        strIn.remove_prefix(ConvertRun(pConversion, strIn, strOut));
        if (strIn.empty())
            return strOut;
        strOut += convertOne(strIn.front());
        strIn.remove_prefix(1);
    }
}

} // namespace

TTextConverter::TTextConverter(const std::string& strEncoding)
    : m_pToWide(OpenConversion("WCHAR_T", strEncoding.c_str())),
      m_pFromWide(iconv_open(strEncoding.c_str(), "WCHAR_T"))
{
    if (m_pFromWide == NO_CONVERSION) {
        iconv_close(m_pToWide);
        throw std::runtime_error("Unknown text encoding: " + strEncoding);
    }
}

TTextConverter::~TTextConverter()
{
    iconv_close(m_pToWide);
    iconv_close(m_pFromWide);
}

std::wstring TTextConverter::ToWide(std::string_view strText) const
{
    return Convert<wchar_t>(m_pToWide, strText, [](char c) {
        return static_cast<wchar_t>(BYTE_ESCAPE + static_cast<unsigned char>(c));
    });
}

std::string TTextConverter::FromWide(std::wstring_view strText) const
{
    return Convert<char>(m_pFromWide, strText, [](wchar_t c) {
        const bool bEscaped = c >= BYTE_ESCAPE + 0x80 && c <= BYTE_ESCAPE + 0xFF;
        return bEscaped ? static_cast<char>(c - BYTE_ESCAPE) : '?';
    });
}

std::wstring WideFromUtf8(std::string_view strText)
{
    thread_local const TTextConverter converter(UTF8);
    return converter.ToWide(strText);
}

std::string Utf8FromWide(std::wstring_view strText)
{
    thread_local const TTextConverter converter(UTF8);
    return converter.FromWide(strText);
}

} // namespace corvina
