#include "heuristics/attacksets.h"
#include "heuristics/blackmobility.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/seasnake.h"
#include "heuristics/tempo.h"
#include "heuristics/triangles.h"
#include "search/solverequest.h"

#include <algorithm>
#include <array>
#include <bit>

namespace corvina
{
namespace
{

constexpr int MIN_PLIES = 15;
constexpr int UNREACHED = 64;

/// The figure, and the two squares between which it swings.
struct TPendulum
{
    TFigure m_figure = NO_FIGURE;
    TSquare m_here = NO_SQUARE, m_there = NO_SQUARE;

    bool IsFound() const { return m_figure != NO_FIGURE; }
};

/// The only figure that Black can move, with the only square to which it can go; nothing when the
/// king can move too.
TPendulum FindSwing(const TChessboard& board, TBlackMobility* pMobility = nullptr)
{
    const TBlackMobility mobility = FindBlackMobility(board);
    if (pMobility)
        *pMobility = mobility;
    if (mobility.m_nKingMoves != 0 || !std::has_single_bit(mobility.m_figures) ||
        !std::has_single_bit(mobility.m_targets))
        return {};
    const TSquare here = LowestSquare(mobility.m_figures), there = LowestSquare(mobility.m_targets);
    if (board.m_board[there] != NO_FIGURE)
        return {};
    return {board.m_board[here], here, there};
}

/// The position with the pendulum's figure on its other square; the record has no line.
TChessboard Swung(const TChessboard& board, const TPendulum& pendulum)
{
    TChessboard swung = board;
    swung.m_pParent = nullptr;
    swung.m_board[pendulum.m_here] = NO_FIGURE;
    swung.m_board[pendulum.m_there] = pendulum.m_figure;
    swung.m_LastMove = {pendulum.m_here, pendulum.m_there, 0, 0};
    const TSquare king = swung.WhiteKing();
    swung.m_whiteChecker = swung.GetWhiteKingChecker(static_cast<std::int8_t>(FileOf(king)),
                                                     static_cast<std::int8_t>(RowOf(king)));
    return swung;
}

/// It swings there and back, without check, and White can't take it on either square.
TPendulum FindPendulum(const TChessboard& board, TBlackMobility* pMobility)
{
    const TPendulum pendulum = FindSwing(board, pMobility);
    if (!pendulum.IsFound() || IsAttackedBy<EColour::White>(board, pendulum.m_here))
        return {};
    const TChessboard swung = Swung(board, pendulum);
    if (swung.m_whiteChecker != NO_CHECK || IsAttackedBy<EColour::White>(swung, pendulum.m_there))
        return {};
    const TPendulum back = FindSwing(swung);
    return back.m_here == pendulum.m_there && back.m_there == pendulum.m_here ? pendulum
                                                                              : TPendulum{};
}

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

/// The king attacks one of the squares while the figure stands on the other, and no free square
/// next to him does: White can't keep up the zugzwang by a step aside.
void TryApproach(const TRealm& realm, const TPendulum& pendulum, TSquare attacked, TSquare other,
                 const std::array<std::uint8_t, 64>& anSteps, TApproach& best)
{
    if (realm.IsGuardedByBlack(attacked, attacked, pendulum))
        return;
    TSquareSet squares = KingZone(attacked);
    while (squares) {
        const TSquare square = PopLowestSquare(squares);
        const TSquareSet around = KingZone(square) & realm.Free();
        if (!realm.IsSafeWith(square, other, pendulum) || !around || (around & KingZone(attacked)))
            continue;
        int nSteps = anSteps[square];
        for (TSquareSet rest = around; rest;)
            nSteps = std::min(nSteps, anSteps[PopLowestSquare(rest)] + 1);
        if (nSteps < best.m_nSteps)
            best = {square, attacked, other, nSteps};
    }
}

TApproach FindApproach(const TRealm& realm, const TPendulum& pendulum, TSquare king)
{
    const auto anSteps = realm.StepsFrom(king);
    TApproach best;
    TryApproach(realm, pendulum, pendulum.m_here, pendulum.m_there, anSteps, best);
    TryApproach(realm, pendulum, pendulum.m_there, pendulum.m_here, anSteps, best);
    return best;
}

/// Three free squares next to each other, the nearest one first.
struct TTriangle
{
    std::array<TSquare, 3> m_aSquares{NO_SQUARE, NO_SQUARE, NO_SQUARE};
    int m_nSum = 3 * UNREACHED; ///< of the steps from the approach square
};

TTriangle FindTriangle(TSquareSet squares, const std::array<std::uint8_t, 64>& anSteps)
{
    TTriangle best;
    for (TSquareSet first = squares; first;) {
        const TSquare a = PopLowestSquare(first);
        for (TSquareSet second = KingZone(a) & first; second;) {
            const TSquare b = PopLowestSquare(second);
            for (TSquareSet third = KingZone(a) & KingZone(b) & second; third;) {
                const TSquare c = PopLowestSquare(third);
                const int nSum = anSteps[a] + anSteps[b] + anSteps[c];
                if (nSum < best.m_nSum)
                    best = {{a, b, c}, nSum};
            }
        }
    }
    std::stable_sort(best.m_aSquares.begin(), best.m_aSquares.end(), [&](TSquare a, TSquare b) {
        return a != NO_SQUARE && anSteps[a] < anSteps[b];
    });
    return best;
}

bool AddWalkSquare(TSeaSnake& snake, TSquare square)
{
    const std::uint8_t* pEnd = snake.m_walkSquares + snake.m_nWalkSquares;
    if (std::find<const std::uint8_t*>(snake.m_walkSquares, pEnd, square) != pEnd)
        return true;
    if (snake.m_nWalkSquares == MAX_SEASNAKE_WALK)
        return false;
    snake.m_walkSquares[snake.m_nWalkSquares++] = square;
    return true;
}

/// The shortest way between two squares, the first one included; false when it is too long.
bool AddPath(const TRealm& realm, TSquare from, TSquare to, TSeaSnake& snake)
{
    const auto anSteps = realm.StepsFrom(to);
    TSquare at = from;
    while (at != to) {
        if (!AddWalkSquare(snake, at))
            return false;
        TSquareSet next = KingZone(at) & (realm.Free() | Bit(to));
        TSquare best = NO_SQUARE;
        while (next) {
            const TSquare square = PopLowestSquare(next);
            if (best == NO_SQUARE || anSteps[square] < anSteps[best])
                best = square;
        }
        if (best == NO_SQUARE || anSteps[best] == UNREACHED)
            return false;
        at = best;
    }
    return true;
}

/// The way from the approach square to the triangle on which the king loses a tempo. A turn-back
/// square that is given must be one of the triangle.
bool FindWalk(const TRealm& realm, TSeaSnake& snake)
{
    const TSquare approach = snake.m_approachSquare;
    const auto anSteps = realm.StepsFrom(approach);
    TSquareSet reachable = Bit(approach);
    for (TSquare square = 0; square < 64; ++square) {
        if (anSteps[square] != UNREACHED)
            reachable |= Bit(square);
    }
    if (snake.m_turnBackSquare != NO_KEY_SQUARE)
        reachable &= KingZone(snake.m_turnBackSquare) | Bit(snake.m_turnBackSquare);
    const TTriangle triangle = FindTriangle(reachable, anSteps);
    if (triangle.m_aSquares[0] == NO_SQUARE)
        return false;
    std::copy(triangle.m_aSquares.begin(), triangle.m_aSquares.end(), snake.m_triangleSquares);
    if (!AddPath(realm, approach, triangle.m_aSquares[0], snake))
        return false;
    snake.m_nPathSquares = snake.m_nWalkSquares;
    for (const TSquare square : triangle.m_aSquares) {
        if (!AddWalkSquare(snake, square))
            return false;
    }
    if (snake.m_turnBackSquare == NO_KEY_SQUARE)
        snake.m_turnBackSquare = triangle.m_aSquares[2];
    return true;
}

TSquareSet WalkOf(const TSeaSnake& snake)
{
    TSquareSet walk = 0;
    for (int i = 0; i < snake.m_nWalkSquares; ++i)
        walk |= Bit(snake.m_walkSquares[i]);
    return walk;
}

/// Copies squares into a list of the record, as far as it has room.
void FillList(TSquareSet squares, std::uint8_t* pList, std::uint8_t& nList, int nMax)
{
    nList = 0;
    while (squares && nList < nMax)
        pList[nList++] = PopLowestSquare(squares);
}

/// What else the generator asks for: guards, pawns, figures in the way.
void FillSurroundings(const TChessboard& board, THeuristicsParams& p)
{
    const TSquareSet walk = WalkOf(p), white = TSide<EColour::White>::Figures(board.m_board) &
                                               ~Bit(board.WhiteKing());
    const TSquareSet pawns = TSets::Equal(board.m_board, WHITE_PAWN);
    TSquareSet guards = 0, watched = 0;
    for (TSquareSet rest = white & ~pawns; rest;) {
        const TSquare square = PopLowestSquare(rest);
        const TSquareSet attacks =
            AttacksOf<EColour::White>(board.m_board[square] & KIND_MASK, square,
                                      TSets::Occupied(board.m_board) & ~Bit(board.BlackKing()));
        if (attacks & KingZone(board.BlackKing()))
            guards |= Bit(square);
    }
    // A pawn that only the king guards on his way.
    for (TSquareSet rest = pawns; rest;) {
        const TSquare pawn = PopLowestSquare(rest);
        const TAttackers attackers =
            AttackersOf<EColour::White>(board, TSets::Occupied(board.m_board), pawn);
        if ((KingZone(pawn) & walk) && !(attackers.All() & ~attackers.m_king))
            watched |= Bit(pawn);
    }
    FillList(guards, p.m_guardSquares, p.m_nGuards, MAX_SEASNAKE_GUARDS);
    FillList(watched, p.m_pawnGuardSquares, p.m_nPawnGuards, MAX_SEASNAKE_PAWNS);
    FillList(walk & white & ~pawns, p.m_seaSnakeOriginSquares, p.m_nSeaSnakeOrigins,
             MAX_SEASNAKE_GUARDS);
    p.m_whiteKingSquare = board.WhiteKing();
    p.m_blackKingSquare = board.BlackKing();
    // Squares that only the walking king denies to the other one.
    p.m_bCheckKingMove = (FreeKingSquareSet(board) |
                          (KingZone(board.BlackKing()) & KingZone(board.WhiteKing()))) != 0;
    p.m_bEdgeFormsOff = board.BlackKingRing() >= 2;
}

void FillPendulum(const TPendulum& pendulum, TSquare square1, TSeaSnake& snake)
{
    snake.m_pendulumFigure = pendulum.m_figure;
    snake.m_pendulumAtRoot = pendulum.m_here;
    snake.m_pendulumSquare1 = square1;
    snake.m_pendulumSquare2 = square1 == pendulum.m_here ? pendulum.m_there : pendulum.m_here;
}

/// Both stages on a board as it stands.
bool DetectOn(const TChessboard& board, THeuristicsParams& p)
{
    TBlackMobility mobility;
    const TPendulum pendulum = FindPendulum(board, &mobility);
    if (!pendulum.IsFound() || HasWhiteTempo(board))
        return false;
    const TRealm realm(board, pendulum);
    const TApproach approach = FindApproach(realm, pendulum, board.WhiteKing());
    if (approach.m_square == NO_SQUARE)
        return false;
    FillPendulum(pendulum, approach.m_attacked, p);
    p.m_approachSquare = approach.m_square;
    if (!FindWalk(realm, p))
        return false;
    p.m_nSeaSnakeStartMoves = static_cast<std::uint8_t>(approach.m_nSteps);
    p.m_nBlackPawnMoves = static_cast<std::uint8_t>(std::min(mobility.m_nMoves - 1, 255));
    FillSurroundings(board, p);
    return true;
}

/// White's king moves on the walk, as the position stands.
std::vector<TMove> MovesOnWalk(const TChessboard& board, const TSeaSnake& snake)
{
    std::vector<TMove> vecMoves;
    TSquareSet targets =
        KingZone(board.WhiteKing()) & WalkOf(snake) & ~TSets::Occupied(board.m_board);
    while (targets)
        vecMoves.push_back({board.WhiteKing(), PopLowestSquare(targets), 0, 0});
    return vecMoves;
}

/// The White king stands in the way: a step of his lets the pendulum swing.
bool DetectAfterKingMove(const TChessboard& root, THeuristicsParams& params,
                         std::vector<TMove>& moves, const TZugzwangMap& map)
{
    constexpr int CLOSE_KINGS = 2;
    if (KingDistance(root) > CLOSE_KINGS)
        return false;
    TSquareSet targets = KingZone(root.WhiteKing()) & ~TSets::Occupied(root.m_board);
    while (targets) {
        TMove move{root.WhiteKing(), PopLowestSquare(targets), 0, 0};
        TChessboard after = root;
        if (!PlayWithoutLine(root, move, after) || !IsOnMap(map, move))
            continue;
        THeuristicsParams found = params;
        if (!DetectOn(after, found))
            continue;
        params = found;
        params.m_bDynamicSeaSnake = true;
        ++params.m_nSeaSnakeStartMoves;
        moves = MovesOnWalk(after, params);
        return true;
    }
    return false;
}

void ClearSeaSnake(THeuristicsParams& params)
{
    static_cast<TSeaSnake&>(params) = TSeaSnake{};
    params.m_nPawnGuards = params.m_nSeaSnakeOrigins = 0;
    params.m_bDynamicSeaSnake = params.m_bEdgeFormsOff = false;
}

bool HasPendulumSquares(const TSeaSnake& snake)
{
    return snake.m_pendulumSquare1 < 64 && snake.m_pendulumSquare2 < 64;
}

/// The squares that the user has told; nothing when no Black figure stands on one of them.
TPendulum ToldPendulum(const TChessboard& root, const TSeaSnake& snake)
{
    TPendulum pendulum{NO_FIGURE, snake.m_pendulumSquare1, snake.m_pendulumSquare2};
    if (!(root.m_board[pendulum.m_here] & COLOUR_BLACK))
        std::swap(pendulum.m_here, pendulum.m_there);
    const TFigure figure = root.m_board[pendulum.m_here];
    if ((figure & COLOUR_BLACK) && figure != BLACK_KING && figure != BLACK_PAWN)
        pendulum.m_figure = figure;
    return pendulum;
}

TSquare NearerTo(std::uint8_t approach, const TPendulum& pendulum)
{
    if (approach > 63 ||
        Distance(approach, pendulum.m_here) <= Distance(approach, pendulum.m_there))
        return pendulum.m_here;
    return pendulum.m_there;
}

/// What the user has told is what the detection finds too: it knows the rest.
bool TakeDetected(const TChessboard& root, THeuristicsParams& params)
{
    const auto fits = [](std::uint8_t told, std::uint8_t found) {
        return told > 63 || told == found;
    };
    THeuristicsParams found = params;
    std::vector<TMove> vecMoves;
    if (!DetectSeaSnake(root, found, vecMoves, root.m_pRequest->m_zugzwangMap) ||
        !fits(params.m_approachSquare, found.m_approachSquare) ||
        !fits(params.m_turnBackSquare, found.m_turnBackSquare) ||
        !fits(params.m_pendulumSquare1, found.m_pendulumSquare1) ||
        !fits(params.m_pendulumSquare2, found.m_pendulumSquare2))
        return false;
    params = found;
    root.m_pRequest->m_vecSeaSnakeMoves = vecMoves;
    return true;
}

} // namespace

bool DetectSeaSnake(const TChessboard& root, THeuristicsParams& params, std::vector<TMove>& moves,
                    const TZugzwangMap& map)
{
    ClearSeaSnake(params);
    moves.clear();
    params.m_bSeaSnakeAnalysed = true;
    if (root.m_nMoves < MIN_PLIES || !root.IsWhiteToMove() || root.m_whiteChecker != NO_CHECK)
        return false;
    THeuristicsParams found = params;
    if (DetectOn(root, found)) {
        params = found;
        return true;
    }
    return DetectAfterKingMove(root, params, moves, map);
}

void CompleteSeaSnake(TChessboard& root, THeuristicsParams& params)
{
    if (params.m_nWalkSquares != 0 || TakeDetected(root, params))
        return;
    const TPendulum pendulum =
        HasPendulumSquares(params) ? ToldPendulum(root, params) : FindPendulum(root, nullptr);
    if (!pendulum.IsFound())
        return;
    const TRealm realm(root, pendulum);
    const TApproach approach = FindApproach(realm, pendulum, root.WhiteKing());
    if (params.m_approachSquare > 63)
        params.m_approachSquare = approach.m_square;
    TSquare square1 = params.m_pendulumSquare1;
    if (!HasPendulumSquares(params))
        square1 = NearerTo(params.m_approachSquare, pendulum);
    FillPendulum(pendulum, square1, params);
    if (params.m_approachSquare > 63 || !FindWalk(realm, params)) {
        params.m_nWalkSquares = 0;
        return;
    }
    FillSurroundings(root, params);
}

void PreferSeaSnakeTriangle(TChessboard& root, const TSeaSnake& snake)
{
    const std::uint8_t* p = snake.m_triangleSquares;
    if (p[0] != NO_KEY_SQUARE)
        PreferRound(root, {p[0], p[1], p[2]}, WHITE_KING);
}

std::uint16_t PawnWalkFlag(const TChessboard& root, const TSeaSnake& snake)
{
    TSquareSet near = 0;
    for (TSquareSet walk = WalkOf(snake); walk;)
        near |= KingZone(PopLowestSquare(walk));
    return TSets::Equal(root.m_board, BLACK_PAWN) & near ? TChessboard::POSITION_PAWNWALK : 0;
}

} // namespace corvina
