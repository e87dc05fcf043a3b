#include "chess/figure.h"

#include "chess/exception.h"

namespace corvina
{

bool IsFigure(TFigure figure)
{
    return (figure == (COLOUR_WHITE | (figure & KIND_MASK)) ||
            figure == (COLOUR_BLACK | (figure & KIND_MASK))) &&
           LetterFromFigure(figure) != ' ';
}

TFigure FigureFromLetter(char letter)
{
    switch (letter) {
    case 'K':
    case 'k':
        return KIND_KING;
    case 'P':
    case 'p':
        return KIND_PAWN;
    case 'B':
    case 'b':
    case 'G':
    case 'g':
        return KIND_BISHOP;
    case 'R':
    case 'r':
    case 'W':
    case 'w':
        return KIND_ROOK;
    case 'Q':
    case 'q':
    case 'H':
    case 'h':
        return KIND_QUEEN;
    case 'N':
    case 'n':
    case 'S':
    case 's':
        return KIND_KNIGHT;
    default:
        throw ChessException(std::string("Unknown figure letter: ") + letter);
    }
}

char LetterFromFigure(TFigure figure)
{
    switch (figure & KIND_MASK) {
    case KIND_KING:
        return 'K';
    case KIND_PAWN:
        return 'P';
    case KIND_BISHOP:
        return 'B';
    case KIND_ROOK:
        return 'R';
    case KIND_QUEEN:
        return 'Q';
    case KIND_KNIGHT:
        return 'N';
    default:
        return ' ';
    }
}

} // namespace corvina
