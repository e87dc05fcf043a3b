#include "heuristics/differential.h"
#include "heuristics/positionanalysis.h"
#include "heuristics/predefined.h"
#include "heuristics/randomsets.h"
#include "heuristics/unblock.h"
#include "search/hooks.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"

namespace corvina
{
namespace
{

/// A board on which settings are applied; eight pawns and more figures of Black.
struct TSettings : TSetPosition
{
    explicit TSettings(std::uint32_t nMask = 0)
        : TSetPosition(BoardOf("rnbqkbn1/pppppppp/8/8/8/4r3/8/K7"))
    {
        board.m_nHeuristics = nMask;
    }

    void Apply(const std::string& strSetting) { ApplyPredefinedSetting(strSetting, board, run); }

    std::vector<int> Listed() const
    {
        return {context.m_unblockSquares, context.m_unblockSquares + context.m_nUnblockFigures};
    }

    TPredefinedRun run;
};

TEST(Predefined, OtherSettings)
{
    TSettings settings(SH_DONTLETPROMOTEDQUEENMOVE | SH_AREKINGSNEAR);
    settings.Apply("DontLetPromotedQueenMove NO");
    EXPECT_EQ(settings.board.m_nHeuristics, SH_AREKINGSNEAR);
    settings.Apply("DontLetPromotedQueenMove");
    EXPECT_EQ(settings.board.m_nHeuristics, SH_DONTLETPROMOTEDQUEENMOVE | SH_AREKINGSNEAR);

    EXPECT_FALSE(settings.run.m_bSafeMode);
    settings.Apply("sAFEmODE");
    EXPECT_TRUE(settings.run.m_bSafeMode);

    const std::pair<const char*, int> aDepths[] = {
        {"LFQMDepth(#4)", 7}, {"LFQMDepth(7)", 7},         {"LFQMDepth(#1)", 1},
        {"LFQMDepth(0)", -1}, {"LFQMDepth(#0)", -1},       {"LFQMDepth(-5)", -1},
        {"LFQMDepth(#3", 5},  {"LFQMDepth(99999)", 32767},
    };
    for (const auto& [pSetting, nDepth] : aDepths) {
        settings.run.m_shLookForQuickerMateDepth.reset();
        settings.Apply(pSetting);
        EXPECT_EQ(settings.run.m_shLookForQuickerMateDepth.value_or(-2), nDepth) << pSetting;
    }

    // What says nothing, or nothing that can be read, leaves everything as it is.
    const THeuristicsParams before = settings.context;
    for (const char* pSetting : {"", "assertBKS", "LFQMDepth(#)", "LFQMDepth(x)", "LFQMDepth(4 )",
                                 "LFQMDepth", "Safe Mode", "dlfu(a7)", "DLFU", "DLFU()"})
        settings.Apply(pSetting);
    EXPECT_EQ(settings.board.m_nHeuristics, SH_DONTLETPROMOTEDQUEENMOVE | SH_AREKINGSNEAR);
    EXPECT_EQ(static_cast<THeuristicsParams&>(settings.context), before);
    EXPECT_EQ(settings.run.m_shLookForQuickerMateDepth, 32767);
}

TEST(Predefined, ListsPawnsFirst)
{
    TSettings settings;
    settings.Apply("DLFU( e3,,A7\tb8 c7)");
    EXPECT_EQ(settings.Listed(), (std::vector<int>{48, 50, 20, 57})); // a7 c7, e3 b8
    EXPECT_EQ(settings.board.m_nHeuristics, SH_DONTLETFIGUREUNBLOCK);
    EXPECT_TRUE(settings.context.m_bUnblockListHasPawn);
    EXPECT_FALSE(settings.context.m_bDlfuDynamicActive) << "at the root nothing is dynamic";
    EXPECT_EQ(GetHeuristicsText(settings.board, false), "SH_DONTLETFIGUREUNBLOCK(A7,C7,E3,B8)");

    // Figures that can't be listed: an empty square, the kings, one that stands there already.
    settings.Apply("DLFU(a5,e8,a1,b8)");
    EXPECT_EQ(settings.Listed().size(), 4u);
    // Eight have room: of the pawns, then of the figures.
    settings.Apply("DLFU(d8,h7,g7,f7,e7)");
    EXPECT_EQ(settings.Listed(), (std::vector<int>{48, 50, 20, 57, 55, 54, 53, 52}));

    const std::pair<const char*, int> aFaults[] = {
        {"DLFU(a7,i5)", 3}, {"DLFU(9a)", 0}, {"DLFU(a7 b9)", 3}, {"DLFU(a7;b7)", 2}, {"DLFU( h", 1},
    };
    for (const auto& [pSetting, nIndex] : aFaults) {
        TSettings fresh;
        EXPECT_EQ(FailureText([&, p = pSetting] { fresh.Apply(p); }),
                  "Invalid square description at index " + std::to_string(nIndex))
            << pSetting;
        EXPECT_TRUE(fresh.Listed().empty()) << pSetting;
    }
}

bool List(TChessboard& board, int square)
{
    return ApplyUnblockDynamically(board, static_cast<TSquare>(square));
}

constexpr int B1 = 1, G4 = 30, C7 = 50, H8 = 63;
constexpr const char* CAN_MOVE = "nb5r/1pp5/1P6/8/5k2/8/8/K6R";

TChessboard& Play(TChessboard& board, const char* pMove)
{
    return PlayMove(board, ParseMove(board, pMove));
}

/// What the hook says of Black's pawn that leaves c7, a move further on.
int HookOnPawn(TChessboard& board)
{
    board.m_nPass = 1;
    return IsBlackMoveDoubtful(Play(Play(board, "Rh1-h2"), "c7-c6"), nullptr);
}

TEST(Predefined, FiguresListedWithinALine)
{
    TSetPosition position(BoardOf(CAN_MOVE), 9);
    TChessboard& root = position.board;
    TChessboard& child = Play(Play(root, "Ka1-b1"), "Kf4-g4");
    EXPECT_FALSE(List(child, H8)) << "a free figure begins no list within a line";
    EXPECT_FALSE(List(child, G4)) << "the king";
    EXPECT_FALSE(List(child, B1)) << "White's";
    EXPECT_EQ(child.m_nHeuristics, 0u);
    ASSERT_TRUE(List(child, C7));
    EXPECT_TRUE(position.context.m_bDlfuDynamicActive);
    EXPECT_EQ(position.context.m_nDlfuDynamicDepth, child.m_nMoves);
    EXPECT_EQ(child.m_nHeuristics, SH_DONTLETFIGUREUNBLOCK);
    EXPECT_EQ(child.m_nHeuristicsParams, ComputeHeurParams(child));
    EXPECT_FALSE(List(child, C7)) << "twice";
    EXPECT_TRUE(List(child, H8)) << "behind a pawn any figure";

    EXPECT_EQ(HookOnPawn(child), HOOK_DOUBTFUL);
    EXPECT_EQ(position.context.m_nUnblockViolators, 1) << "a relaxation takes it off";
    EXPECT_EQ(root.m_nHeuristics, 0u) << "it holds below the record only";

    TSetPosition fixed(BoardOf(CAN_MOVE), 9);
    fixed.context.m_bCanApplyDlfuDynamically = false;
    EXPECT_FALSE(List(fixed.board, C7)) << "a list that the user has fixed";
}

TEST(Predefined, FiguresListedAtTheRoot)
{
    TSetPosition position(BoardOf(CAN_MOVE), 9);
    EXPECT_EQ(HookOnPawn(position.board), HOOK_PASSES);
    ASSERT_TRUE(List(position.board, H8)) << "at the root any figure begins a list";
    EXPECT_EQ(HookOnPawn(position.board), HOOK_PASSES);
    ASSERT_TRUE(List(position.board, C7));
    EXPECT_EQ(HookOnPawn(position.board), HOOK_DOUBTFUL);
    EXPECT_EQ(position.context.m_nUnblockViolators, 0) << "nothing is dynamic";

    // A list that may be shortened: the pawn goes, the rook stays.
    position.context.m_bLetRelax = true;
    position.context.m_bUnblockShrinkable = true;
    EXPECT_EQ(HookOnPawn(position.board), HOOK_DOUBTFUL);
    EXPECT_EQ(TryRelaxSpecialHeuristics(position.board), 1);
    EXPECT_EQ(position.board.m_nHeuristics, SH_DONTLETFIGUREUNBLOCK);
    EXPECT_EQ(position.context.m_nUnblockFigures, 1);
    EXPECT_EQ(position.context.m_unblockSquares[0], H8);
    EXPECT_EQ(HookOnPawn(position.board), HOOK_PASSES);
    EXPECT_EQ(TryRelaxSpecialHeuristics(position.board), 0) << "nothing has left its place";
}

/// What the analysis of a position chooses with tables, or without.
TPositionAnalysis Analyse(const std::string& strFen, const TPredefinedTables* pTables,
                          std::vector<std::string>* pMessages = nullptr)
{
    TRootTask task(BoardOf(strFen), 8);
    TSolveRequest& request = task.m_request;
    request.m_pPredefinedTables = pTables;
    if (pMessages)
        request.OnMessage = [&](const std::string& strText) { pMessages->push_back(strText); };
    const TPositionAnalysis analysis = CheckPositionType(task.m_root);
    EXPECT_FALSE(request.m_bSafeMode);
    return analysis;
}

TEST(Predefined, TheAnalysisEndsWithThem)
{
    for (const auto& [strFen, vecTexts] : PredefinedTables().m_predefinedHeuristics) {
        const TPositionAnalysis without = Analyse(strFen, nullptr);
        const TPositionAnalysis with = Analyse(strFen, &PredefinedTables());
        // The same, applied to what the analysis chooses by itself.
        TSetPosition position(BoardOf(strFen), 15);
        position.Apply(without.m_set);
        TPredefinedRun run;
        for (const std::string& strText : vecTexts)
            ApplyPredefinedSetting(strText, position.board, run);
        EXPECT_EQ(with.m_set.m_nHeuristics, position.board.m_nHeuristics) << strFen;
        EXPECT_TRUE(vecTexts[0] != "SafeMode" || with.m_bSafeMode) << strFen;
        EXPECT_EQ(with.m_shLookForQuickerMateDepth.has_value(),
                  vecTexts.back().starts_with("LFQMDepth"))
            << strFen;
        EXPECT_FALSE(without.m_shLookForQuickerMateDepth);
    }
    const auto both =
        Analyse("4n3/4K3/3BpNp1/1R1bP3/pPPk1pr1/2R3pQ/2PPr2n/q4Bb1", &PredefinedTables());
    EXPECT_TRUE(both.m_set.m_params.m_bSurroundedStrict);
    EXPECT_EQ(both.m_shLookForQuickerMateDepth, 5);
    EXPECT_FALSE(Analyse("7k/4KR2/5Pq1/8/3B4/5B2/8/8", &PredefinedTables())
                     .m_set.m_params.m_bSurroundedStrict);
    const auto listed = Analyse("8/4p2k/3pB2p/3p1K1p/2pB3P/2P5/8/7n", &PredefinedTables());
    EXPECT_EQ(std::vector<int>(listed.m_set.m_params.m_unblockSquares,
                               listed.m_set.m_params.m_unblockSquares + 3),
              (std::vector<int>{35, 52, 7})); // d5 and e7, then h1
}

TEST(Predefined, TheDepthOfTheShortMateEndsWithTheRun)
{
    constexpr const char* POSITION = "8/8/8/8/6R1/2B2p1K/5b2/7k";
    TTaskRequest request(BoardOf(POSITION), 6);
    request.m_bAnalyse = true;
    TRunSettings settings;
    const auto depthAfterRun = [&](bool bUse) {
        settings.m_bUsePredefinedSettings = bUse;
        Solve(request, settings);
        return request.m_shLookForQuickerMateDepth;
    };
    EXPECT_EQ(depthAfterRun(false), -1);
    EXPECT_EQ(depthAfterRun(true), 7);
    EXPECT_EQ(depthAfterRun(true), 7);
    EXPECT_EQ(depthAfterRun(false), -1);
    request.m_shLookForQuickerMateDepth = 3;
    EXPECT_EQ(depthAfterRun(true), 3) << "the user's own";
    EXPECT_EQ(depthAfterRun(false), 3);
}

TEST(Predefined, AFaultIsToldAndTheRunGoesOn)
{
    constexpr const char* POSITION = "7k/4KR2/5Pq1/8/3B4/5B2/8/8";
    TPredefinedTables tables;
    tables.m_predefinedHeuristics[POSITION] = {"LFQMDepth(#2)", "DLFU(g6,x1)", "SafeMode"};
    std::vector<std::string> vecMessages;
    const TPositionAnalysis analysis = Analyse(POSITION, &tables, &vecMessages);
    EXPECT_EQ(vecMessages,
              (std::vector<std::string>{"Error occurred in ApplyPredefinedAdditionalHeuristics() : "
                                        "Invalid square description at index 3"}));
    EXPECT_EQ(analysis.m_shLookForQuickerMateDepth, 3) << "what stands in front of it";
    EXPECT_EQ(analysis.m_set.m_nHeuristics, Analyse(POSITION, nullptr).m_set.m_nHeuristics);
}

} // namespace
} // namespace corvina
