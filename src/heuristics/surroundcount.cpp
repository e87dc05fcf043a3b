#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"

#include <algorithm>
#include <bit>

namespace corvina
{
namespace
{

using W = TSide<EColour::White>;
using B = TSide<EColour::Black>;

constexpr TSquareSet A_FILE = 0x0101010101010101;
constexpr TSquareSet FIRST_ROW = 0xFF;

/// The free squares next to the Black king, and what White's queens and rooks can do about them.
class TSurround
{
public:
    explicit TSurround(const TChessboard& board)
        : m_board(board), m_king(board.BlackKing()), m_zone(KingZone(m_king)),
          m_occupied(TSets::Occupied(board.m_board)), m_free(FreeKingSquareSet(board))
    {
    }

    int Free() const { return std::popcount(m_free); }

    /// Three of four free squares lie on one file or row, and a queen or rook that goes to that
    /// line takes the fourth as well.
    bool IsTakenByLine() const
    {
        TSquareSet lines = m_zone | Bit(m_king);
        while (lines) {
            const TSquare square = PopLowestSquare(lines);
            for (const TSquareSet line : {A_FILE << FileOf(square), FIRST_ROW << 8 * RowOf(square)})
            {
                if (std::popcount(m_free & line) == 3 && CanTake(line, m_free & ~line))
                    return true;
            }
        }
        return false;
    }

    /// Free squares once the loose figures next to the king are off the board: those that no other
    /// Black figure guards and White attacks at least twice.
    TSquareSet FreeWithoutLooseFigures() const
    {
        const TSquareSet loose = LooseNeighbours();
        if (!loose)
            return m_free;
        const TSquareSet open = m_zone & ~(B::Figures(m_board.m_board) & ~loose);
        return open & ~AttackedSquares<EColour::White>(m_board, m_occupied & ~Bit(m_king) & ~loose);
    }

    /// One of White's figures can go, unattacked, to where it attacks two or more of the squares.
    bool HasLineFor(TSquareSet free, TSquareSet figures) const
    {
        while (figures) {
            const TSquare from = PopLowestSquare(figures);
            TSquareSet targets = Targets(from);
            while (targets) {
                const TSquare to = PopLowestSquare(targets);
                if (std::popcount(free & AttacksAfter(from, to)) >= 2 &&
                    !IsAttackedBy<EColour::Black>(m_board, to))
                    return true;
            }
        }
        return false;
    }

private:
    TSquareSet LooseNeighbours() const
    {
        TSquareSet loose = 0;
        TSquareSet neighbours = m_zone & B::Figures(m_board.m_board);
        const TSquareSet withoutKing = m_occupied & ~Bit(m_king);
        while (neighbours) {
            const TSquare square = PopLowestSquare(neighbours);
            const TSquareSet attackers =
                AttackersOf<EColour::White>(m_board, withoutKing, square).All();
            if (std::popcount(attackers) >= 2 && !IsGuarded(square))
                loose |= Bit(square);
        }
        return loose;
    }

    /// By a Black figure other than the king, who guards every neighbour.
    bool IsGuarded(TSquare square) const
    {
        TAttackers guards = AttackersOf<EColour::Black>(m_board, m_occupied, square);
        guards.m_king = 0;
        return guards.All() != 0;
    }

    TSquareSet Targets(TSquare from) const
    {
        const TFigure kind = m_board.m_board[from] & KIND_MASK;
        return AttacksOf<EColour::White>(kind, from, m_occupied) & ~W::Figures(m_board.m_board);
    }

    TSquareSet AttacksAfter(TSquare from, TSquare to) const
    {
        const TFigure kind = m_board.m_board[from] & KIND_MASK;
        return AttacksOf<EColour::White>(kind, to, m_occupied & ~Bit(from) & ~Bit(m_king));
    }

    bool CanTake(TSquareSet line, TSquareSet fourth) const
    {
        TSquareSet majors = TSets::Having(m_board.m_board, W::LINE_MASK);
        while (majors) {
            const TSquare from = PopLowestSquare(majors);
            TSquareSet targets = Targets(from) & line;
            while (targets) {
                if (AttacksAfter(from, PopLowestSquare(targets)) & fourth)
                    return true;
            }
        }
        return false;
    }

    const TChessboard& m_board;
    const TSquare m_king;
    const TSquareSet m_zone;
    const TSquareSet m_occupied;
    const TSquareSet m_free;
};

/// By how much White's next move may lower the count, as the rule sees it.
int LineBonus(const TChessboard& board, const TSurround& surround, TSquareSet free,
              ESurroundRule rule)
{
    switch (rule) {
    case ESurroundRule::Plain:
        return surround.HasLineFor(free, TSets::Equal(board.m_board, WHITE_ROOK));
    case ESurroundRule::HeavyFigures:
        return surround.HasLineFor(free, TSets::Having(board.m_board, W::LINE_MASK));
    case ESurroundRule::Queens:
        return 2 * surround.HasLineFor(free, TSets::Equal(board.m_board, WHITE_QUEEN));
    default:
        return 0;
    }
}

} // namespace

int CountSurroundFree(const TChessboard& board, int nLimit, ESurroundRule rule)
{
    constexpr int LINE_LIMIT = 3;
    const TSurround surround(board);
    const int nFree = surround.Free();
    if (nFree <= nLimit)
        return nFree;
    if (nLimit == LINE_LIMIT && nFree == LINE_LIMIT + 1 && W::HasLineSlider(board) &&
        surround.IsTakenByLine())
        return LINE_LIMIT;
    const TSquareSet free = surround.FreeWithoutLooseFigures();
    const int nRecount = std::popcount(free);
    return std::max(0, nRecount - LineBonus(board, surround, free, rule));
}

} // namespace corvina
