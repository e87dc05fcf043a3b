#ifndef CORVINA_HEURISTICS_SEASNAKEWALK_H
#define CORVINA_HEURISTICS_SEASNAKEWALK_H

#include "heuristics/attacksets.h"
#include "heuristics/pendulum.h"
#include "heuristics/seasnakerecord.h"

#include <array>

namespace corvina
{

/// More king's moves than any way has.
constexpr int UNREACHED = 64;

/// Where the White king can walk while the pendulum swings.
class TRealm
{
public:
    TRealm(const TChessboard& board, const TPendulum& pendulum)
        : m_board(board), m_swung(Swung(board, pendulum)), m_king(board.WhiteKing())
    {
        m_free = ~(Men(board) | Men(m_swung)) & ~(Attacks(m_board) | Attacks(m_swung));
        m_free |= Bit(m_king);
    }

    TSquareSet Free() const { return m_free; }

    /// Is the square safe for the king, the pendulum's figure standing on `figure`?
    bool IsSafeWith(TSquare square, TSquare figure, const TPendulum& pendulum) const
    {
        const TChessboard& board = figure == pendulum.m_here ? m_board : m_swung;
        return !((Men(board) | Attacks(board)) & Bit(square)) || square == m_king;
    }

    bool IsGuardedByBlack(TSquare square, TSquare figure, const TPendulum& pendulum) const
    {
        const TChessboard& board = figure == pendulum.m_here ? m_board : m_swung;
        return IsAttackedBy<EColour::Black>(board, square);
    }

    /// King's moves from a square to each of the others, over the free squares.
    std::array<std::uint8_t, 64> StepsFrom(TSquare from) const
    {
        std::array<std::uint8_t, 64> anSteps;
        anSteps.fill(UNREACHED);
        anSteps[from] = 0;
        TSquareSet reached = Bit(from), front = reached;
        for (std::uint8_t nSteps = 1; front; ++nSteps) {
            TSquareSet next = 0;
            while (front)
                next |= KingZone(PopLowestSquare(front));
            front = next & m_free & ~reached;
            reached |= front;
            for (TSquareSet rest = front; rest;)
                anSteps[PopLowestSquare(rest)] = nSteps;
        }
        return anSteps;
    }

private:
    /// White's figures may step out of the king's way, his pawns and Black's men don't.
    static TSquareSet Men(const TChessboard& board)
    {
        return TSide<EColour::Black>::Figures(board.m_board) |
               TSets::Equal(board.m_board, WHITE_PAWN);
    }

    static TSquareSet Attacks(const TChessboard& board)
    {
        return AttackedSquares<EColour::Black>(board, TSets::Occupied(board.m_board) &
                                                          ~Bit(board.WhiteKing()));
    }

    const TChessboard& m_board;
    const TChessboard m_swung;
    const TSquare m_king;
    TSquareSet m_free;
};

/// A way to take the pendulum's square away: the king's square, and the one that he attacks.
struct TApproach
{
    TSquare m_square = NO_SQUARE;
    TSquare m_attacked = NO_SQUARE;
    TSquare m_other = NO_SQUARE;
    int m_nSteps = UNREACHED;
};

/// The nearest one for a White king on this square; without a square when there is none.
TApproach FindApproach(const TRealm& realm, const TPendulum& pendulum, TSquare king);

/// The way from the approach square of the record to the triangle on which the king loses a tempo,
/// filled into it. A turn-back square that is given must be one of the triangle. False: there is no
/// such way, or the record has no room for it.
bool FindWalk(const TRealm& realm, TSeaSnake& snake);

} // namespace corvina

#endif
