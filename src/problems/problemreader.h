#ifndef CORVINA_PROBLEMS_PROBLEMREADER_H
#define CORVINA_PROBLEMS_PROBLEMREADER_H

#include "platform/encoding.h"
#include "platform/language.h"
#include "problems/lexer.h"
#include "problems/problem.h"

#include <map>
#include <set>
#include <string>

namespace corvina
{

/// Options, in upper case, for all problems of a file with a stipulation "#n", by n.
using TDefaultOptions = std::map<int, std::set<std::string>>;

/// How the texts of a file are to be understood.
struct TTextForm
{
    const TTextConverter& m_converter;
    ELanguage m_language = ELanguage::English; ///< in which the main variant gets its name
};

/// Reads the default clauses at the head of a file, lines "//!default #4 AllSolutions". Throws
/// ChessException "Incorrect 'default' clause." and "Error in 'default' clause.".
TDefaultOptions ReadDefaultClauses(TLexer& lexer);

/// Reads one entry of a problem file into a fresh problem; the lexer stands behind it afterwards.
/// Throws ChessException with the lexer's position (GetLexemPos) at what is wrong. What has been
/// read of the problem up to there is in it.
void ReadProblem(TProblem& problem, TLexer& lexer, const TTextForm& form,
                 const TDefaultOptions& defaults);

/// Reads one move of a list of played moves; bWhite tells the row of castling. False, with the
/// lexer where it was, when no move comes next. Throws ChessException.
bool ReadMoveFromFile(TLexer& lexer, TMove* pMove, bool bWhite);

/// Reads a line of a variant behind its "//!": "{name} Qa1-a8 Ke5-d4[a comment]". The moves aren't
/// carried out. Throws ChessException as ParseFullMove does; *pnErrorAt is then the place within
/// the text, in characters.
TVariant ParseVariantLine(const std::wstring& strLine, ELanguage language,
                          std::size_t* pnErrorAt = nullptr);

} // namespace corvina

#endif
