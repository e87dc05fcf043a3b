#include "heuristics/kingtailored.h"

#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/lastmoves.h"

#include <algorithm>
#include <bit>

namespace corvina
{
namespace
{

using W = TSide<EColour::White>;
using B = TSide<EColour::Black>;

constexpr int MAX_FREE_SQUARES_OF_NET = 3;

/// Squares at most two steps from a square.
TSquareSet BoxOfTwo(int square)
{
    TSquareSet box = KingZone(square), zone = box;
    while (zone)
        box |= KingZone(PopLowestSquare(zone));
    return box & ~Bit(square);
}

/// Squares of the box of two that the Black king could stand on.
TSquareSet FreeBox(const TChessboard& board)
{
    const TSquare king = board.BlackKing();
    const TSquareSet occupied = TSets::Occupied(board.m_board) & ~Bit(king);
    return BoxOfTwo(king) & ~B::Figures(board.m_board) &
           ~AttackedSquares<EColour::White>(board, occupied);
}

/// Squares two steps away that the king reaches over free squares.
TSquareSet ReachOfTwo(const TChessboard& board)
{
    const TSquareSet box = FreeBox(board);
    const TSquareSet zone = KingZone(board.BlackKing());
    TSquareSet steps = box & zone, reached = 0;
    while (steps)
        reached |= KingZone(PopLowestSquare(steps));
    return reached & box & ~zone;
}

TSquareSet WhiteMajorSet(const TChessboard& board)
{
    return W::HasLineSlider(board) ? TSets::Having(board.m_board, W::LINE_MASK) : 0;
}

TSquareSet WhiteQueenSet(const TChessboard& board)
{
    return board.m_nWhiteQueens ? TSets::Equal(board.m_board, WHITE_QUEEN) : 0;
}

/// Squares to which White's queen or rook can go by the rules of the figure.
TSquareSet TargetsOf(const TChessboard& board, int from)
{
    return AttacksOf<EColour::White>(board.m_board[from] & KIND_MASK, from,
                                     TSets::Occupied(board.m_board)) &
           ~W::Figures(board.m_board);
}

/// The squares of `open` that White's figure leaves free once it has gone from one square to
/// another: those that neither it attacks there nor the other figures.
class TTrialMoves
{
public:
    TTrialMoves(const TChessboard& board, TSquare from)
        : m_board(board), m_from(from),
          m_occupied(TSets::Occupied(board.m_board) & ~Bit(board.BlackKing()) & ~Bit(from))
    {
        const TSquareSet others = AttackedSquares<EColour::White>(board, m_occupied, ~Bit(from));
        m_open = KingZone(board.BlackKing()) & ~B::Figures(board.m_board) & ~others;
    }

    int FreeAfter(TSquare to) const
    {
        const TFigure kind = m_board.m_board[m_from] & KIND_MASK;
        return std::popcount(m_open & ~AttacksOf<EColour::White>(kind, to, m_occupied));
    }

private:
    const TChessboard& m_board;
    TSquare m_from;
    TSquareSet m_occupied;
    TSquareSet m_open = 0;
};

/// The move of White's figure leaves it where Black can't take it. Pins are left out.
bool IsSafeTarget(const TChessboard& board, TSquare from, TSquare to)
{
    const TSquareSet occupied = (TSets::Occupied(board.m_board) & ~Bit(from)) | Bit(to);
    const TSquareSet attackers = AttackersOf<EColour::Black>(board, occupied, to).All();
    if (attackers & ~Bit(board.BlackKing()))
        return false;
    return !attackers ||
           IsAttackedBy<EColour::White>(board, board.m_board, occupied, ~Bit(from), to);
}

/// Makes each legal move of White that the list holds on a copy without a thread, until the test
/// says yes of one.
template <class TTest>
bool AnyWhiteMove(const TChessboard& board, TMove* pMoves, int nMoves, TTest test)
{
    TChessboard trial = board;
    trial.m_pThread = nullptr;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard child = trial;
        child.m_pParent = &trial;
        if (child.MakeWhiteMove(&pMoves[i]) && test(child))
            return true;
    }
    return false;
}

template <class TTest>
bool AnyPawnMove(const TChessboard& board, int rowFrom, TTest test)
{
    if (!board.m_nWhitePawns)
        return false;
    TSquareSet pawns = TSets::Equal(board.m_board, W::PAWN) & ALL_SQUARES << 8 * rowFrom;
    while (pawns) {
        const TSquare pawn = PopLowestSquare(pawns);
        TMove aMoves[16 + MOVE_LIST_SLACK];
        const int nMoves = board.GenerateWhiteFigureMoves(pawn, aMoves);
        if (AnyWhiteMove(board, aMoves, nMoves, test))
            return true;
    }
    return false;
}

} // namespace

EKingNet TestKingNet(TChessboard& board)
{
    const int nFree = FreeKingSquares(board);
    if (nFree > MAX_FREE_SQUARES_OF_NET)
        return EKingNet::NotWorth;
    switch (IsMateWithin(board, nFree <= 1 ? 5 : 3)) {
    case EMateTest::Mate:
        return EKingNet::Mate;
    case EMateTest::Undecided:
        return EKingNet::Undecided;
    default:
        return EKingNet::Unknown;
    }
}

EMateTest IsMateInNet(TChessboard& board)
{
    switch (TestKingNet(board)) {
    case EKingNet::Mate:
        return EMateTest::Mate;
    case EKingNet::Undecided:
        return EMateTest::Undecided;
    default:
        return EMateTest::No;
    }
}

bool IsSurroundStillTight(const TChessboard& board)
{
    return !ReachOfTwo(board);
}

bool IsKingBoxOpen(const TChessboard& board, int nDistance)
{
    return nDistance == 1 ? FreeKingSquareSet(board) != 0 : ReachOfTwo(board) != 0;
}

bool IsFirstWhiteMoveEscape(const TChessboard& board, int nLimit)
{
    return board.m_nInitialMoves - board.m_nMoves <= 2 &&
           FreeKingSquares(board.GetRootBoard()) > nLimit;
}

int CountMajorsNearKing(const TChessboard& board)
{
    const TSquare king = board.BlackKing();
    return std::popcount(WhiteMajorSet(board) & BoxOfTwo(king));
}

int CountMajorsGuardingKing(const TChessboard& board)
{
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    const TSquareSet zone = KingZone(board.BlackKing());
    TSquareSet majors = WhiteMajorSet(board);
    int nCount = 0;
    while (majors) {
        const TSquare from = PopLowestSquare(majors);
        const TFigure kind = board.m_board[from] & KIND_MASK;
        nCount += (AttacksOf<EColour::White>(kind, from, occupied) & zone) != 0;
    }
    return nCount;
}

bool HasClosingQueenMove(const TChessboard& board, int nLimit)
{
    TSquareSet queens = WhiteQueenSet(board);
    while (queens) {
        const TSquare from = PopLowestSquare(queens);
        const TTrialMoves trial(board, from);
        TSquareSet targets = TargetsOf(board, from);
        while (targets) {
            const TSquare to = PopLowestSquare(targets);
            if (trial.FreeAfter(to) <= nLimit && IsSafeTarget(board, from, to))
                return true;
        }
    }
    return false;
}

bool HasQueenContact(const TChessboard& board)
{
    TSquareSet queens = WhiteQueenSet(board);
    while (queens) {
        const TSquare from = PopLowestSquare(queens);
        TSquareSet targets = TargetsOf(board, from) & KingZone(board.BlackKing());
        while (targets) {
            if (IsSafeTarget(board, from, PopLowestSquare(targets)))
                return true;
        }
    }
    return false;
}

bool HasKingApproach(const TChessboard& board, int nLimit)
{
    TMove aMoves[16 + MOVE_LIST_SLACK];
    const int nMoves =
        board.GenerateWhiteKingMoves(board.m_whiteKingFile, board.m_whiteKingRow, aMoves);
    return AnyWhiteMove(board, aMoves, nMoves, [nLimit](const TChessboard& child) {
        return KingDistance(child) == 2 && FreeKingSquares(child) <= nLimit;
    });
}

bool HasPawnCheck(const TChessboard& board)
{
    return AnyPawnMove(board, W::LAST_ROW - 2, [](const TChessboard& child) {
        return child.m_blackChecker != NO_CHECK &&
               !CanCapture<EColour::Black>(child, child.m_LastMove.m_to);
    });
}

bool HasPromotionWithTempo(const TChessboard& board)
{
    return AnyPawnMove(board, W::LAST_ROW - 1, [](const TChessboard& child) {
        return (child.m_blackChecker != NO_CHECK || CapturedFigure(child) != NO_FIGURE) &&
               !CanCapture<EColour::Black>(child, child.m_LastMove.m_to);
    });
}

bool WinsPawnRace(const TChessboard& board)
{
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    TSquareSet pawns = board.m_nWhitePawns ? TSets::Equal(board.m_board, W::PAWN) : 0;
    int nWhite = 8;
    while (pawns) {
        const TSquare pawn = PopLowestSquare(pawns);
        if (!(Ray(DIR_UP, pawn) & occupied))
            nWhite = std::min(nWhite, W::LAST_ROW - RowOf(pawn));
    }
    int nBlack = 8;
    TSquareSet blackPawns = TSets::Equal(board.m_board, B::PAWN);
    if (blackPawns)
        nBlack = RowOf(LowestSquare(blackPawns));
    return nWhite < 8 && nWhite <= nBlack && nWhite <= (board.m_nMoves - 1) / 2;
}

bool HasOpenLineToRootKing(const TChessboard& board)
{
    const TSquare king = board.GetRootBoard().BlackKing();
    const EDirection direction = DirectionTo(king, board.m_LastMove.m_from);
    if (direction == DIR_NONE)
        return false;
    const TSquareSet sliders =
        W::Sliders(board, board.m_board, direction) & Ray(direction, board.m_LastMove.m_from);
    return AnyReaches(sliders, king, TSets::Occupied(board.m_board));
}

bool MustWhiteReact(const TChessboard& board)
{
    const TSquare to = board.m_LastMove.m_to;
    const TFigure kind = board.m_board[to] & KIND_MASK;
    return board.m_whiteChecker != NO_CHECK ||
           (AttacksOf<EColour::Black>(kind, to, TSets::Occupied(board.m_board)) &
            WhiteQueenSet(board));
}

bool HasRookLineAtKing(const TChessboard& board)
{
    const TSquare king = board.BlackKing();
    TSquareSet rooks = board.m_nWhiteRooks ? TSets::Equal(board.m_board, WHITE_ROOK) : 0;
    while (rooks) {
        const TSquare from = PopLowestSquare(rooks);
        TSquareSet targets = TargetsOf(board, from) & g_geometry.m_aRook[king];
        while (targets) {
            if (!IsAttackedBy<EColour::Black>(board, PopLowestSquare(targets)))
                return true;
        }
    }
    return false;
}

bool IsSurroundMendable(const TChessboard& child, int nMissing)
{
    const int nFree = FreeKingSquares(child);
    TSquareSet majors = WhiteMajorSet(child);
    while (majors) {
        const TSquare from = PopLowestSquare(majors);
        const TTrialMoves trial(child, from);
        TSquareSet targets = TargetsOf(child, from);
        while (targets) {
            if (trial.FreeAfter(PopLowestSquare(targets)) <= nFree - nMissing)
                return true;
        }
    }
    return false;
}

bool IsSurroundOpenAfterWhite(const TChessboard& child, int nLimit)
{
    return FreeKingSquares(child) > nLimit;
}

bool IsSurroundOpenForMinors(const TChessboard& child, int nLimit)
{
    return FreeKingSquares(child) > nLimit + 1;
}

} // namespace corvina
