#ifndef CORVINA_APP_PROGRESS_H
#define CORVINA_APP_PROGRESS_H

#include "search/progress.h"

#include <atomic>
#include <map>
#include <mutex>
#include <optional>

namespace corvina
{

/// The lines of a run's threads as they were last seen, for a panel or a terminal. The run
/// publishes from its threads, anyone may read.
class TProgress
{
public:
    static constexpr std::uint16_t NO_THREAD = 65535;

    /// Publication begins; the object must outlive the run.
    void Watch(TSolveRequest& request);

    /// Lines of another problem aren't taken; null: of none.
    void Show(const TSolveRequest* pRequest) { m_pShown = pRequest; }

    /// A root thread whose line is to be fresh whenever it is read; NO_THREAD: each is seen twice a
    /// second.
    void PeekAt(std::uint16_t nThread) { m_nThreadToPeek = nThread; }

    /// The line that was published last; none when no thread is at work.
    std::optional<TProgressLine> Latest() const;
    std::optional<TProgressLine> LineOf(std::uint16_t nThread) const;

private:
    void OnPositionAnalysed(const TChessboard* pBoard, const TThreadContext& context);
    bool IsDue(const TThreadContext& context) const;
    void Drop(const TThreadContext& context);

    std::atomic<const TSolveRequest*> m_pShown{nullptr};
    std::atomic<std::uint16_t> m_nThreadToPeek{NO_THREAD};
    mutable std::mutex m_csPanel; ///< guards the lines
    std::map<const TThreadContext*, TProgressLine> m_mapLines;
    const TThreadContext* m_pLatest = nullptr;
};

/// The title of a window while a run goes on, as in "Searching for #12: 3.25%"; nAtLeast > 0: the
/// shortest of a range of lengths that is being tried.
std::string GetProgressTitle(int nMoves, int nAtLeast, bool bBruteForce, float fPercent);

} // namespace corvina

#endif
