#ifndef CORVINA_PROBLEMS_MERGE_H
#define CORVINA_PROBLEMS_MERGE_H

#include "problems/problemfile.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace corvina
{

/// The open file: a collection and where it belongs.
struct TProblemDocument
{
    TProblemCollection m_collection;
    std::string m_strPath;                         ///< empty: it has no file yet
    std::optional<std::int32_t> m_nCurrentProblem; ///< the one that is shown
    bool m_bChanged = false;                       ///< there are changes that the file doesn't have
    bool m_bProblemChanged = false;                ///< some of them in the current problem
};

/// What the commands need of the program around them.
struct TDocumentHost
{
    TQuestion m_question;
    /// Shows a text that asks nothing.
    std::function<void(const std::string& strTitle, const std::string& strText)> m_inform;
    /// Stops the searches for mate; empty when none is running.
    std::function<void()> m_stopSearches;
};

enum class ESaveResult
{
    Saved,
    Refused,  ///< by the user
    NeedsName ///< the document has no file: the user is to choose one
};

/// Writes the document to its file, after a question if the position of the current problem occurs
/// a second time in it. Throws as WriteProblemFile does.
ESaveResult SaveProblemFile(TProblemDocument& document, const TDocumentHost& host,
                            const TProblemFileSettings& settings);

/// What appending has done.
struct TAppendReport
{
    std::vector<std::int32_t> m_vecAppended; ///< the new numbers
    /// Stipulations, n of "#n", of problems whose position is there already with another one: of
    /// the problem that is there and of the one that was left out.
    std::vector<std::pair<int, int>> m_vecOtherStipulation;
};

/// Moves the problems whose position isn't in the collection yet to its end, under new numbers.
TAppendReport AppendProblems(TProblemCollection& collection, TProblemCollection& source);

/// What removing would do.
struct TRemovalReport
{
    std::set<std::int32_t> m_setMarked; ///< the numbers
    bool m_bCurrentKept = false;        ///< the current problem would have been among them
};

/// Marks the problems whose position occurs in the other collection: for each position the first
/// one that has it. The current problem isn't marked.
TRemovalReport MarkProblems(const TProblemCollection& collection, const TProblemCollection& other,
                            std::optional<std::int32_t> nCurrentProblem);

/// The command that merges another file into the document, with its questions: they may end it, and
/// after the report the user keeps the result, which is saved, or rejects it. Returns whether the
/// document was changed. Throws as LoadProblemFile and WriteProblemFile do; then the document's
/// problems are as they were.
bool AppendProblemsFromFile(TProblemDocument& document, const std::string& strPath,
                            const TDocumentHost& host, const TProblemFileSettings& settings);

/// The command that takes the problems of another file out of the document, as
/// AppendProblemsFromFile does.
bool RemoveProblemsOfFile(TProblemDocument& document, const std::string& strPath,
                          const TDocumentHost& host, const TProblemFileSettings& settings);

} // namespace corvina

#endif
