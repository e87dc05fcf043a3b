#include "support/chesstest.h"

#include <map>
#include <sstream>

namespace corvina
{
namespace
{

/// What a record keeps up from move to move. White's figures are listed upward.
std::vector<int> ContentsOf(const TChessboard& board)
{
    const auto* pBytes = reinterpret_cast<const std::uint8_t*>(&board);
    std::vector<int> vecContents(pBytes + offsetof(TChessboard, m_whiteKingFile),
                                 pBytes + offsetof(TChessboard, m_whiteRookSquares));
    const auto add = [&](auto it, int n) { vecContents.insert(vecContents.end(), it, it + n); };
    const auto addList = [&](const std::int8_t* pSquares, int nCount) {
        add(pSquares, board.m_bWhiteSquaresValid ? nCount : 0);
        std::sort(vecContents.end() - (board.m_bWhiteSquaresValid ? nCount : 0), vecContents.end());
    };
    addList(&board.m_whiteQueenSquare, board.m_nWhiteQueens);
    addList(board.m_whiteRookSquares, board.m_nWhiteRooks);
    addList(board.m_whiteBishopSquares, board.m_nWhiteBishops);
    addList(board.m_whiteKnightSquares, board.m_nWhiteKnights);
    add(&board.m_bWhiteSquaresValid, 1);
    add(pBytes + offsetof(TChessboard, m_LastMove), 6); // and m_nMoves
    vecContents.push_back(board.BlackKingRing());
    add(board.m_board, 64);
    return vecContents;
}

/// The record of a position, found by a scan of the bare board.
TChessboard Scanned(const TSlowPosition& slow, int nMoves, const TMove& lastMove)
{
    TChessboard board;
    std::copy(slow.m_aBoard.begin(), slow.m_aBoard.end(), board.m_board);
    board.ScanBoard(true);
    board.m_nMoves = static_cast<std::uint16_t>(nMoves);
    board.m_LastMove = lastMove;
    return board;
}

int CheckerOf(const std::vector<int>& vecAttackers)
{
    if (vecAttackers.size() > 1)
        return DOUBLE_CHECK;
    return vecAttackers.empty() ? NO_CHECK : vecAttackers[0];
}

/// White has nothing but bishops on squares of one colour.
bool CannotMate(const TChessboard& board)
{
    int anBishops[2] = {};
    for (int square = 0; square < 64; ++square)
        anBishops[(square / 8 + square % 8) % 2] += board.m_board[square] == WHITE_BISHOP;
    return board.m_nWhiteQueens + board.m_nWhiteRooks + board.m_nWhiteKnights +
                   board.m_nWhitePawns ==
               0 &&
           (anBishops[0] == 0 || anBishops[1] == 0);
}

int CountOf(const TSlowPosition& slow, EColour colour)
{
    return static_cast<int>(
        std::count_if(slow.m_aBoard.begin(), slow.m_aBoard.end(),
                      [&](TFigure figure) { return figure & ColourBit(colour); }));
}

int CastlingRights(const TSlowPosition& slow, EColour colour)
{
    return slow.MayCastle(colour, true) * CASTLING_SHORT +
           slow.MayCastle(colour, false) * CASTLING_LONG;
}

/// MakeFast is the cheapest form for a move that is known to be legal.
enum EForm
{
    MakeUser,
    MakeFull,
    MakeFast
};

bool Make(EForm form, TChessboard& child, TMove& move)
{
    if (child.IsWhiteToMove())
        return form == MakeUser   ? child.MakeWhiteUserMove(&move)
               : form == MakeFull ? child.MakeWhiteMove(&move)
                                  : child.MakeWhiteMoveLight(&move);
    return form == MakeUser ? child.MakeBlackUserMove(&move)
                            : child.MakeBlackMove(&move, form == MakeFast);
}

TChessboard CopyOf(TChessboard& board)
{
    TChessboard child = board;
    child.m_pParent = &board;
    return child;
}

/// The moves of the side to move, or those of one figure.
std::vector<TMove> Generated(const TChessboard& board, int figure = NO_SQUARE)
{
    TMoveList list;
    TMove* pOut = list.data();
    const auto from = static_cast<TSquare>(figure);
    const int nCount = from == NO_SQUARE ? board.IsWhiteToMove() ? board.GenerateWhiteMoves(pOut)
                                                                 : board.GenerateBlackMoves(pOut)
                       : board.IsWhiteToMove() ? board.GenerateWhiteFigureMoves(from, pOut)
                                               : board.GenerateBlackFigureMoves(from, pOut);
    return {pOut, pOut + nCount};
}

std::string Texts(const std::vector<TMove>& vecMoves)
{
    std::string strTexts;
    for (const TMove& move : vecMoves)
        strTexts += (strTexts.empty() ? "" : " ") + MoveText(move);
    return strTexts;
}

/// Follows a line of records with slow positions and compares everything at each position.
class TTwin
{
public:
    /// To be called with the root and then with each child of the line.
    void Visit(TChessboard& board)
    {
        if (board.m_pParent == nullptr) {
            m_vecLine.assign(1, TSlowPosition(board.m_board, board.SideToMove()));
        }
        else {
            m_vecLine.push_back(m_vecLine.back());
            m_vecLine.back().Play(board.m_LastMove);
        }
        m_vecLegal = m_vecLine.back().LegalMoves();
        SCOPED_TRACE(WriteFen(board, false));
        for (const auto pCompare : {&TTwin::CompareRecord, &TTwin::CompareGenerators,
                                    &TTwin::CompareChildren, &TTwin::CompareSquares})
        {
            if (!testing::Test::HasFatalFailure())
                (this->*pCompare)(board, m_vecLine.back());
        }
    }

    /// How often something worth a comparison came up.
    std::map<std::string, int> m_mapSeen;

private:
    void CompareRecord(TChessboard& board, const TSlowPosition& slow)
    {
        ASSERT_EQ(ContentsOf(board), ContentsOf(Scanned(slow, board.m_nMoves, board.m_LastMove)));
        ASSERT_EQ(board.GetCastlingRights(true), CastlingRights(slow, EColour::White));
        ASSERT_EQ(board.GetCastlingRights(false), CastlingRights(slow, EColour::Black));
        if (board.m_pParent == nullptr)
            return;
        // pawn moves and captures can't be taken back, so that the whole line may be looked at
        const auto isSame = [&](const TSlowPosition& earlier) {
            return earlier.m_toMove == slow.m_toMove && earlier.m_aBoard == slow.m_aBoard &&
                   CastlingRights(earlier, EColour::Black) == CastlingRights(slow, EColour::Black);
        };
        const bool bRepetition = std::any_of(m_vecLine.begin(), m_vecLine.end() - 1, isSame);
        ASSERT_EQ(board.IsRepetition(), bRepetition);
        m_mapSeen["repetitions"] += bRepetition;
    }

    void CompareGenerators(TChessboard& board, const TSlowPosition& slow)
    {
        const bool bCheck = slow.InCheck(slow.m_toMove);
        std::vector<TMove> vecByFigure;
        for (int square = 0; square < 64; ++square) {
            const std::vector<TMove> vecMoves = Generated(board, square);
            vecByFigure.insert(vecByFigure.end(), vecMoves.begin(), vecMoves.end());
        }
        const std::vector<TMove> vecAll = Generated(board);
        CompareWithLegal(board, vecAll, false);
        CompareWithLegal(board, vecByFigure, bCheck);
        if (!bCheck) {
            ASSERT_EQ(Texts(vecAll), Texts(vecByFigure));
        }
        if (!board.IsWhiteToMove())
            return;
        TMoveList list;
        std::uint8_t nCount = 0;
        std::uint8_t nNext = 0;
        int nBefore = 0;
        while (board.GetNextWhiteMoves(list.data(), &nCount, &nNext)) {
            ASSERT_TRUE(!bCheck && nCount > nBefore);
            for (; nBefore < nCount; ++nBefore)
                ASSERT_EQ(list[nBefore].m_from + 1, nNext);
        }
        ASSERT_EQ(Texts({list.data(), list.data() + nCount}), Texts(vecAll));
    }

    /// The legal ones of generated moves are all legal moves, each once. The generator of pawn
    /// moves by itself gives only legal ones to a side in check.
    void CompareWithLegal(TChessboard& board, const std::vector<TMove>& vecMoves, bool bStrictPawns)
    {
        std::vector<TMove> vecAccepted;
        for (TMove move : vecMoves) {
            TChessboard child = CopyOf(board);
            const bool bPawn = m_vecLine.back().KindOf(move.m_from) == KIND_PAWN;
            if (Make(MakeUser, child, move))
                vecAccepted.push_back(move);
            else
                ASSERT_FALSE(bStrictPawns && bPawn) << MoveText(move);
        }
        ASSERT_EQ(SortedTexts(vecAccepted), SortedTexts(m_vecLegal));
    }

    void CompareChildren(TChessboard& board, const TSlowPosition& slow)
    {
        for (TMove move : m_vecLegal) {
            SCOPED_TRACE(MoveText(move));
            move.m_bEnPassant =
                slow.KindOf(move.m_from) == KIND_PAWN && move.m_to == slow.m_nPassedSquare;
            const TSquare captured = move.m_bEnPassant ? move.m_to ^ 8 : move.m_to;
            const TSlowPosition next = slow.After(move);
            const TChessboard expected = Scanned(next, board.m_nMoves - 1, move);
            const std::vector<int> vecExpected = ContentsOf(expected);

            // the search refuses a last capture that leaves White without means to mate; whether a
            // single knight counts as such is its own affair
            const bool bLast = board.IsWhiteToMove() && slow.m_aBoard[captured] != NO_FIGURE &&
                               CountOf(next, EColour::Black) == 1;
            const bool bKnight =
                bLast && CountOf(next, EColour::White) == 2 && expected.m_nWhiteKnights == 1;

            for (const EForm form : {MakeUser, MakeFull, MakeFast}) {
                TChessboard child = CopyOf(board);
                TMove made = move;
                made.m_bEnPassant = 0;
                std::uint8_t& levelCounter = board.m_pThread->m_anLevelCounter[expected.m_nMoves];
                levelCounter = 1;
                const bool bMade = Make(form, child, made);
                if (form == MakeUser || !bKnight) {
                    ASSERT_EQ(bMade, form == MakeUser || !bLast || !CannotMate(expected));
                }
                m_mapSeen["refusals"] += !bMade;
                if (!bMade)
                    continue;
                ASSERT_EQ(ContentsOf(child), vecExpected);
                ASSERT_TRUE(!bLast || child.m_nPositionFlags & TChessboard::POSITION_BAREBLACKKING);
                ASSERT_EQ(levelCounter, form == MakeFast && board.IsWhiteToMove());
                if (form == MakeUser && child.m_blackChecker != NO_CHECK) {
                    const bool bEscape = !next.LegalMoves().empty();
                    ASSERT_EQ(child.CanBlackEscapeCheck(), bEscape);
                    m_mapSeen["mates"] += !bEscape;
                }
            }
            m_mapSeen["moves"] += 1;
            m_mapSeen["en passant"] += move.m_bEnPassant;
            m_mapSeen["double checks"] +=
                expected.m_whiteChecker == DOUBLE_CHECK || expected.m_blackChecker == DOUBLE_CHECK;
            m_mapSeen["lists become valid"] +=
                expected.m_bWhiteSquaresValid > board.m_bWhiteSquaresValid;
        }
    }

    void CompareSquares(TChessboard& board, const TSlowPosition& slow)
    {
        for (int square = 0; square < 64; ++square) {
            const auto file = static_cast<std::int8_t>(square % 8);
            const auto row = static_cast<std::int8_t>(square / 8);
            const std::vector<int> vecWhite = slow.Attackers(square, EColour::White);
            const std::vector<int> vecBlack = slow.Attackers(square, EColour::Black);
            ASSERT_EQ(board.IsAttackedByWhite(file, row), !vecWhite.empty()) << square;
            ASSERT_EQ(board.IsAttackedByBlack(file, row), !vecBlack.empty()) << square;
            CompareCheckers(board, file, row, &TChessboard::GetWhiteKingChecker, vecBlack);
            CompareCheckers(board, file, row, &TChessboard::GetBlackKingChecker, vecWhite);
            if (slow.m_aBoard[square] == NO_FIGURE) {
                CompareMovers(board, slow, square);
            }
            else if (slow.KindOf(square) != KIND_KING) {
                const bool bPinned = slow.ColourOf(square) == EColour::White
                                         ? board.IsPinnedToWhiteKing(file, row)
                                         : board.IsPinnedToBlackKing(file, row);
                ASSERT_EQ(bPinned, slow.IsPinned(square)) << square;
            }
        }
    }

    template <class TChecker>
    void CompareCheckers(const TChessboard& board, std::int8_t file, std::int8_t row,
                         TChecker pChecker, const std::vector<int>& vecExpected)
    {
        std::int8_t aList[64];
        std::uint8_t nCount = 0;
        const int nChecker = (board.*pChecker)(file, row, aList, &nCount);
        std::vector<int> vecSquares;
        for (int i = 0; i < nCount; ++i)
            vecSquares.push_back(aList[2 * i + 1] * 8 + aList[2 * i]);
        std::sort(vecSquares.begin(), vecSquares.end());
        ASSERT_EQ(vecSquares, vecExpected) << row * 8 + file;
        ASSERT_EQ(nChecker, CheckerOf(vecExpected)) << row * 8 + file;
        ASSERT_EQ((board.*pChecker)(file, row, nullptr, nullptr), nChecker) << row * 8 + file;
    }

    void CompareMovers(const TChessboard& board, const TSlowPosition& slow, int square)
    {
        const auto to = static_cast<TSquare>(square);
        TSquareSet aMovers[2] = {};
        bool bFreeBlackMover = false;
        for (int from = 0; from < 64; ++from) {
            const bool bEnPassant = slow.KindOf(from) == KIND_PAWN && slow.Attacks(from, square);
            if (slow.KindOf(from) == KIND_KING || bEnPassant || !slow.IsPseudoLegal(from, square))
                continue;
            const int nSide = slow.HasColour(from, EColour::White) ? 0 : 1;
            aMovers[nSide] |= Bit(from);
            bFreeBlackMover = bFreeBlackMover || (nSide == 1 && !slow.IsPinned(from));
        }
        ASSERT_EQ(board.GetWhiteMoversToSquare(to), aMovers[0]) << square;
        ASSERT_EQ(board.GetBlackMoversToSquare(to), aMovers[1]) << square;
        ASSERT_EQ(board.CanBlackMoveToSquare(to), bFreeBlackMover) << square;
    }

    std::vector<TSlowPosition> m_vecLine; ///< from the root to the position
    std::vector<TMove> m_vecLegal;
};

/// The position after the moves of a line, like "e2e4 e7e5"; visit is called at each one.
template <class F>
TChessboard& PlayLine(TTestLine& line, const std::string& strMoves, F visit)
{
    TChessboard* pBoard = &line.board;
    visit(*pBoard);
    std::istringstream stream(strMoves);
    for (std::string strMove; stream >> strMove;) {
        const std::vector<TMove> vecMoves = LegalMoves(*pBoard);
        const auto isIt = [&](const TMove& move) { return MoveText(move) == strMove; };
        pBoard = &PlayMove(*pBoard, *std::find_if(vecMoves.begin(), vecMoves.end(), isIt));
        visit(*pBoard);
    }
    return *pBoard;
}

TEST(Moves, AgreeWithTheSlowMethodOnRandomWalks)
{
    const char* aMoreStarts[] = {
        "r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1",
        "8/8/3k4/8/3n1p2/2B5/4K1B1/8 w - - 0 1",
        "8/8/3k4/4p3/2n5/8/4K1N1/8 b - - 0 1",
        "1b1qkb2/1q6/8/3p1p2/3P1P2/8/1Q6/R1BQKB1R b KQ - 0 1",
        "4k3/8/8/2qnb3/8/PPP1PPP1/RBNQKBNR/1N3B2 w - - 0 1",
    };
    std::vector<const char*> vecStarts(std::begin(g_aWalkStarts), std::end(g_aWalkStarts));
    vecStarts.insert(vecStarts.end(), std::begin(aMoreStarts), std::end(aMoreStarts));
    TTwin twin;
    for (const char* pFen : vecStarts) {
        for (unsigned nSeed = 1; nSeed <= 12 && !HasFatalFailure(); ++nSeed)
            RandomWalk(pFen, nSeed, 150, [&](TChessboard& board) { twin.Visit(board); });
    }
    EXPECT_GT(twin.m_mapSeen["moves"], 400000);
    for (const auto& [strEvent, nSeen] : twin.m_mapSeen)
        EXPECT_GE(nSeen, 30) << strEvent;
}

/// Rare situations, each compared at every position of the line and with all its children.
TEST(Moves, AgreeWithTheSlowMethodOnChosenLines)
{
    const struct
    {
        const char* m_pFen;
        const char* m_pMoves;
    } aLines[] = {
        // captures en passant that open a line on a king
        {"8/3p4/8/R3P2k/8/8/8/K7 b - - 0 1", "d7d5 e5d6"},
        {"6k1/3p4/8/4P3/8/8/B7/4K3 b - - 0 1", "d7d5 e5d6"},
        {"8/3pk3/8/4P3/8/8/8/K3R3 b - - 0 1", "d7d5 e5d6"},
        {"k7/8/8/8/r3p2K/8/3P4/8 w - - 0 1", "d2d4 e4d3"},
        {"4k3/b7/8/8/4p3/8/3P4/6K1 w - - 0 1", "d2d4 e4d3"},
        {"k3r3/8/8/8/4p3/8/3PK3/8 w - - 0 1", "d2d4 e4d3"},
        {"8/2p5/8/KP5r/8/8/8/7k b - - 0 1", "c7c5"},
        {"7k/3p2b1/8/4P3/8/2K5/8/8 b - - 0 1", "d7d5"},
        // a double step that checks or interposes, and its capture as an answer
        {"8/4p3/8/3P1P2/3K4/8/8/7k b - - 0 1", "e7e5 d5e6"},
        {"3r4/4p3/8/3P1P2/3K4/8/8/7k b - - 0 1", "e7e5 f5e6"},
        {"7K/8/8/3k4/3p1p2/8/4P3/8 w - - 0 1", "e2e4 d4e3"},
        {"7k/8/8/8/K6r/8/4P3/8 w - - 0 1", "e2e4"},
        // the double step mates, or does but for a capture en passant
        {"7K/8/7R/3k4/3p2N1/6N1/4P3/2R5 w - - 0 1", "e2e4"},
        {"7K/8/7R/3k4/3p2N1/6N1/4P3/2RR4 w - - 0 1", "e2e4"},
        {"7K/8/7R/3k4/6N1/6N1/4PB2/2R5 w - - 0 1", "e2e4"},
        // castling: attacked squares, moved and captured figures, check by the rook
        {"4k3/8/8/8/8/8/1r6/R3K2R w KQ - 0 1", ""},
        {"3rk3/8/8/8/8/8/8/R3K2R w KQ - 0 1", ""},
        {"r3k2r/1R6/8/8/8/8/8/4K1R1 b kq - 0 1", "e8d8"},
        {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1", "h1h2 a8a7 h2h1 a7a8 a1b1 e8e7 b1a1 e7e8 e1f1"},
        {"r3k2r/8/6N1/8/8/8/8/4K3 w kq - 0 1", "g6h8 e8c8"},
        {"3k4/8/8/8/8/8/8/R3K3 w Q - 0 1", "e1c1"},
        {"r3k3/8/8/8/8/8/8/3K4 b q - 0 1", "e8c8"},
        // repetitions, the first of them with fewer rights
        {"4k2r/8/8/8/8/8/8/4K1N1 w k - 0 1",
         "g1f3 h8g8 f3g1 g8h8 g1f3 h8g8 f3g1 g8h8 g1h3 h8h7 h3g1 h7h8 g1f3"},
        {"4k3/7p/8/8/8/8/8/4K1N1 w - - 0 1", "g1f3 e8e7 f3g1 e7e8 g1f3 h7h6 f3g1 e8e7 g1f3 e7e8"},
    };
    TTwin twin;
    for (const auto& test : aLines) {
        TTestLine line(test.m_pFen, HalfMovesFor(test.m_pFen, 20));
        PlayLine(line, test.m_pMoves, [&](TChessboard& board) { twin.Visit(board); });
        if (HasFatalFailure())
            return;
    }
    EXPECT_EQ(twin.m_mapSeen["repetitions"], 8);
}

TEST(Moves, LostCastlingIsRefusedWhenItIsMade)
{
    for (const std::string strLine : {"e8d8", "e8e7 e1e2 e7e8 e2e1", "h8h7 h1h2 h7h8 h2h1"}) {
        TTestLine line("r3k2r/8/8/8/8/8/8/R3K2R b KQkq - 0 1", 20);
        TChessboard& board = PlayLine(line, strLine, [](TChessboard&) {});
        for (const EForm form : {MakeUser, MakeFull, MakeFast}) {
            TChessboard child = CopyOf(board);
            TMove move = board.IsWhiteToMove() ? TMove{4, 6, 0, 0} : TMove{60, 62, 0, 0};
            EXPECT_EQ(Make(form, child, move), strLine == "e8d8") << strLine;
        }
    }
}

TEST(Moves, StandInTheirFixedOrder)
{
    const struct
    {
        const char* m_pFen;
        const char* m_pLine;
        const char* m_pFigure; ///< a square, or "" for the whole list
        const char* m_pExpected;
    } aCases[] = {
        {"4k3/8/8/8/8/8/8/R3K2R w KQ - 0 1", "", "e1", "e1e2 e1d2 e1f2 e1d1 e1f1 e1g1 e1c1"},
        {"r3k2r/8/8/8/8/8/8/4K3 b kq - 0 1", "", "e8", "e8e7 e8d7 e8f7 e8d8 e8f8 e8g8 e8c8"},
        {"8/1p5k/8/8/3Q2n1/8/1P6/7K w - - 0 1", "", "d4",
         "d4d5 d4d6 d4d7 d4d8 d4d3 d4d2 d4d1 d4e4 d4f4 d4g4 d4c4 d4b4 d4a4 "
         "d4e5 d4f6 d4g7 d4h8 d4c5 d4b6 d4a7 d4e3 d4f2 d4g1 d4c3"},
        {"7k/8/8/8/3N4/8/8/7K w - - 0 1", "", "d4", "d4c2 d4c6 d4b3 d4b5 d4e2 d4e6 d4f3 d4f5"},
        {"7k/8/8/8/8/3p1p2/4P3/7K w - - 0 1", "", "e2", "e2e3 e2e4 e2d3 e2f3"},
        {"b1b4k/1P6/8/8/8/8/8/7K w - - 0 1", "", "b7",
         "b7b8q b7b8r b7b8b b7b8n b7a8q b7a8r b7a8b b7a8n b7c8q b7c8r b7c8b b7c8n"},
        {"7k/2p5/8/1P6/8/8/8/7K b - - 0 1", "c7c5", "b5", "b5b6 b5c6"},
        {"7k/2p5/P2p4/3P4/8/8/8/7K b - - 0 1", "c7c5", "", "h1h2 h1g2 h1g1 d5c6 a6a7"},
        {"4r2k/8/8/8/8/3n4/8/R3KB2 w - - 0 1", "", "", "e1e2 e1d2 e1f2 e1d1"}, // double check
        // in check: the king, captures of the checker, interpositions, captures en passant
        {"7k/8/8/8/6N1/4r3/3P4/4KB2 w - - 0 1", "", "", "e1e2 e1f2 e1d1 d2e3 g4e3 f1e2"},
        {"4kb2/3p4/4R3/6n1/8/8/8/7K b - - 0 1", "", "", "e8e7 e8f7 e8d8 d7e6 g5e6 f8e7"},
        {"8/4p3/8/3P1P2/3K4/8/8/7k b - - 0 1", "e7e5", "",
         "d4d3 d4c3 d4e3 d4c5 d4e5 d4c4 d4e4 d5e6 f5e6"},
        {"7k/8/8/8/K5r1/8/4P3/8 w - - 0 1", "", "e2", "e2e4"},
    };
    for (const auto& test : aCases) {
        TTestLine line(test.m_pFen, HalfMovesFor(test.m_pFen, 4));
        const TChessboard& board = PlayLine(line, test.m_pLine, [](TChessboard&) {});
        const std::string strFigure = test.m_pFigure;
        const std::vector<TMove> vecMoves =
            strFigure.empty() ? Generated(board)
                              : Generated(board, (strFigure[1] - '1') * 8 + strFigure[0] - 'a');
        EXPECT_EQ(Texts(vecMoves), test.m_pExpected) << test.m_pFen;
    }
}

TEST(Moves, PassesAndTheRootHaveNoCaptureEnPassant)
{
    TTestLine root("4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1", 3);
    EXPECT_EQ(Texts(Generated(root.board, 36)), "e5e6");

    TTestLine line("4k3/8/8/8/4p3/8/3P4/4K3 w - - 0 1", 5);
    TChessboard& board = PlayLine(line, "d2d4", [](TChessboard&) {});
    EXPECT_EQ(Texts(Generated(board, 28)), "e4e3 e4d3");
    TMove pass{60, 60, 0, 0};
    TChessboard black = CopyOf(board);
    ASSERT_TRUE(black.MakeBlackMove(&pass));
    TChessboard white = CopyOf(black);
    white.MakeWhiteNullMove();
    TSlowPosition slow(board.m_board, EColour::White);
    EXPECT_EQ(ContentsOf(black), ContentsOf(Scanned(slow, 3, pass)));
    EXPECT_EQ(ContentsOf(white), ContentsOf(Scanned(slow, 2, {4, 4, 0, 0})));
    EXPECT_EQ(Texts(Generated(white, 28)), "e4e3");
}

} // namespace
} // namespace corvina
