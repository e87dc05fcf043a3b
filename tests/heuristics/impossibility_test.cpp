#include "chess/fen.h"
#include "heuristics/impossibility.h"
#include "search/plainsearch.h"
#include "search/solverequest.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace corvina
{
namespace
{

/// Little material, with the kings near each other more often than not.
TChessboard SmallPosition(std::mt19937& random)
{
    constexpr const char* aWhite[] = {"",   "R",  "RP", "P",   "B",   "N",   "BP",  "NP",  "NN",
                                      "BN", "BB", "PP", "RPP", "BPP", "NPP", "NNP", "BNP", "BBP"};
    constexpr const char* aBlack[] = {"", "", "p", "pp", "n"};
    const std::map<char, TFigure> figures = {{'R', WHITE_ROOK},   {'P', WHITE_PAWN},
                                             {'B', WHITE_BISHOP}, {'N', WHITE_KNIGHT},
                                             {'p', BLACK_PAWN},   {'n', BLACK_KNIGHT}};
    for (;;) {
        TChessboard board;
        const auto put = [&](TFigure figure) {
            const unsigned square = random() % 64;
            const bool bFits = (figure & KIND_MASK) != KIND_PAWN || (square >= 8 && square < 56);
            if (bFits && board.m_board[square] == NO_FIGURE)
                board.m_board[square] = figure;
        };
        put(WHITE_KING);
        put(BLACK_KING);
        const std::string strMen = std::string(aWhite[random() % std::size(aWhite)]) +
                                   aBlack[random() % std::size(aBlack)];
        for (const char c : strMen)
            put(figures.at(c));
        if (board.RescanBoard(true) && board.m_blackChecker == NO_CHECK)
            return board;
    }
}

bool HasMate(const TChessboard& board, int nPlies)
{
    TSolveRequest request;
    *request.m_pChessboard = board;
    TChessboard& root = *request.m_pChessboard;
    request.SetMateIn((nPlies + 1) / 2);
    root.m_pRequest = &request;
    root.CheckStartPosition(static_cast<std::uint16_t>(nPlies), true);
    TThreadContext context(nPlies);
    context.m_pRootBoard = &root;
    root.m_pThread = &context;
    return PlainSearchWhite(root) == 1;
}

/// What is called a proof is one: no mate is ever found behind it.
TEST(Impossibility, ProofsHold)
{
    constexpr int PROOFS = 100'000;
    std::mt19937 random(71);
    std::map<int, int> mapProofs, mapWithPawns; // beside minor figures, or two of them
    int nOpen = 0;
    for (int nProofs = 0; nProofs < PROOFS;) {
        TChessboard board = SmallPosition(random);
        // Longer ones cost too much to do them all.
        const int nPlies = random() % 8 == 0 ? 5 : (random() % 2 ? 3 : 1);
        board.m_nMoves = board.m_nInitialMoves = static_cast<std::uint16_t>(nPlies);
        const EImpossibility impossibility = FindImpossibility(board);
        ASSERT_TRUE(impossibility == POSSIBLE || IsProof(impossibility)) << "without heuristics";
        if (impossibility == POSSIBLE) {
            ++nOpen;
            continue;
        }
        ++nProofs;
        ++mapProofs[impossibility];
        mapWithPawns[impossibility] +=
            board.m_nWhitePawns > (impossibility == IMPOSSIBLE_ROOK_OR_PAWNS);
        ASSERT_FALSE(HasMate(board, nPlies))
            << WriteFen(board, true) << " in " << nPlies << ": " << impossibility;
    }
    EXPECT_GT(nOpen, 1000);
    for (const EImpossibility proof :
         {IMPOSSIBLE_ROOK_OR_PAWNS, IMPOSSIBLE_ONE_MINOR, IMPOSSIBLE_MINORS_OFF_EDGE,
          IMPOSSIBLE_TWO_KNIGHTS, IMPOSSIBLE_BISHOP_AND_KNIGHT})
    {
        EXPECT_GT(mapProofs[proof], 500) << proof;
        EXPECT_GT(mapWithPawns[proof], 100) << proof;
    }
}

} // namespace
} // namespace corvina
