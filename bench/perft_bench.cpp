#include "chess/fen.h"
#include "chess/linecontext.h"
#include "chess/perft.h"

#include <chrono>
#include <cstdio>

namespace
{

struct TCase
{
    const char* m_pFen;
    int m_nDepth;
    std::uint64_t m_nLines;
};

/// Numbers that the field's engines agree on.
constexpr TCase g_aCases[] = {
    {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", 6, 119060324},
    {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R", 5, 193690690},
    {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8", 6, 11030083},
    {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1", 5, 15833292},
    {"rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R", 4, 2103487},
    {"r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1", 4, 3894594},
};

/// Prints the line of one case and returns true when the count is the known one.
bool RunCase(const TCase& test, double& dSeconds)
{
    using namespace corvina;
    TChessboard board;
    if (!ReadFen(board, test.m_pFen))
        return false;
    // White is to move with an odd number of half-moves left.
    const int nHalfMoves = test.m_nDepth | 1;
    TLineContext context(nHalfMoves);
    context.m_pRootBoard = &board;
    board.m_pThread = &context;
    board.CheckStartPosition(static_cast<std::uint16_t>(nHalfMoves), true);
    const auto start = std::chrono::steady_clock::now();
    const std::uint64_t nLines = Perft(board, test.m_nDepth);
    const double dTime =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    dSeconds += dTime;
    const bool bRight = nLines == test.m_nLines;
    std::printf("%-62s %d %10llu %6.1f million/s%s\n", test.m_pFen, test.m_nDepth,
                static_cast<unsigned long long>(nLines), static_cast<double>(nLines) / dTime / 1e6,
                bRight ? "" : "  WRONG");
    return bRight;
}

} // namespace

int main()
{
    std::uint64_t nTotal = 0;
    double dSeconds = 0;
    bool bRight = true;
    for (const TCase& test : g_aCases) {
        bRight = RunCase(test, dSeconds) && bRight;
        nTotal += test.m_nLines;
    }
    std::printf("all: %.1f million moves a second\n", static_cast<double>(nTotal) / dSeconds / 1e6);
    return bRight ? 0 : 1;
}
