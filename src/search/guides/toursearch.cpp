#include "search/guides/toursearch.h"

#include "search/guides/prooftable.h"
#include "search/shortmate.h"

#include <algorithm>
#include <bit>

namespace corvina
{
namespace
{

constexpr std::uint8_t g_anKingMoves[] = {2, 4, 8};

constexpr std::uint32_t FIRST_MAX_NODES = 1 << 14;
constexpr std::uint32_t GROWTH = 4; ///< of the graphs from round to round
constexpr std::uint32_t FIRST_SOLVE = 1 << 12;

/// A bit for each kind of man.
std::uint8_t KindBit(TFigure figure)
{
    switch (figure & KIND_MASK) {
    case KIND_QUEEN:
        return 1;
    case KIND_ROOK:
        return 2;
    case KIND_BISHOP:
        return 4;
    case KIND_KNIGHT:
        return 8;
    case KIND_KING:
        return 16;
    default:
        return 32;
    }
}

/// Black's figures with a move by the rules of the figures, king and pawns left out.
int CountMovableFigures(const TChessboard& board, const TMove* pMoves, int nMoves)
{
    TSquareSet figures = 0;
    for (int i = 0; i < nMoves; ++i) {
        const TFigure kind = board.m_board[pMoves[i].m_from] & KIND_MASK;
        if (kind != KIND_KING && kind != KIND_PAWN)
            figures |= Bit(pMoves[i].m_from);
    }
    return std::popcount(figures);
}

} // namespace

TTourSearch::TTourSearch(const TChessboard& root, std::uint16_t nThreadId)
    : TSideSearch(root, nThreadId), m_nMaxNodes(FIRST_MAX_NODES)
{
    TMoveList moves;
    m_nMovableFigures =
        CountMovableFigures(m_board, moves.data(), m_board.GenerateBlackMoves(moves.data()));
    MakePatterns();
    BeginPattern();
}

void TTourSearch::MakePatterns()
{
    std::uint8_t nAll = 0;
    for (const TFigure figure : m_board.m_board) {
        if (figure & COLOUR_WHITE)
            nAll |= KindBit(figure);
    }
    m_nOtherKinds = static_cast<std::uint8_t>(~nAll);
    for (unsigned nKinds = 1; nKinds <= nAll; ++nKinds) {
        const bool bSmall = std::popcount(nKinds) <= 2 || nKinds == nAll;
        if ((nKinds & ~nAll) != 0 || !bSmall)
            continue;
        for (const std::uint8_t nKingMoves : g_anKingMoves)
            m_vecPatterns.push_back({static_cast<std::uint8_t>(nKinds), nKingMoves});
    }
    std::stable_sort(m_vecPatterns.begin(), m_vecPatterns.end(),
                     [](const TPattern& a, const TPattern& b) {
                         return std::popcount(a.m_nKinds) < std::popcount(b.m_nKinds);
                     });
}

/// The graph of the pattern at hand is worth a search: no smaller one has been too large.
bool TTourSearch::BeginPattern()
{
    const TPattern& pattern = m_vecPatterns[m_nPattern];
    if (pattern.m_bDone ||
        std::any_of(m_vecPatterns.begin(), m_vecPatterns.end(), [&](const TPattern& smaller) {
            return smaller.m_bTooLarge && pattern.Includes(smaller);
        }))
        return false;
    m_graph.reset(); // not two at a time
    m_graph.emplace(m_nMaxNodes + MAX_MOVES * MAX_MOVES);
    m_queOpen.clear();
    m_graph->Add(TProofTable::KeyOf(m_board), 0);
    m_queOpen.push_back(m_board);
    m_nNext = 0;
    m_nNextSolve = FIRST_SOLVE;
    return true;
}

/// False: none is left.
bool TTourSearch::NextPattern()
{
    for (;;) {
        if (++m_nPattern == m_vecPatterns.size()) {
            if (!m_bGrowing)
                return false;
            m_bGrowing = false;
            m_nMaxNodes *= GROWTH;
            m_nPattern = 0;
            for (TPattern& pattern : m_vecPatterns)
                pattern.m_bTooLarge = false;
        }
        if (BeginPattern())
            return true;
    }
}

/// Lists the positions behind Black's replies; false when there is none, or when the pattern
/// doesn't allow them.
bool TTourSearch::ListReplies(TChessboard& board)
{
    TMoveList moves;
    const int nMoves = board.GenerateBlackMoves(moves.data());
    if (CountMovableFigures(board, moves.data(), nMoves) > m_nMovableFigures)
        return false;
    m_vecReplies.clear();
    int nKingMoves = 0;
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = m_context.MakeChild(board);
        if (!child.MakeBlackMove(&moves[i]))
            continue;
        if (board.m_board[moves[i].m_from] == BLACK_KING &&
            ++nKingMoves > m_vecPatterns[m_nPattern].m_nKingMoves)
            return false;
        m_vecReplies.push_back(child);
    }
    m_context.m_nPositions += m_vecReplies.size();
    return !m_vecReplies.empty();
}

/// Adds White's moves that the pattern allows, with the positions behind them.
void TTourSearch::Expand(std::uint32_t nNode)
{
    TChessboard board = m_queOpen.front();
    m_queOpen.pop_front();
    const int nLevel = m_graph->LevelOf(nNode);
    if (2 * nLevel >= m_board.m_nMoves)
        return;
    if (IsMateInOne(board)) {
        m_graph->AddMateInOne(nNode);
        return;
    }
    const int nKinds = m_vecPatterns[m_nPattern].m_nKinds | m_nOtherKinds;
    TMoveList moves;
    const int nMoves = board.GenerateWhiteMoves(moves.data());
    for (int i = 0; i < nMoves; ++i) {
        if (!(KindBit(board.m_board[moves[i].m_from]) & nKinds))
            continue;
        TChessboard& child = m_context.MakeChild(board);
        if (!child.MakeWhiteMove(&moves[i]) || !ListReplies(child))
            continue;
        m_vecReplyNodes.clear();
        for (TChessboard& reply : m_vecReplies) {
            const std::uint32_t nReply = m_graph->Add(TProofTable::KeyOf(reply), nLevel + 1);
            m_vecReplyNodes.push_back(nReply);
            if (nReply != m_nNext + m_queOpen.size())
                continue; // known
            // Nothing but the last move counts of the way to it: no right to castle is left.
            reply.m_pParent = &m_board;
            reply.m_nMoves = m_board.m_nMoves;
            m_queOpen.push_back(reply);
        }
        m_graph->AddMove(nNode, static_cast<std::uint8_t>(i), m_vecReplyNodes);
    }
}

/// The root has a mate in the moves that are left.
bool TTourSearch::SolveGraph()
{
    if (!m_graph->Solve([this] { return IsStopped(); }))
        return false;
    const int nMate = m_graph->MateOf(0);
    return nMate != 0 && 2 * nMate - 1 <= m_board.m_nMoves;
}

/// The pattern at hand has no mate, or its graph is too large.
TTourSearch::EAnswer TTourSearch::EndOfGraph()
{
    if (SolveGraph())
        return EAnswer::Mate;
    if (IsStopped())
        return EAnswer::Open;
    TPattern& pattern = m_vecPatterns[m_nPattern];
    pattern.m_bDone = m_queOpen.empty();
    pattern.m_bTooLarge = !pattern.m_bDone;
    m_bGrowing |= m_graph->Size() >= m_nMaxNodes;
    return NextPattern() ? EAnswer::Open : EAnswer::GivenUp;
}

TTourSearch::EAnswer TTourSearch::Search(std::uint64_t nPositions)
{
    const std::uint64_t nEnd = m_context.m_nPositions + nPositions;
    while (m_context.m_nPositions < nEnd && !IsStopped()) {
        const bool bFull = m_graph->Size() >= m_nMaxNodes || m_graph->Bytes() >= m_nMaxBytes;
        if (m_queOpen.empty() || bFull) {
            const EAnswer answer = EndOfGraph();
            if (answer != EAnswer::Open)
                return answer;
            continue;
        }
        if (m_graph->Size() >= m_nNextSolve) {
            m_nNextSolve *= 2;
            if (SolveGraph())
                return EAnswer::Mate;
        }
        Expand(m_nNext++);
        ++m_context.m_nPositions;
    }
    return EAnswer::Open;
}

TSideSearch::TKnownMate TTourSearch::FindMate(const TChessboard& board) const
{
    const std::uint32_t nNode = m_graph->Find(TProofTable::KeyOf(board));
    if (nNode == TTourGraph::NO_NODE)
        return {};
    return {m_graph->MateOf(nNode), m_graph->MoveOf(nNode)};
}

} // namespace corvina
