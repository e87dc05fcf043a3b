#include "chess/replies.h"
#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"

namespace corvina
{
namespace
{

using W = TSide<EColour::White>;

constexpr int SEVENTH_ROW = W::LAST_ROW - 1;
constexpr int SIXTH_ROW = W::LAST_ROW - 2;

/// Half-moves that the trial position is given: enough for every line that is tried.
constexpr std::uint16_t TRIAL_PLIES = 9;

bool GetsThroughNow(TChessboard& board, TSquare pawn);

/// The pawn gets through whatever Black plays. Stalemate saves Black, mate doesn't.
bool GetsThroughAfterAnyReply(TChessboard& board, TSquare pawn)
{
    bool bHasReply = false;
    const bool bAlways =
        HoldsForEachReply(board, &bHasReply, [pawn](TChessboard& child, const TMove&) {
            return GetsThroughNow(child, pawn);
        });
    return bAlways && (bHasReply || board.m_blackChecker != NO_CHECK);
}

/// Is the move of the pawn one that the test follows? Promotions to a queen stand for all, and a
/// pawn that is not yet on the sixth row can only get there at once by a capture en passant.
bool IsTried(const TChessboard& board, const TMove& move)
{
    if (move.PromotionKind() && move.PromotionKind() != KIND_QUEEN)
        return false;
    return RowOf(move.m_from) >= SIXTH_ROW ||
           (FileOf(move.m_from) != FileOf(move.m_to) && board.m_board[move.m_to] == NO_FIGURE);
}

/// White, to move, brings the pawn to its promotion: one step, or two with any reply between, and
/// Black can't take it where it arrives.
bool GetsThroughNow(TChessboard& board, TSquare pawn)
{
    TMove aMoves[16 + MOVE_LIST_SLACK];
    const int nMoves = board.GenerateWhitePawnMoves(static_cast<std::int8_t>(FileOf(pawn)),
                                                    static_cast<std::int8_t>(RowOf(pawn)), aMoves);
    for (int i = 0; i < nMoves; ++i) {
        if (!IsTried(board, aMoves[i]))
            continue;
        TChessboard child = board;
        child.m_pParent = &board;
        if (!child.MakeWhiteMove(&aMoves[i]) || CanCapture<EColour::Black>(child, aMoves[i].m_to))
            continue;
        if (aMoves[i].PromotionKind() || GetsThroughAfterAnyReply(child, aMoves[i].m_to))
            return true;
    }
    return false;
}

/// A copy to try moves on. Without a thread making a move leaves no notes.
TChessboard TrialBoard(const TChessboard& board)
{
    TChessboard trial = board;
    trial.m_pThread = nullptr;
    trial.m_moveFilter = 0;
    trial.m_nMoves = TRIAL_PLIES;
    return trial;
}

bool AnyGetsThrough(const TChessboard& board, TSquareSet pawns)
{
    if (!pawns)
        return false;
    TChessboard trial = TrialBoard(board);
    while (pawns) {
        if (GetsThroughNow(trial, PopLowestSquare(pawns)))
            return true;
    }
    return false;
}

/// White's pawns from this row on.
TSquareSet PawnsFromRow(const TChessboard& board, int row)
{
    return board.m_nWhitePawns ? TSets::Equal(board.m_board, W::PAWN) & ALL_SQUARES << 8 * row : 0;
}

} // namespace

bool WhitePawnCanPromote(const TChessboard& board)
{
    return WhitePawnPromotesNow(board) ||
           AnyGetsThrough(board, PawnsFromRow(board, W::EN_PASSANT_ROW) &
                                     ~PawnsFromRow(board, SEVENTH_ROW));
}

bool WhitePawnCanPromoteFrom(const TChessboard& board, TSquare pawn)
{
    return AnyGetsThrough(board, PawnsFromRow(board, W::EN_PASSANT_ROW) & Bit(pawn));
}

bool WhitePawnPromotesNow(const TChessboard& board)
{
    return AnyGetsThrough(board, PawnsFromRow(board, SEVENTH_ROW));
}

} // namespace corvina
