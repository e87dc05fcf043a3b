#include "problems/lexer.h"

#include "chess/exception.h"
#include "chess/movetext.h"

#include <algorithm>

namespace corvina
{
namespace
{

constexpr std::string_view WHITE_SPACE = "\t\n\r \xA0";

bool IsWhite(char c)
{
    return WHITE_SPACE.find(c) != std::string_view::npos;
}

bool IsIdentifierCharacter(char c)
{
    return IsLetter(c) || IsDigit(c) || c == '^' || c == '_';
}

} // namespace

std::string UpperCased(std::string_view strText)
{
    std::string strUpper(strText);
    for (char& c : strUpper)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return strUpper;
}

std::string_view TrimBlanks(std::string_view strText)
{
    constexpr std::string_view BLANKS = " \t\r";
    strText.remove_prefix(std::min(strText.find_first_not_of(BLANKS), strText.size()));
    return strText.substr(0, strText.find_last_not_of(BLANKS) + 1);
}

void TLexer::SkipBlockComment()
{
    const std::size_t nEnd = m_strText.find("*/", m_nPos + 2);
    if (nEnd == std::string_view::npos) {
        m_nLexemPos = m_nPos;
        throw ChessException("Unexpected end of file before comment closed.");
    }
    m_nPos = nEnd + 2;
}

bool TLexer::StandsFirstOnLine() const
{
    std::size_t nPos = m_nPos;
    while (nPos > 0 && m_strText[nPos - 1] != '\n') {
        if (!IsWhite(m_strText[--nPos]))
            return false;
    }
    return true;
}

bool TLexer::IsSpecialLine() const
{
    const std::string_view strRest = m_strText.substr(m_nPos);
    return (strRest.starts_with("//!") || strRest.starts_with("//#") ||
            strRest.starts_with("//@SortIndications")) &&
           StandsFirstOnLine();
}

std::string_view TLexer::TakeLine()
{
    const std::size_t nEnd = std::min(m_strText.find('\n', m_nPos), m_strText.size());
    const std::string_view strLine = m_strText.substr(m_nPos, nEnd - m_nPos);
    m_nPos = nEnd;
    return strLine;
}

void TLexer::SkipToLexem(ESpecial special)
{
    while (m_nPos < m_strText.size()) {
        const std::string_view strRest = m_strText.substr(m_nPos, 2);
        if (IsWhite(strRest.front()))
            ++m_nPos;
        else if (strRest == "/*")
            SkipBlockComment();
        else if (strRest == "//" && !(special == ESpecial::Return && IsSpecialLine()))
            TakeLine();
        else
            return;
    }
}

std::string_view TLexer::GetLexem(EAtEnd atEnd, ESpecial special)
{
    SkipToLexem(special);
    m_nLexemPos = m_nPos;
    if (m_nPos == m_strText.size()) {
        if (atEnd == EAtEnd::Fail)
            throw ChessException("Unexpected end of file.");
        return {};
    }
    if (m_strText.substr(m_nPos).starts_with("//")) {
        std::string_view strLine = TakeLine();
        if (strLine.ends_with('\r'))
            strLine.remove_suffix(1);
        return strLine;
    }
    if (m_strText[m_nPos] == '/')
        throw ChessException("Unexpected lexem (slash).");
    const std::string_view strRest = m_strText.substr(m_nPos);
    const auto end = std::find_if_not(strRest.begin(), strRest.end(), IsIdentifierCharacter);
    const auto nLength = std::max<std::ptrdiff_t>(end - strRest.begin(), 1);
    m_nPos += static_cast<std::size_t>(nLength);
    return strRest.substr(0, static_cast<std::size_t>(nLength));
}

std::string_view TLexer::GetIdentifier()
{
    const std::string_view strLexem = GetLexem();
    if (!IsLetter(strLexem.front()) && !IsDigit(strLexem.front()))
        throw ChessException("Alphanumeric identifier expected. Found: " + std::string(strLexem));
    return strLexem;
}

std::string_view TLexer::GetFenToken()
{
    const auto skip = [this](bool bWhite) {
        while (m_nPos < m_strText.size() && IsWhite(m_strText[m_nPos]) == bWhite)
            ++m_nPos;
    };
    skip(true);
    m_nLexemPos = m_nPos;
    skip(false);
    return m_strText.substr(m_nLexemPos, m_nPos - m_nLexemPos);
}

std::string_view TLexer::GetRestOfLine()
{
    m_nLexemPos = m_nPos;
    return TrimBlanks(TakeLine());
}

bool TLexer::SkipText(std::string_view strText)
{
    if (UpperCased(m_strText.substr(m_nPos, strText.size())) != UpperCased(strText))
        return false;
    m_nPos += strText.size();
    return true;
}

char TLexer::Peek()
{
    SkipToLexem(ESpecial::Skip);
    return m_nPos < m_strText.size() ? m_strText[m_nPos] : ' ';
}

} // namespace corvina
