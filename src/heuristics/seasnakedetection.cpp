#include "heuristics/kingsurroundings.h"
#include "heuristics/seasnake.h"
#include "heuristics/seasnakewalk.h"
#include "heuristics/tempo.h"
#include "heuristics/triangles.h"
#include "search/solverequest.h"

#include <algorithm>

namespace corvina
{
namespace
{

constexpr int MIN_PLIES = 15;

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
    // Nothing but the swing: a position that comes back is no progress.
    p.m_bSeaSnakeQuickMode = p.m_nBlackPawnMoves == 0;
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
    params.m_bDynamicSeaSnake = params.m_bEdgeFormsOff = params.m_bSeaSnakeQuickMode = false;
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
