#include "chess/moveset.h"
#include "support/chesstest.h"

#include <cstring>
#include <map>

namespace corvina
{
namespace
{

/// What MakeMove makes of a text: the full form of the move, "-" for null, "!" for a text without
/// one origin, "?" for an invalid move.
std::string MadeMove(TChessboard& board, const std::string& strText)
{
    const TChessboard* pChild = nullptr;
    const std::string strFailure = FailureText([&] { pChild = MakeMove(board, strText); });
    if (!strFailure.empty())
        return strFailure == "Error in FindPosFrom()"                    ? "!"
               : strFailure == "Invalid move in MakeMove() : " + strText ? "?"
                                                                         : strFailure;
    return pChild ? PrintMove(pChild->m_LastMove, board) : "-";
}

TMove Move(int from, int to, TFigure promotion = 0)
{
    TMove move{};
    move.m_from = static_cast<TSquare>(from);
    move.m_to = static_cast<TSquare>(to);
    move.m_promotion = promotion;
    return move;
}

constexpr const char* START = g_aWalkStarts[0];
constexpr char PROMOTION[] = "1n2k3/P7/8/8/8/8/8/4K3";
constexpr char CASTLING[] = "r3k2r/8/8/8/8/8/8/R3K2R";

TEST(Notation, SquaresAndForms)
{
    for (int square = 0; square < 64; ++square) {
        const std::string strSquare = SquareToString(static_cast<TSquare>(square));
        EXPECT_EQ(String2Square(strSquare), square);
        EXPECT_EQ(String2Square(std::string(1, strSquare[0] | 32) + strSquare[1]), square);
    }
    EXPECT_EQ(String2Square("e4"), 28);
    EXPECT_EQ(SquareToString(64, "none"), "none");
    for (const std::string& strText : Split("|e|i4|e0|e9|4e|e4 |@1", '|'))
        EXPECT_EQ(FailureText([&] { String2Square(strText); }),
                  "Error in String2Square() " + strText);

    EXPECT_EQ(FormatMove(Move(2, 16), WHITE_BISHOP, false), "Bc1-a3");
    EXPECT_EQ(FormatMove(Move(12, 27), BLACK_KNIGHT, true), "Ne2:d4");
    EXPECT_EQ(FormatMove(Move(50, 58, KIND_QUEEN | TMove::MARK), WHITE_PAWN, false), "c7-c8Q");
    EXPECT_EQ(FormatMove(Move(60, 58), BLACK_KING, false), "0-0-0");
    EXPECT_EQ(FormatMove(Move(4, 6), WHITE_ROOK, false), "Re1-g1");
    EXPECT_EQ(FormatMove(Move(9, 9), WHITE_KING, false), "-");
    EXPECT_EQ(FormatMove(Move(9, 64), WHITE_KING, false), "");
}

TEST(Notation, ReadingTheFullForm)
{
    constexpr char EMPTY[] = "Empty string";
    constexpr char LENGTH[] = "Improper string length";
    constexpr char COLUMNS[] = "Improper full description of move";
    constexpr char LETTER[] = "Unknown figure letter: Z";
    constexpr char IMPROPER[] = "Improper move description";
    constexpr char ILLEGAL[] = "Illegal move";
    constexpr char SHORT[] = "Short notation not supported.";
    const char* aCases[][3] = {
        {START, EMPTY, "|   "},
        {START, "", "  e2-e4 |E2 E4|Nb1-c3|Sb1xc3"},
        {START, LENGTH, "Ng1--f3|0-0+"},
        {START, COLUMNS, "e2-e4+|e2-i4|e2-e9|e0-e4|22-e4|e2-e4K|e2-e4b"},
        {START, LETTER, "e2-e4Z|Zb1-c3"},
        {START, SHORT, "Nf3|e4|bxc3|N:e2d4"},
        {START, IMPROPER, ":e2e4|xe2e4|Nb1-d2|Bb1-c3|b1-c3|e7-e5|e3-e4|0-0"},
        {START, ILLEGAL, "Bc1-a3|e2-e5|e2-d3|e2-e4Q|Nb1-c3Q"},
        {PROMOTION, "", "a7:b8N"},
        {PROMOTION, ILLEGAL, "a7-a8"},
        {"4k3/8/8/2pP4/8/8/8/4K3", ILLEGAL, "d5:c6"},
        {"4k3/8/8/8/8/2n5/1PP5/4K3", "", "b2xc3"},
        {"4k3/8/8/8/8/2n5/1PP5/4K3", ILLEGAL, "c2-c4|c2-c3"},
        {"4k3/4r3/8/8/8/8/4N3/4K3", ILLEGAL, "Ne2-c3"},
        {CASTLING, "", "0-0|0-0-0"},
        {CASTLING, ILLEGAL, "Ke1-g1"},
        {"1r2k3/8/8/8/8/8/8/R3K3", "", "0-0-0"}, // only b1 is attacked
        {"3rk1r1/8/8/8/8/8/8/R3K2R", ILLEGAL, "0-0|0-0-0"},
        {"4k3/8/8/8/8/8/8/RN2K3", ILLEGAL, "0-0-0"},
        {"4k3/8/8/8/8/8/8/R4K2", IMPROPER, "0-0-0"},
    };
    for (const auto& [pFen, pFailure, pTexts] : aCases) {
        TTestLine line(pFen, 3);
        for (const std::string& strText : Split(pTexts, '|'))
            EXPECT_EQ(FailureText([&] { ParseMove(line.board, strText); }), pFailure)
                << strText << " in " << pFen;
    }
    EXPECT_EQ(FailureText([] { ParseFullMove("Nf3", true); }), LENGTH);
    // With nothing left to move the last test is left out.
    TTestLine pinned("4k3/4r3/8/8/8/8/8/4R1K1", 2);
    EXPECT_EQ(FailureText([&] { ParseMove(pinned.board, "Re7-d7"); }), ILLEGAL);
    pinned.board.m_nMoves = 0;
    EXPECT_EQ(FailureText([&] { ParseMove(pinned.board, "Re7-d7"); }), "");
    EXPECT_EQ(MadeMove(pinned.board, "Kf7"), "-");
}

TEST(Notation, MakeMoveReadsBothForms)
{
    const char* aCases[][2] = {
        {START, "Nf3>Ng1-f3|  Nf3+ >Ng1-f3|  Ng1-f3>Ng1-f3|Sf3>Ng1-f3|e4>e2-e4|E4>e2-e4|Nd4>!|e5>!|"
                "e2-e4x>e2-e4|e2-e4+>e2-e4|e2-e4b>e2-e4|e2-e5>?|Nb1-c4>?"},
        // Faults of form
        {START, "Nf3->-|>-|->-|e2-e>-|Nb1-c>-|hello>-|Łódź>-|zz>-|ed>-|Ni9>-|e2-e4Q>-|e2-e4z>-|"
                "Bb1-c3>-|Zb1-c3>-|e7-e5>-|Bc1-a3>-|Nb1-d2>-"},
        {PROMOTION, "a8>-|a7-a8K>-|a8R>a7-a8R|ab8N#>a7:b8N|a7:b8n>a7:b8N"},
        // The last text has one candidate, whatever it says of the origin.
        {"4k3/8/8/1N6/8/8/8/1N2K1N1",
         "Nc3>!|Nbc3>!|N1c3>Nb1-c3|N5c3>Nb5-c3|N1a3>Nb1-a3|Nbf3>Ng1-f3"},
        {"4k3/8/8/3p4/2P1P3/8/8/4K3", "cd>c4:d5|exd5>e4:d5|e:d5>e4:d5|d5>!|ce>-"},
        {"4k3/8/8/3p4/2P1P3/8/8/4K3 b - -", "dc>d5:c4|d:e4>d5:e4|d4>d5-d4"},
        {"4k3/4r3/8/8/8/8/4N3/4K3", "Nc3>?"},
        {CASTLING, "0-0>0-0|0-0-0>0-0-0|Kg1>0-0|0-0+>-|0-0-0-0>-"},
        {"4k1r1/8/8/8/8/8/8/4K2R", "0-0>?"},
        // The last figure of Black is taken with nothing left to mate with.
        {"4k3/8/8/8/8/8/3n4/2B1K3", "B:d2>Bc1:d2"},
    };
    for (const auto& [pFen, pTexts] : aCases) {
        TTestLine line(pFen, HalfMovesFor(pFen, 3));
        for (const std::string& strCase : Split(pTexts, '|')) {
            const std::vector<std::string> vecParts = Split(strCase, '>');
            EXPECT_EQ(MadeMove(line.board, vecParts[0]), vecParts[1]) << vecParts[0] << " " << pFen;
        }
    }
    TTestLine line("4k3/2p5/8/1P1P4/8/8/8/4K3 b - - 0 1", 6);
    TChessboard* pAfter = MakeMove(line.board, "c5");
    ASSERT_TRUE(pAfter);
    EXPECT_EQ(MadeMove(*pAfter, "bc"), "b5:c6");
    EXPECT_EQ(MadeMove(*pAfter, "d:c6"), "d5:c6");
    EXPECT_EQ(MadeMove(*pAfter, "c6"), "!");
    TChessboard* pLater = PlayMoves(*pAfter, "Kd1 Kf8");
    ASSERT_TRUE(pLater);
    EXPECT_EQ(MadeMove(*pLater, "bc"), "-");
    EXPECT_EQ(FailureText([&] { ParseMove(*pLater, "d5:c6"); }), "Illegal move");
    for (const int figure : {0, 3, COLOUR_WHITE | 5, 0xC1})
        EXPECT_EQ(FailureText([&] { FindPosFrom(*pLater, static_cast<TFigure>(figure), 16); }),
                  "Error in FindPosFrom()");
}

TEST(Notation, PlayMovesNumbersAndRestores)
{
    // The last three have a token of 15 characters, a king's move that isn't one, too many moves.
    const char* aCases[][2] = {
        {"1.e2-e4 e7-e5 2.Ng1-f3", "e2-e4-1 e7-e5-1 g1-f3-1 "},
        {" 1. e4 e5\t2. Nf3\n ", "e2-e4-1 e7-e5-1 g1-f3-1 "},
        {"e4 e7-e5+++++++++ Nf3", "e2-e4-1 e7-e5-1 g1-f3-1 "},
        {"1 e4 e5 2 Nf3", ""},
        {"1.e4 e5 3.Nf3", ""},
        {"1.e4 e5 hello", ""},
        {"1.e4 e7-e5++++++++++", ""},
        {"1.e4 e5 Ke5", ""},
        {"1.e4 e5 2.Nf3 Nc6 3.d4 ed4 4.e5 Qe7", ""},
    };
    for (const auto& [pText, pExpected] : aCases) {
        TTestLine line(START, 7);
        TChessboard* const pKept = PlayMoves(line.board, "1.d4 Nf6 2.c4 g6 3.Nc3 Bg7");
        ASSERT_TRUE(pKept);
        const std::string strKept = WriteFen(*pKept, false);
        line.context.m_anLevelCounter[5] = 9;
        const TChessboard* pLast = nullptr;
        std::string strCalls;
        const auto note = [&](const TMove& move, int nResult) {
            strCalls += FormatMove(move, 0, false) + std::to_string(nResult) + ' ';
        };
        FailureText([&] { pLast = PlayMoves(line.board, pText, note); });
        EXPECT_EQ(pLast ? strCalls : "", pExpected) << pText;
        if (!pLast) {
            EXPECT_EQ(WriteFen(*pKept, false), strKept) << pText;
            EXPECT_EQ(line.context.m_anLevelCounter[5], 9) << pText;
        }
    }
}

/// Writes a legal move in both forms and reads it back; returns what is special about it.
std::string RoundTrip(TChessboard& board, const TMove& move)
{
    const TChessboard slot = board.m_pThread->Slot(board.m_nMoves);
    const std::string strFull = PrintMove(move, board);
    EXPECT_TRUE(IsSameMove(ParseFullMove(strFull, board.IsWhiteToMove()), move));
    std::uint8_t& nCounter =
        board.m_pThread->m_anLevelCounter[static_cast<std::size_t>(board.m_nMoves - 1)];
    nCounter = 7;
    const TMove parsed = ParseMove(board, strFull);
    EXPECT_TRUE(IsMoveLegal(board, move) && nCounter == 7) << strFull;
    EXPECT_TRUE(IsSameMove(parsed, move)) << strFull;
    EXPECT_EQ(parsed.m_bEnPassant, move.m_bEnPassant) << strFull;
    EXPECT_EQ(std::memcmp(&slot, &board.m_pThread->Slot(board.m_nMoves), sizeof slot), 0);

    const TChessboard child = *MakeMove(board, strFull);
    EXPECT_TRUE(IsSameMove(child.m_LastMove, move)) << strFull;
    const std::string strShort = GetShortMoveText(child);
    EXPECT_LE(strShort.size(), strFull.size());
    EXPECT_EQ(MadeMove(board, strShort), strFull) << strShort << " " << WriteFen(board, false);
    const bool bCastling = strShort[0] == '0';
    EXPECT_EQ(MadeMove(board, strShort + '+'), bCastling ? "-" : strFull);
    return bCastling                 ? "castling"
           : move.m_bEnPassant       ? "en passant"
           : move.m_promotion        ? "promotion"
           : strShort.find(':') == 2 ? "part of the origin"
           : strShort == strFull     ? "whole origin"
                                     : "plain";
}

/// The moves between squares that no legal move joins are refused.
void RefuseOthers(TChessboard& board, const std::vector<TMove>& vecLegal)
{
    for (int nMove = 0; nMove < 64 * 64; ++nMove) {
        TMove move = Move(nMove & 63, nMove >> 6);
        if (!(board.m_board[move.m_from] & ColourBit(board.SideToMove())))
            continue;
        if ((board.m_board[move.m_from] & KIND_MASK) == KIND_PAWN && IsEdge(RowOf(move.m_to)))
            move.m_promotion = KIND_ROOK;
        const bool bLegal = ContainsMove(vecLegal, move);
        EXPECT_EQ(IsMoveLegal(board, move), bLegal);
        const std::string strText = PrintMove(move, board);
        if (strText[0] == '0') // a far move of the king would be read as castling
            continue;
        EXPECT_EQ(FailureText([&] { ParseMove(board, strText); }).empty(), bLegal) << strText;
        EXPECT_EQ(MadeMove(board, strText) == strText && strText != "-", bLegal) << strText;
    }
}

TEST(Notation, EveryLegalMoveAndNoOther)
{
    std::map<std::string, int> mapSeen;
    for (const char* pFen : g_aWalkStarts) {
        RandomWalk(pFen, 4, 320, [&](TChessboard& board) {
            const std::vector<TMove> vecLegal = LegalMoves(board);
            for (const TMove& move : vecLegal)
                ++mapSeen[RoundTrip(board, move)];
            if (board.m_nMoves % 4 < 2)
                RefuseOthers(board, vecLegal);
        });
    }
    for (const char* pKind :
         {"castling", "en passant", "promotion", "part of the origin", "whole origin", "plain"})
        EXPECT_GE(mapSeen[pKind], 5) << pKind;
}

} // namespace
} // namespace corvina
