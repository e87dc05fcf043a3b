#ifndef CORVINA_TESTS_SUPPORT_SLOWCHESS_H
#define CORVINA_TESTS_SUPPORT_SLOWCHESS_H

#include "chess/figure.h"
#include "chess/move.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace corvina
{

/// The rules of chess by plain loops over 64 squares, without tables and without anything of the
/// program but its figure bytes: what the program's own operations are compared with.
struct TSlowPosition
{
    /// The start of a line: every castling that the board allows is possible, en passant is not.
    TSlowPosition(const std::uint8_t* pBoard, EColour toMove);

    TFigure KindOf(int square) const { return m_aBoard[square] & KIND_MASK; }
    bool HasColour(int square, EColour colour) const
    {
        return (m_aBoard[square] & ColourBit(colour)) != 0;
    }
    /// Of a square that isn't empty.
    EColour ColourOf(int square) const
    {
        return HasColour(square, EColour::White) ? EColour::White : EColour::Black;
    }

    /// The figure on `from` bears on `to`, whatever stands there.
    bool Attacks(int from, int to) const;

    /// Squares of the figures of a side that bear on a square, upward.
    std::vector<int> Attackers(int square, EColour by) const;

    int King(EColour colour) const;
    bool InCheck(EColour colour) const;

    /// Without the figure on this square its king would stand in more checks.
    bool IsPinned(int square) const;

    /// King and rook stand where they stood at the start and haven't moved.
    bool MayCastle(EColour colour, bool bShort) const;

    /// A move by the rules of the figure, whoever is to move and whether or not the own king is
    /// left in check.
    bool IsPseudoLegal(int from, int to) const;

    std::vector<TMove> LegalMoves() const;

    /// The side to move is mated.
    bool IsMate() const { return InCheck(m_toMove) && LegalMoves().empty(); }

    /// The position after a pseudo-legal move, or a pass.
    TSlowPosition After(const TMove& move) const
    {
        TSlowPosition next = *this;
        next.Play(move);
        return next;
    }

    /// Makes a pseudo-legal move, or passes.
    void Play(const TMove& move);

    std::array<std::uint8_t, 64> m_aBoard;
    EColour m_toMove;
    std::array<bool, 64> m_abTouched = {}; ///< something has moved from here or to here
    int m_nPassedSquare = -1;              ///< the square that a pawn has just stepped over

private:
    bool IsPawnMove(int from, int to) const;
    bool IsCastling(int from, int to) const;
};

/// From, to and the letter of the promotion: "a7a8q".
std::string MoveText(const TMove& move);

/// The texts of moves in alphabetical order.
std::vector<std::string> SortedTexts(const std::vector<TMove>& vecMoves);

} // namespace corvina

#endif
