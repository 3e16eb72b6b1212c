// Writing files so that an older one is never lost.
#include "HostTest.h"

#include "base/SafeFile.h"

#if !defined(_WIN32)
#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool g_bDiskFails = false;

} // namespace

/// In place of the system's.
extern "C" int fsync(int nFile) {
    if (g_bDiskFails) {
        errno = EIO;
        return -1;
    }
    return static_cast<int>(syscall(SYS_fsync, nFile));
}
#endif

namespace {

using std::filesystem::perms;

class SafeFile : public testing::Test {
protected:
    /// How many files and folders there are.
    long long Count() const {
        const std::filesystem::directory_iterator folder(m_folder.Path());
        return std::distance(begin(folder), end(folder));
    }

    CTemporaryFolder m_folder;
};

TEST_F(SafeFile, IsWrittenAnewInItsModeBesideOthers) {
    m_folder.Write("a.json.new", "mine");
    m_folder.Write("a.json.new1", "mine too");
    const auto file = m_folder.Path() / "a.json";
    EXPECT_EQ(WriteFileSafely(file, "first"), "");
    EXPECT_EQ(ReadAll(file), "first");
    std::filesystem::permissions(file, perms::owner_all);
    const perms nMode = std::filesystem::status(file).permissions(); // not all systems keep all of it
    EXPECT_EQ(WriteFileSafely(file, "second\r\n"), "");
    EXPECT_EQ(ReadAll(file), "second\r\n");
    EXPECT_EQ(std::filesystem::status(file).permissions(), nMode);
    EXPECT_EQ(ReadAll(m_folder.Path() / "a.json.new"), "mine");
    EXPECT_EQ(ReadAll(m_folder.Path() / "a.json.new1"), "mine too");
    EXPECT_EQ(Count(), 3);
}

#if !defined(_WIN32)
TEST_F(SafeFile, WhatTheDiskDoesNotKeepIsNotWritten) {
    const auto file = m_folder.Write("a.json", "first");
    g_bDiskFails = true;
    EXPECT_EQ(WriteFileSafely(file, "second"), CANT_BE_WRITTEN);
    g_bDiskFails = false;
    EXPECT_EQ(ReadAll(file), "first");
    EXPECT_EQ(Count(), 1);
}
#endif

TEST_F(SafeFile, FoldersAreRefused) {
    const auto folder = m_folder.Path() / "folder";
    std::filesystem::create_directory(folder);
    EXPECT_EQ(WriteFileSafely(folder, "x"), NO_REGULAR_FILE);
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(WriteFileSafely(m_folder.Path() / "none" / "a.json", "x"), CANT_BE_WRITTEN);
}

TEST_F(SafeFile, LinksAreFollowed) {
    const auto file = m_folder.Write("a.json", "x");
    std::error_code error;
    std::filesystem::create_symlink("a.json", m_folder.Path() / "link", error);
    if (error || !std::filesystem::is_symlink(m_folder.Path() / "link")) {
        GTEST_SKIP() << "the system makes no links here";
    }
    std::filesystem::create_symlink("later.json", m_folder.Path() / "dangling");
    EXPECT_EQ(WriteFileSafely(m_folder.Path() / "link", "y"), "");
    EXPECT_EQ(ReadAll(file), "y");
    EXPECT_TRUE(std::filesystem::is_symlink(m_folder.Path() / "link"));
    EXPECT_EQ(WriteFileSafely(m_folder.Path() / "dangling", "z"), "");
    EXPECT_EQ(ReadAll(m_folder.Path() / "later.json"), "z");
    std::filesystem::create_symlink("round", m_folder.Path() / "round");
    EXPECT_EQ(WriteFileSafely(m_folder.Path() / "round", "z"), CANT_BE_WRITTEN);
}

TEST_F(SafeFile, DevicesAreRefused) {
    for (const char* pszDevice : {"/dev/null", "/dev/full", "NUL"}) {
        std::error_code error;
        if (std::filesystem::is_character_file(pszDevice, error)) {
            EXPECT_EQ(WriteFileSafely(pszDevice, "x"), NO_REGULAR_FILE) << pszDevice;
            EXPECT_TRUE(std::filesystem::is_character_file(pszDevice)) << pszDevice;
        }
    }
}

} // namespace
