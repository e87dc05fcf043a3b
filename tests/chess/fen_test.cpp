#include "chess/fen.h"
#include "chess/notation.h"
#include "support/positions.h"

#include <gtest/gtest.h>

#include <cstring>

namespace corvina
{
namespace
{

constexpr char KINGS_AND_ROOKS[] = "r3k2r/8/8/8/8/8/8/R3K2R";

/// The FEN after a line of moves.
std::string FenAfter(const char* pFen, const char* pMoves)
{
    TTestLine line(pFen, HalfMovesFor(pFen, 20));
    return WriteFen(*PlayMoves(line.board, pMoves), false);
}

TEST(Fen, RejectsWithoutTouchingTheRecord)
{
    const struct
    {
        const char* m_pText;
        const char* m_pFailure; ///< empty: no FEN
    } aCases[] = {
        {"", ""},
        {" 4k3/8/8/8/8/8/8/4K3", ""},
        {"4k3", ""},
        {"4k3/8/8/8/8/8/8/3K3", ""},
        {"4k3/8/8/8/8/8/8/4K4", ""},
        {"4k3/8/8/8/8/8/8/4K3P", ""},
        {"4k3/08/8/8/8/8/8/4K3", ""},
        {"4k3/9/8/8/8/8/8/4K3", ""},
        {"4k3/44p/8/8/8/8/8/4K3", ""},
        {"4k3/7pp/8/8/8/8/8/4K3", ""},
        {"4k3/71p/8/8/8/8/8/4K3", ""},
        {"4k3/8/8/8/8/8/4K3", ""},
        {"4k3/8/8/8/8/8/8/4K3/8", ""},
        {"4k3/pppppppp/8/8/8/8/8/4K3/", ""},
        {"4k3//8/8/8/8/8/4K3", ""},
        {"4k3/8/8/8/8/8/8/4x3", ""},
        {"4k3/8/8/8/8/8/8/4K-3", ""},
        {"{4k3}/8/8/8/8/8/8/4K3", ""},
        {"Ke1/8/8/8/8/8/8/8", ""},
        {"8/8/8/8/8/8/8/8", "Illegal number of kings."},
        {"4k3/8/8/8/8/8/8/4K2K", "Illegal number of kings."},
        {"4k3/8/8/8/8/8/8/P3K3", "Pawns cannot occupy 1st nor 8th line of the chessboard."},
        {"4k2R/8/8/8/8/8/8/r3K3", "Both kings attacked."},
    };
    TTestLine line(KINGS_AND_ROOKS, 3);
    const TChessboard before = line.board;
    for (const auto& c : aCases) {
        bool bRead = false;
        EXPECT_EQ(FailureText([&] { bRead = ReadFen(line.board, c.m_pText); }), c.m_pFailure)
            << c.m_pText;
        EXPECT_FALSE(bRead) << c.m_pText;
        EXPECT_FALSE(IsFen(c.m_pText)) << c.m_pText;
        EXPECT_EQ(std::memcmp(&before, &line.board, sizeof before), 0) << c.m_pText;
    }
}

TEST(Fen, EveryPrefixAndEveryChangedCharacter)
{
    const std::string strFen = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQ - 0 1";
    const std::size_t nField = strFen.find(' ');
    for (std::size_t n = 0; n <= strFen.size(); ++n)
        EXPECT_EQ(IsFen(strFen.substr(0, n)), n >= nField) << n;
    for (std::size_t n = 0; n < nField; ++n) {
        for (const char c : {'/', ' ', '0', '9', 'x', '\0', '\xE9'}) {
            std::string strChanged = strFen;
            strChanged[n] = c;
            EXPECT_EQ(IsFen(strChanged), c == strFen[n]) << strChanged;
        }
    }
}

TEST(Fen, FlagsAndTheRestOfTheText)
{
    const struct
    {
        const char* m_pRest;
        bool m_bCastlingDiffers, m_bEnPassant;
    } aCases[] = {
        {"", false, false},
        {" ", true, false},
        {" w", true, false},
        {" w -", true, false},
        {" w KQkq", false, false},
        {" b KQkq - 0 1", false, false},
        {" w Qkq - 0 1", true, false},
        {" w Kkq - 0 1", true, false},
        {" w KQq - 0 1", true, false},
        {" w KQk - 0 1", true, false},
        {" w - e6 0 1", true, true},
        {"  b  KQkq  e3", false, true},
        {" w KQkq ", false, false},
        {" w qkQK -", false, false},
    };
    for (const auto& c : aCases) {
        TTestLine line("4k3/8/8/8/8/8/8/4K3", 3);
        bool bDiffers = !c.m_bCastlingDiffers, bEnPassant = !c.m_bEnPassant;
        ASSERT_TRUE(
            ReadFen(line.board, std::string(KINGS_AND_ROOKS) + c.m_pRest, &bDiffers, &bEnPassant));
        EXPECT_EQ(bDiffers, c.m_bCastlingDiffers) << c.m_pRest;
        EXPECT_EQ(bEnPassant, c.m_bEnPassant) << c.m_pRest;
        EXPECT_EQ(WriteFen(line.board, true), KINGS_AND_ROOKS);
        EXPECT_EQ(line.board.m_nMoves, 3);
        EXPECT_EQ(line.board.m_pThread, &line.context);
        EXPECT_EQ(line.board.GetCastlingRights(true), CASTLING_SHORT | CASTLING_LONG);
    }
    // A right of the text that the board lacks is no difference.
    TChessboard board;
    bool bDiffers = true;
    ASSERT_TRUE(ReadFen(board, "4k3/8/8/8/8/8/8/4K3 w KQkq - 0 1", &bDiffers));
    EXPECT_FALSE(bDiffers);
    ASSERT_TRUE(ReadFen(board, "wsghkgsw/8/8/8/8/8/8/WSGHKGSW"));
    EXPECT_EQ(WriteFen(board, true), "rnbqkbnr/8/8/8/8/8/8/RNBQKBNR");
}

TEST(Fen, WritesTheLine)
{
    const char* pStart = g_aWalkStarts[0];
    EXPECT_EQ(FenAfter(pStart, ""), pStart);
    EXPECT_EQ(FenAfter(pStart, "1.e4"),
              "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3 0 1");
    EXPECT_EQ(FenAfter(pStart, "1.e4 c5"),
              "rnbqkbnr/pp1ppppp/8/2p5/4P3/8/PPPP1PPP/RNBQKBNR w KQkq c6 0 2");
    EXPECT_EQ(FenAfter(pStart, "1.e4 c5 2.Nf3"),
              "rnbqkbnr/pp1ppppp/8/2p5/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq - 0 2");
    EXPECT_EQ(FenAfter(KINGS_AND_ROOKS, "1.Rb1 Ke7 2.Ra1 Ke8"),
              "r3k2r/8/8/8/8/8/8/R3K2R w K - 0 3");
    EXPECT_EQ(FenAfter(KINGS_AND_ROOKS, "1.Ra:a8"), "R3k2r/8/8/8/8/8/8/4K2R b Kk - 0 1");
    // A root has no last move.
    EXPECT_EQ(FenAfter("4k3/8/8/8/4P3/8/8/4K3 b - e3 0 1", ""), "4k3/8/8/8/4P3/8/8/4K3 b - - 0 1");
}

TEST(Fen, ReadsBackWhatItWrites)
{
    for (const char* pFen : g_aWalkStarts) {
        RandomWalk(pFen, 3, 600, [](TChessboard& board) {
            TChessboard copy;
            bool bDiffers = false, bEnPassant = false;
            const std::string strFen = WriteFen(board, false);
            ASSERT_TRUE(ReadFen(copy, strFen, &bDiffers, &bEnPassant)) << strFen;
            EXPECT_EQ(std::memcmp(copy.m_board, board.m_board, 64), 0);
            // Read as a root, a board may have gained rights that the line has lost.
            const bool bGained = copy.GetCastlingRights(true) != board.GetCastlingRights(true) ||
                                 copy.GetCastlingRights(false) != board.GetCastlingRights(false);
            EXPECT_EQ(bDiffers, bGained) << strFen;
            EXPECT_EQ(bEnPassant, board.DoubleSteppedPawn() != NO_SQUARE) << strFen;
            const std::string strShort = WriteFen(board, true);
            EXPECT_EQ(strFen.substr(0, strShort.size() + 1), strShort + ' ');
            ASSERT_TRUE(ReadFen(copy, strShort, &bDiffers, &bEnPassant));
            EXPECT_FALSE(bDiffers || bEnPassant);
            EXPECT_EQ(WriteFen(copy, true), strShort);
        });
    }
}

} // namespace
} // namespace corvina
