#ifndef CORVINA_APP_APPLOG_H
#define CORVINA_APP_APPLOG_H

#include <filesystem>
#include <string>

namespace corvina
{

/// Adds a line, with its line feed, behind local time and process: "2026-03-04 17:00:00, 4711: ".
/// The log is open for no longer than that; one that can't be opened loses the line. Any thread may
/// call it.
void AppendToLog(const std::filesystem::path& path, const std::string& strLine);

} // namespace corvina

#endif
