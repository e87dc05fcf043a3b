#include "problems/problemfile.h"
#include "problems/problemwriter.h"

#include <cstdint>
#include <cstdlib>

using namespace corvina;

namespace
{

/// What can be read of a text, in the form that is written.
std::string NormalForm(std::string_view strText)
{
    TProblemFileSettings settings;
    settings.m_pWarnings = settings.m_pProgress = nullptr;
    TProblemCollection collection;
    try {
        ReadProblems(strText, collection, settings);
    }
    catch (const TProblemFileException&) {
        // The problems in front of the fault have been read.
    }
    return ProblemsToText(collection, true);
}

} // namespace

/// Any text is read or refused, and what has been read is written so that it reads the same again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize)
{
    const std::string strWritten =
        NormalForm(std::string_view(reinterpret_cast<const char*>(pData), nSize));
    if (NormalForm(strWritten) != strWritten)
        std::abort();
    return 0;
}
