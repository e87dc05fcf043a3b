#ifndef CORVINA_TESTS_SUPPORT_WORKINGFOLDER_H
#define CORVINA_TESTS_SUPPORT_WORKINGFOLDER_H

#include "support/temporaryfolder.h"

namespace corvina
{

/// An empty working folder of a test's own.
class TWorkingFolder
{
public:
    TWorkingFolder() { std::filesystem::current_path(m_folder.m_path); }
    ~TWorkingFolder() { std::filesystem::current_path(m_before); }
    TWorkingFolder(const TWorkingFolder&) = delete;
    TWorkingFolder& operator=(const TWorkingFolder&) = delete;

    const TTemporaryFolder m_folder;

private:
    const std::filesystem::path m_before = std::filesystem::current_path();
};

} // namespace corvina

#endif
