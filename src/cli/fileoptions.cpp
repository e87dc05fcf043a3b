#include "cli/fileoptions.h"

#include <CLI/CLI.hpp>

namespace corvina
{
namespace
{

/// A lexem of a file that is no problem file can be very long.
std::string Shortened(const std::string& strText)
{
    constexpr std::size_t MAX_LENGTH = 300;
    return strText.size() <= MAX_LENGTH ? strText : strText.substr(0, MAX_LENGTH) + "...";
}

} // namespace

void AddFileOptions(CLI::App& command, TProblemFileSettings& settings)
{
    settings.m_pWarnings = stderr;
    settings.m_pProgress = nullptr;
    command.add_option("--code-page", settings.m_strCodePage,
                       "encoding of problem files that don't begin with \"UTF-8\" (" +
                           settings.m_strCodePage + " by default)");
    command.add_flag("--comment-compatibility", settings.m_bCommentCompatibilityMode,
                     "problem files have a twin \"name.cpx\" with the comments of variants");
}

TOptions ReadProgramOptions(TProblemFileSettings& settings)
{
    std::vector<std::string> vecWarnings;
    const TOptions options = ReadOptions(GetOptionsPath(), vecWarnings);
    for (const std::string& strText : vecWarnings)
        std::fprintf(stderr, "%s\n", strText.c_str());
    if (options.m_nLanguageId >= 0 && options.m_nLanguageId <= 2)
        settings.m_language = static_cast<ELanguage>(options.m_nLanguageId);
    if (options.m_bCommentCompatibilityMode)
        settings.m_bCommentCompatibilityMode = true;
    return options;
}

void ReportError(const std::string& strPath, const TProblemFileException& error)
{
    const std::string strText = Shortened(error.what());
    std::fprintf(stderr, "%s:%d:%d: ", strPath.c_str(), error.m_nLine, error.m_nColumn);
    if (error.m_nProblem)
        std::fprintf(stderr, "Error parsing problem %d: ", *error.m_nProblem);
    std::fprintf(stderr, "%s\n", strText.c_str());
}

} // namespace corvina
