#include "search/guides/graphsearch.h"

#include "search/guides/prooftable.h"
#include "search/line.h"
#include "search/shortmate.h"

#include <algorithm>
#include <array>

namespace corvina
{
namespace
{

/// A round grows the graph by this share, since before the next one all of it is gone through.
constexpr std::size_t GROWTH_DIVISOR = 200;
constexpr std::size_t MIN_GROWTH = 100;

/// TMateGraph::Update, as long as no mate is known.
constexpr int DEPTH_DIVISOR = 4;

/// With a mate that is too long they take turns, so many rounds each.
constexpr std::array g_anDepthDivisors = {4, 2, 1, 8};
constexpr int ROUNDS_OF_DIVISOR = 60;

/// Of more replies only those that the rules of the figures allow are counted.
constexpr int MAX_COUNTED_REPLIES = 8;

} // namespace

TGraphSearch::TGraphSearch(const TChessboard& root, std::uint16_t nThreadId)
    : TSideSearch(root, nThreadId), m_graph((root.m_nMoves + 1) / 2)
{
    m_graph.Add(TProofTable::KeyOf(m_board));
    m_boards.push_back(TPackedBoard(m_board));
}

int TGraphSearch::DepthDivisor() const
{
    if (!m_bTooLong)
        return DEPTH_DIVISOR;
    return g_anDepthDivisors[static_cast<std::size_t>(m_nRound / ROUNDS_OF_DIVISOR) %
                             g_anDepthDivisors.size()];
}

/// Goes through the graph and chooses where it grows.
TGraphSearch::EAnswer TGraphSearch::BeginRound()
{
    const auto isStopped = [this] { return IsStopped(); };
    do {
        if (!m_graph.Update(DepthDivisor(), isStopped))
            return EAnswer::Open;
        const int nMate = m_graph.MateOf(0);
        if (nMate && 2 * nMate - 1 <= m_board.m_nMoves)
            return EAnswer::Mate;
        m_bTooLong = nMate != 0;
        ++m_nRound;
        m_nDone = 0;
        m_choice = m_graph.Choose(std::max(MIN_GROWTH, m_nGrown / GROWTH_DIVISOR), isStopped);
    } while (m_choice.m_bAgain && !IsStopped());
    const bool bEmpty = m_choice.m_vecNodes.empty() && m_choice.m_vecMoves.empty();
    const bool bFull = m_graph.Bytes() + m_boards.size() * sizeof(TPackedBoard) >= m_nMaxBytes;
    return (bEmpty || bFull) && !IsStopped() ? EAnswer::GivenUp : EAnswer::Open;
}

TGraphSearch::EAnswer TGraphSearch::Search(std::uint64_t nPositions)
{
    const std::uint64_t nEnd = m_context.m_nPositions + nPositions;
    while (m_context.m_nPositions < nEnd && !IsStopped()) {
        if (GrowByOne())
            continue;
        const EAnswer answer = BeginRound();
        if (answer != EAnswer::Open)
            return answer;
    }
    return EAnswer::Open;
}

/// False: the choice is done with.
bool TGraphSearch::GrowByOne()
{
    const std::size_t nNodes = m_choice.m_vecNodes.size();
    if (m_nDone == nNodes + m_choice.m_vecMoves.size())
        return false;
    const std::size_t nNext = m_nDone++;
    ++m_context.m_nPositions;
    if (nNext < nNodes)
        Expand(m_choice.m_vecNodes[nNext]);
    else
        Open(m_choice.m_vecMoves[nNext - nNodes]);
    return true;
}

TChessboard TGraphSearch::BoardOf(std::uint32_t nNode) const
{
    TChessboard board = m_board;
    if (nNode == 0)
        return board;
    m_boards[nNode].Unpack(board);
    // Nothing but the last move counts of the way to it: no right to castle is left.
    const auto last = m_mapLastMoves.find(nNode);
    board.RescanBoard(false);
    board.m_LastMove = last != m_mapLastMoves.end() ? last->second : TMove{};
    board.m_pParent = const_cast<TChessboard*>(&m_board);
    return board;
}

/// Legal replies, or about as many; 0: none.
int TGraphSearch::CountReplies(TChessboard& board)
{
    TMoveList moves;
    const int nMoves = board.GenerateBlackMoves(moves.data());
    if (nMoves > MAX_COUNTED_REPLIES)
        return nMoves;
    const auto isLegal = [&](TMove& move) {
        return m_context.MakeChild(board).MakeBlackMove(&move);
    };
    return static_cast<int>(std::count_if(moves.data(), moves.data() + nMoves, isLegal));
}

/// Gives a node its moves, or finds a mate in one.
void TGraphSearch::Expand(std::uint32_t nNode)
{
    if (!m_graph.IsOpen(nNode))
        return;
    ++m_nGrown;
    TChessboard board = BoardOf(nNode);
    if (IsMateInOne(board)) {
        m_graph.AddMateInOne(nNode);
        return;
    }
    m_graph.BeginMoves(nNode);
    TMoveList moves;
    const int nMoves = board.GenerateWhiteMoves(moves.data());
    m_context.m_nPositions += static_cast<std::uint64_t>(nMoves);
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& child = m_context.MakeChild(board);
        if (!child.MakeWhiteMove(&moves[i]))
            continue;
        if (const int nReplies = CountReplies(child))
            m_graph.AddMove(static_cast<std::uint8_t>(i), nReplies);
    }
}

/// Puts the positions behind Black's replies into the graph.
void TGraphSearch::Open(std::uint32_t nMove)
{
    if (m_graph.IsOpened(nMove))
        return;
    TChessboard board = BoardOf(m_graph.NodeOfMove(nMove));
    TMoveList moves;
    board.GenerateWhiteMoves(moves.data());
    TChessboard& child = m_context.MakeChild(board);
    child.MakeWhiteMove(&moves[m_graph.IndexOfMove(nMove)]);
    const int nMoves = child.GenerateBlackMoves(moves.data());
    m_vecReplyNodes.clear();
    for (int i = 0; i < nMoves; ++i) {
        TChessboard& reply = m_context.MakeChild(child);
        if (!reply.MakeBlackMove(&moves[i]))
            continue;
        ++m_context.m_nPositions;
        const std::uint32_t nReply = m_graph.Add(TProofTable::KeyOf(reply));
        m_vecReplyNodes.push_back(nReply);
        if (nReply < m_boards.size())
            continue;
        m_boards.push_back(TPackedBoard(reply));
        if (!IsRegisterable(reply))
            m_mapLastMoves.emplace(nReply, reply.m_LastMove);
    }
    m_graph.OpenMove(nMove, m_vecReplyNodes);
}

TSideSearch::TKnownMate TGraphSearch::FindMate(const TChessboard& board) const
{
    const std::uint32_t nNode = m_graph.Find(TProofTable::KeyOf(board));
    if (nNode == TMateGraph::NONE)
        return {};
    return {m_graph.MateOf(nNode), m_graph.MoveOf(nNode)};
}

} // namespace corvina
