#include "problems/problemreader.h"

#include "chess/notation.h"
#include "problems/readparts.h"

#include <algorithm>

namespace corvina
{
namespace
{

bool IsBlank(wchar_t c)
{
    return c == L' ' || c == L'\t' || c == L'\r';
}

bool IsTokenStart(wchar_t c)
{
    return (c >= L'0' && c <= L'9') || (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
}

/// A token as the readers of moves want it; what isn't ASCII belongs to no move.
std::string Narrowed(std::wstring_view strToken)
{
    std::string strText;
    for (const wchar_t c : strToken)
        strText += c >= 0 && c < 0x80 ? static_cast<char>(c) : '?';
    return strText;
}

/// The name in braces at the start of a line, and *pnEnd behind it; a line may have none.
std::wstring VariantName(const std::wstring& strLine, std::size_t* pnEnd)
{
    const auto start = std::find_if_not(strLine.begin(), strLine.end(), IsBlank);
    if (start == strLine.end() || *start != L'{')
        return {};
    const auto nName = static_cast<std::size_t>(start - strLine.begin()) + 1;
    const std::size_t nClose = strLine.find(L'}', nName);
    if (nClose == std::wstring::npos)
        return {};
    *pnEnd = nClose + 1;
    return strLine.substr(nName, nClose - nName);
}

/// The comment in square brackets at a place of the line, which moves behind it.
std::wstring CommentAt(const std::wstring& strLine, std::size_t* pnPos)
{
    if (*pnPos == strLine.size() || strLine[*pnPos] != L'[')
        return {};
    const std::size_t nStart = *pnPos + 1;
    const std::size_t nEnd = std::min(strLine.find(L']', nStart), strLine.size());
    *pnPos = std::min(nEnd + 1, strLine.size());
    return strLine.substr(nStart, nEnd - nStart);
}

} // namespace

TVariant ParseVariantLine(const std::wstring& strLine, ELanguage language, std::size_t* pnErrorAt)
{
    TVariant variant;
    std::size_t nPos = 0;
    variant.m_strName = VariantName(strLine, &nPos);
    if (IsMainVariantName(variant.m_strName))
        variant.m_strName = MainVariantName(language);
    while (true) {
        while (nPos < strLine.size() && !IsTokenStart(strLine[nPos]))
            ++nPos;
        if (nPos == strLine.size())
            return variant;
        const std::size_t nStart = nPos;
        while (nPos < strLine.size() && !IsBlank(strLine[nPos]) && strLine[nPos] != L'[')
            ++nPos;
        if (pnErrorAt)
            *pnErrorAt = nStart;
        TVariantMove move;
        move.m_strText = Narrowed(std::wstring_view(strLine).substr(nStart, nPos - nStart));
        move.m_move = ParseFullMove(move.m_strText, variant.m_vecMoves.size() % 2 == 0);
        move.m_strComment = CommentAt(strLine, &nPos);
        variant.m_vecMoves.push_back(std::move(move));
    }
}

void ReadProblem(TProblem& problem, TLexer& lexer, const TTextForm& form,
                 const TDefaultOptions& defaults)
{
    ReadHeader(problem, lexer, form, defaults);
    ReadBlock(problem, lexer, form);
    problem.m_pChessboard->RescanBoard(true);
}

} // namespace corvina
