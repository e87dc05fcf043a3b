#include "app/options.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

namespace corvina
{
namespace
{

TOptions ReadText(const std::string& strText, std::vector<std::string>* pWarnings = nullptr)
{
    TTemporaryFolder folder;
    PutBytes(folder.File("options.ini"), strText);
    std::vector<std::string> vecWarnings;
    const TOptions options = ReadOptions(folder.File("options.ini"), vecWarnings);
    if (pWarnings)
        *pWarnings = vecWarnings;
    return options;
}

TEST(Options, HandMadeValues)
{
    EXPECT_EQ(ReadText(""), TOptions());
    EXPECT_EQ(ReadText("").m_shSchedulerLevels, 6);
    EXPECT_EQ(ReadText("[chess]\nSchedulerLevels=-1\n").m_shSchedulerLevels, 0);
    EXPECT_EQ(
        ReadText("[chess]\nUseMainVariantAsSortIndications=7\n").m_nUseMainVariantAsSortIndications,
        2);
    EXPECT_EQ(ReadText("[chess]\nLichessLevels=-1\nQuickMode=2\n").m_shLichessLevels, -1);
    EXPECT_TRUE(ReadText("[chess]\nQuickMode=2\n").m_bQuickMode);
    // 256 characters, which are more bytes.
    std::string strPath;
    for (int i = 0; i < 256; ++i)
        strPath += "\xC5\x82";
    EXPECT_EQ(ReadText("[chess]\nPrecalcPath=" + strPath).m_strPrecalcPath,
              std::wstring(255, L'\u0142'));

    std::vector<std::string> vecWarnings;
    const TOptions options =
        ReadText("[chess]\nAskForGlobalRegisterRecompression=4\nUseDataPackedForRandomAccess=3\n"
                 "LogMoves=1\n",
                 &vecWarnings);
    EXPECT_EQ(options.m_nAskForGlobalRegisterRecompression, 3);
    ASSERT_EQ(vecWarnings.size(), 2u);
    EXPECT_NE(vecWarnings[0].find("should not be greater than"), std::string::npos);
    EXPECT_NE(vecWarnings[1].find("log of full analysis"), std::string::npos);
}

/// Every key, with a value that is neither the default nor that of a neighbour.
TEST(Options, WhatIsWrittenIsReadAgainAndTheRestStays)
{
    TTemporaryFolder folder;
    const std::string strPath = folder.File("options.ini");
    std::string strText = "; mine\n[chess]\n";
    int nValue = 10;
    for (const TOptionKey& key : GetOptionKeys()) {
        const bool bSwitch = std::holds_alternative<bool TOptions::*>(key.m_member);
        const int nOther = OptionToText(TOptions(), key) == "0";
        strText += std::string(key.m_pName) + "=" + std::to_string(bSwitch ? nOther : ++nValue);
        strText += "\n";
    }
    strText += "Unknown=5\n[AutoSave]\nQuickMode=9\n";
    PutBytes(strPath, strText);
    std::vector<std::string> vecWarnings;
    const TOptions options = ReadOptions(strPath, vecWarnings);
    for (const TOptionKey& key : GetOptionKeys())
        EXPECT_NE(OptionToText(options, key), OptionToText(TOptions(), key)) << key.m_pName;

    // The defaults go over the file, then the options over that: only keys of the dialog change.
    ASSERT_TRUE(WriteOptions(strPath, TOptions()));
    const TOptions mixed = ReadOptions(strPath, vecWarnings);
    for (const TOptionKey& key : GetOptionKeys())
        EXPECT_EQ(OptionToText(mixed, key),
                  OptionToText(key.m_bInDialog ? TOptions() : options, key))
            << key.m_pName;
    EXPECT_NE(BytesOf(strPath).find("Unknown=5\n[AutoSave]\nQuickMode=9\n"), std::string::npos);
    ASSERT_TRUE(WriteOptions(strPath, options));
    EXPECT_EQ(ReadOptions(strPath, vecWarnings), options);
}

TEST(Options, FieldsOfTheDialog)
{
    struct TCase
    {
        std::string TOptionFields::*m_field;
        const char* m_pText;
        bool m_bTaken;
        const char* m_pMessage; ///< a part of the only one; null: none
    };
    using F = TOptionFields;
    const TCase aCases[] = {
        {&F::m_strMaxMemRatioForPrecalculatedData, "101", false, "ratio for precalculated data."},
        {&F::m_strMaxMemRatioForTempReg, "", false, "ratio for temporary data."},
        {&F::m_strMaxMemRatioForTempReg, "0", true, nullptr},
        {&F::m_strSchedulerLevels, "10", false, "scheduler levels (min=0, max=9)"},
        {&F::m_strSchedulerLevels, "x", false, "scheduler levels (min=0, max=9)"},
        {&F::m_strSchedulerLevels, "9", true, nullptr},
        {&F::m_strSchedulerLevels, "0", true, "Custom scheduler will be off"},
        {&F::m_strLichessLevels, "-1", true, nullptr},
        {&F::m_strLichessLevels, "256", false, " (min=-1, max =255"},
        {&F::m_strThreads, "4^0", true, "value truncated/adjusted"},
        {&F::m_strThreads, "4^7", true, nullptr},
        {&F::m_strThreads, "4^8", false, "Too many threads"},
        {&F::m_strThreads, "5", true, "thread settings will not be saved"},
        {&F::m_strAutoSaveMinutes, "", true, nullptr},
        {&F::m_strAutoSaveMB, "1 GB", false, "Invalid settings for auto save"},
    };
    const TOptions current;
    for (const TCase& test : aCases) {
        TOptionFields fields(current, 4);
        fields.*test.m_field = test.m_pText;
        const TOptionsOfFields result = ValidateOptions(current, 4, fields);
        EXPECT_EQ(result.m_options.has_value(), test.m_bTaken) << test.m_pText;
        ASSERT_EQ(result.m_vecTexts.size(), test.m_pMessage ? 1u : 0u) << test.m_pText;
        if (test.m_pMessage) {
            EXPECT_NE(result.m_vecTexts[0].find(test.m_pMessage), std::string::npos)
                << result.m_vecTexts[0];
        }
    }
}

TEST(Options, FieldsThatConcernEachOther)
{
    const TOptions current;
    TOptionFields fields(current, 1);
    EXPECT_EQ(ValidateOptions(current, 1, fields).m_options, current);
    fields.m_options.m_bEnableManualEngineControl = true;
    fields.m_options.m_bLogMoves = true;
    fields.m_strThreads = "2^3";
    fields.m_strMaxMemRatioForTempReg = " 33 ";
    fields.m_strAutoSaveMinutes = "";
    TOptionsOfFields result = ValidateOptions(current, 1, fields);
    ASSERT_TRUE(result.m_options);
    EXPECT_EQ(result.m_vecTexts.size(), 3u);
    EXPECT_EQ(result.m_nThreads, 2u);
    EXPECT_EQ(result.m_options->m_nMultithreadingLevels, 3);
    EXPECT_EQ(result.m_options->m_nMaxMemRatioForTempReg, 33);
    EXPECT_EQ(result.m_options->m_nAutoSaveMinutes, 0);

    // A level too deep is cut, and then found to be too many; nothing is taken.
    fields.m_strThreads = "2^65";
    result = ValidateOptions(current, 1, fields);
    EXPECT_FALSE(result.m_options);
    EXPECT_EQ(result.m_nThreads, 1u);
    EXPECT_EQ(result.m_vecTexts,
              (std::vector<std::string>{
                  "Improper value in multithreading levels option: value truncated/adjusted",
                  "Too many threads and/or multithreading levels."}));
}

TEST(Options, LimitsOfMemoryReachTheRegister)
{
    TOptions options;
    options.m_nMaxMemRatioForTempReg = 50;
    options.m_nMaxMemRatioForPrecalculatedData = 100;
    constexpr std::uint64_t TOTAL = (std::uint64_t{3} << 40) + 12345;
    const TMemoryLimits limits = ComputeMemoryLimits(options, TOTAL);
    EXPECT_EQ(limits.m_nTemporaryMB, std::uint64_t{3} << 19);
    EXPECT_EQ(limits.m_nDefaultTemporaryMB, (std::uint64_t{3} << 20) / 5);
    EXPECT_EQ(limits.m_nPrecalculatedBytes, TOTAL);

    TSolveRequest quick;
    ApplyOptions(options, quick);
    options.m_nMaxMemRatioForTempReg = 1;
    const std::uint64_t nLarge = quick.m_TemporaryRegister.GetMemoryLimit();
    ApplyOptions(options, quick);
    EXPECT_LT(quick.m_TemporaryRegister.GetMemoryLimit(), nLarge / 8);
    EXPECT_GE(GetNumberOfCores(true), GetNumberOfCores(false));
}

} // namespace
} // namespace corvina
