#include "heuristics/relaxlog.h"

#include "platform/appfolder.h"
#include "search/hooks.h"
#include "search/threadcontext.h"

#include <atomic>
#include <ctime>
#include <fstream>
#include <mutex>

namespace corvina
{
namespace
{

std::atomic<bool> g_bLogRelaxations{false};
std::mutex g_relaxationLogLock;

/// "2024-05-01 09:05:00". The C library's clock isn't safe for threads: call under the lock.
std::string LocalTimeText()
{
    const std::time_t now = std::time(nullptr);
    const std::tm* pTime = std::localtime(&now);
    char aText[64];
    std::snprintf(aText, sizeof aText, "%d-%02d-%02d %02d:%02d:%02d", pTime->tm_year + 1900,
                  pTime->tm_mon + 1, pTime->tm_mday, pTime->tm_hour, pTime->tm_min, pTime->tm_sec);
    return aText;
}

} // namespace

void SetRelaxationLog(bool bOn)
{
    g_bLogRelaxations = bOn;
}

void LogRelaxation(const char* pWhen, const TChessboard& board)
{
    if (!g_bLogRelaxations)
        return;
    const std::lock_guard lock(g_relaxationLogLock);
    std::ofstream(GetAppFolder() / "TryRelaxSpecialHeuristics.log", std::ios::app)
        << LocalTimeText() << ' ' << pWhen << " th=" << ContextOf(board).m_nThreadId << ' '
        << GetHeuristicsText(board, true) << '\n';
}

} // namespace corvina
