#include "platform/files.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <csignal>
#include <sched.h>
#include <system_error>
#include <unistd.h>

namespace corvina
{
namespace
{

std::size_t FilesIn(const std::filesystem::path& path)
{
    const std::filesystem::directory_iterator files(path);
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

TEST(Files, ReplacementKeepsModeLinkAndBak)
{
    const TTemporaryFolder folder;
    const std::string strFile = folder.File("a.cp");
    EXPECT_FALSE(ReadWholeFile(strFile));
    EXPECT_FALSE(ReadWholeFile(folder.m_path));
    TFileReplacement(strFile, "one").Commit(EOldFile::KeepAsBak);
    EXPECT_FALSE(std::filesystem::exists(strFile + ".BAK"));
    chmod(strFile.c_str(), 0640);
    std::filesystem::create_symlink(strFile, folder.File("link"));
    TFileReplacement(folder.File("link"), "two").Commit(EOldFile::KeepAsBak);
    TFileReplacement(strFile, "three").Commit(EOldFile::KeepAsBak);
    EXPECT_EQ(ReadWholeFile(folder.File("link")), "three");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.File("link")));
    EXPECT_EQ(BytesOf(strFile + ".BAK"), "two");
    struct stat status;
    stat(strFile.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    {
        const TFileReplacement dropped(strFile, "four");
        EXPECT_EQ(FilesIn(folder.m_path), 4u);
    }
    EXPECT_EQ(BytesOf(strFile), "three");
    EXPECT_EQ(FilesIn(folder.m_path), 3u);
    EXPECT_THROW(TFileReplacement(folder.File("none/a.cp"), "x"), std::system_error);
    std::filesystem::create_directory(folder.File("d"));
    EXPECT_THROW(TFileReplacement(folder.File("d"), "x").Commit(), std::system_error);
}

/// A process that is killed at any time leaves the file with one of the contents that it wrote.
TEST(Files, KilledWriterLeavesAWholeFile)
{
    const TTemporaryFolder folder;
    const std::string strFile = folder.File("a.cp");
    const std::string aContents[] = {std::string(3000000, 'a'), std::string(2000000, 'b')};
    PutBytes(strFile, aContents[0]);
    int nUnfinished = 0;
    for (int nRound = 0; nRound < 30; ++nRound) {
        const pid_t child = fork();
        if (child == 0) {
            for (unsigned i = 1;; ++i)
                TFileReplacement(strFile, aContents[i % 2]).Commit(EOldFile::KeepAsBak);
        }
        usleep(static_cast<useconds_t>(500 + nRound * 700));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const std::string strLeft = BytesOf(strFile);
        ASSERT_TRUE(strLeft == aContents[0] || strLeft == aContents[1]) << strLeft.size();
        const std::size_t nKept = std::filesystem::exists(strFile + ".BAK") ? 2 : 1;
        for (const auto& entry : std::filesystem::directory_iterator(folder.m_path)) {
            if (entry.path().filename() != "a.cp" && entry.path().filename() != "a.cp.BAK")
                std::filesystem::remove(entry.path()), ++nUnfinished;
        }
        ASSERT_EQ(FilesIn(folder.m_path), nKept);
    }
    EXPECT_GT(nUnfinished, 0) << "no writer was killed in the middle";
}

constexpr int NO_MOUNT = 77;

/// In a process of its own, on a file system of 64 KB.
int FillSmallDisk(const std::string& strFolder)
{
    const int nPrivate = CLONE_NEWNS | (geteuid() == 0 ? 0 : CLONE_NEWUSER);
    if (unshare(nPrivate) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", strFolder.c_str(), "tmpfs", 0, "size=64k") != 0)
        return NO_MOUNT;
    const std::string strFile = strFolder + "/a.cp";
    const std::string strOld(20000, 'a');
    TFileReplacement(strFile, strOld).Commit();
    for (const std::size_t nSize : {50000, 500000, 5000000}) {
        try {
            TFileReplacement(strFile, std::string(nSize, 'b')).Commit(EOldFile::KeepAsBak);
            return 1;
        }
        catch (const std::system_error& error) {
            if (error.code() != std::errc::no_space_on_device)
                return 2;
        }
        if (BytesOf(strFile) != strOld || FilesIn(strFolder) != 1)
            return 3;
    }
    // There is room again for what fits.
    TFileReplacement(strFile, std::string(30000, 'c')).Commit();
    return BytesOf(strFile) == std::string(30000, 'c') ? 0 : 4;
}

TEST(Files, FullDiskLeavesTheOldFile)
{
    const TTemporaryFolder folder;
    const pid_t child = fork();
    if (child == 0)
        _exit(FillSmallDisk(folder.m_path.string()));
    int nStatus = 0;
    waitpid(child, &nStatus, 0);
    ASSERT_TRUE(WIFEXITED(nStatus));
    if (WEXITSTATUS(nStatus) == NO_MOUNT)
        GTEST_SKIP() << "this machine doesn't allow mounting a small file system";
    EXPECT_EQ(WEXITSTATUS(nStatus), 0);
}

} // namespace
} // namespace corvina
