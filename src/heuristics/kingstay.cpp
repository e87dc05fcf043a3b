#include "heuristics/attacksets.h"
#include "heuristics/kingblocks.h"
#include "heuristics/kingexceptions.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"

#include <algorithm>

namespace corvina
{
namespace
{

/// What a step of the strict form says: go on with the next one, or the answer of the block.
struct TStep
{
    bool m_bDecided = false;
    EVerdict m_verdict = EVerdict::Passes;
};

constexpr TStep GO_ON{};
constexpr TStep PASSES{true, EVerdict::Passes};

TStep Decided(EVerdict verdict)
{
    return {true, verdict};
}

/// A test of which only the mate counts: without one the next step has the word.
TStep EndsOnMate(TBlackMove& move, int nPlies)
{
    const EVerdict verdict = move.CutUnlessMateWithin(nPlies);
    return verdict == EVerdict::Doubtful ? GO_ON : Decided(verdict);
}

/// Both kings' sides shuttled, and the king is back where it stood in the root position.
bool HasShuttledHome(const TBlackMove& move)
{
    return IsKingOnRootSquare(move.m_board) && IsMoveReversal(move.m_board) &&
           IsMoveReversal(move.m_parent);
}

/// White's capture was part of an exchange that Black had begun.
bool IsExchange(const TBlackMove& move)
{
    const TFigure before = CapturedFigure(move.m_pGrandparent);
    return move.m_board.m_nInitialMoves - move.m_board.m_nMoves > 2 && before != NO_FIGURE &&
           (!move.Has(SH_SEASNAKE) || IsAbovePawn(before));
}

/// White has just won a man, which may be worth the king's freedom.
bool HasWhiteWonMaterial(const TBlackMove& move)
{
    return CapturedMoreThanStandingPawn(move) && !IsExchange(move);
}

/// In the short mate search a swept king near the edge is judged by White's pawns alone.
bool IsSweptInShortSearch(const TBlackMove& move)
{
    return move.Has(SH_SWEEPINGWHITEROOK) && move.m_context.m_nQuickerMateNesting &&
           move.m_board.m_blackKingRow != 0 && move.m_board.m_nWhiteQueens && move.m_nRing < 2;
}

/// The king has left the square on which it stopped a White pawn.
bool HasLetPawnThrough(const TBlackMove& move)
{
    const TSquare left = move.m_board.m_LastMove.m_from;
    if (RowOf(left) != 7 || move.m_board.m_board[left - 8] != WHITE_PAWN ||
        IsGuardedByBlackPawnOrKnight(move.m_board, left))
        return false;
    return IsAttackedBy<EColour::White>(move.m_board, left) ||
           (BlackFigures(move.m_board) < 2 &&
            WhitePawnCanPromoteFrom(move.m_board, static_cast<TSquare>(left - 8)));
}

/// Black has lost its queens and rooks, and White hasn't paid for them.
bool HasWhiteWonMajors(const TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const TThreadContext& context = move.m_context;
    return context.m_nRootBlackMajors && BlackMajors(board) == 0 &&
           board.m_nBlackBishops + board.m_nBlackKnights < 2 &&
           WhiteMajors(board) >= context.m_nRootWhiteMajors &&
           board.m_nWhiteBishops + board.m_nWhiteKnights >= context.m_nRootWhiteMinors;
}

/// The exceptions that let a king's move stand.
TStep TestExceptions(TBlackMove& move)
{
    if ((move.m_context.m_bKingMoveExceptions && MovedToOrFromRootKing(move.m_board)) ||
        HasShuttledHome(move) || HasWhiteWonMaterial(move))
        return PASSES;
    if (IsSweptInShortSearch(move))
        return GO_ON;
    if (HasLetPawnThrough(move))
        return PASSES;
    if (HasWhiteWonMajors(move))
        return move.m_nRing == 0 ? PASSES : Decided(move.CutUnlessMateInOne());
    return EndsOnMate(move, 1);
}

/// A White pawn of the seventh row can take a figure that stands next to the king on the last row,
/// and nothing retakes.
bool CanPawnTakeNeighbour(const TChessboard& board)
{
    if (board.m_blackKingRow != 7)
        return false;
    const TSquare pawn = MakeSquare(board.m_blackKingFile, 6);
    if (board.m_board[pawn] != WHITE_PAWN)
        return false;
    TChessboard trial = board;
    trial.m_pThread = nullptr;
    TSquareSet targets =
        PawnAttacks(EColour::White, pawn) & TSide<EColour::Black>::Figures(board.m_board);
    while (targets) {
        TMove move{pawn, PopLowestSquare(targets), KIND_QUEEN, 0};
        TChessboard child = trial;
        child.m_pParent = &trial;
        if (child.MakeWhiteMove(&move) && IsAttackedBy<EColour::White>(child, move.m_to) &&
            !CanCapture<EColour::Black>(child, move.m_to))
            return true;
    }
    return false;
}

/// Pawns about to promote decide by a mate search.
TStep TestPawns(TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const bool bPromotes = board.m_nMoves >= 2 && WhitePawnPromotesNow(board);
    if (bPromotes || (FreeKingSquares(board) == 0 && CanPawnTakeNeighbour(board)))
        return Decided(move.CutUnless(QuickMateAfterEdge(move.m_board)));
    return GO_ON;
}

bool IsPawnRaceWon(const TChessboard& board)
{
    return board.m_nMoves > 4 && WhiteMajors(board) && BlackMajors(board) == 0 &&
           WinsPawnRace(board);
}

EVerdict TestLastMates(TBlackMove& move)
{
    TChessboard& board = move.m_board;
    if (!board.m_nWhiteQueens && !WhitePawnCanPromote(board)) {
        const EVerdict verdict = move.CutUnlessMateWithin(3);
        return verdict == EVerdict::Doubtful && IsPawnRaceWon(board) ? EVerdict::EndsHook : verdict;
    }
    const bool bLong = BlackFigures(board) == 0 || (move.m_nRing == 0 && KingDistance(board) == 2);
    return move.CutUnlessMateWithin(bLong ? 5 : 3);
}

EVerdict TestKingMove(TBlackMove& move)
{
    for (const auto test : {TestExceptions, TestPawns}) {
        const TStep step = test(move);
        if (step.m_bDecided)
            return step.m_verdict;
    }
    return TestLastMates(move);
}

bool IsTrackedFigureEnPrise(const TBlackMove& move)
{
    const auto& tracked = move.m_board.m_trackedSquares;
    const auto to = static_cast<std::int8_t>(move.m_board.m_LastMove.m_to);
    return move.Has(SH_DONTLETFIGUREUNBLOCK) &&
           std::find(std::begin(tracked), std::end(tracked), to) != std::end(tracked) &&
           IsLastMoveEnPrise<EColour::Black>(move.m_board);
}

/// The position is sharp enough for a net in spite of the missing mate.
bool IsNetWorthLookingFor(const TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    if (board.m_nWhiteQueens && move.m_nRing == 0 && KingDistance(board) <= 2)
        return true;
    const TMove& last = board.m_LastMove;
    return last.PromotionKind() && MustWhiteReact(board) && IsLoose(board, last.m_to) &&
           CanCapture<EColour::White>(board, last.m_to);
}

/// The king has moved earlier, by an exception; Black has gone on with another figure.
EVerdict TestAfterException(TBlackMove& move)
{
    if (HasOpenLineToRootKing(move.m_board) || IsTrackedFigureEnPrise(move) ||
        IsCheckShutInVain(move))
        return EVerdict::Passes;
    const TStep mate = EndsOnMate(move, 1);
    if (mate.m_bDecided)
        return mate.m_verdict;
    if (!IsNetWorthLookingFor(move))
        return EVerdict::Doubtful;
    return move.CutUnless(IsMateInNet(move.m_board));
}

} // namespace

EVerdict TestKingStays(TBlackMove& move)
{
    if (move.IsKingMove())
        return TestKingMove(move);
    if (move.m_context.m_bKingMoveExceptions && !IsKingOnRootSquare(move.m_board))
        return TestAfterException(move);
    return EVerdict::Passes;
}

} // namespace corvina
