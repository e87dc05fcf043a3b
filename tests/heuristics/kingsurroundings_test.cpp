#include "heuristics/kingsurroundings.h"
#include "support/chesstest.h"

#include <cstring>

namespace corvina
{
namespace
{

TSlowPosition SlowPosition(const TChessboard& board)
{
    TSlowPosition slow(board.m_board, EColour::White);
    if (board.DoubleSteppedPawn() != NO_SQUARE)
        slow.m_nPassedSquare = board.DoubleSteppedPawn() + 8;
    return slow;
}

/// Squares of the box around a square that satisfy a test, the square itself not among them.
template <class TTest>
int CountAround(int center, int nDistance, TTest test)
{
    int nCount = 0;
    for (int square = 0; square < 64; ++square)
        nCount += square != center && Distance(square, center) <= nDistance && test(square);
    return nCount;
}

/// Squares open to a Black king that has come to a square; without it on the board or with it.
int SlowFreeSquares(const TChessboard& board, int king, bool bTakenOff)
{
    TSlowPosition slow = SlowPosition(board);
    if (bTakenOff)
        slow.m_aBoard[board.BlackKing()] = slow.m_aBoard[king] = NO_FIGURE;
    return CountAround(king, 1, [&](int square) {
        return !slow.HasColour(square, EColour::Black) &&
               slow.Attackers(square, EColour::White).empty();
    });
}

int SlowGuards(const TSlowPosition& slow)
{
    const int king = slow.King(EColour::Black);
    int nGuards = 0;
    for (int from = 0; from < 64; ++from) {
        if (!slow.HasColour(from, EColour::White) || slow.KindOf(from) == KIND_PAWN)
            continue;
        if (slow.KindOf(from) == KIND_KING)
            nGuards += Distance(from, king) == 2;
        else
            nGuards += CountAround(king, 1, [&](int to) { return slow.Attacks(from, to); }) > 0;
    }
    return nGuards;
}

bool SlowGetsThrough(const TSlowPosition& position, int pawn)
{
    for (const TMove& move : position.LegalMoves()) {
        const bool bEnPassant = move.m_to == position.m_nPassedSquare;
        if (move.m_from != pawn || (move.m_promotion && move.m_promotion != KIND_QUEEN) ||
            (RowOf(pawn) < 5 && !bEnPassant))
            continue;
        const TSlowPosition next = position.After(move);
        const std::vector<TMove> vecReplies = next.LegalMoves();
        bool bHolds = move.m_promotion || !vecReplies.empty() || next.InCheck(EColour::Black);
        for (const TMove& reply : vecReplies) {
            bHolds = bHolds && reply.m_to != move.m_to &&
                     (move.m_promotion || SlowGetsThrough(next.After(reply), move.m_to));
        }
        if (bHolds)
            return true;
    }
    return false;
}

bool SlowCanPromote(const TSlowPosition& slow)
{
    for (int square = 32; square < 56; ++square) {
        if (slow.m_aBoard[square] == WHITE_PAWN && SlowGetsThrough(slow, square))
            return true;
    }
    return false;
}

/// Every predicate against plain loops.
void ExpectSlowAnswers(const TChessboard& board)
{
    SCOPED_TRACE(WriteFen(board, true));
    const TChessboard before = board;
    const TSlowPosition slow = SlowPosition(board);
    const int king = board.BlackKing();
    const auto isBlack = [&](int square) { return slow.HasColour(square, EColour::Black); };
    EXPECT_EQ(FreeKingSquares(board), SlowFreeSquares(board, king, true));
    EXPECT_EQ(CountFlights(board), std::min(2, SlowFreeSquares(board, king, false)));
    for (int square = 0; square < 64; square += 1 + king % 5) {
        EXPECT_EQ(HasBlackKingFlight(board, FileOf(square), RowOf(square)),
                  SlowFreeSquares(board, square, true) > 0)
            << square;
    }
    EXPECT_EQ(BlackNeighbours(board), CountAround(king, 1, isBlack));
    EXPECT_EQ(CountBlackNear(board, 2), CountAround(king, 2, isBlack));
    EXPECT_EQ(IsBlackKingWalledIn(board),
              CountAround(king, 1, [&](int square) { return !isBlack(square); }) == 0);
    EXPECT_EQ(CountKingGuards(board), SlowGuards(slow));
    EXPECT_EQ(std::memcmp(&board, &before, sizeof board), 0) << "the record has changed";
}

TEST(KingSurroundings, AgreeWithPlainLoops)
{
    std::mt19937 random(41);
    int nWalledIn = 0;
    for (int i = 0; i < 3000; ++i) {
        const TChessboard board = RandomPosition(random, 3 + i % 28);
        ExpectSlowAnswers(board);
        nWalledIn += IsBlackKingWalledIn(board);
    }
    EXPECT_GT(nWalledIn, 0);
}

TEST(KingSurroundings, PromotionAgreesWithPlainLoops)
{
    std::mt19937 random(42);
    int nPromotions = 0;
    for (int i = 0; i < 2000; ++i) {
        const TChessboard board = RandomPosition(random, 3 + i % 10);
        ASSERT_EQ(WhitePawnCanPromote(board), SlowCanPromote(SlowPosition(board)))
            << WriteFen(board, true);
        nPromotions += WhitePawnCanPromote(board);
    }
    EXPECT_GT(nPromotions, 100);
    for (const char* pStart : g_aWalkStarts) {
        RandomWalk(pStart, 7, 60, [](const TChessboard& board) {
            if (board.IsWhiteToMove()) {
                EXPECT_EQ(WhitePawnCanPromote(board), SlowCanPromote(SlowPosition(board)))
                    << WriteFen(board, true);
            }
        });
    }
}

TEST(KingSurroundings, BoxesReachOverTheEdge)
{
    TTestLine line("k7/8/8/8/8/1P6/8/7K w - - 0 1", 3);
    EXPECT_TRUE(HasWhitePawnInBox(line.board, -1, 1, 2, 2));
    EXPECT_TRUE(HasWhitePawnInBox(line.board, 1, 2, 9, 9));
    EXPECT_FALSE(HasWhitePawnInBox(line.board, 2, 0, 9, 9));
    EXPECT_FALSE(HasWhitePawnInBox(line.board, 5, 5, 4, 4));
    EXPECT_EQ(WhiteMaterial(line.board), 1);
}

} // namespace
} // namespace corvina
