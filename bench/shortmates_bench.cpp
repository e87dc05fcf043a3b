#include "chess/fen.h"
#include "search/plainsearch.h"
#include "search/shortmate.h"
#include "search/solverequest.h"
#include "support/data.h"

#include <chrono>
#include <cstdio>

namespace corvina
{
namespace
{

using TClock = std::chrono::steady_clock;

struct TCase
{
    const char* m_pName;
    bool (*m_test)(TChessboard&);
    std::uint16_t m_nPlies;
    int m_nMaxFigures; ///< the plain recursion sets the limit
};

constexpr int POSITIONS = 200000;

/// Compares a mate test with the plain recursion on random positions; true when all agree.
bool Compare(const TCase& test)
{
    std::mt19937 random(test.m_nPlies);
    TSolveRequest request;
    TThreadContext context(test.m_nPlies);
    int nMates = 0;
    TClock::duration fast{}, plain{};
    for (int i = 0; i < POSITIONS; ++i) {
        TChessboard board = RandomPosition(random, 3 + i % (test.m_nMaxFigures - 2));
        context.m_pRootBoard = &board;
        board.m_pThread = &context;
        board.m_pRequest = &request;
        board.m_nMoves = board.m_nInitialMoves = test.m_nPlies;
        const auto start = TClock::now();
        const bool bMate = test.m_test(board);
        const auto middle = TClock::now();
        const bool bExpected = PlainSearchWhite(board) == 1;
        fast += middle - start;
        plain += TClock::now() - middle;
        nMates += bExpected;
        if (bMate != bExpected) {
            std::printf("%s is WRONG: %s\n", test.m_pName, WriteFen(board, true).c_str());
            return false;
        }
    }
    const auto perPosition = [](TClock::duration time) {
        return std::chrono::duration<double, std::nano>(time).count() / POSITIONS;
    };
    std::printf("%-14s %d positions, %d with mate: %.0f ns, plain recursion %.0f ns\n",
                test.m_pName, POSITIONS, nMates, perPosition(fast), perPosition(plain));
    return true;
}

} // namespace
} // namespace corvina

int main()
{
    using namespace corvina;
    constexpr TCase aCases[] = {
        {"IsMateInOne", IsMateInOne, 1, 30},
        {"IsMateInTwo", [](TChessboard& board) { return IsMateInTwo(board); }, 3, 16},
        {"IsMateInThree", IsMateInThree, 5, 6},
    };
    bool bRight = true;
    for (const TCase& test : aCases)
        bRight = Compare(test) && bRight;
    return bRight ? 0 : 1;
}
