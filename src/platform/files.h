#ifndef CORVINA_PLATFORM_FILES_H
#define CORVINA_PLATFORM_FILES_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace corvina
{

/// The bytes of a file; none when it can't be opened or read.
std::optional<std::string> ReadWholeFile(const std::filesystem::path& path);

/// What becomes of the file that another one replaces.
enum class EOldFile
{
    Drop,
    KeepAsBak ///< moves to the same name + ".BAK", in the place of an older one
};

/// A new content for a file. It is written beside the file and flushed to the disk when the object
/// is made, and takes the file's place in one step in Commit. Until then, whatever fails and
/// whenever the process ends, the old file stands as it was.
class TFileReplacement
{
public:
    /// A link is followed: the file that it points to is replaced. Throws std::system_error when
    /// the content can't be written in full.
    TFileReplacement(const std::filesystem::path& path, std::string_view strContent);

    /// Without a Commit the new content is dropped.
    ~TFileReplacement();
    TFileReplacement(const TFileReplacement&) = delete;
    TFileReplacement& operator=(const TFileReplacement&) = delete;

    /// Throws std::system_error; then the old file stands.
    void Commit(EOldFile old = EOldFile::Drop);

private:
    std::filesystem::path m_path;
    std::filesystem::path m_newPath; ///< of the content before it is committed
    bool m_bCommitted = false;
};

} // namespace corvina

#endif
