#include "heuristics/seasnake.h"

#include "chess/moveset.h"
#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtests.h"
#include "heuristics/lastmoves.h"
#include "heuristics/materialblocks.h"
#include "search/solverequest.h"

#include <algorithm>

namespace corvina
{
namespace
{

constexpr int LAST_ROW = TSide<EColour::White>::LAST_ROW;

TSquareSet SetOf(const std::uint8_t* pSquares, int nSquares)
{
    TSquareSet set = 0;
    for (int i = 0; i < nSquares; ++i)
        set |= Bit(pSquares[i]);
    return set;
}

TSquareSet ZoneOf(TSquareSet squares)
{
    TSquareSet zone = squares;
    while (squares)
        zone |= KingZone(PopLowestSquare(squares));
    return zone;
}

bool IsPawnMove(const TChessboard& board)
{
    return !board.m_LastMove.IsNull() && board.m_pParent &&
           board.m_pParent->m_board[board.m_LastMove.m_from] == BLACK_PAWN;
}

/// White's moves at a node under the heuristic.
class TSeaSnakeLister
{
public:
    TSeaSnakeLister(TChessboard& board, TMove* pMoves)
        : m_board(board), m_context(ContextOf(board)), m_pMoves(pMoves)
    {
    }

    TNarrowedList List()
    {
        if (IsNearTheEnd())
            return Drop();
        NoteFreedPawn();
        // Pawns may fall on the way: the wrong bishop's corner is looked at anew.
        m_board.m_nPositionFlags &= static_cast<std::uint16_t>(~TChessboard::POSITION_WRONGBISHOP);
        if (!IsPendulumInPlace(m_board, m_context))
            return ListPromotions();
        if (m_board.m_whiteChecker != NO_CHECK || m_context.m_nWalkSquares == 0)
            return {};
        if (IsBlackStale())
            return Drop();
        if (HasKeyFigureLeft())
            return ListKeyMoves();
        if (m_board.WhiteKing() == m_context.m_approachSquare)
            return {}; // the plan begins, with whatever it takes
        AddKingMoves();
        AddCaptures();
        AddGuardMoves();
        NarrowSecondMove();
        return Result();
    }

private:
    TNarrowedList Drop()
    {
        DropForSubtree(m_board, SH_SEASNAKE);
        return {};
    }

    TNarrowedList Result() const { return {m_nMoves, SH_SEASNAKE, false}; }

    void Add(TMove move)
    {
        if (IsPlayable(m_board, move))
            m_pMoves[m_nMoves++] = move;
    }

    /// The plain search takes over where the plan must have begun.
    bool IsNearTheEnd() const
    {
        constexpr int PLAIN_PLIES = 5;
        return m_board.m_nMoves <=
               (m_context.m_nSeaSnakeOnlyAfter + m_context.m_nSeaSnakeStartMoves) * 2 + PLAIN_PLIES;
    }

    /// A Black pawn has gone from in front of a White one by a capture: the squares around that are
    /// open to the king.
    void NoteFreedPawn()
    {
        const TMove& last = m_board.m_LastMove;
        if (!(m_board.m_nPositionFlags & TChessboard::POSITION_PAWNWALK) || !IsPawnMove(m_board) ||
            FileOf(last.m_from) == FileOf(last.m_to))
            return;
        const auto pawn = static_cast<TSquare>(last.m_from - TSide<EColour::White>::FORWARD);
        if (m_board.m_board[pawn] == WHITE_PAWN)
            AddDynamicSquare(pawn);
    }

    void AddDynamicSquare(TSquare square)
    {
        auto& aSquares = m_context.m_dynamicTurnBackSquares;
        std::uint8_t& nSquares = m_context.m_nDynamicTurnBackSquares;
        const auto end = aSquares.begin() + nSquares;
        if (nSquares < TThreadContext::MAX_TURN_BACK_SQUARES &&
            std::find(aSquares.begin(), end, square) == end)
            aSquares[nSquares++] = square;
    }

    /// The pendulum has left its squares or is lost: a pawn that it held up promotes there. The
    /// record keeps the heuristic, so that the doubt is stored under the set that has narrowed the
    /// node; White's next node takes it off.
    TNarrowedList ListPromotions()
    {
        if (m_board.m_whiteChecker != NO_CHECK)
            return Drop();
        for (const std::uint8_t square : {m_context.m_pendulumSquare1, m_context.m_pendulumSquare2})
            AddPromotionOn(square);
        if (m_nMoves == 0)
            return Drop();
        if (m_board.m_LastMove.PromotionKind() == 0) {
            AddOtherPawnMoves();
            if (IsMateWithin(m_board, PROMOTION_MATE) == EMateTest::Mate)
                return {0, 0, true};
        }
        return Result();
    }

    void AddPromotionOn(std::uint8_t square)
    {
        if (square == NO_KEY_SQUARE || RowOf(square) != LAST_ROW ||
            m_board.m_board[square] != NO_FIGURE ||
            m_board.m_board[square - TSide<EColour::White>::FORWARD] != WHITE_PAWN ||
            IsAttackedBy<EColour::Black>(m_board, square))
            return;
        Add({static_cast<TSquare>(square - TSide<EColour::White>::FORWARD), square, KIND_QUEEN, 0});
    }

    void AddOtherPawnMoves()
    {
        TMoveList moves;
        const int nListed = m_nMoves;
        for (int i = 0; i < nListed; ++i) {
            const int nMoves = m_board.GenerateWhiteFigureMoves(m_pMoves[i].m_from, moves.data());
            for (int k = 0; k < nMoves; ++k) {
                if (!IsListed(moves[k]))
                    Add(moves[k]);
            }
        }
    }

    bool IsListed(const TMove& move) const
    {
        return std::any_of(m_pMoves, m_pMoves + m_nMoves,
                           [&](const TMove& other) { return IsSameMove(other, move); });
    }

    /// The Black king has moved, and Black has no further move: White has to let go.
    bool IsBlackStale() const
    {
        if (!m_context.m_bCheckKingMove || m_board.m_LastMove.IsNull() ||
            m_board.m_LastMove.m_to != m_board.BlackKing())
            return false;
        TChessboard passed = m_board;
        passed.m_pParent = &m_board;
        --passed.m_nMoves;
        TMoveList moves;
        const int nMoves = passed.GenerateBlackMoves(moves.data());
        return std::none_of(moves.data(), moves.data() + nMoves, [&](TMove& move) {
            TChessboard& child = m_context.Slot(m_board.m_nMoves);
            child = passed;
            child.m_pParent = &passed;
            return child.MakeBlackUserMove(&move);
        });
    }

    /// White's last move was that of a figure that stood in the way of the walk.
    bool HasKeyFigureLeft() const
    {
        if (m_board.m_LastMove.PromotionKind() || !m_board.m_pParent ||
            m_board.m_pParent->m_LastMove.IsNull())
            return false;
        return SetOf(m_context.m_seaSnakeOriginSquares, m_context.m_nSeaSnakeOrigins) &
               Bit(m_board.m_pParent->m_LastMove.m_from);
    }

    /// The moves of the figures on the walk.
    TNarrowedList ListKeyMoves()
    {
        TSquareSet figures = TSide<EColour::White>::Figures(m_board.m_board) &
                             ~TSets::Equal(m_board.m_board, WHITE_PAWN) &
                             (Walk() | Bit(m_board.WhiteKing()));
        TMoveList moves;
        while (figures) {
            const int nMoves =
                m_board.GenerateWhiteFigureMoves(PopLowestSquare(figures), moves.data());
            for (int i = 0; i < nMoves; ++i)
                Add(moves[i]);
        }
        return m_nMoves == 0 ? Drop() : Result();
    }

    TSquareSet Walk() const
    {
        const TSquareSet dynamic =
            SetOf(m_context.m_dynamicTurnBackSquares.data(), m_context.m_nDynamicTurnBackSquares);
        return SetOf(m_context.m_walkSquares, m_context.m_nWalkSquares) | ZoneOf(dynamic);
    }

    /// White pawns without whose guard the walk must not go on.
    TSquareSet GuardedPawns() const
    {
        const TSquareSet pawns = TSets::Equal(m_board.m_board, WHITE_PAWN);
        TSquareSet guarded = 0;
        for (int i = 0; i < m_context.m_nPawnGuards; ++i) {
            const TSquare square = m_context.m_pawnGuardSquares[i];
            // A pawn that has moved stands farther up its file.
            guarded |= pawns & Bit(square) ? Bit(square) : pawns & Ray(DIR_UP, square);
        }
        if (IsPawnMove(m_board)) {
            const TSquare to = m_board.m_LastMove.m_to;
            const TSquareSet row = TSquareSet{0xFF} << 8 * RowOf(to);
            guarded |= pawns & KingZone(to) & row;
        }
        return guarded;
    }

    static bool AreSafe(const TChessboard& child, TSquareSet pawns)
    {
        while (pawns) {
            const TSquare pawn = PopLowestSquare(pawns);
            if (child.m_board[pawn] == WHITE_PAWN && IsAttackedBy<EColour::Black>(child, pawn) &&
                !IsAttackedBy<EColour::White>(child, pawn))
                return false;
        }
        return true;
    }

    /// On the walk, or towards it.
    void AddKingMoves()
    {
        const TSquare king = m_board.WhiteKing();
        const TSquareSet walk = Walk(), pawns = GuardedPawns();
        TSquareSet targets = KingZone(king) & ~TSets::Occupied(m_board.m_board);
        if (walk & Bit(king))
            targets &= walk;
        while (targets) {
            const TSquare to = PopLowestSquare(targets);
            if (!(walk & Bit(king)) && StepsTo(walk, to) >= StepsTo(walk, king))
                continue;
            TMove move{king, to, 0, 0};
            TChessboard& child = m_context.MakeChild(m_board);
            if (child.MakeWhiteMove(&move) && AreSafe(child, pawns))
                m_pMoves[m_nMoves++] = {king, to, 0, 0};
        }
    }

    static int StepsTo(TSquareSet walk, TSquare from)
    {
        int nSteps = 8;
        while (walk)
            nSteps = std::min<int>(nSteps, Distance(PopLowestSquare(walk), from));
        return nSteps;
    }

    /// Black has run out of harmless moves when he has to give a man.
    void AddCaptures()
    {
        TMoveList moves;
        const int nMoves = m_board.GenerateWhiteMoves(moves.data());
        for (int i = 0; i < nMoves; ++i) {
            if (m_board.m_board[moves[i].m_to] & COLOUR_BLACK)
                Add(moves[i]);
        }
    }

    /// With the king where he turns back and the pendulum where he can come near it, a guard may
    /// step aside if the Black king stays shut in.
    void AddGuardMoves()
    {
        if (m_board.WhiteKing() != m_context.m_turnBackSquare ||
            m_board.m_board[m_context.m_pendulumSquare1] != m_context.m_pendulumFigure)
            return;
        TMoveList moves;
        for (int i = 0; i < m_context.m_nGuards; ++i) {
            const TSquare guard = m_context.m_guardSquares[i];
            if (!(m_board.m_board[guard] & COLOUR_WHITE) || guard == m_board.WhiteKing())
                continue;
            const int nMoves = m_board.GenerateWhiteFigureMoves(guard, moves.data());
            for (int k = 0; k < nMoves; ++k) {
                if (!IsListed(moves[k]) && KeepsGuard(moves[k]))
                    m_pMoves[m_nMoves++] = moves[k];
            }
        }
    }

    bool KeepsGuard(TMove move) const
    {
        TChessboard& child = m_context.MakeChild(m_board);
        return child.MakeWhiteMove(&move) && FreeKingSquareSet(child) == 0 &&
               !CanCapture<EColour::Black>(child, move.m_to);
    }

    /// The second move is one of those that the detection has noted, if there are any.
    void NarrowSecondMove()
    {
        const std::vector<TMove>& vecNoted = m_board.m_pRequest->m_vecSeaSnakeMoves;
        if (vecNoted.empty() || m_board.m_nMoves + 2 != m_board.m_nInitialMoves)
            return;
        TMove* pEnd = std::stable_partition(m_pMoves, m_pMoves + m_nMoves, [&](const TMove& move) {
            return ContainsMove(vecNoted, move);
        });
        if (pEnd != m_pMoves)
            m_nMoves = static_cast<int>(pEnd - m_pMoves);
    }

    static constexpr int PROMOTION_MATE = 5;

    TChessboard& m_board;
    TThreadContext& m_context;
    TMove* const m_pMoves;
    int m_nMoves = 0;
};

} // namespace

bool IsPendulumInPlace(const TChessboard& board, const TSeaSnake& snake)
{
    const auto standsOn = [&](std::uint8_t square) {
        return square < 64 && board.m_board[square] == snake.m_pendulumFigure;
    };
    return standsOn(snake.m_pendulumSquare1) || standsOn(snake.m_pendulumSquare2);
}

EVerdict TestSeaSnake(TBlackMove& move)
{
    const TThreadContext& context = move.m_context;
    if (context.m_nQuickerMateNesting > 0 || context.m_bNoQuickerMate)
        return EVerdict::EndsHook;
    const TMove& last = move.m_board.m_LastMove;
    if (last.IsNull() || move.m_board.m_board[last.m_to] != BLACK_QUEEN ||
        IsAttackedBy<EColour::White>(move.m_board, last.m_to))
        return EVerdict::Passes;
    constexpr int MATE_IN_TWO = 3;
    return context.m_nSeaSnakeOnlyAfter == 0 ? move.CutUnlessMateInOne()
                                             : move.CutUnlessMateWithin(MATE_IN_TWO);
}

TNarrowedList GenerateSeaSnakeMoves(TChessboard& board, TMove* pMoves)
{
    return TSeaSnakeLister(board, pMoves).List();
}

} // namespace corvina
