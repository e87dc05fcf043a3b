#ifndef CORVINA_PLATFORM_MACHINE_H
#define CORVINA_PLATFORM_MACHINE_H

#include <cstdint>
#include <string>

namespace corvina
{

/// Physical memory of the machine in bytes; 0 when the system doesn't tell.
std::uint64_t GetTotalPhysicalMemory();

/// Physical processor cores; where the system doesn't tell them, the processors online. At least 1.
unsigned GetProcessorCores();

/// Processors online, those of one core counted each. At least 1.
unsigned GetLogicalProcessors();

/// "2026-03-04 17:00:00", local time.
std::string GetLocalTimeText();

/// Of the running process.
int GetProcessNumber();

/// Milliseconds on a clock that never runs backwards; only differences mean something.
std::uint64_t GetTickMilliseconds();

} // namespace corvina

#endif
