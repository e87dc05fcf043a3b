#include "platform/encoding.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

namespace corvina
{
namespace
{

TEST(Encoding, KnownTexts)
{
    const struct
    {
        const char* m_pEncoding;
        const char* m_pText;
        const wchar_t* m_pWide;
    } aCases[] = {
        {"UTF-8", "Główny", L"Główny"},
        {"UTF-8", "\xD0\x87\xD0\xB6 \xF0\x9F\x99\x82", L"\x0407\x0436 \x1F642"},
        {"windows-1250", "G\xB3\xF3wny \x9C\xBF", L"Główny śż"},
        {"windows-1251", "\xAF\xE6\xE0\xEA", L"Їжак"},
        {"ISO-8859-2", "\xB1\xE6", L"ąć"},
    };
    for (const auto& c : aCases) {
        const TTextConverter converter(c.m_pEncoding);
        EXPECT_EQ(converter.ToWide(c.m_pText), c.m_pWide) << c.m_pEncoding;
        EXPECT_EQ(converter.FromWide(c.m_pWide), c.m_pText) << c.m_pEncoding;
    }
    EXPECT_EQ(TTextConverter("windows-1250").FromWide(L"aЖb"), "a?b");
    EXPECT_THROW(TTextConverter("no-such-page"), std::runtime_error);
}

TEST(Encoding, EveryByteStringComesBack)
{
    std::mt19937 random(7);
    for (const char* pEncoding : {"UTF-8", "windows-1250", "windows-1251"}) {
        const TTextConverter converter(pEncoding);
        for (int i = 0; i < 2000; ++i) {
            std::string strBytes(random() % 700, ' ');
            for (char& c : strBytes)
                c = static_cast<char>(random() % 3 ? random() % 256 : 0xC0 + random() % 8);
            ASSERT_EQ(converter.FromWide(converter.ToWide(strBytes)), strBytes) << pEncoding;
        }
    }
}

} // namespace
} // namespace corvina
