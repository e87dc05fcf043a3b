#include "app/applog.h"

#include "platform/machine.h"

#include <fstream>
#include <mutex>

namespace corvina
{

void AppendToLog(const std::filesystem::path& path, const std::string& strLine)
{
    static std::mutex g_csLog;
    const std::lock_guard guard(g_csLog);
    std::ofstream(path, std::ios::app)
        << GetLocalTimeText() << ", " << GetProcessNumber() << ": " << strLine;
}

} // namespace corvina
