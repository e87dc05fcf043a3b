#include "search/enginecommand.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"

#include <thread>

namespace corvina
{
namespace
{

constexpr std::uint16_t ALL = TStopBlock::ALL_THREADS;

TEngineCommand Command(int nDepth, int nOrder, int nSkip, TMove target = {})
{
    TEngineCommand command;
    command.m_nCommandDepth = static_cast<std::uint16_t>(nDepth);
    command.m_nCommand = static_cast<std::uint8_t>(nOrder);
    command.m_nSkipCommand = static_cast<std::uint8_t>(nSkip);
    command.m_commandMove = target;
    return command;
}

/// A list of moves told by letters, the n-th for the n-th square.
struct TLetters
{
    explicit TLetters(const std::string& strLetters)
    {
        for (const char c : strLetters)
            m_vecMoves.push_back(Move(c));
    }

    static TMove Move(char c) { return {63, static_cast<std::uint8_t>(c - 'a'), 0, 0}; }

    std::string Text() const
    {
        std::string strText;
        for (const TMove& move : m_vecMoves)
            strText += static_cast<char>('a' + move.m_to);
        return strText;
    }

    std::vector<TMove> m_vecMoves;
};

TEST(EngineCommand, Lists)
{
    const struct
    {
        int m_nIndex;
        bool m_bGivenUp;
        int m_nOrder, m_nSkip;
        char m_target;
        const char* m_pList;
        int m_nNext, m_nLeftOut;
    } aCases[] = {
        // The move that was given up comes again, elsewhere.
        {1, true, ORDER_SWAP, 1, 'a', "acbdef", 1, 0},
        {1, true, ORDER_LAST, 1, 'a', "acdefb", 1, 0},
        {5, true, ORDER_SWAP, 1, 'a', "abcdef", 5, 0},
        {5, true, ORDER_LAST, 1, 'a', "abcdef", 5, 0},
        // It is left out, with those that are skipped; the list's last move is reached at most.
        {1, true, ORDER_KEEP, 1, 'a', "abcdef", 2, 1},
        {1, true, ORDER_KEEP, 2, 'a', "abcdef", 3, 2},
        {3, true, ORDER_KEEP, 5, 'a', "abcdef", 5, 2},
        {5, true, ORDER_KEEP, 5, 'a', "abcdef", 5, 0},
        {5, true, ORDER_KEEP, 1, 'a', "abcdef", 6, 1},
        // To a move behind it; another one changes nothing.
        {1, true, ORDER_KEEP, 0, 'e', "abcdef", 4, 3},
        {1, true, ORDER_KEEP, 0, 'c', "abcdef", 2, 1},
        {1, true, ORDER_KEEP, 0, 'a', "abcdef", 1, 0},
        {1, true, ORDER_LAST, 0, 'e', "acdefb", 3, 2},
        // Before the first move there is nothing to reorder.
        {0, false, ORDER_SWAP, 1, 'a', "abcdef", 0, 0},
        {0, false, ORDER_KEEP, 3, 'a', "abcdef", 2, 2},
    };
    for (const auto& c : aCases) {
        TLetters white("abcdef"), black("abcdef");
        const TEngineCommand command =
            Command(9, c.m_nOrder, c.m_nSkip, TLetters::Move(c.m_target));
        const TServedList served =
            ServeOnWhiteList(command, white.m_vecMoves.data(), 6, c.m_nIndex, c.m_bGivenUp);
        EXPECT_EQ(std::tuple(white.Text(), served.m_nNext, served.m_nLeftOut),
                  std::tuple(c.m_pList, c.m_nNext, c.m_nLeftOut))
            << c.m_nIndex << c.m_nOrder << c.m_nSkip << c.m_target;
        if (!c.m_bGivenUp)
            continue;
        black.m_vecMoves[static_cast<std::size_t>(c.m_nIndex)].m_promotion = TMove::MARK;
        ServeOnBlackList(command, black.m_vecMoves.data(), 6, c.m_nIndex);
        EXPECT_EQ(black.Text(), c.m_pList);
        for (const TMove& move : black.m_vecMoves)
            EXPECT_EQ(move.m_promotion, 0) << "a mark of the analysis that was given up";
    }
}

TEST(EngineCommand, TheStopBlockComesBack)
{
    using TBlock = TStopBlock;
    const TEngineCommand command = Command(9, ORDER_SWAP, 1);
    const auto posted = [&](TBlock& block, std::uint16_t nThread) {
        block.TakeCommands(nThread, true);
        return block.PostCommand(nThread, command) == TBlock::EPost::Posted;
    };
    {
        TBlock block;
        EXPECT_EQ(block.PostCommand(0, command), TBlock::EPost::NoThread);
        ASSERT_TRUE(posted(block, 2));
        EXPECT_EQ(block.PostCommand(2, command), TBlock::EPost::NotYet);
        EXPECT_EQ(block.PostCommand(ALL, command), TBlock::EPost::NoThread);
        EXPECT_EQ(block.LookAtStop(2, 8), EStopCheck::GiveUp);
        EXPECT_EQ(block.LookAtStop(2, 9), EStopCheck::Serve);
        EXPECT_EQ(block.LookAtStop(1, 8), EStopCheck::GoOn);
        EXPECT_TRUE(block.IsGivenUp(2, 8));
        EXPECT_FALSE(block.IsGivenUp(2, 9));
        EXPECT_FALSE(block.IsGivenUp(1, 8));
        block.StopThread(1);
        EXPECT_TRUE(block.IsStopped(1));
        EXPECT_EQ(block.LookAtStop(2, 9), EStopCheck::Serve) << "a directed stop goes beside it";
        EXPECT_TRUE(block.FinishCommand(2));
        EXPECT_FALSE(block.IsAtRest());
        block.ResumeThread(1);
        EXPECT_TRUE(block.IsAtRest());
    }
    {
        TBlock block; // a pause goes on afterwards
        block.SetStopState(TBlock::PAUSE, ALL);
        ASSERT_TRUE(posted(block, 0));
        EXPECT_EQ(block.m_nSavedStopState, TBlock::PAUSE);
        EXPECT_EQ(block.LookAtStop(0, 9), EStopCheck::Serve);
        EXPECT_TRUE(block.FinishCommand(0));
        EXPECT_EQ(block.m_nStopState, TBlock::PAUSE);
        EXPECT_EQ(block.m_nStopThread, ALL);
    }
    for (const std::uint16_t nThread : {std::uint16_t{0}, ALL}) {
        TBlock block; // a stop of the thread comes in between
        ASSERT_TRUE(posted(block, 0));
        block.SetStopState(TBlock::STOP, nThread);
        EXPECT_EQ(block.LookAtStop(0, 9), EStopCheck::GiveUp);
        EXPECT_FALSE(block.FinishCommand(0));
        EXPECT_TRUE(block.IsStopped(0));
        EXPECT_EQ(block.PostCommand(0, command), TBlock::EPost::NoThread);
    }
    {
        TBlock block; // a stop of another thread must not hide what has been given up
        ASSERT_TRUE(posted(block, 0));
        block.SetStopState(TBlock::STOP, 1);
        EXPECT_TRUE(block.IsGivenUp(0, 8));
        EXPECT_FALSE(block.IsStopped(1));
        EXPECT_TRUE(block.FinishCommand(0));
        EXPECT_TRUE(block.IsStopped(1));
        EXPECT_FALSE(block.IsStopped(0));
        EXPECT_EQ(posted(block, 0), false) << "the stop must stay in sight of its thread";
        block.ResumeThread(1);
        EXPECT_TRUE(posted(block, 0));
    }
    {
        TBlock block; // the thread ends, or gives its first move up
        ASSERT_TRUE(posted(block, 0));
        block.TakeNoMoreCommands(0);
        EXPECT_TRUE(block.IsAtRest());
        ASSERT_TRUE(posted(block, 0));
        block.StopThread(0);
        EXPECT_TRUE(block.IsStopped(0));
        block.ResumeThread(0);
        EXPECT_TRUE(block.IsAtRest());
    }
}

/// The window: shows what it was asked about, and answers what the test wants.
struct TFakeDialog : TEngineDialog
{
    std::optional<TMove> ChooseMove(const TNodeMoves& node) override
    {
        ++m_nQuestions;
        m_strList.clear();
        for (int i = 0; i < node.m_nMoves; ++i)
            m_strList += MoveText(node.m_moves[i]) + " ";
        m_strMove = MoveText(node.m_moves[node.m_nCurrent]);
        m_nCurrent = node.m_nCurrent;
        m_nDepth = node.m_board.m_nMoves;
        if (m_nChoice < 0)
            return std::nullopt;
        return node.m_moves[std::min(node.m_nCurrent + m_nChoice, node.m_nMoves - 1)];
    }

    int m_nChoice = -1; ///< moves behind the one at work; below 0: Cancel
    int m_nQuestions = 0;
    std::string m_strList, m_strMove;
    int m_nCurrent = 0, m_nDepth = 0;
};

struct TManualRequest : TTaskRequest
{
    TManualRequest(const char* pFen, int nMate) : TTaskRequest(BoardOf(pFen), nMate)
    {
        m_bManualControl = true;
    }
};

/// A run that takes for ever, in a thread of its own.
struct TEndlessRun
{
    TEndlessRun()
    {
        request.OnPositionAnalysed = [this](const TChessboard*, const TThreadContext&) {
            ++m_nReports;
        };
        thread = std::thread([this] { outcome = Solve(request, {}); });
        // The node must be there, and the thread at work below it.
        while (Look(14).m_nDepth != 14)
            std::this_thread::yield();
    }
    ~TEndlessRun() { Stop(); }

    void Stop()
    {
        request.SetStopState(TStopBlock::STOP, ALL);
        if (thread.joinable())
            thread.join();
    }

    ECommandSent Send(int nDepth, int nOrder, int nSkip, int nThread = 0)
    {
        return SendEngineCommand(request, dialog, static_cast<std::uint16_t>(nDepth),
                                 static_cast<std::uint16_t>(nThread), nOrder, nSkip);
    }

    /// The node as it stands, by way of a question that is cancelled.
    TFakeDialog Look(int nDepth)
    {
        dialog.m_nChoice = -1;
        Send(nDepth, ORDER_KEEP, 0);
        return dialog;
    }

    std::atomic<int> m_nReports{0}; ///< of progress
    TManualRequest request{g_aWalkStarts[0], 9};
    TFakeDialog dialog;
    TSolveOutcome outcome;
    std::thread thread;
};

/// The list with the word at nIndex at its end.
std::string WithLast(const std::string& strList, const std::string& strWord)
{
    std::string strRest = strList;
    strRest.erase(strRest.find(strWord), strWord.size() + 1);
    return strRest + strWord + " ";
}

TEST(EngineCommand, ARunIsSteered)
{
    TEndlessRun run;
    // The root, the first reply of Black, White's second move, and so on; the lists are long.
    for (const int nDepth : {15, 16, 17}) {
        const bool bWhite = nDepth % 2 != 0;
        const TFakeDialog first = run.Look(nDepth);
        EXPECT_EQ(first.m_nDepth, nDepth);
        EXPECT_EQ(run.Send(nDepth, ORDER_LAST, 1), ECommandSent::Sent);
        const TFakeDialog last = run.Look(nDepth);
        EXPECT_EQ(last.m_strList, WithLast(first.m_strList, first.m_strMove)) << nDepth;
        EXPECT_EQ(last.m_nCurrent, first.m_nCurrent);
        EXPECT_NE(last.m_strMove, first.m_strMove);

        EXPECT_EQ(run.Send(nDepth, ORDER_SWAP, 1), ECommandSent::Sent);
        const TFakeDialog swapped = run.Look(nDepth);
        EXPECT_EQ(swapped.m_nCurrent, first.m_nCurrent);
        EXPECT_NE(swapped.m_strMove, last.m_strMove);
        EXPECT_EQ(run.Send(nDepth, ORDER_SWAP, 1), ECommandSent::Sent);
        EXPECT_EQ(run.Look(nDepth).m_strList, last.m_strList);

        if (nDepth == 17)
            break; // the list of the first moves begins with the one at work
        EXPECT_EQ(run.Send(nDepth, ORDER_KEEP, 1), ECommandSent::Sent);
        EXPECT_EQ(run.Look(nDepth).m_nCurrent, first.m_nCurrent + bWhite);
        EXPECT_EQ(run.Send(nDepth, ORDER_KEEP, 5), ECommandSent::Sent);
        EXPECT_EQ(run.Look(nDepth).m_nCurrent, first.m_nCurrent + 6 * bWhite);
        run.dialog.m_nChoice = 0;
        EXPECT_EQ(run.Send(nDepth, ORDER_KEEP, 0), ECommandSent::Unchanged);
        run.dialog.m_nChoice = 3;
        EXPECT_EQ(run.Send(nDepth, ORDER_KEEP, -1), ECommandSent::Sent);
        EXPECT_EQ(run.Look(nDepth).m_nCurrent, first.m_nCurrent + 9 * bWhite);
        run.dialog.m_nChoice = -1;
        EXPECT_EQ(run.Send(nDepth, ORDER_KEEP, 0), ECommandSent::Cancelled);
    }
    // The first moves: the list is that of the moves still to come.
    const TFakeDialog before = run.Look(17);
    EXPECT_EQ(run.Send(17, ORDER_KEEP, 2), ECommandSent::Sent);
    const TFakeDialog after = run.Look(17);
    EXPECT_TRUE(before.m_strList.ends_with(" " + after.m_strList));
    EXPECT_EQ(before.m_strList.size(), after.m_strList.size() + 2 * (before.m_strMove.size() + 1));
    // Half of the stipulation of 17 half-moves; at times there is no such node.
    for (int i = 0; i < 1000 && run.Look(MAX_HALFMOVES).m_nDepth != 9; ++i)
        EXPECT_GT(run.dialog.m_nDepth, 9);
    EXPECT_EQ(run.dialog.m_nDepth, 9);

    EXPECT_EQ(run.Send(15, ORDER_LAST, 1, 1), ECommandSent::NoThread);
    run.Stop();
    EXPECT_TRUE(run.outcome.m_bInfluencedByHand);
    EXPECT_EQ(run.Send(15, ORDER_LAST, 1), ECommandSent::NoThread);
    EXPECT_EQ(run.Send(15, ORDER_KEEP, 0), ECommandSent::NoThread);
    run.request.m_bManualControl = false;
    EXPECT_EQ(run.Send(15, ORDER_LAST, 1), ECommandSent::Off);
}

/// Long enough that nodes report progress, which the test takes for the chance of a command. Most
/// have one solution, and no shorter one.
constexpr std::pair<const char*, int> TASKS[] = {
    {"8/p7/3P1p2/5k1p/2NR4/5K2/8/8", 6}, {"1k2K3/8/8/3p4/R7/8/8/8", 7},
    {"8/k7/4K2p/8/3R4/8/8/8", 7},        {"k7/8/p3R3/8/3K4/8/8/8", 7},
    {"8/2R2p2/8/8/4K3/8/8/k7", 7},
};

/// Commands from within the run itself, so that each time they come at the same places.
void SendAtRandom(TSolveRequest& request, std::mt19937& random, int nCommands, bool bSkips)
{
    request.OnPositionAnalysed = [&request, &random, nCommands,
                                  bSkips](const TChessboard*, const TThreadContext&) mutable {
        if (nCommands == 0 || random() % 3)
            return;
        // The callback comes at depth 9: what is given up is below the nodes above it.
        const int nDepth = 10 + static_cast<int>(random() % 3);
        const int nOrder = bSkips ? static_cast<int>(random() % 3) : 1 + random() % 2;
        const int nSkip = bSkips ? 1 + static_cast<int>(random() % 6) : 1;
        nCommands -=
            request.PostCommand(0, Command(nDepth, nOrder, nSkip)) == TStopBlock::EPost::Posted;
    };
}

TEST(EngineCommand, WhatIsGivenUpIsNeverTakenForAnAnswer)
{
    std::mt19937 random(3);
    int nMissed = 0, nCommanded = 0;
    for (const auto& [pFen, nMate] : TASKS) {
        const auto solve = [&](TSolveRequest& request) {
            TSolveOutcome outcome = Solve(request, {});
            return std::pair(SortedTexts(outcome.m_vecSolutions), outcome);
        };
        TManualRequest undisturbed(pFen, nMate);
        const auto vecExpected = solve(undisturbed).first;
        for (int nRound = 0; nRound < 6; ++nRound) {
            TManualRequest request(pFen, nMate);
            request.m_nMinRegisterPlies = 0;
            const bool bSkips = nRound % 2 != 0;
            SendAtRandom(request, random, 1 + 600 * nRound, bSkips);
            const auto [vecFound, outcome] = solve(request);
            nCommanded += request.m_nPositions != undisturbed.m_nPositions;
            EXPECT_FALSE(outcome.m_bStopped);
            if (!bSkips) {
                EXPECT_EQ(vecFound, vecExpected) << pFen << " " << nRound;
                EXPECT_FALSE(outcome.m_bDoubtful);
            }
            if (vecFound != vecExpected) {
                ++nMissed;
                EXPECT_TRUE(outcome.m_bDoubtful) << pFen << " " << nRound;
                EXPECT_TRUE(outcome.m_bInfluencedByHand);
                EXPECT_TRUE(std::includes(vecExpected.begin(), vecExpected.end(), vecFound.begin(),
                                          vecFound.end()));
            }
            // What the register has kept of it must not mislead the next run.
            request.OnPositionAnalysed = {};
            const auto [vecAgain, again] = solve(request);
            EXPECT_EQ(vecAgain, vecExpected) << pFen << " " << nRound;
            EXPECT_FALSE(again.m_bDoubtful);
            EXPECT_FALSE(again.m_bInfluencedByHand);
        }
    }
    EXPECT_GT(nMissed, 3) << "the skipping hardly hits a solution";
    EXPECT_GT(nCommanded, 10);
}

TEST(EngineCommand, APauseLasts)
{
    TEndlessRun run;
    const auto worksOn = [&](int nTries) {
        const int nReports = run.m_nReports;
        for (int i = 0; i < nTries && run.m_nReports == nReports; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return run.m_nReports != nReports;
    };
    constexpr int AT_ONCE = 20, AT_LAST = 3000;
    EXPECT_TRUE(worksOn(AT_LAST));
    run.request.SetStopState(TStopBlock::PAUSE, ALL);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_FALSE(worksOn(AT_ONCE));
    // The thread wakes up for a command, and sleeps on.
    const TFakeDialog before = run.Look(15);
    EXPECT_EQ(run.Send(15, ORDER_SWAP, 1), ECommandSent::Sent);
    EXPECT_NE(run.Look(15).m_strMove, before.m_strMove);
    EXPECT_EQ(run.request.m_nStopState, TStopBlock::PAUSE);
    EXPECT_FALSE(worksOn(AT_ONCE));
    run.request.SetStopState(TStopBlock::RUN, ALL);
    EXPECT_TRUE(worksOn(AT_LAST));
}

} // namespace
} // namespace corvina
