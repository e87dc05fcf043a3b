#include "heuristics/tempo.h"

#include "chess/linecontext.h"
#include "heuristics/attacksets.h"
#include "heuristics/blackmobility.h"

#include <algorithm>

namespace corvina
{
namespace
{

bool KeepsBlackShutIn(const TChessboard& before, const TBlackMobility& mobility, const TMove& move)
{
    TChessboard after;
    if (!PlayWithoutLine(before, move, after) || CanCapture<EColour::Black>(after, move.m_to))
        return false;
    const TBlackMobility since = FindBlackMobility(after);
    return since.m_nKingMoves <= mobility.m_nKingMoves &&
           !(since.m_figures & ~mobility.m_figures) && !(since.m_targets & ~mobility.m_targets) &&
           since.m_nMoves > 0;
}

} // namespace

bool HasWhiteTempo(const TChessboard& board)
{
    const TBlackMobility mobility = FindBlackMobility(board);
    TMoveList moves;
    const int nMoves = board.GenerateWhiteMoves(moves.data());
    return std::any_of(moves.data(), moves.data() + nMoves, [&](const TMove& move) {
        return move.m_from != board.WhiteKing() && board.m_board[move.m_to] == NO_FIGURE &&
               KeepsBlackShutIn(board, mobility, move);
    });
}

bool PlayWithoutLine(const TChessboard& root, TMove move, TChessboard& after)
{
    TLineContext line(root.m_nMoves + 1);
    TChessboard before = root;
    before.m_pParent = nullptr;
    before.m_pThread = &line;
    after = before;
    after.m_pParent = &before;
    if (!after.MakeWhiteUserMove(&move))
        return false;
    after.m_pParent = nullptr;
    after.m_pThread = root.m_pThread;
    after.m_nMoves = root.m_nMoves;
    return after.m_blackChecker == NO_CHECK;
}

bool IsOnMap(const TZugzwangMap& map, const TMove& move)
{
    return map.empty() || std::any_of(map.begin(), map.end(), [&](const auto& item) {
               return IsSameMove(item.second.m_move, move);
           });
}

} // namespace corvina
