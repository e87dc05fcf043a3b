#ifndef CORVINA_PLATFORM_ENCODING_H
#define CORVINA_PLATFORM_ENCODING_H

#include <string>
#include <string_view>

namespace corvina
{

/// The encoding of texts that say of themselves that they are in it.
inline constexpr const char* UTF8 = "UTF-8";

/// Turns texts of a named encoding into wide texts and back, by the system's converter. What the
/// one side has no form for isn't lost: a byte that is no character of the encoding becomes the
/// wide character BYTE_ESCAPE + byte, which becomes that byte again.
class TTextConverter
{
public:
    static constexpr wchar_t BYTE_ESCAPE = 0xDC00; ///< a range that holds no characters

    /// An encoding by the system's name for it, in which ASCII stands for itself: "UTF-8",
    /// "windows-1250". Throws std::runtime_error for a name that the system doesn't know.
    explicit TTextConverter(const std::string& strEncoding);
    ~TTextConverter();
    TTextConverter(const TTextConverter&) = delete;
    TTextConverter& operator=(const TTextConverter&) = delete;

    std::wstring ToWide(std::string_view strText) const;

    /// A character that the encoding doesn't have becomes "?"; every character has a form in UTF-8.
    std::string FromWide(std::wstring_view strText) const;

private:
    void* m_pToWide;
    void* m_pFromWide;
};

/// Short for a converter of UTF-8, kept by the thread.
std::wstring WideFromUtf8(std::string_view strText);
std::string Utf8FromWide(std::wstring_view strText);

} // namespace corvina

#endif
