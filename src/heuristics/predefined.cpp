#include "heuristics/predefined.h"

#include "chess/exception.h"
#include "chess/fen.h"
#include "chess/square.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/unblock.h"
#include "problems/lexer.h"
#include "search/hooks.h"
#include "search/solverequest.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace corvina
{
namespace
{

/// The signature of what stands when the settings are done, or when one of them has failed.
class TSignatureHold
{
public:
    explicit TSignatureHold(TChessboard& board) : m_board(board) {}
    ~TSignatureHold() { m_board.m_nHeuristicsParams = ComputeHeurParams(m_board); }
    TSignatureHold(const TSignatureHold&) = delete;
    TSignatureHold& operator=(const TSignatureHold&) = delete;

private:
    TChessboard& m_board;
};

/// Takes the prefix off the text.
bool TakePrefix(std::string_view& strText, std::string_view strPrefix)
{
    if (!strText.starts_with(strPrefix))
        return false;
    strText.remove_prefix(strPrefix.size());
    return true;
}

std::string_view UpToBracket(std::string_view strText)
{
    return strText.substr(0, strText.find(')'));
}

/// A file in either letter case and a rank; NO_SQUARE for anything else.
TSquare SquareFrom(std::string_view strText)
{
    if (strText.size() < 2)
        return NO_SQUARE;
    const char file = strText[0], row = strText[1];
    const int nFile = file >= 'a' && file <= 'h'   ? file - 'a'
                      : file >= 'A' && file <= 'H' ? file - 'A'
                                                   : -1;
    return nFile < 0 || row < '1' || row > '8' ? NO_SQUARE
                                               : static_cast<TSquare>(MakeSquare(nFile, row - '1'));
}

std::vector<TSquare> SquaresOf(std::string_view strList)
{
    std::vector<TSquare> vecSquares;
    for (std::size_t i = 0; i < strList.size();) {
        if (std::string_view(" ,\t").find(strList[i]) != std::string_view::npos) {
            ++i;
            continue;
        }
        vecSquares.push_back(SquareFrom(strList.substr(i)));
        if (vecSquares.back() == NO_SQUARE)
            throw ChessException("Invalid square description at index " + std::to_string(i));
        i += 2;
    }
    return vecSquares;
}

/// The pawns come first: the list has eight places, and a pawn that runs does the most harm.
void ListFigures(const std::vector<TSquare>& vecSquares, TChessboard& board)
{
    for (const bool bPawns : {true, false}) {
        for (const TSquare square : vecSquares) {
            if ((board.m_board[square] == BLACK_PAWN) == bPawns &&
                ApplyUnblockDynamically(board, square))
                ContextOf(board).m_bUnblockListSet = true;
        }
    }
}

/// Half-moves of a short mate; empty for a text that is no number.
std::optional<std::int16_t> ShortMateDepth(std::string_view strText)
{
    const bool bMoves = TakePrefix(strText, "#");
    const char* pEnd = strText.data() + strText.size();
    long long n = 0;
    const auto [pRead, error] = std::from_chars(strText.data(), pEnd, n);
    if (error != std::errc() || pRead != pEnd)
        return std::nullopt;
    constexpr long long MAX_DEPTH = std::numeric_limits<std::int16_t>::max();
    n = std::clamp<long long>(n, 0, MAX_DEPTH);
    if (bMoves)
        n = 2 * n - 1;
    return static_cast<std::int16_t>(n < 1 ? -1 : std::min(n, MAX_DEPTH));
}

void SwapHeuristics(TChessboard& board, std::uint32_t nOut, std::uint32_t nIn)
{
    board.m_nHeuristics = (board.m_nHeuristics & ~nOut) | nIn;
}

/// The forms of the king's heuristic, which exclude each other; false for another setting.
bool ApplyKingForm(std::string_view strSetting, TChessboard& board)
{
    TThreadContext& context = ContextOf(board);
    if (strSetting.starts_with("AssertBKS")) {
        SwapHeuristics(board, SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE,
                       SH_ASSERTBLACKKINGSURROUNDED);
        context.m_bSurroundedStrict = strSetting == "AssertBKS(strict)";
    }
    else if (strSetting.starts_with("ExtEdge")) {
        SwapHeuristics(board, SH_KEEPKINGONTHEEDGE | SH_ASSERTBLACKKINGSURROUNDED,
                       SH_KEEPKINGWITHINEXTEDGE);
    }
    else if (strSetting.starts_with("DontLetKingMove")) {
        SwapHeuristics(board, SH_KEEPKINGWITHINEXTEDGE | SH_ASSERTBLACKKINGSURROUNDED,
                       SH_KEEPKINGONTHEEDGE);
        context.m_bKingMustNotMove = true;
    }
    else {
        return false;
    }
    return true;
}

} // namespace

bool TPredefinedTables::Has(const TChessboard& board) const
{
    const std::string strFen = WriteFen(board, true);
    return m_predefinedHeuristics.contains(strFen) || m_predefinedLines.contains(strFen) ||
           m_predefinedSubpositions.contains(strFen);
}

void ApplyPredefinedSetting(std::string_view strSetting, TChessboard& board, TPredefinedRun& run)
{
    std::string_view strRest = strSetting;
    if (TakePrefix(strRest, "DLFU(")) {
        ListFigures(SquaresOf(UpToBracket(strRest)), board);
    }
    else if (UpperCased(strSetting) == "SAFEMODE") {
        run.m_bSafeMode = true;
    }
    else if (TakePrefix(strRest, "DontLetPromotedQueenMove")) {
        const bool bOut = strRest.starts_with(" NO");
        SwapHeuristics(board, SH_DONTLETPROMOTEDQUEENMOVE, bOut ? 0 : SH_DONTLETPROMOTEDQUEENMOVE);
    }
    else if (TakePrefix(strRest, "LFQMDepth(")) {
        if (const auto shDepth = ShortMateDepth(UpToBracket(strRest)))
            run.m_shLookForQuickerMateDepth = shDepth;
    }
    else {
        ApplyKingForm(strSetting, board);
    }
}

void ApplyPredefinedAdditionalHeuristics(TChessboard& board, TPredefinedRun& run)
{
    const TPredefinedTables* pTables = board.m_pRequest->m_pPredefinedTables;
    if (!pTables)
        return;
    const auto row = pTables->m_predefinedHeuristics.find(WriteFen(board, true));
    if (row == pTables->m_predefinedHeuristics.end())
        return;
    const TSignatureHold hold(board);
    for (const std::string& strSetting : row->second)
        ApplyPredefinedSetting(strSetting, board, run);
}

} // namespace corvina
