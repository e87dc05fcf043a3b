#include "chess/boardid.h"
#include "support/positions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>
#include <set>

namespace corvina
{
namespace
{

std::string Lower(std::string strText)
{
    for (char& c : strText)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return strText;
}

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
    // With a chance of 8 in 8 for a figure the string is full to its last bit.
    constexpr TFigure aFigures[] = {WHITE_KING,   BLACK_KING,   WHITE_PAWN,   BLACK_PAWN,
                                    WHITE_QUEEN,  BLACK_QUEEN,  WHITE_ROOK,   BLACK_ROOK,
                                    WHITE_BISHOP, BLACK_BISHOP, WHITE_KNIGHT, BLACK_KNIGHT};
    std::mt19937 random(1);
    for (unsigned nBoard = 0; nBoard < 900; ++nBoard) {
        std::uint8_t anBoard[64], anRead[64], anParsed[64];
        for (std::uint8_t& square : anBoard)
            square = random() % 8 < nBoard % 9 ? aFigures[random() % 12] : NO_FIGURE;
        const TChessboardId id(anBoard);
        const std::string strText = id.ToAlphanum6();
        EXPECT_EQ(strText.size(), static_cast<std::size_t>((id.m_nBits + 5) / 6));
        TChessboardId copy;
        ASSERT_TRUE(copy.FromAlphanum6(strText));
        EXPECT_LE(copy.m_nBits - id.m_nBits, 5);
        EXPECT_EQ(copy.ToAlphanum6(), strText);
        copy.ToBoard(anRead);
        ASSERT_TRUE(ParsePositionId(strText, anParsed));
        EXPECT_EQ(std::memcmp(anBoard, anRead, 64), 0);
        EXPECT_EQ(std::memcmp(anBoard, anParsed, 64), 0);
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
                c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
        TChessboardId id;
        ASSERT_TRUE(id.FromAlphanum6(strText));
        EXPECT_EQ(id.GetIdFileName().substr(0, 10), strText + '.');
        setNames.insert(Lower(id.GetIdFileName()));
    }
    EXPECT_EQ(setNames.size(), 128u);

    std::map<std::string, std::string> mapBoards;
    for (const char* pFen : g_aWalkStarts) {
        RandomWalk(pFen, 2, 400, [&](TChessboard& board) {
            const std::string strBoard(reinterpret_cast<const char*>(board.m_board), 64);
            const std::string strName = Lower(TChessboardId(board.m_board).GetIdFileName());
            EXPECT_EQ(mapBoards.emplace(strName, strBoard).first->second, strBoard);
        });
    }
}

TEST(BoardId, Failures)
{
    std::uint8_t anBoard[64] = {};
    anBoard[63] = 0x43;
    EXPECT_EQ(FailureText([&] { TChessboardId id(anBoard); }), "Unknown figure code");
    TChessboardId full;
    for (int i = 0; i < TChessboardId::MAX_BITS; ++i)
        full.AppendBit(true);
    EXPECT_EQ(FailureText([&] { full.AppendBit(false); }), "Exception in TChessboardId");

    const struct
    {
        std::string m_strText;
        const char* m_pFailure; ///< null: a character that isn't of the alphabet
    } aCases[] = {
        {"", "Wrong chessboard id"},
        {"0000000000", "Wrong chessboard id"},  // 60 squares
        {"00000000008", "Wrong chessboard id"}, // ends within the code of the last figure
        {"p0000000000000", "Unknown figure short code"},
        {std::string(54, '0') + "1", "Exception in TChessboardId"},
        {std::string(53, '0') + "4", "Exception in TChessboardId"},
        {"000000000-0", nullptr},
        {"00000000000 ", nullptr},
    };
    for (const auto& c : aCases) {
        TChessboardId id;
        std::uint8_t anOut[64] = {7, 7};
        bool bRead = true;
        const std::string strFailure = FailureText([&] {
            bRead = id.FromAlphanum6(c.m_strText);
            if (bRead) {
                std::uint8_t anScratch[64];
                id.ToBoard(anScratch);
            }
        });
        EXPECT_EQ(strFailure, c.m_pFailure ? c.m_pFailure : "") << c.m_strText;
        EXPECT_EQ(bRead, c.m_pFailure != nullptr) << c.m_strText;
        EXPECT_FALSE(ParsePositionId(c.m_strText, anOut)) << c.m_strText;
        EXPECT_TRUE(anOut[0] == 7 && anOut[1] == 7) << c.m_strText;
    }
}

} // namespace
} // namespace corvina
