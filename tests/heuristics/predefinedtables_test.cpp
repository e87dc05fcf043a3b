#include "heuristics/predefined.h"
#include "platform/watchdog.h"
#include "search/verify.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"

#include <atomic>
#include <chrono>

namespace corvina
{
namespace
{

auto CountMen(const TChessboard& board)
{
    return std::count_if(std::begin(board.m_board), std::end(board.m_board),
                         [](TFigure figure) { return figure != NO_FIGURE; });
}

/// A position with White to move, from which a problem may start.
TChessboard StartOf(const std::string& strFen)
{
    TChessboard board = BoardOf(strFen);
    EXPECT_EQ(WriteFen(board, true), strFen) << "a look-up would never find it";
    EXPECT_EQ(FailureText([&] { board.CheckStartPosition(1, true); }), "") << strFen;
    return board;
}

TEST(PredefinedTables, Positions)
{
    const TPredefinedTables& tables = PredefinedTables();
    EXPECT_EQ(tables.m_predefinedHeuristics.size(), 17u);
    EXPECT_EQ(tables.m_predefinedLines.size(), 73u);
    for (const auto& [strFen, vecTexts] : tables.m_predefinedHeuristics)
        StartOf(strFen);
    for (const auto& [strFen, vecTexts] : tables.m_predefinedLines)
        StartOf(strFen);
    for (const auto& [strFen, mapMoves] : tables.m_predefinedSubpositions) {
        const TChessboard root = StartOf(strFen);
        for (const auto& [strPosition, strMove] : mapMoves) {
            const TChessboard board = StartOf(strPosition);
            EXPECT_EQ(PrintMove(ParseMove(board, strMove), board), strMove) << strPosition;
            // It can come up: no side has more men than at the start.
            EXPECT_LE(CountMen(board), CountMen(root)) << strPosition;
        }
    }
}

/// A line of the table with the positions of the slow chess along it.
struct TPlayedLine
{
    TPlayedLine(const std::string& strFen, const std::string& strText)
    {
        const TChessboard root = StartOf(strFen);
        m_vecPositions.push_back(TSlowPosition(root.m_board, EColour::White));
        int nNumber = 0;
        for (const std::string& strWord : Split(strText, ' ')) {
            if (strWord.ends_with('.')) {
                EXPECT_EQ(strWord, std::to_string(++nNumber) + ".") << strText;
                EXPECT_EQ(m_vecMoves.size(), 2u * (nNumber - 1)) << strText;
                continue;
            }
            Play(strWord, strText);
        }
    }

    void Play(const std::string& strWord, const std::string& strText)
    {
        const std::string strMove = strWord.substr(0, strWord.find_first_of("+#"));
        const TSlowPosition& position = m_vecPositions.back();
        TMove move = ParseFullMove(strMove, position.m_toMove == EColour::White);
        for (const TMove& legal : position.LegalMoves()) {
            if (!IsSameMove(legal, move))
                continue;
            const TSlowPosition next = position.After(legal);
            m_vecMoves.push_back(legal);
            m_vecPositions.push_back(next);
            const std::string strMark = next.IsMate()                 ? "#"
                                        : next.InCheck(next.m_toMove) ? "+"
                                                                      : "";
            if (m_vecMoves.size() % 2) {
                EXPECT_EQ(strWord.substr(strMove.size()), strMark) << strText;
            }
            return;
        }
        ADD_FAILURE() << strWord << " is illegal in " << strText;
    }

    bool EndsInMate() const
    {
        const TSlowPosition& last = m_vecPositions.back();
        return last.m_toMove == EColour::Black && last.IsMate();
    }

    std::vector<TMove> m_vecMoves;
    std::vector<TSlowPosition> m_vecPositions; ///< one more than moves
};

TEST(PredefinedTables, LinesEndInMate)
{
    int nLines = 0;
    for (const auto& [strFen, vecTexts] : PredefinedTables().m_predefinedLines) {
        for (const std::string& strText : vecTexts) {
            if (strText.find(',') != std::string::npos)
                continue;
            const TPlayedLine line(strFen, strText);
            EXPECT_TRUE(line.EndsInMate()) << strFen << ": " << strText;
            ++nLines;
        }
    }
    EXPECT_GT(nLines, 0);
}

/// Runs with a limit of time; true when it wasn't reached.
template <class TRun>
bool RunWithin(std::chrono::seconds limit, TSolveRequest& request, TRun run)
{
    std::atomic<bool> bExpired = false;
    const TWatchdog watchdog(limit, [&] {
        bExpired = true;
        request.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS);
    });
    run();
    return !bExpired;
}

/// Every defence against the first move of a line is walked, down to the mates. A line may be a
/// move shorter than the mate that was proved, when Black's longest defence wasn't found.
TEST(PredefinedTables, KeysHoldAgainstEveryDefence)
{
    constexpr std::chrono::seconds LIMIT(2);
    int nLines = 0, nVerified = 0;
    for (const auto& [strFen, vecTexts] : PredefinedTables().m_predefinedLines) {
        if (vecTexts.empty())
            continue;
        ++nLines;
        const TPlayedLine line(strFen, vecTexts.front());
        TTaskRequest request(StartOf(strFen), static_cast<int>(line.m_vecMoves.size()) / 2 + 2);
        request.m_bAnalyse = request.m_bProofSearch = true;
        const TRunSettings settings{
            .m_bStopAtFirstSolution = true, .m_bUsePredefinedSettings = true, .m_overrides = {}};
        TSolveOutcome outcome;
        if (!RunWithin(LIMIT, request, [&] { outcome = Solve(request, settings); }))
            continue;
        ASSERT_EQ(outcome.m_vecSolutions.size(), 1u) << strFen;
        TVerification verification;
        const TMove key = line.m_vecMoves.front();
        request.ClearStopState();
        const bool bDone =
            RunWithin(LIMIT, request, [&] { verification = VerifyKey(request, key); });
        EXPECT_TRUE(verification.m_bHolds || !bDone) << strFen << ": " << vecTexts.front();
        nVerified += verification.m_bHolds;
    }
    RecordProperty("verified", nVerified);
    EXPECT_GT(2 * nVerified, nLines);
}

} // namespace
} // namespace corvina
