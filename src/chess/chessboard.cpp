#include "chess/chessboard.h"

#include "chess/sides.h"
#include "chess/whitelists.h"

#include <utility>

namespace corvina
{
namespace
{

constexpr const char* PAWN_ROW_TEXT = "Pawns cannot occupy 1st nor 8th line of the chessboard.";
constexpr const char* KINGS_TEXT = "Illegal number of kings.";
constexpr const char* BOTH_ATTACKED_TEXT = "Both kings attacked.";

void ClearCounts(TChessboard& b)
{
    b.m_nWhiteQueens = b.m_nBlackQueens = b.m_nWhiteRooks = b.m_nBlackRooks = 0;
    b.m_nWhiteBishops = b.m_nBlackBishops = b.m_nWhiteKnights = b.m_nBlackKnights = 0;
    b.m_nWhitePawns = b.m_nBlackPawns = 0;
}

/// Counts the figures and fills the lists and the kings' coordinates. Returns null or the text of
/// the fault.
const char* CountFigures(TChessboard& b)
{
    ClearCounts(b);
    b.m_bWhiteSquaresValid = true;
    int anKings[2] = {};
    for (TSquare square = 0; square < 64; ++square) {
        const TFigure figure = b.m_board[square];
        if (!IsFigure(figure))
            continue;
        const bool bWhite = figure & COLOUR_WHITE;
        const TFigure kind = figure & KIND_MASK;
        if (kind == KIND_KING) {
            ++anKings[bWhite];
            (bWhite ? b.m_whiteKingFile : b.m_blackKingFile) =
                static_cast<std::int8_t>(FileOf(square));
            (bWhite ? b.m_whiteKingRow : b.m_blackKingRow) =
                static_cast<std::int8_t>(RowOf(square));
            continue;
        }
        if (kind == KIND_PAWN && IsEdge(RowOf(square)))
            return PAWN_ROW_TEXT;
        if (bWhite)
            AddToWhiteLists(b, kind, square);
        ++b.CountOf(figure);
    }
    return anKings[0] == 1 && anKings[1] == 1 ? nullptr : KINGS_TEXT;
}

/// The scan of a board; returns null or the text of the fault.
const char* Scan(TChessboard& b, bool bResetHeuristics)
{
    if (const char* pFault = CountFigures(b))
        return pFault;
    b.m_whiteChecker = b.GetWhiteKingChecker(b.m_whiteKingFile, b.m_whiteKingRow);
    b.m_blackChecker = b.GetBlackKingChecker(b.m_blackKingFile, b.m_blackKingRow);
    b.m_moveFilter &= static_cast<std::uint8_t>(
        ~(TChessboard::CAPTURES_MASK << TChessboard::BLACK_CAPTURES_SHIFT |
          TChessboard::CAPTURES_MASK << TChessboard::WHITE_CAPTURES_SHIFT));
    b.StoreBlackKingRing();
    if (b.m_whiteChecker != NO_CHECK && b.m_blackChecker != NO_CHECK)
        return BOTH_ATTACKED_TEXT;
    if (bResetHeuristics) {
        b.m_nPositionFlags = 0;
        b.m_nHeuristics = 0;
    }
    return nullptr;
}

} // namespace

bool TChessboard::ScanBoard(bool bResetHeuristics)
{
    if (const char* pFault = Scan(*this, bResetHeuristics))
        throw ChessException(pFault);
    return true;
}

bool TChessboard::RescanBoard(bool bResetHeuristics)
{
    return Scan(*this, bResetHeuristics) == nullptr;
}

void TChessboard::CheckStartPosition(std::uint16_t nHalfMoves, bool bResetHeuristics)
{
    m_nMoves = nHalfMoves;
    m_nInitialMoves = nHalfMoves;
    ScanBoard(bResetHeuristics);
    if (IsWhiteToMove() && m_blackChecker != NO_CHECK)
        throw ChessException("Black king cannot be checked in the mate task starting postition.");
    if (!IsWhiteToMove() && m_whiteChecker != NO_CHECK)
        throw ChessException(
            "White king cannot be checked in the mate-defence task starting postition.");
}

bool TChessboard::CheckFigureLimits(const TQuestion& question, std::FILE* pNotes) const
{
    constexpr int MAX_QUEENS_AND_PAWNS = 9;
    if (m_nWhiteQueens + m_nWhitePawns <= MAX_QUEENS_AND_PAWNS &&
        m_nBlackQueens + m_nBlackPawns <= MAX_QUEENS_AND_PAWNS)
        return true;
    const std::string strNote =
        "Note: There are more than 9 queens and pawns of the same color. Program is able to "
        "properly handle only legal positions (in which no more than 218 moves are possible); "
        "otherwise its behaviour may be unpredictable.";
    if (question)
        return question("Question", strNote + "\nDo you want to continue anyway?");
    std::fprintf(pNotes, "%s\n", strNote.c_str());
    return true;
}

bool TChessboard::HasTwoBishopsOfOneColour() const
{
    TSquareSet bishops = TSets::Equal(m_board, WHITE_BISHOP);
    if (m_nWhiteBishops < 2 || !bishops)
        return false;
    const int nFirst = SquareColour(PopLowestSquare(bishops));
    return bishops && nFirst == SquareColour(LowestSquare(bishops));
}

void TChessboard::RebuildWhiteLists()
{
    const auto fill = [this](TFigure figure, std::int8_t* pList, int nSize) {
        TSquareSet set = TSets::Equal(m_board, figure);
        for (int i = 0; set && i < nSize; ++i)
            pList[i] = static_cast<std::int8_t>(PopLowestSquare(set));
    };
    fill(WHITE_QUEEN, &m_whiteQueenSquare, 1);
    fill(WHITE_ROOK, m_whiteRookSquares, 2);
    fill(WHITE_BISHOP, m_whiteBishopSquares, 2);
    fill(WHITE_KNIGHT, m_whiteKnightSquares, 2);
    m_bWhiteSquaresValid = true;
}

void TChessboard::MirrorBoard()
{
    for (int row = 0; row < 8; ++row) {
        for (int file = 0; file < 4; ++file)
            std::swap(m_board[MakeSquare(file, row)], m_board[MakeSquare(7 - file, row)]);
    }
    ScanBoard(false);
}

} // namespace corvina
