#include "support/slowchess.h"

#include <algorithm>
#include <cstdlib>

namespace corvina
{

namespace
{

int SignOf(int n)
{
    return n > 0 ? 1 : n < 0 ? -1 : 0;
}

/// The step of a pawn.
int Ahead(EColour colour)
{
    return colour == EColour::White ? 8 : -8;
}

/// The square e1 or e8.
int KingHome(EColour colour)
{
    return colour == EColour::White ? 4 : 60;
}

int Corner(EColour colour, bool bShort)
{
    return KingHome(colour) + (bShort ? 3 : -4);
}

} // namespace

TSlowPosition::TSlowPosition(const std::uint8_t* pBoard, EColour toMove) : m_toMove(toMove)
{
    std::copy_n(pBoard, 64, m_aBoard.begin());
}

bool TSlowPosition::Attacks(int from, int to) const
{
    const int files = to % 8 - from % 8;
    const int rows = to / 8 - from / 8;
    const TFigure kind = KindOf(from);
    if (from == to)
        return false;
    if (kind == KIND_KING)
        return std::abs(files) <= 1 && std::abs(rows) <= 1;
    if (kind == KIND_KNIGHT)
        return std::abs(files * rows) == 2;
    if (kind == KIND_PAWN)
        return std::abs(files) == 1 && rows * 8 == Ahead(ColourOf(from));
    const bool bLine = (files == 0 || rows == 0) && kind != KIND_BISHOP;
    const bool bDiagonal = std::abs(files) == std::abs(rows) && kind != KIND_ROOK;
    if (!bLine && !bDiagonal)
        return false;
    const int step = SignOf(rows) * 8 + SignOf(files);
    int square = from + step;
    while (square != to && m_aBoard[square] == NO_FIGURE)
        square += step;
    return square == to;
}

std::vector<int> TSlowPosition::Attackers(int square, EColour by) const
{
    std::vector<int> vecSquares;
    for (int from = 0; from < 64; ++from) {
        if (HasColour(from, by) && Attacks(from, square))
            vecSquares.push_back(from);
    }
    return vecSquares;
}

int TSlowPosition::King(EColour colour) const
{
    const TFigure king = ColourBit(colour) | KIND_KING;
    return static_cast<int>(std::find(m_aBoard.begin(), m_aBoard.end(), king) - m_aBoard.begin());
}

bool TSlowPosition::InCheck(EColour colour) const
{
    return !Attackers(King(colour), Opponent(colour)).empty();
}

bool TSlowPosition::IsPinned(int square) const
{
    const EColour colour = ColourOf(square);
    TSlowPosition without = *this;
    without.m_aBoard[square] = NO_FIGURE;
    return without.Attackers(King(colour), Opponent(colour)).size() >
           Attackers(King(colour), Opponent(colour)).size();
}

bool TSlowPosition::MayCastle(EColour colour, bool bShort) const
{
    const int home = KingHome(colour);
    const int corner = Corner(colour, bShort);
    return m_aBoard[home] == (ColourBit(colour) | KIND_KING) && !m_abTouched[home] &&
           m_aBoard[corner] == (ColourBit(colour) | KIND_ROOK) && !m_abTouched[corner];
}

bool TSlowPosition::IsPawnMove(int from, int to) const
{
    const int step = Ahead(ColourOf(from));
    const int homeRow = step > 0 ? 1 : 6;
    if (Attacks(from, to))
        return m_aBoard[to] != NO_FIGURE || to == m_nPassedSquare;
    if (m_aBoard[from + step] != NO_FIGURE || m_aBoard[to] != NO_FIGURE)
        return false;
    return to == from + step || (to == from + 2 * step && from / 8 == homeRow);
}

bool TSlowPosition::IsCastling(int from, int to) const
{
    const EColour colour = ColourOf(from);
    const bool bShort = to > from;
    const int step = bShort ? 1 : -1;
    if (from != KingHome(colour) || to != from + 2 * step || !MayCastle(colour, bShort))
        return false;
    for (int square = from + step; square != Corner(colour, bShort); square += step) {
        if (m_aBoard[square] != NO_FIGURE)
            return false;
    }
    const EColour enemy = Opponent(colour);
    return Attackers(from, enemy).empty() && Attackers(from + step, enemy).empty() &&
           Attackers(to, enemy).empty();
}

bool TSlowPosition::IsPseudoLegal(int from, int to) const
{
    if (m_aBoard[from] == NO_FIGURE || HasColour(to, ColourOf(from)))
        return false;
    if (KindOf(from) == KIND_PAWN)
        return IsPawnMove(from, to);
    return Attacks(from, to) || (KindOf(from) == KIND_KING && IsCastling(from, to));
}

std::vector<TMove> TSlowPosition::LegalMoves() const
{
    std::vector<TMove> vecMoves;
    for (int fromTo = 0; fromTo < 64 * 64; ++fromTo) {
        TMove move{};
        move.m_from = static_cast<std::uint8_t>(fromTo / 64);
        move.m_to = static_cast<std::uint8_t>(fromTo % 64);
        if (!HasColour(move.m_from, m_toMove) || !IsPseudoLegal(move.m_from, move.m_to))
            continue;
        if (After(move).InCheck(m_toMove))
            continue;
        const bool bLastRow = move.m_to / 8 == 0 || move.m_to / 8 == 7;
        if (KindOf(move.m_from) != KIND_PAWN || !bLastRow) {
            vecMoves.push_back(move);
            continue;
        }
        for (const TFigure kind : {KIND_QUEEN, KIND_ROOK, KIND_BISHOP, KIND_KNIGHT}) {
            move.m_promotion = kind;
            vecMoves.push_back(move);
        }
    }
    return vecMoves;
}

void TSlowPosition::Play(const TMove& move)
{
    const int from = move.m_from;
    const int to = move.m_to;
    const int passed = m_nPassedSquare;
    const EColour mover = m_toMove;
    m_toMove = Opponent(m_toMove);
    m_nPassedSquare = -1;
    if (from == to)
        return;

    const TFigure kind = KindOf(from);
    if (kind == KIND_PAWN && to == passed)
        m_aBoard[to - Ahead(mover)] = NO_FIGURE;
    if (kind == KIND_PAWN && std::abs(to - from) == 16)
        m_nPassedSquare = (from + to) / 2;
    if (kind == KIND_KING && std::abs(to - from) == 2) {
        m_aBoard[(from + to) / 2] = ColourBit(mover) | KIND_ROOK;
        m_aBoard[Corner(mover, to > from)] = NO_FIGURE;
    }
    const TFigure promotion = move.m_promotion & TMove::PROMOTION_MASK;
    m_aBoard[to] = promotion != 0 ? ColourBit(mover) | promotion : m_aBoard[from];
    m_aBoard[from] = NO_FIGURE;
    m_abTouched[from] = m_abTouched[to] = true;
}

std::string MoveText(const TMove& move)
{
    std::string strText;
    for (const int square : {move.m_from, move.m_to})
        strText += {static_cast<char>('a' + square % 8), static_cast<char>('1' + square / 8)};
    const int kind = move.m_promotion & TMove::PROMOTION_MASK;
    return kind == 0 ? strText : strText + "????b???r???q???n???????????????"[kind];
}

std::vector<std::string> SortedTexts(const std::vector<TMove>& vecMoves)
{
    std::vector<std::string> vecTexts;
    for (const TMove& move : vecMoves)
        vecTexts.push_back(MoveText(move));
    std::sort(vecTexts.begin(), vecTexts.end());
    return vecTexts;
}

} // namespace corvina
