#include "heuristics/materialblocks.h"
#include "heuristics/materialtests.h"

namespace corvina
{

EVerdict TestOneColourPlay(TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const TMove& last = board.m_LastMove;
    const bool bMovesOn = (board.m_moveFilter & TChessboard::FILTER_MODE_MASK) && !last.IsNull() &&
                          RowOf(last.m_from) == 0 &&
                          OriginOf(move.m_parent, last.m_from).m_bPromoted;
    return bMovesOn ? move.CutUnlessMateInOne() : EVerdict::Passes;
}

} // namespace corvina
