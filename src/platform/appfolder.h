#ifndef CORVINA_PLATFORM_APPFOLDER_H
#define CORVINA_PLATFORM_APPFOLDER_H

#include <filesystem>

namespace corvina
{

/// The program's folder, where its options and logs are: the environment's CORVINA_HOME, or the
/// current folder as it was when the program started.
const std::filesystem::path& GetAppFolder();

} // namespace corvina

#endif
