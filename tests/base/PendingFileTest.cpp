// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/PendingFile.h"

#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

// These stand in for the system's, so that a test can be on a file system that lacks them.
namespace {

int missingCalls = 0;

} // namespace

extern "C" int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    errno = EINVAL;
    return missingCalls > 1 ? -1 : static_cast<int>(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

extern "C" int link(const char* from, const char* to) noexcept {
    errno = EPERM;
    return missingCalls > 2 ? -1 : ::linkat(AT_FDCWD, from, AT_FDCWD, to, 0);
}

extern "C" int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    errno = ENOENT; // As where there is no /proc to find the file by.
    const bool isMissing = missingCalls > 0 && (flags & AT_SYMLINK_FOLLOW) != 0;
    return isMissing ? -1 : static_cast<int>(::syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}

namespace starbloom {

namespace {

using testing::HasSubstr;

std::span<const std::byte> bytesOf(const std::string& text) {
    return std::as_bytes(std::span(text));
}

class PendingFileTest : public testing::Test {
protected:
    PendingFileTest() { std::ofstream(target) << "old"; }

    TemporaryFolder folder;
    std::filesystem::path target = folder / "show.png";
};

TEST_F(PendingFileTest, targetIsOldUntilCommitAndWholeAfterIt) {
    auto file = PendingFile::create(target);
    ASSERT_TRUE(file);
    ASSERT_TRUE(file.value().write(bytesOf("new ")));
    ASSERT_TRUE(file.value().write(bytesOf("show")));
    EXPECT_EQ(readFile(target), "old");
    EXPECT_EQ(readFile(file.value().temporaryPath()), "new show");
    ASSERT_TRUE(file.value().commit());
    EXPECT_EQ(readFile(target), "new show");
    EXPECT_EQ(folder.entryCount(), 1);
    EXPECT_FALSE(file.value().write(bytesOf("more")));
    EXPECT_FALSE(file.value().commit());
    EXPECT_EQ(readFile(target), "new show");
}

TEST_F(PendingFileTest, whatIsNotCommittedLeavesNothing) {
    {
        auto file = PendingFile::create(target);
        ASSERT_TRUE(file);
        ASSERT_TRUE(file.value().write(bytesOf("half")));
    }
    EXPECT_EQ(readFile(target), "old");
    EXPECT_EQ(folder.entryCount(), 1);
}

TEST_F(PendingFileTest, movingHandsTheFileOn) {
    auto first = PendingFile::create(target);
    auto second = PendingFile::create(folder / "other");
    ASSERT_TRUE(first && second);
    EXPECT_EQ(folder.entryCount(), 3);
    std::optional<PendingFile> holder(std::move(first).value());
    *holder = std::move(second).value(); // gives the first one up
    EXPECT_EQ(folder.entryCount(), 2);
    ASSERT_TRUE(holder->write(bytesOf("moved")));
    ASSERT_TRUE(holder->commit());
    holder.reset();
    EXPECT_EQ(readFile(folder / "other"), "moved");
    EXPECT_EQ(readFile(target), "old");
    EXPECT_EQ(folder.entryCount(), 2);
}

TEST_F(PendingFileTest, newFilesHaveTheUsersUsualPermissionsAndOthersKeepTheirs) {
    const auto fresh = folder / "fresh.png";
    const auto modeOf = [](const std::filesystem::path& path) {
        return static_cast<unsigned>(std::filesystem::status(path).permissions());
    };
    std::filesystem::permissions(target, std::filesystem::perms(0406));
    const mode_t before = ::umask(027);
    EXPECT_TRUE(writeFile(fresh, bytesOf("x")));
    EXPECT_TRUE(writeFile(target, bytesOf("x")));
    ::umask(before);
    EXPECT_EQ(modeOf(fresh), 0640U);
    EXPECT_EQ(modeOf(target), 0406U);
}

TEST_F(PendingFileTest, linksAreFollowedAndPipesStay) {
    std::filesystem::create_directory(folder / "there");
    std::filesystem::create_symlink("there/new.png", folder / "toNew");
    std::filesystem::create_symlink("toNew", folder / "toLink");
    std::filesystem::create_symlink(target, folder / "toOld");
    ASSERT_TRUE(writeFile(folder / "toLink", bytesOf("one")));
    ASSERT_TRUE(writeFile(folder / "toOld", bytesOf("two")));
    EXPECT_EQ(readFile(folder / "there/new.png"), "one");
    EXPECT_EQ(readFile(target), "two");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "toLink") && std::filesystem::is_symlink(folder / "toOld"));
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_THAT(writeFile(folder / "pipe", bytesOf("x")).error().message, HasSubstr("a pipe or a device"));
    EXPECT_TRUE(std::filesystem::is_fifo(folder / "pipe"));
}

TEST_F(PendingFileTest, failuresNameTheTargetAndTheReason) {
    std::filesystem::create_directory(folder / "taken");

    const struct {
        std::filesystem::path target;
        const char* reason;
    } cases[] = {
        {folder / "missing/show.png", "No such file or directory"},
        {target / "show.png", "Not a directory"},
        {folder / "taken", "Is a directory"},
        {folder.path() / "", "not the name of a file"},
        {"", "not the name of a file"},
        {folder / std::string(256, 'n'), "File name too long"}, // noticed by the rename
    };

    for (const auto& each : cases) {
        const auto result = writeFile(each.target, bytesOf("x"));
        ASSERT_FALSE(result) << each.target;
        EXPECT_THAT(result.error().message, HasSubstr("cannot write " + each.target.string()));
        EXPECT_THAT(result.error().message, HasSubstr(each.reason));
    }
    EXPECT_EQ(folder.entryCount(), 2);
}

TEST_F(PendingFileTest, fullDiskLeavesTheOldFile) {
    const std::string large(100'000, 'x');
    {
        const FileSizeLimit limit(4096);
        const auto result = writeFile(target, bytesOf(large));
        ASSERT_FALSE(result);
        EXPECT_THAT(result.error().message, HasSubstr("File too large"));
    }
    EXPECT_EQ(readFile(target), "old");
    EXPECT_EQ(folder.entryCount(), 1);
    const auto longestName = folder / std::string(255, 'n');
    EXPECT_TRUE(writeFile(longestName, bytesOf(large)));
    EXPECT_EQ(readFile(longestName), large);
}

TEST_F(PendingFileTest, aNewFileTakesTheFirstFreeNameAndReplacesNothing) {
    std::filesystem::create_directory(folder / "1");
    std::filesystem::create_symlink("nowhere", folder / "2");
    auto present = folder.entryCount();
    const auto candidate = [&](int n) {
        // Nothing that a kill would leave behind, where the system has all that it takes.
        EXPECT_TRUE(missingCalls > 0 || folder.entryCount() == present);
        return n == 0 ? target : folder / std::to_string(n);
    };
    for (missingCalls = 0; missingCalls < 4; ++missingCalls) {
        const auto written = writeNewFile(candidate, bytesOf("new"));
        ASSERT_TRUE(written) << written.error().message;
        EXPECT_EQ(written.value(), folder / std::to_string(3 + missingCalls));
        EXPECT_EQ(readFile(written.value()), "new");
        EXPECT_EQ(readFile(target), "old");
        EXPECT_EQ(folder.entryCount(), 4 + missingCalls);
        present = folder.entryCount();
        const FileSizeLimit limit(4096);
        EXPECT_FALSE(writeNewFile(candidate, bytesOf(std::string(5000, 'x'))));
        EXPECT_FALSE(writeNewFile([&](int) { return folder / std::string(256, 'n'); }, bytesOf("x")));
        EXPECT_EQ(folder.entryCount(), 4 + missingCalls);
    }
    missingCalls = 0;
}

} // namespace

} // namespace starbloom
