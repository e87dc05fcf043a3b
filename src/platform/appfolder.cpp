#include "platform/appfolder.h"

#include <cstdlib>

namespace corvina
{
namespace
{

std::filesystem::path FindAppFolder()
{
    std::error_code error;
    const char* pHome = std::getenv("CORVINA_HOME");
    const std::filesystem::path folder = pHome && *pHome ? pHome : ".";
    const std::filesystem::path absolute = std::filesystem::absolute(folder, error);
    return error ? folder : absolute.lexically_normal();
}

} // namespace

const std::filesystem::path& GetAppFolder()
{
    static const std::filesystem::path folder = FindAppFolder();
    return folder;
}

namespace
{

/// Nothing can change the current folder before this.
[[maybe_unused]] const std::filesystem::path& g_folderAtStart = GetAppFolder();

} // namespace
} // namespace corvina
