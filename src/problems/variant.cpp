#include "problems/variant.h"

#include "chess/lineguard.h"
#include "chess/matekind.h"
#include "chess/notation.h"

#include <algorithm>

namespace corvina
{
namespace
{

constexpr ELanguage LANGUAGES[] = {ELanguage::Polish, ELanguage::English, ELanguage::Ukrainian};

/// Move texts are plain ASCII.
std::wstring Widen(const std::string& strText)
{
    return {strText.begin(), strText.end()};
}

std::wstring MateMark(EMateKind kind, ELanguage language)
{
    const bool bPolish = language == ELanguage::Polish;
    switch (kind) {
    case EMateKind::Mate:
        return L"x";
    case EMateKind::ModelMate:
        return bPolish ? L"x mat wzorowy" : L"x model mate";
    case EMateKind::IdealMate:
        return bPolish ? L"x mat idealny" : L"x ideal mate";
    default:
        return {};
    }
}

/// What follows the text of the move that led to a position.
std::wstring MarksOf(const TChessboard& board, ELanguage language)
{
    const bool bWhite = board.IsWhiteToMove();
    const std::int8_t checker = bWhite ? board.m_whiteChecker : board.m_blackChecker;
    const EMateKind kind = bWhite ? EMateKind::None : GetMateKind(board);
    if (kind == EMateKind::Stalemate)
        return L"=";
    if (kind != EMateKind::None)
        return MateMark(kind, language);
    if (checker == NO_CHECK)
        return {};
    if (bWhite && !HasLegalMove(board, EColour::White))
        return L"x";
    return checker == DOUBLE_CHECK ? L"++" : L"+";
}

std::size_t CommonMoves(const TVariant& variant, const TVariant* pOther)
{
    if (!pOther)
        return 0;
    const auto& a = variant.m_vecMoves;
    const auto& b = pOther->m_vecMoves;
    const auto same = [](const TVariantMove& x, const TVariantMove& y) {
        return IsSameMove(x.m_move, y.m_move);
    };
    const auto ends = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), same);
    return static_cast<std::size_t>(ends.first - a.begin());
}

/// The texts of the moves of a variant, one after the other, carried out on a board if there is
/// one.
class CMoveTexts
{
public:
    explicit CMoveTexts(const TVariantTextOptions& options)
        : m_options(options), m_pBoard(options.m_pPosition),
          m_guard(m_pBoard ? m_pBoard->m_pThread : nullptr)
    {
    }

    std::wstring Next(const TVariantMove& move)
    {
        Play(move.m_strText);
        if (!m_pBoard)
            return Widen(move.m_strText);
        const std::string strText =
            m_options.m_bShortForm ? GetShortMoveText(*m_pBoard) : move.m_strText;
        return Widen(strText) + MarksOf(*m_pBoard, m_options.m_language);
    }

private:
    void Play(const std::string& strText)
    {
        if (!m_pBoard)
            return;
        if (m_pBoard->m_nMoves != 0)
            m_guard.Save(m_pBoard->m_nMoves);
        try {
            m_pBoard = MakeMove(*m_pBoard, strText);
        }
        catch (const ChessException&) {
            m_pBoard = nullptr;
        }
    }

    const TVariantTextOptions& m_options;
    TChessboard* m_pBoard; ///< null once a move couldn't be carried out
    TLineGuard m_guard;
};

std::wstring NameText(const std::wstring& strName, EVariantName nMode)
{
    if (nMode == EVariantName::None)
        return {};
    const bool bEnglish = nMode == EVariantName::EnglishMain && IsMainVariantName(strName);
    return L"{" + (bEnglish ? MainVariantName(ELanguage::English) : strName) + L"} ";
}

} // namespace

const wchar_t* MainVariantName(ELanguage language)
{
    switch (language) {
    case ELanguage::Polish:
        return L"Wariant główny";
    case ELanguage::Ukrainian:
        return L"Основний варіант";
    default:
        return L"Main variant";
    }
}

bool IsMainVariantName(const std::wstring& strName)
{
    return std::any_of(std::begin(LANGUAGES), std::end(LANGUAGES),
                       [&](ELanguage language) { return strName == MainVariantName(language); });
}

std::wstring VariantToText(const TVariant& variant, const TVariantTextOptions& options)
{
    const std::size_t nSkipped =
        std::max(CommonMoves(variant, options.m_pSkip1), CommonMoves(variant, options.m_pSkip2));
    std::wstring strLine = NameText(variant.m_strName, options.m_nNameMode);
    CMoveTexts texts(options);
    bool bAfterComment = false;
    for (std::size_t i = 0; i < variant.m_vecMoves.size(); ++i) {
        const TVariantMove& move = variant.m_vecMoves[i];
        const std::wstring strMove = texts.Next(move);
        if (i < nSkipped)
            continue;
        const bool bFirst = i == nSkipped;
        if (!bFirst)
            strLine += L' ';
        const bool bWhite = i % 2 == 0;
        if (options.m_bNumbered && (bWhite || bAfterComment || bFirst))
            strLine += std::to_wstring(i / 2 + 1) + (bWhite ? L"." : L". ...");
        strLine += strMove;
        bAfterComment = options.m_bWithComments && !move.m_strComment.empty();
        if (bAfterComment)
            strLine += (options.m_bNumbered ? L"(" : L"[") + move.m_strComment +
                       (options.m_bNumbered ? L")" : L"]");
    }
    return strLine;
}

} // namespace corvina
