#include "chess/fen.h"
#include "chess/notation.h"
#include "heuristics/predefinedlines.h"
#include "platform/watchdog.h"
#include "search/solve.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

/// Finds the main line of known compositions and writes them as the source of their table: the key,
/// a defence of Black that holds out as long as any that was found, White's answer, and so on to
/// the mate. See bench/README.md.

namespace corvina
{
namespace
{

/// Seconds for a question whose answer is known to be yes, and for one that ranks a defence.
constexpr double PROOF_SECONDS = 600, RANKING_SECONDS = 2;

/// Moves, White's first.
using TLine = std::vector<std::string>;

/// Does White, who is to move, mate within so many moves?
struct TAnswer
{
    bool m_bStopped = false; ///< it isn't known
    std::string m_strKey;    ///< in full notation; empty: no
};

TAnswer Ask(const std::string& strFen, int nMate, double dSeconds)
{
    TSolveRequest request;
    ReadFen(*request.m_pChessboard, strFen);
    request.SetMateIn(nMate);
    request.m_bAnalyse = request.m_bProofSearch = true;
    TRunSettings settings;
    settings.m_bStopAtFirstSolution = true;
    const TWatchdog watchdog(
        std::chrono::duration_cast<TWatchdog::TClock::duration>(
            std::chrono::duration<double>(dSeconds)),
        [&] { request.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS); });
    const TSolveOutcome outcome = Solve(request, settings);
    if (outcome.m_vecSolutions.empty())
        return {outcome.m_bStopped || outcome.m_bDoubtful, {}};
    return {false, PrintMove(outcome.m_vecSolutions[0], *request.m_pChessboard)};
}

/// The moves of a line, made one by one, so that castling and captures en passant are those of the
/// whole line.
class TPlayedLine
{
public:
    explicit TPlayedLine(const std::string& strFen) : m_context(MAX_PLIES)
    {
        ReadFen(m_root, strFen);
        m_root.m_nMoves = m_root.m_nInitialMoves = MAX_PLIES;
        m_root.m_pThread = &m_context;
        m_context.m_pRootBoard = m_pBoard = &m_root;
    }

    void Play(const std::string& strMove) { m_pBoard = MakeMove(*m_pBoard, strMove); }
    void TakeBack() { m_pBoard = m_pBoard->m_pParent; }
    std::string Fen() const { return WriteFen(*m_pBoard, true); }
    bool IsCheck() const { return m_pBoard->m_blackChecker != NO_CHECK; }

    TLine Replies()
    {
        TMoveList moves;
        TLine vecReplies;
        const int nMoves = m_pBoard->GenerateBlackMoves(moves.data());
        for (int i = 0; i < nMoves; ++i) {
            if (IsMoveLegal(*m_pBoard, moves[i]))
                vecReplies.push_back(PrintMove(moves[i], *m_pBoard));
        }
        return vecReplies;
    }

private:
    static constexpr std::uint16_t MAX_PLIES = 599;

    TLineContext m_context;
    TChessboard m_root;
    TChessboard* m_pBoard;
};

/// Looks for the main line of a composition.
class TLineFinder
{
public:
    explicit TLineFinder(const std::string& strFen) : m_played(strFen) {}

    /// The line of a mate in so many moves, numbered; empty when it wasn't found.
    std::string Find(int nMate)
    {
        if (!MateIn(nMate))
            return {};
        std::string strText;
        for (std::size_t i = 0; i < m_vecLine.size(); ++i) {
            if (i % 2 == 0)
                strText += (i ? " " : "") + std::to_string(i / 2 + 1) + ".";
            strText += " " + m_vecLine[i];
        }
        return strText;
    }

private:
    /// White to move. The line grows to the mate, or stays.
    bool MateIn(int nMate)
    {
        const TAnswer answer = Ask(m_played.Fen(), nMate, PROOF_SECONDS);
        if (answer.m_strKey.empty())
            return false;
        Push(answer.m_strKey);
        if (m_played.IsCheck())
            m_vecLine.back() += "+";
        if (Defend(nMate))
            return true;
        Pop();
        return false;
    }

    /// Black to move, to be mated within so many moves, the last one of White being the first.
    bool Defend(int nMate)
    {
        const TLine vecReplies = m_played.Replies();
        if (vecReplies.empty()) {
            if (m_played.IsCheck())
                m_vecLine.back().back() = '#';
            return m_played.IsCheck();
        }
        // The length of the mate that is known of each reply; those that may take longest first.
        std::vector<std::pair<int, std::string>> vecRanked;
        for (const std::string& strReply : vecReplies) {
            vecRanked.push_back({MateAfter(strReply, nMate - 1), strReply});
            if (vecRanked.back().first == nMate - 1)
                break;
        }
        std::stable_sort(vecRanked.begin(), vecRanked.end(),
                         [](const auto& a, const auto& b) { return a.first > b.first; });
        for (const auto& [nRest, strReply] : vecRanked) {
            Push(strReply);
            if (MateIn(nRest))
                return true;
            Pop();
        }
        return false;
    }

    /// The shortest mate after the reply that is found: short ones for certain, as long as they
    /// take no more than the time of a ranking, then from the long end.
    int MateAfter(const std::string& strReply, int nMate)
    {
        m_played.Play(strReply);
        const int nFound = ShortestMate(nMate);
        m_played.TakeBack();
        return nFound;
    }

    int ShortestMate(int nMate) const
    {
        for (int n = 1; n < nMate; ++n) {
            const TAnswer answer = Ask(m_played.Fen(), n, RANKING_SECONDS);
            if (!answer.m_strKey.empty())
                return n;
            if (answer.m_bStopped)
                break;
        }
        while (nMate > 1 && !Ask(m_played.Fen(), nMate - 1, RANKING_SECONDS).m_strKey.empty())
            --nMate;
        return nMate;
    }

    void Push(const std::string& strMove)
    {
        m_played.Play(strMove);
        m_vecLine.push_back(strMove);
    }

    void Pop()
    {
        m_played.TakeBack();
        m_vecLine.pop_back();
    }

    TPlayedLine m_played;
    TLine m_vecLine;
};

/// Lengths by positions, of lines "FEN;N".
std::map<std::string, int> ReadLengths(const char* pPath)
{
    std::map<std::string, int> mapLengths;
    std::ifstream input(pPath);
    for (std::string strLine; std::getline(input, strLine);) {
        const auto nPosition = strLine.find(';');
        if (nPosition != std::string::npos)
            mapLengths[strLine.substr(0, nPosition)] = std::atoi(&strLine[nPosition + 1]);
    }
    return mapLengths;
}

constexpr const char* HEAD = R"(#include "heuristics/predefinedlines.h"

// Written by corvina-known-lines.

namespace corvina
{
namespace
{

constexpr TPredefinedLine g_aLines[] = {
)";

constexpr const char* FOOT = R"(};

} // namespace

std::span<const TPredefinedLine> PredefinedLines()
{
    return g_aLines;
}

} // namespace corvina
)";

void WriteRow(const std::string& strFen, const std::string& strText)
{
    if (strText.empty())
        std::printf("    {\"%s\", nullptr},\n", strFen.c_str());
    else
        std::printf("    {\"%s\", \"%s\"},\n", strFen.c_str(), strText.c_str());
    std::fflush(stdout);
}

/// The line of the composition; its present ones when no length is given.
void WriteComposition(const std::string& strFen, const std::map<std::string, int>& mapLengths)
{
    const auto length = mapLengths.find(strFen);
    if (length != mapLengths.end()) {
        const std::string strText = TLineFinder(strFen).Find(length->second);
        std::fprintf(stderr, "%s #%d: %s\n", strFen.c_str(), length->second,
                     strText.empty() ? "not found" : strText.c_str());
        WriteRow(strFen, strText);
        return;
    }
    for (const TPredefinedLine& line : PredefinedLines()) {
        if (strFen == line.m_pFen)
            WriteRow(strFen, line.m_pText ? line.m_pText : "");
    }
}

} // namespace
} // namespace corvina

int main(int nArguments, char** pArguments)
{
    using namespace corvina;
    if (nArguments != 2) {
        std::fprintf(stderr, "Usage: corvina-known-lines FILE\nFILE has lines \"FEN;N\" for the "
                             "compositions whose line is to be found.\n");
        return 2;
    }
    const std::map<std::string, int> mapLengths = ReadLengths(pArguments[1]);
    std::string strBefore;
    std::fputs(HEAD, stdout);
    for (const TPredefinedLine& line : PredefinedLines()) {
        if (strBefore != line.m_pFen)
            WriteComposition(line.m_pFen, mapLengths);
        strBefore = line.m_pFen;
    }
    std::fputs(FOOT, stdout);
}
