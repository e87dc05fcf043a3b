#include "heuristics/keyfigure.h"

#include "heuristics/attacksets.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"
#include "heuristics/materialblocks.h"

#include <algorithm>

namespace corvina
{
namespace
{

bool IsMoveOfKeyFigure(const TChessboard& board, const TMove& move)
{
    TMoveList moves;
    const int nMoves = GetKeyFigureMove(board, moves.data());
    return std::any_of(moves.data(), moves.data() + nMoves,
                       [&](const TMove& key) { return key.m_from == move.m_from; });
}

/// Black has taken back where White had just taken or gone.
EVerdict TestUnknownFigure(TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const TMove& white = move.m_parent.m_LastMove;
    const TSquare to = board.m_LastMove.m_to;
    if (!move.m_pGrandparent || white.IsNull() || to != white.m_to ||
        move.BlackCapture() == NO_FIGURE ||
        !(move.m_pGrandparent->m_nHeuristics & SH_KEYWHITEFIGURE) ||
        !IsMoveOfKeyFigure(*move.m_pGrandparent, white))
        return EVerdict::Passes;
    if (IsAbovePawn(board.m_board[to]) && IsAttackedBy<EColour::White>(board, to))
        return EVerdict::Passes;
    return move.CutUnlessMateInOne();
}

EVerdict CutUnlessNetOrMate(TBlackMove& move)
{
    const EMateTest mate = IsMateInNet(move.m_board);
    return mate != EMateTest::No ? move.CutUnless(mate) : move.CutUnlessMateWithin(5);
}

/// A Black figure comes between the key figure and the king, where it unpins the pinned one.
EVerdict TestInterposition(TBlackMove& move)
{
    const TChessboard& board = move.m_board;
    const TThreadContext& context = move.m_context;
    const TMove& last = board.m_LastMove;
    const TSquare to = last.m_to;
    const TSquareSet line = Between(context.m_keyFigureSquare, board.BlackKing());
    if (!(line & Bit(to)) || last.m_from == context.m_pinnedFigureSquare)
        return EVerdict::Passes;
    const TSquareSet occupied = TSets::Occupied(board.m_board);
    if (!AttackersOf<EColour::White>(board, occupied, to).All())
        return EVerdict::Passes;
    const TSquare pinned = context.m_pinnedFigureSquare;
    if (pinned != NO_KEY_SQUARE && (board.m_board[pinned] & COLOUR_BLACK) &&
        !IsAttackedBy<EColour::Black>(board, pinned))
        return EVerdict::Passes;
    return CutUnlessNetOrMate(move);
}

} // namespace

TSquare FindPinnedFigure(const TChessboard& board, TSquare square)
{
    const EDirection direction = DirectionTo(square, board.BlackKing());
    const TFigure kind = board.m_board[square] & KIND_MASK;
    if (direction == DIR_NONE || !(kind & (IsDiagonal(direction) ? KIND_BISHOP : KIND_ROOK)))
        return NO_SQUARE;
    const TSquareSet between = Between(square, board.BlackKing()) & TSets::Occupied(board.m_board);
    if (!between || (between & (between - 1)))
        return NO_SQUARE;
    const TSquare man = LowestSquare(between);
    const TFigure pinned = board.m_board[man];
    const bool bHeld =
        pinned == BLACK_KNIGHT || pinned == (IsDiagonal(direction) ? BLACK_ROOK : BLACK_BISHOP);
    return bHeld ? man : NO_SQUARE;
}

TKeyFigure AnalyzeKeyWhiteFigure(const TChessboard& board)
{
    using W = TSide<EColour::White>;
    if (FreeKingSquares(board) != 0)
        return {};
    TSquareSet figures = 0;
    if (W::HasDiagonalSlider(board))
        figures |= TSets::Having(board.m_board, W::DIAGONAL_MASK);
    if (W::HasLineSlider(board))
        figures |= TSets::Having(board.m_board, W::LINE_MASK);
    while (figures) {
        const TSquare square = PopLowestSquare(figures);
        const TSquare pinned = FindPinnedFigure(board, square);
        if (pinned != NO_SQUARE && !CanCapture<EColour::Black>(board, square))
            return {square, pinned};
    }
    return {};
}

int GetKeyFigureMove(const TChessboard& board, TMove* pOut)
{
    const TKeyFigure key = AnalyzeKeyWhiteFigure(board);
    if (!key.IsFound())
        return 0;
    const EDirection direction = DirectionTo(board.BlackKing(), key.m_square);
    const int nMoves = board.GenerateWhiteFigureMoves(key.m_square, pOut);
    return static_cast<int>(std::remove_if(pOut, pOut + nMoves,
                                           [&](const TMove& move) {
                                               return DirectionTo(board.BlackKing(), move.m_to) !=
                                                      direction;
                                           }) -
                            pOut);
}

EVerdict TestKeyWhiteFigure(TBlackMove& move)
{
    const TSquare key = move.m_context.m_keyFigureSquare;
    if (key == NO_KEY_SQUARE)
        return TestUnknownFigure(move);
    if (!move.m_board.m_LastMove.IsNull() && move.m_board.m_LastMove.m_to == key &&
        move.BlackCapture() != NO_FIGURE)
        return move.CutUnlessMateInOne();
    return TestInterposition(move);
}

} // namespace corvina
