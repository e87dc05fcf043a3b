#include "chess/exception.h"
#include "platform/encoding.h"
#include "problems/problemreader.h"

#include <cstdint>
#include <cstdlib>

using namespace corvina;

namespace
{

/// The written form of a list of sort indications; "" for a text that is none.
std::string SortIndicationsForm(std::string_view strText)
{
    TSortIndications indications;
    try {
        ParseSortIndications(indications, strText);
    }
    catch (const ChessException&) {
        return {};
    }
    return SortIndicationsToText(indications);
}

/// The same for the line of a variant.
std::wstring VariantForm(const std::wstring& strText)
{
    try {
        return VariantToText(ParseVariantLine(strText, ELanguage::English),
                             {.m_bWithComments = true, .m_nNameMode = EVariantName::EnglishMain});
    }
    catch (const ChessException&) {
        return {};
    }
}

} // namespace

/// The texts of a line are read or refused, and the written form reads the same again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize)
{
    const std::string_view strText(reinterpret_cast<const char*>(pData), nSize);
    const std::string strIndications = SortIndicationsForm(strText);
    if (!strIndications.empty() && SortIndicationsForm(strIndications) != strIndications)
        std::abort();
    const std::wstring strVariant = VariantForm(WideFromUtf8(strText));
    if (!strVariant.empty() && VariantForm(strVariant) != strVariant)
        std::abort();
    return 0;
}
