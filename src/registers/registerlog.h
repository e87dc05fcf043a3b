#ifndef CORVINA_REGISTERS_REGISTERLOG_H
#define CORVINA_REGISTERS_REGISTERLOG_H

#include <cstdint>

namespace corvina
{

/// Appends to "registerInfo.log" in the current folder, if the settings ask for it: the text, two
/// numbers whose meaning depends on it, and the two counts.
void LogRegisterInfo(const char* pText, std::int64_t nParam1, std::int64_t nParam2,
                     std::uint32_t nElements, std::uint32_t nDoubtful);

} // namespace corvina

#endif
