#include "heuristics/relaxplan.h"

#include "heuristics/forcedmate.h"
#include "heuristics/relaxsteps.h"
#include "search/hooks.h"

namespace corvina
{
namespace
{

/// Keeps what a plan changes, and brings it back: the board, the one before it, whose set that of a
/// board with Black to move follows, and the parameters.
class TStateHold
{
public:
    explicit TStateHold(TChessboard& board)
        : m_board(board), m_savedBoard(board), m_savedParams(ContextOf(board))
    {
        if (board.m_pParent)
            m_savedParent = *board.m_pParent;
    }
    ~TStateHold()
    {
        m_board = m_savedBoard;
        if (m_board.m_pParent)
            *m_board.m_pParent = m_savedParent;
        static_cast<THeuristicsParams&>(ContextOf(m_board)) = m_savedParams;
    }
    TStateHold(const TStateHold&) = delete;
    TStateHold& operator=(const TStateHold&) = delete;

private:
    TChessboard& m_board;
    TChessboard m_savedBoard;
    TChessboard m_savedParent;
    THeuristicsParams m_savedParams;
};

/// Relaxes the set to its end on a board that is held, and calls visit(result) after each
/// relaxation, which answers whether to go on.
template <class F>
void WalkPlan(TChessboard& board, F visit)
{
    TRelaxation r{board, ContextOf(board), board.m_pRequest, true};
    BeginPreliminaryRun(board, r.m_context);
    int nResult = NOTHING_LEFT;
    do {
        nResult = Relax(r);
    } while (nResult != NOTHING_LEFT && visit(nResult));
}

} // namespace

TRelaxationCount ComputeRelaxationPlan(TChessboard& board, bool bStopAtEdgeEnd)
{
    constexpr std::uint32_t KING_FORMS = SH_KEEPKINGONTHEEDGE | SH_ASSERTBLACKKINGSURROUNDED;
    const TStateHold hold(board);
    TRelaxationCount count;
    WalkPlan(board, [&](int nResult) {
        ++count.m_nRelaxations;
        count.m_nTimeDependent += nResult < 0;
        return !bStopAtEdgeEnd || (board.m_nHeuristics & KING_FORMS);
    });
    return count;
}

std::string ComposeRelaxationPlan(TChessboard& board)
{
    if (board.m_nHeuristics == 0)
        return "No heuristics selected.";
    std::string strPlan = "Pass 1: " + GetHeuristicsText(board, false);
    const TStateHold hold(board);
    char letter = 'a';
    bool bTimeDependent = false;
    WalkPlan(board, [&](int nResult) {
        bTimeDependent |= nResult < 0;
        strPlan += std::string("\n\nPass 1") + ++letter + (nResult < 0 ? "*: " : ": ") +
                   GetHeuristicsText(board, false);
        return true;
    });
    if (bTimeDependent)
        strPlan += "\n\n* time-dependent relaxation (non-deterministic) - possible, but actually "
                   "occurs only if all previous passes are completed in a short time";
    return strPlan;
}

} // namespace corvina
