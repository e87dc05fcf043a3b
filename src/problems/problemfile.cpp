#include "problems/problemfile.h"

#include "platform/files.h"
#include "problems/problemreader.h"
#include "problems/problemwriter.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

namespace corvina
{
namespace
{

/// A number that no entry has: its sign doesn't belong to an identifier.
constexpr std::int32_t NO_NUMBER = -1;

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

/// Text that follows the head of a file.
struct TFileText
{
    bool m_bUtf8;
    std::size_t m_nPos; ///< where the reader starts
};

/// A file says at its head that it is in UTF-8, by the word or by a byte order mark.
TFileText FindEncoding(std::string_view strText)
{
    const bool bMark = strText.starts_with(BYTE_ORDER_MARK);
    const std::size_t nStart = bMark ? BYTE_ORDER_MARK.size() : 0;
    const std::size_t nWord = std::min(strText.find_first_not_of(" \t", nStart), strText.size());
    if (!strText.substr(nWord).starts_with(UTF8))
        return {bMark, nStart};
    return {true, nWord + std::string_view(UTF8).size()};
}

/// Line and column, both from 1, of a place in a text.
TProblemFileException ErrorAt(std::string_view strText, std::size_t nPos, bool bUtf8,
                              const char* pText, std::optional<std::int32_t> nProblem)
{
    const std::string_view strBefore = strText.substr(0, std::min(nPos, strText.size()));
    const std::size_t nLineStart = strBefore.rfind('\n') + 1;
    const auto nLines = std::count(strBefore.begin(), strBefore.end(), '\n');
    const auto isCharacter = [bUtf8](char c) { return !bUtf8 || (c & 0xC0) != 0x80; };
    const auto nColumns = std::count_if(strBefore.begin() + static_cast<std::ptrdiff_t>(nLineStart),
                                        strBefore.end(), isCharacter);
    return {pText, static_cast<int>(nLines) + 1, static_cast<int>(nColumns) + 1, nProblem};
}

void Announce(std::FILE* pFile, const char* pFormat, std::int32_t nProblem)
{
    if (pFile)
        std::fprintf(pFile, pFormat, nProblem);
}

void PutProblem(std::unique_ptr<TProblem> pProblem, TProblemCollection& collection,
                const TProblemFileSettings& settings)
{
    const std::int32_t nNumber = pProblem->m_nProblemNumber;
    pProblem->GetVariantsInLanguage(settings.m_language);
    const std::lock_guard guard(collection.m_lock);
    if (collection.Put(std::move(pProblem)))
        Announce(settings.m_pWarnings, "WARINING: Problem id=%d redefinition - overwriting.\n",
                 nNumber);
    Announce(settings.m_pProgress, "Problem %d read from file.\n", nNumber);
}

[[noreturn]] void ThrowOpening(const std::string& strPath)
{
    throw ChessException("Error opening file: " + strPath);
}

bool Exists(const std::string& strPath)
{
    std::error_code error;
    return std::filesystem::exists(strPath, error);
}

/// The file to read. Without a twin with comments the plain file is all there is.
std::string NameToRead(const std::string& strPath, const TProblemFileSettings& settings)
{
    if (!settings.m_bCommentCompatibilityMode)
        return strPath;
    const std::string strCommented = GetMirrorFileName(strPath, true);
    return !Exists(strCommented) && Exists(strPath) ? strPath : strCommented;
}

/// A file and what is to be in it.
struct TContent
{
    std::string m_strPath;
    std::string m_strText;
};

/// Puts all files in place once all of them are on the disk.
void WriteFiles(const std::vector<TContent>& vecContents, EOldFile old)
{
    std::vector<std::unique_ptr<TFileReplacement>> vecReplacements;
    for (const TContent& content : vecContents) {
        try {
            vecReplacements.push_back(
                std::make_unique<TFileReplacement>(content.m_strPath, content.m_strText));
        }
        catch (const std::system_error&) {
            ThrowOpening(content.m_strPath);
        }
    }
    for (std::size_t i = 0; i < vecContents.size(); ++i) {
        try {
            vecReplacements[i]->Commit(old);
        }
        catch (const std::system_error&) {
            ThrowOpening(vecContents[i].m_strPath);
        }
    }
}

/// The same text in both twins, or in the one file.
std::vector<TContent> InEachFile(const std::string& strPath, const std::string& strText,
                                 const TProblemFileSettings& settings)
{
    if (!settings.m_bCommentCompatibilityMode)
        return {{strPath, strText}};
    return {{GetMirrorFileName(strPath, true), strText},
            {GetMirrorFileName(strPath, false), strText}};
}

std::string NewDescription(ELanguage language)
{
    switch (language) {
    case ELanguage::Polish:
        return "Kliknij tutaj, aby zmienić opis zadania";
    case ELanguage::Ukrainian:
        return "Клацніть тут, щоб змінити опис задачі";
    default:
        return "Click here to change problem description";
    }
}

} // namespace

void ReadProblems(std::string_view strText, TProblemCollection& collection,
                  const TProblemFileSettings& settings)
{
    const TFileText file = FindEncoding(strText);
    const TTextConverter converter(file.m_bUtf8 ? UTF8 : settings.m_strCodePage);
    const TTextForm form{converter, settings.m_language};
    TLexer lexer(strText, file.m_nPos);
    std::unique_ptr<TProblem> pProblem;
    try {
        const TDefaultOptions defaults = ReadDefaultClauses(lexer);
        while (true) {
            const std::size_t nPos = lexer.GetPos();
            if (lexer.GetLexem(TLexer::EAtEnd::Allow).empty())
                return;
            lexer.SetPos(nPos);
            pProblem = std::make_unique<TProblem>();
            pProblem->m_nProblemNumber = NO_NUMBER;
            ReadProblem(*pProblem, lexer, form, defaults);
            PutProblem(std::move(pProblem), collection, settings);
        }
    }
    catch (const ChessException& error) {
        std::optional<std::int32_t> nNumber;
        if (pProblem && pProblem->m_nProblemNumber != NO_NUMBER)
            nNumber = pProblem->m_nProblemNumber;
        throw ErrorAt(strText, lexer.GetLexemPos(), file.m_bUtf8, error.what(), nNumber);
    }
}

void LoadProblemFile(const std::string& strPath, TProblemCollection& collection,
                     bool bCreateIfMissing, const TProblemFileSettings& settings)
{
    const std::string strName = NameToRead(strPath, settings);
    if (bCreateIfMissing && !Exists(strName))
        CreateProblemFile(strPath, EAskMode::Refuse, {}, settings);
    const std::optional<std::string> strText = ReadWholeFile(strName);
    if (!strText)
        ThrowOpening(strName);
    ReadProblems(*strText, collection, settings);
}

void WriteProblemFile(const std::string& strPath, const TProblemCollection& collection,
                      const TProblemFileSettings& settings)
{
    std::vector<TContent> vecContents =
        InEachFile(strPath, ProblemsToText(collection, true), settings);
    if (settings.m_bCommentCompatibilityMode)
        vecContents[1].m_strText = ProblemsToText(collection, false);
    WriteFiles(vecContents, EOldFile::KeepAsBak);
}

bool CreateProblemFile(const std::string& strPath, EAskMode nAskMode, const TQuestion& question,
                       const TProblemFileSettings& settings)
{
    const std::string strText = "UTF-8\n1 #2\n{\n\tDesc: " + NewDescription(settings.m_language) +
                                "\n\tWhite: Ke1\n\tBlack: Ke8\n}\n";
    const std::vector<TContent> vecContents =
        InEachFile(strPath, WithCarriageReturns(strText), settings);
    const bool bExists = std::any_of(vecContents.begin(), vecContents.end(),
                                     [](const TContent& file) { return Exists(file.m_strPath); });
    if (bExists && nAskMode == EAskMode::Refuse)
        return false;
    if (bExists && !question("Question", "File " + strPath +
                                             " already exists.\nDo you want to "
                                             "replace it with a new file?"))
        return false;
    try {
        WriteFiles(vecContents, EOldFile::KeepAsBak);
        return true;
    }
    catch (const ChessException&) {
        return false;
    }
}

std::string GetMirrorFileName(const std::string& strName, bool bCommented)
{
    if (bCommented)
        return strName.ends_with('x') ? strName : strName + "x";
    return strName.ends_with('x') ? strName.substr(0, strName.size() - 1) : strName;
}

} // namespace corvina
