#include "platform/files.h"
#include "problems/problemfile.h"
#include "problems/problemwriter.h"

#include <chrono>
#include <cstdio>
#include <filesystem>

namespace
{

using namespace corvina;

constexpr int PROBLEMS = 20000;

/// Problems as a rich collection has them.
std::string MakeText()
{
    std::string strText = "UTF-8\n";
    for (int i = 1; i <= PROBLEMS; ++i)
        strText += std::to_string(i) +
                   " #12 NoMirror AllSolutions THREADS 4\n"
                   "//#TAGS\n//#zugzwang\n//#wąż morski\n"
                   "//!VARIANTS\n"
                   "//!{Main variant} Qd1-h5 Ke8-d7 Qh5-f7[cichy ruch] Kd7-c6 Qf7-e6 Kc6-b5 "
                   "Qe6-d5 Kb5-a4 Qd5-c4 Ka4-a3 Qc4-b3\n"
                   "//!{another defence} Qd1-h5 Ke8-f8 Qh5-e5 Kf8-g8 Qe5-e8\n"
                   "//!ENDVARIANTS\n"
                   "//@SortIndications: 1.Qd1-h5; 2.Qf7; ~3.K>e2\n"
                   "{\n\tDescription: Corvina, 2026; задача на дванадцять ходів\n"
                   "\tFEN: r3k2r/pppq1ppp/2np1n2/4p3/4P3/2NP1N2/PPP2PPP/R1BQK2R\n"
                   "\tAnswer: Qd1-e2, 0-0\n}\n";
    return strText;
}

template <class F>
double Seconds(F operation)
{
    const auto start = std::chrono::steady_clock::now();
    operation();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main()
{
    const std::string strPath =
        (std::filesystem::temp_directory_path() / "corvina-bench-collection.cp").string();
    TFileReplacement(strPath, MakeText()).Commit();
    const TProblemFileSettings settings{.m_pWarnings = nullptr, .m_pProgress = nullptr};
    TProblemCollection collection;
    const double dRead = Seconds([&] { LoadProblemFile(strPath, collection, false, settings); });
    const double dWrite = Seconds([&] { WriteProblemFile(strPath, collection, settings); });
    std::printf("%zu problems, %ju bytes: read in %.3f s, written in %.3f s\n",
                collection.m_mapProblems.size(),
                static_cast<std::uintmax_t>(std::filesystem::file_size(strPath)), dRead, dWrite);
    std::filesystem::remove(strPath);
    std::filesystem::remove(strPath + ".BAK");
    return collection.m_mapProblems.size() == PROBLEMS ? 0 : 1;
}
