#include "heuristics/pendulum.h"

#include "chess/sides.h"

#include <bit>

namespace corvina
{
namespace
{

/// The only figure that Black can move, with the only square to which it can go; nothing when the
/// king can move too.
TPendulum FindSwing(const TChessboard& board, TBlackMobility* pMobility = nullptr)
{
    const TBlackMobility mobility = FindBlackMobility(board);
    if (pMobility)
        *pMobility = mobility;
    if (mobility.m_nKingMoves != 0 || !std::has_single_bit(mobility.m_figures) ||
        !std::has_single_bit(mobility.m_targets))
        return {};
    const TSquare here = LowestSquare(mobility.m_figures), there = LowestSquare(mobility.m_targets);
    if (board.m_board[there] != NO_FIGURE)
        return {};
    return {board.m_board[here], here, there};
}

} // namespace

TChessboard Swung(const TChessboard& board, const TPendulum& pendulum)
{
    TChessboard swung = board;
    swung.m_pParent = nullptr;
    swung.m_board[pendulum.m_here] = NO_FIGURE;
    swung.m_board[pendulum.m_there] = pendulum.m_figure;
    swung.m_LastMove = {pendulum.m_here, pendulum.m_there, 0, 0};
    const TSquare king = swung.WhiteKing();
    swung.m_whiteChecker = swung.GetWhiteKingChecker(static_cast<std::int8_t>(FileOf(king)),
                                                     static_cast<std::int8_t>(RowOf(king)));
    return swung;
}

TPendulum FindPendulum(const TChessboard& board, TBlackMobility* pMobility)
{
    const TPendulum pendulum = FindSwing(board, pMobility);
    if (!pendulum.IsFound() || IsAttackedBy<EColour::White>(board, pendulum.m_here))
        return {};
    const TChessboard swung = Swung(board, pendulum);
    if (swung.m_whiteChecker != NO_CHECK || IsAttackedBy<EColour::White>(swung, pendulum.m_there))
        return {};
    const TPendulum back = FindSwing(swung);
    return back.m_here == pendulum.m_there && back.m_there == pendulum.m_here ? pendulum
                                                                              : TPendulum{};
}

} // namespace corvina
