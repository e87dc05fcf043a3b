#include "heuristics/predefined.h"
#include "search/indicatedline.h"
#include "search/predefinedlines.h"

namespace corvina
{
namespace
{

constexpr const char* OPEN = "5k2/8/8/3p4/R5R1/2N5/8/K2Q4";

/// A line whose request looks at tables of its own.
struct TKnown : TIndicatedLine
{
    explicit TKnown(const std::string& strFen) : TIndicatedLine(strFen)
    {
        request.m_pPredefinedTables = &tables;
    }

    /// The score of a move after a line of play.
    std::optional<int> ScoreAfter(const std::string& strLine, const std::string& strMove)
    {
        Play(strLine);
        return Score(strMove);
    }

    TPredefinedTables tables;
};

TEST(PredefinedLines, LinesHoldAlongTheirMovesAndListsByTheirNumbers)
{
    TKnown known(OPEN);
    known.tables.m_predefinedLines[OPEN] = {"1. Ra4-a7 d5-d4 2. Nc3-e4 Kf8-e8 3. Rg4-g8#",
                                            "1.Rg4-g2 d5-d4  2.Rg2-g3 ", "2. Qd1-d3, 3.Qd3-d4"};
    known.Load("~1.Rg4-g2");
    ApplyPredefinedLines(known.request);
    constexpr std::optional<int> NO, FIRST = INDICATED_FIRST, LAST = INDICATED_LAST;
    EXPECT_EQ(known.ScoreAfter("", "Ra4-a7"), FIRST);
    EXPECT_EQ(known.ScoreAfter("", "Ra4-a8"), NO);
    EXPECT_EQ(known.ScoreAfter("", "Rg4-g2"), LAST) << "the problem's own come first";
    EXPECT_EQ(known.ScoreAfter("Ra4-a7 d5-d4", "Nc3-e4"), FIRST);
    EXPECT_EQ(known.ScoreAfter("Ra4-a7 Kf8-e8", "Nc3-e4"), NO) << "off the line";
    EXPECT_EQ(known.ScoreAfter("Rg4-g2 d5-d4", "Rg2-g3"), FIRST) << "of the second line";
    EXPECT_EQ(known.ScoreAfter("Rg4-g2 Kf8-e8", "Qd1-d3"), FIRST) << "whatever was played";
    EXPECT_EQ(known.ScoreAfter("Ra4-a7 d5-d4 Nc3-e4 Kf8-e8", "Rg4-g8"), FIRST);
}

TEST(PredefinedLines, PositionsOfTheTree)
{
    constexpr const char* COMPOSITION = "8/3p1p1p/3p1p2/3p1B2/8/6pN/5pP1/3K1kbn";
    TKnown known(COMPOSITION);
    known.request.m_pPredefinedTables = &PredefinedTables();
    ApplyPredefinedLines(known.request);
    EXPECT_EQ(known.request.m_vecPreferredMoves.size(), 9u);
    // The tree isn't walked: any line that comes to the position will do.
    TKnown deep("8/8/8/8/8/5NpB/3K1pP1/5kbn");
    deep.request.m_vecPreferredMoves = known.request.m_vecPreferredMoves;
    EXPECT_EQ(deep.ScoreAfter("", "Kd2-d3"), INDICATED_FIRST);
    EXPECT_EQ(deep.ScoreAfter("", "Kd2-d1"), std::nullopt);
    EXPECT_EQ(deep.ScoreAfter("Kd2-d3 Bg1-h2", "Kd3-e3"), INDICATED_FIRST);
    EXPECT_EQ(deep.ScoreAfter("Kd2-d3 Bg1-h2", "Kd3-e4"), std::nullopt);
}

TEST(PredefinedLines, FaultyTextsAreToldAndTheRunGoesOn)
{
    for (const char* pText :
         {"1. Ra4-a9", "1. Ra4-b6", "1. Ra4-a8+ d5-d4", "xyz", "1. Qa9, 2. Ka1", "1. Ra4-a7 -"})
    {
        TKnown known("7k/8/5K2/8/8/8/8/6R1");
        known.tables.m_predefinedLines["7k/8/5K2/8/8/8/8/6R1"] = {pText};
        known.request.SetMateIn(2);
        std::vector<std::string> vecMessages;
        known.request.OnMessage = [&](const std::string& s) { vecMessages.push_back(s); };
        const TRunSettings settings{.m_bUsePredefinedSettings = true,
                                    .m_pPredefinedTables = &known.tables,
                                    .m_overrides = {}};
        EXPECT_EQ(SortedTexts(Solve(known.request, settings).m_vecSolutions),
                  (std::vector<std::string>{"f6f7"}));
        EXPECT_EQ(vecMessages, (std::vector<std::string>{"Error in predefined sort indications."}))
            << pText;
    }
}

TEST(PredefinedLines, LookedAtWhenTheOptionOrTheProblemAsksForIt)
{
    for (const bool bOption : {false, true}) {
        for (const bool bProblem : {false, true}) {
            TKnown known("7k/8/5K2/8/8/8/8/6R1");
            known.tables.m_predefinedLines["7k/8/5K2/8/8/8/8/6R1"] = {"1. Kf6-f7"};
            known.request.SetMateIn(2);
            known.request.m_bUsePredefinedSettings = bProblem;
            const TRunSettings settings{.m_bUsePredefinedSettings = bOption,
                                        .m_pPredefinedTables = &known.tables,
                                        .m_overrides = {}};
            Solve(known.request, settings);
            EXPECT_EQ(known.request.m_mapSortIndications.empty(), !bOption && !bProblem);
            EXPECT_TRUE(known.request.m_sortIndications.empty()) << "the problem stays as it is";
        }
    }
}

} // namespace
} // namespace corvina
