#include "problems/merge.h"

namespace corvina
{
namespace
{

constexpr const char* QUESTION_TITLE = "Question";

bool HasSameStipulation(const TProblem& a, const TProblem& b)
{
    return a.m_nProblemType == b.m_nProblemType && a.m_nRequestedMoves == b.m_nRequestedMoves;
}

void Write(TProblemDocument& document, const TProblemFileSettings& settings)
{
    WriteProblemFile(document.m_strPath, document.m_collection, settings);
    document.m_bChanged = document.m_bProblemChanged = false;
}

/// Ends what is under way before problems come and go; false when the user doesn't want that.
bool PrepareMerge(TProblemDocument& document, const TDocumentHost& host,
                  const TProblemFileSettings& settings)
{
    if (host.m_stopSearches) {
        if (!host.m_question(QUESTION_TITLE, "All pending threads of mate search will be "
                                             "stopped.\nDo you want to continue?"))
            return false;
        host.m_stopSearches();
    }
    if (document.m_bProblemChanged &&
        host.m_question(QUESTION_TITLE, "There are changes in the current problem.\nDo you want to "
                                        "save them?"))
        return SaveProblemFile(document, host, settings) == ESaveResult::Saved;
    document.m_bProblemChanged = false;
    return true;
}

/// Shows the report; with changes it asks whether to keep them.
bool WantsChanges(const TDocumentHost& host, const std::string& strReport, bool bChanges)
{
    if (bChanges)
        return host.m_question(QUESTION_TITLE, strReport + "\n\nDo you want to save changes? "
                                                           "(select 'No' to reject them)");
    host.m_inform("Information", strReport);
    return false;
}

std::string AppendText(const TAppendReport& report)
{
    std::string strText = "Appended problems: " + std::to_string(report.m_vecAppended.size());
    if (report.m_vecOtherStipulation.empty())
        return strText;
    strText += "\nMoreover some problems differ only by stipulation (#n): \n";
    for (const auto& [nHere, nThere] : report.m_vecOtherStipulation)
        strText += "#" + std::to_string(nHere) + " vs. #" + std::to_string(nThere) + "\n";
    return strText;
}

std::string RemovalText(const TRemovalReport& report)
{
    return "Removed problems: " + std::to_string(report.m_setMarked.size()) +
           (report.m_bCurrentKept ? "\nWarning: the current problem cannot be removed." : "");
}

/// Takes problems out of a collection as long as it lives, unless they are to stay out.
class TTakenOut
{
public:
    template <class TNumbers>
    TTakenOut(TProblemCollection& collection, const TNumbers& numbers) : m_collection(collection)
    {
        for (const std::int32_t nNumber : numbers)
            m_vecTaken.push_back(collection.Take(nNumber));
    }
    ~TTakenOut()
    {
        for (auto& pProblem : m_vecTaken)
            m_collection.Put(std::move(pProblem));
        m_collection.RebuildAllTags();
    }
    TTakenOut(const TTakenOut&) = delete;
    TTakenOut& operator=(const TTakenOut&) = delete;

    void StayOut() { m_vecTaken.clear(); }

private:
    TProblemCollection& m_collection;
    std::vector<std::unique_ptr<TProblem>> m_vecTaken;
};

void TakeOut(TProblemCollection& collection, const std::vector<std::int32_t>& vecNumbers)
{
    TTakenOut(collection, vecNumbers).StayOut();
}

} // namespace

ESaveResult SaveProblemFile(TProblemDocument& document, const TDocumentHost& host,
                            const TProblemFileSettings& settings)
{
    const std::string strDuplicate =
        document.m_nCurrentProblem
            ? CheckDuplicatePosition(document.m_collection, *document.m_nCurrentProblem)
            : std::string();
    if (!strDuplicate.empty() &&
        !host.m_question(QUESTION_TITLE,
                         "The same position already exists in this file as the following "
                         "problem:\n" +
                             strDuplicate + "\n\nDo you want to save changes anyway?"))
        return ESaveResult::Refused;
    if (document.m_strPath.empty())
        return ESaveResult::NeedsName;
    Write(document, settings);
    return ESaveResult::Saved;
}

TAppendReport AppendProblems(TProblemCollection& collection, TProblemCollection& source)
{
    TAppendReport report;
    TPositionIndex index(collection);
    while (!source.m_mapProblems.empty()) {
        std::unique_ptr<TProblem> pProblem = source.Take(source.m_mapProblems.begin()->first);
        if (const std::int32_t* pNumber = index.Find(*pProblem)) {
            const TProblem& there = *collection.Find(*pNumber);
            if (!HasSameStipulation(there, *pProblem))
                report.m_vecOtherStipulation.emplace_back(there.GetStipulation(),
                                                          pProblem->GetStipulation());
            continue;
        }
        pProblem->m_nProblemNumber = collection.NextNumber();
        report.m_vecAppended.push_back(pProblem->m_nProblemNumber);
        index.Add(*pProblem);
        collection.Put(std::move(pProblem));
    }
    return report;
}

TRemovalReport MarkProblems(const TProblemCollection& collection, const TProblemCollection& other,
                            std::optional<std::int32_t> nCurrentProblem)
{
    TRemovalReport report;
    const TPositionIndex index(collection);
    for (const auto& [nOther, pOther] : other.m_mapProblems) {
        const std::int32_t* pNumber = index.Find(*pOther);
        if (!pNumber)
            continue;
        if (nCurrentProblem == *pNumber)
            report.m_bCurrentKept = true;
        else
            report.m_setMarked.insert(*pNumber);
    }
    return report;
}

bool AppendProblemsFromFile(TProblemDocument& document, const std::string& strPath,
                            const TDocumentHost& host, const TProblemFileSettings& settings)
{
    if (!PrepareMerge(document, host, settings))
        return false;
    TProblemCollection source;
    LoadProblemFile(strPath, source, false, settings);
    const TAppendReport report = AppendProblems(document.m_collection, source);
    try {
        if (WantsChanges(host, AppendText(report), !report.m_vecAppended.empty())) {
            Write(document, settings);
            return true;
        }
    }
    catch (...) {
        TakeOut(document.m_collection, report.m_vecAppended);
        throw;
    }
    TakeOut(document.m_collection, report.m_vecAppended);
    return false;
}

bool RemoveProblemsOfFile(TProblemDocument& document, const std::string& strPath,
                          const TDocumentHost& host, const TProblemFileSettings& settings)
{
    if (!PrepareMerge(document, host, settings))
        return false;
    TProblemCollection other;
    LoadProblemFile(strPath, other, false, settings);
    const TRemovalReport report =
        MarkProblems(document.m_collection, other, document.m_nCurrentProblem);
    if (!WantsChanges(host, RemovalText(report), !report.m_setMarked.empty()))
        return false;
    TTakenOut takenOut(document.m_collection, report.m_setMarked);
    Write(document, settings);
    takenOut.StayOut();
    return true;
}

} // namespace corvina
