#ifndef CORVINA_CHESS_LINECONTEXT_H
#define CORVINA_CHESS_LINECONTEXT_H

#include "chess/chessboard.h"

#include <memory>
#include <vector>

namespace corvina
{

/// What a thread owns of the line of moves that it follows: the stack of records and the notes that
/// making a move leaves outside of the record. The search's context derives from it. Not copied,
/// not shared between threads.
class TLineContext
{
public:
    /// A capture noted along the line.
    struct TCapture
    {
        TSquare m_square;
        TFigure m_figure;
    };

    /// Captures noted of each side; the counts are in TChessboard::m_moveFilter.
    static constexpr int MAX_CAPTURES = 3;

    /// Room for lines of nMaxPlies from the root. Throws std::bad_alloc.
    explicit TLineContext(int nMaxPlies = 0) { Reserve(nMaxPlies); }
    TLineContext& operator=(const TLineContext&) = delete;

    /// Makes room for lines of nMaxPlies; records handed out before become invalid.
    void Reserve(int nMaxPlies);

    /// The slot in which the child of a record with this many half-moves left is built.
    TChessboard& Slot(int nMoves) { return m_aBoards[nMoves].m_board; }

    /// A copy of the record in the next slot, with its parent set: ready for a move to be made on.
    TChessboard& MakeChild(TChessboard& board)
    {
        TChessboard& child = Slot(board.m_nMoves);
        child = board;
        child.m_pParent = &board;
        return child;
    }

    TChessboard* m_pRootBoard = nullptr; ///< root of the whole run; not owned

    /// The first captures along the line, by the colour of the side that captured.
    TCapture m_aCaptures[2][MAX_CAPTURES] = {};

    /// A counter per half-move level, cleared by each move that arrives at the level.
    std::vector<std::uint8_t> m_anLevelCounter;

    /// Squares that the move filter for a separated bishop forbids: for origin and destination, and
    /// for the destination only.
    TSquareSet m_forbiddenSquares = 0;
    TSquareSet m_forbiddenTargets = 0;

    /// m_nMoves at which Black's pawns may not move, under FILTER_BLOCK_PAWNS; -1: none.
    std::int16_t m_nBlockPawnsLevel = -1;
    std::uint64_t m_nBlockedPawnMoves = 0; ///< moves refused for that

protected:
    /// All but the records, for which there is room, that of the root included.
    TLineContext(const TLineContext&) = default;

private:
    /// Puts the mailbox of each record on a cache line of its own.
    struct alignas(64) TSlot
    {
        TChessboard m_board;
    };

    /// A copy has one slot more, and none of the records.
    struct TStack : std::vector<TSlot>
    {
        TStack() = default;
        TStack(const TStack& other) : std::vector<TSlot>(other.size() + 1) {}
        TStack& operator=(const TStack&) = delete;
    };

    TStack m_aBoards;
};

} // namespace corvina

#endif
