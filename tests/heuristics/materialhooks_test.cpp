#include "heuristics/keyfigure.h"
#include "heuristics/rootunder.h"
#include "heuristics/themedpositions.h"
#include "search/shortmate.h"

namespace corvina
{
namespace
{

/// A line of White's move and Black's reply, and what the hook says of the reply.
struct TCase
{
    const char* m_pName;
    const char* m_pFen;
    const char* m_pSet;
    const char* m_pMoves;
    int m_nExpected;
};

constexpr const char* SAVE = "SH_SAVEQUEEN/ROOK";
constexpr const char* LOSE_FAR_PAWN = "SH_DONTLOSEANYFIGURES(incl.pawnsBeforePromo)";
constexpr const char* LOSE_PAWN = "SH_DONTLOSEANYFIGURES(incl.pawns)";
constexpr const char* LINE_E = "SH_KEYLINE(E)";
constexpr const char* DIAGONAL = "SH_KEYDIAGONAL(A1-H8)";
constexpr const char* STAY_E7 = "SH_DONTLETFIGUREUNBLOCK(EFF,E7)";
constexpr const char* STAY_H8 = "SH_DONTLETFIGUREUNBLOCK(EFF,H8)";
constexpr const char* KEY_E8 = "SH_KEYWHITEFIGURE(E8)";

constexpr TCase g_aCases[] = {
    {"queen lost, a rook stays", "r3k3/8/8/8/8/Q7/8/1K5R", SAVE, "Kb1-c2 Ra8:a3", 1},
    {"rook lost, the queen stays", "r3k3/8/8/8/8/R7/8/1K5Q", SAVE, "Kb1-c2 Ra8:a3", 0},
    {"rook lost, no queen", "r3k3/8/8/8/R7/8/8/1K5R", SAVE, "Kb1-b2 Ra8:a4", 1},
    {"knight lost", "r3k3/8/8/8/N7/8/8/1K5R", SAVE, "Kb1-b2 Ra8:a4", 0},

    {"pawn of the fifth row", "r3k3/8/8/P7/8/8/8/1K5R", LOSE_FAR_PAWN, "Kb1-b2 Ra8:a5", 0},
    {"pawn of the sixth row", "r3k3/8/P7/8/8/8/8/1K5R", LOSE_FAR_PAWN, "Kb1-b2 Ra8:a6", 1},
    {"any pawn", "r3k3/8/8/P7/8/8/8/1K5R", LOSE_PAWN, "Kb1-b2 Ra8:a5", 1},
    {"no pawn", "r3k3/8/P7/8/8/8/8/1K5R", "SH_DONTLOSEANYFIGURES", "Kb1-b2 Ra8:a6", 0},

    {"rook along the line", "k7/8/4r3/8/8/8/7Q/K7", LINE_E, "Ka1-b1 Re6-e4", 1},
    {"queen along the line", "k7/8/4q3/8/8/8/7Q/K7", LINE_E, "Ka1-b1 Qe6-e4", 1},
    {"rook off the line", "k7/8/4r3/8/8/8/7Q/K7", LINE_E, "Ka1-b1 Re6-d6", 0},
    {"rook onto the line", "k7/8/3r4/8/8/8/7Q/K7", LINE_E, "Ka1-b1 Rd6-e6", 0},
    {"pawn on the line", "k7/4p3/8/8/8/8/7Q/K7", LINE_E, "Ka1-b1 e7-e5", 0},
    {"bishop on the diagonal", "k7/8/5b2/8/8/8/7Q/4K3", DIAGONAL, "Ke1-d1 Bf6-g7", 1},
    {"bishop off the diagonal", "k7/8/5b2/8/8/8/7Q/4K3", DIAGONAL, "Ke1-d1 Bf6-e7", 0},

    {"pawn's single step", "k7/4p3/8/8/8/8/2Q5/1K6", STAY_E7, "Kb1-a1 e7-e6", 0},
    {"pawn's double step", "k7/4p3/8/8/8/8/2Q5/1K6", STAY_E7, "Kb1-a1 e7-e5", 1},
    {"rook goes two squares", "k6r/8/8/8/8/8/2Q5/1K6", STAY_H8, "Kb1-a1 Rh8-h6", 1},
    {"rook goes en prise", "k6r/8/8/8/8/8/3Q4/1K6", STAY_H8, "Kb1-a1 Rh8-h6", 0},
    {"rook lets mate", "k6r/2K5/8/8/8/1Q6/8/8", STAY_H8, "Qb3-b4 Rh8-h6", 0},
    {"listed figure captured", "k6r/8/5b2/8/3n4/8/1Q3Q2/1K6", "SH_DONTLETFIGUREUNBLOCK(EFF,D4)",
     "Qf2:d4 Bf6:d4", 0},

    {"key figure captured", "kn2R3/pp6/8/7b/8/8/8/K7", KEY_E8, "Ka1-b1 Bh5:e8", 1},
    {"comes between", "kn2R3/pp6/8/8/7b/8/8/K7", KEY_E8, "Ka1-b1 Bh4-d8", 1},
    {"goes elsewhere", "kn2R3/pp6/8/8/7b/8/8/K7", KEY_E8, "Ka1-b1 Bh4-g3", 0},

    {"queen goes free", "k7/8/4q3/8/8/8/7R/K7", "SH_SEASNAKE", "Ka1-b1 Qe6-d6", 1},
    {"queen stands attacked", "k7/8/4q3/8/8/8/7R/K7", "SH_SEASNAKE", "Ka1-b1 Qe6-h6", 0},
};

/// As the search makes a move: listed figures are followed.
TChessboard& MakeMove(TChessboard& board, TMove move)
{
    TChessboard& child = board.m_pThread->MakeChild(board);
    EXPECT_TRUE(board.IsWhiteToMove() ? child.MakeWhiteMove(&move) : child.MakeBlackMove(&move));
    return child;
}

TChessboard& MakeMoves(TChessboard& root, const char* pMoves)
{
    TChessboard* pBoard = &root;
    for (const std::string& strMove : Split(pMoves, ' '))
        pBoard = &MakeMove(*pBoard, ParseMove(*pBoard, strMove));
    return *pBoard;
}

TEST(MaterialHooks, CasesOfTheRules)
{
    for (const TCase& test : g_aCases) {
        SCOPED_TRACE(test.m_pName);
        TRootUnder root(BoardOf(test.m_pFen), test.m_pSet, 9);
        const std::uint32_t nHeuristic = root.t.request.m_heuristicSet.m_nHeuristics;
        root.t.board.m_nHeuristics = nHeuristic;
        TChessboard& board = MakeMoves(root.t.board, test.m_pMoves);
        EXPECT_EQ(IsBlackMoveDoubtful(board, nullptr), test.m_nExpected);
        EXPECT_EQ(root.t.context.m_nDoubtReason, test.m_nExpected ? nHeuristic : 0);
    }
}

TEST(MaterialHooks, FollowedFiguresAreStruckOffWhenTheyFall)
{
    TRootUnder root(BoardOf("k6r/8/5b2/8/3n4/8/1Q3Q2/1K6"), "SH_DONTLETFIGUREUNBLOCK(EFF,D4,F6)",
                    9);
    const TChessboard& board = MakeMoves(root.t.board, "Qf2:d4 Bf6-g7");
    EXPECT_EQ(board.m_trackedSquares[0], -1);
    EXPECT_EQ(board.m_trackedSquares[1], At("g7"));
}

/// Replies to each move of White against a figure that pins: both ways to end the pin are cut, and
/// no mate in one with them.
TEST(MaterialHooks, PinsAreEndedInBothWays)
{
    std::mt19937 random(91);
    TThemed themed(random);
    int nCaptures = 0, nInterpositions = 0;
    for (int i = 0; i < 1000; ++i) {
        const TChessboard position = themed.Make(ETheme::Pin);
        const TSquare key = PinningFigure(position);
        if (key == NO_SQUARE)
            continue;
        TRootUnder root(position, "SH_KEYWHITEFIGURE(" + SquareToString(key) + ")", 9);
        bool bCapture = false, bInterposition = false;
        for (const TMove& move : LegalMoves(root.t.board)) {
            TChessboard& child = MakeMove(root.t.board, move);
            for (const TMove& reply : LegalMoves(child)) {
                TChessboard& board = MakeMove(child, reply);
                if (IsBlackMoveDoubtful(board, nullptr) != HOOK_DOUBTFUL ||
                    root.t.context.m_nDoubtReason != SH_KEYWHITEFIGURE)
                    continue;
                (reply.m_to == key ? bCapture : bInterposition) = true;
                EXPECT_FALSE(IsMateInOne(board)) << WriteFen(board, true);
            }
        }
        nCaptures += bCapture;
        nInterpositions += bInterposition;
    }
    EXPECT_GE(nCaptures, 10);
    EXPECT_GE(nInterpositions, 10);
}

} // namespace
} // namespace corvina
