#include "support/chesstest.h"

#include <cstring>

namespace corvina
{
namespace
{

constexpr char KINGS_AND_ROOKS[] = "r3k2r/8/8/8/8/8/8/R3K2R";

TEST(Fen, RejectsWithoutTouchingTheRecord)
{
    const std::string astrCases[][2] = {
        // Texts that are no FEN, divided by "|"
        {"| 4k3/8/8/8/8/8/8/4K3|4k3|4k3/8/8/8/8/8/8/3K3|4k3/8/8/8/8/8/8/4K4|4k3/8/8/8/8/8/8/4K3P|"
         "4k3/08/8/8/8/8/8/4K3|4k3/9/8/8/8/8/8/4K3|4k3/44p/8/8/8/8/8/4K3|4k3/71p/8/8/8/8/8/4K3|"
         "4k3/8/8/8/8/8/4K3|4k3/8/8/8/8/8/8/4K3/8|4k3/pppppppp/8/8/8/8/8/4K3/|Ke1/8/8/8/8/8/8/8|"
         "4k3//8/8/8/8/8/4K3|{4k3}/8/8/8/8/8/8/4K3|4k3/8/8/8/8/8/8/4K-3",
         ""},
        {std::string(99999, 'p') + "/8/8/8/8/8/8/4K3", ""},
        {"8/8/8/8/8/8/8/8|4k3/8/8/8/8/8/8/4K2K", "Illegal number of kings."},
        {"4k3/8/8/8/8/8/8/P3K3", "Pawns cannot occupy 1st nor 8th line of the chessboard."},
        {"4k2R/8/8/8/8/8/8/r3K3", "Both kings attacked."},
    };
    TTestLine line(KINGS_AND_ROOKS, 3);
    const TChessboard before = line.board;
    for (const auto& [strTexts, strFailure] : astrCases) {
        for (const std::string& strText : Split(strTexts, '|')) {
            bool bRead = false;
            EXPECT_EQ(FailureText([&] { bRead = ReadFen(line.board, strText); }), strFailure);
            EXPECT_FALSE(bRead || IsFen(strText)) << strText;
            EXPECT_EQ(std::memcmp(&before, &line.board, sizeof before), 0) << strText;
        }
    }
    // Every prefix, and every character changed
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
    // The rest of the text, divided by "|", for each pair of flags
    const char* aRests[2][2] = {{"| w KQkq| b KQkq - 0 1| w KQkq | w qkQK -", "  b  KQkq  e3"},
                                {" | w| w -| w Qkq -| w Kkq -| w KQq -| w KQk -", " w - e6 0 1"}};
    for (const bool bCastling : {false, true}) {
        for (const bool bPawn : {false, true}) {
            for (const std::string& strRest : Split(aRests[bCastling][bPawn], '|')) {
                TTestLine line("4k3/8/8/8/8/8/8/4K3", 3);
                bool bDiffers = !bCastling, bEnPassant = !bPawn;
                ASSERT_TRUE(ReadFen(line.board, KINGS_AND_ROOKS + strRest, &bDiffers, &bEnPassant));
                EXPECT_EQ(bDiffers, bCastling) << strRest;
                EXPECT_EQ(bEnPassant, bPawn) << strRest;
                EXPECT_EQ(WriteFen(line.board, false), "r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1");
            }
        }
    }
    // A record within a line becomes a root.
    TTestLine line(g_aWalkStarts[0], 3);
    TChessboard& child = *MakeMove(line.board, "e4");
    ASSERT_TRUE(ReadFen(child, "4k3/8/8/8/4P3/8/8/4K3"));
    EXPECT_TRUE(!child.m_pParent && child.m_pThread == &line.context);
    // A right of the text that the board lacks is no difference.
    TChessboard board;
    bool bDiffers = true;
    ASSERT_TRUE(ReadFen(board, "wsghkgsw/8/8/8/8/8/8/1SGHKGS1 w KQkq -", &bDiffers));
    EXPECT_FALSE(bDiffers);
    EXPECT_EQ(WriteFen(board, true), "rnbqkbnr/8/8/8/8/8/8/1NBQKBN1");
}

TEST(Fen, WritesTheLine)
{
    const char* pStart = g_aWalkStarts[0];
    const char* aCases[][3] = {
        {pStart, "1.e4", "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3 0 1"},
        {pStart, "e4 c5", "rnbqkbnr/pp1ppppp/8/2p5/4P3/8/PPPP1PPP/RNBQKBNR w KQkq c6 0 2"},
        {pStart, "e4 c5 Nf3", "rnbqkbnr/pp1ppppp/8/2p5/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq - 0 2"},
        {KINGS_AND_ROOKS, "Rb1 Ke7 Ra1 Ke8", "r3k2r/8/8/8/8/8/8/R3K2R w K - 0 3"},
        {KINGS_AND_ROOKS, "1.Ra:a8", "R3k2r/8/8/8/8/8/8/4K2R b Kk - 0 1"},
        // A root has no last move.
        {"4k3/8/8/8/4P3/8/8/4K3 b - e3", "", "4k3/8/8/8/4P3/8/8/4K3 b - - 0 1"},
    };
    for (const auto& [pFen, pMoves, pExpected] : aCases) {
        TTestLine line(pFen, HalfMovesFor(pFen, 20));
        EXPECT_EQ(WriteFen(*PlayMoves(line.board, pMoves), false), pExpected);
    }
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
            EXPECT_EQ(WriteFen(copy, true), strFen.substr(0, strFen.find(' ')));
        });
    }
}

} // namespace
} // namespace corvina
