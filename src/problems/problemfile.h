#ifndef CORVINA_PROBLEMS_PROBLEMFILE_H
#define CORVINA_PROBLEMS_PROBLEMFILE_H

#include "chess/exception.h"
#include "platform/language.h"
#include "problems/collection.h"

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace corvina
{

/// A fault in the text of a problem file.
class TProblemFileException : public ChessException
{
public:
    TProblemFileException(const std::string& strText, int nLine, int nColumn,
                          std::optional<std::int32_t> nProblem)
        : ChessException(strText), m_nLine(nLine), m_nColumn(nColumn), m_nProblem(nProblem)
    {
    }

    int m_nLine;   ///< from 1
    int m_nColumn; ///< in characters, from 1; a tab is one
    /// The number of the problem, once it is known.
    std::optional<std::int32_t> m_nProblem;
};

/// Values of the program's options that concern problem files.
struct TProblemFileSettings
{
    /// The system's name of the code page of files that don't say that they are in UTF-8.
    std::string m_strCodePage = "windows-1250";
    /// Each file has a twin: "name.cpx" with the comments of variants, which is the one that is
    /// read, and "name.cp" without.
    bool m_bCommentCompatibilityMode = false;
    ELanguage m_language = ELanguage::English;
    std::FILE* m_pWarnings = stdout; ///< a line for each number that occurs twice; null: none
    std::FILE* m_pProgress = stdout; ///< a line for each problem; null: none
};

/// Reads a problem file and puts its problems into the collection, where problems of the same
/// numbers are replaced. A file that doesn't exist can be created. Throws ChessException "Error
/// opening file: " and the path, and TProblemFileException; the problems in front of the fault stay
/// in the collection.
void LoadProblemFile(const std::string& strPath, TProblemCollection& collection,
                     bool bCreateIfMissing, const TProblemFileSettings& settings);

/// Reads the text of a problem file, as LoadProblemFile does.
void ReadProblems(std::string_view strText, TProblemCollection& collection,
                  const TProblemFileSettings& settings);

/// Writes the collection. The file that was there, which becomes the ".BAK", stands until the new
/// one, or with the compatibility mode both, are on the disk in full. Throws ChessException "Error
/// opening file: " and the path.
void WriteProblemFile(const std::string& strPath, const TProblemCollection& collection,
                      const TProblemFileSettings& settings);

/// What CreateProblemFile does with a file that exists.
enum class EAskMode
{
    Refuse,
    Ask
};

/// Writes a file with one problem, a mate in 2 with the two kings at home. False when the user
/// refuses or the file can't be written.
bool CreateProblemFile(const std::string& strPath, EAskMode nAskMode, const TQuestion& question,
                       const TProblemFileSettings& settings);

/// The name of a file's twin with comments, which ends in "x", or of that without.
std::string GetMirrorFileName(const std::string& strName, bool bCommented);

} // namespace corvina

#endif
