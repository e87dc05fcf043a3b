#include "search/threats.h"

#include "search/nodes.h"
#include "search/rootsetup.h"

#include <algorithm>
#include <utility>

namespace corvina
{
namespace
{

constexpr int MAX_THREAT_PLIES = 9;

/// The request as the search behind a passed move needs it, for the life of the object.
class TThreatSettings
{
public:
    TThreatSettings(TSolveRequest& request, int nPlies)
        : m_request(request), m_nShortestRepetition(request.m_nShortestRepetitionDepth),
          m_onPositionAnalysed(std::exchange(request.OnPositionAnalysed, {}))
    {
        // What stood on the board before the pass is no repetition.
        request.m_nShortestRepetitionDepth = static_cast<std::uint16_t>(nPlies);
    }
    ~TThreatSettings()
    {
        m_request.m_nShortestRepetitionDepth = m_nShortestRepetition;
        m_request.OnPositionAnalysed = std::move(m_onPositionAnalysed);
    }
    TThreatSettings(const TThreatSettings&) = delete;
    TThreatSettings& operator=(const TThreatSettings&) = delete;

private:
    TSolveRequest& m_request;
    const std::uint16_t m_nShortestRepetition;
    decltype(TSolveRequest::OnPositionAnalysed) m_onPositionAnalysed;
};

} // namespace

std::vector<TMove> GetThreats(TSolveRequest& request, const TMove& key, int nPlies)
{
    const TThreatSettings settings(request, nPlies);
    TChessboard root = *request.m_pChessboard;
    TThreadContext context(root.m_nInitialMoves);
    PutOnThread(root, context);
    DropHeuristics(root);
    root.m_moveFilter = 0;
    TMove move = key;
    TChessboard& child = context.MakeChild(root);
    if (!child.MakeWhiteMove(&move) || child.m_blackChecker != NO_CHECK)
        return {};
    TChessboard& passed = context.MakeChild(child);
    TMove pass{child.BlackKing(), child.BlackKing(), 0, 0};
    passed.MakeBlackUserMove(&pass);
    passed.m_nMoves = static_cast<std::uint16_t>(nPlies);
    std::vector<TMove> vecThreats;
    TMoveList moves;
    const int nMoves = passed.GenerateWhiteMoves(moves.data());
    for (int i = 0; i < nMoves && !request.IsStoppedForAll(); ++i) {
        TChessboard& threat = context.MakeChild(passed);
        if (threat.MakeWhiteMove(&moves[i]) &&
            SearchBlack<NODE_DEFENCE_DEEPER>(threat) == RESULT_MATE)
            vecThreats.push_back(moves[i]);
    }
    return vecThreats;
}

TThreats FindThreats(TSolveRequest& request, const TMove& key)
{
    TThreats threats;
    const int nLeft = request.m_pChessboard->m_nMoves - 2;
    for (int k = 1; k <= std::min(nLeft, MAX_THREAT_PLIES); k += 2) {
        threats = {GetThreats(request, key, k), k};
        // Behind a stop some may be missing.
        if (request.IsStoppedForAll())
            break;
        if (!threats.m_vecMoves.empty())
            return threats;
    }
    return {};
}

} // namespace corvina
