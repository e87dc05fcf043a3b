#include "heuristics/heuristicbits.h"
#include "heuristics/impossibility.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/kingtailored.h"
#include "heuristics/randomsets.h"
#include "search/hooks.h"
#include "search/plainsearch.h"
#include "support/chesstest.h"

#include <array>
#include <cstring>
#include <memory>
#include <numeric>
#include <sstream>

namespace corvina
{
namespace
{

/// A root position with moves played from it.
struct THookLine : TSetPosition
{
    TChessboard* m_pLast = &board;

    /// nMoves half-moves are left at the root, and White is to move there. Moves as "e2e4 e7e8q".
    THookLine(const TChessboard& position, int nMoves, const std::string& strMoves,
              std::uint32_t nHeuristics)
        : TSetPosition(position, nMoves)
    {
        board.m_nHeuristics = nHeuristics;
        request.m_nRootWhiteFigures = static_cast<std::uint8_t>(WhiteFigures(board));
        request.m_nRootBlackFigures = static_cast<std::uint8_t>(BlackFigures(board));
        request.m_nRootWhitePawns = board.m_nWhitePawns;
        request.m_nRootBlackPawns = board.m_nBlackPawns;
        context.m_nRootBlackMajors = static_cast<std::uint8_t>(BlackMajors(board));
        context.m_nRootWhiteMajors = static_cast<std::uint8_t>(WhiteMajors(board));
        context.m_nRootWhiteMinors =
            static_cast<std::uint8_t>(WhiteFigures(board) - WhiteMajors(board));
        std::istringstream moves(strMoves);
        for (std::string strMove; moves >> strMove;) {
            const std::vector<TMove> vecMoves = LegalMoves(*m_pLast);
            const auto isIt = [&](const TMove& move) { return MoveText(move) == strMove; };
            m_pLast = &PlayMove(*m_pLast, *std::find_if(vecMoves.begin(), vecMoves.end(), isIt));
        }
    }

    std::uint64_t Cuts() const
    {
        return std::accumulate(context.m_anCuts.begin(), context.m_anCuts.end(), std::uint64_t{0});
    }
};

/// What a hook has to leave alone.
struct TState
{
    std::array<std::byte, sizeof(TChessboard)> m_record;
    THeuristicsParams m_params;
    std::vector<std::uint16_t> m_vecNotes;

    explicit TState(const THookLine& line)
    {
        std::memcpy(m_record.data(), line.m_pLast, sizeof(TChessboard));
        const TThreadContext& context = line.context;
        m_params = context;
        m_params.m_nDeferDeadline = 0;
        m_vecNotes.assign(context.m_anRepeatDepth.begin(), context.m_anRepeatDepth.end());
        m_vecNotes.insert(m_vecNotes.end(),
                          {context.m_nQuickerMateNesting, context.m_bNoQuickerMate,
                           context.m_shAdditionalMoves, context.m_bAdditionalMovesUsed,
                           context.m_nQuickerMateRootDepth, context.m_bSkipEqualPromotions,
                           context.m_nHookNesting, context.m_bSpecialSolverTried});
    }
    bool operator==(const TState&) const = default;
};

/// What the heuristics of the hook answer; that White's material can't mate at all is another
/// matter.
int AskHeuristics(TChessboard& board, TMove* pMove)
{
    const int nAnswer = IsBlackMoveDoubtful(board, pMove);
    std::uint32_t& nReason = ContextOf(board).m_nDoubtReason;
    if (nAnswer <= 0 || static_cast<std::int32_t>(nReason) > IMPOSSIBLE_ROOK_OR_PAWNS ||
        static_cast<std::int32_t>(nReason) < DOUBTFUL_QUEENS)
        return nAnswer;
    nReason = 0;
    return HOOK_PASSES;
}

int AskBlackHook(THookLine& line, TMove* pMove = nullptr)
{
    for (std::size_t i = 0; i < line.context.m_anRepeatDepth.size(); ++i)
        line.context.m_anRepeatDepth[i] = static_cast<std::uint16_t>(3 * i);
    line.context.m_bSkipEqualPromotions = true;
    line.context.m_bAdditionalMovesUsed = true;
    line.context.m_shAdditionalMoves = 0;
    const std::uint64_t nCuts = line.Cuts();
    const TState before(line);
    const int nAnswer = AskHeuristics(*line.m_pLast, pMove);
    EXPECT_EQ(TState(line), before) << "the record or the context has changed";
    EXPECT_EQ(line.Cuts(), nCuts + (nAnswer > 0));
    return nAnswer;
}

/// A case of the hook of Black's moves.
struct TCase
{
    const char* m_pName;
    const char* m_pFen;
    const char* m_pMoves;
    std::uint32_t m_nHeuristics;
    int m_nExpected;
    void (*m_set)(THookLine&) = [](THookLine&) {};
    int m_nMoves = 9;
};

using P = THeuristicsParams;

void PlainEdge(THookLine& line)
{
    line.context.m_bKingMustNotMove = false;
}

void RelaxedEdge(THookLine& line)
{
    PlainEdge(line);
    line.context.m_nEdgeRelaxCaptures = 1;
}

/// The plain edge with one more of the flags.
template <auto pFlag>
void With(THookLine& line)
{
    PlainEdge(line);
    line.context.*pFlag = true;
}

template <auto pFlag>
void Relaxed(THookLine& line)
{
    RelaxedEdge(line);
    line.context.*pFlag = true;
}

void Deferred(THookLine& line)
{
    RelaxedEdge(line);
    line.m_pLast->m_boardFlags |= TChessboard::FLAG_EDGECHECKDEFERRED;
    line.context.m_nDeferDeadline = 5;
}

void StrictWithExceptions(THookLine& line)
{
    line.context.m_bKingMoveExceptions = true;
}

void Nothing(THookLine&) {}

constexpr std::uint32_t EDGE = SH_KEEPKINGONTHEEDGE, EXT = SH_KEEPKINGWITHINEXTEDGE;
constexpr std::uint32_t SURROUND = SH_ASSERTBLACKKINGSURROUNDED;

const TCase g_aCases[] = {
    // The White king six steps away: mate in 1 or 2 comes too early for it.
    {"far king", "7k/8/8/8/8/8/8/KQ6", "b1b2 h8g8", SH_AREKINGSNEAR, 1, Nothing, 5},
    {"king in time", "7k/8/8/8/8/8/8/KQ6", "b1b2 h8g8", SH_AREKINGSNEAR, 0, Nothing, 15},
    {"two queens", "7k/8/8/8/8/8/8/KQQ5", "b1b2 h8g8", SH_AREKINGSNEAR, 0, Nothing, 5},
    {"just promoted", "7k/P7/8/8/8/8/8/K7", "a7a8r h8g7", SH_AREKINGSNEAR, 0, Nothing, 5},
    {"pawn promotes", "8/7k/8/8/8/8/5P2/K1R1B3", "c1c2 h7g7", SH_AREKINGSNEAR, 1, Nothing, 5},
    {"pawn in time", "8/7k/P7/8/8/8/8/K1R1B3", "c1c2 h7g7", SH_AREKINGSNEAR, 0, Nothing, 5},
    {"own rook in the corner", "5r1k/8/8/8/8/8/8/KQ6", "b1c1 f8g8", SH_AREKINGSNEAR, 0, Nothing, 5},
    {"rook away", "4r2k/8/8/8/8/8/8/KQ6", "b1c1 e8f8", SH_AREKINGSNEAR, 1, Nothing, 5},

    {"on the edge", "4k3/8/8/8/8/8/R7/4K3", "a2a3 e8f8", EDGE, 0, PlainEdge},
    {"off the edge", "4k3/8/8/8/8/8/R7/4K3", "a2a3 e8f7", EDGE, 1, PlainEdge},
    {"no king move", "8/4k2n/8/8/8/8/R7/4K3", "a2a3 h7g5", EDGE, 1, PlainEdge},
    {"figure captured", "4k3/8/8/8/8/n7/R7/4K3", "a2a3 e8f7", EDGE, 0, PlainEdge},
    {"pawn captured", "4k3/8/8/8/8/p7/R7/4K3", "a2a3 e8f7", EDGE, 1, PlainEdge},
    {"won before", "4k3/8/8/8/8/n7/R7/4K3", "a2a3 e8f8 a3a4 f8f7", EDGE, 1, PlainEdge},
    {"balance won", "4k3/8/8/8/8/n7/R7/4K3", "a2a3 e8f8 a3a4 f8f7", EDGE, 0, RelaxedEdge},
    {"balance evened", "4k3/8/8/8/3n4/n7/R1N5/4K3", "a2a3 d4c2 e1d1 c2a3 d1d2 e8f7", EDGE, 1,
     RelaxedEdge, 11},
    {"no pawns counted", "4k3/8/8/8/8/p7/R7/4K3", "a2a3 e8f8 a3a4 f8f7", EDGE, 1, RelaxedEdge},
    {"pawns counted", "4k3/8/8/8/8/p7/R7/4K3", "a2a3 e8f8 a3a4 f8f7", EDGE, 0,
     Relaxed<&P::m_bEdgeRelaxCountPawns>},
    {"relaxed for the ext. edge", "4k3/8/8/8/8/n7/R7/4K3", "a2a3 e8f8 a3a4 f8f7", EDGE, 1,
     Relaxed<&P::m_bEdgeRelaxExtOnly>},
    {"advanced pawn", "7k/P7/8/8/8/8/R7/4K3", "a2a3 h8g7", EDGE, 0, With<&P::m_bEdgeRelaxOnPawn>},
    {"g7 from the edge", "7k/8/8/8/8/8/R7/4K3", "a2a3 h8g7", EDGE, 0, PlainEdge},
    {"g7 from the inside", "8/8/5k2/8/8/8/R7/4K3", "a2a3 f6g7", EDGE, 1, PlainEdge},
    {"corner counts as edge", "8/8/5k2/8/8/8/R7/4K3", "a2a3 f6g7", EDGE, 0,
     With<&P::m_bInclCorner>},
    {"lone queen attacked", "8/3k4/8/8/8/8/R7/1q2K2R", "e1f2 b1a2 f2e3 d7c6", EDGE, 1, PlainEdge},
    {"lone queen en prise", "8/3k4/8/8/q7/8/R7/4K3", "e1f1 d7c6", EDGE, 0, PlainEdge},
    {"waiting", "4k3/8/8/8/8/8/R7/4K3", "a2a3 e8f7", EDGE, 0, Deferred},
    {"deadline over", "4k3/8/8/8/8/8/R7/4K3", "a2a3 e8f7", EDGE, 1, Deferred, 5},
    {"relaxed in the line", "4k3/8/8/8/8/8/R7/4K3", "a2a3 e8f8", EDGE, 0,
     [](THookLine& line) { line.m_pLast->m_boardFlags |= TChessboard::FLAG_EDGERELAXED; }},

    {"king stays", "4k2n/8/8/8/8/8/R7/4K3", "a2a3 h8g6", EDGE, 0},
    {"king moves", "4k3/8/8/8/8/8/R7/4K3", "a2a3 e8f8", EDGE, 1},
    {"mate in one", "3k4/8/3K4/8/8/8/1Q6/8", "b2a2 d8e8", EDGE, 0},
    {"mate in two", "3k4/8/3K4/8/8/8/R7/8", "a2a1 d8e8", EDGE, 0},
    {"left its root square", "4k3/8/8/8/8/8/R7/4K3", "a2a3 e8f8", EDGE, 0, StrictWithExceptions},
    {"moved on", "4k3/8/8/8/8/8/R7/4K3", "a2a3 e8f8 a3a4 f8g8", EDGE, 1, StrictWithExceptions},
    {"another move after the exception", "4k2n/8/8/8/8/8/R7/4K3", "a2a3 e8f8 a3a4 h8g6", EDGE, 1,
     StrictWithExceptions},
    {"both shuttled", "4k3/8/8/8/8/8/R7/4K3", "a2a3 e8f8 a3a2 f8e8", EDGE, 0},
    {"one shuttled", "4k3/8/8/8/8/8/R7/4K3", "a2a3 e8f8 a3a4 f8e8", EDGE, 1},
    {"figure won", "4k3/8/8/8/8/n7/R7/4K3", "a2a3 e8f8", EDGE, 0},
    {"standing pawn won", "4k3/8/8/8/8/p7/R7/4K3", "a2a3 e8f8", EDGE, 1},
    {"arriving pawn won", "4k3/8/8/8/p7/8/R7/4K3", "e1e2 a4a3 a2a3 e8f8", EDGE, 0},
    {"a pawn mates", "8/1P6/k1K5/8/8/8/8/8", "c6c7 a6a7", EDGE, 0},
    {"a pawn promotes too late", "8/1P6/8/8/8/2k5/8/7K", "h1h2 c3d4", EDGE, 1},
    {"exchange", "4k3/8/8/8/2n5/N7/RP6/4K3", "e1e2 c4a3 b2a3 e8f8", EDGE, 1},
    {"pawn let through", "k7/P2K4/8/8/8/8/7B/8", "h2g3 a8a7", EDGE, 1},
    {"promotion square left", "1k6/1P6/8/2K5/8/8/5B2/8", "f2g3 b8a7", EDGE, 0},
    {"heavy figures won", "4k2r/8/8/8/8/8/7R/4K3", "h2h8 e8e7 h8h7 e7e8", EDGE, 0},

    {"second ring", "8/3k4/8/8/8/8/R7/4K3", "a2a3 d7e7", EXT, 0},
    {"third ring", "8/3k4/8/8/8/8/R7/4K3", "a2a3 d7e6", EXT, 1},
    {"queen promoted", "8/P2k4/8/8/8/8/8/4K3", "a7a8q d7e6", EXT, 0},
    {"bare on c6", "8/1k6/8/8/8/n7/R7/4K3", "a2a3 b7c7 a3a1 c7c6", EXT, 0},
    {"balance one short, figure falls", "8/3k4/8/8/n7/8/8/R3K3", "e1f1 d7e6", EXT, 0, RelaxedEdge},
    {"box shut", "R7/4k3/8/8/R7/8/8/3RKR2", "e1e2 e7e6", EXT, 0},
    {"figure en prise", "8/7p/3k4/6P1/8/8/R7/4K3", "a2a3 h7h6", EXT, 0},
    {"moves to the edge", "8/3k4/8/8/8/8/R7/4K3", "a2a3 d7e7 a3a4 e7e8", EXT, 0,
     With<&P::m_bExtEdgeMoveOnly>},
    {"moves off the edge", "8/3k4/8/8/8/8/R7/4K3", "a2a3 d7e7 a3a4 e7f7", EXT, 1,
     With<&P::m_bExtEdgeMoveOnly>},

    {"strictly surrounded", "4k3/8/4K3/8/8/8/1R6/8", "b2c2 e8d8", SURROUND, 0,
     With<&P::m_bSurroundedStrict>},
    {"strict and free", "4k3/8/8/8/4K3/8/1R6/8", "b2a2 e8d8", SURROUND, 1,
     With<&P::m_bSurroundedStrict>},
    {"free in the middle", "8/8/4k3/8/8/p1p1p3/8/KB1B4", "b1a2 e6d6 d1g4 d6c5", SURROUND, 1,
     Nothing, 11},
    {"free in the root position", "8/8/4k3/8/8/p1p1p3/8/KB1B4", "b1a2 e6d6", SURROUND, 0, Nothing,
     11},
    {"a queen closes in", "8/8/4k3/8/8/p1p1p3/8/KB1B3Q", "b1c2 e6d6 d1e2 d6e5", SURROUND, 0,
     Nothing, 11},
};

TEST(KingHooks, CasesOfTheRules)
{
    for (const TCase& test : g_aCases) {
        SCOPED_TRACE(test.m_pName);
        THookLine line(BoardOf(test.m_pFen), test.m_nMoves, test.m_pMoves, test.m_nHeuristics);
        test.m_set(line);
        EXPECT_EQ(AskBlackHook(line), test.m_nExpected) << WriteFen(*line.m_pLast, true);
        EXPECT_EQ(line.context.m_nDoubtReason, test.m_nExpected > 0 ? test.m_nHeuristics : 0);
    }
}

TEST(KingHooks, AStoppedMateTestDecidesNothing)
{
    THookLine line(BoardOf("4k3/8/8/8/8/8/R7/4K3"), 9, "a2a3 e8f8", EDGE);
    line.request.SetStopState(TStopBlock::STOP, TStopBlock::ALL_THREADS);
    EXPECT_EQ(AskBlackHook(line), HOOK_UNDECIDED);
}

TEST(KingHooks, ViolationsWaitForADeadline)
{
    struct TDeferral
    {
        std::uint32_t m_nHeuristic;
        const char* m_pFen;
        int m_nDeferMoves;
        bool m_bSkipIfNoChange;
        int m_nExpected;
        int m_nDeadline; ///< 0: the move isn't marked
    };
    constexpr const char* LONE = "8/3k4/8/8/8/8/R7/4K3";
    constexpr const char* WITH_FIGURE = "8/3k4/8/8/8/8/R7/4K2n";
    constexpr const char* WITH_PAWN = "8/3k4/8/P7/8/8/R7/4K3";
    const TDeferral aDeferrals[] = {
        {EDGE, LONE, 0, false, 1, 0},       {EDGE, LONE, 1, false, 0, 5},
        {EDGE, LONE, 9, false, 0, 1},       {EDGE, LONE, 2, true, 1, 0},
        {EDGE, WITH_FIGURE, 2, true, 0, 3}, {EDGE, WITH_PAWN, 2, true, 1, 0},
        {EDGE, WITH_PAWN, 3, true, 0, 1},   {EXT, LONE, 0, false, 1, 0},
        {EXT, LONE, 2, false, 0, 3},        {EXT, LONE, 2, true, 1, 0},
    };
    for (const TDeferral& test : aDeferrals) {
        THookLine line(BoardOf(test.m_pFen), 9, "a2b2 d7e6", test.m_nHeuristic);
        RelaxedEdge(line);
        line.context.m_nDeferMoves = static_cast<std::uint16_t>(test.m_nDeferMoves);
        line.context.m_bSkipDeferIfNoChange = test.m_bSkipIfNoChange;
        TMove move = line.m_pLast->m_LastMove;
        EXPECT_EQ(AskBlackHook(line, &move), test.m_nExpected) << test.m_pFen;
        EXPECT_EQ((move.m_promotion & TMove::MARK) != 0, test.m_nDeadline > 0);
        EXPECT_EQ(line.context.m_nDeferDeadline, test.m_nDeadline);
    }
}

/// A random position in which White has moved and Black has answered, or null.
std::unique_ptr<THookLine> RandomLine(std::mt19937& random, int nFigures, std::uint32_t nHeuristics)
{
    auto pLine = std::make_unique<THookLine>(RandomPosition(random, nFigures), 11, "", nHeuristics);
    for (int nPly = 0; nPly < 4; ++nPly) {
        const std::vector<TMove> vecMoves = LegalMoves(*pLine->m_pLast);
        if (vecMoves.empty())
            return nullptr;
        pLine->m_pLast = &PlayMove(*pLine->m_pLast, vecMoves[random() % vecMoves.size()]);
    }
    return pLine;
}

bool MatesByPlainSearch(THookLine& line, int nPlies)
{
    TChessboard copy = *line.m_pLast;
    copy.m_nMoves = static_cast<std::uint16_t>(nPlies);
    return PlainSearchWhite(copy) == 1;
}

/// Whatever the position, the hooks leave everything as it was; and no cut throws a mate in one
/// away where a mate test stands before it.
TEST(KingHooks, NoMateInOneIsCut)
{
    std::mt19937 random(4);
    int nCuts = 0, nPasses = 0;
    for (const std::uint32_t nHeuristic :
         {EDGE, SH_AREKINGSNEAR, SH_KEEPKINGNEARCORNER, EXT, SURROUND}) {
        for (int i = 0; i < 700; ++i) {
            const auto pLine = RandomLine(random, 3 + i % 7, nHeuristic);
            if (!pLine)
                continue;
            THookLine& line = *pLine;
            line.context.m_bSurroundedStrict = line.context.m_bExtEdgeMoveOnly = true;
            line.context.m_bKingMoveExceptions = i & 1;
            line.context.m_nCornerDistance = -1;
            const bool bCut = AskBlackHook(line) > 0;
            nCuts += bCut;
            nPasses += !bCut;
            EXPECT_FALSE(bCut && MatesByPlainSearch(line, 1)) << WriteFen(*line.m_pLast, true);
        }
    }
    EXPECT_GT(nCuts, 500);
    EXPECT_GT(nPasses, 500);
}

/// The other forms, with every parameter that matters thrown in: nothing but the answer comes out.
TEST(KingHooks, RandomParametersLeaveNoTrace)
{
    std::mt19937 random(6);
    for (int i = 0; i < 3000; ++i) {
        const auto pLine = RandomLine(random, 3 + i % 20, EDGE | EXT | SURROUND);
        if (!pLine)
            continue;
        THookLine& line = *pLine;
        constexpr std::uint32_t aMasks[] = {EDGE, EXT, SURROUND, EDGE | SH_SWEEPINGWHITEROOK};
        line.m_pLast->m_nHeuristics = aMasks[i % 4];
        line.m_pLast->m_nPositionFlags |=
            random() & (TChessboard::POSITION_FEWFIGURES | TChessboard::POSITION_FREEKING);
        line.context.m_bKingMustNotMove = random() % 3 == 0;
        line.context.m_nEdgeRelaxCaptures = random() % 3;
        line.context.m_nDeferMoves = random() % 2;
        line.context.m_bInclCorner = random() % 2;
        line.context.m_bEdgeRelaxOnPawn = random() % 2;
        const int nAnswer = AskBlackHook(line);
        EXPECT_TRUE(nAnswer == HOOK_PASSES || nAnswer == HOOK_DOUBTFUL);
        const TState before(line);
        IsWhiteMoveDoubtful(*line.m_pLast->m_pParent);
        EXPECT_EQ(TState(line), before);
    }
}

TEST(KingHooks, BoundedMateTestsAreProofs)
{
    std::mt19937 random(5);
    int nMates = 0;
    for (int i = 0; i < 1500; ++i) {
        const auto pLine = RandomLine(random, 3 + i % 4, EDGE);
        if (!pLine)
            continue;
        const int nPlies = i % 3 == 0 ? 5 : 3;
        const TState before(*pLine);
        const bool bMate = IsMateWithin(*pLine->m_pLast, nPlies) == EMateTest::Mate;
        EXPECT_EQ(TState(*pLine), before);
        EXPECT_EQ(bMate, MatesByPlainSearch(*pLine, nPlies)) << WriteFen(*pLine->m_pLast, true);
        nMates += bMate;
    }
    EXPECT_GT(nMates, 50);
}

/// The settled part of the count by plain loops: the free squares, the line that takes four, and
/// the recount without the loose figures next to the king.
int SlowSurroundFree(const TChessboard& board, int nLimit)
{
    TSlowPosition slow(board.m_board, EColour::White);
    const int king = board.BlackKing();
    slow.m_aBoard[king] = NO_FIGURE;
    const auto freeSquares = [&] {
        std::vector<int> vecFree;
        for (int square = 0; square < 64; ++square) {
            if (Distance(square, king) == 1 && !slow.HasColour(square, EColour::Black) &&
                slow.Attackers(square, EColour::White).empty())
                vecFree.push_back(square);
        }
        return vecFree;
    };
    const std::vector<int> vecFree = freeSquares();
    const int nFree = static_cast<int>(vecFree.size());
    if (nFree <= nLimit)
        return nFree;
    const TSlowPosition withKing(board.m_board, EColour::White);
    for (int from = 0; from < 64 && nFree == 4 && nLimit == 3; ++from) {
        if (!slow.HasColour(from, EColour::White) ||
            (slow.KindOf(from) != KIND_QUEEN && slow.KindOf(from) != KIND_ROOK))
            continue;
        for (int to = 0; to < 64; ++to) {
            if (!withKing.IsPseudoLegal(from, to))
                continue;
            const TSlowPosition after =
                slow.After({static_cast<std::uint8_t>(from), static_cast<std::uint8_t>(to), 0, 0});
            for (const int fourth : vecFree) {
                const auto onLine = [&](bool bFile) {
                    return std::all_of(vecFree.begin(), vecFree.end(), [&](int square) {
                        return (square == fourth) !=
                               (bFile ? FileOf(square) == FileOf(to) : RowOf(square) == RowOf(to));
                    });
                };
                if ((onLine(true) || onLine(false)) && after.Attacks(to, fourth))
                    return 3;
            }
        }
    }
    std::vector<int> vecLoose;
    for (int square = 0; square < 64; ++square) {
        if (Distance(square, king) == 1 && slow.HasColour(square, EColour::Black) &&
            withKing.Attackers(square, EColour::Black).size() == 1 &&
            slow.Attackers(square, EColour::White).size() >= 2)
            vecLoose.push_back(square);
    }
    for (const int square : vecLoose)
        slow.m_aBoard[square] = NO_FIGURE;
    return static_cast<int>(freeSquares().size());
}

TEST(KingHooks, SurroundCountAgreesWithPlainLoops)
{
    std::mt19937 random(8);
    int nLowered = 0;
    for (int i = 0; i < 20000; ++i) {
        const TChessboard board = RandomPosition(random, 4 + i % 20);
        const int nLimit = i % 4 == 0 ? 2 : 3;
        const int nSlow = SlowSurroundFree(board, nLimit);
        EXPECT_EQ(CountSurroundFree(board, nLimit, ESurroundRule::None), nSlow)
            << WriteFen(board, true);
        nLowered += nSlow < FreeKingSquares(board);
        for (const ESurroundRule rule : {ESurroundRule::Plain, ESurroundRule::HeavyFigures,
                                         ESurroundRule::Queens, ESurroundRule::InCheck})
            EXPECT_LE(CountSurroundFree(board, nLimit, rule), nSlow) << WriteFen(board, true);
    }
    EXPECT_GT(nLowered, 50);
}

} // namespace
} // namespace corvina
