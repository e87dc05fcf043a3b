#include "platform/profile.h"

#include "platform/files.h"

// The texts are taken as bytes.
#define SI_NO_CONVERSION
#include <SimpleIni.h>
#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>
#include <vector>

namespace corvina
{
namespace
{

std::string_view Trimmed(std::string_view strText)
{
    constexpr const char* BLANKS = " \t\r\n";
    const auto first = strText.find_first_not_of(BLANKS);
    if (first == std::string_view::npos)
        return {};
    return strText.substr(first, strText.find_last_not_of(BLANKS) - first + 1);
}

char LowerCased(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsSameName(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return LowerCased(x) == LowerCased(y); });
}

/// The lines of a text, each with its line end.
std::vector<std::string> SplitLines(std::string_view strText)
{
    std::vector<std::string> vecLines;
    while (!strText.empty()) {
        const auto nLength = std::min(strText.find('\n'), strText.size() - 1) + 1;
        vecLines.emplace_back(strText.substr(0, nLength));
        strText.remove_prefix(nLength);
    }
    return vecLines;
}

/// The name of the section that a line begins; none for another line.
std::optional<std::string_view> SectionOf(std::string_view strLine)
{
    const std::string_view strText = Trimmed(strLine);
    const auto end = strText.find(']');
    if (!strText.starts_with('[') || end == std::string_view::npos)
        return std::nullopt;
    return Trimmed(strText.substr(1, end - 1));
}

bool IsLineOfKey(std::string_view strLine, std::string_view strKey)
{
    const auto end = strLine.find('=');
    return end != std::string_view::npos && IsSameName(Trimmed(strLine.substr(0, end)), strKey);
}

} // namespace

struct TProfile::TValues
{
    CSimpleIniA m_ini{true, false, false}; ///< UTF-8, one value a key, one line a value
};

TProfile::TProfile(const std::filesystem::path& path) : m_path(path)
{
    std::error_code error;
    if (const auto strText = ReadWholeFile(path))
        m_strText = *strText;
    else
        m_bUnreadable = std::filesystem::exists(path, error);
    ReadValues();
}

TProfile::~TProfile() = default;

void TProfile::ReadValues()
{
    m_pValues = std::make_unique<TValues>();
    m_pValues->m_ini.LoadData(m_strText);
}

std::optional<std::string> TProfile::GetText(const std::string& strSection,
                                             const std::string& strKey) const
{
    const char* pValue = m_pValues->m_ini.GetValue(strSection.c_str(), strKey.c_str());
    if (!pValue)
        return std::nullopt;
    std::string_view strValue = Trimmed(pValue);
    const bool bQuoted = strValue.size() >= 2 && strValue.front() == strValue.back() &&
                         (strValue.front() == '"' || strValue.front() == '\'');
    return std::string(bQuoted ? strValue.substr(1, strValue.size() - 2) : strValue);
}

std::int64_t TProfile::GetInt(const std::string& strSection, const std::string& strKey,
                              std::int64_t nDefault) const
{
    const auto strValue = GetText(strSection, strKey);
    if (!strValue || strValue->empty())
        return nDefault;
    const char* pFirst = strValue->c_str() + (strValue->front() == '+');
    std::int64_t nValue = 0;
    std::from_chars(pFirst, strValue->c_str() + strValue->size(), nValue);
    return nValue;
}

void TProfile::SetText(const std::string& strSection, const std::string& strKey,
                       const std::string& strValue)
{
    std::vector<std::string> vecLines = SplitLines(m_strText);
    const std::string strEnd = m_strText.find("\r\n") != std::string::npos ? "\r\n" : "\n";
    if (!vecLines.empty() && !vecLines.back().ends_with('\n'))
        vecLines.back() += strEnd;
    const std::string strNew = strKey + "=" + strValue + strEnd;
    bool bInSection = false, bReplaced = false;
    std::optional<std::size_t> nEndOfSection; ///< behind its last line that isn't blank
    for (std::size_t i = 0; i < vecLines.size(); ++i) {
        if (const auto strName = SectionOf(vecLines[i]))
            bInSection = IsSameName(*strName, strSection);
        else if (bInSection && IsLineOfKey(vecLines[i], strKey)) {
            vecLines[i] = strNew;
            bReplaced = true;
        }
        if (bInSection && !Trimmed(vecLines[i]).empty())
            nEndOfSection = i + 1;
    }
    if (!bReplaced && !nEndOfSection) {
        if (!vecLines.empty())
            vecLines.push_back(strEnd);
        vecLines.push_back("[" + strSection + "]" + strEnd);
        nEndOfSection = vecLines.size();
    }
    if (!bReplaced)
        vecLines.insert(vecLines.begin() + static_cast<std::ptrdiff_t>(*nEndOfSection), strNew);
    m_strText.clear();
    for (const std::string& strLine : vecLines)
        m_strText += strLine;
    ReadValues();
}

bool TProfile::Write() const
{
    if (m_bUnreadable)
        return false;
    try {
        TFileReplacement(m_path, m_strText).Commit();
        return true;
    }
    catch (const std::system_error&) {
        return false;
    }
}

} // namespace corvina
