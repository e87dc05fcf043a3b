#ifndef CORVINA_TESTS_SUPPORT_POSITIONS_H
#define CORVINA_TESTS_SUPPORT_POSITIONS_H

#include "chess/linecontext.h"

#include <random>
#include <string>
#include <vector>

namespace corvina
{

/// The text of the ChessException that an operation throws, or "".
template <class F>
std::string FailureText(F operation)
{
    try {
        operation();
    }
    catch (const ChessException& e) {
        return e.what();
    }
    return "";
}

/// The parts of a text between the separators.
std::vector<std::string> Split(const std::string& strText, char separator);

/// The position of a FEN. Throws std::invalid_argument for a text that is none.
TChessboard BoardOf(const std::string& strFen);

/// A root position with a line of its own. Throws std::invalid_argument for a text that is no FEN
/// and ChessException for a position that is no start position of a task.
struct TTestLine
{
    TLineContext context;
    TChessboard board;

    /// nMoves half-moves are left: White is to move when the number is odd.
    TTestLine(const std::string& strFen, int nMoves);
};

/// The legal moves of the side to move, in the order of generation. At least one half-move must be
/// left.
std::vector<TMove> LegalMoves(TChessboard& board);

/// Makes a legal move in the next slot of the thread's stack. Throws std::logic_error when the move
/// is refused.
TChessboard& PlayMove(TChessboard& board, TMove move);

/// Moves of a position in full notation, in alphabetical order.
std::vector<std::string> SortedKeys(const std::vector<TMove>& vecMoves, const TChessboard& board);

/// Half-moves for a line of nPlies with the side to move that the FEN's second field names, with at
/// least one to spare.
int HalfMovesFor(const std::string& strFen, int nPlies);

/// Plays nPlies random legal half-moves and calls visit(TChessboard&) on each position, the first
/// included. After mate or stalemate the walk starts again at the FEN, which costs a ply too. The
/// same seed gives the same walk on every system.
template <class F>
void RandomWalk(const char* pFen, unsigned nSeed, int nPlies, F visit)
{
    std::mt19937 random(nSeed);
    TTestLine line(pFen, HalfMovesFor(pFen, nPlies));
    TChessboard* pBoard = &line.board;
    visit(*pBoard);
    for (int nPly = 0; nPly < nPlies; ++nPly) {
        const std::vector<TMove> vecMoves = LegalMoves(*pBoard);
        pBoard = vecMoves.empty() ? &line.board
                                  : &PlayMove(*pBoard, vecMoves[random() % vecMoves.size()]);
        visit(*pBoard);
    }
}

/// Starts for walks in which castling, captures en passant and promotions are frequent.
inline constexpr const char* g_aWalkStarts[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1",
    "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - - 0 1",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
    "4k3/pppppppp/8/8/8/8/PPPPPPPP/4K3 w - - 0 1",
    "4k2n/1Q4Q1/2N1N1N1/8/3Q4/2N5/8/Q3K2Q w - - 0 1",
    "4k3/2p1p1p1/8/1P1P1P1P/1p1p1p1p/8/P1P1P1P1/4K3 w - - 0 1",
};

} // namespace corvina

#endif
