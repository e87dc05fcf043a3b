#include "chess/sides.h"

namespace corvina
{
namespace
{

template <EColour Attacker>
std::int8_t GetKingChecker(const TChessboard& b, int square, std::int8_t* pList,
                           std::uint8_t* pCount)
{
    const TAttackers a = AttackersOf<Attacker>(b, TSets::Occupied(b.m_board), square);
    if (pList) {
        for (TSquareSet set : {a.m_king, a.m_pawns, a.m_knights, a.m_diagonal, a.m_line}) {
            while (set) {
                const TSquare from = PopLowestSquare(set);
                *pList++ = static_cast<std::int8_t>(FileOf(from));
                *pList++ = static_cast<std::int8_t>(RowOf(from));
                ++*pCount;
            }
        }
    }
    const TSquareSet all = a.All();
    if (!all)
        return NO_CHECK;
    return all & (all - 1) ? DOUBLE_CHECK : static_cast<std::int8_t>(LowestSquare(all));
}

} // namespace

bool TChessboard::IsAttackedByWhite(std::int8_t file, std::int8_t row) const
{
    return IsAttackedBy<EColour::White>(*this, MakeSquare(file, row));
}

bool TChessboard::IsAttackedByBlack(std::int8_t file, std::int8_t row) const
{
    return IsAttackedBy<EColour::Black>(*this, MakeSquare(file, row));
}

std::int8_t TChessboard::GetWhiteKingChecker(std::int8_t file, std::int8_t row, std::int8_t* pList,
                                             std::uint8_t* pCount) const
{
    return GetKingChecker<EColour::Black>(*this, MakeSquare(file, row), pList, pCount);
}

std::int8_t TChessboard::GetBlackKingChecker(std::int8_t file, std::int8_t row, std::int8_t* pList,
                                             std::uint8_t* pCount) const
{
    return GetKingChecker<EColour::White>(*this, MakeSquare(file, row), pList, pCount);
}

bool TChessboard::IsPinnedToWhiteKing(std::int8_t file, std::int8_t row) const
{
    return IsPinnedTo<EColour::White>(*this, TSets::Occupied(m_board), MakeSquare(file, row));
}

bool TChessboard::IsPinnedToBlackKing(std::int8_t file, std::int8_t row) const
{
    return IsPinnedTo<EColour::Black>(*this, TSets::Occupied(m_board), MakeSquare(file, row));
}

TSquareSet TChessboard::GetWhiteMoversToSquare(TSquare square) const
{
    return MoversToSquare<EColour::White>(*this, TSets::Occupied(m_board), square);
}

TSquareSet TChessboard::GetBlackMoversToSquare(TSquare square) const
{
    return MoversToSquare<EColour::Black>(*this, TSets::Occupied(m_board), square);
}

} // namespace corvina
