#include "chess/moveset.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/setreader.h"
#include "search/blacksort.h"
#include "search/movescore.h"
#include "search/whitesort.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"

#include <bit>
#include <cstring>

namespace corvina
{
namespace
{

/// A position whose moves are sorted.
struct TSortedPosition : TThreadPosition
{
    TSortedPosition(const TChessboard& position, int nMoves)
        : TThreadPosition(position, nMoves, nMoves)
    {
        request.m_bUseRegister = false;
    }

    std::vector<TMove> Generated()
    {
        const int nMoves = board.IsWhiteToMove() ? board.GenerateWhiteMoves(m_moves.data())
                                                 : board.GenerateBlackMoves(m_moves.data());
        return {m_moves.data(), m_moves.data() + nMoves};
    }

    int SortWhite(TSortNotes* pNotes = nullptr)
    {
        return SortWhiteMoves(board, m_moves.data(), static_cast<int>(Generated().size()), pNotes);
    }

    int SortBlack(EBlackSort form = EBlackSort::Full)
    {
        bool bHasReply = false;
        return SortBlackMoves(board, m_moves.data(), static_cast<int>(Generated().size()),
                              &bHasReply, form);
    }

    std::vector<TMove> Moves(int nMoves) const
    {
        return {m_moves.m_aMoves, m_moves.m_aMoves + nMoves};
    }

    TMoveList m_moves;
};

constexpr int DEPTH = 15;

/// White's moves that the search makes: the legal ones but for captures that leave him no mating
/// material.
std::vector<TMove> MovesMade(TSortedPosition& position)
{
    auto vecMoves = position.Generated();
    std::erase_if(vecMoves, [&](TMove move) {
        return !position.context.MakeChild(position.board).MakeWhiteMove(&move);
    });
    return vecMoves;
}

bool AreSame(const std::vector<TMove>& vecMoves, const std::vector<TMove>& vecOthers)
{
    return std::equal(vecMoves.begin(), vecMoves.end(), vecOthers.begin(), IsSameMove);
}

TEST(Sorts, AListIsOrderedAndKeepsEachLegalMove)
{
    std::mt19937 random(31);
    int nDisturbed = 0;
    for (int i = 0; i < 400; ++i) {
        const TChessboard board =
            i % 2 ? ComposedPosition(random) : RandomPosition(random, 3 + i % 25);
        TSortedPosition white(board, DEPTH);
        const auto nGenerated = static_cast<int>(white.Generated().size());
        const auto vecMade = SortedTexts(MovesMade(white));
        const TChessboard before = white.board;
        const int nLegal = white.SortWhite();
        EXPECT_EQ(std::memcmp(&before, &white.board, sizeof before), 0);
        EXPECT_EQ(white.context.m_nSortNesting, 0);
        EXPECT_FALSE(white.context.m_bNoQuickerMate);
        ASSERT_EQ(SortedTexts(white.Moves(nLegal)), vecMade) << WriteFen(board, true);
        for (int k = 0; k < nGenerated; ++k) {
            EXPECT_EQ(ScoreOf(white.m_moves[k]) == SCORE_ILLEGAL, k >= nLegal);
            EXPECT_LE(k ? ScoreOf(white.m_moves[k - 1]) : SCORE_BEST, ScoreOf(white.m_moves[k]));
        }
        const auto vecOrder = white.Moves(nLegal);
        white.request.m_nOrderSeed = 7;
        EXPECT_EQ(white.SortWhite(), nLegal);
        nDisturbed += !AreSame(vecOrder, white.Moves(nLegal));
        const auto vecDisturbed = white.Moves(nLegal);
        white.SortWhite();
        EXPECT_EQ(SortedTexts(vecDisturbed), SortedTexts(vecOrder));
        EXPECT_TRUE(AreSame(vecDisturbed, white.Moves(nLegal)));

        TSortedPosition black(board, DEPTH - 1);
        if (black.board.m_whiteChecker != NO_CHECK)
            continue;
        const int nReplies = black.SortBlack(EBlackSort::KeepsAll);
        ASSERT_EQ(SortedTexts(black.Moves(nReplies)),
                  SortedTexts(TSlowPosition(board.m_board, EColour::Black).LegalMoves()))
            << WriteFen(board, true);
        for (int k = 1; k < nReplies; ++k)
            EXPECT_LE(ScoreOf(black.m_moves[k - 1]), ScoreOf(black.m_moves[k]));
    }
    EXPECT_GT(nDisturbed, 300);
}

/// A board with the given number of legal moves of White: kings and queens.
TChessboard BoardWithMoves(std::size_t nMoves)
{
    std::mt19937 random(4);
    for (;;) {
        const TChessboard board = RandomPosition(random, 4 + random() % 8);
        if (TSlowPosition(board.m_board, EColour::White).LegalMoves().size() == nMoves)
            return board;
    }
}

TEST(Sorts, TheWorstMovesOfALongListAreLeftOut)
{
    constexpr int aCases[][2] = {{24, 24}, {25, 25}, {26, 25}, {31, 25}, {32, 25}, {40, 32}};
    for (const auto& [nMoves, nKept] : aCases) {
        TSortedPosition position(BoardWithMoves(nMoves), DEPTH);
        EXPECT_EQ(position.SortWhite(), nMoves);
        const auto vecAll = position.Moves(nMoves);
        position.board.m_nHeuristics = SH_SKIPWORSTWHITEMOVES;
        TSortNotes notes;
        EXPECT_EQ(position.SortWhite(&notes), nKept);
        EXPECT_EQ(notes.m_nLeftOut, nMoves - nKept);
        EXPECT_EQ(SortedTexts(position.Moves(nKept)),
                  SortedTexts({vecAll.begin(), vecAll.begin() + nKept}));
    }
}

bool HasMatingMove(const TSlowPosition& position)
{
    const auto vecMoves = position.LegalMoves();
    return std::any_of(vecMoves.begin(), vecMoves.end(),
                       [&](const TMove& move) { return position.After(move).IsMate(); });
}

/// A check that leaves White one answer or two, each of which allows mate.
bool ForcesMateInTwo(const TSlowPosition& afterReply)
{
    const auto vecAnswers = afterReply.LegalMoves();
    return afterReply.InCheck(EColour::White) && vecAnswers.size() <= 2 &&
           std::all_of(vecAnswers.begin(), vecAnswers.end(), [&](const TMove& answer) {
               return HasMatingMove(afterReply.After(answer));
           });
}

TEST(Sorts, AReplyThatMatesWhiteDecidesTheNode)
{
    constexpr int SHORT = 8, LONG = 30;
    std::mt19937 random(77);
    int nMates = 0, nLongerMates = 0;
    for (int i = 0; i < 3000; ++i) {
        TChessboard board = RandomPosition(random, 6 + i % 16);
        const TSlowPosition slow(board.m_board, EColour::Black);
        if (slow.InCheck(EColour::White))
            continue;
        const auto vecReplies = slow.LegalMoves();
        const auto decides = [&](int nMoves, EBlackSort form) {
            return TSortedPosition(board, nMoves).SortBlack(form) == RESULT_REFUTED;
        };
        const bool bMate = HasMatingMove(slow);
        const bool bLonger =
            std::any_of(vecReplies.begin(), vecReplies.end(),
                        [&](const TMove& reply) { return ForcesMateInTwo(slow.After(reply)); });
        nMates += bMate;
        nLongerMates += bLonger && !bMate;
        ASSERT_EQ(decides(SHORT, EBlackSort::Light), bMate) << WriteFen(board, true);
        ASSERT_EQ(decides(LONG, EBlackSort::Full), bLonger) << WriteFen(board, true);
        ASSERT_FALSE(decides(LONG, EBlackSort::KeepsAll));
    }
    EXPECT_GT(nMates, 50);
    EXPECT_GT(nLongerMates, 10);
}

TEST(Sorts, WhatTheRegistersKnowOfTheRepliesIsTrue)
{
    constexpr int MATE = 3;
    std::mt19937 random(15);
    int anSeen[3] = {};
    for (int i = 0; i < 150; ++i) {
        TTaskRequest request(ComposedPosition(random), MATE);
        request.m_nMinRegisterPlies = 0;
        const auto vecSolutions = Solve(request, {}).m_vecSolutions;
        request.ClearStopState();
        TChessboard& root = *request.m_pChessboard;
        TThreadContext context(root.m_nMoves);
        PutOnThread(root, context);
        root.m_nPass = PASS_WITHOUT_HEURISTICS;
        for (TMove move : LegalMoves(root)) {
            TChessboard& child = context.MakeChild(root);
            if (!child.MakeWhiteMove(&move))
                continue;
            const bool bSolves = ContainsMove(vecSolutions, move);
            for (const int nFlags : {PROBE_ALL, PROBE_UP_TO_UNKNOWN}) {
                const int nKnown = ProbeBlackReplies(child, nFlags);
                ++anSeen[nKnown + 1];
                if (nKnown == REPLIES_UNKNOWN)
                    continue;
                ASSERT_EQ(nKnown == REPLIES_MATED, bSolves)
                    << WriteFen(root, true) << ' ' << MoveText(move);
            }
        }
        root.m_pThread = nullptr;
    }
    for (const int nSeen : anSeen)
        EXPECT_GT(nSeen, 20);
}

/// Tasks and their mates: long enough for all that the sorts do, and soon solved.
constexpr std::pair<const char*, int> g_aLongTasks[] = {
    {"8/8/8/8/8/1p6/1p6/1k1K3R", 6}, {"k7/P7/1Kp5/8/8/2P5/7R/8", 7}, {"k7/2K5/p7/P7/8/8/1P6/8", 8},
    {"8/1p6/kP6/p1K5/P7/8/8/7R", 7}, {"7k/8/5K1p/7P/8/8/6P1/8", 8},  {"kb6/p7/K7/8/8/8/1P6/5Q2", 7},
};

struct TWay
{
    const char* m_pSet;
    int m_nThreads;
    std::uint32_t m_nSeed;
    bool m_bQuickMode;
    bool m_bRunPass2 = true;
};

TSolveOutcome SolveBy(TSolveRequest& request, const TChessboard& board, int nMate, const TWay& way)
{
    *request.m_pChessboard = board;
    request.SetMateIn(nMate);
    ReadHeuristicsText(way.m_pSet, request.m_heuristicSet, &board);
    request.m_heuristicSet.m_params.m_bRunPass2 = way.m_bRunPass2;
    request.m_nOrderSeed = way.m_nSeed;
    const TRunSettings settings{
        .m_nThreads = way.m_nThreads, .m_bQuickMode = way.m_bQuickMode, .m_overrides = {}};
    return Solve(request, settings);
}

std::vector<std::string> SolutionsBy(const TChessboard& board, int nMate, const TWay& way)
{
    TSolveRequest request;
    return SortedTexts(SolveBy(request, board, nMate, way).m_vecSolutions);
}

void ExpectSolutions(const TChessboard& board, int nMate, const TWay& way,
                     const std::vector<std::string>& vecExpected)
{
    EXPECT_EQ(SolutionsBy(board, nMate, way), vecExpected)
        << WriteFen(board, true) << " #" << nMate << " with " << way.m_pSet << ", seed "
        << way.m_nSeed;
}

constexpr TWay YARDSTICK = {"none", 1, 0, false};

constexpr TWay g_aWays[] = {
    {"none", 1, 1, false},
    {"none", 2, 2, false},
    {"SH_KEEPKINGONTHEEDGE", 1, 0, true},
    {"SH_KEEPKINGONTHEEDGE", 1, 3, true},
    {"SH_KEEPKINGONTHEEDGE(C1,D1,M1)", 1, 4, false},
    {"SH_KEEPKINGWITHINEXTEDGE, SH_AREKINGSNEAR", 2, 5, false},
    {"SH_DONTLETKINGMOVE(excptns), SH_DONTRECEDEBLACKKING", 1, 6, true},
    {"SH_ASSERTBLACKKINGSURROUNDED(strict), SH_SKIPWORSTWHITEMOVES", 2, 7, true},
    {"SH_KEEPKINGONTHEEDGE, SH_FINDFORCEDMATE(#1-WithOtherHeuristics)", 1, 8, false},
};

TEST(Sorts, NoOrderChangesASolutionOfALongTask)
{
    for (const auto& [pFen, nMate] : g_aLongTasks) {
        const TChessboard board = BoardOf(pFen);
        const auto vecExpected = SolutionsBy(board, nMate, YARDSTICK);
        for (const TWay& way : g_aWays)
            ExpectSolutions(board, nMate, way, vecExpected);
    }
}

TEST(Sorts, NoOrderChangesASolutionOfAShortTask)
{
    std::mt19937 random(8);
    for (int i = 0; i < 300; ++i) {
        const TChessboard board =
            i % 3 ? ComposedPosition(random) : RandomPosition(random, 3 + i % 10);
        const int nMate = i % 20 ? 2 + i % 2 : 4 + i % 40 / 20;
        const auto vecExpected = SortedTexts(SolutionsOf(board, nMate, true));
        TWay way = g_aWays[static_cast<std::size_t>(i) % std::size(g_aWays)];
        way.m_nSeed += static_cast<std::uint32_t>(i);
        ExpectSolutions(board, nMate, way, vecExpected);
    }
}

TEST(Sorts, MovesLeftOutMakeARunDoubtful)
{
    // White has so many moves that some of the second ones are left out.
    const TChessboard board = BoardOf("8/8/8/3k4/8/8/8/Q3K3");
    constexpr int MATE = 6;
    const auto vecAll = SolutionsBy(board, MATE, YARDSTICK);
    TSolveRequest request;
    const TSolveOutcome outcome =
        SolveBy(request, board, MATE, {"SH_SKIPWORSTWHITEMOVES", 1, 0, false, false});
    EXPECT_GT(request.m_anCuts[std::countr_zero(SH_SKIPWORSTWHITEMOVES)], 0u);
    EXPECT_TRUE(outcome.m_bDoubtful);
    const auto vecFound = SortedTexts(outcome.m_vecSolutions);
    EXPECT_TRUE(std::includes(vecAll.begin(), vecAll.end(), vecFound.begin(), vecFound.end()));
}

} // namespace
} // namespace corvina
