#include "chess/fen.h"
#include "chess/notation.h"
#include "support/positions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>

namespace corvina
{
namespace
{

constexpr char NO_MOVE[] = "(none)"; ///< what MadeMove gives for null

/// What MakeMove makes of a text: the full form of the move, NO_MOVE or the text of the failure.
std::string MadeMove(TChessboard& board, const std::string& strText)
{
    const TChessboard* pChild = nullptr;
    const std::string strFailure = FailureText([&] { pChild = MakeMove(board, strText); });
    if (!strFailure.empty())
        return strFailure;
    return pChild ? PrintMove(pChild->m_LastMove, board) : NO_MOVE;
}

std::string MadeMove(const char* pFen, const std::string& strText)
{
    TTestLine line(pFen, HalfMovesFor(pFen, 3));
    return MadeMove(line.board, strText);
}

constexpr const char* START = g_aWalkStarts[0];
constexpr char PROMOTION[] = "1n2k3/P7/8/8/8/8/8/4K3";
constexpr char CASTLING[] = "r3k2r/8/8/8/8/8/8/R3K2R";

TEST(Notation, SquaresAndForms)
{
    for (int square = 0; square < 64; ++square) {
        const std::string strSquare = SquareToString(static_cast<TSquare>(square), "none");
        const std::string strLower{static_cast<char>(strSquare[0] + 32), strSquare[1]};
        EXPECT_EQ(String2Square(strSquare), square);
        EXPECT_EQ(String2Square(strLower), square);
    }
    EXPECT_EQ(String2Square("e4"), 28);
    EXPECT_EQ(SquareToString(64, "none"), "none");
    EXPECT_EQ(SquareToString(NO_SQUARE), "");
    for (const char* pText : {"", "e", "i4", "e0", "e9", "4e", "e4 ", "@1"})
        EXPECT_EQ(FailureText([&] { String2Square(pText); }),
                  std::string("Error in String2Square() ") + pText);

    const auto format = [](int from, int to, TFigure figure, bool bCapture, TFigure promotion = 0) {
        TMove move{};
        move.m_from = static_cast<TSquare>(from);
        move.m_to = static_cast<TSquare>(to);
        move.m_promotion = promotion;
        return FormatMove(move, figure, bCapture);
    };
    EXPECT_EQ(format(2, 16, WHITE_BISHOP, false), "Bc1-a3");
    EXPECT_EQ(format(12, 27, BLACK_KNIGHT, true), "Ne2:d4");
    EXPECT_EQ(format(50, 58, WHITE_PAWN, false, KIND_QUEEN | TMove::MARK), "c7-c8Q");
    EXPECT_EQ(format(4, 6, WHITE_KING, false), "0-0");
    EXPECT_EQ(format(60, 58, BLACK_KING, false), "0-0-0");
    EXPECT_EQ(format(4, 6, WHITE_ROOK, false), "Re1-g1");
    EXPECT_EQ(format(9, 9, WHITE_KING, false), "-");
    EXPECT_EQ(format(9, 64, WHITE_KING, false), "");
    EXPECT_EQ(format(200, 9, WHITE_KING, true), "");
}

TEST(Notation, FullFormFailures)
{
    constexpr char LENGTH[] = "Improper string length";
    constexpr char COLUMNS[] = "Improper full description of move";
    constexpr char IMPROPER[] = "Improper move description";
    constexpr char ILLEGAL[] = "Illegal move";
    constexpr char SHORT[] = "Short notation not supported.";
    const struct
    {
        const char* m_pFen;
        const char* m_pText;
        const char* m_pFull;  ///< failure of ParseFullMove; empty: none
        const char* m_pParse; ///< failure of ParseMove
    } aCases[] = {
        {START, "", "Empty string", "Empty string"},
        {START, "   ", "Empty string", "Empty string"},
        {START, "  e2-e4 ", "", ""},
        {START, "E2 E4", "", ""},
        {START, "Nb1-c3", "", ""},
        {START, "Sb1-c3", "", ""},
        {START, "e2-e4+", COLUMNS, COLUMNS},
        {START, "Ng1--f3", LENGTH, LENGTH},
        {START, "0-0+", LENGTH, LENGTH},
        {START, "e2-i4", COLUMNS, COLUMNS},
        {START, "e2-e9", COLUMNS, COLUMNS},
        {START, "e0-e4", COLUMNS, COLUMNS},
        {START, "22-e4", COLUMNS, COLUMNS},
        {START, "e2-e4K", COLUMNS, COLUMNS},
        {START, "e2-e4b", COLUMNS, COLUMNS},
        {START, "e2-e4Z", "Unknown figure letter: Z", "Unknown figure letter: Z"},
        {START, "Zb1-c3", "", "Unknown figure letter: Z"},
        {START, ":e2e4", COLUMNS, IMPROPER},
        {START, "xe2e4", COLUMNS, IMPROPER},
        {START, "Nf3", LENGTH, SHORT},
        {START, "e4", LENGTH, SHORT},
        {START, "bxc3", LENGTH, SHORT},
        {START, "N:e2d4", COLUMNS, SHORT},
        {START, "Nb1-d2", "", IMPROPER},
        {START, "Bb1-c3", "", IMPROPER},
        {START, "b1-c3", "", IMPROPER},
        {START, "e7-e5", "", IMPROPER},
        {START, "e3-e4", "", IMPROPER},
        {START, "Bc1-a3", "", ILLEGAL},
        {START, "e2-e5", "", ILLEGAL},
        {START, "e2-d3", "", ILLEGAL},
        {START, "e2-e4Q", "", ILLEGAL},
        {START, "Nb1-c3Q", "", ILLEGAL},
        {START, "0-0", "", IMPROPER},
        {PROMOTION, "a7:b8N", "", ""},
        {PROMOTION, "a7-a8", "", ILLEGAL},
        {"4k3/8/8/2pP4/8/8/8/4K3", "d5:c6", "", ILLEGAL},
        {"4k3/8/8/8/8/2n5/1P6/4K3", "b2xc3", "", ""},
        {"4k3/8/8/8/8/2n5/2P5/4K3", "c2-c4", "", ILLEGAL},
        {"4k3/4r3/8/8/8/8/4N3/4K3", "Ne2-c3", "", ILLEGAL},
        {CASTLING, "0-0", "", ""},
        {CASTLING, "0-0-0", "", ""},
        {CASTLING, "Ke1-g1", "", ILLEGAL},
        {"1r2k3/8/8/8/8/8/8/R3K3", "0-0-0", "", ""}, // only b1 is attacked
        {"3rk3/8/8/8/8/8/8/R3K3", "0-0-0", "", ILLEGAL},
        {"4k1r1/8/8/8/8/8/8/4K2R", "0-0", "", ILLEGAL},
        {"4k3/8/8/8/8/8/8/RN2K3", "0-0-0", "", ILLEGAL},
        {"4k3/8/8/8/8/8/8/R4K2", "0-0-0", "", IMPROPER},
    };
    for (const auto& c : aCases) {
        TTestLine line(c.m_pFen, 3);
        const std::string strLabel = std::string(c.m_pText) + " in " + c.m_pFen;
        EXPECT_EQ(FailureText([&] { ParseFullMove(c.m_pText, true); }), c.m_pFull) << strLabel;
        EXPECT_EQ(FailureText([&] { ParseMove(line.board, c.m_pText); }), c.m_pParse) << strLabel;
    }
    // With nothing left to move the last test is left out.
    TTestLine pinned("4k3/4r3/8/8/8/8/4N3/4K3", 1);
    pinned.board.m_nMoves = 0;
    EXPECT_EQ(FailureText([&] { ParseMove(pinned.board, "Kd8-c7"); }), "Improper move description");
    EXPECT_EQ(FailureText([&] { ParseMove(pinned.board, "Re7-d7"); }), "");
}

TEST(Notation, MakeMoveReadsBothForms)
{
    constexpr char NONE[] = "Error in FindPosFrom()";
    constexpr char KNIGHTS[] = "4k3/8/8/1N6/8/8/8/1N2K1N1";
    const struct
    {
        const char* m_pFen;
        const char* m_pText;
        const char* m_pResult;
    } aCases[] = {
        {START, "Nf3", "Ng1-f3"},
        {START, "  Nf3+ ", "Ng1-f3"},
        {START, "  Ng1-f3", "Ng1-f3"},
        {START, "Sf3", "Ng1-f3"},
        {START, "e4", "e2-e4"},
        {START, "E4", "e2-e4"},
        {START, "e2-e4x", "e2-e4"},
        {START, "e2-e4+", "e2-e4"},
        {START, "e2-e4b", "e2-e4"},
        {START, "Nf3-", NO_MOVE},
        {START, "", NO_MOVE},
        {START, "-", NO_MOVE},
        {START, "e2-e", NO_MOVE},
        {START, "Nb1-c", NO_MOVE},
        {START, "hello", NO_MOVE},
        {START, "Łódź", NO_MOVE},
        {START, "zz", NO_MOVE},
        {START, "ed", NO_MOVE},
        {START, "Ni9", NO_MOVE},
        {START, "e2-e4Q", NO_MOVE},
        {START, "e2-e4z", NO_MOVE},
        {START, "Bb1-c3", NO_MOVE},
        {START, "Zb1-c3", NO_MOVE},
        {START, "e7-e5", NO_MOVE},
        {START, "Bc1-a3", NO_MOVE},
        {START, "Nb1-d2", NO_MOVE},
        {START, "e2-e5", "Invalid move in MakeMove() : e2-e5"},
        {START, "Nb1-c4", "Invalid move in MakeMove() : Nb1-c4"},
        {START, "Nd4", NONE},
        {START, "e5", NONE},
        {PROMOTION, "a8", NO_MOVE},
        {PROMOTION, "a7-a8K", NO_MOVE},
        {PROMOTION, "a8R", "a7-a8R"},
        {PROMOTION, "ab8N#", "a7:b8N"},
        {PROMOTION, "a7:b8n", "a7:b8N"},
        {KNIGHTS, "Nbc3", NONE}, // both stand on the file
        {KNIGHTS, "N1c3", "Nb1-c3"},
        {KNIGHTS, "N5c3", "Nb5-c3"},
        {KNIGHTS, "Nc3", NONE},
        {KNIGHTS, "N1a3", "Nb1-a3"},
        {KNIGHTS, "Nbf3", "Ng1-f3"}, // the only candidate whatever the text says
        {"4k3/8/8/3p4/8/8/1N3N2/4K3", "Nd1", NONE},
        {"4k3/8/8/3p4/2P1P3/8/8/4K3", "cd", "c4:d5"},
        {"4k3/8/8/3p4/2P1P3/8/8/4K3", "exd5", "e4:d5"},
        {"4k3/8/8/3p4/2P1P3/8/8/4K3", "e:d5", "e4:d5"},
        {"4k3/8/8/3p4/2P1P3/8/8/4K3", "d5", NONE},
        {"4k3/8/8/3p4/2P1P3/8/8/4K3", "ce", NO_MOVE},
        {"4k3/8/8/3p4/2P1P3/8/8/4K3 b - - 0 1", "dc", "d5:c4"},
        {"4k3/8/8/8/8/8/3p4/7K b - - 0 1", "d1Q", "d2-d1Q"},
        {"4k3/8/8/2n5/5n2/8/3N4/2B1K3", "Bd2", NO_MOVE},
        {"4k3/4r3/8/8/8/8/4N3/4K3", "Nc3", "Invalid move in MakeMove() : Nc3"},
        {CASTLING, "0-0", "0-0"},
        {CASTLING, "0-0-0", "0-0-0"},
        {CASTLING, "Kg1", "0-0"},
        {CASTLING, "0-0+", NO_MOVE},
        {CASTLING, "0-0-0-0", NO_MOVE},
        {"4k1r1/8/8/8/8/8/8/4K2R", "0-0", "Invalid move in MakeMove() : 0-0"},
        // The last figure of Black is taken with nothing left to mate with.
        {"4k3/8/8/8/8/8/3n4/2B1K3", "B:d2", "Bc1:d2"},
    };
    for (const auto& c : aCases)
        EXPECT_EQ(MadeMove(c.m_pFen, c.m_pText), c.m_pResult) << c.m_pText << " in " << c.m_pFen;
}

TEST(Notation, EnPassant)
{
    TTestLine line("4k3/2p5/8/1P1P4/8/8/8/4K3 b - - 0 1", 6);
    TChessboard* pAfter = MakeMove(line.board, "c5");
    ASSERT_TRUE(pAfter);
    EXPECT_EQ(MadeMove(*pAfter, "bc"), "b5:c6");
    EXPECT_EQ(MadeMove(*pAfter, "d:c6"), "d5:c6");
    EXPECT_EQ(MadeMove(*pAfter, "c6"), "Error in FindPosFrom()");
    EXPECT_EQ(ParseMove(*pAfter, "d5:c6").m_bEnPassant, 1);
    // A move later the right is gone.
    TChessboard* pLater = PlayMoves(*pAfter, "Kd1 Kf8");
    ASSERT_TRUE(pLater);
    EXPECT_EQ(MadeMove(*pLater, "bc"), NO_MOVE);
    EXPECT_EQ(FailureText([&] { ParseMove(*pLater, "d5:c6"); }), "Illegal move");
}

TEST(Notation, FindPosFromAndCallback)
{
    TTestLine line(START, 3);
    EXPECT_EQ(FindPosFrom(line.board, KIND_KING, 30), 4); // wherever it can go
    EXPECT_EQ(FindPosFrom(line.board, BLACK_KNIGHT, 42), 57);
    for (const int figure : {0, 3, COLOUR_WHITE | 0, COLOUR_WHITE | 5, 0xC1})
        EXPECT_EQ(FailureText([&] { FindPosFrom(line.board, static_cast<TFigure>(figure), 16); }),
                  "Error in FindPosFrom()");
    EXPECT_EQ(FailureText([&] { FindPosFrom(line.board, KIND_PAWN, NO_SQUARE); }),
              "Error in FindPosFrom()");

    std::string strCalls;
    const auto note = [&](const TMove& move, int nResult) {
        strCalls += FormatMove(move, KIND_PAWN, false) + std::to_string(nResult) + ' ';
    };
    EXPECT_TRUE(PlayMoves(line.board, "1. e4 d5", note));
    EXPECT_EQ(strCalls, "e2-e4-1 d7-d5-1 ");
}

TEST(Notation, PlayMovesNumbersAndRestores)
{
    const struct
    {
        const char* m_pText;
        const char* m_pLast; ///< the last move; null: no line of moves
    } aCases[] = {
        {"1.e2-e4 e7-e5 2.Ng1-f3 Nb8-c6", "Nb8-c6"},
        {" 1. e4 e5\t2. Nf3\n Nc6 ", "Nb8-c6"},
        {"e4 e5 Nf3 Nc6", "Nb8-c6"},
        {"1 e4 e5 2 Nf3", nullptr}, // the number stays part of the token without its point
        {"1.e4 e5 3.Nf3", nullptr},
        {"1.e4 e5 2.", nullptr},
        {"1.e4 e5 hello", nullptr},
        {"1.e4 e7-e5++++++++++", nullptr}, // 15 characters
        {"1.e4 e7-e5+++++++++", "e7-e5"},
        {"1.e4 e5 2.Nf3 Nc6 3.d4 ed4 4.e5 Qe7", nullptr}, // too many for the task
    };
    for (const auto& c : aCases) {
        TTestLine line(START, 7);
        TChessboard* const pKept = PlayMoves(line.board, "1.d4 Nf6 2.c4 g6 3.Nc3 Bg7");
        ASSERT_TRUE(pKept);
        const std::string strKept = WriteFen(*pKept, false);
        line.context.m_aCaptures[0][0] = {7, BLACK_ROOK};
        line.context.m_anLevelCounter[5] = 9;
        const TChessboard* pLast = nullptr;
        FailureText([&] { pLast = PlayMoves(line.board, c.m_pText); });
        if (c.m_pLast) {
            ASSERT_TRUE(pLast) << c.m_pText;
            EXPECT_EQ(PrintMove(pLast->m_LastMove, *pLast->m_pParent), c.m_pLast) << c.m_pText;
            continue;
        }
        EXPECT_FALSE(pLast) << c.m_pText;
        EXPECT_EQ(WriteFen(*pKept, false), strKept) << c.m_pText;
        EXPECT_EQ(line.context.m_aCaptures[0][0].m_square, 7);
        EXPECT_EQ(line.context.m_anLevelCounter[5], 9);
    }
}

/// Every legal move of many positions is written and read back; the squares that no legal move
/// joins are refused.
TEST(Notation, EveryLegalMoveAndNoOther)
{
    std::map<std::string, int> mapSeen;
    for (const char* pFen : g_aWalkStarts) {
        RandomWalk(pFen, 4, 320, [&](TChessboard& board) {
            const std::vector<TMove> vecLegal = LegalMoves(board);
            const TChessboard slot = board.m_pThread->Slot(board.m_nMoves);
            for (const TMove& move : vecLegal) {
                const std::string strFull = PrintMove(move, board);
                EXPECT_TRUE(IsSameMove(ParseFullMove(strFull, board.IsWhiteToMove()), move));
                const TMove parsed = ParseMove(board, strFull);
                EXPECT_TRUE(IsSameMove(parsed, move)) << strFull;
                EXPECT_EQ(parsed.m_bEnPassant, move.m_bEnPassant) << strFull;
                EXPECT_TRUE(IsMoveLegal(board, move)) << strFull;
                EXPECT_EQ(std::memcmp(&slot, &board.m_pThread->Slot(board.m_nMoves), sizeof slot),
                          0);

                TChessboard child = *MakeMove(board, strFull);
                ASSERT_TRUE(IsSameMove(child.m_LastMove, move)) << strFull;
                const std::string strShort = GetShortMoveText(child);
                EXPECT_LE(strShort.size(), strFull.size());
                EXPECT_EQ(MadeMove(board, strShort), strFull) << WriteFen(board, false);
                const bool bCastling = strShort[0] == '0';
                EXPECT_EQ(MadeMove(board, strShort + '+'), bCastling ? NO_MOVE : strFull);
                board.m_pThread->Slot(board.m_nMoves) = slot;
                ++mapSeen[bCastling                 ? "castling"
                          : move.m_bEnPassant       ? "en passant"
                          : move.m_promotion        ? "promotion"
                          : strShort.find(':') == 2 ? "part of the origin"
                                                    : "plain"];
            }
            if (board.m_nMoves % 4 > 1)
                return;
            for (int nMove = 0; nMove < 64 * 64; ++nMove) {
                TMove move{};
                move.m_from = static_cast<TSquare>(nMove & 63);
                move.m_to = static_cast<TSquare>(nMove >> 6);
                if (!(board.m_board[move.m_from] & ColourBit(board.SideToMove())))
                    continue;
                const bool bPawn = (board.m_board[move.m_from] & KIND_MASK) == KIND_PAWN;
                if (bPawn && IsEdge(RowOf(move.m_to)))
                    move.m_promotion = KIND_ROOK;
                const bool bLegal =
                    std::any_of(vecLegal.begin(), vecLegal.end(),
                                [&](const TMove& m) { return IsSameMove(m, move); });
                EXPECT_EQ(IsMoveLegal(board, move), bLegal);
                const std::string strText = PrintMove(move, board);
                if (strText[0] == '0') // a far move of the king would be read as castling
                    continue;
                EXPECT_EQ(FailureText([&] { ParseMove(board, strText); }).empty(), bLegal)
                    << strText;
                EXPECT_EQ(MadeMove(board, strText) == strText, bLegal) << strText;
            }
        });
    }
    for (const char* pKind : {"castling", "en passant", "promotion", "part of the origin", "plain"})
        EXPECT_GE(mapSeen[pKind], 5) << pKind;
}

} // namespace
} // namespace corvina
