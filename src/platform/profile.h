#ifndef CORVINA_PLATFORM_PROFILE_H
#define CORVINA_PLATFORM_PROFILE_H

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace corvina
{

/// A profile: a text file of sections "[name]" with lines "key=value", in UTF-8. Names are equal
/// whatever their case; of several lines with one key the last one counts; lines that begin with
/// ";" or "#" are comments.
class TProfile
{
public:
    /// Reads the file; one that doesn't exist or can't be read is empty.
    explicit TProfile(const std::filesystem::path& path);
    ~TProfile();
    TProfile(const TProfile&) = delete;
    TProfile& operator=(const TProfile&) = delete;

    /// The value without blanks and without a pair of quotes around it.
    std::optional<std::string> GetText(const std::string& strSection,
                                       const std::string& strKey) const;

    /// The number at the start of the value, 0 without digits; the default when there is no value.
    std::int64_t GetInt(const std::string& strSection, const std::string& strKey,
                        std::int64_t nDefault) const;

    /// Sets a value, which must have no line ends. Every other line stays as it is, to the byte.
    void SetText(const std::string& strSection, const std::string& strKey,
                 const std::string& strValue);

    /// Puts the file in the place of the old one in one step. False when it can't be written, or
    /// when there is a file that couldn't be read; then the old file stands.
    bool Write() const;

private:
    struct TValues;

    void ReadValues();

    std::filesystem::path m_path;
    std::string m_strText; ///< of the whole file
    bool m_bUnreadable = false;
    std::unique_ptr<TValues> m_pValues;
};

} // namespace corvina

#endif
