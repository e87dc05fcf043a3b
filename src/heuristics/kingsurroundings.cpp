#include "heuristics/kingsurroundings.h"

#include "chess/geometry.h"
#include "chess/sides.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

namespace corvina
{

int WhiteFigures(const TChessboard& board)
{
    return board.m_nWhiteQueens + board.m_nWhiteRooks + board.m_nWhiteBishops +
           board.m_nWhiteKnights;
}

int BlackFigures(const TChessboard& board)
{
    return board.m_nBlackQueens + board.m_nBlackRooks + board.m_nBlackBishops +
           board.m_nBlackKnights;
}

} // namespace corvina
