#include "chess/fen.h"
#include "chess/geometry.h"
#include "chess/moveset.h"
#include "chess/notation.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/positionanalysis.h"
#include "heuristics/randomsets.h"
#include "heuristics/seasnake.h"
#include "heuristics/setreader.h"
#include "heuristics/triangles.h"
#include "heuristics/zugzwangpositions.h"
#include "search/rootsetup.h"
#include "search/shortmate.h"
#include "search/whitesort.h"
#include "support/positions.h"

#include <gtest/gtest.h>

#include <set>

namespace corvina
{
namespace
{

/// The rook f2 can go to f3 and back; from e4 the White king takes f3 away from it.
constexpr const char* SNAKE = "k7/Pp6/1P6/8/3K1p2/4p1p1/4prp1/5b2";

/// Black is shut in but for the rook c5 in its cage; b1, a1 and a2 are White's triangle.
constexpr const char* TRIANGLE = "2k5/1pPp4/1ppP4/p1rp4/PppP4/1PP5/8/1K6";

TChessboard BoardOf(const char* pFen)
{
    TChessboard board;
    EXPECT_TRUE(ReadFen(board, pFen)) << pFen;
    return board;
}

TSquare At(const char* pSquare)
{
    return String2Square(pSquare);
}

/// A root that takes part in a run under a set, and a line from it.
struct TRootUnder
{
    TRootUnder(const TChessboard& board, const std::string& strSet, int nHalfMoves)
        : t(board, nHalfMoves)
    {
        ReadHeuristicsText(strSet, t.request.m_heuristicSet, &t.board);
        TakeUpHeuristics(t.board);
        PutOnThread(t.board, t.context);
    }

    TChessboard& Play(const std::string& strMoves)
    {
        TChessboard* pBoard = &t.board;
        for (const std::string& strMove : Split(strMoves, ' '))
            pBoard = &PlayMove(*pBoard, ParseMove(*pBoard, strMove));
        return *pBoard;
    }

    TSetPosition t;
};

std::set<std::string> Texts(const TChessboard& board, const TMove* pMoves, int nMoves)
{
    std::set<std::string> setTexts;
    for (int i = 0; i < nMoves; ++i)
        setTexts.insert(PrintMove(pMoves[i], board));
    return setTexts;
}

std::set<std::string> ListOf(TChessboard& board, TNarrowedList (*list)(TChessboard&, TMove*))
{
    TMoveList moves;
    const TNarrowedList narrowed = list(board, moves.data());
    return Texts(board, moves.data(), narrowed.m_nMoves);
}

using TTexts = std::set<std::string>;

// The sea snake

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

/// Black's moves with his men other than king and pawns, were it his turn.
TTexts FigureMovesOfBlack(const TChessboard& board, bool* pKingMoves)
{
    TTestLine line(WriteFen(board, true), 20);
    TTexts setMoves;
    *pKingMoves = false;
    for (const TMove& move : LegalMoves(line.board)) {
        const TFigure figure = line.board.m_board[move.m_from];
        *pKingMoves |= figure == BLACK_KING;
        if (figure != BLACK_KING && figure != BLACK_PAWN)
            setMoves.insert(PrintMove(move, line.board));
    }
    return setMoves;
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

TEST(SeaSnake, NewQueenThatNobodyAttacksIsDoubtful)
{
    constexpr const char* FEN = "k7/Pp6/1P6/8/3K1p2/4p1p1/4p1pB/5b2";
    const struct
    {
        const char* m_pMoves;
        int m_nNesting;
        int m_nAnswer;
    } aCases[] = {
        {"Kd4-d5 e2-e1Q", 0, HOOK_DOUBTFUL},
        {"Kd4-d5 e2-e1Q", 1, HOOK_PASSES}, // a short mate search is open
        {"Kd4-d5 g2-g1Q", 0, HOOK_PASSES}, // the bishop takes her
        {"Bh2:g3 g2-g1Q", 0, HOOK_DOUBTFUL},
        {"Kd4-d5 f4-f3", 0, HOOK_PASSES},
    };
    for (const auto& test : aCases) {
        TRootUnder root(BoardOf(FEN), "SH_SEASNAKE", 21);
        TChessboard& board = root.Play(test.m_pMoves);
        root.t.context.m_nQuickerMateNesting = static_cast<std::uint8_t>(test.m_nNesting);
        EXPECT_EQ(IsBlackMoveDoubtful(board, nullptr), test.m_nAnswer) << test.m_pMoves;
        if (test.m_nAnswer == HOOK_DOUBTFUL) {
            EXPECT_EQ(root.t.context.m_nDoubtReason, 0x8000000u);
        }
    }
}

TEST(SeaSnake, AnalysisTakesTheForcedMateOut)
{
    const struct
    {
        const char* m_pFen;
        bool m_bSafe; ///< the first of two Black pawns on a file has no free way
    } aCases[] = {{SNAKE, false}, {"8/8/p5pp/rp4pk/1p4pp/p3K2P/P7/8", true}};
    for (const auto& test : aCases) {
        TSolveRequest request;
        TChessboard& root = *request.m_pChessboard;
        root = BoardOf(test.m_pFen);
        request.SetMateIn(12);
        root.m_pRequest = &request;
        root.CheckStartPosition(request.m_nRequestedMoves, true);
        const TPositionAnalysis analysis = CheckPositionType(root);
        EXPECT_TRUE(analysis.m_set.m_nHeuristics & SH_SEASNAKE) << test.m_pFen;
        EXPECT_FALSE(analysis.m_set.m_nHeuristics & SH_FINDFORCEDMATE);
        EXPECT_EQ(analysis.m_bSafeMode, test.m_bSafe) << test.m_pFen;
    }
}

// Triangles

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

TEST(ZugzwangTexts, SquaresMakeSense)
{
    TChessboard board = BoardOf(SNAKE);
    const struct
    {
        const char* m_pText;
        const char* m_pError; ///< how it begins; null: none
    } aCases[] = {
        {"SH_SEASNAKE(E4,D4,0,F3-F2)", nullptr},
        {"SH_SEASNAKE(,,F3-F2)", nullptr},
        {"SH_SEASNAKE(E4,D4,F3-F3)", "Invalid parameter of SH_SEASNAKE"},
        {"SH_SEASNAKE(E4,D4,0,F3-)", "Invalid parameter of SH_SEASNAKE"},
        {"SH_SEASNAKE(E4,D4,200)", "Invalid parameter of SH_SEASNAKE"},
        {"SH_ZUGZWANGTRIANGLES(D4,D5,E5)", nullptr},
        {"SH_ZUGZWANGTRIANGLES(D4,D5)", "Invalid parameter of SH_ZUGZWANGTRIANGLES"},
        {"SH_ZUGZWANGTRIANGLES(D4,D5,D4)", "Invalid parameter of SH_ZUGZWANGTRIANGLES"},
        {"SH_ZUGZWANGTRIANGLES(F2,F3,F4)", "Invalid parameter of SH_ZUGZWANGTRIANGLES"},
    };
    for (const auto& test : aCases) {
        THeuristicSet set;
        const std::string strError =
            FailureText([&] { ReadHeuristicsText(test.m_pText, set, &board); });
        EXPECT_EQ(strError.empty(), test.m_pError == nullptr) << test.m_pText << strError;
        EXPECT_TRUE(strError.starts_with(test.m_pError ? test.m_pError : "")) << strError;
    }
    // What the user leaves out is found on the board.
    const TRootUnder told(board, "SH_SEASNAKE(E4,,0,F3-F2)", 11);
    EXPECT_EQ(told.t.context.m_pendulumFigure, BLACK_ROOK);
    EXPECT_GT(told.t.context.m_nWalkSquares, 2);
    EXPECT_FALSE(told.t.context.m_bSeaSnakeAnalysed);
}

} // namespace
} // namespace corvina
