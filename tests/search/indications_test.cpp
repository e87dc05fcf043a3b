#include "app/mirror.h"
#include "heuristics/forcingmoves.h"
#include "heuristics/setreader.h"
#include "search/indicatedline.h"
#include "search/ordering.h"

namespace corvina
{
namespace
{

constexpr const char* OPEN = "5k2/8/8/3p4/R5R1/2N5/8/K2Q4";
constexpr const char* BATTERY = "4k3/8/8/8/4N3/8/8/K3R3";
constexpr const char* PROMOTION = "8/4P3/8/8/8/2k5/8/K7";
constexpr const char* EN_PASSANT = "4k3/3p4/8/4P3/8/8/8/4K3";

TEST(Indications, EachTestOfAnItem)
{
    constexpr std::optional<int> NO, FIRST = INDICATED_FIRST, LAST = INDICATED_LAST;
    const struct
    {
        const char* m_pFen;
        const char* m_pLine;
        const char* m_pItems;
        const char* m_pMove;
        std::optional<int> m_score;
    } aCases[] = {
        // The ends of the move.
        {OPEN, "", "d4", "Rg4-e4", NO},
        {OPEN, "", "a4-d4", "Ra4-d4", FIRST},
        {OPEN, "", "a4-d4", "Rg4-d4", NO},
        {"k7/8/8/8/8/8/8/4K2R", "", "0-0", "0-0", FIRST},
        {"k7/8/8/8/8/8/8/4K2R", "", "0-0", "Ke1-f1", NO},
        // A capture.
        {OPEN, "", ":d5", "Qd1:d5", FIRST},
        {OPEN, "", ">d5", "Qd1:d5", NO},
        {OPEN, "", ":d4", "Qd1-d4", NO},
        {EN_PASSANT, "Ke1-f1 d7-d5", ":d6", "e5:d6", FIRST},
        {EN_PASSANT, "Ke1-f1 d7-d5", ">d6", "e5:d6", NO},
        // The figure.
        {OPEN, "", "N:d5", "Nc3:d5", FIRST},
        {OPEN, "", "N:d5", "Qd1:d5", NO},
        {EN_PASSANT, "", "pe6", "e5-e6", FIRST},
        {EN_PASSANT, "", "Ke6", "e5-e6", NO},
        // At least so many checks.
        {BATTERY, "", "c5+", "Ne4-c5", FIRST},
        {BATTERY, "", "c5++", "Ne4-c5", NO},
        {BATTERY, "", "d6+", "Ne4-d6", FIRST},
        {OPEN, "", "d4+", "Rg4-d4", NO},
        // The promotion.
        {PROMOTION, "", "e8N", "e7-e8N", FIRST},
        {PROMOTION, "", "e8N", "e7-e8Q", NO},
        // The figure must not be taken: by the king, by others, pinned or not, en passant.
        {OPEN, "", "Rf4*", "Rg4-f4", FIRST},
        {OPEN, "", "Rg8*", "Rg4-g8", NO},
        {OPEN, "", "Re4*", "Rg4-e4", NO},
        {"5k2/8/8/8/6R1/8/1B6/K7", "", "Rg7*", "Rg4-g7", FIRST},
        {"5k2/8/8/8/6R1/8/8/K7", "", "Rg7*", "Rg4-g7", NO},
        {"3k4/3r4/8/6N1/8/8/8/K2R4", "", "Nh7*", "Ng5-h7", FIRST},
        {"3k4/3r4/8/6N1/8/8/8/K3R3", "", "Nh7*", "Ng5-h7", NO},
        {"k7/8/8/8/5p2/8/4P3/K7", "", "e4*", "e2-e4", NO},
        {"k7/8/8/8/7p/8/4P3/K7", "", "e4*", "e2-e4", FIRST},
        // Numbers of moves, and moves to try last.
        {OPEN, "", "2.Rd4", "Rg4-d4", NO},
        {OPEN, "Ka1-b1 Kf8-f7", "2.Rd4", "Rg4-d4", FIRST},
        {OPEN, "Ka1-b1 Kf8-f7", "1.Rd4", "Rg4-d4", NO},
        {OPEN, "Ka1-b1 Kf8-f7", "Rd4", "Rg4-d4", FIRST},
        {OPEN, "", "Rd4, ~1.Rd4", "Rg4-d4", LAST},
        {OPEN, "", "~Rd4, 1.Rd4", "Rg4-d4", FIRST},
        {OPEN, "", "~Rd4, Rd4", "Rg4-d4", LAST},
        {"6k1/8/8/8/8/8/8/Q6K", "", "~1.Qa1-a8", "Qa1-a8", 125},
    };
    for (const auto& c : aCases) {
        TIndicatedLine line(c.m_pFen, c.m_pLine);
        line.Load(c.m_pItems);
        EXPECT_EQ(line.Score(c.m_pMove), c.m_score)
            << c.m_pFen << " " << c.m_pLine << " " << c.m_pItems << " " << c.m_pMove;
        line.context.m_nQuickerMateNesting = 1;
        EXPECT_EQ(line.Score(c.m_pMove), NO) << "within a search for a short mate";
    }
}

TEST(Indications, Patterns)
{
    // Of the longest pattern, with six letters, comes -128 + 6 - 6 + 1.
    constexpr const char* ALL = "5k2/8/8/8/R5R1/2N5/8/K2Q4";
    const struct
    {
        const char* m_pPatterns;
        std::optional<int> m_score;
    } aCases[] = {
        {ALL, -127},
        {"5k2/////2N5|///////K2Q4", -123},
        {"5k2////R5R1", -124},
        {"5k2|", -128},
        // The last fits, but without a figure.
        {"5K2|4k3|5k1|5k3|5k2/////8|5k2////////8|5k2/x7|/8", std::nullopt},
    };
    for (const auto& c : aCases) {
        for (const std::string& strPattern : Split(c.m_pPatterns, '|')) {
            TIndicatedLine line(OPEN);
            TSortIndication item = ParseSortIndication("Rd4");
            item.m_strPattern = strPattern;
            line.request.m_sortIndications.Add(item);
            item = ParseSortIndication("9.Rd4");
            item.m_strPattern = ALL;
            line.request.m_sortIndications.Add(item);
            LoadSortIndications(line.request);
            EXPECT_EQ(line.Score("Rg4-d4"), c.m_score) << strPattern;
            // A move to try last doesn't look at the letters.
            line.request.m_mapSortIndications.m_mapItems[0][0].m_bNegated = true;
            const bool bFits = c.m_score || strPattern == "/8";
            EXPECT_EQ(line.Score("Rg4-d4"), bFits ? std::optional<int>(125) : std::nullopt)
                << strPattern;
        }
    }
}

TEST(Indications, EarlierItemsOfTheLine)
{
    const struct
    {
        const char* m_pLine;
        const char* m_pItems; ///< beside "Rd4", which needs the earlier ones
        bool m_bMatches;
    } aCases[] = {
        {"", "1.Kb1", true},
        {"Ka1-b1 Kf8-f7", "1.Kb1", true},
        {"Ka1-b1 Kf8-f7", "1.Kb2", false},
        {"Ka1-b1 Kf8-f7", "1.Kb2, 1.Kb1", true},
        {"Ka1-b1 Kf8-f7", "2.Kb2", true},
        {"Ka1-b1 Kf8-f7 Qd1-d2 Kf7-f8", "1.Kb1, 2.Qd2", true},
        {"Ka1-b1 Kf8-f7 Qd1-d2 Kf7-f8", "1.Kb1, 2.Qd3", false},
        {"Ka1-b1 Kf8-f7 Qd1-d2 Kf7-f8", "1.Kb2, 2.Qd2", false},
        {"Ka1-b1 Kf8-f7 Qd1-d2 Kf7-f8", "2.Qd2", true},
    };
    for (const auto& c : aCases) {
        TIndicatedLine line(OPEN, c.m_pLine);
        TSortIndication item = ParseSortIndication("Rd4");
        item.m_bNeedsEarlierItems = true;
        line.request.m_sortIndications.Add(item);
        line.Load(c.m_pItems);
        EXPECT_EQ(line.Score("Rg4-d4").has_value(), c.m_bMatches) << c.m_pLine << c.m_pItems;
    }
}

std::vector<TVariantMove> VariantMoves(const std::string& strMoves)
{
    std::vector<TVariantMove> vecMoves;
    for (const std::string& strMove : Split(strMoves, ' '))
        vecMoves.push_back({ParseFullMove(strMove, vecMoves.size() % 2 == 0), strMove, L""});
    return vecMoves;
}

TEST(Indications, VariantsHoldOnTheirLine)
{
    const auto score = [](int nUse, const char* pLine, const char* pMove) {
        TIndicatedLine line(OPEN, pLine);
        line.request.m_nMainVariantUse = static_cast<std::uint8_t>(nUse);
        line.request.AddVariant(L"Main variant",
                                VariantMoves("Rg4-g1 Kf8-e7 Ra4-a7 Ke7-d6 Qd1:d5"));
        // Behind the move that the position doesn't allow there is nothing.
        line.request.AddVariant(L"Try", VariantMoves("Nc3-b5 Kf8-f7 Nb5-e7 Kf7-f8 Ka1-b1"));
        line.Load("9.Ka1");
        const auto& mapItems = line.request.m_mapSortIndications.m_mapItems;
        EXPECT_EQ(mapItems.size(), nUse == 0 ? 1u : 4u);
        EXPECT_EQ(line.request.m_sortIndications.m_mapItems.size(), 1u);
        if (nUse == 2) {
            EXPECT_EQ(mapItems.at(1).size(), 2u);
            EXPECT_EQ(mapItems.at(2).size() + mapItems.at(3).size(), 2u);
        }
        return line.Score(pMove).has_value();
    };
    EXPECT_TRUE(score(1, "", "Rg4-g1"));
    EXPECT_FALSE(score(0, "", "Rg4-g1"));
    EXPECT_TRUE(score(1, "Rg4-g1 Kf8-e7", "Ra4-a7"));
    EXPECT_FALSE(score(1, "Rg4-g1 Kf8-f7", "Ra4-a7"));
    EXPECT_FALSE(score(1, "Rg4-g2 Kf8-e7", "Ra4-a7"));
    EXPECT_TRUE(score(1, "Rg4-g1 Kf8-e7 Ra4-a7 Ke7-d6", "Qd1:d5"));
    EXPECT_FALSE(score(1, "Rg4-g1 Kf8-e7 Ra4-a6 Ke7-f8", "Qd1:d5"));
    EXPECT_FALSE(score(1, "", "Nc3-b5"));
    EXPECT_TRUE(score(2, "", "Nc3-b5"));
    EXPECT_TRUE(score(2, "", "Rg4-g1"));
}

TEST(Indications, TheSortPutsThemFirstAndLast)
{
    const auto sorted = [](const char* pItems) {
        TIndicatedLine line(OPEN);
        line.Load(pItems);
        TMoveList moves;
        const int nMoves = SortWhiteMovesCheap(*line.pBoard, moves.data(),
                                               line.pBoard->GenerateWhiteMoves(moves.data()));
        std::vector<std::string> vecTexts;
        for (int i = 0; i < nMoves; ++i)
            vecTexts.push_back(PrintMove(moves[i], *line.pBoard));
        return vecTexts;
    };
    auto vecExpected = sorted("9.Ka1");
    EXPECT_NE(vecExpected.back(), "Ra4-a8");
    // What isn't concerned stays as it was.
    std::erase(vecExpected, "Ka1-b1");
    std::erase(vecExpected, "Ra4-a8");
    vecExpected.insert(vecExpected.begin(), "Ka1-b1");
    vecExpected.push_back("Ra4-a8");
    EXPECT_EQ(sorted("Ka1-b1, ~1.Ra8+"), vecExpected);
}

TEST(Indications, SinkingScoresLeaveTheMatchedMoveFirst)
{
    struct TScored
    {
        std::int8_t m_nScore;
        bool operator==(const TScored&) const = default;
    };
    using TScores = std::vector<TScored>;
    TIndicatedLine line(OPEN);
    line.Load("Rd4");
    TNodeIndications indications(*line.pBoard);
    const auto finished = [&](TScores vecScores) {
        indications.Finish(vecScores.data(), static_cast<int>(vecScores.size()));
        return vecScores;
    };
    const TScores vecNegative = {{-128}, {-127}, {-126}, {0}, {125}, {127}}, vecNone = {{0}, {125}};
    EXPECT_EQ(finished(vecNegative), vecNegative) << "nothing has matched";
    indications.Score(PlayMove(*line.pBoard, ParseMove(*line.pBoard, "Rg4-d4")));
    EXPECT_EQ(finished(vecNone), vecNone);
    EXPECT_EQ(finished(vecNegative), (TScores{{-128}, {-127}, {-127}, {-1}, {124}, {127}}));
}

TEST(Indications, AQuietMoveIsACandidateOfTheForcedMateSearch)
{
    TIndicatedLine line(OPEN);
    const auto listed = [&](const char* pMove) {
        TMoveList moves;
        const int nMoves = GenerateForcingMoves<FFM_CHECK_ONLY>(*line.pBoard, moves.data(), false);
        const TMove move = ParseMove(*line.pBoard, pMove);
        return std::count_if(moves.data(), moves.data() + nMoves,
                             [&](const TMove& other) { return IsSameMove(other, move); });
    };
    EXPECT_EQ(listed("Ka1-b1"), 0);
    line.Load("1.Kb1, Ra8, ~Kb2");
    EXPECT_EQ(listed("Ka1-b1"), 1);
    EXPECT_EQ(listed("Ra4-a8"), 1) << "a check is listed once";
    EXPECT_EQ(listed("Ka1-b2"), 0);
    line.context.m_nQuickerMateNesting = 1;
    EXPECT_EQ(listed("Ka1-b1"), 0);
}

/// Items by chance.
TSortIndications RandomIndications(std::mt19937& random)
{
    TSortIndications indications;
    for (int i = static_cast<int>(random() % 5); i >= 0; --i) {
        TSortIndication item;
        item.m_to = static_cast<TSquare>(random() % 64);
        item.m_nMoveNumber = static_cast<std::uint16_t>(random() % 4);
        item.m_bNegated = random() % 3 == 0;
        item.m_bStar = random() % 4 == 0;
        item.m_bNeedsEarlierItems = random() % 4 == 0;
        indications.Add(item);
    }
    return indications;
}

TEST(Indications, ChangeNoSolution)
{
    constexpr const char* aSets[] = {"none", "SH_FINDFORCEDMATE(CheckOnly)",
                                     "SH_FINDFORCEDMATE(#1)", "SH_KEEPKINGONTHEEDGE"};
    std::mt19937 random(11);
    int nSolved = 0;
    const auto check = [&](const TChessboard& board, int nMate, int nRound) {
        TTaskRequest request(board, nMate);
        request.m_nMinRegisterPlies = 0;
        ReadHeuristicsText(aSets[nRound % 4], request.m_heuristicSet, &board);
        request.m_sortIndications = RandomIndications(random);
        const auto vecExpected = SortedTexts(SolutionsOf(board, nMate, true));
        nSolved += !vecExpected.empty();
        EXPECT_EQ(
            SortedTexts(
                Solve(request, {.m_nThreads = 1 + nRound % 2, .m_overrides = {}}).m_vecSolutions),
            vecExpected)
            << WriteFen(board, true) << " #" << nMate;
    };
    constexpr int aTasks[] = {0, 0, 1200, 500, 40}; // by the length of the mate
    for (int nMate = 2; nMate <= 4; ++nMate) {
        for (int i = 0; i < aTasks[nMate]; ++i)
            check(ComposedPosition(random), nMate, i);
    }
    EXPECT_GT(nSolved, 100);
}

TEST(Indications, AGoodOneSavesWork)
{
    const auto positions = [](const char* pItems, int nVariantUse = 0,
                              std::uint32_t nRunOptions = 0, bool bMirror = false) {
        TTaskRequest request(BoardOf("8/p7/3P1p2/5k1p/2NR4/5K2/8/8"), 5);
        request.AddVariant(L"Main variant", VariantMoves("d6-d7 Kf5-e6 d7-d8Q"));
        request.AddVariant(L"Z", VariantMoves("Rd4-d1"));
        request.m_nRunOptions = nRunOptions;
        if (*pItems)
            ParseSortIndications(request.m_sortIndications, pItems);
        if (bMirror)
            MirrorProblem(request);
        const TRunSettings settings{.m_bStopAtFirstSolution = true,
                                    .m_nMainVariantUse = static_cast<std::uint8_t>(nVariantUse),
                                    .m_overrides = {}};
        EXPECT_EQ(Solve(request, settings).m_nResult, 1);
        return request.m_nPositions.load();
    };
    const std::uint64_t nWithout = positions("");
    EXPECT_LT(4 * positions("1.d7"), nWithout);
    EXPECT_GT(positions("~1.d7"), nWithout);
    // The same by the main variant, by the choice of the program or of the problem, on the image
    // too; the other variant comes behind it.
    EXPECT_LT(4 * positions("", 1), nWithout);
    EXPECT_EQ(positions("", 0, RUN_MAINVARIANTSORTS), positions("", 1));
    EXPECT_LT(4 * positions("", 1, 0, true), positions("", 0, 0, true));
    EXPECT_LT(positions("", 2), nWithout);
    EXPECT_NE(positions("", 2), positions("", 1));
}

} // namespace
} // namespace corvina
