#include "chess/matekind.h"
#include "support/chesstest.h"

#include <map>

namespace corvina
{
namespace
{

TEST(MateKind, ModelAndIdealMates)
{
    const std::pair<const char*, EMateKind> aCases[] = {
        {"rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR", EMateKind::None},
        {"4k3/8/8/8/8/8/4r3/1K2R3", EMateKind::None},
        {"k7/2Q5/1K6/8/8/8/8/8", EMateKind::Stalemate},
        // King and rook, every man at work
        {"k1R5/8/K7/8/8/8/8/8", EMateKind::IdealMate},
        {"R3k3/8/4K3/8/8/8/8/8", EMateKind::IdealMate},
        {"R3k3/8/4K3/8/7p/8/8/8", EMateKind::ModelMate},
        {"R3k3/8/4K3/7P/8/8/8/8", EMateKind::ModelMate},
        // Two men guard h7
        {"7k/6Q1/6K1/8/8/8/8/8", EMateKind::Mate},
        // On the last row, with pawns that shut the king in
        {"R5k1/5ppp/8/8/8/8/8/4K3", EMateKind::ModelMate},
        {"R5k1/5ppp/8/8/8/8/P7/4K3", EMateKind::ModelMate},
        {"R5k1/5ppp/8/8/8/8/8/N3K3", EMateKind::Mate},  // an idle knight
        {"R5k1/5ppp/8/8/8/3B4/8/4K3", EMateKind::Mate}, // h7 is shut and guarded
        {"R6k/1R6/8/8/8/8/8/K7", EMateKind::ModelMate},
        // Smothered
        {"6rk/5Npp/8/8/8/8/8/K7", EMateKind::ModelMate},
        // Double check: with the knight either check alone could be answered
        {"kr6/8/8/1n6/8/8/6B1/R6K", EMateKind::ModelMate},
        {"kr6/8/8/8/8/8/6B1/R6K", EMateKind::Mate},
        // The man on d7 could step to e6 but for the bishop; a pawn couldn't
        {"3rkr2/3b4/6K1/1B6/8/8/8/4R3", EMateKind::IdealMate},
        {"3rkr2/3p4/6K1/1B6/8/8/8/4R3", EMateKind::Mate},
        // The same pin, and a second man that guards d7
        {"3rkr2/3b4/6K1/1BN5/8/8/8/4R3", EMateKind::Mate},
    };
    for (const auto& [pBoard, kind] : aCases) {
        TTestLine line(pBoard, 2);
        EXPECT_EQ(GetMateKind(line.board), kind) << pBoard;
        line.board.MirrorBoard();
        EXPECT_EQ(GetMateKind(line.board), kind) << pBoard;
    }
}

TEST(MateKind, AgreesWithTheRulesOnMateAndStalemate)
{
    std::map<EMateKind, int> mapSeen;
    const char* aStarts[] = {g_aWalkStarts[6], "7k/8/4K3/8/8/8/8/RQ6 w - - 0 1",
                             "k7/2p5/1p6/1P6/8/2Q5/8/K7 w - - 0 1"};
    for (const char* pFen : aStarts) {
        RandomWalk(pFen, 5, 12000, [&](TChessboard& board) {
            if (board.IsWhiteToMove())
                return;
            const TSlowPosition slow(board.m_board, EColour::Black);
            const bool bStuck = slow.LegalMoves().empty() && board.DoubleSteppedPawn() == NO_SQUARE;
            const EMateKind kind = GetMateKind(board);
            ++mapSeen[kind];
            EXPECT_EQ(kind != EMateKind::None, bStuck);
            if (bStuck) {
                EXPECT_EQ(kind != EMateKind::Stalemate, slow.InCheck(EColour::Black));
            }
        });
    }
    for (const EMateKind kind : {EMateKind::None, EMateKind::Stalemate, EMateKind::Mate})
        EXPECT_GE(mapSeen[kind], 10) << static_cast<int>(kind);
}

} // namespace
} // namespace corvina
