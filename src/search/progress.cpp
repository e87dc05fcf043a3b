#include "search/progress.h"

#include "chess/notation.h"
#include "search/guides/scout.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace corvina
{
namespace
{

/// Half-moves that are shown of a task of so many.
std::size_t MaxShownMoves(int nPlies)
{
    if (nPlies < 41)
        return 24;
    if (nPlies < 81)
        return 48;
    return nPlies < 141 ? 144 : 288;
}

std::uint32_t ShownMask(const TChessboard& board)
{
    const bool bShortMate = ContextOf(board).m_nQuickerMateNesting != 0;
    if (!bShortMate || !board.m_pParent || !board.m_pParent->m_pParent)
        return board.m_nHeuristics;
    return board.m_pParent->m_pParent->m_nHeuristics;
}

std::string Format(const char* pFormat, auto... arguments)
{
    char text[256];
    std::snprintf(text, sizeof text, pFormat, arguments...);
    return text;
}

std::string SetAndRegister(const TProgressLine& line)
{
    std::string strText;
    // The letter of a pass that has been relaxed, as in "1b".
    if (line.m_nPass == 1 && line.m_nPassIndex > 0)
        strText += NameOfPass(true, line.m_nPassIndex).substr(1);
    if (line.m_nHeuristics)
        strText += Format(", SH:%xh", line.m_nHeuristics);
    if (line.m_nRegistered)
        strText += Format(",TR:%u(%u)", line.m_nRegistered, line.m_nRegistered - line.m_nDoubtful);
    return strText;
}

} // namespace

std::uint16_t RootThreadOf(const TThreadContext& context)
{
    const TThreadContext* p = &context;
    while (p->m_pOwner)
        p = p->m_pOwner;
    return p->m_nThreadId;
}

TProgressLine ReadProgress(const TChessboard& board)
{
    const TThreadContext& context = ContextOf(board);
    const TSolveRequest& request = *board.m_pRequest;
    TProgressLine line;
    line.m_nThread = RootThreadOf(context);
    line.m_nPlies = board.m_nInitialMoves;
    for (const TChessboard* p = &board; p->m_pParent; p = p->m_pParent) {
        const TChessboard& parent = *p->m_pParent;
        line.m_vecMoves.push_back({PrintMove(p->m_LastMove, parent),
                                   context.m_anMoveIndex[parent.m_nMoves],
                                   context.m_anMoveCount[parent.m_nMoves]});
    }
    std::reverse(line.m_vecMoves.begin(), line.m_vecMoves.end());
    line.m_nHeuristics = ShownMask(board);
    line.m_nPass = board.m_nPass;
    line.m_nPassIndex = static_cast<std::uint8_t>(context.m_nPassIndex);
    line.m_nRegistered = request.m_TemporaryRegister.GetElementsCount();
    line.m_nDoubtful = request.m_TemporaryRegister.GetDoubtfulCount();
    line.m_fPercent = std::round(request.m_fPercent * 100) / 100;
    line.m_nPositions = request.m_nPositions;
    return line;
}

std::string GetProgressLine(const TProgressLine& line, int nColumns)
{
    const std::string strHead = Format("Pass %d", line.m_nPass) + SetAndRegister(line) + ", ";
    const std::string strTail =
        Format("%0.1f%% %llu", line.m_fPercent, static_cast<unsigned long long>(line.m_nPositions));
    const std::size_t nRoom = nColumns > 0 ? static_cast<std::size_t>(nColumns) : SIZE_MAX;
    const std::size_t nMoves = std::min(line.m_vecMoves.size(), MaxShownMoves(line.m_nPlies));
    std::string strMoves;
    for (std::size_t i = 0; i < nMoves; ++i) {
        std::string strMove = i % 2 == 0 ? Format("%d. ", static_cast<int>(i / 2 + 1)) : "";
        strMove += line.m_vecMoves[i].m_strMove + ", ";
        if (strHead.size() + strMoves.size() + strMove.size() + strTail.size() > nRoom)
            break;
        strMoves += strMove;
    }
    return strHead + strMoves + strTail + "             \r";
}

void PublishPositions(TSolveRequest& request, TThreadContext& context, std::uint64_t nStep)
{
    const std::uint64_t nPositions =
        context.m_nPositions + (context.m_pScout ? context.m_pScout->Positions() : 0);
    if (nPositions < context.m_nPublishedPositions + nStep)
        return;
    request.m_nPositions.fetch_add(nPositions - context.m_nPublishedPositions,
                                   std::memory_order_relaxed);
    context.m_nPublishedPositions = nPositions;
}

void UpdatePercent(TSolveRequest& request)
{
    if (request.m_bRegisterConfirm)
        return;
    const std::uint64_t nDone = ++request.m_nFirstMovesDone;
    const double dPlanned = static_cast<double>(request.m_nFirstMovesTotal) *
                            static_cast<double>(request.m_nPlannedPasses);
    if (dPlanned > 0)
        request.m_fPercent = static_cast<float>(static_cast<double>(nDone) * 100 / dPlanned);
}

} // namespace corvina
