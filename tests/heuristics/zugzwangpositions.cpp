#include "heuristics/zugzwangpositions.h"

#include "chess/geometry.h"
#include "chess/squaresets.h"

#include <bit>

namespace corvina
{
namespace
{

class TCage
{
public:
    explicit TCage(std::mt19937& random) : m_random(random) {}

    /// False when the men don't make a position.
    bool Build()
    {
        m_board = TChessboard();
        const TFigure kind = g_aKinds[Below(std::size(g_aKinds))];
        const int here = Below(64);
        TSquareSet others = StepsOf(kind, here);
        const int there = Pick(others);
        Put(here, COLOUR_BLACK | kind);
        Shut((others | StepsOf(kind, there)) & ~Bit(here) & ~Bit(there));
        const TSquareSet keptFree = Bit(there);
        const int king = PutKing(BLACK_KING, keptFree);
        ShutKing(king, keptFree);
        BlockPawns(keptFree);
        PutKing(WHITE_KING, keptFree);
        for (int i = Below(3); i > 0; --i)
            PutUnless(keptFree, Below(64), g_aWhite[Below(std::size(g_aWhite))]);
        return m_board.RescanBoard(true) && m_board.m_blackChecker == NO_CHECK &&
               m_board.m_whiteChecker == NO_CHECK;
    }

    const TChessboard& Board() const { return m_board; }

private:
    static constexpr TFigure g_aKinds[] = {KIND_ROOK, KIND_BISHOP, KIND_BISHOP, KIND_KNIGHT};
    static constexpr TFigure g_aWhite[] = {WHITE_ROOK, WHITE_BISHOP, WHITE_KNIGHT, WHITE_PAWN};
    static constexpr TFigure g_aBlocks[] = {BLACK_PAWN, BLACK_PAWN,   BLACK_PAWN,
                                            BLACK_PAWN, BLACK_BISHOP, BLACK_KNIGHT};

    int Below(std::size_t nLimit) { return static_cast<int>(m_random() % nLimit); }

    int Pick(TSquareSet squares)
    {
        for (int i = Below(static_cast<std::size_t>(std::popcount(squares))); i > 0; --i)
            squares &= squares - 1;
        return LowestSquare(squares);
    }

    static TSquareSet StepsOf(TFigure kind, int square)
    {
        if (kind == KIND_KNIGHT)
            return KnightJumps(square);
        const TSquareSet lines =
            kind == KIND_ROOK ? g_geometry.m_aRook[square] : g_geometry.m_aBishop[square];
        return lines & KingZone(square);
    }

    void Put(int square, TFigure figure)
    {
        const bool bPawn = (figure & KIND_MASK) == KIND_PAWN;
        if (m_board.m_board[square] == NO_FIGURE && !(bPawn && (square < 8 || square > 55)))
            m_board.m_board[square] = figure;
    }

    void PutUnless(TSquareSet kept, int square, TFigure figure)
    {
        if (!(kept & Bit(square)))
            Put(square, figure);
    }

    void Shut(TSquareSet squares)
    {
        while (squares) {
            const TSquare square = PopLowestSquare(squares);
            Put(square, g_aBlocks[Below(std::size(g_aBlocks))]);
            Put(square, g_aBlocks[4 + Below(2)]);
        }
    }

    int PutKing(TFigure king, TSquareSet kept)
    {
        for (int square = Below(64);; square = Below(64)) {
            if (m_board.m_board[square] == NO_FIGURE && !(kept & Bit(square))) {
                m_board.m_board[square] = king;
                return square;
            }
        }
    }

    void ShutKing(int king, TSquareSet kept)
    {
        TSquareSet zone = KingZone(king);
        while (zone) {
            const TSquare square = PopLowestSquare(zone);
            if (Below(4))
                PutUnless(kept, square, Below(4) ? BLACK_PAWN : WHITE_PAWN);
        }
    }

    /// White pawns in front of most of Black's.
    void BlockPawns(TSquareSet kept)
    {
        TSquareSet pawns = TSets::Equal(m_board.m_board, BLACK_PAWN);
        while (pawns) {
            const TSquare pawn = PopLowestSquare(pawns);
            if (Below(5))
                PutUnless(kept, pawn - 8, WHITE_PAWN);
        }
    }

    std::mt19937& m_random;
    TChessboard m_board;
};

} // namespace

TChessboard CagedPosition(std::mt19937& random)
{
    TCage cage(random);
    while (!cage.Build()) {
    }
    return cage.Board();
}

} // namespace corvina
