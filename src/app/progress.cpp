#include "app/progress.h"

#include "platform/machine.h"

#include <cstdio>

namespace corvina
{
namespace
{

constexpr std::uint64_t PERIOD = 500;     ///< milliseconds between two lines of a thread
constexpr std::uint64_t PEEK_PERIOD = 20; ///< and of the one that is peeked at

} // namespace

void TProgress::Watch(TSolveRequest& request)
{
    Show(&request);
    request.OnPositionAnalysed = [this](const TChessboard* pBoard, const TThreadContext& context) {
        OnPositionAnalysed(pBoard, context);
    };
}

std::optional<TProgressLine> TProgress::Latest() const
{
    const std::lock_guard guard(m_csPanel);
    const auto it = m_mapLines.find(m_pLatest);
    if (it != m_mapLines.end())
        return it->second;
    return m_mapLines.empty() ? std::nullopt : std::optional(m_mapLines.begin()->second);
}

std::optional<TProgressLine> TProgress::LineOf(std::uint16_t nThread) const
{
    const std::lock_guard guard(m_csPanel);
    for (const auto& [pContext, line] : m_mapLines) {
        if (line.m_nThread == nThread)
            return line;
    }
    return std::nullopt;
}

void TProgress::OnPositionAnalysed(const TChessboard* pBoard, const TThreadContext& context)
{
    if (!pBoard) {
        Drop(context);
        return;
    }
    if (pBoard->m_pRequest != m_pShown || !IsDue(context))
        return;
    ContextOf(*pBoard).m_nLastProgressTick = GetTickMilliseconds();
    TProgressLine line = ReadProgress(*pBoard);
    const std::lock_guard guard(m_csPanel);
    m_mapLines[&context] = std::move(line);
    m_pLatest = &context;
}

bool TProgress::IsDue(const TThreadContext& context) const
{
    const std::uint64_t nSince = GetTickMilliseconds() - context.m_nLastProgressTick;
    const std::uint16_t nPeek = m_nThreadToPeek.load(std::memory_order_relaxed);
    const bool bPeeked = nPeek != NO_THREAD && nPeek == RootThreadOf(context);
    return nSince >= (bPeeked ? PEEK_PERIOD : PERIOD);
}

void TProgress::Drop(const TThreadContext& context)
{
    const std::lock_guard guard(m_csPanel);
    m_mapLines.erase(&context);
}

std::string GetProgressTitle(int nMoves, int nAtLeast, bool bBruteForce, float fPercent)
{
    const char* const pKind = bBruteForce ? " (b)" : "";
    char text[96];
    if (nAtLeast > 0)
        std::snprintf(text, sizeof text, "Searching for #%d%s (of at least #%d) : %0.2f%%", nMoves,
                      pKind, nAtLeast, fPercent);
    else
        std::snprintf(text, sizeof text, "Searching for #%d%s: %0.2f%%", nMoves, pKind, fPercent);
    return text;
}

} // namespace corvina
