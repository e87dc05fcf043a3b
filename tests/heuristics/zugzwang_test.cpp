#include "heuristics/heuristicbits.h"
#include "heuristics/rootunder.h"
#include "heuristics/triangles.h"
#include "heuristics/zugzwangpositions.h"
#include "search/shortmate.h"
#include "search/whitesort.h"

namespace corvina
{
namespace
{

/// The rook f2 can go to f3 and back; from e4 the White king takes f3 away from it.
constexpr const char* SNAKE = "k7/Pp6/1P6/8/3K1p2/4p1p1/4prp1/5b2";

/// Black is shut in but for the rook c5 in its cage; b1, a1 and a2 are White's triangle.
constexpr const char* TRIANGLE = "2k5/1pPp4/1ppP4/p1rp4/PppP4/1PP5/8/1K6";

TEST(ZugzwangTriangle, DetectedOnesComeBackAndHoldBlack)
{
    std::mt19937 random(82);
    int nFound = 0;
    for (int i = 0; i < 100000; ++i) {
        TChessboard board = CagedPosition(random);
        board.m_nMoves = 31;
        THeuristicsParams p;
        if (!DetectTriangles(board, p))
            continue;
        ++nFound;
        TSquare at = p.m_triangleOrigin;
        for (const TSquare to : {p.m_aTriangleFields[0], p.m_aTriangleFields[1], at}) {
            TTestLine white(WriteFen(board, true), 21);
            board = PlayMove(white.board, {at, to, 0, 0});
            bool bKingMoves;
            EXPECT_LE(FigureMovesOfBlack(board, &bKingMoves).size(), 1u);
            EXPECT_FALSE(bKingMoves) << WriteFen(board, true);
            at = to;
        }
    }
    EXPECT_GT(nFound, 40);
}

TEST(ZugzwangTriangle, AWalkThatHasBegunGoesOn)
{
    TRootUnder root(BoardOf(TRIANGLE), "SH_ZUGZWANGTRIANGLES(B1,A1,A2)", 21);
    const auto list = [&](const char* pMoves) {
        TChessboard& board = root.Play(pMoves);
        TMoveList moves;
        return Texts(board, moves.data(), GenerateTriangleMoves(board, moves.data()));
    };
    const TMove swing = [&] {
        TChessboard& board = PlayMove(root.t.board, {At("b1"), At("a1"), 0, 0});
        for (const TMove& move : LegalMoves(board)) {
            if (board.m_board[move.m_from] == BLACK_ROOK)
                return move;
        }
        return TMove{};
    }();
    const std::string strOut = FormatMove(swing, BLACK_ROOK, false);
    const std::string strBack = FormatMove({swing.m_to, swing.m_from, 0, 0}, BLACK_ROOK, false);
    const std::string strFirst = "Kb1-a1 " + strOut, strSecond = strFirst + " Ka1-a2 " + strBack;
    EXPECT_EQ(list(strFirst.c_str()), TTexts{"Ka1-a2"});
    EXPECT_EQ(list(strSecond.c_str()), TTexts{"Ka2-b1"});
    EXPECT_EQ(list((strSecond + " Ka2-b1 " + strOut).c_str()), TTexts{});
    EXPECT_EQ(list(("Kb1-c1 " + strOut).c_str()), TTexts{});

    TChessboard& board = root.Play(strSecond);
    EXPECT_TRUE(FitsTriangle(board));
    TMoveList moves;
    const int nMoves = board.GenerateWhiteMoves(moves.data());
    const TTexts setBefore = Texts(board, moves.data(), nMoves);
    MoveTriangleMovesFirst(board, nMoves, moves.data());
    EXPECT_EQ(Texts(board, moves.data(), 2), (TTexts{"Ka2-a1", "Ka2-b1"}));
    EXPECT_EQ(Texts(board, moves.data(), nMoves), setBefore);
}

TEST(ZugzwangTriangle, PreferredMovesComeFirstInTheFullSort)
{
    TRootUnder root(BoardOf(TRIANGLE), "SH_ZUGZWANGTRIANGLES(B1,A1,A2)", 21);
    ASSERT_TRUE(root.t.board.m_nPositionFlags & TChessboard::POSITION_PREFERREDMOVES);
    TMoveList moves;
    const int nMoves = root.t.board.GenerateWhiteMoves(moves.data());
    ASSERT_GT(SortWhiteMoves(root.t.board, moves.data(), nMoves), 3);
    EXPECT_EQ(PrintMove(moves[0], root.t.board), "Kb1-a1");
}

// The map of zugzwang positions

constexpr const char* KINGS = "k7/p1p5/P1P5/8/8/8/3P4/K6B";

TEST(ZugzwangMap, IsReadInItsOrder)
{
    TRootUnder root(BoardOf(KINGS), "SH_ZUGZWANG(Bh1-g2, Ka1-b2,Ka1-a2,d2-d4,Ka1-b2)", 31);
    const TZugzwangMap& map = root.t.request.m_zugzwangMap;
    EXPECT_EQ(ZugzwangMovesText(map), "Ka1-a2,Ka1-b2,Bh1-g2,d2-d4");
    std::vector<int> vecNumbers;
    for (const auto& [key, entry] : map) {
        vecNumbers.push_back(key.m_nNumber);
        EXPECT_EQ(entry.m_board.m_board[key.m_to] & COLOUR_WHITE, COLOUR_WHITE);
        EXPECT_EQ(entry.m_board.m_board[key.m_from], NO_FIGURE);
    }
    EXPECT_EQ(vecNumbers, (std::vector<int>{3, 2, 1, 4}));
    EXPECT_TRUE(root.t.board.m_nHeuristics & SH_ZUGZWANG);
    EXPECT_EQ(GetHeuristicsText(root.t.board, false), "SH_ZUGZWANG(Ka1-a2,Ka1-b2,Bh1-g2,d2-d4)");
    const TRootUnder other(BoardOf(KINGS), "SH_ZUGZWANG(Bh1-g2)", 31);
    EXPECT_NE(other.t.board.m_nHeuristicsParams, root.t.board.m_nHeuristicsParams);
    // Without a map the heuristic is in no run.
    EXPECT_EQ(TRootUnder(BoardOf(KINGS), "SH_ZUGZWANG, SH_AREKINGSNEAR", 31).t.board.m_nHeuristics,
              SH_AREKINGSNEAR);
}

TEST(ZugzwangMap, RefusesWhatIsNoMove)
{
    TChessboard board = BoardOf(KINGS);
    for (const char* pText : {"Ka1-a3", "Kb1-a1", "xyz", "Ka1-a2,d2-d5", "Ka1-a2,"}) {
        THeuristicSet set;
        const std::string strError = FailureText(
            [&] { ReadHeuristicsText("SH_ZUGZWANG(" + std::string(pText) + ")", set, &board); });
        EXPECT_TRUE(strError.starts_with("Invalid move for SH_ZUGZWANG")) << pText << strError;
        EXPECT_TRUE(set.m_vecZugzwangMoves.empty());
    }
}

TEST(ZugzwangMap, WhiteComesBackAndBlackWaits)
{
    // The Black bishop waits on g8 and h7; a step of the pawn is no waiting.
    TRootUnder root(BoardOf("k5b1/p1p5/P1P2p2/8/8/8/8/K7"), "SH_ZUGZWANG(Ka1-b2)", 31);
    EXPECT_TRUE(IsZugzwangAllowedMove(root.t.board, {At("a1"), At("b2"), 0, 0}));
    EXPECT_FALSE(IsZugzwangAllowedMove(root.t.board, {At("a1"), At("b1"), 0, 0}));
    EXPECT_TRUE(IsZugzwangReturn(root.Play("Ka1-b2 Bg8-h7")));
    EXPECT_FALSE(IsZugzwangReturn(root.Play("Ka1-b2 f6-f5")));
    EXPECT_FALSE(IsZugzwangReturn(root.Play("Ka1-b1 Bg8-h7")));
    EXPECT_FALSE(IsZugzwangReturn(root.t.board));
    EXPECT_FALSE(LookForQuickerMate(root.Play("Ka1-b2 Bg8-h7")));

    const auto list = [](TChessboard& board) {
        TMoveList moves;
        return Texts(board, moves.data(), GenerateZugzwangMoves(board, moves.data()));
    };
    EXPECT_EQ(list(root.Play("Ka1-b1 f6-f5 Kb1-a1 f5-f4")), TTexts{"Ka1-b2"});
    EXPECT_EQ(list(root.Play("Ka1-b1 f6-f5 Kb1-c1 f5-f4")), TTexts{});
    EXPECT_EQ(list(root.Play("Ka1-b1 f6-f5 Kb1-a1 Ka8-b8")), TTexts{}); // another Black king

    TRootUnder shorter(BoardOf("k5b1/p1p5/P1P2p2/8/8/8/8/K7"), "SH_ZUGZWANG(Ka1-b2)", 17);
    TChessboard& late = shorter.Play("Ka1-b1 f6-f5 Kb1-a1 f5-f4");
    EXPECT_EQ(ListOf(late, ListNarrowedMoves), TTexts{});
    EXPECT_EQ(late.m_nHeuristics, 0u);
}

// Texts

} // namespace
} // namespace corvina
