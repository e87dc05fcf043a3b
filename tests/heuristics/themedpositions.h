#ifndef CORVINA_TESTS_HEURISTICS_THEMEDPOSITIONS_H
#define CORVINA_TESTS_HEURISTICS_THEMEDPOSITIONS_H

#include "chess/geometry.h"
#include "chess/squaresets.h"
#include "heuristics/keyfigure.h"

#include <bit>
#include <iterator>
#include <random>

namespace corvina
{

/// What a position is about.
enum class ETheme
{
    Any,        ///< whatever comes
    Promotion,  ///< Black pawns close to promotion
    Pin,        ///< a Black figure pinned against its king
    Queen,      ///< a Black queen that can check
    Corner,     ///< a Black bishop on the main diagonal of its cornered king
    FirstRow,   ///< a White rook on the first row, Black pawns and a bishop above it
    Knight,     ///< a Black knight against a rook
    Blocked,    ///< Black figures shut in around their king
    Loss,       ///< White figures that hang
    Cage,       ///< a Black bishop with two squares to itself
    Bishops,    ///< bishops of opposite colours, White's men off the squares of Black's
    HeldKnight, ///< a knight in the corner with its king, pinned by a rook
    PinnedRook, ///< a White queen that pins a rook next to the Black king
    SingleQueen ///< nothing moves but the White queen and the kings
};

/// White's figure that pins for good, or one that pins at least; NO_SQUARE: there is none.
inline TSquare PinningFigure(const TChessboard& board)
{
    TSquare key = AnalyzeKeyWhiteFigure(board).m_square;
    for (TSquare square = 0; square < 64 && key == NO_SQUARE; ++square) {
        if ((board.m_board[square] & COLOUR_WHITE) && FindPinnedFigure(board, square) != NO_SQUARE)
            key = square;
    }
    return key;
}

class TThemed
{
public:
    explicit TThemed(std::mt19937& random) : m_random(random) {}

    TChessboard Make(ETheme theme)
    {
        for (;;) {
            m_board = TChessboard();
            PutKings(theme);
            PutTheme(theme);
            if (theme < ETheme::Bishops)
                PutOthers();
            if (m_board.RescanBoard(true) && m_board.m_blackChecker == NO_CHECK)
                return m_board;
        }
    }

private:
    static constexpr TFigure g_aWhite[] = {WHITE_QUEEN,  WHITE_ROOK,   WHITE_ROOK,
                                           WHITE_BISHOP, WHITE_KNIGHT, WHITE_PAWN};
    static constexpr TFigure g_aBlack[] = {BLACK_QUEEN, BLACK_ROOK, BLACK_BISHOP, BLACK_KNIGHT};

    int Below(std::size_t nLimit) { return static_cast<int>(m_random() % nLimit); }

    void Put(int square, TFigure figure)
    {
        const bool bPawn = (figure & KIND_MASK) == KIND_PAWN;
        if (square < 64 && m_board.m_board[square] == NO_FIGURE &&
            !(bPawn && (square < 8 || square > 55)))
            m_board.m_board[square] = figure;
    }

    void PutKings(ETheme theme)
    {
        constexpr int aCorners[] = {0, 7, 56, 63};
        const bool bBishops = theme == ETheme::Bishops;
        m_king = theme == ETheme::HeldKnight ? aCorners[2 + Below(2)]
                 : theme == ETheme::Corner || (bBishops && Below(4))
                     ? aCorners[Below(4)]
                     : (Below(2) ? 8 * Below(8) : 56 + Below(8));
        Put(m_king, BLACK_KING);
        for (int square = Below(64);; square = Below(64)) {
            const int nMost = bBishops && Below(4) ? 2 : 4;
            const bool bOther = SquareColour(square) != SquareColour(m_king);
            if (Distance(square, m_king) >= 2 && Distance(square, m_king) <= nMost &&
                !(bBishops && bOther && Below(8)))
            {
                Put(square, WHITE_KING);
                m_whiteKing = square;
                return;
            }
        }
    }

    void PutOthers()
    {
        const int nOthers = 1 + Below(3);
        for (int i = 0; i < nOthers; ++i)
            Put(Below(64), g_aWhite[Below(std::size(g_aWhite))]);
        for (int i = Below(3); i > 0; --i)
            Put(8 + Below(48), BLACK_PAWN);
    }

    /// A square of the White king's colour, or one of the other.
    int SquareOf(bool bKings)
    {
        for (;;) {
            const int square = Below(64);
            if ((SquareColour(static_cast<TSquare>(square)) ==
                 SquareColour(static_cast<TSquare>(m_whiteKing))) == bKings)
                return square;
        }
    }

    /// Black's pawns shut their king in.
    void PutBishops()
    {
        constexpr TFigure aMen[] = {BLACK_PAWN};
        PutNextToKing(1 + Below(3), aMen, 1);
        Put(SquareOf(false), BLACK_BISHOP);
        Put(SquareOf(true), WHITE_BISHOP);
        for (int i = Below(3); i > 0; --i)
            Put(SquareOf(true), WHITE_PAWN);
        for (int i = Below(3); i > 0; --i)
            Put(SquareOf(true), WHITE_KNIGHT);
        for (int i = Below(3); i > 0; --i)
            Put(8 + Below(48), BLACK_PAWN);
    }

    /// The bishop on a7 and b8, or the like in another corner, behind two pawns.
    void PutCage()
    {
        constexpr int aSquares[][4] = {
            {48, 57, 41, 50}, {62, 55, 46, 53}, {8, 1, 17, 10}, {15, 6, 22, 13}};
        const int* pSquares = aSquares[Below(4)];
        Put(pSquares[Below(2)], BLACK_BISHOP);
        for (int i = 2; i < 4; ++i)
            Put(pSquares[i], Below(4) ? BLACK_PAWN : WHITE_PAWN);
    }

    void PutPinnedRook()
    {
        constexpr TFigure aGuards[] = {BLACK_PAWN, BLACK_PAWN, BLACK_KNIGHT};
        for (;;) {
            const int queen = Below(64);
            const TSquareSet next = Between(queen, m_king) & KingZone(m_king);
            if (!next || m_board.m_board[queen] || m_board.m_board[LowestSquare(next)])
                continue;
            Put(queen, WHITE_QUEEN);
            Put(LowestSquare(next), BLACK_ROOK);
            break;
        }
        PutNextToKing(3 + Below(3), aGuards, std::size(aGuards));
        Put(Below(64), g_aWhite[1 + Below(std::size(g_aWhite) - 1)]);
        for (int i = Below(2); i > 0; --i)
            Put(8 + Below(48), BLACK_PAWN);
    }

    /// Pawns that stand against each other.
    void PutRams()
    {
        for (int i = 1 + Below(3); i > 0; --i) {
            const int square = 8 + Below(40);
            if (m_board.m_board[square] == NO_FIGURE && m_board.m_board[square + 8] == NO_FIGURE) {
                Put(square, WHITE_PAWN);
                Put(square + 8, BLACK_PAWN);
            }
        }
    }

    void PutSingleQueen()
    {
        Put(Below(64), WHITE_QUEEN);
        PutRams();
        const int ahead = m_whiteKing + 8;
        if (Below(2) && ahead < 56 && m_whiteKing >= 8)
            Put(ahead, BLACK_PAWN);
    }

    void PutPinned()
    {
        const int square = Below(64);
        const TSquareSet between = Between(square, m_king);
        if (!between)
            return Put(square, WHITE_ROOK);
        const bool bDiagonal = IsDiagonal(DirectionTo(square, m_king));
        const TFigure pinning = bDiagonal ? WHITE_BISHOP : WHITE_ROOK;
        const TFigure pinned = Below(2) ? BLACK_KNIGHT : (bDiagonal ? BLACK_ROOK : BLACK_BISHOP);
        Put(square, Below(3) ? pinning : WHITE_QUEEN);
        Put(LowestSquare(between), pinned);
    }

    /// King, knight and two pawns of Black in an upper corner have hardly a move.
    void PutHeldKnight()
    {
        const int mirror = m_king & 7;
        Put(57 ^ mirror, BLACK_KNIGHT);
        Put((59 + Below(5)) ^ mirror, WHITE_ROOK);
        for (const int square : {48, 49}) {
            Put(square ^ mirror, BLACK_PAWN);
            if (Below(2))
                Put((square - 8) ^ mirror, WHITE_PAWN);
        }
        Put(8 + Below(48), BLACK_PAWN);
        if (Below(2))
            Put(Below(64), WHITE_KNIGHT);
    }

    void PutNextToKing(int nFigures, const TFigure* pKinds, std::size_t nKinds)
    {
        for (int i = 0; i < nFigures; ++i) {
            TSquareSet zone = KingZone(m_king);
            for (int nSkip = Below(static_cast<std::size_t>(std::popcount(zone))); nSkip > 0;
                 --nSkip)
                zone &= zone - 1;
            Put(LowestSquare(zone), pKinds[Below(nKinds)]);
        }
    }

    void PutTheme(ETheme theme)
    {
        constexpr TFigure aGuards[] = {BLACK_PAWN, BLACK_ROOK, BLACK_BISHOP, BLACK_KNIGHT};
        switch (theme) {
        case ETheme::Promotion:
            for (int i = 0; i < 2; ++i)
                Put(8 + Below(8), BLACK_PAWN);
            break;
        case ETheme::Pin:
            PutPinned();
            PutNextToKing(5, aGuards, std::size(aGuards));
            break;
        case ETheme::HeldKnight:
            PutHeldKnight();
            break;
        case ETheme::Queen:
            Put(Below(64), BLACK_QUEEN);
            break;
        case ETheme::Corner:
            Put(9 * (1 + Below(6)), BLACK_BISHOP);
            Put(7 * (2 + Below(6)), BLACK_BISHOP);
            Put(Below(64), WHITE_BISHOP);
            break;
        case ETheme::FirstRow:
            Put(Below(8), WHITE_ROOK);
            Put(8 + Below(8), BLACK_PAWN);
            Put(8 + Below(16), BLACK_PAWN);
            Put(Below(64), BLACK_BISHOP);
            break;
        case ETheme::Knight:
            Put(Below(64), BLACK_KNIGHT);
            Put(Below(64), WHITE_ROOK);
            break;
        case ETheme::Blocked:
            PutNextToKing(4, aGuards, std::size(aGuards));
            break;
        case ETheme::Loss:
            Put(Below(64), g_aBlack[Below(4)]);
            Put(Below(64), g_aBlack[Below(4)]);
            Put(Below(64), WHITE_PAWN);
            break;
        case ETheme::Cage:
            PutCage();
            break;
        case ETheme::Bishops:
            PutBishops();
            break;
        case ETheme::PinnedRook:
            PutPinnedRook();
            break;
        case ETheme::SingleQueen:
            PutSingleQueen();
            break;
        default:
            break;
        }
    }

    std::mt19937& m_random;
    TChessboard m_board;
    int m_king = 0, m_whiteKing = 0;
};

} // namespace corvina

#endif
