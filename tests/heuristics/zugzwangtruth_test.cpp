#include "chess/fen.h"
#include "chess/notation.h"
#include "heuristics/differential.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/seasnake.h"
#include "heuristics/setreader.h"
#include "heuristics/triangles.h"
#include "heuristics/zugzwangpositions.h"
#include "support/positions.h"
#include "support/slowchess.h"

#include <gtest/gtest.h>

#include <bit>

namespace corvina
{
namespace
{

/// Sea snakes in which White has a mate all the same.
constexpr const char* g_aSolvedSnakes[] = {
    "5K1k/6p1/5PP1/8/3p4/2p1p3/2prp3/3b4",     "k1K5/pp6/PP6/p7/rp6/1p6/p7/8",
    "3k3b/2pP1Rpr/2P3p1/4K2p/7P/8/8/8",        "6k1/5pPp/7P/1K5N/1P3p2/4prp1/4p1p1/5b2",
    "8/6p1/6Pk/5Kpp/1p4PP/prp5/p1p5/1b6",      "7b/4ppp1/4pkpr/1K2pppp/5P1P/8/8/8",
    "8/8/p3K3/rpp5/1pkp4/pppp4/PPPP4/8",       "8/2K3p1/3Ppp1p/3pkprp/3pppp1/3PPPP1/8/8",
    "5K2/p7/1ppp4/rpkp4/pppp4/PPPP4/8/8",      "k7/ppK5/PP6/8/2p5/1p1p4/1prp4/2b5",
    "8/1K6/P7/kp6/1p4p1/1P3prp/5p1p/6b1",      "7K/6Pp/6pk/6pP/5pP1/4prp1/4p1p1/5b2",
    "8/2p5/1p1pppKP/1prpkp2/2ppPp2/3P1P2/8/8", "5b2/2ppp1p1/2pkprp1/K1pppp2/2PPPP2/8/8/8",
};

/// The same of triangles.
constexpr const char* g_aSolvedTriangles[] = {
    "8/b1pK4/PpP5/kP6/Pp6/1P6/8/8",
    "N7/bpp5/kp6/Pp6/1P6/8/8/K7",
    "k7/ppP5/PP6/3pp3/K1p1rp2/2PppP2/3PP3/8",
    "1bN5/2p5/1pppp3/1Ppkp3/2ppp2K/2PP4/5P2/8",
    "6K1/3p1p2/p1pP1P2/kpPb1p2/ppp1pP2/PPP1P3/8/8",
    "4k3/b1ppPp2/1pPP1P2/1P6/3K4/8/8/8",
};

constexpr int PLIES_OF_DETECTION = 21;

std::string SquareName(int square)
{
    return {static_cast<char>('A' + FileOf(square)), static_cast<char>('1' + RowOf(square))};
}

/// Which patterns the analysis sees, were the task a long one.
struct TPatterns
{
    explicit TPatterns(TChessboard board)
    {
        board.m_nMoves = PLIES_OF_DETECTION;
        std::vector<TMove> vecMoves;
        m_bSeaSnake = DetectSeaSnake(board, m_params, vecMoves, {});
        m_bTriangle = DetectTriangles(board, m_params);
    }

    bool Has(std::uint32_t nHeuristic) const
    {
        return nHeuristic == SH_SEASNAKE            ? m_bSeaSnake
               : nHeuristic == SH_ZUGZWANGTRIANGLES ? m_bTriangle
                                                    : true;
    }

    THeuristicsParams m_params;
    bool m_bSeaSnake, m_bTriangle;
};

/// The sides have so few moves that long tasks are solved soon.
bool IsQuiet(const TChessboard& board)
{
    constexpr std::size_t MAX_MOVES = 11, MAX_BLACK_MOVES = 5;
    const std::string strFen = WriteFen(board, true);
    TTestLine white(strFen, 3), black(strFen, 2);
    return LegalMoves(white.board).size() <= MAX_MOVES &&
           LegalMoves(black.board).size() <= MAX_BLACK_MOVES;
}

/// A position that shows the pattern of a heuristic. The first ones have solutions.
TChessboard PositionWith(std::uint32_t nHeuristic, std::size_t i, std::mt19937& random)
{
    TChessboard board;
    const char* pFen = nullptr;
    if (nHeuristic != SH_ZUGZWANGTRIANGLES && i < std::size(g_aSolvedSnakes))
        pFen = g_aSolvedSnakes[i];
    if (nHeuristic == SH_ZUGZWANGTRIANGLES && i < std::size(g_aSolvedTriangles))
        pFen = g_aSolvedTriangles[i];
    if (pFen) {
        EXPECT_TRUE(ReadFen(board, pFen));
        EXPECT_TRUE(TPatterns(board).Has(nHeuristic)) << pFen;
        return board;
    }
    do {
        board = CagedPosition(random);
    } while (!TPatterns(board).Has(nHeuristic) || !IsQuiet(board));
    return board;
}

/// A heuristic in a form of its parameters. A letter with a dollar stands for what depends on the
/// position: $W approach and turn-back square, $P the pendulum, $T the triangle, $M some of White's
/// first moves.
struct TForm
{
    std::uint32_t m_nHeuristic;
    const char* m_pText;
    int m_nMate; ///< of the tasks, the moves to the approach square apart
};

constexpr TForm g_aForms[] = {
    {SH_SEASNAKE, "SH_SEASNAKE", 5},          {SH_SEASNAKE, "SH_SEASNAKE($W)", 5},
    {SH_SEASNAKE, "SH_SEASNAKE($W,1,$P)", 6}, {SH_ZUGZWANGTRIANGLES, "SH_ZUGZWANGTRIANGLES($T)", 4},
    {SH_ZUGZWANG, "SH_ZUGZWANG($M)", 3},
};

void Replace(std::string& strText, const char* pWhat, const std::string& strBy)
{
    const auto position = strText.find(pWhat);
    if (position != std::string::npos)
        strText.replace(position, 2, strBy);
}

/// One or two legal moves, the first of them often a key.
std::string SomeMoves(const TTask& task, std::mt19937& random)
{
    TTestLine line(WriteFen(task.m_board, true), 3);
    const std::vector<TMove> vecMoves = LegalMoves(line.board);
    const auto any = [&] { return PrintMove(vecMoves[random() % vecMoves.size()], line.board); };
    if (vecMoves.empty())
        return "";
    std::string strMoves = any() + (random() % 2 ? "," + any() : "");
    for (const TMove& move : vecMoves) {
        if (random() % 2 && !task.m_vecSolutions.empty() &&
            MoveText(move) == task.m_vecSolutions.front())
            strMoves = PrintMove(move, line.board);
    }
    return strMoves;
}

std::string SetFor(const TForm& form, const TTask& task, std::mt19937& random)
{
    const THeuristicsParams p = TPatterns(task.m_board).m_params;
    std::string strText = form.m_pText;
    Replace(strText, "$W", SquareName(p.m_approachSquare) + "," + SquareName(p.m_turnBackSquare));
    Replace(strText, "$P", SquareName(p.m_pendulumSquare1) + "-" + SquareName(p.m_pendulumSquare2));
    Replace(strText, "$T",
            SquareName(p.m_triangleOrigin) + "," + SquareName(p.m_aTriangleFields[0]) + "," +
                SquareName(p.m_aTriangleFields[1]));
    Replace(strText, "$M", SomeMoves(task, random));
    return strText;
}

/// Long enough for the list to come into play, and not longer.
int MateFor(const TForm& form, const TChessboard& board, std::size_t i)
{
    constexpr int MAX_START = 1;
    const int nStart =
        form.m_nHeuristic == SH_SEASNAKE ? TPatterns(board).m_params.m_nSeaSnakeStartMoves : 0;
    return form.m_nMate + std::min(nStart, MAX_START) + static_cast<int>(i % 2);
}

TEST(ZugzwangTruth, EachFormCutsAndChangesNoSolution)
{
    constexpr std::size_t TASKS = 26;
    constexpr int MIN_POSITIONS = 10;
    std::mt19937 random(71);
    for (const TForm& form : g_aForms) {
        int nCutting = 0, nSolved = 0;
        for (std::size_t i = 0; i < TASKS; ++i) {
            const TChessboard board = PositionWith(form.m_nHeuristic, i, random);
            const TTask task = MakeTask(board, MateFor(form, board, i));
            const std::string strSet = SetFor(form, task, random);
            const TRunOf run = SolveWith(board, task.m_nMate, strSet, 1 + static_cast<int>(i % 2));
            nCutting += run.m_anCuts[std::countr_zero(form.m_nHeuristic)] != 0;
            nSolved += !task.m_vecSolutions.empty();
            ASSERT_EQ(run.m_vecSolutions, task.m_vecSolutions) << Describe(task, strSet);
        }
        EXPECT_GE(nCutting, MIN_POSITIONS) << form.m_pText;
        EXPECT_GT(nSolved, 2) << form.m_pText;
    }
}

/// Two forms, or one, with heuristics of other kinds.
TEST(ZugzwangTruth, RandomSetsChangeNoSolution)
{
    constexpr const char* aOthers[] = {"SH_AREKINGSNEAR",
                                       "SH_DONTRECEDEBLACKKING",
                                       "SH_KEEPKINGONTHEEDGE(C1)",
                                       "SH_DONTLETKINGMOVE",
                                       "SH_DONTLETKINGMOVE(excptns)",
                                       "SH_ASSERTBLACKKINGSURROUNDED(strict)",
                                       "SH_SKIPWORSTWHITEMOVES",
                                       "SH_KEYWHITEFIGURE",
                                       "SH_SWEEPINGWHITEROOK",
                                       "SH_DONTLETPROMOTEDFIGUREMOVE",
                                       "SH_DONTLOSEANYFIGURES(incl.pawns)",
                                       "SH_FINDFORCEDMATE(#1-WithOtherHeuristics)",
                                       "SH_3MOVESTOMATE"};
    std::mt19937 random(72);
    std::array<int, 32> anRuns{};
    for (std::size_t i = 0; i < 120; ++i) {
        const TForm& form = g_aForms[i % std::size(g_aForms)];
        const TChessboard board = PositionWith(form.m_nHeuristic, i / std::size(g_aForms), random);
        const TTask task = MakeTask(board, MateFor(form, board, i));
        std::string strSet = SetFor(form, task, random);
        const bool bNoForced = form.m_nHeuristic == SH_SEASNAKE;
        const TForm& second = g_aForms[3 + random() % 2];
        if (second.m_nHeuristic != form.m_nHeuristic && TPatterns(board).Has(second.m_nHeuristic))
            strSet += ", " + SetFor(second, task, random);
        const std::string strOther = aOthers[random() % std::size(aOthers)];
        if (!bNoForced || !strOther.starts_with("SH_FINDFORCEDMATE"))
            strSet += ", " + strOther;
        const TRunOf run = SolveWith(board, task.m_nMate, strSet, 1 + static_cast<int>(i % 3));
        for (int nBit = 0; nBit < 32; ++nBit)
            anRuns[nBit] += run.m_anCuts[nBit] != 0;
        ASSERT_EQ(run.m_vecSolutions, task.m_vecSolutions) << Describe(task, strSet);
    }
    for (const std::uint32_t nHeuristic : {SH_SEASNAKE, SH_ZUGZWANGTRIANGLES, SH_ZUGZWANG})
        EXPECT_GT(anRuns[std::countr_zero(nHeuristic)], 10) << nHeuristic;
}

} // namespace
} // namespace corvina
