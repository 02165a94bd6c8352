// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/KeptCopy.h"

#include "tests/support/FileSizeLimit.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>

namespace starbloom {

namespace {

using testing::HasSubstr;

class KeptCopyTest : public testing::Test {
protected:
    /// Files of this test are sound when they start with "good".
    static Result<void> check(std::span<const std::byte> bytes) {
        const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return text.starts_with("good") ? Result<void>() : Error{"it is bad"};
    }

    Result<void> replace(const std::string& content) const {
        return replaceFile(target, std::as_bytes(std::span(content)), 10, check);
    }

    TemporaryFolder folder;
    std::filesystem::path target = folder / "Data";
};

TEST_F(KeptCopyTest, takesTheNextFreeNumber) {
    std::ofstream(folder / "Data.damaged-1") << "older";
    std::filesystem::create_symlink("nowhere", folder / "Data.damaged-2");
    std::ofstream(target) << "damaged";
    const auto kept = keepDamagedCopy(target);
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept.value(), folder / "Data.damaged-3");
    EXPECT_EQ(readFile(kept.value()), "damaged");
    EXPECT_EQ(readFile(folder / "Data.damaged-1"), "older");
    EXPECT_FALSE(keepDamagedCopy(target)) << "nothing is there any more";
}

TEST_F(KeptCopyTest, soundFilesAreReplacedWithoutACopy) {
    EXPECT_TRUE(replace("good 1"));
    EXPECT_TRUE(replace("good 2"));
    EXPECT_EQ(readFile(target), "good 2");
    EXPECT_EQ(folder.entryCount(), 1);
}

TEST_F(KeptCopyTest, damagedTooLargeAndFoldersAreKeptAndTheLogSaysWhy) {
    const LogCapture log;
    std::ofstream(target) << "bad";
    EXPECT_TRUE(replace("good"));
    EXPECT_EQ(readFile(folder / "Data.damaged-1"), "bad");
    EXPECT_THAT(log.text(), HasSubstr("Data.damaged-1: it is bad"));
    std::ofstream(target) << "good but too large";
    EXPECT_TRUE(replace("good"));
    EXPECT_EQ(readFile(folder / "Data.damaged-2"), "good but too large");
    std::filesystem::remove(target);
    std::filesystem::create_directories(target / "inside");
    EXPECT_TRUE(replace("good"));
    EXPECT_TRUE(std::filesystem::exists(folder / "Data.damaged-3" / "inside"));
    EXPECT_EQ(readFile(target), "good");
}

TEST_F(KeptCopyTest, fullDiskLeavesTheOldFileOrItsCopy) {
    std::ofstream(target) << "good old";
    {
        const FileSizeLimit disk(0);
        EXPECT_FALSE(replace("good new"));
    }
    EXPECT_EQ(readFile(target), "good old");
    EXPECT_EQ(folder.entryCount(), 1);
    std::ofstream(target) << "bad";
    {
        const FileSizeLimit disk(0);
        EXPECT_FALSE(replace("good new"));
    }
    EXPECT_EQ(readFile(folder / "Data.damaged-1"), "bad");
    EXPECT_EQ(folder.entryCount(), 1);
}

} // namespace

} // namespace starbloom
