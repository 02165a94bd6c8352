// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/FrameStore.h"

#include "export/movie/MemoryCheck.h"
#include "tests/export/MovieProbe.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <utility>
#include <vector>

namespace starbloom {

namespace {

TEST(FrameStore, givesBackExactlyWhatItKeptInOrder) {
    FrameStore store;
    std::vector<ImageBuffer> frames{ImageBuffer(640, 480), noise(7, 5, 1), ImageBuffer(1, 1), noise(300, 200, 2)};
    frames.front().row(100)[400] = 255;
    std::vector<ImageBuffer> kept;
    for (unsigned i = 0; i < 40; ++i) {
        ImageBuffer frame = store.blank(frames[i % 4].width(), frames[i % 4].height());
        std::ranges::copy(frames[i % 4].bytes(), frame.bytes().begin());
        frame.bytes()[0] = static_cast<std::uint8_t>(i);
        const ImageBuffer copy = frame;
        if (store.add(std::move(frame)) == FrameStore::Added::Kept) {
            kept.push_back(copy);
        }
    }
    EXPECT_GE(kept.size(), FrameStore::queueLength);
    EXPECT_EQ(store.count(), static_cast<std::int64_t>(kept.size()));
    ImageBuffer frame;
    for (const ImageBuffer& expected : kept) {
        ASSERT_TRUE(store.takeFirst(frame));
        EXPECT_EQ(frame, expected);
    }
    EXPECT_FALSE(store.takeFirst(frame));
    EXPECT_EQ(store.bytes(), 0U);
    EXPECT_FALSE(store.failure());
}

TEST(FrameStore, keepsToItsLimitAndSaysSo) {
    FrameStore store(100'000);
    int kept = 0;
    while (store.add(noise(64, 64, 1)) != FrameStore::Added::Full && kept < 100) {
        ++kept;
    }
    EXPECT_LE(kept, 100'000 / (64 * 64 * 4));
    EXPECT_GE(kept, 5);
    EXPECT_LE(store.peakBytes(), 100'000U);
    ASSERT_TRUE(store.failure());
    EXPECT_THAT(store.failure()->message, testing::HasSubstr("memory"));
    EXPECT_EQ(store.add(ImageBuffer(1, 1)), FrameStore::Added::Full);
    ImageBuffer frame;
    EXPECT_TRUE(store.takeFirst(frame)) << "what it has stays";
}

class MemoryCheck : public testing::Test {
protected:
    static void write(const std::filesystem::path& path, const std::string& text) {
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }

    TemporaryFolder folder;
    MemoryPaths paths{folder / "meminfo", folder / "own", folder / "groups"};
};

TEST_F(MemoryCheck, leastOfSystemAndGroupsIsAvailable) {
    EXPECT_EQ(availableMemory(paths), std::nullopt);
    write(paths.memoryInfo, "MemTotal:  9000 kB\nMemAvailable:   4000 kB\n");
    EXPECT_EQ(availableMemory(paths), 4'096'000U);

    write(paths.ownGroups, "0::/user/app\n");
    write(paths.groups / "user/app/memory.max", "max\n");
    write(paths.groups / "user/app/memory.current", "10\n");
    write(paths.groups / "user/memory.max", "1000000\n");
    write(paths.groups / "user/memory.current", "600000\n");
    write(paths.groups / "user/memory.stat", "anon 1\ninactive_file 200000\n");
    EXPECT_EQ(availableMemory(paths), 600'000U) << "a limit further up counts; cached files are free";

    write(paths.ownGroups, "3:cpu:/x\n4:hugetlb,memory:/job\n");
    write(paths.groups / "memory/job/memory.limit_in_bytes", "500000\n");
    write(paths.groups / "memory/job/memory.usage_in_bytes", "600000\n");
    EXPECT_EQ(availableMemory(paths), 0U);
}

TEST_F(MemoryCheck, refusesWhatCannotFitByHowWellTheShowCompresses) {
    const MovieSettings longest{.rateIndex = 2, .lengthIndex = 54, .fadeIn = false, .fadeInIndex = 0};
    const double raw = longest.memoryBytes(640, 480, false);
    const auto dense = checkMemory(longest, 640, 480, noise(640, 480, 1), 1'000'000'000);
    EXPECT_GE(static_cast<double>(dense.needed), raw);
    EXPECT_FALSE(dense.fits());
    const auto dark = checkMemory(longest, 640, 480, ImageBuffer(640, 480), 1'000'000'000);
    EXPECT_TRUE(dark.fits());
    EXPECT_GT(static_cast<double>(dark.needed), raw / 6.5);
    EXPECT_LT(dark.frameLimit, 1'000'000'000U);
    EXPECT_FALSE(checkMemory(longest, 640, 480, {}, dark.needed).fits()) << "nothing is known of the show";
    EXPECT_TRUE(checkMemory(longest, 640, 480, {}, std::nullopt).fits());
}

} // namespace

} // namespace starbloom
