#include "search/passbook.h"

#include <utility>

namespace corvina
{

std::string NameOfPass(bool bWithHeuristics, int nRelaxations)
{
    constexpr int LETTERS = 26;
    if (!bWithHeuristics)
        return "2";
    if (nRelaxations == 0)
        return "1";
    if (nRelaxations < LETTERS)
        return std::string("1") + static_cast<char>('a' + nRelaxations);
    return "1." + std::to_string(nRelaxations + 1);
}

TPassBook::TPassBook(int nThreads, TOnEnd onEnd) : m_vecPasses(1), m_onEnd(std::move(onEnd))
{
    m_vecPasses[0].m_nThreads = nThreads;
}

bool TPassBook::Describe(std::size_t nPass, const std::string& strName, const std::string& strSet)
{
    const std::lock_guard guard(m_mutex);
    TPassReport& report = m_vecPasses[nPass].m_report;
    if (!report.m_strName.empty())
        return false;
    report.m_strName = strName;
    report.m_strSet = strSet;
    return true;
}

void TPassBook::Arrive(std::size_t nPass)
{
    const std::lock_guard guard(m_mutex);
    ++m_vecPasses[nPass].m_nArrived;
}

bool TPassBook::HaveAllArrived(std::size_t nPass)
{
    const std::lock_guard guard(m_mutex);
    for (std::size_t i = 0; i < nPass; ++i) {
        if (m_vecPasses[i].m_nThreads > 0)
            return false;
    }
    return m_vecPasses[nPass].m_nThreads <= m_vecPasses[nPass].m_nArrived;
}

void TPassBook::GoOn(std::size_t nFrom)
{
    const std::lock_guard guard(m_mutex);
    if (m_vecPasses.size() == nFrom + 1)
        m_vecPasses.emplace_back();
    --m_vecPasses[nFrom].m_nThreads;
    ++m_vecPasses[nFrom + 1].m_nThreads;
    ReportEnded();
}

void TPassBook::Leave(std::size_t nPass)
{
    const std::lock_guard guard(m_mutex);
    --m_vecPasses[nPass].m_nThreads;
    ReportEnded();
}

void TPassBook::CountDecision(std::size_t nPass)
{
    const std::lock_guard guard(m_mutex);
    ++m_vecPasses[nPass].m_report.m_nDecided;
}

/// A pass that every thread has only crossed has no name, and no report.
void TPassBook::ReportEnded()
{
    for (; m_nReported < m_vecPasses.size() && m_vecPasses[m_nReported].m_nThreads == 0;
         ++m_nReported) {
        TPass& pass = m_vecPasses[m_nReported];
        pass.m_report.m_dSeconds =
            std::chrono::duration<double>(TClock::now() - pass.m_start).count();
        if (m_onEnd && !pass.m_report.m_strName.empty())
            m_onEnd(pass.m_report);
    }
}

} // namespace corvina
