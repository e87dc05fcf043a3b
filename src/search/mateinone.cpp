#include "chess/lineattacks.h"
#include "chess/sides.h"
#include "search/shortmate.h"

namespace corvina
{
namespace
{

using W = TSide<EColour::White>;
using B = TSide<EColour::Black>;

/// A search for a mating move of White, who is not in check. It goes through the moves that give
/// check and drops most of them without making them: as long as a square next to the Black king
/// stays free for it, a check is no mate.
class TMateInOne
{
public:
    explicit TMateInOne(TChessboard& board)
        : m_board(board), m_occupied(TSets::Occupied(board.m_board)),
          m_white(W::Figures(board.m_board)), m_pawns(TSets::Equal(board.m_board, W::PAWN)),
          m_knights(TSets::Equal(board.m_board, W::KNIGHT)),
          m_diagonal(TSets::Having(board.m_board, W::DIAGONAL_MASK)),
          m_line(TSets::Having(board.m_board, W::LINE_MASK)), m_king(board.BlackKing()),
          m_withoutKing(m_occupied & ~Bit(m_king))
    {
        FindSliders();
        FindFlights();
        m_bishopChecks = BishopAttacks(m_king, m_occupied);
        m_rookChecks = RookAttacks(m_king, m_occupied);
        FindDiscoverers();
    }

    bool Search()
    {
        return KnightMates() || LineMates() || PawnMates() || DiscoveredMates() || CastlingMates();
    }

private:
    /// What White's line figures attack. Black isn't in check, so that no line ends at his king:
    /// the sets hold with the king on the board and without.
    void FindSliders()
    {
        TSquareSet sliders = m_diagonal | m_line;
        while (sliders) {
            const TSquare from = PopLowestSquare(sliders);
            const TFigure kind = m_board.m_board[from] & KIND_MASK;
            TSquareSet attacks = 0;
            if (kind & KIND_BISHOP)
                attacks |= BishopAttacks(from, m_occupied);
            if (kind & KIND_ROOK)
                attacks |= RookAttacks(from, m_occupied);
            m_aSliders[m_nSliders++] = {attacks, from, kind};
        }
    }

    /// Squares to which the king can go as the board stands, were it Black's move.
    void FindFlights()
    {
        TSquareSet guarded = KingZone(m_board.WhiteKing());
        constexpr TSquareSet A_FILE = 0x0101010101010101;
        guarded |= (m_pawns & ~A_FILE) << 7 | (m_pawns & ~(A_FILE << 7)) << 9;
        TSquareSet knights = m_knights;
        while (knights)
            guarded |= KnightJumps(PopLowestSquare(knights));
        for (int i = 0; i < m_nSliders; ++i)
            guarded |= m_aSliders[i].m_attacks;
        m_flights = KingZone(m_king) & ~B::Figures(m_board.m_board) & ~guarded;
    }

    /// White's men that stand alone between the Black king and a White slider.
    void FindDiscoverers()
    {
        m_discoverers = 0;
        TSquareSet snipers =
            (m_diagonal & g_geometry.m_aBishop[m_king]) | (m_line & g_geometry.m_aRook[m_king]);
        while (snipers) {
            const TSquareSet between = Between(m_king, PopLowestSquare(snipers)) & m_occupied;
            if (between && !(between & (between - 1)))
                m_discoverers |= between & m_white;
        }
    }

    /// Once the man on `from` has left, a White slider behind it guards the square.
    bool OpensGuardOf(int square, int from) const
    {
        const EDirection direction = DirectionTo(square, from);
        if (direction == DIR_NONE || (Between(square, from) & m_withoutKing))
            return false;
        const TSquareSet sliders =
            (IsDiagonal(direction) ? m_diagonal : m_line) & Ray(direction, from);
        return AnyReaches(sliders, from, m_withoutKing);
    }

    /// A flight that stays open after a move: not among the squares that the moved man may attack
    /// from its new place, not that place itself, and not guarded through the square that it left.
    bool LeavesFlight(int from, int to, TSquareSet attacked) const
    {
        TSquareSet open = m_flights & ~attacked & ~Bit(to);
        while (open) {
            if (!OpensGuardOf(PopLowestSquare(open), from))
                return true;
        }
        return false;
    }

    bool Mates(int from, int to, TFigure promotion = 0)
    {
        TMove move{static_cast<std::uint8_t>(from), static_cast<std::uint8_t>(to), promotion, 0};
        TChessboard child = m_board;
        child.m_pParent = &m_board;
        return child.MakeWhiteMoveLight(&move) && child.m_blackChecker != NO_CHECK &&
               !child.CanBlackEscapeCheck();
    }

    /// The squares that a man of the kind attacks from a square of the board as it is, the Black
    /// king and the vacated square not being in the way.
    TSquareSet AttacksFrom(TFigure kind, int to, int from) const
    {
        const TSquareSet occupied = m_withoutKing & ~Bit(from);
        switch (kind) {
        case KIND_QUEEN:
            return BishopAttacks(to, occupied) | RookAttacks(to, occupied);
        case KIND_ROOK:
            return RookAttacks(to, occupied);
        case KIND_BISHOP:
            return BishopAttacks(to, occupied);
        case KIND_KNIGHT:
            return KnightJumps(to);
        default:
            return PawnAttacks(EColour::White, to);
        }
    }

    /// The squares that a man of the kind would attack from a square of the empty board: those of
    /// AttacksFrom and more, for a table look-up.
    static TSquareSet AttacksOnEmptyBoard(TFigure kind, int to)
    {
        TSquareSet attacks = 0;
        if (kind & KIND_BISHOP)
            attacks |= g_geometry.m_aBishop[to];
        if (kind & KIND_ROOK)
            attacks |= g_geometry.m_aRook[to];
        if (kind == KIND_KNIGHT)
            attacks = KnightJumps(to);
        if (kind == KIND_PAWN)
            attacks = PawnAttacks(EColour::White, to);
        return attacks;
    }

    bool MatesUnlessFlight(int from, int to, TFigure kind, TFigure promotion = 0)
    {
        if (m_flights && (LeavesFlight(from, to, AttacksOnEmptyBoard(kind, to)) ||
                          LeavesFlight(from, to, AttacksFrom(kind, to, from))))
            return false;
        return Mates(from, to, promotion);
    }

    bool AnyMates(int from, TSquareSet targets, TFigure kind)
    {
        while (targets) {
            if (MatesUnlessFlight(from, PopLowestSquare(targets), kind))
                return true;
        }
        return false;
    }

    bool KnightMates()
    {
        const TSquareSet checks = KnightJumps(m_king) & ~m_white;
        TSquareSet knights = m_knights;
        while (knights) {
            const TSquare from = PopLowestSquare(knights);
            if (AnyMates(from, KnightJumps(from) & checks, KIND_KNIGHT))
                return true;
        }
        return false;
    }

    bool LineMates()
    {
        for (int i = 0; i < m_nSliders; ++i) {
            const TSlider& slider = m_aSliders[i];
            TSquareSet checks = 0;
            if (slider.m_kind & KIND_BISHOP)
                checks |= m_bishopChecks;
            if (slider.m_kind & KIND_ROOK)
                checks |= m_rookChecks;
            if (AnyMates(slider.m_from, slider.m_attacks & checks & ~m_white, slider.m_kind))
                return true;
        }
        return false;
    }

    /// Destinations of a pawn, captures en passant left out.
    TSquareSet PawnTargets(int from) const
    {
        TSquareSet targets = PawnAttacks(EColour::White, from) & m_occupied & ~m_white;
        const int ahead = from + W::FORWARD;
        if (!(m_occupied & Bit(ahead))) {
            targets |= Bit(ahead);
            if (RowOf(from) == W::HOME_ROW && !(m_occupied & Bit(ahead + W::FORWARD)))
                targets |= Bit(ahead + W::FORWARD);
        }
        return targets;
    }

    bool PromotionMates(int from, TSquareSet targets)
    {
        while (targets) {
            const TSquare to = PopLowestSquare(targets);
            for (const TFigure kind : g_aPromotionKinds) {
                if (MatesUnlessFlight(from, to, kind, kind))
                    return true;
            }
        }
        return false;
    }

    /// A capture en passant changes three squares: it is always made.
    bool EnPassantMates(int from)
    {
        const TSquare victim = m_board.DoubleSteppedPawn();
        return victim != NO_SQUARE && RowOf(from) == RowOf(victim) && Abs(from - victim) == 1 &&
               Mates(from, victim + W::FORWARD);
    }

    bool PawnMates()
    {
        const TSquareSet checks = PawnAttacks(EColour::Black, m_king);
        TSquareSet pawns = m_pawns;
        while (pawns) {
            const TSquare from = PopLowestSquare(pawns);
            if (RowOf(from) == W::LAST_ROW - 1) {
                if (PromotionMates(from, PawnTargets(from)))
                    return true;
                continue;
            }
            if (AnyMates(from, PawnTargets(from) & checks, KIND_PAWN) ||
                (RowOf(from) == W::EN_PASSANT_ROW && EnPassantMates(from)))
                return true;
        }
        return false;
    }

    /// The moves of a man that opens a line to the king, other than the direct checks: those come
    /// up above.
    bool DiscoveredMates()
    {
        TSquareSet discoverers = m_discoverers;
        while (discoverers) {
            const TSquare from = PopLowestSquare(discoverers);
            if (DiscovererMates(from, m_board.m_board[from] & KIND_MASK))
                return true;
        }
        return false;
    }

    bool DiscovererMates(int from, TFigure kind)
    {
        switch (kind) {
        case KIND_KING:
            return KingMates(from);
        case KIND_PAWN:
            return RowOf(from) != W::LAST_ROW - 1 && AnyMates(from, PawnTargets(from), kind);
        case KIND_KNIGHT:
            return AnyMates(from, KnightJumps(from) & ~m_white, kind);
        default:
            break;
        }
        TSquareSet reach = 0;
        if (kind & KIND_BISHOP)
            reach |= BishopAttacks(from, m_occupied);
        if (kind & KIND_ROOK)
            reach |= RookAttacks(from, m_occupied);
        return AnyMates(from, reach & ~m_white, kind);
    }

    bool KingMates(int from)
    {
        TSquareSet targets = KingZone(from) & ~m_white & ~KingZone(m_king);
        while (targets) {
            const TSquare to = PopLowestSquare(targets);
            if (!LeavesFlight(from, to, KingZone(to)) && Mates(from, to))
                return true;
        }
        return false;
    }

    bool CastlingMates()
    {
        using K = TCastling<EColour::White>;
        if (m_board.WhiteKing() != K::KING)
            return false;
        TMove aMoves[8 + 2 + MOVE_LIST_SLACK];
        const int nMoves = m_board.GenerateWhiteKingMoves(FileOf(K::KING), RowOf(K::KING), aMoves);
        for (int i = 0; i < nMoves; ++i) {
            if (Abs(aMoves[i].m_from - aMoves[i].m_to) == 2 &&
                Mates(aMoves[i].m_from, aMoves[i].m_to))
                return true;
        }
        return false;
    }

    struct TSlider
    {
        TSquareSet m_attacks;
        TSquare m_from;
        TFigure m_kind;
    };

    TChessboard& m_board;
    TSquareSet m_occupied, m_white, m_pawns, m_knights, m_diagonal, m_line;
    int m_king;
    TSquareSet m_withoutKing; ///< occupied squares, the Black king's left out
    TSquareSet m_flights;     ///< squares to which the Black king could go
    TSlider m_aSliders[64];
    int m_nSliders = 0;
    TSquareSet m_discoverers;
    TSquareSet m_bishopChecks, m_rookChecks; ///< squares from which a bishop, a rook gives check
};

bool EvasionMates(TChessboard& board)
{
    TMoveList moves;
    const int nMoves = board.GenerateWhiteEvasions(moves.data());
    for (int i = 0; i < nMoves; ++i) {
        TChessboard child = board;
        child.m_pParent = &board;
        if (child.MakeWhiteMoveLight(&moves[i]) && child.m_blackChecker != NO_CHECK &&
            !child.CanBlackEscapeCheck())
            return true;
    }
    return false;
}

} // namespace

bool IsMateInOne(TChessboard& board)
{
    return board.m_whiteChecker != NO_CHECK ? EvasionMates(board) : TMateInOne(board).Search();
}

} // namespace corvina
