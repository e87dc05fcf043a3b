#include "chess/moveset.h"
#include "heuristics/forcingmoves.h"
#include "heuristics/heuristicbits.h"
#include "heuristics/randomsets.h"
#include "search/forcedmate.h"
#include "search/hooks.h"
#include "search/plainsearch.h"
#include "support/chesstest.h"

namespace corvina
{
namespace
{

constexpr int HALF_MOVES = 9;

struct TList
{
    std::vector<TMove> m_vecMoves;
    bool m_bComplete = false;

    bool Has(const TMove& move) const { return ContainsMove(m_vecMoves, move); }
};

template <int nLevel>
TList ListOf(TChessboard& board, const TMove& previousMove, bool bAddCaptures)
{
    TMoveList moves;
    const int nFirst = GenerateForcingMoves<nLevel>(board, moves.data(), bAddCaptures);
    const TForcingList list =
        GenerateQuietForcingMoves<nLevel>(board, moves.data(), nFirst, previousMove);
    return {{moves.data(), moves.data() + list.m_nMoves}, list.m_bComplete};
}

TList List(TChessboard& board, int nLevel, const TMove& previousMove = TMove{},
           bool bAddCaptures = false)
{
    constexpr TList (*aLists[])(TChessboard&, const TMove&, bool) = {
        ListOf<FFM_CHECK_ONLY>, ListOf<FFM_THREAT_1>,      ListOf<FFM_THREAT_1_PLUS>,
        ListOf<FFM_THREAT_2>,   ListOf<FFM_THREAT_2_PLUS>, ListOf<FFM_THREAT_3>,
        ListOf<FFM_THREAT_4>,   ListOf<FFM_THREAT_5>};
    return aLists[nLevel - FFM_CHECK_ONLY](board, previousMove, bAddCaptures);
}

/// A position of a run with the forced mate search.
struct TForcedPosition : TSetPosition
{
    explicit TForcedPosition(const TChessboard& position) : TSetPosition(position, HALF_MOVES)
    {
        Apply("SH_FINDFORCEDMATE(CheckOnly)");
    }
};

/// What stands behind a move of White, by the plain recursion and the plain rules.
struct TMoveFacts
{
    bool m_bCheck = false;
    bool m_bFreeForKing = false; ///< the king can take on the square that the move has reached
    std::size_t m_nReplies = 0;
    int m_nThreat = 0; ///< moves of the mate that follows a pass, up to 2; 0: none
};

TMoveFacts FactsOf(TChessboard& board, TMove move)
{
    TSlowPosition slow(board.m_board, EColour::White);
    slow.Play(move);
    TMoveFacts facts;
    facts.m_bCheck = slow.InCheck(EColour::Black);
    for (const TMove& reply : slow.LegalMoves()) {
        ++facts.m_nReplies;
        facts.m_bFreeForKing |=
            reply.m_to == move.m_to && reply.m_from == slow.King(EColour::Black);
    }
    if (facts.m_bCheck)
        return facts;
    TChessboard& child = PlayMove(board, move);
    TMove pass{child.BlackKing(), child.BlackKing(), 0, 0};
    TChessboard& passed = child.m_pThread->MakeChild(child);
    passed.MakeBlackMove(&pass);
    for (int nMoves = 2; nMoves >= 1; --nMoves) {
        passed.m_nMoves = static_cast<std::uint16_t>(2 * nMoves - 1);
        if (PlainSearchWhite(passed))
            facts.m_nThreat = nMoves;
    }
    return facts;
}

/// The least that the list of a level has.
bool MustBeListed(int nLevel, const TMoveFacts& facts, bool bEvasion)
{
    if (facts.m_bCheck)
        return !facts.m_bFreeForKing;
    if (bEvasion && nLevel >= FFM_THREAT_1)
        return true;
    return (facts.m_nThreat == 1 && nLevel >= FFM_THREAT_1_PLUS) ||
           (facts.m_nThreat == 2 && nLevel >= FFM_THREAT_2);
}

TEST(ForcingMoves, ListsHoldWhatTheLevelPromises)
{
    std::mt19937 random(21);
    int nThreats = 0, nLeftOut = 0;
    for (int i = 0; i < 60; ++i) {
        TForcedPosition position(i % 2 ? ComposedPosition(random)
                                       : RandomPosition(random, 5 + i % 6));
        TChessboard& board = position.board;
        const bool bEvasion = board.m_whiteChecker != NO_CHECK;
        const std::vector<TMove> vecLegal = LegalMoves(board);
        const TList checks = List(board, FFM_CHECK_ONLY);
        std::array<TList, FFM_THREAT_5 + 1> aLists;
        for (int nLevel = FFM_CHECK_ONLY; nLevel <= FFM_THREAT_3; ++nLevel)
            aLists[nLevel] = List(board, nLevel);
        for (const TMove& move : vecLegal) {
            const TMoveFacts facts = FactsOf(board, move);
            for (int nLevel = FFM_CHECK_ONLY; nLevel <= FFM_THREAT_3; ++nLevel) {
                EXPECT_TRUE(aLists[nLevel].Has(move) || !MustBeListed(nLevel, facts, bEvasion))
                    << WriteFen(board, true) << MoveText(move) << nLevel;
            }
            // Without a check, only a move that leaves Black hardly a reply.
            EXPECT_TRUE(!checks.Has(move) || facts.m_bCheck || facts.m_nReplies <= 2 ||
                        board.m_nWhiteQueens > 1)
                << WriteFen(board, true) << MoveText(move);
            nThreats += facts.m_nThreat == 2 && !aLists[FFM_THREAT_1_PLUS].Has(move);
        }
        for (const int nLevel : {FFM_CHECK_ONLY, FFM_THREAT_1, FFM_THREAT_2, FFM_THREAT_3}) {
            const std::vector<std::string> vecTexts = SortedTexts(aLists[nLevel].m_vecMoves),
                                           vecAll = SortedTexts(vecLegal);
            EXPECT_TRUE(
                std::includes(vecAll.begin(), vecAll.end(), vecTexts.begin(), vecTexts.end()));
            EXPECT_EQ(std::adjacent_find(vecTexts.begin(), vecTexts.end()), vecTexts.end());
            EXPECT_TRUE(!aLists[nLevel].m_bComplete || vecTexts == vecAll);
            nLeftOut += !aLists[nLevel].m_bComplete;
        }
    }
    EXPECT_GT(nThreats, 20);
    EXPECT_GT(nLeftOut, 20);
}

TEST(ForcedMate, RefusesSettingsWithoutASearch)
{
    const std::string strText =
        "Error: no implementation in FindMateMultithreadingLevelThreadProcFFM for ";
    const struct
    {
        TForcedMateSettings m_settings;
        const char* m_pParameter;
    } aCases[] = {{{1, FFM_BOUND_AUTOMATIC, 0}, "bAllowExceptions"},
                  {{10, FFM_BOUND_WIDE, 0}, "bAllowExceptions"},
                  {{FFM_THREAT_1, FFM_BOUND_AUTOMATIC, 2}, "VerifyHeuristics"},
                  {{FFM_THREAT_1, 13, 0}, "m_shLookForQuickerMateDepth"}};
    TForcedPosition position(BoardOf("6k1/5ppp/8/8/8/8/8/3R2K1"));
    for (const auto& c : aCases) {
        try {
            FindForcedMate(position.board, c.m_settings);
            ADD_FAILURE() << c.m_pParameter;
        }
        catch (const std::exception& e) {
            EXPECT_EQ(e.what(), strText + c.m_pParameter);
        }
    }
}

TEST(ForcedMate, WhereNoCandidateIsLeftTheLineIsDoubtful)
{
    // A bare king has nothing to check with.
    TForcedPosition position(BoardOf("k7/p7/8/8/8/7P/8/7K"));
    TChessboard& child = PlayMove(position.board, ParseMove(position.board, "Kh1-g1"));
    EXPECT_LT(FindForcedMate(child), RESULT_NO_MATE);
    EXPECT_EQ(position.context.m_nDoubtReason, SH_FINDFORCEDMATE);
    EXPECT_GT(position.context.m_anCuts[9], 0u);
}

TEST(ForcedMate, TellsALongSeriesOfChecks)
{
    for (const char* pFen : {"7k/8/8/8/8/8/8/KN1Q4", "7k/8/8/8/8/8/8/KB1Q4"}) {
        constexpr int SERIES = 8;
        TSetPosition position(BoardOf(pFen), 4 * SERIES + 1);
        TChessboard* pBoard = &position.board;
        for (int i = 0; i < SERIES; ++i) {
            EXPECT_FALSE(IsLongCheckSeries(*pBoard, SERIES)) << i;
            for (const TMove& move : LegalMoves(*pBoard)) {
                TChessboard& child = PlayMove(*pBoard, move);
                const std::vector<TMove> vecReplies = LegalMoves(child);
                const bool bTakes =
                    std::any_of(vecReplies.begin(), vecReplies.end(),
                                [&](const TMove& reply) { return reply.m_to == move.m_to; });
                if (child.m_blackChecker == NO_CHECK || vecReplies.empty() || bTakes)
                    continue;
                pBoard = &PlayMove(child, vecReplies[0]);
                break;
            }
        }
        EXPECT_EQ(IsLongCheckSeries(*pBoard, SERIES), position.board.m_nWhiteKnights == 1) << pFen;
    }
}

} // namespace
} // namespace corvina
