#include "platform/profile.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace corvina
{
namespace
{

TEST(Profile, ReadsValuesAsTheyAreWritten)
{
    TTemporaryFolder folder;
    PutBytes(folder.File("a.ini"), "\xEF\xBB\xBF; head\r\n[ Other ]\r\nn=7\r\n[CHESS]\r\n"
                                   "  N = -12abc  \r\nplus=+5\r\nword=x\r\nempty=\r\n"
                                   "quoted=\" a;b \"\r\ntwice=1\r\ntwice=2\r\n");
    const TProfile profile(folder.File("a.ini"));
    EXPECT_EQ(profile.GetInt("chess", "n", 1), -12);
    EXPECT_EQ(profile.GetInt("other", "N", 1), 7);
    EXPECT_EQ(profile.GetInt("chess", "plus", 1), 5);
    EXPECT_EQ(profile.GetInt("chess", "word", 1), 0);
    EXPECT_EQ(profile.GetInt("chess", "empty", 1), 1);
    EXPECT_EQ(profile.GetInt("chess", "none", 1), 1);
    EXPECT_EQ(profile.GetInt("chess", "twice", 1), 2);
    EXPECT_EQ(profile.GetText("chess", "quoted"), " a;b ");
    EXPECT_EQ(profile.GetText("none", "quoted"), std::nullopt);
}

TEST(Profile, SettingAValueLeavesEveryOtherLine)
{
    struct TCase
    {
        const char* m_pBefore;
        const char* m_pAfter; ///< key=new set in section chess
    };
    const TCase aCases[] = {
        {"", "[chess]\nkey=new\n"},
        {"[a]\nkey=1", "[a]\nkey=1\n\n[chess]\nkey=new\n"},
        {"; c\n\n[Chess]\n ; key=0\n KEY = old\njunk\n\n[a]\nkey=1\n\n; end",
         "; c\n\n[Chess]\n ; key=0\nkey=new\njunk\n\n[a]\nkey=1\n\n; end\n"},
        {"[chess]\r\nb=1\r\n\r\n[a]\r\n", "[chess]\r\nb=1\r\nkey=new\r\n\r\n[a]\r\n"},
        {"[chess]\nkey=1\nkey=2\n[chess]\nb=2\n", "[chess]\nkey=new\nkey=new\n[chess]\nb=2\n"},
    };
    TTemporaryFolder folder;
    const std::string strPath = folder.File("a.ini");
    for (const TCase& test : aCases) {
        PutBytes(strPath, test.m_pBefore);
        TProfile profile(strPath);
        profile.SetText("chess", "key", "new");
        EXPECT_EQ(profile.GetText("chess", "key"), "new") << test.m_pBefore;
        EXPECT_TRUE(profile.Write());
        EXPECT_EQ(BytesOf(strPath), test.m_pAfter);
        EXPECT_EQ(TProfile(strPath).GetText("chess", "key"), "new") << test.m_pBefore;
    }
}

TEST(Profile, AFileThatCannotBeReadOrWrittenStands)
{
    TTemporaryFolder folder;
    // A folder in the file's place can't be read, whoever runs the test.
    ASSERT_EQ(mkdir(folder.File("a.ini").c_str(), 0777), 0);
    for (const std::string& strPath : {folder.File("a.ini"), folder.File("none/b.ini")}) {
        TProfile profile(strPath);
        profile.SetText("chess", "key", "new");
        EXPECT_FALSE(profile.Write()) << strPath;
    }
    EXPECT_TRUE(std::filesystem::is_directory(folder.File("a.ini")));
}

} // namespace
} // namespace corvina
