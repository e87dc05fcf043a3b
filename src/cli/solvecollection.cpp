#include "cli/solvecollection.h"

#include "chess/fen.h"
#include "chess/moveset.h"
#include "cli/commands.h"
#include "cli/fileoptions.h"
#include "cli/knowncomposition.h"
#include "platform/encoding.h"
#include "platform/signals.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>

namespace corvina
{
namespace
{

/// How what was found compares with the answer of the file.
enum class EVerdict
{
    NoAnswer, ///< there is none, or the run was stopped before it could contradict
    Agrees,
    Differs,
    Skipped
};
constexpr int VERDICTS = 4;

/// A run that ends at a number of solutions need not have found all of the answer.
EVerdict Compare(const TSolveRequest& request, const TSolveOutcome& outcome)
{
    if (!(request.m_nRunOptions & RUN_ANSWERKNOWN))
        return EVerdict::NoAnswer;
    const std::vector<TMove>& vecAnswer = request.m_vecExpectedSolutions;
    if (!IsSubset(outcome.m_vecSolutions, vecAnswer))
        return EVerdict::Differs;
    if (outcome.m_bStopped || outcome.m_bDoubtful)
        return EVerdict::NoAnswer;
    return HasEnoughSolutions(request) || IsSubset(vecAnswer, outcome.m_vecSolutions)
               ? EVerdict::Agrees
               : EVerdict::Differs;
}

std::string VerdictText(const TSolveRequest& request, EVerdict verdict)
{
    if (verdict == EVerdict::NoAnswer)
        return "";
    if (verdict == EVerdict::Agrees)
        return ", as in the answer";
    const std::string strAnswer = Joined(MoveTexts(request, request.m_vecExpectedSolutions), ", ");
    return ", but the answer is " + (strAnswer.empty() ? "no solution" : strAnswer);
}

void PrintHead(const TProblem& problem, const TSolveOptions& options)
{
    const std::string strKind = problem.m_nProblemType == PROBLEM_SELFMATE ? "  s#" : "  #";
    const std::string strStipulation = problem.m_nProblemType == PROBLEM_LINE
                                           ? std::string()
                                           : strKind + std::to_string(problem.GetStipulation());
    std::printf("%d. %s%s  %s%s\n", problem.m_nProblemNumber,
                WriteFen(*problem.m_pChessboard, true).c_str(), strStipulation.c_str(),
                Utf8FromWide(problem.m_strDescription).c_str(),
                MarkText(options.m_programOptions, *problem.m_pChessboard, "  * ").c_str());
}

nlohmann::ordered_json JsonHead(const TProblem& problem, const TSolveOptions& options)
{
    nlohmann::ordered_json line;
    line["problem"] = problem.m_nProblemNumber;
    line["fen"] = WriteFen(*problem.m_pChessboard, true);
    if (IsMarked(options.m_programOptions, *problem.m_pChessboard))
        line["knownComposition"] = true;
    return line;
}

void PrintResult(const TSolveRequest& request, const TSolvedTask& outcome, EVerdict verdict,
                 const std::vector<TPassReport>& vecPasses,
                 const std::vector<TVerifiedKey>& vecKeys, const TSolveOptions& options)
{
    if (!options.m_bJson) {
        PrintHead(request, options);
        PrintSolutions(request, outcome);
        std::printf("%s, %.3f s, %llu positions\n", VerdictText(request, verdict).c_str(),
                    outcome.m_elapsed.count(),
                    static_cast<unsigned long long>(request.m_nPositions));
        PrintNotes(request, outcome, options);
        PrintVerification(vecKeys);
        return;
    }
    nlohmann::ordered_json line = JsonHead(request, options);
    line["mate"] = request.GetStipulation();
    AddResultTo(line, request, outcome, vecPasses, vecKeys);
    if (verdict != EVerdict::NoAnswer)
        line["asAnswer"] = verdict == EVerdict::Agrees;
    std::printf("%s\n", line.dump().c_str());
}

void PrintSkipped(const TProblem& problem, const std::string& strReason,
                  const TSolveOptions& options)
{
    if (!options.m_bJson) {
        PrintHead(problem, options);
        std::printf("  skipped: %s\n", strReason.c_str());
        return;
    }
    nlohmann::ordered_json line = JsonHead(problem, options);
    line["result"] = "skipped";
    line["reason"] = strReason;
    std::printf("%s\n", line.dump().c_str());
}

/// Of two exit codes the one that the user should see: a wrong key outweighs bad input, bad input a
/// stop, a stop a solution that is missing.
int WorseExitCode(int a, int b)
{
    constexpr int aRank[] = {0, 1, 3, 2, 4};
    return aRank[a] >= aRank[b] ? a : b;
}

/// The runs over the problems of a file.
class CCollectionRun
{
public:
    CCollectionRun(const TSolveOptions& options, bool bChosen)
        : m_options(options), m_bChosen(bChosen)
    {
    }

    void Solve(TProblem& problem)
    {
        TSolveRequest request;
        static_cast<TProblem&>(request) = std::move(problem);
        try {
            CheckLength(request);
            std::vector<TPassReport> vecPasses;
            const TSolvedTask outcome = SolveWithOptions(request, m_options, vecPasses);
            const EVerdict verdict = Compare(request, outcome);
            const auto vecKeys = VerifySolutions(request, outcome, m_options);
            PrintResult(request, outcome, verdict, vecPasses, vecKeys, m_options);
            Count(verdict, WithVerification(ExitCode(outcome, verdict), vecKeys));
        }
        catch (const ChessException& error) {
            PrintSkipped(request, error.what(), m_options);
            // A kind that can't be solved is a fault only if the user has asked for the problem.
            const bool bFault = m_bChosen || request.m_nProblemType == PROBLEM_DIRECTMATE;
            Count(EVerdict::Skipped, bFault ? EXIT_BAD_INPUT : EXIT_SOLVED);
        }
        std::fflush(stdout);
    }

    /// Prints the counts and returns the exit code.
    int Finish() const
    {
        if (!m_options.m_bJson)
            std::printf("%d as in the answer, %d not, %d without comparison, %d skipped\n",
                        CountOf(EVerdict::Agrees), CountOf(EVerdict::Differs),
                        CountOf(EVerdict::NoAnswer), CountOf(EVerdict::Skipped));
        return m_nExitCode;
    }

private:
    static void CheckLength(const TProblem& problem)
    {
        if (problem.m_nProblemType == PROBLEM_DIRECTMATE && problem.GetStipulation() > MAX_MATE)
            throw ChessException("The longest stipulation is #" + std::to_string(MAX_MATE) + ".");
    }

    static int ExitCode(const TSolveOutcome& outcome, EVerdict verdict)
    {
        if (verdict == EVerdict::Differs)
            return EXIT_NO_SOLUTION;
        return verdict == EVerdict::Agrees && !outcome.m_bStopped ? EXIT_SOLVED
                                                                  : ExitCodeOf(outcome);
    }

    void Count(EVerdict verdict, int nExitCode)
    {
        ++m_anCount[static_cast<int>(verdict)];
        m_nExitCode = WorseExitCode(m_nExitCode, nExitCode);
    }

    int CountOf(EVerdict verdict) const { return m_anCount[static_cast<int>(verdict)]; }

    const TSolveOptions& m_options;
    bool m_bChosen; ///< the user has named the problems
    int m_anCount[VERDICTS] = {};
    int m_nExitCode = EXIT_SOLVED;
};

bool IsWanted(std::int32_t nNumber, const std::vector<std::int32_t>& vecNumbers)
{
    return vecNumbers.empty() ||
           std::find(vecNumbers.begin(), vecNumbers.end(), nNumber) != vecNumbers.end();
}

} // namespace

int SolveCollection(const std::string& strPath, const std::vector<std::int32_t>& vecNumbers,
                    const TSolveOptions& options, const TProblemFileSettings& settings)
{
    TProblemCollection collection;
    int nExitCode = EXIT_SOLVED;
    try {
        LoadProblemFile(strPath, collection, false, settings);
    }
    catch (const TProblemFileException& error) {
        // What comes in front of the fault is solved all the same.
        ReportError(strPath, error);
        nExitCode = EXIT_BAD_INPUT;
    }
    for (const std::int32_t nNumber : vecNumbers) {
        if (!collection.Find(nNumber))
            throw ChessException(strPath + " has no problem " + std::to_string(nNumber) + ".");
    }
    CCollectionRun run(options, !vecNumbers.empty());
    for (const auto& [nNumber, pProblem] : collection.m_mapProblems) {
        if (IsWanted(nNumber, vecNumbers) && !WasInterrupted())
            run.Solve(*pProblem);
    }
    return WorseExitCode(nExitCode, run.Finish());
}

} // namespace corvina
