#include "chess/moveset.h"
#include "search/verify.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"

namespace corvina
{
namespace
{

/// The walk agrees with the plain recursion on each first move, right or wrong.
TEST(Verify, ProofsHoldForTheSolutionsAndForNothingElse)
{
    std::mt19937 random(21);
    int nHolding = 0;
    for (int i = 0; i < 250; ++i) {
        const TChessboard board = ComposedPosition(random);
        const int nMate = i % 10 ? 2 : 3;
        TTaskRequest request(board, nMate);
        request.m_bPlain = true;
        request.m_nMinRegisterPlies = 0;
        const std::vector<TMove> vecSolutions = Solve(request, {}).m_vecSolutions;
        TTestLine line(WriteFen(board, true), HalfMovesOfMate(nMate));
        for (const TMove& move : LegalMoves(line.board)) {
            const TVerification verification = VerifyKey(request, move);
            EXPECT_EQ(verification.m_bHolds, ContainsMove(vecSolutions, move))
                << WriteFen(board, true) << " #" << nMate;
            EXPECT_EQ(verification.m_vecRefutation.empty(), verification.m_bHolds);
            nHolding += verification.m_bHolds;
        }
    }
    EXPECT_GT(nHolding, 100);
}

} // namespace
} // namespace corvina
