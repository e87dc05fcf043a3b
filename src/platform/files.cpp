#include "platform/files.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace corvina
{
namespace
{

namespace fs = std::filesystem;

[[noreturn]] void ThrowErrno(const fs::path& path)
{
    throw std::system_error(errno, std::generic_category(), path.string());
}

/// A file descriptor with an owner.
class TDescriptor
{
public:
    explicit TDescriptor(int nDescriptor) : m_nDescriptor(nDescriptor) {}
    TDescriptor(const TDescriptor&) = delete;
    TDescriptor& operator=(const TDescriptor&) = delete;
    ~TDescriptor()
    {
        if (m_nDescriptor >= 0)
            close(m_nDescriptor);
    }

    int get() const { return m_nDescriptor; }
    bool IsOpen() const { return m_nDescriptor >= 0; }

    /// Some file systems tell only now that the content didn't fit.
    bool Close()
    {
        const int nDescriptor = m_nDescriptor;
        m_nDescriptor = -1;
        return close(nDescriptor) == 0;
    }

private:
    int m_nDescriptor;
};

bool WriteAll(int nDescriptor, std::string_view strContent)
{
    while (!strContent.empty()) {
        const ssize_t nWritten = write(nDescriptor, strContent.data(), strContent.size());
        if (nWritten < 0 && errno == EINTR)
            continue;
        if (nWritten < 0)
            return false;
        strContent.remove_prefix(static_cast<std::size_t>(nWritten));
    }
    return true;
}

/// The file that a name stands for once links are followed, which needn't exist.
fs::path Target(const fs::path& path)
{
    std::error_code error;
    const fs::path target = fs::weakly_canonical(path, error);
    return error ? path : target;
}

/// The permissions of the file that is replaced, or those that a new file gets.
mode_t ModeOf(const fs::path& path)
{
    struct stat status;
    if (stat(path.c_str(), &status) == 0)
        return status.st_mode & 07777;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

fs::path WithSuffix(fs::path path, const char* pSuffix)
{
    path += pSuffix;
    return path;
}

/// Makes a renaming in the folder last.
void FlushFolder(const fs::path& path)
{
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    const TDescriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.IsOpen())
        fsync(descriptor.get());
}

/// Gives the old file its second name, so that it never lacks one.
void KeepOldFile(const fs::path& path)
{
    const fs::path bak = WithSuffix(path, ".BAK");
    if (access(path.c_str(), F_OK) != 0)
        return;
    if (unlink(bak.c_str()) != 0 && errno != ENOENT)
        ThrowErrno(bak);
    if (link(path.c_str(), bak.c_str()) == 0)
        return;
    // A file system without links: for a moment the file has the other name only.
    if (rename(path.c_str(), bak.c_str()) != 0)
        ThrowErrno(bak);
}

} // namespace

std::optional<std::string> ReadWholeFile(const fs::path& path)
{
    constexpr std::size_t BUFFER = 65535;
    const TDescriptor descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!descriptor.IsOpen())
        return std::nullopt;
    std::string strContent;
    while (true) {
        const std::size_t nSize = strContent.size();
        strContent.resize(nSize + BUFFER);
        const ssize_t nRead = read(descriptor.get(), strContent.data() + nSize, BUFFER);
        if (nRead < 0 && errno != EINTR)
            return std::nullopt;
        strContent.resize(nSize + static_cast<std::size_t>(nRead < 0 ? 0 : nRead));
        if (nRead == 0)
            return strContent;
    }
}

TFileReplacement::TFileReplacement(const fs::path& path, std::string_view strContent)
    : m_path(Target(path)), m_newPath(WithSuffix(m_path, ".XXXXXX"))
{
    std::string strNewPath = m_newPath.string();
    TDescriptor descriptor(mkostemp(strNewPath.data(), O_CLOEXEC));
    if (!descriptor.IsOpen())
        ThrowErrno(path);
    m_newPath = strNewPath;
    if (fchmod(descriptor.get(), ModeOf(m_path)) != 0 || !WriteAll(descriptor.get(), strContent) ||
        fsync(descriptor.get()) != 0 || !descriptor.Close())
    {
        const int nError = errno;
        unlink(m_newPath.c_str());
        errno = nError;
        ThrowErrno(path);
    }
}

TFileReplacement::~TFileReplacement()
{
    if (!m_bCommitted)
        unlink(m_newPath.c_str());
}

void TFileReplacement::Commit(EOldFile old)
{
    if (old == EOldFile::KeepAsBak)
        KeepOldFile(m_path);
    if (rename(m_newPath.c_str(), m_path.c_str()) != 0)
        ThrowErrno(m_path);
    m_bCommitted = true;
    FlushFolder(m_path);
}

} // namespace corvina
