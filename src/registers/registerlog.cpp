#include "registers/registerlog.h"

#include "registers/registersettings.h"

#include <cstdio>
#include <mutex>

namespace corvina
{

void LogRegisterInfo(const char* pText, std::int64_t nParam1, std::int64_t nParam2,
                     std::uint32_t nElements, std::uint32_t nDoubtful)
{
    if (!g_registerSettings.m_bRegisterInfoLog)
        return;
    static std::mutex csLog;
    const std::lock_guard guard(csLog);
    if (std::FILE* pFile = std::fopen("registerInfo.log", "a")) {
        std::fprintf(pFile, "%s, msg params: %lld, %lld\n", pText, static_cast<long long>(nParam1),
                     static_cast<long long>(nParam2));
        std::fprintf(pFile, "\t\t\tElementsIn= %u, DoubtfulElementsIn=%u\n", nElements, nDoubtful);
        std::fclose(pFile);
    }
}

} // namespace corvina
