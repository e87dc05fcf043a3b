#ifndef CORVINA_SEARCH_PASSBOOK_H
#define CORVINA_SEARCH_PASSBOOK_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace corvina
{

/// What a pass over the first moves has brought.
struct TPassReport
{
    std::string m_strName;        ///< "1", "1b", "1c" ..., "2"
    std::string m_strSet;         ///< its heuristics, "none" without
    std::uint32_t m_nDecided = 0; ///< first moves
    double m_dSeconds = 0;
};

/// The name of a pass with heuristics by the number of relaxations before it, or of the last one.
std::string NameOfPass(bool bWithHeuristics, int nRelaxations);

/// Follows the threads of a run through its passes. A pass is over when no thread is left in it or
/// in one before it. Any thread may call any operation.
class TPassBook
{
public:
    using TOnEnd = std::function<void(const TPassReport& report)>;

    /// All threads begin in pass 0. onEnd, if given, is called for each pass in turn, one at a
    /// time, from the thread that left it last.
    TPassBook(int nThreads, TOnEnd onEnd);

    /// The name and the set of a pass, told by each thread in it; the first one counts. True for
    /// that.
    bool Describe(std::size_t nPass, const std::string& strName, const std::string& strSet);

    /// The thread has come to the end of the pass and waits there for the others.
    void Arrive(std::size_t nPass);
    /// No thread is at work in the pass or in one before it.
    bool HaveAllArrived(std::size_t nPass);

    void GoOn(std::size_t nFrom);  ///< the thread crosses into the next pass
    void Leave(std::size_t nPass); ///< the thread ends
    void CountDecision(std::size_t nPass);

private:
    using TClock = std::chrono::steady_clock;

    struct TPass
    {
        TPassReport m_report;
        TClock::time_point m_start = TClock::now();
        int m_nThreads = 0;
        int m_nArrived = 0; ///< of these, or of those that have gone on
    };

    void ReportEnded();

    std::mutex m_mutex; ///< guards all below
    std::vector<TPass> m_vecPasses;
    std::size_t m_nReported = 0;
    TOnEnd m_onEnd;
};

} // namespace corvina

#endif
