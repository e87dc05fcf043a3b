#ifndef CORVINA_TESTS_SUPPORT_TEMPORARYFOLDER_H
#define CORVINA_TESTS_SUPPORT_TEMPORARYFOLDER_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace corvina
{

/// A folder of a test's own, removed with the object.
class TTemporaryFolder
{
public:
    TTemporaryFolder()
    {
        std::string strPath = (std::filesystem::temp_directory_path() / "corvina-XXXXXX").string();
        m_path = mkdtemp(strPath.data());
    }
    ~TTemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    TTemporaryFolder(const TTemporaryFolder&) = delete;
    TTemporaryFolder& operator=(const TTemporaryFolder&) = delete;

    std::string File(const std::string& strName) const { return (m_path / strName).string(); }

    std::filesystem::path m_path;
};

inline std::string BytesOf(const std::string& strPath)
{
    std::ifstream input(strPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(input), {}};
}

inline void PutBytes(const std::string& strPath, const std::string& strBytes)
{
    std::ofstream(strPath, std::ios::binary) << strBytes;
}

} // namespace corvina

#endif
