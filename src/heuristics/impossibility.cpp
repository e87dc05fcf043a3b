#include "heuristics/impossibility.h"

#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"
#include "heuristics/materialblocks.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// What can happen at the most in the moves that are left: White makes m_nMoves of them, and Black
/// one less before he is mated.
class TReach
{
public:
    explicit TReach(const TChessboard& board) : m_board(board), m_nMoves((board.m_nMoves + 1) / 2)
    {
    }

    int Moves() const { return m_nMoves; }

    bool CanPawnPromote() const
    {
        return AnyOf(TSets::Equal(m_board.m_board, WHITE_PAWN), [&](TSquare pawn) {
            return 7 - RowOf(pawn) - (RowOf(pawn) == 1) <= m_nMoves;
        });
    }

    /// A Black man can stand next to its king at the mate, and shut a square. Figures go anywhere;
    /// a pawn and the king come one step nearer with each move of Black, two with the pawn's double
    /// step.
    bool HasBlackHelper() const
    {
        return BlackFigures(m_board) != 0 ||
               AnyOf(TSets::Equal(m_board.m_board, BLACK_PAWN), [&](TSquare pawn) {
                   return RowOf(pawn) - (RowOf(pawn) == 6) < m_nMoves ||
                          Distance(pawn, King()) <= m_nMoves + 1;
               });
    }

    /// White's pawns that can come to attack a square next to the Black king.
    int HelpingPawns() const
    {
        int nPawns = 0;
        TSquareSet pawns = TSets::Equal(m_board.m_board, WHITE_PAWN);
        while (pawns)
            nPawns += Distance(PopLowestSquare(pawns), King()) <= 2 * m_nMoves + 2;
        return nPawns;
    }

    bool IsWhiteAlone() const { return HelpingPawns() == 0 && !CanPawnPromote(); }

    /// The kings can stand two squares apart at the mate. White's may castle.
    bool CanKingsMeet() const { return KingDistance(m_board) <= 2 * m_nMoves + 2; }

    /// The Black king can stand on the edge at the mate.
    bool CanKingReachEdge() const { return m_board.BlackKingRing() < m_nMoves; }

private:
    template <class TTest>
    static bool AnyOf(TSquareSet squares, TTest test)
    {
        while (squares) {
            if (test(PopLowestSquare(squares)))
                return true;
        }
        return false;
    }

    TSquare King() const { return m_board.BlackKing(); }

    const TChessboard& m_board;
    const int m_nMoves;
};

/// King, rook and one pawn mate on the edge, and the king has to stand by.
bool IsRookTooFar(const TChessboard& board, const TReach& reach)
{
    return board.m_nWhiteRooks <= 1 && (!reach.CanKingsMeet() || !reach.CanKingReachEdge()) &&
           reach.HelpingPawns() < 2 && !reach.CanPawnPromote() && !reach.HasBlackHelper();
}

EImpossibility FindOfOneMinor(const TChessboard& board, const TReach& reach)
{
    constexpr int MAX_FREE = 4, MAX_FREE_NO_BLOCK = 2, NEAR_KINGS = 3;
    if (board.m_nMoves < 2)
        return POSSIBLE;
    if (reach.IsWhiteAlone() && !reach.HasBlackHelper())
        return IMPOSSIBLE_ONE_MINOR;
    if (board.m_nHeuristics == 0 || board.m_nWhitePawns)
        return POSSIBLE;
    const int nFree = FreeKingSquares(board);
    if (board.BlackKingRing() > 0 && nFree > MAX_FREE + (KingDistance(board) == NEAR_KINGS))
        return DOUBTFUL_ONE_MINOR_FREE_KING;
    const bool bCornerRow = board.m_blackKingRow == 0 || board.m_blackKingRow == 7;
    return BlackNeighbours(board) == 0 && !bCornerRow && nFree > MAX_FREE_NO_BLOCK
               ? DOUBTFUL_ONE_MINOR_NO_BLOCK
               : POSSIBLE;
}

/// Two minor figures, or a bishop pair with a knight, mate on the edge only.
EImpossibility FindOfMinors(const TChessboard& board, const TReach& reach)
{
    if (reach.HasBlackHelper() || !reach.IsWhiteAlone())
        return POSSIBLE;
    if (board.m_nWhiteKnights == 2 && board.m_nWhiteBishops == 0)
        return reach.CanKingsMeet() ? POSSIBLE : IMPOSSIBLE_TWO_KNIGHTS;
    if (board.m_nWhiteKnights == 1 && board.m_nWhiteBishops == 1 && board.BlackKingRing() > 0 &&
        !reach.CanKingsMeet())
        return IMPOSSIBLE_BISHOP_AND_KNIGHT;
    return board.m_nWhiteBishops + board.m_nWhiteKnights == 2 && !reach.CanKingReachEdge()
               ? IMPOSSIBLE_MINORS_OFF_EDGE
               : POSSIBLE;
}

EImpossibility FindDoubtOfMinors(TChessboard& board, const TReach& reach)
{
    if (board.m_nHeuristics == 0 || board.m_nWhitePawns ||
        board.m_nWhiteBishops + board.m_nWhiteKnights != 2 || board.m_nBlackPawns >= 2)
        return POSSIBLE;
    const int nRing = board.BlackKingRing();
    if (board.m_nWhiteBishops == 2 && reach.Moves() <= nRing)
        return DOUBTFUL_TWO_BISHOPS;
    if (board.m_nBlackRooks && nRing > 0) {
        if (IsMateInNet(board) == EMateTest::No)
            return DOUBTFUL_TWO_MINORS_AGAINST_ROOK;
    }
    return POSSIBLE;
}

/// Black's queen checks a White who has nothing but his own, and can't be taken.
bool IsQueenChecking(const TChessboard& board)
{
    return board.m_nHeuristics != 0 && board.m_nWhiteQueens == 1 && WhiteFigures(board) == 1 &&
           board.m_nWhitePawns == 0 && board.m_nBlackQueens && board.m_whiteChecker >= 0 &&
           board.m_whiteChecker < DOUBLE_CHECK &&
           board.m_board[board.m_whiteChecker] == BLACK_QUEEN &&
           !CanCapture<EColour::White>(board, board.m_whiteChecker);
}

} // namespace

EImpossibility FindImpossibility(TChessboard& board)
{
    const TReach reach(board);
    if (board.m_nWhiteQueens)
        return IsQueenChecking(board) ? DOUBTFUL_QUEENS : POSSIBLE;
    const int nMinors = board.m_nWhiteBishops + board.m_nWhiteKnights;
    if (nMinors == 0)
        return IsRookTooFar(board, reach) ? IMPOSSIBLE_ROOK_OR_PAWNS : POSSIBLE;
    if (board.m_nWhiteRooks)
        return POSSIBLE;
    if (nMinors == 1)
        return FindOfOneMinor(board, reach);
    const EImpossibility proof = FindOfMinors(board, reach);
    return proof != POSSIBLE ? proof : FindDoubtOfMinors(board, reach);
}

bool IsProof(EImpossibility impossibility)
{
    switch (impossibility) {
    case IMPOSSIBLE_ROOK_OR_PAWNS:
    case IMPOSSIBLE_ONE_MINOR:
    case IMPOSSIBLE_MINORS_OFF_EDGE:
    case IMPOSSIBLE_TWO_KNIGHTS:
    case IMPOSSIBLE_BISHOP_AND_KNIGHT:
        return true;
    default:
        return false;
    }
}

EVerdict TestImpossibility(TBlackMove& move, std::uint32_t* pReason)
{
    const EImpossibility impossibility = FindImpossibility(move.m_board);
    if (impossibility == POSSIBLE)
        return EVerdict::Passes;
    *pReason = static_cast<std::uint32_t>(impossibility);
    return IsProof(impossibility) ? EVerdict::Impossible : EVerdict::Doubtful;
}

} // namespace corvina
