#include "heuristics/heuristicbits.h"
#include "heuristics/randomsets.h"
#include "heuristics/setreader.h"
#include "heuristics/settext.h"
#include "problems/problemfile.h"
#include "search/hooks.h"
#include "support/chesstest.h"

#include <cctype>

namespace corvina
{
namespace
{

std::string WithCase(std::string strText, int (*change)(int))
{
    for (char& c : strText)
        c = static_cast<char>(change(c));
    return strText;
}

TEST(SetText, RandomSetsAreReadBack)
{
    std::mt19937 random(3);
    int nWithLists = 0;
    for (int i = 0; i < 3000; ++i) {
        TSetPosition written(RandomPosition(random, 12)), read(written.board);
        const THeuristicSet set = RandomTellableSet(random, written.board);
        written.Apply(set);
        const std::string strText = GetHeuristicsText(written.board, i % 2);
        nWithLists += written.context.m_nUnblockFigures > 0;
        // In capitals every word still stands for itself, and in small letters too.
        const std::string strRead = i % 3 == 0   ? WithCase(strText, std::toupper)
                                    : i % 3 == 1 ? WithCase(strText, std::tolower)
                                                 : strText;
        THeuristicSet back;
        ASSERT_NO_THROW(ReadHeuristicsText(strRead, back, &written.board)) << strText;
        read.Apply(back);
        EXPECT_EQ(GetHeuristicsText(read.board, i % 2), strText);
        EXPECT_EQ(back.m_nHeuristics, set.m_nHeuristics);
        EXPECT_EQ(read.board.m_nHeuristicsParams, written.board.m_nHeuristicsParams) << strText;
        EXPECT_EQ(back.m_bQuickMode, i % 2 && set.m_nHeuristics != 0);
    }
    EXPECT_GT(nWithLists, 300);
}

TEST(SetText, DamagedTextsAreRefusedOrMeanSomething)
{
    std::mt19937 random(17);
    TSetPosition t(RandomPosition(random, 16));
    int nRead = 0;
    for (int i = 0; i < 20000; ++i) {
        t.Apply(RandomTellableSet(random, t.board));
        std::string strText = GetHeuristicsText(t.board, true);
        for (std::size_t n = random() % 3 + 1; n > 0; --n)
            strText[random() % strText.size()] = "(),-SsMC019# "[random() % 13];
        THeuristicSet set;
        if (!FailureText([&] { ReadHeuristicsText(strText, set, &t.board); }).empty())
            continue;
        ++nRead;
        t.Apply(set);
        const std::string strRead = GetHeuristicsText(t.board, false);
        THeuristicSet again;
        ASSERT_EQ(FailureText([&] { ReadHeuristicsText(strRead, again, &t.board); }), "")
            << strText;
        ASSERT_EQ(again.m_nHeuristics, set.m_nHeuristics);
    }
    EXPECT_GT(nRead, 500);
}

/// White rook h1 pins the knight h5 and the bishop d4 the rook f6 to the Black king h8.
constexpr const char* BOARD = "7k/5p2/5r2/7n/3B3q/8/4b3/K6R";
constexpr const char* PINS = "7k/5p2/5r2/7n/3B4/8/4b3/K6R";

TEST(SetText, KeyFigureNeedsWhatItPins)
{
    TTestLine line(PINS, 41);
    THeuristicSet set;
    ReadHeuristicsText("SH_KEYWHITEFIGURE(H1)", set, &line.board);
    EXPECT_EQ(set.m_params.m_pinnedFigureSquare, MakeSquare(7, 4));
    EXPECT_TRUE(set.m_params.m_bKeyFigureIsRook);
    ReadHeuristicsText("SH_KEYWHITEFIGURE(D4)", set, &line.board);
    EXPECT_EQ(set.m_params.m_pinnedFigureSquare, MakeSquare(5, 5));
    EXPECT_FALSE(set.m_params.m_bKeyFigureIsRook);
}

TEST(SetText, RefusalsLeaveTheSetAlone)
{
    const char* pKing = "Conflict of heuristics (\"Don't let black king move\" and ";
    const char* pCorner = "Invalid maximum distance from corner in the parameter of heuristics";
    const struct
    {
        const char* m_pText;
        const char* m_pError; ///< how it begins
    } aCases[] = {
        {"", "No heuristics given"},
        {"SH_NOSUCH", "Unknown heuristic: \"SH_NOSUCH\""},
        {"SH_AREKINGSNEAR,", "Heuristic expected behind the last comma."},
        {"SH_AREKINGSNEAR, none", "Unknown heuristic: \"none\""},
        {"SH_AREKINGSNEAR, SH_AREKINGSNEAR", "SH_AREKINGSNEAR is named twice."},
        {"SH_AREKINGSNEAR(A1)", "Invalid parameter of SH_AREKINGSNEAR: \"A1\" (allowed: nothing)"},
        {"SH_KEYLINE(C", "Comma expected behind the closing bracket"},
        {"SH_KEYLINE(I)", "Invalid field Key line"},
        {"SH_KEYDIAGONAL(A1)", "Invalid field Key diagonal"},
        {"SH_DONTLETKINGMOVE, SH_KEEPKINGWITHINEXTEDGE", pKing},
        {"SH_DONTLETKINGMOVE, SH_KEEPKINGONTHEEDGE", pKing},
        {"SH_KEEPKINGONTHEEDGE(excptns)", "Heuristics 'Don't let black king move' is off, while"},
        {"SH_KEEPKINGNEARCORNER(3M)", pCorner},
        {"SH_KEEPKINGNEARCORNER(6S)", pCorner},
        {"SH_KEEPKINGNEARCORNER(0S)", pCorner},
        {"SH_KEEPKINGNEARCORNER", pCorner},
        {"SH_KEEPKINGONTHEEDGE(Cf)", "Invalid number of figures to capture for relaxation"},
        {"SH_KEEPKINGONTHEEDGE(A,D00)", "Invalid number of moves to defer"},
        {"SH_KEEPKINGONTHEEDGE(D2)", "Defer check is meaningful only when 'on advanced pawn' or"},
        {"SH_KEEPKINGONTHEEDGE(A), SH_KEEPKINGWITHINEXTEDGE(C1)", "The dynamic relaxation"},
        {"SH_DONTLOSEANYFIGURES(incl.pawns,incl.pawnsBeforePromo)",
         "Only one of additional options of Don't lose any figures (incl. pawns +"},
        {"SH_DONTLEAVEMAINDIAGONAL(H8)", "Improper field (Black figure not let leave main diag"},
        {"SH_DONTLETFIGUREUNBLOCK(F7,A1)", "Improper square:2 Figure not let unblock #"},
        {"SH_DONTLETFIGUREUNBLOCK(H8)", "Improper square:1 Figure not let unblock #"},
        {"SH_DONTLETFIGUREUNBLOCK(F9)", "Invalid parameter of SH_DONTLETFIGUREUNBLOCK: \"F9\""},
        {"SH_KEYWHITEFIGURE(A1)", "Invalid key white figure"},
        {"SH_KEYWHITEFIGURE(H1)", "Invalid key white figure (pinned piece not found)"},
        {"SH_FINDFORCEDMATE(#6)", "Invalid parameter of SH_FINDFORCEDMATE: \"#6\""},
        {"SH_FINDFORCEDMATE, SH_SEASNAKE", "FindForcedMate cannot be used together with SeaSnake."},
        {"SH_SEASNAKE(C3)", "Invalid parameter of SH_SEASNAKE"},
    };
    TTestLine line(BOARD, 41);
    for (const auto& test : aCases) {
        THeuristicSet set;
        set.m_nHeuristics = SH_ZUGZWANG;
        const std::string strError =
            FailureText([&] { ReadHeuristicsText(test.m_pText, set, &line.board); });
        EXPECT_TRUE(strError.starts_with(test.m_pError)) << test.m_pText << ": " << strError;
        EXPECT_FALSE(strError.empty());
        EXPECT_EQ(set.m_nHeuristics, SH_ZUGZWANG);
    }
}

TEST(SetText, OptionsOfAProblemFile)
{
    const std::string strHead = "UTF-8 1 #20 ", strBlock = "\n{ FEN: 7k/8/8/8/8/8/8/K5R1\n}";
    // A set, the options, and the set that they make of it.
    const char* aCases[][3] = {
        {"SH_AREKINGSNEAR, SH_KEYLINE(C)", "SH_KEYLINE OFF sh_3movestomate ()",
         "SH_AREKINGSNEAR, SH_3MOVESTOMATE"},
        {"none", "SH_FINDFORCEDMATE (#2+-Custom) SH_SAVEQUEEN/ROOK ()",
         "SH_FINDFORCEDMATE(#2+-Custom), SH_SAVEQUEEN/ROOK"},
        {"SH_KEEPKINGWITHINEXTEDGE(C1,strict)", "SH_KEEPKINGWITHINEXTEDGE(incl.corner, A)",
         "SH_KEEPKINGWITHINEXTEDGE(A,incl.corner)"},
        {"SH_DONTLETKINGMOVE", "SH_KEEPKINGWITHINEXTEDGE()", "SH_KEEPKINGWITHINEXTEDGE"},
        {"SH_KEEPKINGWITHINEXTEDGE", "SH_KEEPKINGONTHEEDGE(STRICT)", "SH_DONTLETKINGMOVE"},
        {"SH_SEASNAKE(A1,A2)", "SH_FINDFORCEDMATE(#1)", "SH_FINDFORCEDMATE(#1)"},
        {"SH_KEYDIAGONAL(A1-B2)", "SH_KEYDIAGONAL(C3-D4) SH_KEEPKINGNEARCORNER(2M)",
         "SH_KEYDIAGONAL(C3-D4), SH_KEEPKINGNEARCORNER(2M)"},
    };
    TSetPosition t(BoardOf("7k/8/8/8/8/8/8/K5R1"));
    for (const auto& [pSet, pOptions, pResult] : aCases) {
        TProblemCollection collection;
        ReadProblems(strHead + pOptions + strBlock, collection,
                     {.m_pWarnings = nullptr, .m_pProgress = nullptr});
        THeuristicSet set;
        ReadHeuristicsText(pSet, set);
        ApplyHeuristicOptions(collection.Find(1)->m_mapHeuristicOptions, set);
        t.Apply(set);
        EXPECT_EQ(GetHeuristicsText(t.board, false), pResult) << pOptions;
    }
    THeuristicSet set;
    EXPECT_EQ(FailureText([&] {
                  ApplyHeuristicOptions({{SH_KEYLINE, {"Z"}}}, set);
              }),
              "Invalid field Key line");
}

} // namespace
} // namespace corvina
