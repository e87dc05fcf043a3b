#include "registers/answers.h"
#include "registers/chessboardregister.h"
#include "registers/registersettings.h"
#include "support/boards.h"
#include "support/positions.h"
#include "support/workingfolder.h"

#include <gtest/gtest.h>

namespace corvina
{
namespace
{

/// Works in an empty folder of its own.
class ChessboardRegister : public testing::Test
{
protected:
    const TWorkingFolder m_folder;
    TBoardBytes m_board = NumberedBoard(77);
};

TEST_F(ChessboardRegister, AnswersByDepth)
{
    for (const std::uint16_t nKnown : {5, 6}) {
        for (const bool bResult : {false, true}) {
            const bool bWhite = nKnown == 5;
            TChessboardRegister reg;
            const std::uint32_t nMove = 0xABCD;
            if (bWhite)
                reg.Insert(nKnown, m_board.data(), bResult, &nMove, false);
            else
                reg.InsertDefence(nKnown, m_board.data(), bResult, &nMove, false);
            EXPECT_EQ(reg.GetElementsCount(), bWhite ? 1U : 0U);
            for (std::uint16_t nMoves = 0; nMoves < 12; ++nMoves) {
                const bool bUp = bWhite == bResult;
                const std::uint8_t nExpected = (bUp ? nMoves >= nKnown : nMoves <= nKnown)
                                                   ? std::uint8_t{bResult}
                                                   : REGISTER_UNKNOWN;
                std::uint32_t nFound = 0;
                EXPECT_EQ(bWhite ? reg.FindWhite(nMoves, m_board.data())
                                 : reg.FindDefence(nMoves, m_board.data(), &nFound),
                          nExpected);
                EXPECT_EQ(nFound, bWhite || nExpected == REGISTER_UNKNOWN ? 0 : nMove);
            }
        }
    }
}

TEST_F(ChessboardRegister, SupersedesAndContradicts)
{
    TChessboardRegister reg;
    reg.Insert(7, m_board.data(), true, nullptr, false);
    reg.Insert(5, m_board.data(), true, nullptr, false);
    reg.Insert(9, m_board.data(), true, nullptr, false);
    EXPECT_EQ(reg.GetElementsCount(), 1U);
    reg.Insert(1, m_board.data(), false, nullptr, false);
    reg.Insert(3, m_board.data(), false, nullptr, false);
    EXPECT_EQ(reg.GetElementsCount(), 2U);
    EXPECT_EQ(reg.FindWhite(3, m_board.data()), REGISTER_NO_MATE);
    reg.InsertDefence(4, m_board.data(), true, nullptr, false);

    const auto insert = [&] { reg.Insert(7, m_board.data(), false, nullptr, false); };
    const auto insertDefence = [&] { reg.InsertDefence(2, m_board.data(), false, nullptr, false); };
    const char* pText = "Incoherent information in TChessboardRegister::Insert()";
    EXPECT_EQ(FailureText(insert), pText);
    EXPECT_EQ(FailureText(insertDefence), pText);
    g_registerSettings.m_language = ELanguage::Polish;
    EXPECT_EQ(FailureText(insert), "Sprzeczna informacja w TChessboardRegister::Insert()");
    EXPECT_EQ(FailureText(insertDefence),
              "Sprzeczna informacja w TChessboardRegister::InsertDefence()");
    g_registerSettings.m_language = ELanguage::English;
    EXPECT_EQ(reg.GetElementsCount(), 2U);

    reg.SetKeepTwoMovers(false);
    reg.Insert(3, NumberedBoard(5).data(), true, nullptr, false);
    EXPECT_EQ(reg.FindWhite(3, NumberedBoard(5).data()), REGISTER_UNKNOWN);
    reg.Clear();
    EXPECT_TRUE(reg.KeepsTwoMovers());
    EXPECT_EQ(reg.GetElementsCount(), 0U);
}

TEST_F(ChessboardRegister, FileRoundTrip)
{
    const std::uint32_t nMove = 0x12345678;
    std::string strFile;
    {
        TChessboardRegister reg;
        EXPECT_FALSE(reg.Save());
        reg.SetPosition(m_board.data());
        strFile = reg.GetSubproblemsFile();
        EXPECT_EQ(std::filesystem::path(strFile).parent_path(), "SolvedProblemsDB");
        EXPECT_FALSE(reg.Load());
        reg.InsertDefence(6, NumberedBoard(3).data(), true, &nMove, true);
        EXPECT_FALSE(std::filesystem::exists(strFile + ".BAK"));
        reg.Insert(0x105, NumberedBoard(2).data(), true, &nMove, true);
        EXPECT_EQ(std::filesystem::file_size(strFile), 152U);
        EXPECT_EQ(std::filesystem::file_size(strFile + ".BAK"), 76U);
    }
    std::ifstream file(strFile, std::ios::binary);
    file.seekg(76 + 64);
    std::uint8_t aInfo[12];
    file.read(reinterpret_cast<char*>(aInfo), 12);
    const std::uint8_t aExpected[12] = {5, 1, 0xE1, 3, 0x78, 0x56, 0x34, 0x12, 1, 0, 0, 0};
    EXPECT_TRUE(std::equal(aInfo, aInfo + 12, aExpected));

    // A cut behind a whole record is the end of the file; one within a record is an error.
    for (const std::size_t nSize : {152, 151, 140, 100, 76, 64, 0}) {
        std::filesystem::resize_file(strFile, nSize);
        TChessboardRegister reg;
        bool bLater = false;
        reg.SetPosition(m_board.data(), &bLater);
        EXPECT_TRUE(bLater);
        EXPECT_EQ(reg.Load(), nSize % 76 == 0);
        std::uint32_t nFound = 0;
        EXPECT_EQ(reg.FindDefence(6, NumberedBoard(3).data(), &nFound),
                  nSize >= 76 ? REGISTER_MATE : REGISTER_UNKNOWN);
        EXPECT_EQ(nFound, nSize >= 76 ? nMove : 0);
        EXPECT_EQ(reg.GetElementsCount(), nSize == 152 ? 1U : 0U);
    }
}

TEST_F(ChessboardRegister, FileOfAnotherPositionAndTooManyRecords)
{
    TChessboardRegister reg;
    reg.SetPosition(m_board.data());
    for (std::uint32_t i = 0; i < TChessboardRegister::MAX_FILE_RECORDS; ++i)
        reg.Insert(5, NumberedBoard(i).data(), i % 2, nullptr, false);
    EXPECT_TRUE(reg.Save());
    reg.Insert(5, NumberedBoard(200000).data(), true, nullptr, false);
    EXPECT_FALSE(reg.Save());
    EXPECT_EQ(std::filesystem::file_size(reg.GetSubproblemsFile()), 13797U * 76);

    reg.SetPosition(NumberedBoard(78).data());
    EXPECT_EQ(reg.GetElementsCount(), 0U);
    reg.SetPosition(m_board.data());
    EXPECT_EQ(reg.GetElementsCount(), 13797U);
}

} // namespace
} // namespace corvina
