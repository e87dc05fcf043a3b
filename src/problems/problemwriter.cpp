#include "problems/problemwriter.h"

#include "chess/fen.h"
#include "chess/notation.h"
#include "platform/encoding.h"

#include <algorithm>
#include <string_view>

namespace corvina
{
namespace
{

/// Takes what would end a text in the file out of it: line ends, and the closing bracket of what it
/// stands in.
std::wstring Contained(std::wstring strText, wchar_t closing = L'\n')
{
    strText = OneLine(std::move(strText));
    std::replace(strText.begin(), strText.end(), closing, L')');
    return strText;
}

std::string NumberAndStipulation(const TProblem& problem)
{
    const std::string strNumber = std::to_string(problem.m_nProblemNumber) + " ";
    if (problem.m_nProblemType == PROBLEM_LINE)
        return strNumber;
    return strNumber + (problem.m_nProblemType == PROBLEM_SELFMATE ? "s#" : "#") +
           std::to_string(problem.GetStipulation());
}

std::string HeaderLine(const TProblem& problem)
{
    std::string strLine = NumberAndStipulation(problem);
    const auto add = [&](bool bWanted, std::string_view strWord) {
        if (bWanted)
            (strLine += ' ') += strWord;
    };
    const auto addFlag = [&](std::uint32_t nBit, std::string_view strWord) {
        add(problem.m_nRunOptions & nBit, strWord);
    };
    const std::string strRepeat =
        problem.m_nGuiCheckRepeat > 1 ? " " + std::to_string(problem.m_nGuiCheckRepeat) : "";
    addFlag(RUN_NOMIRROR, "NoMirror");
    addFlag(RUN_MIRRORONLY, "MirrorOnly");
    addFlag(RUN_ALLSOLUTIONS, "AllSolutions");
    addFlag(RUN_STOPON2SOLUTIONS, "StopOnDual");
    addFlag(RUN_STOPON3SOLUTIONS, "StopOn3Sol");
    addFlag(RUN_STOPON4SOLUTIONS, "StopOn4Sol");
    addFlag(RUN_MAINVARIANTSORTS, "UseMainVariantAsSortIndications");
    addFlag(RUN_CHECKDEFENCEANDAUX, "GUICHECK" + strRepeat);
    addFlag(RUN_CHECKDEFENCE, "GUICHECKBESTDEFENCE" + strRepeat);
    add(problem.m_nRequestedThreads != -1,
        "THREADS " + std::to_string(problem.m_nRequestedThreads));
    addFlag(RUN_SAFEMODE, "SAFEMODE");
    addFlag(RUN_REQUIRESTABLEBASE, "RequiresSyzygy");
    addFlag(RUN_ALLREQUIRESTABLEBASE, "AllSolutionsRequiresSyzygy");
    add(problem.m_bUsePredefinedSettings, "UsePredefinedSettings");
    addFlag(RUN_HYBRIDBRUTEFORCE, "HybridBruteForce");
    addFlag(RUN_BRUTEFORCE, "BruteForce");
    for (const std::string& strType : problem.m_setRequires)
        add(true, "Requires " + strType);
    return strLine + "\n";
}

std::string TagLines(const TProblem& problem)
{
    std::string strLines = problem.m_setTags.empty() ? "" : "//#TAGS\n";
    for (const std::wstring& strTag : problem.m_setTags)
        strLines += "//#" + Utf8FromWide(Contained(strTag)) + "\n";
    return strLines;
}

/// A copy of which no text ends early in the file.
TVariant ContainedVariant(TVariant variant)
{
    variant.m_strName = Contained(variant.m_strName, L'}');
    for (TVariantMove& move : variant.m_vecMoves)
        move.m_strComment = Contained(move.m_strComment, L']');
    return variant;
}

std::string VariantLines(const TProblem& problem, bool bWithComments)
{
    if (problem.m_mapVariants.empty())
        return {};
    const TVariantTextOptions options{.m_bWithComments = bWithComments,
                                      .m_nNameMode = EVariantName::EnglishMain};
    std::string strLines = "//!VARIANTS\n";
    for (const auto& [strName, variant] : problem.m_mapVariants)
        strLines += "//!" + Utf8FromWide(VariantToText(ContainedVariant(variant), options)) + "\n";
    return strLines + "//!ENDVARIANTS\n";
}

/// A move of the answer. It need not be one that the position allows, and a king that only looks
/// like castling must not become it.
std::string AnswerMoveText(const TMove& move, const TChessboard& board)
{
    using K = TCastling<EColour::White>;
    const TFigure figure = board.m_board[move.m_from];
    const bool bCapture = board.m_board[move.m_to] != NO_FIGURE;
    const bool bCastling = move.m_from == K::KING && !move.PromotionKind() &&
                           (move.m_to == K::SHORT_TO || move.m_to == K::LONG_TO);
    if ((figure & KIND_MASK) == KIND_KING && !bCastling)
        return (move.PromotionKind() ? "" : "K") + FormatMove(move, NO_FIGURE, bCapture);
    return FormatMove(move, figure, bCapture);
}

std::string AnswerLine(const TProblem& problem)
{
    if (!(problem.m_nRunOptions & RUN_ANSWERKNOWN))
        return {};
    std::string strLine = "\tAnswer: ";
    const char* pComma = "";
    for (const TMove& move : problem.m_vecExpectedSolutions) {
        strLine += pComma;
        strLine += " " + AnswerMoveText(move, *problem.m_pChessboard);
        pComma = ",";
    }
    return strLine + "\n";
}

std::string MovesLine(const TProblem& problem)
{
    const std::vector<const TChessboard*> vecLine = problem.GetPlayedLine();
    if (problem.m_nProblemType != PROBLEM_LINE || vecLine.empty())
        return {};
    std::string strLine = "   Moves:    ";
    for (const TChessboard* pBoard : vecLine)
        strLine += " " + PrintMove(pBoard->m_LastMove, *pBoard->m_pParent);
    return strLine + "\n";
}

} // namespace

std::string ProblemToText(const TProblem& problem, bool bWithComments)
{
    std::string strText = HeaderLine(problem) + TagLines(problem);
    strText += VariantLines(problem, bWithComments);
    if (!problem.m_sortIndications.empty())
        strText += "//@SortIndications: " + SortIndicationsToText(problem.m_sortIndications) + "\n";
    strText += "{\n";
    if (!problem.m_strDescription.empty())
        strText += "\tDescription: " + Utf8FromWide(Contained(problem.m_strDescription)) + "\n";
    strText += "\tFEN: " + WriteFen(*problem.m_pChessboard, true) + "\n";
    // A reader takes the played moves in front of the answer.
    return strText + MovesLine(problem) + AnswerLine(problem) + "}\n";
}

std::string ProblemsToText(const TProblemCollection& collection, bool bWithComments)
{
    std::string strText = "UTF-8\n\n";
    for (const auto& [nNumber, pProblem] : collection.m_mapProblems)
        strText += "\n" + ProblemToText(*pProblem, bWithComments);
    return WithCarriageReturns(strText);
}

std::string WithCarriageReturns(const std::string& strText)
{
    std::string strLines;
    strLines.reserve(strText.size() + strText.size() / 16);
    for (const char c : strText) {
        if (c == '\n')
            strLines += '\r';
        strLines += c;
    }
    return strLines;
}

} // namespace corvina
