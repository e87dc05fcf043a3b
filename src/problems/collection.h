#ifndef CORVINA_PROBLEMS_COLLECTION_H
#define CORVINA_PROBLEMS_COLLECTION_H

#include "problems/problem.h"

#include <array>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace corvina
{

/// The problems of a file by their numbers, and the tags that occur in them.
class TProblemCollection
{
public:
    using TMap = std::map<std::int32_t, std::unique_ptr<TProblem>>;

    /// Puts a problem under its number, in the place of another one; true when there was another.
    bool Put(std::unique_ptr<TProblem> pProblem);

    /// Takes a problem out; null when there is none of the number.
    std::unique_ptr<TProblem> Take(std::int32_t nNumber);

    /// Null when there is none of the number.
    const TProblem* Find(std::int32_t nNumber) const;

    /// One above the highest number, 1 for the first problem. Where that is beyond the range, the
    /// lowest number that is free.
    std::int32_t NextNumber() const;

    /// Makes m_setAllTags anew from the tags of the problems.
    void RebuildAllTags();

    TMap m_mapProblems;
    std::set<std::wstring> m_setAllTags;
    std::mutex m_lock; ///< held by the readers while they put problems in
};

/// Looks for the first other problem with the figures of problem nNumber on the same squares.
/// Returns "12. #3 " with its description (UTF-8), or "" when there is none.
std::string CheckDuplicatePosition(const TProblemCollection& collection, std::int32_t nNumber);

/// Have two problems the same figures on the same squares?
inline bool IsSamePosition(const TProblem& a, const TProblem& b)
{
    return std::memcmp(a.m_pChessboard->m_board, b.m_pChessboard->m_board,
                       sizeof a.m_pChessboard->m_board) == 0;
}

/// The problems of a collection by their position, for many look-ups.
class TPositionIndex
{
public:
    explicit TPositionIndex(const TProblemCollection& collection);

    /// The lowest number of a problem with the position of this one; none gives null.
    const std::int32_t* Find(const TProblem& problem) const;

    /// Where there is a problem with this position it stays the first one.
    void Add(const TProblem& problem);

private:
    using TKey = std::array<std::uint8_t, 64>;
    static TKey KeyOf(const TProblem& problem);

    std::map<TKey, std::int32_t> m_mapNumbers;
};

} // namespace corvina

#endif
