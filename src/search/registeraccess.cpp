#include "search/registeraccess.h"

#include "chess/squaresets.h"
#include "registers/answers.h"
#include "registers/positionkey.h"
#include "search/line.h"
#include "search/solverequest.h"

#include <cstring>

namespace corvina
{
namespace
{

/// Positions with fewer plies left are solved faster than looked up.
constexpr int MIN_STORED_PLIES = 3;

/// While White's moves are filtered, a position is another one than its 64 squares say: its key
/// carries a mark on the first empty square, which tells the mode and whether Black's bishop has
/// left the board. The mark is no figure, so that the key is that of no other position. It goes
/// with the object.
class TKeyMark
{
public:
    explicit TKeyMark(TChessboard& board)
    {
        const int nMode = board.m_moveFilter & TChessboard::FILTER_MODE_MASK;
        if (nMode == 0)
            return;
        const bool bShutOut = board.m_boardFlags & TChessboard::FLAG_BISHOPSHUTOUT;
        m_pSquare = &board.m_board[LowestSquare(~TSets::Occupied(board.m_board))];
        *m_pSquare =
            static_cast<std::uint8_t>(COLOUR_WHITE | COLOUR_BLACK | nMode | (bShutOut ? 4 : 0));
    }
    ~TKeyMark()
    {
        if (m_pSquare)
            *m_pSquare = NO_FIGURE;
    }
    TKeyMark(const TKeyMark&) = delete;
    TKeyMark& operator=(const TKeyMark&) = delete;

private:
    std::uint8_t* m_pSquare = nullptr;
};

/// May the thread store what it has found? What a stop or a command has cut short is no result.
bool MayStore(const TChessboard& board)
{
    const TThreadContext& context = ContextOf(board);
    return !board.m_pRequest->IsGivenUp(context.m_nThreadId, board.m_nMoves) &&
           context.m_nSuspended <= 1;
}

/// Is there room, after a sweep if need be?
bool HasRoom(TAggregatedTemporaryChessboardRegister& reg)
{
    const std::uint32_t nMax = reg.GetMaxElements();
    if (nMax == 0 || reg.GetElementsCount() < nMax)
        return true;
    return !reg.EmptySomeDataWhenRegisterFull(false) || reg.GetElementsCount() < nMax;
}

std::uint8_t Ask(TChessboard& board)
{
    TAggregatedTemporaryChessboardRegister& reg = board.m_pRequest->m_TemporaryRegister;
    const TThreadContext& context = ContextOf(board);
    const TKeyMark mark(board);
    const std::uint16_t nMoves = board.m_nMoves;
    if (context.m_nQuickerMateNesting && context.m_shAdditionalMoves)
        return reg.FindPositionAdditional(
            nMoves, static_cast<std::uint16_t>(nMoves + 2 * context.m_shAdditionalMoves),
            board.m_board, board.m_nHeuristics, board.m_nHeuristicsParams);
    return reg.FindPosition(nMoves, board.m_board, board.m_nHeuristics, board.m_nHeuristicsParams);
}

/// A defence run takes a hit only when the register knows the position under this very setting.
bool IsConfirmed(TChessboard& board)
{
    const TSolveRequest& request = *board.m_pRequest;
    if (!request.m_bRegisterConfirm || board.m_nHeuristics == 0 ||
        ContextOf(board).m_nQuickerMateNesting)
        return true;
    const TKeyMark mark(board);
    return board.m_pRequest->m_TemporaryRegister.FindDoubtful(
               board.m_nMoves, board.m_nMoves, board.m_board, board.m_nHeuristics,
               board.m_nHeuristicsParams) != REGISTER_NO_MATE_HERE;
}

} // namespace

bool UsesRegister(const TChessboard& board)
{
    return board.m_pRequest->m_bUseRegister &&
           board.m_nInitialMoves >= board.m_pRequest->m_nMinRegisterPlies &&
           (board.m_nMoves >= MIN_STORED_PLIES ||
            (ContextOf(board).m_nQuickerMateNesting && ContextOf(board).m_shAdditionalMoves)) &&
           IsRegisterable(board);
}

std::optional<TSearchResult> ProbeRegister(TChessboard& board)
{
    const std::uint8_t nAnswer = Ask(board);
    if (nAnswer == REGISTER_UNKNOWN || (nAnswer == REGISTER_NO_MATE_HERE && board.m_nPass >= 2) ||
        !IsConfirmed(board))
        return std::nullopt;
    TThreadContext& context = ContextOf(board);
    context.m_nDoubtReason = nAnswer == REGISTER_NO_MATE ? 0 : DOUBT_REGISTER;
    switch (nAnswer) {
    case REGISTER_NO_MATE:
        return RESULT_NO_MATE;
    case REGISTER_NO_MATE_HERE:
        return RESULT_DOUBTFUL;
    case REGISTER_MATE_ADDITIONAL:
        context.m_bAdditionalMovesUsed = true;
        return RESULT_MATE;
    default:
        return RESULT_MATE;
    }
}

int ShortestMateInRegister(TChessboard& board)
{
    const TKeyMark mark(board);
    const auto depths =
        board.m_pRequest->m_TemporaryRegister.FindDepths(board.m_board, GetHash(board.m_board));
    return depths && depths->m_nMovesMate <= board.m_nMoves ? depths->m_nMovesMate : 0;
}

void StoreCertain(TChessboard& board, std::uint16_t nMoves, bool bMate)
{
    TAggregatedTemporaryChessboardRegister& reg = board.m_pRequest->m_TemporaryRegister;
    if (nMoves < MIN_STORED_PLIES || !MayStore(board) || !HasRoom(reg))
        return;
    const TKeyMark mark(board);
    if (reg.Insert(nMoves, board, bMate))
        reg.GrowIfCrowded();
}

void StoreDoubtful(TChessboard& board, std::uint16_t nMoves)
{
    if (nMoves < MIN_STORED_PLIES || !MayStore(board))
        return;
    const TKeyMark mark(board);
    board.m_pRequest->m_TemporaryRegister.InsertDoubtful(nMoves, board.m_board, board.m_nHeuristics,
                                                         board.m_nHeuristicsParams, true);
}

} // namespace corvina
