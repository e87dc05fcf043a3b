#ifndef CORVINA_CHESS_FIGURE_H
#define CORVINA_CHESS_FIGURE_H

#include <cstdint>

namespace corvina
{

enum class EColour : std::uint8_t
{
    White,
    Black
};

constexpr EColour Opponent(EColour colour)
{
    return colour == EColour::White ? EColour::Black : EColour::White;
}

/// A figure in a square byte is a colour bit plus a kind; an empty square is 0. The kinds are
/// chosen so that the queen is bishop plus rook: one mask test finds all sliders of a direction.
using TFigure = std::uint8_t;

constexpr TFigure KIND_KING = 1;
constexpr TFigure KIND_PAWN = 2;
constexpr TFigure KIND_BISHOP = 4;
constexpr TFigure KIND_ROOK = 8;
constexpr TFigure KIND_QUEEN = 12;
constexpr TFigure KIND_KNIGHT = 16;
constexpr TFigure KIND_MASK = 0x1F;
constexpr TFigure SLIDER_MASK = KIND_BISHOP | KIND_ROOK;

constexpr TFigure COLOUR_WHITE = 0x40;
constexpr TFigure COLOUR_BLACK = 0x80;
constexpr TFigure NO_FIGURE = 0;

constexpr TFigure WHITE_KING = COLOUR_WHITE | KIND_KING;
constexpr TFigure WHITE_PAWN = COLOUR_WHITE | KIND_PAWN;
constexpr TFigure WHITE_BISHOP = COLOUR_WHITE | KIND_BISHOP;
constexpr TFigure WHITE_ROOK = COLOUR_WHITE | KIND_ROOK;
constexpr TFigure WHITE_QUEEN = COLOUR_WHITE | KIND_QUEEN;
constexpr TFigure WHITE_KNIGHT = COLOUR_WHITE | KIND_KNIGHT;
constexpr TFigure BLACK_KING = COLOUR_BLACK | KIND_KING;
constexpr TFigure BLACK_PAWN = COLOUR_BLACK | KIND_PAWN;
constexpr TFigure BLACK_BISHOP = COLOUR_BLACK | KIND_BISHOP;
constexpr TFigure BLACK_ROOK = COLOUR_BLACK | KIND_ROOK;
constexpr TFigure BLACK_QUEEN = COLOUR_BLACK | KIND_QUEEN;
constexpr TFigure BLACK_KNIGHT = COLOUR_BLACK | KIND_KNIGHT;

constexpr TFigure ColourBit(EColour colour)
{
    return colour == EColour::White ? COLOUR_WHITE : COLOUR_BLACK;
}

/// Kinds that a pawn can become, in the order in which they are generated.
constexpr TFigure g_aPromotionKinds[4] = {KIND_QUEEN, KIND_ROOK, KIND_BISHOP, KIND_KNIGHT};

/// True for the twelve bytes that stand for a figure.
bool IsFigure(TFigure figure);

/// The kind that a letter names, in either case, English (K P B R Q N) or Polish (G bishop, W rook,
/// H queen, S knight). Throws ChessException "Unknown figure letter: " and the letter.
TFigure FigureFromLetter(char letter);

/// The letter written for a kind or a figure of either colour: K, P, B, R, Q or N; a blank for
/// anything else.
char LetterFromFigure(TFigure figure);

} // namespace corvina

#endif
