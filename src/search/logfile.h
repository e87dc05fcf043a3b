#ifndef CORVINA_SEARCH_LOGFILE_H
#define CORVINA_SEARCH_LOGFILE_H

#include <cstdio>
#include <memory>

namespace corvina
{

/// The open log of one thread; closed with the object. A copy belongs to another thread and begins
/// without one.
class TLogFile
{
public:
    TLogFile() = default;
    TLogFile(const TLogFile&) {}
    TLogFile& operator=(const TLogFile&) = delete;

    void Take(std::FILE* pFile) { m_pFile.reset(pFile); }
    operator std::FILE*() const { return m_pFile.get(); }

private:
    struct TClose
    {
        void operator()(std::FILE* pFile) const { std::fclose(pFile); }
    };

    std::unique_ptr<std::FILE, TClose> m_pFile;
};

} // namespace corvina

#endif
