#include "heuristics/differential.h"
#include "heuristics/onecolour.h"
#include "heuristics/themedpositions.h"
#include "search/nodes.h"
#include "search/plainsearch.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"

#include <set>

namespace corvina
{
namespace
{

/// A position as the root of a search without heuristics, in the last pass.
struct TGame : TThreadPosition
{
    TGame(const TChessboard& position, int nMate)
        : TThreadPosition(position, 2 * nMate - 1, 2 * nMate - 1)
    {
        request.SetMateIn(nMate);
        request.m_nMinRegisterPlies = 0;
    }
};

bool MatesPlainly(const TChessboard& position, int nMate)
{
    TGame game(position, nMate);
    return PlainSearchWhite(game.board) == RESULT_MATE;
}

bool MatesByNodes(const TChessboard& position, int nMate)
{
    TGame game(position, nMate);
    return SearchWhite<NODE_MAIN>(game.board) == RESULT_MATE;
}

/// The real positions behind one of the game without the bishop.
std::vector<TChessboard> RealPositions(const TChessboard& reduced, TSquare bishop)
{
    std::vector<TChessboard> vecBoards;
    for (int square = 0; square < 64; ++square) {
        if (reduced.m_board[square] || SquareColour(square) != SquareColour(bishop))
            continue;
        TChessboard real = reduced;
        real.m_board[square] = BLACK_BISHOP;
        real.m_boardFlags = real.m_moveFilter = 0;
        EXPECT_TRUE(real.RescanBoard(true));
        EXPECT_EQ(real.m_blackChecker, NO_CHECK);
        vecBoards.push_back(real);
    }
    return vecBoards;
}

TEST(OneColourPlay, AMateWithoutTheBishopHoldsWhereverItStands)
{
    std::mt19937 random(71);
    TThemed themed(random);
    int nMates = 0, nByReplay = 0;
    for (int i = 0; i < 20000; ++i) {
        const TChessboard position = themed.Make(ETheme::Bishops);
        if (!CanShutOutBishop(position))
            continue;
        TChessboard reduced = position;
        ShutOutBishop(reduced);
        const int nMate = 2 + i % 4 / 3;
        const bool bPlain = MatesPlainly(reduced, nMate), bNodes = MatesByNodes(reduced, nMate);
        EXPECT_TRUE(bNodes || !bPlain) << WriteFen(position, true);
        nMates += bPlain;
        nByReplay += bNodes && !bPlain;
        if (!bNodes)
            continue;
        const TSquare bishop = LowestSquare(TSets::Equal(position.m_board, BLACK_BISHOP));
        for (const TChessboard& real : RealPositions(reduced, bishop))
            ASSERT_TRUE(MatesPlainly(real, nMate)) << WriteFen(real, true) << " #" << nMate;
    }
    EXPECT_GT(nMates, 100);
    EXPECT_GT(nByReplay, 5);
}

/// White can do nothing but wait; the bishop is all that moves, and may shut itself in on a8.
TEST(OneColourPlay, APassAloneIsStalemateWhereTheBishopMayHaveNoMove)
{
    const auto standsForMove = [](const char* pFen) {
        TChessboard board = BoardOf(pFen);
        EXPECT_TRUE(CanShutOutBishop(board));
        ShutOutBishop(board);
        return StandsForMove(board);
    };
    EXPECT_TRUE(standsForMove("8/8/8/8/4b3/3p4/7B/k1K5"));
    EXPECT_FALSE(standsForMove("8/1p6/8/8/4b3/3p4/7B/k1K5"));
}

/// A bishop on a dark square could go to d8 or f8: a promotion to a queen or a rook mates only
/// where no such bishop is meant.
TEST(OneColourPlay, APromotedLineFigureIsNoMan)
{
    TChessboard board = BoardOf("2r4k/1P6/6K1/8/8/8/8/1N3B2");
    EXPECT_TRUE(MatesPlainly(board, 1));
    board.m_moveFilter |= TChessboard::FILTER_WHITE_SQUARES_ONLY;
    EXPECT_FALSE(MatesPlainly(board, 1));
    EXPECT_FALSE(MatesByNodes(board, 1));
    TLineContext line(2);
    board.m_nMoves = 1;
    board.m_pThread = &line;
    TMoveList moves;
    const int nMoves = board.GenerateWhiteMoves(moves.data());
    std::multiset<int> kinds;
    for (int i = 0; i < nMoves; ++i) {
        if (moves[i].PromotionKind() && line.MakeChild(board).MakeWhiteMove(&moves[i]))
            kinds.insert(moves[i].PromotionKind());
    }
    EXPECT_EQ(kinds, (std::multiset<int>{KIND_KNIGHT, KIND_BISHOP}));
}

TEST(OneColourPlay, ThePreRunFindsMatesAndChangesNoSolution)
{
    constexpr const char* aSets[] = {"SH_ONECOLORPLAYPOSSIBLE",
                                     "SH_ONECOLORPLAYPOSSIBLE, SH_KEEPKINGONTHEEDGE",
                                     "SH_ONECOLORPLAYPOSSIBLE(SeparatedBlackBishop)"};
    std::mt19937 random(72);
    TThemed themed(random);
    int nPositions = 0, nCaged = 0, nCuts = 0;
    for (int i = 0; i < 1500; ++i) {
        const TTask task =
            MakeTask(themed.Make(i % 3 == 2 ? ETheme::Cage : ETheme::Bishops), 2 + i % 10 / 4);
        const std::string strSet = aSets[i % std::size(aSets)];
        const TRunOf run = SolveWith(task.m_board, task.m_nMate, strSet, 1 + i % 2);
        ASSERT_EQ(run.m_vecSolutions, task.m_vecSolutions) << Describe(task, strSet);
        nPositions += run.m_nOneColourMates > 0;
        nCaged += run.m_nOneColourMates > 0 && !CanShutOutBishop(task.m_board);
        nCuts += run.m_anCuts[3] != 0;
    }
    EXPECT_GT(nPositions, 80);
    EXPECT_GT(nCaged, 10);
    EXPECT_GT(nCuts, 100);
}

} // namespace
} // namespace corvina
