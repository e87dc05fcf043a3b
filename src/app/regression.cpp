#include "app/regression.h"

#include "app/boardcheck.h"
#include "app/mirror.h"
#include "chess/moveset.h"
#include "chess/notation.h"
#include "platform/signals.h"
#include "platform/watchdog.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <thread>

namespace corvina
{

std::atomic<bool> g_bRegressionTestRunning{false};

namespace
{

/// More men than this no tablebase has.
constexpr int MAX_TABLEBASE_MEN = 7;

enum class EVerdict
{
    Ok,
    Failed,
    Unchecked
};

int CountMen(const TChessboard& board)
{
    return static_cast<int>(std::count_if(std::begin(board.m_board), std::end(board.m_board),
                                          [](TFigure figure) { return IsFigure(figure); }));
}

bool IsSameSet(const std::vector<TMove>& a, const std::vector<TMove>& b)
{
    return IsSubset(a, b) && IsSubset(b, a);
}

std::string JoinedMoves(const std::vector<TMove>& vecMoves, const TChessboard& board)
{
    std::string strText;
    for (const TMove& move : vecMoves)
        strText += (strText.empty() ? "" : ", ") + PrintMove(move, board);
    return strText.empty() ? "No solution" : strText;
}

std::string NumberedMoves(const std::vector<TMove>& vecMoves, const TChessboard& board)
{
    std::string strText;
    for (std::size_t i = 0; i < vecMoves.size(); ++i)
        strText += std::to_string(i + 1) + ". " + PrintMove(vecMoves[i], board) + "\n";
    return strText;
}

/// A limit of time for everything that is done with one position.
class TDeadline
{
public:
    explicit TDeadline(const TRegressionSettings& settings)
    {
        if (settings.m_bQuick)
            m_end = TWatchdog::TClock::now() + std::chrono::seconds(settings.m_nTimeLimitSec);
    }

    std::optional<TWatchdog::TClock::duration> Left() const
    {
        if (!m_end)
            return std::nullopt;
        return std::max(*m_end - TWatchdog::TClock::now(), TWatchdog::TClock::duration::zero());
    }

private:
    std::optional<TWatchdog::TClock::time_point> m_end;
};

bool IsRunning()
{
    return g_bRegressionTestRunning && !WasInterrupted();
}

/// A problem as its mirror image, as long as the object lives.
class TMirrorHold
{
public:
    explicit TMirrorHold(TSolveRequest& request)
        : m_request(request), m_strDescription(request.m_strDescription)
    {
        MirrorProblem(m_request);
        m_request.m_bMirroredRun = true;
        m_request.m_strDescription = L"Mirror: " + m_strDescription;
    }
    ~TMirrorHold()
    {
        m_request.m_bMirroredRun = false;
        m_request.m_strDescription = m_strDescription;
        MirrorProblem(m_request);
    }
    TMirrorHold(const TMirrorHold&) = delete;
    TMirrorHold& operator=(const TMirrorHold&) = delete;

private:
    TSolveRequest& m_request;
    const std::wstring m_strDescription;
};

class CRegressionTest
{
public:
    explicit CRegressionTest(const TRegressionSettings& settings) : m_settings(settings) {}

    TRegressionCounts Run(TProblemCollection& collection)
    {
        g_bRegressionTestRunning = true;
        BackupRegressionLog(m_settings.m_logPath);
        for (auto& [nNumber, pProblem] : collection.m_mapProblems) {
            if (!IsRunning())
                break;
            RunInRequest(*pProblem);
        }
        g_bRegressionTestRunning = false;
        return m_counts;
    }

private:
    /// A run needs a request of its own; what the test changes in the problem goes back with it.
    void RunInRequest(TProblem& problem)
    {
        TSolveRequest request;
        TProblem& document = request;
        document = std::move(problem);
        RunProblem(request);
        request.m_pChessboard->m_pRequest = nullptr;
        problem = std::move(document);
    }

    void RunProblem(TSolveRequest& request)
    {
        request.m_pCurrentBoard = request.m_pChessboard.get();
        request.OnMessage = m_settings.m_onMessage;
        bool bSolved = false;
        if (HasRequiredData(request)) {
            if (!(request.m_nRunOptions & RUN_MIRRORONLY))
                bSolved = RunRound(request, false);
            const bool bMirror = m_settings.m_bMirrors && !(request.m_nRunOptions & RUN_NOMIRROR) &&
                                 !IsCastlingPossible(*request.m_pChessboard);
            if (bMirror && IsRunning() && request.m_nProblemType == PROBLEM_DIRECTMATE)
                bSolved = RunRound(request, true);
        }
        if (!bSolved && IsRunning())
            ++m_counts.m_nSkipped;
    }

    // What must be at hand

    bool HasRequiredData(TSolveRequest& request)
    {
        if (!HasTypes(request.m_setRequires)) {
            Write("Requires clause not satisfied\n");
            return false;
        }
        if ((request.m_nRunOptions & RUN_ALLSOLUTIONS) &&
            !HasTypes(request.m_setAllSolutionsRequires)) {
            Write("AllSolutionsRequires clause not satisfied\n");
            request.m_nRunOptions &= ~RUN_ALLSOLUTIONS;
        }
        constexpr std::uint32_t ANY = RUN_REQUIRESTABLEBASE | RUN_ALLREQUIRESTABLEBASE;
        if (!(request.m_nRunOptions & ANY) || HasTablebase(*request.m_pChessboard))
            return true;
        if (request.m_nRunOptions & RUN_REQUIRESTABLEBASE) {
            Write("RequiresSyzygy not satisfied\n");
            return false;
        }
        Write("AllSolutionsRequiresSyzygy not satisfied\n");
        request.m_nRunOptions &= ~RUN_ALLSOLUTIONS;
        return true;
    }

    bool HasTypes(const std::set<std::string>& setTypes) const
    {
        return std::all_of(setTypes.begin(), setTypes.end(), [&](const std::string& strType) {
            return m_settings.m_hasPositionType && m_settings.m_hasPositionType(strType);
        });
    }

    /// A position that our own data covers, or that is too large for a tablebase, needs none.
    bool HasTablebase(const TChessboard& board) const
    {
        return CountMen(board) > MAX_TABLEBASE_MEN ||
               (m_settings.m_isCovered && m_settings.m_isCovered(board)) ||
               (m_settings.m_hasTablebase && m_settings.m_hasTablebase(board));
    }

    // A round: the solve of a position, and the check of the main variant

    /// False when the problem is of a kind that isn't solved.
    bool RunRound(TSolveRequest& request, bool bMirror)
    {
        const TDeadline deadline(m_settings);
        bool bSolved = true;
        try {
            // An impossible position is found out before anything is mirrored.
            request.m_pChessboard->ScanBoard(false);
            std::optional<TMirrorHold> hold;
            if (bMirror)
                hold.emplace(request);
            EVerdict verdict = Solve(request, deadline);
            if (IsRunning() && !CheckBoard(request, deadline))
                verdict = EVerdict::Failed;
            if (IsRunning())
                ++CountOf(verdict);
        }
        catch (const ChessException& error) {
            if (m_settings.m_onError)
                m_settings.m_onError(request, error.what());
            bSolved = request.m_nProblemType == PROBLEM_DIRECTMATE;
            if (bSolved)
                ++m_counts.m_nFailed;
        }
        request.m_TemporaryRegister.Clear(TAggregatedTemporaryChessboardRegister::CLEAR_EVERYTHING,
                                          true);
        return bSolved;
    }

    TRunSettings SettingsOf(TSolveRequest& request) const
    {
        request.m_heuristicSet = {};
        TRunSettings settings = ApplyOptions(m_settings.m_options, request);
        // What is known of a composition changes the set that an analysis chooses.
        request.m_bAnalyse =
            request.m_heuristicSet.m_nHeuristics == 0 &&
            (settings.m_bUsePredefinedSettings || request.m_bUsePredefinedSettings);
        settings.m_bStopAtFirstSolution = true;
        settings.m_nThreads = static_cast<int>(m_settings.m_nThreads);
        return settings;
    }

    EVerdict Solve(TSolveRequest& request, const TDeadline& deadline)
    {
        if (request.m_nProblemType == PROBLEM_DIRECTMATE && request.GetStipulation() > MAX_MATE)
            throw ChessException("The longest stipulation is #" + std::to_string(MAX_MATE) + ".");
        {
            const TWatchdog watchdog(deadline.Left(), [&request] {
                request.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS);
            });
            corvina::Solve(request, SettingsOf(request));
        }
        using namespace std::chrono;
        const auto elapsed = request.Now() - request.m_tFirstMoveStart;
        // What a stop by the user has left is no result.
        return IsRunning() ? WriteResult(request, duration_cast<milliseconds>(elapsed).count())
                           : EVerdict::Unchecked;
    }

    EVerdict WriteResult(const TSolveRequest& request, long long nMilliseconds)
    {
        const TChessboard& board = *request.m_pChessboard;
        const std::string strRun = "[" +
                                   GetRunDescription(request.m_nSearchMode, request.m_nThreads,
                                                     request.m_nMultithreadingLevels) +
                                   "] ";
        const std::string strNumber = "#" + std::to_string(request.m_nProblemNumber) + " M" +
                                      std::to_string(request.m_nSearchMode);
        const std::string strTest = strRun + "Test " + strNumber;
        const std::string strTime = " (" + std::to_string(nMilliseconds) + " msec)";
        if (request.m_nRunOptions & RUN_SORTKNOWN) {
            std::string strFault;
            if (!CheckExpectedSortWhiteMoves(request, &strFault)) {
                Write(strTest + " failed: " + strFault + "\n");
                return EVerdict::Failed;
            }
            if (request.m_nRunOptions & RUN_SORTONLY) {
                Write(strTest + " ok" + strTime + " - ExpectedSortWhiteMovesOnly.\n");
                return EVerdict::Ok;
            }
        }
        if (!(request.m_nRunOptions & RUN_ANSWERKNOWN)) {
            Write(strRun + "Prob." + strNumber + " " + JoinedMoves(request.m_vecSolutions, board) +
                  strTime + ".\n");
            return EVerdict::Unchecked;
        }
        if (IsSameSet(request.m_vecSolutions, request.m_vecExpectedSolutions)) {
            Write(strTest + " ok" + strTime + ".\n");
            return EVerdict::Ok;
        }
        Write(strTest + " failed:\n\tfound:\n" + NumberedMoves(request.m_vecSolutions, board) +
              "\tshould be:\n" + NumberedMoves(request.m_vecExpectedSolutions, board));
        return EVerdict::Failed;
    }

    /// False when the main variant isn't what the engine plays; the log tells where.
    bool CheckBoard(TSolveRequest& request, const TDeadline& deadline)
    {
        const auto restricted = [&](TSolveRequest& question, const std::function<void()>& run) {
            const TWatchdog watchdog(deadline.Left(), [&question] {
                question.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS);
            });
            run();
        };
        const std::string strFault =
            CheckMainVariant(request, SettingsOf(request), m_settings.m_options, restricted);
        if (!strFault.empty())
            Write(strFault);
        return strFault.empty();
    }

    void Write(const std::string& strText)
    {
        AppendToRegressionLog(m_settings.m_logPath, strText);
        if (m_settings.m_onLine)
            m_settings.m_onLine(strText);
    }

    int& CountOf(EVerdict verdict)
    {
        if (verdict == EVerdict::Ok)
            return m_counts.m_nOk;
        return verdict == EVerdict::Failed ? m_counts.m_nFailed : m_counts.m_nUnchecked;
    }

    const TRegressionSettings& m_settings;
    TRegressionCounts m_counts;
};

} // namespace

TRegressionCounts RunRegressionTest(TProblemCollection& collection,
                                    const TRegressionSettings& settings)
{
    return CRegressionTest(settings).Run(collection);
}

void BackupRegressionLog(const std::filesystem::path& path)
{
    std::filesystem::path bak = path;
    bak += ".BAK";
    for (const int nMilliseconds : {-1, 0, 100, 200}) {
        std::error_code error;
        if (nMilliseconds >= 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(nMilliseconds));
        if (!std::filesystem::exists(path, error))
            return;
        std::filesystem::rename(path, bak, error);
        if (!error)
            return;
    }
}

void AppendToRegressionLog(const std::filesystem::path& path, const std::string& strText)
{
    std::ofstream(path, std::ios::app) << strText;
}

bool CheckExpectedSortWhiteMoves(const TSolveRequest& request, std::string* pOut)
{
    const auto& vecExpected = request.m_vecExpectedSortWhiteMoves;
    const auto& vecFound = request.m_vecFirstMoves;
    for (std::size_t i = 0; i < vecExpected.size(); ++i) {
        if (i < vecFound.size() && IsSameMove(vecExpected[i], vecFound[i]))
            continue;
        *pOut = "ExpectedSortWhiteMoves failed: move " + std::to_string(i + 1);
        return false;
    }
    return true;
}

std::string GetRunDescription(std::uint8_t nSearchMode, std::size_t nThreads, std::size_t nLevels)
{
    std::string strThreads = std::to_string(nThreads);
    strThreads.insert(0, strThreads.size() < 2 ? 1 : 0, ' ');
    if (nLevels >= 2)
        strThreads += "^" + std::to_string(nLevels);
    const char* pKind = nSearchMode & SEARCH_ALL     ? "AllSolutions,"
                        : nSearchMode & SEARCH_FIRST ? "SnglSolution,"
                                                     : "";
    return pKind + strThreads + "thrd(s)";
}

} // namespace corvina
