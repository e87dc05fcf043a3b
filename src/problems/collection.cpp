#include "problems/collection.h"

#include "platform/encoding.h"

#include <algorithm>
#include <limits>

namespace corvina
{

bool TProblemCollection::Put(std::unique_ptr<TProblem> pProblem)
{
    const std::int32_t nNumber = pProblem->m_nProblemNumber;
    m_setAllTags.insert(pProblem->m_setTags.begin(), pProblem->m_setTags.end());
    return !m_mapProblems.insert_or_assign(nNumber, std::move(pProblem)).second;
}

std::unique_ptr<TProblem> TProblemCollection::Take(std::int32_t nNumber)
{
    auto node = m_mapProblems.extract(nNumber);
    return node ? std::move(node.mapped()) : nullptr;
}

const TProblem* TProblemCollection::Find(std::int32_t nNumber) const
{
    const auto entry = m_mapProblems.find(nNumber);
    return entry == m_mapProblems.end() ? nullptr : entry->second.get();
}

std::int32_t TProblemCollection::NextNumber() const
{
    if (m_mapProblems.empty())
        return 1;
    const std::int32_t nHighest = m_mapProblems.rbegin()->first;
    if (nHighest < std::numeric_limits<std::int32_t>::max())
        return nHighest + 1;
    std::int32_t nFree = 1;
    while (m_mapProblems.contains(nFree))
        ++nFree;
    return nFree;
}

void TProblemCollection::RebuildAllTags()
{
    m_setAllTags.clear();
    for (const auto& [nNumber, pProblem] : m_mapProblems)
        m_setAllTags.insert(pProblem->m_setTags.begin(), pProblem->m_setTags.end());
}

std::string CheckDuplicatePosition(const TProblemCollection& collection, std::int32_t nNumber)
{
    const TProblem* pProblem = collection.Find(nNumber);
    if (!pProblem)
        return {};
    for (const auto& [nOther, pOther] : collection.m_mapProblems) {
        if (nOther != nNumber && IsSamePosition(*pOther, *pProblem))
            return std::to_string(nOther) + ". #" + std::to_string(pOther->GetStipulation()) + " " +
                   Utf8FromWide(pOther->m_strDescription);
    }
    return {};
}

TPositionIndex::TPositionIndex(const TProblemCollection& collection)
{
    for (const auto& [nNumber, pProblem] : collection.m_mapProblems)
        Add(*pProblem);
}

const std::int32_t* TPositionIndex::Find(const TProblem& problem) const
{
    const auto entry = m_mapNumbers.find(KeyOf(problem));
    return entry == m_mapNumbers.end() ? nullptr : &entry->second;
}

void TPositionIndex::Add(const TProblem& problem)
{
    m_mapNumbers.try_emplace(KeyOf(problem), problem.m_nProblemNumber);
}

TPositionIndex::TKey TPositionIndex::KeyOf(const TProblem& problem)
{
    TKey key;
    std::copy_n(problem.m_pChessboard->m_board, key.size(), key.begin());
    return key;
}

} // namespace corvina
