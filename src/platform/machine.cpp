#include "platform/machine.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <unistd.h>

namespace corvina
{

unsigned GetLogicalProcessors()
{
    static const unsigned nProcessors = std::max(1U, std::thread::hardware_concurrency());
    return nProcessors;
}

std::uint64_t GetTotalPhysicalMemory()
{
    static const std::uint64_t nBytes = [] {
        const long nPages = sysconf(_SC_PHYS_PAGES);
        const long nPageSize = sysconf(_SC_PAGE_SIZE);
        return nPages > 0 && nPageSize > 0
                   ? static_cast<std::uint64_t>(nPages) * static_cast<std::uint64_t>(nPageSize)
                   : 0;
    }();
    return nBytes;
}

unsigned GetProcessorCores()
{
    // Processors of one core name the same list of siblings.
    static const unsigned nCores = [] {
        std::set<std::string> setSiblings;
        const unsigned nConfigured =
            static_cast<unsigned>(std::max(1L, sysconf(_SC_NPROCESSORS_CONF)));
        for (unsigned i = 0; i < nConfigured; ++i) {
            std::ifstream file("/sys/devices/system/cpu/cpu" + std::to_string(i) +
                               "/topology/thread_siblings_list");
            std::string strSiblings;
            if (std::getline(file, strSiblings))
                setSiblings.insert(strSiblings);
        }
        return setSiblings.empty() ? GetLogicalProcessors()
                                   : static_cast<unsigned>(setSiblings.size());
    }();
    return nCores;
}

std::string GetLocalTimeText()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    return text;
}

int GetProcessNumber()
{
    return getpid();
}

std::uint64_t GetTickMilliseconds()
{
    using namespace std::chrono;
    return static_cast<std::uint64_t>(
        duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

} // namespace corvina
