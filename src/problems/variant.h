#ifndef CORVINA_PROBLEMS_VARIANT_H
#define CORVINA_PROBLEMS_VARIANT_H

#include "chess/chessboard.h"
#include "platform/language.h"

#include <string>
#include <vector>

namespace corvina
{

struct TVariantMove
{
    TMove m_move{};
    std::string m_strText;     ///< the move in full notation
    std::wstring m_strComment; ///< may be empty
};

/// A named line of moves of a problem.
struct TVariant
{
    std::wstring m_strName;
    std::vector<TVariantMove> m_vecMoves; ///< White's first at index 0
};

/// The name of the main variant in a language.
const wchar_t* MainVariantName(ELanguage language);

/// The name is that of the main variant in any language.
bool IsMainVariantName(const std::wstring& strName);

/// How the name of a variant is written.
enum class EVariantName
{
    None,
    AsIs,
    EnglishMain ///< as it is, but that of the main variant in English
};

struct TVariantTextOptions
{
    bool m_bWithComments = false;
    EVariantName m_nNameMode = EVariantName::None;
    /// Numbered, with comments in round brackets; or moves alone, with comments in square ones.
    bool m_bNumbered = false;
    /// Other variants, may be null: the moves that this one has in common with the start of one of
    /// them are left out.
    const TVariant* m_pSkip1 = nullptr;
    const TVariant* m_pSkip2 = nullptr;
    /// The position before the first move, may be null, with room for the moves in its thread's
    /// stack; its line is left alone. With it marks of check and mate follow the moves. From a move
    /// on that it doesn't allow the stored texts stand, without marks.
    TChessboard* m_pPosition = nullptr;
    bool m_bShortForm = false; ///< moves in short form; only with a position
    ELanguage m_language = ELanguage::English;
};

/// A variant as a line of text: "{Main variant} 1.e2-e4 e7-e5(a comment) 2.Ng1-f3".
std::wstring VariantToText(const TVariant& variant, const TVariantTextOptions& options);

} // namespace corvina

#endif
