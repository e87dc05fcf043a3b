#include "heuristics/forcedmate.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"
#include "heuristics/relaxpredicates.h"
#include "heuristics/relaxsteps.h"
#include "search/solverequest.h"

namespace corvina
{
namespace
{

using TMilliseconds = std::chrono::milliseconds;

/// A pass that ended this soon after the start of the run is worth another one with a wider level.
constexpr TMilliseconds TIME_LIMIT{1000};
/// Runs that end this close to the limit may go one way today and the other way tomorrow.
constexpr TMilliseconds TIME_MARGIN{200};

void NoteNearLimit(const TSolveRequest& request, TMilliseconds calcTime, bool bAccepted)
{
    if (std::chrono::abs(calcTime - TIME_LIMIT) > TIME_MARGIN || !request.OnLogLine)
        return;
    request.OnLogLine(
        "Time dependent relaxation near the limit: calcTime=" + std::to_string(calcTime.count()) +
        " msec.; limit=" + std::to_string(TIME_LIMIT.count()) + " msec. " +
        (bAccepted ? "(additional relaxation accepted)" : "(additional relaxation refused)"));
}

/// All threads that end the same pass get the same answer, that of the first one.
bool IsAcceptedByTime(TRelaxation& r)
{
    if (r.m_bPlan)
        return true;
    if (!r.m_pRequest)
        return false;
    TSolveRequest& request = *r.m_pRequest;
    const auto end = request.m_passEndTick.NoteEnd(r.m_context.m_nPassIndex, request.Now());
    const auto calcTime = std::chrono::duration_cast<TMilliseconds>(end - request.m_tStart);
    const bool bAccepted = calcTime < TIME_LIMIT;
    NoteNearLimit(request, calcTime, bAccepted);
    return bAccepted;
}

int EndPreliminaryRun(TRelaxation& r)
{
    r.m_context.m_bFfmPreliminary = false;
    if (r.m_context.m_savedFfmMask) // 0: the run has begun without a change of the set
        r.m_board.m_nHeuristics = r.m_context.m_savedFfmMask;
    return r.Ended();
}

/// A lone queen against a king without figures: the extra moves of level #1+ are of no use to her.
bool IsLoneQueenTask(const TChessboard& b)
{
    return b.m_nWhiteQueens == 1 && WhiteFigures(b) == 1 && BlackFigures(b) == 0 &&
           !WhitePawnCanPromote(b);
}

TStepResult RaiseLevel(TRelaxation& r)
{
    THeuristicsParams& p = r.m_context;
    const int nLimit = p.m_bFfmCustom ? p.m_nFfmCustomRelaxations : p.m_nFfmRelaxations;
    if (p.m_nFfmLevel - p.m_nFfmFirstLevel >= nLimit || p.m_nFfmLevel >= FFM_THREAT_5)
        return std::nullopt;
    ++p.m_nFfmLevel;
    if (p.m_nFfmLevel == FFM_THREAT_1_PLUS && IsLoneQueenTask(r.m_board))
        p.m_nFfmLevel = FFM_THREAT_2;
    return r.Ended();
}

TStepResult AddCapturesToThreats(TRelaxation& r)
{
    constexpr int SHORT_TASK = 21;
    const TChessboard& b = r.m_board;
    const bool bQueenAmongMany =
        (b.m_nPositionFlags & TChessboard::POSITION_MANYFIGURES) && b.m_nBlackQueens > 0;
    if (r.m_context.m_nFfmLevel != FFM_THREAT_2 || b.m_nWhiteQueens > 0 ||
        (!bQueenAmongMany && b.m_nInitialMoves > SHORT_TASK))
        return std::nullopt;
    r.m_context.m_nFfmLevel = FFM_THREAT_2_PLUS;
    return r.Ended();
}

/// The other heuristics have cut too much: another cycle with them near the end only.
TStepResult TryWithoutOthers(TRelaxation& r)
{
    if (r.m_context.m_nFfmWithOther <= 0)
        return std::nullopt;
    const TChessboard& b = r.m_board;
    const int nCode = SuggestFfmSettings(b, WhiteMaterial(b), BlackMaterial(b), FreeKingSquares(b));
    if (nCode == 0)
        return std::nullopt;
    ApplyFfmSettings(b, nCode, r.m_context);
    return r.Ended();
}

/// A wider level would not help these positions.
bool IsCycleOver(const TChessboard& b)
{
    const int nFigures = WhiteFigures(b);
    if (nFigures <= 2 && !(nFigures == 2 && b.m_nWhiteQueens > 0))
        return true;
    if (nFigures >= 4 && IsWhiteKingShutIn(b))
        return true;
    return IsWhiteKingInDanger(b) || (b.m_nWhiteQueens > 0 && nFigures >= 3 && HasQueenContact(b));
}

/// After short passes: one level more, without stopping at a level that only adds moves to the one
/// below it.
TStepResult RaiseLevelInTime(TRelaxation& r)
{
    std::uint8_t& nLevel = r.m_context.m_nFfmLevel;
    const bool bQueenChecks = nLevel == FFM_CHECK_ONLY && r.m_board.m_nWhiteQueens > 0;
    if (!IsAcceptedByTime(r) || nLevel >= FFM_THREAT_2_PLUS || bQueenChecks)
        return std::nullopt;
    ++nLevel;
    if (nLevel == FFM_THREAT_1 || nLevel == FFM_THREAT_2)
        ++nLevel;
    return r.Ended() == NOTHING_LEFT ? NOTHING_LEFT : RELAXED_BY_TIME;
}

/// The cycle runs a second time without the other heuristics, or it is over.
int EndCycle(TRelaxation& r)
{
    if (!r.m_context.m_bFfmCustom)
        return r.Drop(SH_FINDFORCEDMATE);
    r.m_context.m_bFfmCustom = false;
    r.m_context.m_nFfmLevel = r.m_context.m_nFfmFirstLevel;
    return r.Ended();
}

} // namespace

int RelaxForcedMate(TRelaxation& r)
{
    if (r.m_context.m_bFfmPreliminary)
        return EndPreliminaryRun(r);
    for (const auto step : {RaiseLevel, AddCapturesToThreats, TryWithoutOthers}) {
        if (const TStepResult result = step(r))
            return *result;
    }
    if (!IsCycleOver(r.m_board)) {
        if (const TStepResult result = RaiseLevelInTime(r))
            return *result;
    }
    return EndCycle(r);
}

} // namespace corvina
