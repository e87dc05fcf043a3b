#include "search/guides/proofsearch.h"

#include "heuristics/attacksets.h"
#include "search/guides/proofwalk.h"
#include "search/indications.h"
#include "search/rootsetup.h"

#include <algorithm>
#include <bitset>
#include <limits>

namespace corvina
{
namespace
{

constexpr std::uint32_t INFINITE = TProofNumbers::INFINITE;

/// Where a sort indication tells White's move, any other must look so much easier to be tried: one
/// that is part of a line of the solution is hardly ever wrong.
constexpr std::uint32_t WEIGHT_BEHIND_INDICATED = 8, WEIGHT_BESIDE_LINE = 32;

/// Tasks of so many half-moves are searched without what the next two add: there it leads the
/// search astray.
constexpr int LONG_PLIES = 2 * 36 - 1;

/// A position of Black that hasn't been looked into costs one proof more for so many further
/// replies: each is one more to be shown, but most of them lead to the same.
constexpr std::uint32_t REPLIES_OF_ONE = 4;

/// The search stays with a child until it looks worse than the next best by more than one in so
/// many: each time it comes back, the moves are made again (the 1 + epsilon of Pawlewicz and Lew,
/// Improving depth-first PN-search, 2007).
constexpr std::uint32_t PATIENCE = 16;

/// A number times a weight, short of infinity.
std::uint32_t Weighted(std::uint32_t nNumber, std::uint64_t nWeight)
{
    return nNumber >= INFINITE ? INFINITE
                               : static_cast<std::uint32_t>(
                                     std::min<std::uint64_t>(INFINITE - 1, nNumber * nWeight));
}

/// Black's moves by the rules of the figures, of a Black who isn't in check.
struct TReplies
{
    int m_nReplies = 0;
    bool m_bSurelyLegal = false; ///< a man moves that can't be pinned

    explicit TReplies(const TChessboard& board)
    {
        using B = TSide<EColour::Black>;
        const TSquareSet occupied = TSets::Occupied(board.m_board);
        const TSquareSet own = B::Figures(board.m_board);
        const TSquareSet free =
            ~(g_geometry.m_aBishop[board.BlackKing()] | g_geometry.m_aRook[board.BlackKing()]);
        TSquareSet men = own;
        while (men) {
            const TSquare from = PopLowestSquare(men);
            const TFigure kind = board.m_board[from] & KIND_MASK;
            const TSquareSet targets = kind == KIND_PAWN
                                           ? PawnTargets(from, occupied, occupied & ~own)
                                           : AttacksOf<EColour::Black>(kind, from, occupied) & ~own;
            m_nReplies += std::popcount(targets);
            m_bSurelyLegal |= targets && kind != KIND_KING && (free & Bit(from));
        }
    }

private:
    static TSquareSet PawnTargets(int from, TSquareSet occupied, TSquareSet white)
    {
        constexpr int HOME_ROW = TSide<EColour::Black>::HOME_ROW;
        TSquareSet steps = Bit(from) >> 8 & ~occupied;
        if (RowOf(from) == HOME_ROW)
            steps |= steps >> 8 & ~occupied;
        return steps | (PawnAttacks(EColour::Black, from) & white);
    }
};

/// Number of the kind that decides for the side to move by its least child.
std::uint32_t& Own(TProofNumbers& numbers, bool bWhite)
{
    return bWhite ? numbers.m_nProof : numbers.m_nDisproof;
}

std::uint32_t& Other(TProofNumbers& numbers, bool bWhite)
{
    return bWhite ? numbers.m_nDisproof : numbers.m_nProof;
}

/// A visit of a thread, which keeps the others away while there is something as good.
class TVisit
{
public:
    explicit TVisit(std::atomic<std::uint8_t>& nVisitors) : m_nVisitors(nVisitors)
    {
        m_nVisitors.fetch_add(1, std::memory_order_relaxed);
    }
    ~TVisit() { m_nVisitors.fetch_sub(1, std::memory_order_relaxed); }
    TVisit(const TVisit&) = delete;
    TVisit& operator=(const TVisit&) = delete;

private:
    std::atomic<std::uint8_t>& m_nVisitors;
};

} // namespace

TProofSearch::TProofSearch(const TChessboard& root, TProofTable& table, std::uint16_t nThreadId)
    : m_request(*root.m_pRequest), m_table(table), m_context(root.m_nMoves), m_board(root),
      m_bLong(root.m_nMoves >= LONG_PLIES),
      m_bRegister(m_request.m_bUseRegister &&
                  root.m_nInitialMoves >= m_request.m_nMinRegisterPlies),
      m_vecChildren(root.m_nMoves + std::size_t{1})
{
    m_context.m_nThreadId = nThreadId;
    m_context.m_pRootBoard = &m_board;
    m_board.m_pThread = &m_context;
    m_board.m_pParent = nullptr;
    // The short mate tests leave the register alone in tasks as short as this one seems to be.
    m_board.m_nInitialMoves = 0;
    DropHeuristics(m_board);
    m_nRootKey = TProofTable::KeyOf(m_board);
}

bool TProofSearch::Make(TChessboard& child, TMove move) const
{
    return child.m_pParent->IsWhiteToMove() ? child.MakeWhiteMove(&move)
                                            : child.MakeBlackMove(&move);
}

/// Black's replies by the rules of the figures, promotions counted once; 0: none of them is legal.
int TProofSearch::CountReplies(TChessboard& board)
{
    if (board.m_blackChecker == NO_CHECK) {
        const TReplies replies(board);
        if (replies.m_bSurelyLegal)
            return replies.m_nReplies;
    }
    else if (!board.CanBlackEscapeCheck()) {
        return 0;
    }
    TMoveList moves;
    const int nMoves = board.GenerateBlackMoves(moves.data());
    const auto isLegal = [&](const TMove& move) { return Make(m_context.MakeChild(board), move); };
    const bool bAny = board.m_blackChecker != NO_CHECK ||
                      std::any_of(moves.data(), moves.data() + nMoves, isLegal);
    return bAny ? nMoves : 0;
}

/// Numbers of a position that the table doesn't know.
TProofNumbers TProofSearch::Evaluate(TChessboard& child, std::uint64_t nKey)
{
    if (!child.IsWhiteToMove()) {
        if (const int nReplies = CountReplies(child)) {
            const auto nFurther = static_cast<std::uint32_t>(nReplies - 1);
            return {1 + (m_bLong ? 0 : nFurther / REPLIES_OF_ONE), 1};
        }
        if (child.m_blackChecker == NO_CHECK) {
            m_table.StoreNoMate(nKey, TProofTable::EVER);
            return TProofNumbers::NoMate();
        }
        m_table.StoreMate(nKey, 0, TProofTable::NO_MOVE);
        return TProofNumbers::Mate();
    }
    if (IsExactMate(child)) {
        m_table.StoreMate(nKey, child.m_nMoves == EXACT_PLIES ? EXACT_PLIES : 1,
                          TProofTable::NO_MOVE);
        return TProofNumbers::Mate();
    }
    if (child.m_nMoves > EXACT_PLIES)
        return {1, 1};
    m_table.StoreNoMate(nKey, child.m_nMoves);
    return TProofNumbers::NoMate();
}

/// The legal moves with their numbers, up to the first that decides the node.
void TProofSearch::Expand(TChessboard& board, std::vector<TChild>& vecChildren)
{
    const bool bWhite = board.IsWhiteToMove();
    const int nPlies = board.m_nMoves - 1;
    TMoveList moves;
    const int nMoves =
        bWhite ? board.GenerateWhiteMoves(moves.data()) : board.GenerateBlackMoves(moves.data());
    vecChildren.clear();
    std::size_t nAsked = 0;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = m_aBatch[vecChildren.size() - nAsked];
        child = board;
        child.m_pParent = &board;
        if (!Make(child, moves[i]))
            continue;
        vecChildren.push_back(
            {moves[i], {}, TProofTable::KeyOf(child), static_cast<std::uint8_t>(i)});
        m_table.Prefetch(vecChildren.back().m_nKey, nPlies);
        if (vecChildren.size() - nAsked < BATCH)
            continue;
        if (AskForNumbers(vecChildren, nAsked, nPlies, bWhite))
            return;
        nAsked = vecChildren.size();
    }
    if (!AskForNumbers(vecChildren, nAsked, nPlies, bWhite) && bWhite)
        PutBehindIndicated(board, vecChildren);
}

/// Numbers of the children from nFirst on, whose records are the batch. True: one of them decides
/// the node, and is the only child that is left.
bool TProofSearch::AskForNumbers(std::vector<TChild>& vecChildren, std::size_t nFirst, int nPlies,
                                 bool bWhite)
{
    m_context.m_nPositions += vecChildren.size() - nFirst;
    for (std::size_t i = nFirst; i < vecChildren.size(); ++i) {
        TChild& entry = vecChildren[i];
        if (!m_table.Find(entry.m_nKey, nPlies, &entry.m_numbers))
            entry.m_numbers = Evaluate(m_aBatch[i - nFirst], entry.m_nKey);
        if (Own(entry.m_numbers, bWhite) == 0) {
            std::swap(entry, vecChildren.front());
            vecChildren.resize(1);
            return true;
        }
    }
    return false;
}

/// Moves of White beside those that the sort indications want early get a weight. One that is to be
/// tried late is no more than any other.
void TProofSearch::PutBehindIndicated(TChessboard& board, std::vector<TChild>& vecChildren)
{
    TNodeIndications indications(board, m_request.m_nRequestedMoves);
    if (!indications.Apply())
        return;
    std::bitset<MAX_MOVES + 1> early;
    for (std::size_t i = 0; i < vecChildren.size(); ++i) {
        TChessboard& child = m_context.MakeChild(board);
        Make(child, vecChildren[i].m_move);
        const auto nScore = indications.Score(child);
        early[i] = nScore && *nScore < 0;
    }
    for (std::size_t i = 0; early.any() && i < vecChildren.size(); ++i) {
        if (!early[i])
            vecChildren[i].m_nWeight =
                indications.HasMatchedLine() ? WEIGHT_BESIDE_LINE : WEIGHT_BEHIND_INDICATED;
    }
}

/// The other number is the largest of the children's and one for each further child: their sum
/// would count what lies below transpositions again and again.
TProofSearch::TChoice TProofSearch::Choose(const std::vector<TChild>& vecChildren, int nPlies,
                                           bool bWhite) const
{
    TChoice choice{{INFINITE, INFINITE}, 0, INFINITE, 0};
    std::uint32_t nLeast = INFINITE, nLargest = 0, nBestRank = INFINITE;
    for (std::size_t i = 0; i < vecChildren.size(); ++i) {
        TProofNumbers numbers = vecChildren[i].m_numbers;
        const std::uint32_t nOwn = Weighted(Own(numbers, bWhite), vecChildren[i].m_nWeight);
        const std::uint32_t nOther = Other(numbers, bWhite);
        nLargest = std::max(nLargest, nOther);
        choice.m_nOpen += nOther > 0;
        std::uint32_t nRank = nOwn;
        if (nOwn < INFINITE) {
            const auto& nVisitors = m_table.Visitors(vecChildren[i].m_nKey, nPlies - 1);
            nRank = Weighted(nOwn, 1 + nVisitors.load(std::memory_order_relaxed));
        }
        if (nRank < nBestRank) {
            nBestRank = nRank;
            choice.m_nSecond = std::min(choice.m_nSecond, nLeast);
            choice.m_nBest = static_cast<int>(i);
        }
        else {
            choice.m_nSecond = std::min(choice.m_nSecond, nOwn);
        }
        nLeast = std::min(nLeast, nOwn);
    }
    Own(choice.m_node, bWhite) = nLeast;
    Other(choice.m_node, bWhite) = nLargest >= INFINITE || choice.m_nOpen == 0
                                       ? nLargest
                                       : std::min(INFINITE - 1, nLargest + choice.m_nOpen - 1);
    return choice;
}

/// How far the numbers of the chosen child may grow before another one is better.
TProofNumbers TProofSearch::Limits(const TChoice& choice, const TChild& child, TProofNumbers limits,
                                   bool bWhite) const
{
    TProofNumbers numbers = child.m_numbers, result;
    const std::uint32_t nPatience = m_bLong ? 0 : choice.m_nSecond / PATIENCE + 1;
    const std::uint32_t nSecond = std::min(choice.m_nSecond + nPatience, INFINITE - 2);
    Own(result, bWhite) = std::max(Own(numbers, bWhite),
                                   std::min(Own(limits, bWhite) - 1, nSecond) / child.m_nWeight) +
                          1;
    const std::uint32_t nOther = Other(limits, bWhite);
    Other(result, bWhite) = std::max(Other(numbers, bWhite) + 1,
                                     nOther > choice.m_nOpen ? nOther - choice.m_nOpen + 1 : 1);
    return result;
}

/// Stores a node that its children decide.
bool TProofSearch::Settle(const TChessboard& board, std::uint64_t nKey,
                          const std::vector<TChild>& vecChildren, const TChoice& choice)
{
    if (choice.m_node.IsMate())
        m_table.StoreMate(nKey, board.m_nMoves, vecChildren[choice.m_nBest].m_nIndex);
    else if (choice.m_node.IsNoMate())
        m_table.StoreNoMate(nKey, board.m_nMoves);
    else
        return false;
    return true;
}

void TProofSearch::SearchNode(TChessboard& board, std::uint64_t nKey, TProofNumbers limits)
{
    const bool bWhite = board.IsWhiteToMove();
    const int nPlies = board.m_nMoves;
    std::vector<TChild>& vecChildren = m_vecChildren[nPlies];
    Expand(board, vecChildren);
    if (vecChildren.empty()) {
        m_table.StoreNoMate(nKey, TProofTable::EVER);
        return;
    }
    for (;;) {
        const TChoice choice = Choose(vecChildren, nPlies, bWhite);
        if (Settle(board, nKey, vecChildren, choice))
            return;
        if (choice.m_node.m_nProof >= limits.m_nProof ||
            choice.m_node.m_nDisproof >= limits.m_nDisproof || IsOver())
        {
            m_table.Store(nKey, nPlies, choice.m_node);
            return;
        }
        TChild& best = vecChildren[choice.m_nBest];
        TChessboard& child = m_context.MakeChild(board);
        Make(child, best.m_move);
        {
            const TVisit visit(m_table.Visitors(best.m_nKey, nPlies - 1));
            SearchNode(child, best.m_nKey, Limits(choice, best, limits, bWhite));
        }
        // Lost to another entry: it looks harder than it did.
        if (!m_table.Find(best.m_nKey, nPlies - 1, &best.m_numbers)) {
            best.m_numbers.m_nProof = std::min(2 * best.m_numbers.m_nProof, INFINITE - 1);
            best.m_numbers.m_nDisproof = std::min(2 * best.m_numbers.m_nDisproof, INFINITE - 1);
        }
    }
}

TProofSearch::EAnswer TProofSearch::Search(std::uint64_t nPositions)
{
    const std::uint64_t nStart = m_context.m_nPositions;
    m_nEnd = nStart + nPositions;
    SearchNode(m_board, m_nRootKey, {INFINITE - 1, INFINITE - 1});
    TProofNumbers numbers;
    if (m_table.Find(m_nRootKey, m_board.m_nMoves, &numbers)) {
        if (numbers.IsMate())
            return EAnswer::Mate;
        if (numbers.IsNoMate())
            return EAnswer::NoMate;
    }
    m_table.NotePositions(m_context.m_nPositions - nStart);
    return EAnswer::Open;
}

/// For the walk over the proof. What the table has lost is searched again.
int TProofSearch::MatingMove(TChessboard& board)
{
    const std::uint64_t nKey = TProofTable::KeyOf(board);
    int nIndex = m_table.FindMatingMove(nKey, board.m_nMoves);
    if (nIndex < 0) {
        SearchNode(board, nKey, {INFINITE - 1, INFINITE - 1});
        nIndex = m_table.FindMatingMove(nKey, board.m_nMoves);
    }
    return nIndex == TProofTable::NO_MOVE ? TProofWalk::SHORT_MATE : nIndex;
}

std::optional<TMove> TProofSearch::Confirm()
{
    m_nEnd = std::numeric_limits<std::uint64_t>::max();
    return TProofWalk(m_request, m_context, m_bRegister,
                      [this](TChessboard& board) { return MatingMove(board); })
        .Walk(m_board);
}

} // namespace corvina
