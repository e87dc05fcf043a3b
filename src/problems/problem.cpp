#include "problems/problem.h"

#include "chess/notation.h"

#include <algorithm>

namespace corvina
{
namespace
{

std::wstring Trimmed(const std::wstring& strText)
{
    const auto first = strText.find_first_not_of(L" \t");
    if (first == std::wstring::npos)
        return {};
    return strText.substr(first, strText.find_last_not_of(L" \t") - first + 1);
}

} // namespace

std::wstring OneLine(std::wstring strText)
{
    std::replace_if(
        strText.begin(), strText.end(), [](wchar_t c) { return c == L'\n' || c == L'\r'; }, L' ');
    return strText;
}

void TProblem::SetStipulation(std::uint8_t nType, std::uint16_t nHalfMoves)
{
    m_nProblemType = nType;
    m_nRequestedMoves = nHalfMoves;
    m_nShortestRepetitionDepth = nHalfMoves;
    m_pChessboard->m_nMoves = m_pChessboard->m_nInitialMoves = nHalfMoves;
}

int TProblem::GetStipulation() const
{
    return (m_nProblemType == PROBLEM_SELFMATE ? m_nRequestedMoves : m_nRequestedMoves + 1) >> 1;
}

std::vector<const TChessboard*> TProblem::GetPlayedLine() const
{
    std::vector<const TChessboard*> vecLine;
    for (const TChessboard* p = m_pCurrentBoard; p && p->m_pParent; p = p->m_pParent)
        vecLine.push_back(p);
    std::reverse(vecLine.begin(), vecLine.end());
    return vecLine;
}

void TProblem::PlayMove(TMove move)
{
    if (m_pCurrentBoard->m_nMoves == 0)
        throw ChessException("Too many moves");
    // A position need not be that of a task: the king that isn't to move may stand in check.
    const bool bTakesKing =
        move.m_to < 64 && (m_pCurrentBoard->m_board[move.m_to] & KIND_MASK) == KIND_KING;
    if (bTakesKing || !IsMoveLegal(*m_pCurrentBoard, move))
        throw ChessException("Illegal move");
    if (!m_pLine) {
        m_pLine = std::make_unique<TLineContext>(m_pChessboard->m_nMoves);
        m_pLine->m_pRootBoard = m_pChessboard.get();
        m_pChessboard->m_pThread = m_pLine.get();
    }
    TChessboard& child = m_pLine->MakeChild(*m_pCurrentBoard);
    if (m_pCurrentBoard->IsWhiteToMove())
        child.MakeWhiteUserMove(&move);
    else
        child.MakeBlackUserMove(&move);
    m_pCurrentBoard = &child;
}

bool TProblem::AddVariant(const std::wstring& strName, const std::vector<TVariantMove>& vecMoves)
{
    return m_mapVariants.try_emplace(strName, TVariant{strName, vecMoves}).second;
}

void TProblem::RemoveVariant(const std::wstring& strName)
{
    m_mapVariants.erase(strName);
}

bool TProblem::RenameVariant(const std::wstring& strOld, const std::wstring& strNew)
{
    if (!m_mapVariants.contains(strOld) || m_mapVariants.contains(strNew))
        return false;
    auto node = m_mapVariants.extract(strOld);
    node.key() = node.mapped().m_strName = strNew;
    m_mapVariants.insert(std::move(node));
    return true;
}

void TProblem::GetVariantsInLanguage(ELanguage language)
{
    for (const ELanguage other : {ELanguage::Polish, ELanguage::English, ELanguage::Ukrainian})
        RenameVariant(MainVariantName(other), MainVariantName(language));
}

void TProblem::SetDescription(const std::wstring& strText)
{
    m_strDescription = Trimmed(OneLine(strText));
}

void TProblem::AddTag(const std::wstring& strTag)
{
    m_setTags.insert(OneLine(strTag));
}

void TProblem::RemoveTag(const std::wstring& strTag)
{
    m_setTags.erase(strTag);
}

} // namespace corvina
