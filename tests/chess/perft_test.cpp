#include "chess/perft.h"
#include "support/chesstest.h"

#include <cctype>

namespace corvina
{
namespace
{

/// Well-known positions of the trade, in which every castling that the board allows is allowed, and
/// their numbers of leaves at a depth and at one ply less.
constexpr struct
{
    const char* m_pFen;
    int m_nDepth;
    std::uint64_t m_nLeaves;
    std::uint64_t m_nLeavesAbove;
} g_aCases[] = {
    {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 5, 4865609, 197281},
    {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1", 4, 4085603, 97862},
    {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1", 5, 674624, 43238},
    {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1", 4, 422333, 9467},
    {"rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8", 4, 2103487, 62379},
    {"r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10", 4, 3894594, 89890},
};

std::uint64_t Count(const std::string& strFen, int nDepth)
{
    TTestLine line(strFen, HalfMovesFor(strFen, nDepth));
    return Perft(line.board, nDepth);
}

/// The board upside down with the colours exchanged and Black to move.
std::string ExchangeColours(const std::string& strFen)
{
    std::string strExchanged;
    std::string strRow;
    for (const char c : strFen.substr(0, strFen.find(' ')) + '/') {
        strRow += static_cast<char>(std::isupper(c) ? std::tolower(c) : std::toupper(c));
        if (c == '/')
            strExchanged = std::exchange(strRow, "") + strExchanged;
    }
    strExchanged.back() = ' ';
    return strExchanged + "b - - 0 1";
}

TEST(Perft, CountsTheKnownNumbersOfLines)
{
    for (const auto& test : g_aCases) {
        EXPECT_EQ(Count(test.m_pFen, test.m_nDepth), test.m_nLeaves) << test.m_pFen;
        const std::string strBlack = ExchangeColours(test.m_pFen);
        EXPECT_EQ(Count(strBlack, test.m_nDepth - 1), test.m_nLeavesAbove) << strBlack;
    }
}

} // namespace
} // namespace corvina
