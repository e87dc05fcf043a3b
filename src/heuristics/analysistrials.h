#ifndef CORVINA_HEURISTICS_ANALYSISTRIALS_H
#define CORVINA_HEURISTICS_ANALYSISTRIALS_H

#include "heuristics/positionanalysis.h"
#include "search/threadcontext.h"

#include <map>
#include <utility>

namespace corvina
{

struct TSolveRequest;
struct TAnalysis;

/// Short searches under a set that is being thought of: is it any good here? A set passes when
/// White has no quick mate under it, so that it isn't needless, and when White has a move that
/// keeps Black within its pattern for a while, so that it isn't broken at once. Each answer is kept
/// for the set and its signature.
class TTrials
{
public:
    explicit TTrials(TAnalysis& analysis) : m_analysis(analysis) {}

    /// nDepth: half-moves; 0 chooses by the position.
    bool TryHeuristics(std::uint32_t nMask, int nDepth = 0);

    /// The edge heuristic with this form, and the heuristic of the extended edge.
    bool TryKingRule(bool bStrict, bool bExceptions);
    bool TryExtEdge();

    const std::vector<TTrial>& All() const { return m_vecTrials; }
    std::uint64_t Positions() const { return m_nPositions; }

private:
    int DefaultDepth(std::uint32_t nMask) const;
    bool Run(int nDepth);

    TAnalysis& m_analysis;
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::pair<bool, int>> m_mapAnswers;
    std::vector<TTrial> m_vecTrials;
    std::uint64_t m_nPositions = 0;
};

} // namespace corvina

#endif
