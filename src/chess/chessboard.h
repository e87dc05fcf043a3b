#ifndef CORVINA_CHESS_CHESSBOARD_H
#define CORVINA_CHESS_CHESSBOARD_H

#include "chess/exception.h"
#include "chess/figure.h"
#include "chess/move.h"
#include "chess/square.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <type_traits>

namespace corvina
{

class TLineContext;
struct TSolveRequest;

/// Rights to castle: bits of GetCastlingRights.
constexpr int CASTLING_SHORT = 1; ///< with the rook of the h-file
constexpr int CASTLING_LONG = 2;  ///< with the rook of the a-file

/// Values of m_whiteChecker and m_blackChecker that are no square.
constexpr std::int8_t NO_CHECK = -1;
constexpr std::int8_t DOUBLE_CHECK = 64;

/// Asks the user a question with the answers Yes and No; true for Yes.
using TQuestion = std::function<bool(const std::string& strTitle, const std::string& strText)>;

/// A position, as one flat block of 144 bytes that is copied for each move and never unmade.
/// Rights to castle and to capture en passant aren't members: they follow from the chain of
/// parents. White is the side that mates.
struct alignas(16) TChessboard
{
    /// Bits of m_nPositionFlags that making a move keeps.
    static constexpr std::uint16_t POSITION_BAREBLACKKING = 0x400;
    /// White's only figures are bishops that don't control the square on which his only pawns, all
    /// on that rook's file, promote.
    static constexpr std::uint16_t POSITION_WRONGBISHOP = 0x2000;

    /// The endgame tables cover the material; set by the search.
    static constexpr std::uint16_t POSITION_GLOBALREGISTER = 0x800;

    // What the analysis of the root position found.

    static constexpr std::uint16_t POSITION_FEWFIGURES = 0x2; ///< fewer than 8 men, kings counted
    /// Few men, of which Black has at most one figure and a free king, or a certain knight ending.
    static constexpr std::uint16_t POSITION_FREEKING = 0x4;
    static constexpr std::uint16_t POSITION_PAWNPLAY = 0x8; ///< White mates with pawns and a minor
    static constexpr std::uint16_t POSITION_OPPOSITEBISHOPS = 0x10;
    static constexpr std::uint16_t POSITION_MANYFIGURES = 0x20; ///< more than 11, without pawns
    static constexpr std::uint16_t POSITION_LONEBISHOP = 0x80;
    static constexpr std::uint16_t POSITION_SMALLENDING = 0x100;
    /// A mate was proved behind the pin of a Black rook: short ones are found early or not at all.
    static constexpr std::uint16_t POSITION_PINNEDROOK = 0x200;
    /// The White king's walk in a sea snake depends on Black's pawns.
    static constexpr std::uint16_t POSITION_PAWNWALK = 0x1000;
    static constexpr std::uint16_t POSITION_BLACKBLOCKED = 0x4000; ///< no Black figure can move
    static constexpr std::uint16_t POSITION_PREFERREDMOVES =
        0x8000; ///< the run has a table of them

    /// The ring of the Black king within m_boardFlags.
    static constexpr int RING_SHIFT = 3;
    static constexpr std::uint16_t RING_MASK = 3 << RING_SHIFT;

    // Further bits of m_boardFlags: what the heuristics note along a line.

    static constexpr std::uint16_t BLACK_PROMOTIONS_MASK = 3; ///< their number, at most 3
    static constexpr std::uint16_t FLAG_SAVEFIGUREPENDING = 0x20;
    static constexpr std::uint16_t FLAG_FIGUREGIVEN = 0x40; ///< White has lost one and may do so
    static constexpr std::uint16_t FLAG_EDGECHECKDEFERRED = 0x100; ///< m_bEdgeCheckDeferred
    /// Zugzwang: a short mate is looked for no deeper than TThreadContext::m_nShortMateCap.
    static constexpr std::uint16_t FLAG_SHORTMATECAP = 0x4;
    /// The Black bishop has been taken off for the one-colour reduction.
    static constexpr std::uint16_t FLAG_BISHOPSHUTOUT = 0x400;
    static constexpr std::uint16_t FLAG_FIGURELOST = 0x2000;
    /// Black's pawn before promotion may catch the White king on an island.
    static constexpr std::uint16_t FLAG_ISLAND = 0x4000;
    static constexpr std::uint16_t FLAG_EDGERELAXED = 0x8000; ///< m_bEdgeRelaxedInVariant

    /// The fields of m_moveFilter.
    static constexpr std::uint8_t FILTER_MODE_MASK = 3;
    static constexpr std::uint8_t FILTER_WHITE_SQUARES_ONLY = 1;
    static constexpr std::uint8_t FILTER_BLACK_SQUARES_ONLY = 2;
    static constexpr std::uint8_t FILTER_SEPARATED_BLACK_BISHOP = 3;
    static constexpr int BLACK_CAPTURES_SHIFT = 2;
    static constexpr int WHITE_CAPTURES_SHIFT = 4;
    static constexpr std::uint8_t CAPTURES_MASK = 3; ///< of a count, once shifted down
    /// Black's pawns may not move at TLineContext::m_nBlockPawnsLevel.
    static constexpr std::uint8_t FILTER_BLOCK_PAWNS = 0x40;

    std::uint8_t m_board[64] = {};       ///< figures by square
    TSolveRequest* m_pRequest = nullptr; ///< the open problem and its run; not owned
    std::int8_t m_trackedSquares[8] = {-1, -1, -1, -1, -1, -1, -1, -1}; ///< -1: captured
    TChessboard* m_pParent = nullptr;      ///< the position before m_LastMove; null at a root
    TLineContext* m_pThread = nullptr;     ///< what the thread owns of the line; not owned
    TMove m_LastMove{};                    ///< the move that led here
    std::uint16_t m_nMoves = 0;            ///< half-moves left; odd: White is to move
    std::uint16_t m_nInitialMoves = 0;     ///< m_nMoves of the root
    std::uint32_t m_nHeuristics = 0;       ///< mask of the heuristics in force
    std::uint32_t m_nHeuristicsParams = 0; ///< signature of their parameters
    std::uint16_t m_nPositionFlags = 0;    ///< POSITION_...
    std::uint16_t m_boardFlags = 0;        ///< RING_MASK and flags of the heuristics
    std::uint8_t m_moveFilter = 0;         ///< FILTER_..., counts of captures in this line
    std::uint8_t m_nPass = 0;              ///< 1: with heuristics, 2: without
    std::int8_t m_whiteKingFile = 0, m_whiteKingRow = 0;
    std::int8_t m_blackKingFile = 0, m_blackKingRow = 0;
    std::int8_t m_whiteChecker = NO_CHECK; ///< square of the only figure that checks White
    std::int8_t m_blackChecker = NO_CHECK; ///< the same for Black
    std::uint8_t m_nWhiteQueens = 0, m_nBlackQueens = 0;
    std::uint8_t m_nWhiteRooks = 0, m_nBlackRooks = 0;
    std::uint8_t m_nWhiteBishops = 0, m_nBlackBishops = 0;
    std::uint8_t m_nWhiteKnights = 0, m_nBlackKnights = 0;
    std::uint8_t m_nWhitePawns = 0, m_nBlackPawns = 0;
    std::int8_t m_whiteRookSquares[2] = {};   ///< the lists of White's figures: element i holds a
    std::int8_t m_whiteBishopSquares[2] = {}; ///< square for every i below the matching count,
    std::int8_t m_whiteKnightSquares[2] = {}; ///< as long as m_bWhiteSquaresValid
    std::int8_t m_whiteQueenSquare = 0;
    /// True while White has at most one queen, two rooks, two knights and two bishops, which then
    /// stand on squares of different colours.
    std::uint8_t m_bWhiteSquaresValid = 0;

    // The position as a whole (chessboard.cpp)

    /// Fills every derived member from m_board and validates the position; bResetHeuristics also
    /// clears m_nHeuristics and m_nPositionFlags. Returns true. Throws ChessException.
    bool ScanBoard(bool bResetHeuristics);

    /// ScanBoard that returns false where that would throw.
    bool RescanBoard(bool bResetHeuristics);

    /// Makes this the root of a task of nHalfMoves: ScanBoard, and the side that is not to move
    /// must not stand in check. Throws ChessException.
    void CheckStartPosition(std::uint16_t nHalfMoves, bool bResetHeuristics);

    /// True when queens plus pawns of each colour are at most 9. Otherwise asks the user, if there
    /// is somebody to ask, or prints the note to pNotes and returns true.
    bool CheckFigureLimits(const TQuestion& question, std::FILE* pNotes = stdout) const;

    /// The root of the problem: that of the thread's run, else the top of the chain of parents.
    const TChessboard& GetRootBoard() const;

    /// True when the first two White bishops stand on squares of one colour.
    bool HasTwoBishopsOfOneColour() const;

    /// Fills the lists of White's figures from m_board and makes them valid. White must not have
    /// more figures than the lists hold.
    void RebuildWhiteLists();

    /// Replaces the position by its image left to right. The record must be a root.
    void MirrorBoard();

    TSquare WhiteKing() const { return MakeSquare(m_whiteKingFile, m_whiteKingRow); }
    TSquare BlackKing() const { return MakeSquare(m_blackKingFile, m_blackKingRow); }
    bool IsWhiteToMove() const { return m_nMoves & 1; }
    EColour SideToMove() const { return IsWhiteToMove() ? EColour::White : EColour::Black; }
    int BlackKingRing() const { return (m_boardFlags & RING_MASK) >> RING_SHIFT; }
    void StoreBlackKingRing();

    /// The count that a figure byte belongs to. Not for kings.
    std::uint8_t& CountOf(TFigure figure);
    std::uint8_t CountOf(TFigure figure) const;

    // Attacks (attacks.cpp)

    bool IsAttackedByWhite(std::int8_t file, std::int8_t row) const;
    bool IsAttackedByBlack(std::int8_t file, std::int8_t row) const;

    /// For a king on (file, row): NO_CHECK, the square of the only attacker of the other side, or
    /// DOUBLE_CHECK. File and row of each attacker, kings first, then pawns, knights, diagonals and
    /// lines, are appended to pList as pairs of bytes when that is not null, and *pCount rises by
    /// their number.
    std::int8_t GetWhiteKingChecker(std::int8_t file, std::int8_t row, std::int8_t* pList = nullptr,
                                    std::uint8_t* pCount = nullptr) const;
    std::int8_t GetBlackKingChecker(std::int8_t file, std::int8_t row, std::int8_t* pList = nullptr,
                                    std::uint8_t* pCount = nullptr) const;

    /// Would the figure on this square, if taken away, open a line of a slider of the other side to
    /// its own king?
    bool IsPinnedToWhiteKing(std::int8_t file, std::int8_t row) const;
    bool IsPinnedToBlackKing(std::int8_t file, std::int8_t row) const;

    // Rights that follow from the line (rights.cpp)

    /// CASTLING_... for a side. What the root position allows counts as allowed.
    int GetCastlingRights(bool bWhite) const;

    /// The square of the pawn that can be captured en passant because the last move was its double
    /// step, or NO_SQUARE. Whether a pawn stands beside it is not looked at.
    TSquare DoubleSteppedPawn() const;

    /// The nearest record further up the line with this position, the same side to move and the
    /// same rights of Black to castle, and no pawn move and no capture in between; or null.
    const TChessboard* FindEarlierOccurrence() const;

    bool IsRepetition() const { return FindEarlierOccurrence() != nullptr; }

    // Generation (generate.cpp): pseudo-legal moves in a fixed order; the lists have the room of a
    // TMoveList. A square that holds no figure of the side gives no move.

    int GenerateWhiteFigureMoves(TSquare square, TMove* pOut) const;
    int GenerateBlackFigureMoves(TSquare square, TMove* pOut) const;
    int GenerateWhiteKingMoves(std::int8_t file, std::int8_t row, TMove* pOut) const;
    int GenerateBlackKingMoves(std::int8_t file, std::int8_t row, TMove* pOut) const;
    int GenerateWhitePawnMoves(std::int8_t file, std::int8_t row, TMove* pOut) const;
    int GenerateBlackPawnMoves(std::int8_t file, std::int8_t row, TMove* pOut) const;
    int GenerateWhiteKnightMoves(std::int8_t file, std::int8_t row, TMove* pOut) const;
    int GenerateBlackKnightMoves(std::int8_t file, std::int8_t row, TMove* pOut) const;
    int GenerateWhiteRookMoves(TSquare square, TMove* pOut) const;
    int GenerateBlackRookMoves(TSquare square, TMove* pOut) const;
    int GenerateWhiteBishopMoves(TSquare square, TMove* pOut) const;
    int GenerateBlackBishopMoves(TSquare square, TMove* pOut) const;

    /// The whole list for a side in check.
    int GenerateWhiteEvasions(TMove* pOut) const;
    int GenerateBlackEvasions(TMove* pOut) const;

    /// The moves of the next White figure at *pNextSquare or behind it that has any, appended to
    /// pOut[*pCount]; true until the board is exhausted. With White in check: adds all evasions and
    /// returns false.
    bool GetNextWhiteMoves(TMove* pOut, std::uint8_t* pCount, std::uint8_t* pNextSquare) const;

    /// All moves of White, square by square upward; in check the evasions.
    int GenerateWhiteMoves(TMove* pOut) const;

    /// All moves of Black, square by square upward; in check the evasions. With a move filter in
    /// force and no check, a null move of the king ends the list.
    int GenerateBlackMoves(TMove* pOut) const;

    /// Figures of White, other than the king, that can move to an empty square, pawn steps included
    /// and en passant not.
    TSquareSet GetWhiteMoversToSquare(TSquare square) const;
    TSquareSet GetBlackMoversToSquare(TSquare square) const;

    // Making moves (makemove.cpp). The receiver is a fresh copy of its parent (TLineContext); a
    // move is pseudo-legal. False: the move is illegal or refused, and the copy is garbage.

    bool MakeWhiteMove(TMove* pMove);
    bool MakeBlackMove(TMove* pMove, bool bSkipLegalityTest = false);

    /// MakeWhiteMove without the book-keeping of the thread, for those who only need to know
    /// whether a move mates.
    bool MakeWhiteMoveLight(TMove* pMove);

    /// White passes.
    void MakeWhiteNullMove();

    /// Moves that a user makes: as the pair above, but every legal move is made, whatever the
    /// search thinks of its worth.
    bool MakeWhiteUserMove(TMove* pMove);
    bool MakeBlackUserMove(TMove* pMove);

    // Mate (mate.cpp)

    /// Black, who stands in check, has a legal move.
    bool CanBlackEscapeCheck() const;

    /// A figure of Black, other than the king and not pinned, can move to this empty square.
    bool CanBlackMoveToSquare(TSquare square) const;
};

static_assert(sizeof(TChessboard) == 144);
static_assert(std::is_trivially_copyable_v<TChessboard> && std::is_standard_layout_v<TChessboard>);
static_assert(offsetof(TChessboard, m_board) == 0);
static_assert(offsetof(TChessboard, m_pRequest) == 64);
static_assert(offsetof(TChessboard, m_trackedSquares) == 72);
static_assert(offsetof(TChessboard, m_pParent) == 80);
static_assert(offsetof(TChessboard, m_pThread) == 88);
static_assert(offsetof(TChessboard, m_LastMove) == 96);
static_assert(offsetof(TChessboard, m_nMoves) == 100);
static_assert(offsetof(TChessboard, m_nInitialMoves) == 102);
static_assert(offsetof(TChessboard, m_nHeuristics) == 104);
static_assert(offsetof(TChessboard, m_nHeuristicsParams) == 108);
static_assert(offsetof(TChessboard, m_nPositionFlags) == 112);
static_assert(offsetof(TChessboard, m_boardFlags) == 114);
static_assert(offsetof(TChessboard, m_moveFilter) == 116);
static_assert(offsetof(TChessboard, m_nPass) == 117);
static_assert(offsetof(TChessboard, m_whiteKingFile) == 118);
static_assert(offsetof(TChessboard, m_whiteKingRow) == 119);
static_assert(offsetof(TChessboard, m_blackKingFile) == 120);
static_assert(offsetof(TChessboard, m_blackKingRow) == 121);
static_assert(offsetof(TChessboard, m_whiteChecker) == 122);
static_assert(offsetof(TChessboard, m_blackChecker) == 123);
static_assert(offsetof(TChessboard, m_nWhiteQueens) == 124);
static_assert(offsetof(TChessboard, m_nBlackPawns) == 133);
static_assert(offsetof(TChessboard, m_whiteRookSquares) == 134);
static_assert(offsetof(TChessboard, m_whiteBishopSquares) == 136);
static_assert(offsetof(TChessboard, m_whiteKnightSquares) == 138);
static_assert(offsetof(TChessboard, m_whiteQueenSquare) == 140);
static_assert(offsetof(TChessboard, m_bWhiteSquaresValid) == 141);

namespace detail
{

/// Distance of a figure's count from m_nWhiteQueens, by figure byte.
struct TCountOffsets
{
    std::uint8_t m_aOffset[256] = {};

    constexpr TCountOffsets()
    {
        constexpr TFigure aKinds[5] = {KIND_QUEEN, KIND_ROOK, KIND_BISHOP, KIND_KNIGHT, KIND_PAWN};
        for (int i = 0; i < 5; ++i) {
            m_aOffset[COLOUR_WHITE | aKinds[i]] = static_cast<std::uint8_t>(2 * i);
            m_aOffset[COLOUR_BLACK | aKinds[i]] = static_cast<std::uint8_t>(2 * i + 1);
        }
    }
};
inline constexpr TCountOffsets g_countOffsets;

} // namespace detail

inline std::uint8_t& TChessboard::CountOf(TFigure figure)
{
    return reinterpret_cast<std::uint8_t*>(
        this)[offsetof(TChessboard, m_nWhiteQueens) + detail::g_countOffsets.m_aOffset[figure]];
}

inline std::uint8_t TChessboard::CountOf(TFigure figure) const
{
    return const_cast<TChessboard*>(this)->CountOf(figure);
}

inline void TChessboard::StoreBlackKingRing()
{
    m_boardFlags = static_cast<std::uint16_t>((m_boardFlags & ~RING_MASK) |
                                              Ring(m_blackKingFile, m_blackKingRow) << RING_SHIFT);
}

} // namespace corvina

#endif
