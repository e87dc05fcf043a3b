#include "chess/geometry.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/paramitems.h"
#include "heuristics/paramreader.h"
#include "heuristics/zugzwangmap.h"

#include <array>

namespace corvina
{
namespace
{

/// "A8-B8": the two squares of the pendulum, the one that White can approach first.
std::optional<std::array<TSquare, 2>> PendulumOf(std::string_view strItem)
{
    const std::vector<std::string_view> vecItems = ItemsOf(strItem, '-');
    if (vecItems.size() != 2)
        return std::nullopt;
    const auto first = SquareOf(vecItems[0]), second = SquareOf(vecItems[1]);
    if (!first || !second || *first == *second)
        return std::nullopt;
    return std::array{*first, *second};
}

} // namespace

void TParamReader::ReadSeaSnake(std::string_view strParams)
{
    THeuristicsParams& p = m_set.m_params;
    std::vector<std::string_view> vecItems = ItemsOf(strParams);
    const auto refuse = [&] {
        Refuse(SH_SEASNAKE, strParams,
               "approach square, turn back square, number of moves, squares of the pendulum as in "
               "A8-B8");
    };
    if (vecItems.empty())
        return;
    if (vecItems.size() > 2 && vecItems.back().find('-') != std::string_view::npos) {
        const auto pendulum = PendulumOf(vecItems.back());
        if (!pendulum)
            refuse();
        p.m_pendulumSquare1 = (*pendulum)[0];
        p.m_pendulumSquare2 = (*pendulum)[1];
        vecItems.pop_back();
    }
    const auto nAfter = vecItems.size() < 3 ? std::optional(0) : NumberOf(vecItems[2], INT8_MAX);
    if (vecItems.size() == 1 || vecItems.size() > 3 || !nAfter)
        refuse();
    p.m_approachSquare = SquareOrNone(SH_SEASNAKE, vecItems[0]);
    p.m_turnBackSquare = SquareOrNone(SH_SEASNAKE, vecItems[1]);
    p.m_nSeaSnakeOnlyAfter = static_cast<std::int8_t>(*nAfter);
}

void TParamReader::ReadTriangle(std::string_view strParams)
{
    const std::vector<std::string_view> vecItems = ItemsOf(strParams);
    if (vecItems.empty())
        return;
    std::array<TSquare, 3> aSquares{};
    for (std::size_t i = 0; i < aSquares.size(); ++i) {
        const auto square = i < vecItems.size() ? SquareOf(vecItems[i]) : std::nullopt;
        if (vecItems.size() != aSquares.size() || !square)
            Refuse(SH_ZUGZWANGTRIANGLES, strParams,
                   "three different squares, that of the White figure first");
        aSquares[i] = *square;
    }
    if (aSquares[0] == aSquares[1] || aSquares[0] == aSquares[2] || aSquares[1] == aSquares[2] ||
        (m_pBoard && !(m_pBoard->m_board[aSquares[0]] & COLOUR_WHITE)))
        Refuse(SH_ZUGZWANGTRIANGLES, strParams,
               "three different squares, that of the White figure first");
    m_set.m_params.m_triangleOrigin = aSquares[0];
    m_set.m_params.m_aTriangleFields[0] = aSquares[1];
    m_set.m_params.m_aTriangleFields[1] = aSquares[2];
}

/// Without a board the moves can't be read.
void TParamReader::ReadZugzwang(std::string_view strParams)
{
    if (strParams.empty())
        return;
    if (!m_pBoard)
        Refuse(SH_ZUGZWANG, strParams, "moves of a position that is known");
    m_set.m_vecZugzwangMoves = ReadZugzwangMoves(strParams, *m_pBoard);
    m_set.m_params.m_nZugzwangKey = KeyOfZugzwangMoves(m_set.m_vecZugzwangMoves);
}

} // namespace corvina
