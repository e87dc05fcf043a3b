#include "chess/boardid.h"
#include "support/positions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <set>

namespace corvina
{
namespace
{

TEST(BoardId, KnownTexts)
{
    std::uint8_t anBoard[64] = {};
    EXPECT_EQ(TChessboardId(anBoard).ToAlphanum6(), "00000000000");
    // 1 0000, 1 1000 and 62 empty squares, cut into sixes: 100001 and 100000.
    anBoard[0] = WHITE_KING;
    anBoard[1] = BLACK_KING;
    EXPECT_EQ(TChessboardId(anBoard).ToAlphanum6(), "x10000000000");
    TTestLine start(g_aWalkStarts[0], 1);
    EXPECT_EQ(TChessboardId(start.board.m_board).m_nBits, 192);
}

TEST(BoardId, ReadsBackEveryBoard)
{
    constexpr TFigure aKinds[] = {KIND_KING, KIND_PAWN,   KIND_BISHOP,
                                  KIND_ROOK, KIND_KNIGHT, KIND_QUEEN};
    std::mt19937 random(1);
    for (unsigned nBoard = 0; nBoard < 900; ++nBoard) {
        // From empty boards to full ones, whose string is full to its last bit.
        std::uint8_t anBoard[64], anRead[64] = {};
        for (std::uint8_t& square : anBoard)
            square = random() % 8 < nBoard % 9 ? aKinds[random() % 6] | (64 << random() % 2) : 0;
        const std::string strText = TChessboardId(anBoard).ToAlphanum6();
        TChessboardId copy;
        ASSERT_TRUE(copy.FromAlphanum6(strText));
        EXPECT_LE(copy.m_nBits - TChessboardId(anBoard).m_nBits, 5);
        EXPECT_EQ(copy.ToAlphanum6(), strText);
        ASSERT_TRUE(ParsePositionId(strText, anRead));
        EXPECT_EQ(std::memcmp(anBoard, anRead, 64), 0);
    }
}

TEST(BoardId, FileNamesDifferWithoutRegardToCase)
{
    EXPECT_EQ(GetCaseMask("7()0"), "");
    EXPECT_EQ(GetCaseMask("aB3c(D"), "a");   // 0101, lowest first
    EXPECT_EQ(GetCaseMask("AAAAAzZ"), "v2"); // 11111 01
    std::set<std::string> setNames;
    for (unsigned nUpper = 0; nUpper < 128; ++nUpper) {
        std::string strText = "x0qz(befg";
        unsigned nLetter = 0;
        for (char& c : strText) {
            if (c >= 'a' && (nUpper >> nLetter++ & 1))
                c = static_cast<char>(std::toupper(c));
        }
        TChessboardId id;
        ASSERT_TRUE(id.FromAlphanum6(strText));
        std::string strName = id.GetIdFileName();
        EXPECT_EQ(strName.substr(0, 10), strText + '.');
        std::transform(strName.begin(), strName.end(), strName.begin(), ::tolower);
        setNames.insert(strName);
    }
    EXPECT_EQ(setNames.size(), 128u);
}

TEST(BoardId, Failures)
{
    std::uint8_t anBoard[64] = {};
    anBoard[63] = 0x43;
    EXPECT_EQ(FailureText([&] { TChessboardId id(anBoard); }), "Unknown figure code");
    const std::string astrCases[][2] = {
        {"", "Wrong chessboard id"},
        {"0000000000", "Wrong chessboard id"},  // 60 squares
        {"00000000008", "Wrong chessboard id"}, // ends within the code of the last figure
        {"p0000000000000", "Unknown figure short code"},
        {std::string(54, '0') + "1", "Exception in TChessboardId"},
        {std::string(53, '0') + "4", "Exception in TChessboardId"},
        {"000000000-0", "false"},
    };
    for (const auto& [strText, strExpected] : astrCases) {
        const auto read = [&strText = strText] {
            TChessboardId id;
            std::uint8_t anOut[64];
            if (!id.FromAlphanum6(strText))
                throw ChessException("false");
            id.ToBoard(anOut);
        };
        EXPECT_EQ(FailureText(read), strExpected) << strText;
        EXPECT_FALSE(ParsePositionId(strText, anBoard)) << strText;
        EXPECT_EQ(anBoard[63], 0x43) << strText;
    }
}

} // namespace
} // namespace corvina
