#ifndef CORVINA_PROBLEMS_LEXER_H
#define CORVINA_PROBLEMS_LEXER_H

#include <cstddef>
#include <string>
#include <string_view>

namespace corvina
{

/// ASCII letters in upper case, everything else as it is.
std::string UpperCased(std::string_view strText);

/// The text without the blanks, tabs and carriage returns at its ends.
std::string_view TrimBlanks(std::string_view strText);

/// The scanner of problem files: cuts a text into lexems. A lexem is a run of letters, digits, "^"
/// and "_", or any other single character. White space (the byte 0xA0 is also white), block
/// comments and line comments stand between lexems.
///
/// A line that begins with "//!", "//#" or "//@SortIndications" is data. Where such lines are asked
/// for they are lexems, from the slashes to the end of the line; elsewhere they are comments.
class TLexer
{
public:
    enum class ESpecial
    {
        Skip,  ///< lines of data are comments here
        Return ///< lines of data are lexems
    };
    enum class EAtEnd
    {
        Allow, ///< an empty lexem at the end of the text
        Fail
    };

    /// The text must outlive the lexer and its lexems.
    explicit TLexer(std::string_view strText, std::size_t nPos = 0)
        : m_strText(strText), m_nPos(nPos), m_nLexemPos(nPos)
    {
    }

    /// The next lexem; empty at the end. Throws ChessException "Unexpected end of file.",
    /// "Unexpected end of file before comment closed." and "Unexpected lexem (slash).".
    std::string_view GetLexem(EAtEnd atEnd = EAtEnd::Fail, ESpecial special = ESpecial::Skip);

    /// The next lexem, which must begin with a letter or digit. Throws as GetLexem does, and
    /// "Alphanumeric identifier expected. Found: " and the lexem.
    std::string_view GetIdentifier();

    /// The text up to the next white space; empty at the end.
    std::string_view GetFenToken();

    /// What is left of the line, without blanks at its ends.
    std::string_view GetRestOfLine();

    /// Takes the text if it comes next, letter case apart.
    bool SkipText(std::string_view strText);

    /// The character at the next lexem; a blank at the end. Throws as GetLexem does.
    char Peek();

    /// Where the text goes on; a position given out before can be gone back to.
    std::size_t GetPos() const { return m_nPos; }
    void SetPos(std::size_t nPos) { m_nPos = nPos; }

    /// Start of the latest lexem, or of what a caller has marked: where an error is reported.
    std::size_t GetLexemPos() const { return m_nLexemPos; }
    void Mark(std::size_t nPos) { m_nLexemPos = nPos; }

    /// The position of a part of the text.
    std::size_t PosOf(std::string_view strPart) const
    {
        return static_cast<std::size_t>(strPart.data() - m_strText.data());
    }

private:
    /// White space and comments, up to a line of data if those are asked for.
    void SkipToLexem(ESpecial special);
    void SkipBlockComment();
    bool IsSpecialLine() const;
    bool StandsFirstOnLine() const;
    std::string_view TakeLine();

    std::string_view m_strText;
    std::size_t m_nPos;
    std::size_t m_nLexemPos;
};

} // namespace corvina

#endif
