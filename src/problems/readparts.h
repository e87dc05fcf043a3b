#ifndef CORVINA_PROBLEMS_READPARTS_H
#define CORVINA_PROBLEMS_READPARTS_H

#include "chess/exception.h"
#include "problems/problemreader.h"

#include <charconv>
#include <limits>
#include <string_view>

/// The parts of the reader of one entry.

namespace corvina
{

/// A decimal number within the limits. Throws ChessException "Number expected. Found: " and "Number
/// out of range: " with the text.
template <class T>
T NumberFromText(std::string_view strText, T nMin = 0, T nMax = std::numeric_limits<T>::max())
{
    T nNumber = 0;
    const char* pEnd = strText.data() + strText.size();
    const auto [pRead, error] = std::from_chars(strText.data(), pEnd, nNumber);
    if (pRead != pEnd || error == std::errc::invalid_argument)
        throw ChessException("Number expected. Found: " + std::string(strText));
    if (error != std::errc() || nNumber < nMin || nNumber > nMax)
        throw ChessException("Number out of range: " + std::string(strText));
    return nNumber;
}

/// The number, the stipulation, the options and the lines of data, up to the "{" of the block.
void ReadHeader(TProblem& problem, TLexer& lexer, const TTextForm& form,
                const TDefaultOptions& defaults);

/// What follows the "{": the description, the position, the played moves and the answer, up to the
/// "}".
void ReadBlock(TProblem& problem, TLexer& lexer, const TTextForm& form);

} // namespace corvina

#endif
