#include "search/indications.h"

#include "chess/movetext.h"
#include "chess/notation.h"
#include "chess/sides.h"
#include "search/hooks.h"
#include "search/movesafety.h"
#include "search/solverequest.h"

namespace corvina
{
namespace
{

/// What a pattern asks for.
class TPattern
{
public:
    explicit TPattern(const std::string& strPattern) : m_strPattern(strPattern) {}

    bool Fits(const TChessboard& board) const
    {
        int row = 7, file = 0;
        for (const char c : m_strPattern) {
            if (c == '/' && IsWholeRow(file)) {
                --row;
                file = 0;
            }
            else if (!FitsNext(board, c, row, file)) {
                return false;
            }
        }
        return IsWholeRow(file);
    }

private:
    static constexpr bool IsWholeRow(int file) { return file == 0 || file == 8; }

    /// One letter or digit; file goes behind what it tells.
    static bool FitsNext(const TChessboard& board, char c, int row, int& file)
    {
        const int nSquares = c >= '1' && c <= '8' ? c - '0' : 1;
        if (row < 0 || file + nSquares > 8)
            return false;
        const std::uint8_t* pSquare = &board.m_board[MakeSquare(file, row)];
        file += nSquares;
        if (IsLetter(c)) {
            const auto kind = KindFromLetter(c);
            return kind && *pSquare == ((c <= 'Z' ? COLOUR_WHITE : COLOUR_BLACK) | *kind);
        }
        return IsDigit(c) && std::all_of(pSquare, pSquare + nSquares, [](TFigure figure) {
                   return figure == NO_FIGURE || figure == BLACK_PAWN;
               });
    }

    const std::string& m_strPattern;
};

int ChecksOf(const TChessboard& child)
{
    return (child.m_blackChecker != NO_CHECK) + (child.m_blackChecker == DOUBLE_CHECK);
}

/// The move that led to the child is one that the item describes, wherever in the line.
bool FitsMove(const TSortIndication& item, const TChessboard& child)
{
    const TChessboard& board = *child.m_pParent;
    const TMove& move = child.m_LastMove;
    if (move.m_to != item.m_to || (item.m_from != NO_SQUARE && move.m_from != item.m_from))
        return false;
    const bool bCapture = board.m_board[move.m_to] != NO_FIGURE || move.m_bEnPassant;
    if (item.m_capture != TSortIndication::CAPTURE_OR_NOT && item.m_capture != bCapture)
        return false;
    if (item.m_figure != NO_FIGURE && item.m_figure != board.m_board[move.m_from])
        return false;
    return ChecksOf(child) >= item.m_nCheck &&
           (item.m_promotion == NO_FIGURE || item.m_promotion == move.PromotionKind());
}

/// The board, where White is to move, was reached by so many moves, which are the variant's.
bool IsOnLine(const TVariant& variant, const TChessboard& board, int nPlayed)
{
    if (nPlayed % 2 != 0 || variant.m_vecMoves.size() < static_cast<std::size_t>(nPlayed))
        return false;
    const TChessboard* p = &board;
    for (int i = nPlayed - 1; i >= 0; --i, p = p->m_pParent) {
        if (!p->m_pParent ||
            !IsSameMove(p->m_LastMove, variant.m_vecMoves[static_cast<std::size_t>(i)].m_move))
            return false;
    }
    return true;
}

/// The item isn't one of a variant that the line to the board has left.
bool MayConcern(const TSortIndication& item, const TChessboard& board, int nPlayed)
{
    return !item.m_pVariant || item.m_nMoveNumber <= 1 ||
           IsOnLine(*item.m_pVariant, board, nPlayed);
}

const std::vector<TSortIndication>* ItemsOf(const TSortIndications& indications, int nMoveNumber)
{
    const auto place = indications.m_mapItems.find(static_cast<std::uint16_t>(nMoveNumber));
    return place == indications.m_mapItems.end() ? nullptr : &place->second;
}

/// White's moves of a variant as texts, as far as the position allows them.
std::vector<std::string> MovesOfWhite(const TVariant& variant, const TChessboard& root)
{
    std::vector<std::string> vecTexts;
    const int nPlies = static_cast<int>(variant.m_vecMoves.size()) | 1;
    TLineContext line(nPlies);
    TChessboard start = root;
    start.m_pThread = &line;
    start.m_nMoves = start.m_nInitialMoves = static_cast<std::uint16_t>(nPlies);
    TChessboard* pBoard = &start;
    for (const TVariantMove& move : variant.m_vecMoves) {
        const bool bWhite = pBoard->IsWhiteToMove();
        TChessboard* pNext = nullptr;
        try {
            pNext = MakeMove(*pBoard, move.m_strText);
        }
        catch (const ChessException&) {
        }
        if (!pNext)
            break;
        if (bWhite)
            vecTexts.push_back(PrintMove(pNext->m_LastMove, *pBoard));
        pBoard = pNext;
    }
    return vecTexts;
}

/// The move to try first in the position of the board, or null.
const TPreferredMove* FindPreferred(const TSolveRequest& request, const TChessboard& board)
{
    for (const TPreferredMove& preferred : request.m_vecPreferredMoves) {
        if (std::equal(preferred.m_board.begin(), preferred.m_board.end(), board.m_board))
            return &preferred;
    }
    return nullptr;
}

} // namespace

void AddVariant(TSortIndications& target, const TVariant& variant, const TChessboard& root)
{
    const auto pVariant = std::make_shared<const TVariant>(variant);
    const std::vector<std::string> vecTexts = MovesOfWhite(variant, root);
    for (std::size_t i = vecTexts.size(); i-- > 0;) {
        TSortIndication item = ParseSortIndication(vecTexts[i]);
        item.m_nMoveNumber = static_cast<std::uint16_t>(i + 1);
        item.m_pVariant = pVariant;
        target.Add(item);
    }
}

void LoadSortIndications(TSolveRequest& request)
{
    constexpr int MAIN_VARIANT = 1, ALL_VARIANTS = 2;
    request.m_mapSortIndications = request.m_sortIndications;
    for (const bool bMain : {true, false}) {
        if (request.m_nMainVariantUse < (bMain ? MAIN_VARIANT : ALL_VARIANTS))
            return;
        for (const auto& [strName, variant] : request.m_mapVariants) {
            if (IsMainVariantName(strName) == bMain)
                AddVariant(request.m_mapSortIndications, variant, *request.m_pChessboard);
        }
    }
}

TNodeIndications::TNodeIndications(const TChessboard& board)
    : TNodeIndications(board, board.m_nInitialMoves)
{
}

TNodeIndications::TNodeIndications(const TChessboard& board, int nInitialMoves)
    : m_board(board), m_nPlayed(nInitialMoves - board.m_nMoves)
{
    if (!board.m_pRequest)
        return;
    const TSortIndications& indications = board.m_pRequest->m_mapSortIndications;
    const bool bNone = indications.empty() && board.m_pRequest->m_vecPreferredMoves.empty();
    if (bNone || ContextOf(board).m_nQuickerMateNesting != 0)
        return;
    m_pIndications = &indications;
    m_nMoveNumber = m_nPlayed / 2 + 1;
    m_pOfNumber = ItemsOf(indications, m_nMoveNumber);
    if (m_pOfNumber &&
        std::none_of(m_pOfNumber->begin(), m_pOfNumber->end(), [&](const TSortIndication& item) {
            return MayConcern(item, board, m_nPlayed);
        }))
        m_pOfNumber = nullptr;
    m_pGeneral = ItemsOf(indications, 0);
    m_pPreferred = FindPreferred(*board.m_pRequest, board);
    m_bApply = m_pOfNumber || m_pGeneral || m_pPreferred;
}

std::optional<std::int8_t> TNodeIndications::Score(const TChessboard& child)
{
    const bool bPreferred = IsPreferred(child);
    const TSortIndication* pItem = bPreferred ? nullptr : FindItem(child);
    if (!pItem && !bPreferred)
        return std::nullopt;
    m_bMatched = true;
    m_bMatchedLine |= bPreferred || pItem->m_pVariant;
    if (bPreferred)
        return INDICATED_FIRST;
    if (pItem->m_bNegated)
        return INDICATED_LAST;
    const int nLetters = CountPatternLetters(pItem->m_strPattern);
    if (nLetters <= 1)
        return INDICATED_FIRST;
    const int nScore = INDICATED_FIRST + m_pIndications->m_nLongestDescription - nLetters + 1;
    return static_cast<std::int8_t>(std::max<int>(nScore, INDICATED_FIRST));
}

bool TNodeIndications::IsPreferred(const TChessboard& child) const
{
    return m_pPreferred && IsSameMove(m_pPreferred->m_move, child.m_LastMove);
}

const TSortIndication* TNodeIndications::FindItem(const TChessboard& child) const
{
    const TSortIndication* pItem = FindItem(m_pOfNumber, child);
    return pItem ? pItem : FindItem(m_pGeneral, child);
}

const TSortIndication* TNodeIndications::FindItem(const std::vector<TSortIndication>* pItems,
                                                  const TChessboard& child) const
{
    if (!pItems)
        return nullptr;
    const auto place = std::find_if(pItems->begin(), pItems->end(),
                                    [&](const TSortIndication& item) { return Fits(item, child); });
    return place == pItems->end() ? nullptr : &*place;
}

bool TNodeIndications::Fits(const TSortIndication& item, const TChessboard& child) const
{
    if (!FitsMove(item, child) || (item.m_bNeedsEarlierItems && !FitsEarlierItems()))
        return false;
    if (!MayConcern(item, m_board, m_nPlayed))
        return false;
    // A pattern without a figure says nothing that a move could be put forward for.
    if (!item.m_strPattern.empty() &&
        ((CountPatternLetters(item.m_strPattern) == 0 && !item.m_bNegated) ||
         !TPattern(item.m_strPattern).Fits(m_board)))
        return false;
    return !item.m_bStar || !CanBeCapturedAtOnce<EColour::Black>(child);
}

bool TNodeIndications::FitsEarlierItems() const
{
    const TChessboard* pBoard = &m_board;
    for (int nMoveNumber = m_nMoveNumber - 1; nMoveNumber > 0; --nMoveNumber) {
        const TChessboard* pAfter = pBoard->m_pParent;
        if (!pAfter || !pAfter->m_pParent)
            return false;
        const auto* pItems = ItemsOf(*m_pIndications, nMoveNumber);
        if (pItems && std::none_of(pItems->begin(), pItems->end(),
                                   [&](const auto& item) { return FitsMove(item, *pAfter); }))
            return false;
        pBoard = pAfter->m_pParent;
    }
    return true;
}

int GetIndicatedMoves(TChessboard& board, TMove* pMoves)
{
    TNodeIndications indications(board);
    if (!indications.Apply())
        return 0;
    TThreadContext& context = ContextOf(board);
    TMoveList moves;
    const int nMoves = board.GenerateWhiteMoves(moves.data());
    int nIndicated = 0;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = context.MakeChild(board);
        if (!child.MakeWhiteMove(&moves[i]))
            continue;
        const TSortIndication* pItem = indications.FindItem(child);
        if (indications.IsPreferred(child) || (pItem && !pItem->m_bNegated))
            pMoves[nIndicated++] = moves[i];
    }
    return nIndicated;
}

} // namespace corvina
