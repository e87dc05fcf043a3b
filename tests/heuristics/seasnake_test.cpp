#include "heuristics/differential.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/positionanalysis.h"
#include "heuristics/rootunder.h"
#include "heuristics/seasnake.h"
#include "heuristics/zugzwangpositions.h"

namespace corvina
{
namespace
{

/// The rook f2 can go to f3 and back; from e4 the White king takes f3 away from it.
constexpr const char* SNAKE = "k7/Pp6/1P6/8/3K1p2/4p1p1/4prp1/5b2";

bool Detects(const TChessboard& position, int nHalfMoves, THeuristicsParams& params)
{
    TChessboard board = position;
    board.m_nMoves = static_cast<std::uint16_t>(nHalfMoves);
    std::vector<TMove> vecMoves;
    return DetectSeaSnake(board, params, vecMoves, {});
}

TEST(SeaSnake, DetectionFillsTheRecord)
{
    THeuristicsParams p;
    ASSERT_TRUE(Detects(BoardOf(SNAKE), 21, p));
    EXPECT_EQ(p.m_pendulumSquare1, At("f3"));
    EXPECT_EQ(p.m_pendulumSquare2, At("f2"));
    EXPECT_EQ(p.m_pendulumFigure, BLACK_ROOK);
    EXPECT_EQ(p.m_approachSquare, At("e4"));
    EXPECT_EQ(p.m_nSeaSnakeStartMoves, 1);
    EXPECT_TRUE(p.m_bSeaSnakeAnalysed);
    // Too short a task; a free White pawn, or a figure, that can wait; the rook can be taken; it
    // has a third square; the Black king can move.
    constexpr const char* aOthers[] = {
        "k7/Pp6/1P6/8/3K1p2/4p1p1/P3prp1/5b2", "k7/Pp6/1P6/8/3K1p2/4p1p1/B3prp1/5b2",
        "k7/Pp6/1P6/8/3K1pP1/4p3/4prp1/5b2", "k7/Pp6/1P6/8/3K1p2/4p3/4prp1/5b2",
        "8/Pp6/1k6/1P6/3K1p2/4p1p1/4prp1/5b2"};
    EXPECT_FALSE(Detects(BoardOf(SNAKE), 13, p));
    EXPECT_EQ(p.m_pendulumSquare2, NO_KEY_SQUARE);
    for (const char* pFen : aOthers)
        EXPECT_FALSE(Detects(BoardOf(pFen), 21, p)) << pFen;
}

TEST(SeaSnake, DetectedPatternsAreWhatTheySay)
{
    std::mt19937 random(81);
    int nFound = 0, nLongWalks = 0;
    for (int i = 0; i < 500000; ++i) {
        const TChessboard board = CagedPosition(random);
        THeuristicsParams p;
        if (!Detects(board, 31, p) || p.m_bDynamicSeaSnake)
            continue;
        ++nFound;
        const std::string strFen = WriteFen(board, true);
        const TSquare here = p.m_pendulumAtRoot;
        const TSquare there =
            here == p.m_pendulumSquare1 ? p.m_pendulumSquare2 : p.m_pendulumSquare1;
        TChessboard swung = board;
        std::swap(swung.m_board[here], swung.m_board[there]);
        const auto expectSwing = [&](const TChessboard& position, TSquare from, TSquare to) {
            bool bKingMoves;
            const TMove move{from, to, 0, 0};
            EXPECT_EQ(FigureMovesOfBlack(position, &bKingMoves),
                      TTexts{FormatMove(move, p.m_pendulumFigure, false)})
                << strFen;
            EXPECT_FALSE(bKingMoves) << strFen;
        };
        expectSwing(board, here, there);
        expectSwing(swung, there, here);
        EXPECT_EQ(Distance(p.m_approachSquare, p.m_pendulumSquare1), 1) << strFen;
        EXPECT_EQ(p.m_walkSquares[0], p.m_approachSquare);
        for (int k = 0; k < p.m_nWalkSquares; ++k) {
            const TSquare square = p.m_walkSquares[k];
            EXPECT_FALSE(board.m_board[square] & COLOUR_BLACK) << strFen;
            EXPECT_TRUE(k == 0 || k > p.m_nPathSquares ||
                        Distance(square, p.m_walkSquares[k - 1]) == 1)
                << strFen;
        }
        const std::uint8_t* pCorners = p.m_triangleSquares;
        for (int k = 0; k < 3; ++k)
            EXPECT_EQ(Distance(pCorners[k], pCorners[(k + 1) % 3]), 1) << strFen;
        EXPECT_EQ(p.m_turnBackSquare, pCorners[2]);
        nLongWalks += p.m_nWalkSquares > 3;
    }
    EXPECT_GT(nFound, 20);
    EXPECT_GT(nLongWalks, 3);
}

TEST(SeaSnake, KingStaysOnTheWalkUntilTheApproachSquare)
{
    TRootUnder root(BoardOf(SNAKE), "SH_SEASNAKE", 19);
    const TThreadContext& context = root.t.context;
    ASSERT_EQ(context.m_nWalkSquares, 3);
    TChessboard& onWalk = root.Play("Kd4-d5 Rf2-f3");
    const TTexts setMoves = ListOf(onWalk, GenerateSeaSnakeMoves);
    EXPECT_FALSE(setMoves.empty());
    for (const std::string& strMove : setMoves) {
        const TMove move = ParseMove(onWalk, strMove);
        EXPECT_EQ(onWalk.m_board[move.m_from], WHITE_KING) << strMove;
        EXPECT_TRUE(std::count(context.m_walkSquares,
                               context.m_walkSquares + context.m_nWalkSquares, move.m_to))
            << strMove;
    }
    TChessboard& atGoal = root.Play("Kd4-e4 Rf2-f3");
    EXPECT_EQ(ListOf(atGoal, GenerateSeaSnakeMoves), TTexts{});
    EXPECT_TRUE(atGoal.m_nHeuristics & SH_SEASNAKE);
}

TEST(SeaSnake, GivesUpNearTheEndAndWithoutThePendulum)
{
    // "Only after" three moves, and one to the approach square: plain from 13 half-moves down.
    for (const int nHalfMoves : {15, 17}) {
        TRootUnder root(BoardOf(SNAKE), "SH_SEASNAKE(,,3)", nHalfMoves);
        ASSERT_EQ(root.t.context.m_nSeaSnakeStartMoves, 1);
        TChessboard& board = root.Play("Kd4-d5 Rf2-f3");
        EXPECT_EQ(ListOf(board, GenerateSeaSnakeMoves).empty(), nHalfMoves == 15);
        EXPECT_EQ((board.m_nHeuristics & SH_SEASNAKE) == 0, nHalfMoves == 15);
        EXPECT_EQ(board.m_nHeuristicsParams, ComputeHeurParams(board));
    }
    TRootUnder root(BoardOf(SNAKE), "SH_SEASNAKE, SH_AREKINGSNEAR", 21);
    TChessboard& taken = root.Play("Kd4-e4 Rf2-f3 Ke4:f3 e2-e1Q");
    EXPECT_EQ(ListOf(taken, GenerateSeaSnakeMoves), TTexts{});
    EXPECT_EQ(taken.m_nHeuristics, SH_AREKINGSNEAR);
}

TEST(SeaSnake, PawnPromotesWhereThePendulumHasGone)
{
    const struct
    {
        const char* m_pFen;
        bool m_bMate; ///< soon
        TTexts m_setMoves;
    } aCases[] = {
        {"7k/KPp4p/7P/8/8/8/8/6R1", true, {}},
        {"3nk3/KPp5/8/8/8/8/8/8", false, {"b7-b8Q", "b7-b8R", "b7-b8B", "b7-b8N"}},
        {"1n2k3/KPp5/8/8/8/8/8/8", false, {}}, // somebody else stands there
        {"5q2/KPp1k3/8/8/8/8/8/8", false, {}}, // the queen holds the square
    };
    for (const auto& test : aCases) {
        TRootUnder root(BoardOf(test.m_pFen), "SH_SEASNAKE", 21);
        root.t.context.m_pendulumSquare1 = At("b8");
        root.t.context.m_pendulumSquare2 = At("a7");
        root.t.context.m_pendulumFigure = BLACK_ROOK;
        root.t.board.m_LastMove = {};
        TMoveList moves;
        const TNarrowedList list = GenerateSeaSnakeMoves(root.t.board, moves.data());
        EXPECT_EQ(list.m_bMate, test.m_bMate) << test.m_pFen;
        EXPECT_EQ(Texts(root.t.board, moves.data(), list.m_nMoves), test.m_setMoves);
    }
}

TEST(SeaSnake, FindsTheKeysOfALongTaskInAFractionOfThePositions)
{
    // Mates in five moves, and so in eight; the search without heuristics is measured at seven.
    for (const char* pFen :
         {"4K3/4P1p1/7p/3p1pp1/3P1kpr/2pP3p/4P3/5N2", "4K3/4P3/7p/3p1pp1/p2P1kpr/2pP3p/4P3/5N2"})
    {
        const TChessboard board = BoardOf(pFen);
        const auto vecKeys = SolveWith(board, 5, "none").m_vecSolutions;
        const TRunOf plain = SolveWith(board, 7, "none");
        const TRunOf pass = SolveWith(board, 8, "SH_SEASNAKE", 1, false);
        EXPECT_EQ(vecKeys.size(), 4u);
        EXPECT_EQ(plain.m_vecSolutions, vecKeys) << pFen;
        EXPECT_EQ(pass.m_vecSolutions, vecKeys) << pFen;
        EXPECT_LT(4 * pass.m_nPositions, plain.m_nPositions) << pFen;
    }
}

} // namespace
} // namespace corvina
