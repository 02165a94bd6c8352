// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/WholeFile.h"

#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sys/stat.h>

namespace starbloom {

namespace {

using testing::HasSubstr;

TEST(WholeFile, readsUpToTheLimitAndTellsMissingFromUnreadable) {
    const TemporaryFolder folder;
    const std::string content(100000, 'x');
    std::ofstream(folder / "file") << content;
    const auto whole = readWholeFile(folder / "file", content.size());
    ASSERT_TRUE(whole && whole.value());
    EXPECT_EQ(whole.value()->size(), content.size());
    EXPECT_EQ(whole.value()->back(), std::byte{'x'});
    EXPECT_FALSE(readWholeFile(folder / "file", content.size() - 1));

    const auto missing = readWholeFile(folder / "none", 10);
    ASSERT_TRUE(missing);
    EXPECT_FALSE(missing.value());
}

TEST(WholeFile, refusesWhatIsNoFileWithoutWaitingForIt) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink(folder / "loop", folder / "loop");
    for (const auto& path : {folder.path(), folder / "pipe", folder / "loop", std::filesystem::path("/dev/zero")}) {
        const auto result = readWholeFile(path, 1000);
        ASSERT_FALSE(result) << path;
        EXPECT_THAT(result.error().message, HasSubstr("cannot read " + path.string() + ": "));
    }
}

} // namespace

} // namespace starbloom
